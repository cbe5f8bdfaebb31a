// What archiving needs of a file system, behind one interface: the Windows implementation serves the module,
// one in memory serves the tests, which make any call of it fail. Paths are narrow text with "\\" as
// separator.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace arc
{
/// Bits of a file's attributes, with the values that Windows gives them.
namespace attribute
{
inline constexpr std::uint32_t ReadOnly = 0x01;
inline constexpr std::uint32_t Hidden = 0x02;
inline constexpr std::uint32_t System = 0x04;
inline constexpr std::uint32_t Folder = 0x10;
inline constexpr std::uint32_t Archive = 0x20;
inline constexpr std::uint32_t Normal = 0x80; ///< "no attributes": reported only when no other bit is set
inline constexpr std::uint32_t Reparse = 0x400;
inline constexpr std::uint32_t Settable = ReadOnly | Hidden | System | Archive;
} // namespace attribute

/// A moment in local time.
struct LocalTime
{
    int year = 1980;
    int month = 0; ///< 0 to 11
    int day = 1;
    int hour = 0;
    int minute = 0;
    int second = 0;

    bool operator==(const LocalTime&) const = default;
};

struct FileInfo
{
    std::uint64_t size = 0; ///< bytes
    std::uint32_t attributes = 0;
    LocalTime written;
    std::int64_t stamp = 0; ///< time of the last write as the platform has it: 100 ns since 1601

    bool IsFolder() const
    {
        return (attributes & attribute::Folder) != 0;
    }
    bool IsReparsePoint() const
    {
        return (attributes & attribute::Reparse) != 0;
    }
};

/// What the file system says of a path: something is there, nothing is, or it could not be asked. Who goes on
/// because nothing is there asks IsAbsent.
class FileQuery
{
public:
    FileQuery(FileInfo info) : m_info(info)
    {
    }
    static FileQuery Absent()
    {
        return FileQuery(true);
    }
    static FileQuery Unknown()
    {
        return FileQuery(false);
    }

    explicit operator bool() const
    {
        return m_info.has_value();
    }
    bool IsAbsent() const
    {
        return m_bAbsent;
    }
    FileInfo* operator->()
    {
        return &*m_info;
    }
    const FileInfo* operator->() const
    {
        return &*m_info;
    }
    const FileInfo& operator*() const
    {
        return *m_info;
    }

private:
    explicit FileQuery(bool absent) : m_bAbsent(absent)
    {
    }

    std::optional<FileInfo> m_info;
    bool m_bAbsent = false;
};

struct FolderEntry
{
    std::string name; ///< without folder
    FileInfo info;
};

struct DiskSpace
{
    std::uint64_t bytesPerCluster = 0;
    std::uint64_t freeClusters = 0;
    std::uint64_t totalClusters = 0;

    /// Bytes that can be written; the capacity of a volume.
    std::uint64_t FreeBytes() const
    {
        return freeClusters * bytesPerCluster;
    }
};

/// An open file. Closing happens in the destructor at the latest; who wrote calls Close() and looks at its
/// answer.
class File
{
public:
    virtual ~File() = default;

    /// Bytes read, fewer than asked for only at the end of the file; nothing on a read error.
    virtual std::optional<std::size_t> Read(void* buffer, std::size_t bytes) = 0;
    /// True when all bytes were taken. An error may show only at FlushToDisk or Close.
    virtual bool Write(const void* data, std::size_t bytes) = 0;
    virtual bool Seek(std::uint64_t position) = 0;
    virtual std::uint64_t Position() const = 0;
    virtual std::optional<std::uint64_t> Size() = 0;
    /// Everything written so far is on the medium when this answers true.
    virtual bool FlushToDisk() = 0;
    /// Gives the file this time of last writing; to be called behind the last write.
    virtual bool SetWritten(const LocalTime& time) = 0;
    /// False when anything written was lost. Later calls answer true and do nothing.
    virtual bool Close() = 0;
};

enum class Access
{
    ReadAlone,  ///< existing file; nobody else may open it meanwhile
    ReadShared, ///< existing file; others may read it
    ReadMedium, ///< as ReadShared; past the system's cache where that is possible
    CreateNew,  ///< written from empty; fails when there is anything of the name; normal attributes
    Replace,    ///< written from empty, an existing file of the name is replaced; normal attributes
    Update      ///< existing file, read and written
};

inline bool SharesReading(Access access)
{
    return access == Access::ReadShared || access == Access::ReadMedium;
}
inline bool OnlyReads(Access access)
{
    return access == Access::ReadAlone || SharesReading(access);
}

/// No call throws or shows anything; the objects hold no state of their own and may be used from any thread.
class FileSystem
{
public:
    virtual ~FileSystem() = default;

    /// Null when the file cannot be opened so.
    virtual std::unique_ptr<File> Open(const std::string& path, Access access) = 0;
    virtual FileQuery Query(const std::string& path) = 0;
    /// Appends what the folder holds and the wildcard matches, in the order of the platform, without "." and
    /// "..". False when the folder cannot be read; no match is no error. A match may be looser than
    /// MatchesWildcard.
    virtual bool List(const std::string& folder, const std::string& wildcard,
                      std::vector<FolderEntry>& entries) = 0;

    virtual bool CreateFolder(const std::string& path) = 0; ///< the last folder of the path only
    virtual bool RemoveFolder(const std::string& path) = 0; ///< an empty one
    virtual bool RemoveFile(const std::string& path) = 0;
    virtual bool Move(const std::string& from, const std::string& to) = 0; ///< never onto an existing file
    virtual bool SetAttributes(const std::string& path, std::uint32_t attributes) = 0;

    /// The full path with drive letter, dots resolved; empty when that fails or exceeds 260 characters.
    virtual std::string Absolute(const std::string& path) = 0;
    /// What tells the file or folder from every other, whatever path leads to it; empty when it cannot be
    /// asked. A link stands for what it leads to.
    virtual std::string Identity(const std::string& path) = 0;
    /// Space on the disk that holds the folder.
    virtual std::optional<DiskSpace> Space(const std::string& folder) = 0;
};

/// The file system of this machine (Windows only).
FileSystem& WindowsFileSystem();
} // namespace arc
