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
    case CFile::shareDenyNone:
        return FILE_SHARE_READ | FILE_SHARE_WRITE;
    default:
        return 0;
    }
}

DWORD Access(UINT nOpenFlags)
{
    return (nOpenFlags & CFile::modeWrite) != 0 ? GENERIC_WRITE : GENERIC_READ;
}

DWORD Disposition(UINT nOpenFlags)
{
    return (nOpenFlags & CFile::modeCreate) != 0 ? CREATE_ALWAYS : OPEN_EXISTING;
}

[[noreturn]] void ThrowLastError(LPCTSTR lpszFileName)
{
    CFileException::ThrowOsError(static_cast<LONG>(GetLastError()), lpszFileName);
}

} // namespace

CFile::CFile() : m_hFile(hFileNull)
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
    CFile::Abort();
}

BOOL CFile::Open(LPCTSTR lpszFileName, UINT nOpenFlags, CFileException* pError)
{
    ENSURE(lpszFileName != nullptr && m_hFile == hFileNull);
    m_strFileName = FullPath(lpszFileName);

    m_hFile = CreateFileA(m_strFileName, Access(nOpenFlags), ShareMode(nOpenFlags), nullptr,
                          Disposition(nOpenFlags), FILE_ATTRIBUTE_NORMAL, nullptr);
    if (m_hFile == hFileNull)
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
    return TRUE;
}

void CFile::Abort()
{
    if (m_hFile != hFileNull)
    {
        CloseHandle(m_hFile);
        m_hFile = hFileNull;
    }
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

ULONGLONG CFile::GetLength() const
{
    LARGE_INTEGER size = {};
    if (!GetFileSizeEx(m_hFile, &size))
    {
        ThrowLastError(m_strFileName);
    }
    return static_cast<ULONGLONG>(size.QuadPart);
}

BOOL CFile::GetStatus(LPCTSTR lpszFileName, CFileStatus& rStatus)
{
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    if (lpszFileName == nullptr || *lpszFileName == '\0' ||
        !GetFileAttributesExA(lpszFileName, GetFileExInfoStandard, &data))
    {
        return FALSE;
    }
    rStatus.m_size = static_cast<ULONGLONG>(data.nFileSizeHigh) << 32 | data.nFileSizeLow;
    rStatus.m_mtime = CTime(data.ftLastWriteTime);
    return TRUE;
}

CString CFile::GetFilePath() const
{
    return m_strFileName;
}
