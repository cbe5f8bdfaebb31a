#include "afx.h"

#include <cstring>

IMPLEMENT_DYNAMIC(CFileFind, CObject)

CFileFind::CFileFind() = default;

CFileFind::~CFileFind()
{
    Close();
}

void CFileFind::Close()
{
    if (m_hFind != INVALID_HANDLE_VALUE)
    {
        FindClose(m_hFind);
        m_hFind = INVALID_HANDLE_VALUE;
    }
    m_bHaveCurrent = false;
    m_bHaveNext = false;
}

BOOL CFileFind::FindFile(LPCTSTR pstrName, DWORD)
{
    Close();
    const CString pattern(pstrName != nullptr ? pstrName : "*.*");

    char full[4 * MAX_PATH];
    LPSTR name = nullptr;
    const DWORD length = GetFullPathNameA(pattern, sizeof(full), full, &name);
    if (length == 0 || length >= sizeof(full))
    {
        SetLastError(length == 0 ? ERROR_INVALID_NAME : ERROR_FILENAME_EXCED_RANGE);
        return FALSE;
    }
    m_strRoot.SetString(full, static_cast<int>(name != nullptr ? name - full : static_cast<int>(length)));

    m_hFind = FindFirstFileA(pattern, &m_next);
    m_bHaveNext = m_hFind != INVALID_HANDLE_VALUE;
    return m_bHaveNext;
}

BOOL CFileFind::FindNextFile()
{
    m_bHaveCurrent = m_bHaveNext;
    m_current = m_next;
    m_bHaveNext = m_bHaveNext && ::FindNextFileA(m_hFind, &m_next);
    return m_bHaveNext;
}

CString CFileFind::GetFileName() const
{
    ENSURE(m_bHaveCurrent);
    return m_current.cFileName;
}

CString CFileFind::GetFilePath() const
{
    return m_strRoot + GetFileName();
}

CString CFileFind::GetFileTitle() const
{
    const CString name = GetFileName();
    const int dot = name.ReverseFind('.');
    return dot > 0 ? name.Left(dot) : name;
}

BOOL CFileFind::GetLastWriteTime(FILETIME* pTimeStamp) const
{
    ENSURE(m_bHaveCurrent && pTimeStamp != nullptr);
    *pTimeStamp = m_current.ftLastWriteTime;
    return TRUE;
}

BOOL CFileFind::GetLastWriteTime(CTime& refTime) const
{
    ENSURE(m_bHaveCurrent);
    refTime = CTime(m_current.ftLastWriteTime);
    return TRUE;
}

BOOL CFileFind::GetCreationTime(FILETIME* pTimeStamp) const
{
    ENSURE(m_bHaveCurrent && pTimeStamp != nullptr);
    *pTimeStamp = m_current.ftCreationTime;
    return TRUE;
}

BOOL CFileFind::GetCreationTime(CTime& refTime) const
{
    ENSURE(m_bHaveCurrent);
    refTime = CTime(m_current.ftCreationTime);
    return TRUE;
}

BOOL CFileFind::MatchesMask(DWORD dwMask) const
{
    ENSURE(m_bHaveCurrent);
    return (m_current.dwFileAttributes & dwMask) != 0;
}

BOOL CFileFind::IsDots() const
{
    ENSURE(m_bHaveCurrent);
    return IsDirectory() && (strcmp(m_current.cFileName, ".") == 0 || strcmp(m_current.cFileName, "..") == 0);
}
