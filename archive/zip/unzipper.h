// Lists and extracts a zip file.
#pragma once

#include "archive/files/filesystem.h"
#include "archive/zip/zipdirectory.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <string>

namespace arc
{
class ZipFileFunctions;
} // namespace arc

// Owns the zip handle while a zip is open; the file system must outlive it. For one thread. Every operation
// answers whether it succeeded and shows nothing. A name that may not become a path below the destination
// fails its entry; no file that is not whole and of the right checksum is kept.
class CUnzipper
{
public:
    // An entry as it is shown: name and comment cut to what fits.
    struct EntryInfo
    {
        std::string name;    // at most 260 bytes
        std::string comment; // at most 255 bytes
        std::uint64_t size = 0;
        std::uint64_t packedSize = 0;
        arc::LocalTime time;
        std::uint32_t attributes = 0;
        bool folder = false;
    };
    // Called at least every 64 KiB and behind each entry, with the percentage of entries done, rounded up,
    // and the entry's name. False ends the work: the entry counts as failed.
    using Progress = std::function<bool(int percent, const std::string& name)>;

    explicit CUnzipper(arc::FileSystem& files);
    ~CUnzipper(); // closes
    CUnzipper(const CUnzipper&) = delete;
    CUnzipper& operator=(const CUnzipper&) = delete;

    // Reads and checks the whole directory (see ReadZipDirectory). The first entry is current; an empty zip
    // opens.
    bool OpenZip(const std::string& zipPath);
    void CloseZip();

    void SetOutputFolder(const std::string& folder);
    void SetProgress(Progress progress);

    bool IsOpen() const;
    std::uint64_t FileCount() const;
    std::uint64_t UnpackedBytes() const;
    // Copies the zip's comment, cut to size - 1 bytes and ended by NUL; false when no zip is open or size is
    // 0.
    bool GlobalComment(char* buffer, std::size_t size) const;

    bool GoToFirstEntry();
    bool GoToNextEntry();
    // Makes the entry with this stored name current, whatever the case of its letters; false leaves the
    // current one.
    bool LocateEntry(const std::string& storedName);
    bool CurrentEntryInfo(EntryInfo& info) const;

    // Extracts the current entry below the folder (by default the output folder), which is made when missing.
    // With ignorePath the stored folders are dropped. An existing file is replaced.
    bool UnzipCurrentEntry(const std::string& folder = {}, bool ignorePath = false);
    // Extracts all entries, stopping at the first failure. Before anything is written the disk must have room
    // for all. Two entries that are the same file on Windows are a failure.
    bool UnzipAll(const std::string& folder = {}, bool ignorePath = false);

    // The current entry's bytes; false when it is longer than the limit or not whole and of the right
    // checksum.
    bool ReadCurrentEntry(std::string& bytes, std::uint64_t limit);
    // Reads the current entry without keeping it: true when every byte is there and the checksum is right.
    bool CheckCurrentEntry();

private:
    bool ReadCurrentEntry(const std::function<bool(const void* data, std::size_t bytes)>& take,
                          std::size_t chunk);
    // names: of the files made so far, by SameFileKey, none of which may come again; null for a single entry.
    bool Extract(const std::string& folder, bool ignorePath, std::set<std::string>* names);
    bool MakeFolders(const std::string& folder, const std::string& relative);

    arc::FileSystem& m_files;
    std::unique_ptr<arc::ZipFileFunctions> m_functions; // of the open zip
    void* m_zip = nullptr;                              // handle of the zip library; null for an empty zip
    bool m_bOpen = false;
    arc::ZipDirectory m_directory;
    std::size_t m_nCurrent = 0; // index of the current entry; the count when there is none
    std::string m_strOutputFolder;
    std::string m_strKnownFolder; // last one found or made; no reparse point on its way
    Progress m_progress;
};
