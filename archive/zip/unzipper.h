// Lists and extracts a zip file.
#pragma once

#include "archive/files/filesystem.h"
#include "archive/zip/parallel.h"
#include "archive/zip/codec.h"
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

/// Owns the zip handle while a zip is open; the file system must outlive it. For one thread. Every operation
/// answers whether it succeeded, shows nothing and throws nothing but std::bad_alloc. A name that may not
/// become a path below the destination fails its entry; no file that is not whole and of the right checksum
/// is kept.
class CUnzipper
{
public:
    /// An entry as it is shown: name and comment cut to what fits.
    struct EntryInfo
    {
        std::string name;    ///< at most 260 bytes
        std::string comment; ///< at most 255 bytes
        std::uint64_t size = 0;
        std::uint64_t packedSize = 0;
        arc::LocalTime time;
        std::uint32_t attributes = 0;
        bool folder = false;
    };
    /// Called at least every 64 KiB and behind each entry, or every 50 ms while other threads unpack, with
    /// the percentage of entries done, rounded up, and an entry's name. False ends the work: the entry counts
    /// as failed.
    using Progress = std::function<bool(int percent, const std::string& name)>;

    explicit CUnzipper(arc::FileSystem& files);
    ~CUnzipper(); ///< closes
    CUnzipper(const CUnzipper&) = delete;
    CUnzipper& operator=(const CUnzipper&) = delete;

    /// Reads and checks the whole directory (see ReadZipDirectory). The first entry is current; an empty zip
    /// opens. reading: ReadShared, or ReadMedium for who wants to know what the disk holds.
    bool OpenZip(const std::string& zipPath, arc::Access reading = arc::Access::ReadShared);
    void CloseZip();

    void SetOutputFolder(const std::string& folder);
    void SetProgress(Progress progress);
    /// How UnzipAll and CheckAll spread their work.
    void SetParallel(const arc::Parallel& parallel);

    /// Entries of the open zip, folders included; 0 when none is open.
    std::uint64_t FileCount() const;
    /// Copies the zip's comment, cut to size - 1 bytes and ended by NUL; false when no zip is open or size is
    /// 0.
    bool GlobalComment(char* buffer, std::size_t size) const;

    /// False, with no current entry, behind the last one.
    bool GoToFirstEntry();
    bool GoToNextEntry();
    /// Makes the entry with this stored name current, whatever the case of its letters; false leaves the
    /// current one.
    bool LocateEntry(const std::string& storedName);
    bool CurrentEntryInfo(EntryInfo& info) const;

    /// Extracts the current entry below the folder (by default the output folder), which is made when
    /// missing. With ignorePath the stored folders are dropped. An existing file is replaced.
    bool UnzipCurrentEntry(const std::string& folder = {}, bool ignorePath = false);
    /// Extracts all entries, stopping at a failure. Before anything is written the disk must have room for
    /// all. Two entries that are the same file on Windows are a failure.
    bool UnzipAll(const std::string& folder = {}, bool ignorePath = false);

    /// The current entry's bytes; false when it is longer than the limit or not whole and of the right
    /// checksum.
    bool ReadCurrentEntry(std::string& bytes, std::uint64_t limit);
    /// Reads the current entry without keeping it: true when every byte is there and the checksum is right.
    bool CheckCurrentEntry();
    /// The same for all entries.
    bool CheckAll();

private:
    bool ReadCurrentEntry(const std::function<bool(const void* data, std::size_t bytes)>& take,
                          std::size_t chunk);
    /// The path of the current entry's file below the folder, whose folders are made; empty for a folder,
    /// which is made, and nothing for an entry that may not be extracted. names: of the files so far, by
    /// SameFileKey, none of which may come again; null for a single entry.
    std::optional<std::string> Prepare(const std::string& folder, bool ignorePath,
                                       std::set<std::string>* names);
    bool WriteCurrentEntry(const std::string& path);
    bool Extract(const std::string& folder, bool ignorePath, std::set<std::string>* names);
    /// Has worker threads unpack all entries that fit into memory and the calling thread the others. take
    /// gets the ones, whole, on any thread; stream, with its entry the current one, the others. Nothing when
    /// there are no threads to be had.
    std::optional<bool> UnpackParallel(
        const std::function<bool(std::size_t index, arc::ByteSpan contents)>& take,
        const std::function<bool()>& stream);
    bool Report(std::size_t entriesDone);
    bool MakeFolders(const std::string& folder, const std::string& relative);

    arc::FileSystem& m_files;
    std::unique_ptr<arc::ZipFileFunctions> m_functions; ///< of the open zip
    void* m_zip = nullptr;                              ///< handle of the zip library; null for an empty zip
    bool m_bOpen = false;
    arc::ZipDirectory m_directory;
    std::size_t m_nCurrent = 0; ///< index of the current entry; the count when there is none
    std::string m_strZipPath;   ///< absolute
    arc::Access m_reading = arc::Access::ReadShared;
    arc::Parallel m_parallel;
    std::size_t m_nDone = 0; ///< entries behind the one that is read now, for its percentage
    std::string m_strOutputFolder;
    std::string m_strKnownFolder; ///< last one found or made; no reparse point on its way
    Progress m_progress;
};
