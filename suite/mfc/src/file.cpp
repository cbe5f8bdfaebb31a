#include "afx.h"

#include <cstring>

IMPLEMENT_DYNAMIC(CFile, CObject)

const HANDLE CFile::hFileNull = INVALID_HANDLE_VALUE;

namespace
{
CString FullPath(LPCTSTR lpszFileName)
{
    CString path;
    const DWORD size = GetFullPathNameA(lpszFileName, 0, nullptr, nullptr);
    if (size == 0)
    {
        return CString(lpszFileName);
    }
    const DWORD length =
        GetFullPathNameA(lpszFileName, size, path.GetBuffer(static_cast<int>(size)), nullptr);
    path.ReleaseBuffer(length < size ? static_cast<int>(length) : 0);
    return path;
}

DWORD ShareMode(UINT nOpenFlags)
{
    switch (nOpenFlags & 0x70)
    {
    case CFile::shareDenyWrite:
        return FILE_SHARE_READ;
    case CFile::shareDenyRead:
        return FILE_SHARE_WRITE;
    case CFile::shareDenyNone:
        return FILE_SHARE_READ | FILE_SHARE_WRITE;
    default:
        return 0;
    }
}

DWORD Access(UINT nOpenFlags)
{
    switch (nOpenFlags & 3)
    {
    case CFile::modeRead:
        return GENERIC_READ;
    case CFile::modeWrite:
        return GENERIC_WRITE;
    default:
        return GENERIC_READ | GENERIC_WRITE;
    }
}

DWORD Disposition(UINT nOpenFlags)
{
    if ((nOpenFlags & CFile::modeCreate) == 0)
    {
        return OPEN_EXISTING;
    }
    return (nOpenFlags & CFile::modeNoTruncate) != 0 ? OPEN_ALWAYS : CREATE_ALWAYS;
}

DWORD Hints(UINT nOpenFlags)
{
    DWORD flags = FILE_ATTRIBUTE_NORMAL;
    flags |= (nOpenFlags & CFile::osNoBuffer) != 0 ? FILE_FLAG_NO_BUFFERING : 0;
    flags |= (nOpenFlags & CFile::osWriteThrough) != 0 ? FILE_FLAG_WRITE_THROUGH : 0;
    flags |= (nOpenFlags & CFile::osRandomAccess) != 0 ? FILE_FLAG_RANDOM_ACCESS : 0;
    flags |= (nOpenFlags & CFile::osSequentialScan) != 0 ? FILE_FLAG_SEQUENTIAL_SCAN : 0;
    return flags;
}

[[noreturn]] void ThrowLastError(LPCTSTR lpszFileName)
{
    CFileException::ThrowOsError(static_cast<LONG>(GetLastError()), lpszFileName);
}

ULONGLONG Join(DWORD high, DWORD low)
{
    return static_cast<ULONGLONG>(high) << 32 | low;
}

void CopyStatus(CFileStatus& rStatus, LPCTSTR lpszFileName, const WIN32_FILE_ATTRIBUTE_DATA& data)
{
    lstrcpynA(rStatus.m_szFullName, FullPath(lpszFileName), MAX_PATH);
    rStatus.m_attribute = data.dwFileAttributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_NORMAL);
    rStatus.m_size = Join(data.nFileSizeHigh, data.nFileSizeLow);
    rStatus.m_ctime = CTime(data.ftCreationTime);
    rStatus.m_mtime = CTime(data.ftLastWriteTime);
    rStatus.m_atime = CTime(data.ftLastAccessTime);
}
} // namespace

CFile::CFile() : m_hFile(hFileNull), m_bCloseOnDelete(FALSE)
{
}

CFile::CFile(LPCTSTR lpszFileName, UINT nOpenFlags) : CFile()
{
    CFileException error;
    if (!CFile::Open(lpszFileName, nOpenFlags, &error))
    {
        AfxThrowFileException(error.m_cause, error.m_lOsError, error.m_strFileName);
    }
}

CFile::~CFile()
{
    if (m_bCloseOnDelete)
    {
        CFile::Abort();
    }
}

BOOL CFile::Open(LPCTSTR lpszFileName, UINT nOpenFlags, CFileException* pError)
{
    ENSURE(lpszFileName != nullptr && m_hFile == hFileNull);
    m_strFileName = FullPath(lpszFileName);

    SECURITY_ATTRIBUTES security = {sizeof(security), nullptr, (nOpenFlags & modeNoInherit) == 0};
    m_hFile = CreateFileA(m_strFileName, Access(nOpenFlags), ShareMode(nOpenFlags), &security,
                          Disposition(nOpenFlags), Hints(nOpenFlags), nullptr);
    if (m_hFile == INVALID_HANDLE_VALUE)
    {
        const LONG osError = static_cast<LONG>(GetLastError());
        if (pError != nullptr)
        {
            pError->m_lOsError = osError;
            pError->m_cause = CFileException::OsErrorToException(osError);
            pError->m_strFileName = m_strFileName;
        }
        m_strFileName.Empty();
        return FALSE;
    }
    m_bCloseOnDelete = TRUE;
    return TRUE;
}

void CFile::Close()
{
    const CString name = m_strFileName;
    const HANDLE file = m_hFile;
    m_hFile = hFileNull;
    m_bCloseOnDelete = FALSE;
    m_strFileName.Empty();
    if (file != hFileNull && !CloseHandle(file))
    {
        ThrowLastError(name);
    }
}

void CFile::Abort()
{
    if (m_hFile != hFileNull)
    {
        CloseHandle(m_hFile);
        m_hFile = hFileNull;
    }
    m_bCloseOnDelete = FALSE;
    m_strFileName.Empty();
}

UINT CFile::Read(void* lpBuf, UINT nCount)
{
    DWORD read = 0;
    if (nCount != 0 && !ReadFile(m_hFile, lpBuf, nCount, &read, nullptr))
    {
        ThrowLastError(m_strFileName);
    }
    return read;
}

void CFile::Write(const void* lpBuf, UINT nCount)
{
    if (nCount == 0)
    {
        return;
    }
    DWORD written = 0;
    if (!WriteFile(m_hFile, lpBuf, nCount, &written, nullptr))
    {
        ThrowLastError(m_strFileName);
    }
    // The call succeeds on a disk that fills up, with a count short of what was asked.
    if (written != nCount)
    {
        AfxThrowFileException(CFileException::diskFull, ERROR_DISK_FULL, m_strFileName);
    }
}

void CFile::Flush()
{
    if (m_hFile != hFileNull && !FlushFileBuffers(m_hFile))
    {
        ThrowLastError(m_strFileName);
    }
}

ULONGLONG CFile::Seek(LONGLONG lOff, UINT nFrom)
{
    LARGE_INTEGER distance;
    distance.QuadPart = lOff;
    LARGE_INTEGER position = {};
    if (!SetFilePointerEx(m_hFile, distance, &position, nFrom))
    {
        ThrowLastError(m_strFileName);
    }
    return static_cast<ULONGLONG>(position.QuadPart);
}

ULONGLONG CFile::GetPosition() const
{
    LARGE_INTEGER position = {};
    if (!SetFilePointerEx(m_hFile, LARGE_INTEGER{}, &position, FILE_CURRENT))
    {
        ThrowLastError(m_strFileName);
    }
    return static_cast<ULONGLONG>(position.QuadPart);
}

ULONGLONG CFile::GetLength() const
{
    LARGE_INTEGER size = {};
    if (!GetFileSizeEx(m_hFile, &size))
    {
        ThrowLastError(m_strFileName);
    }
    return static_cast<ULONGLONG>(size.QuadPart);
}

void CFile::SetLength(ULONGLONG dwNewLen)
{
    Seek(static_cast<LONGLONG>(dwNewLen), begin);
    if (!SetEndOfFile(m_hFile))
    {
        ThrowLastError(m_strFileName);
    }
}

void CFile::LockRange(ULONGLONG dwPos, ULONGLONG dwCount)
{
    if (!LockFile(m_hFile, static_cast<DWORD>(dwPos), static_cast<DWORD>(dwPos >> 32),
                  static_cast<DWORD>(dwCount), static_cast<DWORD>(dwCount >> 32)))
    {
        ThrowLastError(m_strFileName);
    }
}

void CFile::UnlockRange(ULONGLONG dwPos, ULONGLONG dwCount)
{
    if (!UnlockFile(m_hFile, static_cast<DWORD>(dwPos), static_cast<DWORD>(dwPos >> 32),
                    static_cast<DWORD>(dwCount), static_cast<DWORD>(dwCount >> 32)))
    {
        ThrowLastError(m_strFileName);
    }
}

BOOL CFile::GetStatus(LPCTSTR lpszFileName, CFileStatus& rStatus)
{
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    if (lpszFileName == nullptr || *lpszFileName == '\0' ||
        !GetFileAttributesExA(lpszFileName, GetFileExInfoStandard, &data))
    {
        return FALSE;
    }
    CopyStatus(rStatus, lpszFileName, data);
    return TRUE;
}

CString CFile::GetFileName() const
{
    return m_strFileName.Mid(m_strFileName.ReverseFind('\\') + 1);
}

CString CFile::GetFileTitle() const
{
    const CString name = GetFileName();
    const int dot = name.ReverseFind('.');
    return dot > 0 ? name.Left(dot) : name;
}

CString CFile::GetFilePath() const
{
    return m_strFileName;
}

void CFile::SetFilePath(LPCTSTR lpszNewName)
{
    m_strFileName = lpszNewName;
}
