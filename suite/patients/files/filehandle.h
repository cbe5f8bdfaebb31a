#pragma once

// Handles and failures of patient files; inside the library only.

#include "suite/patients/store/dbexception.h"

#include <memory>

struct patCHandleCloser
{
    void operator()(HANDLE hFile) const
    {
        CloseHandle(hFile);
    }
};
using patCHandle = std::unique_ptr<void, patCHandleCloser>;

/// Null when the file cannot be opened; GetLastError tells why.
inline patCHandle patOpenFile(LPCTSTR pszPath, DWORD dwAccess, DWORD dwShare, DWORD dwDisposition,
                              DWORD dwFlags = FILE_ATTRIBUTE_NORMAL)
{
    const HANDLE hFile = CreateFileA(pszPath, dwAccess, dwShare, nullptr, dwDisposition, dwFlags, nullptr);
    return patCHandle(hFile != INVALID_HANDLE_VALUE ? hFile : nullptr);
}

/// Throws dbErrExists, dbErrDiskFull or dbErrIO with the path.
[[noreturn]] inline void patThrowFileError(DWORD dwError, LPCTSTR pszPath)
{
    if (dwError == ERROR_FILE_EXISTS || dwError == ERROR_ALREADY_EXISTS)
        dbCException::Throw(dbErrExists, pszPath);
    const bool bFull = dwError == ERROR_DISK_FULL || dwError == ERROR_HANDLE_DISK_FULL;
    dbCException::Throw(bFull ? dbErrDiskFull : dbErrIO, pszPath);
}

/// Whether nothing is at the path; what cannot be asked counts as being there.
inline bool patIsGone(LPCTSTR pszPath)
{
    if (GetFileAttributesA(pszPath) != INVALID_FILE_ATTRIBUTES)
        return false;
    const DWORD dwError = GetLastError();
    return dwError == ERROR_FILE_NOT_FOUND || dwError == ERROR_PATH_NOT_FOUND;
}
