#include "suite/util/velini.h"

#include "suite/util/inifile.h"
#include "suite/util/velpath.h"

#include <mutex>
#include <optional>
#include <utility>

namespace
{
constexpr DWORD lockPatience = 5000;       // milliseconds to wait for another writer
constexpr ULONGLONG youngTicks = 20000000; // two seconds, the coarsest time stamp of a file system

class FileHandle
{
public:
    explicit FileHandle(HANDLE handle) : m_handle(handle)
    {
    }
    ~FileHandle()
    {
        Close();
    }
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;
    explicit operator bool() const
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

// What tells a file from its successor.
struct Stamp
{
    ULONGLONG written = 0; // ticks of 100 ns
    ULONGLONG size = 0;
    bool operator==(const Stamp&) const = default;
};

std::optional<Stamp> StampOf(LPCTSTR path)
{
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    if (!GetFileAttributesExA(path, GetFileExInfoStandard, &data) ||
        (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
    {
        return std::nullopt;
    }
    const auto join = [](DWORD high, DWORD low) { return static_cast<ULONGLONG>(high) << 32 | low; };
    return Stamp{join(data.ftLastWriteTime.dwHighDateTime, data.ftLastWriteTime.dwLowDateTime),
                 join(data.nFileSizeHigh, data.nFileSizeLow)};
}

// The file's text; nothing when it cannot be read whole or is too long to be a settings file.
std::optional<std::string> ReadText(LPCTSTR path)
{
    const FileHandle file(CreateFileA(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    LARGE_INTEGER size = {};
    if (!file || GetFileType(file.Get()) != FILE_TYPE_DISK || !GetFileSizeEx(file.Get(), &size) ||
        size.QuadPart > static_cast<LONGLONG>(inimaxFile))
    {
        return std::nullopt;
    }
    std::string text(static_cast<std::size_t>(size.QuadPart), '\0');
    DWORD read = 0;
    if (!ReadFile(file.Get(), text.data(), static_cast<DWORD>(text.size()), &read, nullptr))
    {
        return std::nullopt;
    }
    text.resize(read);
    return text;
}

// The settings file of this process and what was last read from it.
class SettingsStore
{
public:
    CString Path()
    {
        const std::lock_guard lock(m_mutex);
        return CurrentPath();
    }

    void SetPath(LPCTSTR path)
    {
        const std::lock_guard lock(m_mutex);
        m_override = path;
    }

    std::optional<std::string> Find(LPCTSTR section, LPCTSTR key)
    {
        if (section == nullptr || key == nullptr)
        {
            return std::nullopt;
        }
        const std::lock_guard lock(m_mutex);
        Refresh();
        return m_file.Find(section, key);
    }

    bool Write(LPCTSTR section, LPCTSTR key, LPCTSTR value);

private:
    CString CurrentPath() const;
    void Refresh();

    std::mutex m_mutex;
    CString m_override;
    CString m_path; // of m_file
    std::optional<Stamp> m_stamp; // of m_file; none: there was no file
    bool m_bCurrent = false;      // m_file need not be read again as long as the stamp stays
    iniCFile m_file;
};

SettingsStore& Store()
{
    static SettingsStore store;
    return store;
}

CString SettingsStore::CurrentPath() const
{
    CString path(m_override);
    if (path.IsEmpty())
    {
        path.GetEnvironmentVariable("VELTRIX_INI");
    }
    if (path.IsEmpty())
    {
        CString common; // application data
        if (!common.GetEnvironmentVariable("ProgramData") || common.IsEmpty())
        {
            common = "C:\\ProgramData";
        }
        path = velWithBackslash(common) + "Veltrix\\veltrix.ini";
    }
    return path;
}

void SettingsStore::Refresh()
{
    const CString path = CurrentPath();
    const std::optional<Stamp> stamp = StampOf(path);
    FILETIME now = {};
    GetSystemTimeAsFileTime(&now);
    const ULONGLONG ticks = static_cast<ULONGLONG>(now.dwHighDateTime) << 32 | now.dwLowDateTime;

    // A file this young may change once more within the same time stamp.
    const bool settled = !stamp || stamp->written + youngTicks < ticks;
    if (m_bCurrent && path == m_path && stamp == m_stamp)
    {
        return;
    }
    m_path = path;
    m_stamp = stamp;
    m_bCurrent = settled;
    const std::optional<std::string> text = stamp ? ReadText(path) : std::nullopt;
    m_file = text ? iniCFile::Parse(*text).value_or(iniCFile()) : iniCFile();
}

// Writes the text beside the file and puts it in the file's place once it is on the disk. The name is always
// the same: under the writers' lock it is free, or the rest of a writer that was killed.
bool ReplaceText(const CString& path, const std::string& text)
{
    const CString temporary = path + ".tmp";
    FileHandle file(CreateFileA(temporary, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file)
    {
        return false;
    }
    DWORD written = 0;
    bool good = WriteFile(file.Get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr) &&
                written == text.size() && FlushFileBuffers(file.Get());
    good = file.Close() && good;

    const DWORD start = GetTickCount();
    while (good && !MoveFileExA(temporary, path, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
    {
        // A reader may hold the file for the moment of its reading.
        const DWORD error = GetLastError();
        good = (error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION) &&
               GetTickCount() - start < lockPatience;
        Sleep(good ? 5 : 0);
    }
    if (!good)
    {
        DeleteFileA(temporary);
    }
    return good;
}

// The one writer among all processes. The lock goes with its holder, however that ends.
HANDLE LockForWriting(const CString& path)
{
    const CString lockPath = path + ".lock";
    const DWORD start = GetTickCount();
    for (;;)
    {
        const HANDLE handle = CreateFileA(lockPath, GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS,
                                          FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
        const DWORD error = GetLastError();
        // Access is also denied while the last holder's lock file is about to vanish.
        const bool busy = error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED;
        if (handle != INVALID_HANDLE_VALUE || !busy || GetTickCount() - start >= lockPatience)
        {
            return handle;
        }
        Sleep(5);
    }
}

bool SettingsStore::Write(LPCTSTR section, LPCTSTR key, LPCTSTR value)
{
    if (section == nullptr || key == nullptr)
    {
        return false;
    }
    const std::lock_guard lock(m_mutex);
    const CString path = CurrentPath();
    CreateDirectoryA(strFilename(path).GetPath(), nullptr);
    const DWORD attributes = GetFileAttributesA(path);
    const bool exists = attributes != INVALID_FILE_ATTRIBUTES;
    if (exists && (attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY)) != 0)
    {
        return false;
    }
    const FileHandle writer(LockForWriting(path));
    if (!writer)
    {
        return false;
    }

    // Read anew under the lock: another process may have written since.
    iniCFile file;
    if (GetFileAttributesA(path) != INVALID_FILE_ATTRIBUTES)
    {
        const std::optional<std::string> text = ReadText(path);
        std::optional<iniCFile> parsed = text ? iniCFile::Parse(*text) : std::nullopt;
        if (!parsed)
        {
            return false;
        }
        file = std::move(*parsed);
    }
    const std::string before = file.Text();
    if (value == nullptr)
    {
        file.Remove(section, key);
    }
    else if (!file.Set(section, key, value))
    {
        return false;
    }
    const std::string after = file.Text();
    m_bCurrent = false;
    return after == before || ReplaceText(path, after);
}

CString SectionName(UINT nSectionID)
{
    CString name;
    VERIFY(name.LoadString(nSectionID));
    return name;
}
} // namespace

CString velGetIniString(LPCTSTR lpszSection, LPCTSTR lpszKey, LPCTSTR lpszDefault)
{
    const std::optional<std::string> value = Store().Find(lpszSection, lpszKey);
    return value ? CString(value->c_str()) : CString(lpszDefault);
}

CString velGetIniString(UINT nSectionID, LPCTSTR lpszKey, LPCTSTR lpszDefault)
{
    return velGetIniString(SectionName(nSectionID), lpszKey, lpszDefault);
}

int velGetIniInt(LPCTSTR lpszSection, LPCTSTR lpszKey, int nDefault)
{
    const std::optional<std::string> value = Store().Find(lpszSection, lpszKey);
    return value ? iniParseInt(*value).value_or(nDefault) : nDefault;
}

int velGetIniInt(UINT nSectionID, LPCTSTR lpszKey, int nDefault)
{
    return velGetIniInt(SectionName(nSectionID), lpszKey, nDefault);
}

BOOL velSetIniString(LPCTSTR lpszSection, LPCTSTR lpszKey, LPCTSTR lpszValue)
{
    return Store().Write(lpszSection, lpszKey, lpszValue);
}

BOOL velSetIniString(UINT nSectionID, LPCTSTR lpszKey, LPCTSTR lpszValue)
{
    return velSetIniString(SectionName(nSectionID), lpszKey, lpszValue);
}

BOOL velSetIniInt(LPCTSTR lpszSection, LPCTSTR lpszKey, int nValue)
{
    return velSetIniString(lpszSection, lpszKey, std::to_string(nValue).c_str());
}

CString velenv(LPCTSTR lpszKey, LPCTSTR lpszDefault)
{
    return velGetIniString("Environment", lpszKey, lpszDefault);
}

void velSetIniFile(LPCTSTR lpszPath)
{
    Store().SetPath(lpszPath);
}

CString velGetIniFile()
{
    return Store().Path();
}

BOOL IsViewingSoftware()
{
    return velGetIniInt("Environment", "Viewer", 0) != 0;
}
