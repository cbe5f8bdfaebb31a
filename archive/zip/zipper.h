// Writes a zip file from single files, folder trees and pattern lists.
#pragma once

#include "archive/files/filesystem.h"
#include "archive/files/fileset.h"
#include "archive/zip/parallel.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace arc
{
class ZipFileFunctions;
struct PackedEntry;

/// Bytes of one read of a source file and one write into the zip.
inline constexpr std::size_t ZipChunk = 2048;
} // namespace arc

/// Owns the zip handle while a zip is open; the file system must outlive it. For one thread, which alone
/// writes; threads of its own may pack for it, and none is left behind by any operation. Every operation
/// answers whether it succeeded, shows nothing and throws nothing but std::bad_alloc. After any failed write
/// CloseZip answers false: such a file is no archive.
class CZipper
{
public:
    /// Called at least every 64 KiB and behind each file, or every 50 ms while other threads pack, with the
    /// percentage of all bytes to add (0 to 100, never less than before) and the name of the file under way.
    /// False ends the work: the file counts as failed.
    using Progress = std::function<bool(int percent, const std::string& name)>;

    explicit CZipper(arc::FileSystem& files);
    ~CZipper(); ///< closes
    CZipper(const CZipper&) = delete;
    CZipper& operator=(const CZipper&) = delete;

    /// Creates the zip, or opens it to add behind its contents when append is given and it exists. An open
    /// zip is closed first. Absolute paths of files are stored relative to the root folder; without one that
    /// is the zip's own folder. onlyNew: fails where there is anything of the zip's name.
    bool OpenZip(const std::string& zipPath, const std::string& rootFolder = {}, bool append = false,
                 bool onlyNew = false);
    /// Stores the file under its path behind the root, or under its bare name with ignorePath. False unless
    /// every byte that the file had when it was opened is stored.
    bool AddFileToZip(const std::string& path, bool ignorePath = false);
    /// Stores the folder and all below it; names that begin with "." are skipped.
    bool AddFolderToZip(const std::string& folder, bool ignorePath = false);
    /// Adds every file that the patterns match ("*", "?" = exactly one character). A pattern without a folder
    /// looks in baseFolder, one with a folder in that. A file that several patterns match is stored once. No
    /// match is no error, a folder that cannot be read is. moreFiles: paths of further files, which must
    /// exist, added behind those.
    bool AddPatternList(const std::string& arguments, const std::string& baseFolder = {},
                        bool ignorePath = false, const std::vector<std::string>& moreFiles = {});
    /// Writes the central directory and has everything on the medium when it answers true. False when no zip
    /// is open.
    bool CloseZip();

    /// Stores one file in a zip beside it, of the same name with the extension "zip".
    static bool ZipFile(arc::FileSystem& files, const std::string& path);

    /// Nothing is reported unless a total is known: AddPatternList sets it for what it adds.
    void SetProgress(Progress progress);
    /// How AddPatternList spreads its work. The zip is the same but for the packed bytes and
    /// their number.
    void SetParallel(const arc::Parallel& parallel);

    /// Stored names, sizes and times, as they were stored, of the files that were stored whole since the zip
    /// was opened, in their order.
    const std::vector<arc::PresentFile>& Stored() const;
    /// Since the zip was opened.
    std::uint32_t FilesAdded() const;
    std::uint32_t FoldersAdded() const;
    std::uint32_t BytesAdded() const; ///< uncompressed

private:
    bool StoredName(const std::string& path, bool ignorePath, std::string& stored) const;
    /// packed: what is written is packed already; the library adds no internal attributes of its own then.
    bool OpenEntry(const std::string& stored, const arc::FileInfo& info, std::uint16_t internalAttributes = 0,
                   bool packed = false);
    bool AddTree(const std::string& folder, const std::string& stored, bool ignorePath, int depth);
    bool StoreFile(const std::string& path, const std::string& stored);
    bool StoreAll(const std::vector<std::string>& paths, bool ignorePath);
    bool StorePacked(const arc::PackedEntry& packed, const std::string& stored);
    bool Report(const std::string& name);

    arc::FileSystem& m_files;
    std::unique_ptr<arc::ZipFileFunctions> m_functions; ///< of the open zip
    void* m_zip = nullptr;                              ///< handle of the zip library
    std::string m_strZipPath;                           ///< absolute
    std::string m_strRoot;                              ///< ends in a separator
    std::uint32_t m_nFiles = 0;
    std::uint32_t m_nFolders = 0;
    std::uint32_t m_nBytes = 0;
    std::vector<arc::PresentFile> m_stored;
    bool m_bFailed = false; ///< something could not be written: the zip is spoilt
    arc::Parallel m_parallel;
    Progress m_progress;
    std::uint64_t m_nProgressDone = 0;
    std::uint64_t m_nProgressTotal = 0; ///< 0 = no report
    int m_nPercent = 0;
};
