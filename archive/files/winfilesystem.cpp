#include "archive/files/filesystem.h"

#include "archive/files/bufferedfile.h"
#include "archive/files/filenames.h"
#include "archive/files/pathsafety.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

namespace arc
{
namespace
{
// A drive without a disk answers with an error, not with a box of the system.
class QuietErrors
{
public:
    QuietErrors()
    {
        SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &m_previous);
    }
    ~QuietErrors()
    {
        SetThreadErrorMode(m_previous, nullptr);
    }
    QuietErrors(const QuietErrors&) = delete;
    QuietErrors& operator=(const QuietErrors&) = delete;

private:
    DWORD m_previous = 0;
};

class Handle
{
public:
    explicit Handle(HANDLE handle) : m_handle(handle)
    {
    }
    ~Handle()
    {
        Close();
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    bool IsValid() const
    {
        return m_handle != INVALID_HANDLE_VALUE;
    }
    HANDLE Get() const
    {
        return m_handle;
    }
    bool Close()
    {
        const HANDLE handle = std::exchange(m_handle, INVALID_HANDLE_VALUE);
        return handle == INVALID_HANDLE_VALUE || CloseHandle(handle);
    }

private:
    HANDLE m_handle;
};

LocalTime FromFileTime(const FILETIME& time)
{
    SYSTEMTIME utc{};
    SYSTEMTIME local{};
    LocalTime result;
    if (FileTimeToSystemTime(&time, &utc) && SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local))
    {
        result = {local.wYear, local.wMonth - 1, local.wDay, local.wHour, local.wMinute, local.wSecond};
    }
    return result;
}

bool ToFileTime(const LocalTime& time, FILETIME& result)
{
    SYSTEMTIME local{};
    local.wYear = static_cast<WORD>(time.year);
    local.wMonth = static_cast<WORD>(time.month + 1);
    local.wDay = static_cast<WORD>(time.day);
    local.wHour = static_cast<WORD>(time.hour);
    local.wMinute = static_cast<WORD>(time.minute);
    local.wSecond = static_cast<WORD>(time.second);
    SYSTEMTIME utc{};
    return TzSpecificLocalTimeToSystemTime(nullptr, &local, &utc) && SystemTimeToFileTime(&utc, &result);
}

std::uint64_t Joined(DWORD high, DWORD low)
{
    return static_cast<std::uint64_t>(high) << 32 | low;
}

class WindowsFile : public RawFile
{
public:
    explicit WindowsFile(HANDLE handle) : m_handle(handle)
    {
    }

    std::optional<std::size_t> ReadAt(std::uint64_t position, void* buffer, std::size_t bytes) override
    {
        DWORD got = 0;
        if (!GoTo(position) || !ReadFile(m_handle.Get(), buffer, static_cast<DWORD>(bytes), &got, nullptr))
        {
            return std::nullopt;
        }
        m_position = position + got;
        return got;
    }

    bool WriteAt(std::uint64_t position, const void* data, std::size_t bytes) override
    {
        // A full disk may take a part and still succeed.
        DWORD written = 0;
        if (!GoTo(position) ||
            !WriteFile(m_handle.Get(), data, static_cast<DWORD>(bytes), &written, nullptr) ||
            written != bytes)
        {
            return false;
        }
        m_position = position + bytes;
        return true;
    }

    std::optional<std::uint64_t> Size() override
    {
        LARGE_INTEGER size{};
        if (!GetFileSizeEx(m_handle.Get(), &size))
        {
            return std::nullopt;
        }
        return static_cast<std::uint64_t>(size.QuadPart);
    }

    bool FlushToDisk() override
    {
        return FlushFileBuffers(m_handle.Get());
    }

    bool SetWritten(const LocalTime& time) override
    {
        FILETIME written{};
        return ToFileTime(time, written) && SetFileTime(m_handle.Get(), nullptr, nullptr, &written);
    }

    bool Close() override
    {
        return m_handle.Close();
    }

private:
    // Most calls follow each other, and need no call of the system to go where it is already.
    bool GoTo(std::uint64_t position)
    {
        if (position == std::exchange(m_position, Nowhere))
        {
            return true;
        }
        LARGE_INTEGER to{};
        to.QuadPart = static_cast<LONGLONG>(position);
        return SetFilePointerEx(m_handle.Get(), to, nullptr, FILE_BEGIN);
    }

    static constexpr std::uint64_t Nowhere = std::numeric_limits<std::uint64_t>::max();

    Handle m_handle;
    std::uint64_t m_position = 0; // of the handle; Nowhere after an error
};

// Reads past the cache, for which position, length and memory have to be whole sectors.
class UncachedFile : public WindowsFile
{
public:
    using WindowsFile::WindowsFile;

    std::optional<std::size_t> ReadAt(std::uint64_t position, void* buffer, std::size_t bytes) override
    {
        if (!m_sectors)
        {
            m_sectors.reset(static_cast<unsigned char*>(::operator new(Piece, std::align_val_t(Sector))));
        }
        std::size_t done = 0;
        while (done < bytes)
        {
            const std::size_t before = (position + done) % Sector;
            const std::size_t whole = std::min((before + bytes - done + Sector - 1) / Sector * Sector, Piece);
            const auto got = WindowsFile::ReadAt(position + done - before, m_sectors.get(), whole);
            if (!got)
            {
                return std::nullopt;
            }
            const std::size_t there = *got > before ? std::min(*got - before, bytes - done) : 0;
            std::memcpy(static_cast<unsigned char*>(buffer) + done, m_sectors.get() + before, there);
            done += there;
            if (*got < whole)
            {
                break;
            }
        }
        return done;
    }

private:
    static constexpr std::size_t Sector = 4096; // or a part of it
    static constexpr std::size_t Piece = BufferedFile::WindowSize + Sector;

    struct Free
    {
        void operator()(unsigned char* bytes) const
        {
            ::operator delete(bytes, std::align_val_t(Sector));
        }
    };
    std::unique_ptr<unsigned char, Free> m_sectors;
};

// Both WIN32_FIND_DATA and WIN32_FILE_ATTRIBUTE_DATA name these fields alike.
template <class FindData> FileInfo Info(const FindData& data)
{
    FileInfo info;
    info.size = Joined(data.nFileSizeHigh, data.nFileSizeLow);
    info.attributes = data.dwFileAttributes;
    info.written = FromFileTime(data.ftLastWriteTime);
    info.stamp = static_cast<std::int64_t>(
        Joined(data.ftLastWriteTime.dwHighDateTime, data.ftLastWriteTime.dwLowDateTime));
    return info;
}

class SearchHandle
{
public:
    explicit SearchHandle(HANDLE handle) : m_handle(handle)
    {
    }
    ~SearchHandle()
    {
        if (m_handle != INVALID_HANDLE_VALUE)
        {
            FindClose(m_handle);
        }
    }
    SearchHandle(const SearchHandle&) = delete;
    SearchHandle& operator=(const SearchHandle&) = delete;
    HANDLE Get() const
    {
        return m_handle;
    }

private:
    HANDLE m_handle;
};

class WindowsFiles : public FileSystem
{
public:
    std::unique_ptr<File> Open(const std::string& path, Access access) override
    {
        const QuietErrors quiet;
        const bool writes = !OnlyReads(access);
        const DWORD disposition = access == Access::CreateNew ? CREATE_NEW
                                  : access == Access::Replace ? CREATE_ALWAYS
                                                              : OPEN_EXISTING;
        const auto open = [&](DWORD flags) {
            return CreateFileA(path.c_str(), GENERIC_READ | (writes ? GENERIC_WRITE : 0),
                               SharesReading(access) ? FILE_SHARE_READ : 0, nullptr, disposition,
                               FILE_ATTRIBUTE_NORMAL | flags, nullptr);
        };
        HANDLE handle = INVALID_HANDLE_VALUE;
        std::unique_ptr<RawFile> file;
        if (access == Access::ReadMedium)
        {
            handle = open(FILE_FLAG_NO_BUFFERING);
            if (handle != INVALID_HANDLE_VALUE)
            {
                file = std::make_unique<UncachedFile>(handle);
            }
        }
        if (!file)
        {
            handle = open(0);
            if (handle == INVALID_HANDLE_VALUE)
            {
                return nullptr;
            }
            file = std::make_unique<WindowsFile>(handle);
        }
        // A device or a pipe is no file, whatever its name looked like.
        if (GetFileType(handle) != FILE_TYPE_DISK)
        {
            return nullptr;
        }
        return std::make_unique<BufferedFile>(std::move(file));
    }

    FileQuery Query(const std::string& path) override
    {
        const QuietErrors quiet;
        WIN32_FILE_ATTRIBUTE_DATA data{};
        if (!GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data))
        {
            const DWORD error = GetLastError();
            return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND ? FileQuery::Absent()
                                                                                  : FileQuery::Unknown();
        }
        return Info(data);
    }

    bool List(const std::string& folder, const std::string& wildcard,
              std::vector<FolderEntry>& entries) override
    {
        const QuietErrors quiet;
        WIN32_FIND_DATAA data{};
        const SearchHandle search(FindFirstFileExA(JoinPath(folder, wildcard).c_str(), FindExInfoBasic, &data,
                                                   FindExSearchNameMatch, nullptr,
                                                   FIND_FIRST_EX_LARGE_FETCH));
        if (search.Get() == INVALID_HANDLE_VALUE)
        {
            return GetLastError() == ERROR_FILE_NOT_FOUND;
        }
        do
        {
            const std::string name = data.cFileName;
            if (name != "." && name != "..")
            {
                entries.push_back({name, Info(data)});
            }
        } while (FindNextFileA(search.Get(), &data));
        return GetLastError() == ERROR_NO_MORE_FILES;
    }

    bool CreateFolder(const std::string& path) override
    {
        const QuietErrors quiet;
        return CreateDirectoryA(path.c_str(), nullptr);
    }

    bool RemoveFolder(const std::string& path) override
    {
        const QuietErrors quiet;
        return RemoveDirectoryA(path.c_str());
    }

    bool RemoveFile(const std::string& path) override
    {
        const QuietErrors quiet;
        return DeleteFileA(path.c_str());
    }

    bool Move(const std::string& from, const std::string& to) override
    {
        const QuietErrors quiet;
        return MoveFileA(from.c_str(), to.c_str());
    }

    bool SetAttributes(const std::string& path, std::uint32_t attributes) override
    {
        const QuietErrors quiet;
        return SetFileAttributesA(path.c_str(), attributes == 0 ? attribute::Normal : attributes);
    }

    std::string Absolute(const std::string& path) override
    {
        char full[MaxPathLength + 1];
        const DWORD length = GetFullPathNameA(path.c_str(), sizeof full, full, nullptr);
        return length > 0 && length < sizeof full ? std::string(full, length) : std::string();
    }

    std::string Identity(const std::string& path) override
    {
        const QuietErrors quiet;
        const Handle handle(CreateFileA(path.c_str(), 0,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                        OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
        BY_HANDLE_FILE_INFORMATION data{};
        if (!handle.IsValid() || !GetFileInformationByHandle(handle.Get(), &data))
        {
            return {};
        }
        return std::to_string(data.dwVolumeSerialNumber) + ":" +
               std::to_string(Joined(data.nFileIndexHigh, data.nFileIndexLow));
    }

    std::optional<DiskSpace> Space(const std::string& folder) override
    {
        const QuietErrors quiet;
        char root[MaxPathLength + 1];
        DWORD sectors = 0;
        DWORD sectorBytes = 0;
        DWORD freeClusters = 0;
        DWORD totalClusters = 0;
        if (!GetVolumePathNameA(folder.c_str(), root, sizeof root) ||
            !GetDiskFreeSpaceA(root, &sectors, &sectorBytes, &freeClusters, &totalClusters))
        {
            return std::nullopt;
        }
        return DiskSpace{static_cast<std::uint64_t>(sectors) * sectorBytes, freeClusters, totalClusters};
    }
};
} // namespace

FileSystem& WindowsFileSystem()
{
    static WindowsFiles files;
    return files;
}
} // namespace arc
