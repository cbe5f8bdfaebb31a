// Drives in memory that behave as Windows does, and fail where a test wants them to.
#pragma once

#include "archive/files/filesystem.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

// Names are kept with their case and found without it. "C:\\" is there from the start and is the current
// folder. The calls of the file system and of its files come from any thread, one at a time; what a test sets
// and looks at is for a moment in which none comes.
class MemoryFileSystem : public arc::FileSystem
{
public:
    struct Node
    {
        std::string name; // with its case
        std::string bytes;
        std::uint32_t attributes = arc::attribute::Archive;
        arc::LocalTime written{2026, 10, 21, 4, 5, 6};
        std::int64_t stamp = 0; // counts writes
        bool onMedium = false;  // flushed since it was last written
        int readers = 0;        // open now
        bool alone = false;

        arc::FileInfo Info() const
        {
            return {bytes.size(), attributes, written, stamp};
        }
    };

    MemoryFileSystem();

    // --- what a test sets and looks at ---
    void AddDrive(char letter, std::uint64_t clusters = 1 << 20, std::uint64_t bytesPerCluster = 512);
    void Put(const std::string& path, const std::string& bytes,
             std::uint32_t attributes = arc::attribute::Archive);
    void Clear(const std::string& folder); // of all files below; no call
    Node* Find(const std::string& path) const;
    bool Exists(const std::string& path) const;
    std::string Bytes(const std::string& path) const;               // empty when there is none
    std::vector<std::string> Tree(const std::string& folder) const; // full paths of all files below

    // From the call with this number on (from 1, counted from now) as many calls fail, or all when times is
    // 0; call 0 = none. Every call of the file system and of its files counts.
    void FailFrom(int call, int times = 0);
    int m_calls = 0;
    bool m_bGarbles = false; // what is written reads back otherwise, as on a bad medium
    // Called before a file is opened; may throw.
    std::function<void()> m_opening;
    // Called whenever the size of an open file has been asked for.
    std::function<void(const std::string& path)> m_sized;

    // --- arc::FileSystem ---
    std::unique_ptr<arc::File> Open(const std::string& path, arc::Access access) override;
    arc::FileQuery Query(const std::string& path) override;
    bool List(const std::string& folder, const std::string& wildcard,
              std::vector<arc::FolderEntry>& entries) override;
    bool CreateFolder(const std::string& path) override;
    bool RemoveFolder(const std::string& path) override;
    bool RemoveFile(const std::string& path) override;
    bool Move(const std::string& from, const std::string& to) override;
    bool SetAttributes(const std::string& path, std::uint32_t attributes) override;
    std::string Absolute(const std::string& path) override;
    std::string Identity(const std::string& path) override;
    std::optional<arc::DiskSpace> Space(const std::string& folder) override;

protected:
    std::recursive_mutex m_mutex; // held in every call

private:
    class MemoryFile;

    static std::string Full(const std::string& path);
    static std::string Key(const std::string& path);
    bool Fails();
    Node& Make(const std::string& path, std::uint32_t attributes);
    arc::DiskSpace SpaceOf(char drive) const;

    std::map<char, arc::DiskSpace> m_drives;              // as they are empty
    std::map<std::string, std::shared_ptr<Node>> m_nodes; // by folded full path
    int m_failFrom = 0;
    int m_failTimes = 0;
};
