#include "suite/util/velpath.h"

#include "suite/util/utilrules.h"
#include "suite/util/velini.h"

#include <algorithm>

CString velWithBackslash(LPCTSTR lpszFolder)
{
    return utlWithBackslash(lpszFolder != nullptr ? lpszFolder : "").c_str();
}

CString velGetTempPath()
{
    CString configured = velWithBackslash(velenv("TEMP"));
    if (velFolderExists(configured))
    {
        return configured;
    }
    char folder[MAX_PATH + 1] = {};
    GetTempPathA(sizeof(folder), folder);
    return velWithBackslash(folder);
}

CString velGetDataPath()
{
    return velWithBackslash(velenv("WORKING"));
}

CString make_filename(LPCTSTR lpszName, LPCTSTR lpszExt, LPCTSTR lpszFolderKey)
{
    strFilename file;
    file.SetPath(velenv(lpszFolderKey, "c:\\veltrix"));
    file.SetName(lpszName);
    file.SetExt(lpszExt);
    return file.GetFull();
}

// ---------------------------------------------------------------------------------------------------------
// strFilename

strFilename::strFilename(LPCTSTR lpszPath)
{
    *this = lpszPath;
}

strFilename& strFilename::operator=(LPCTSTR lpszPath)
{
    const utlPathParts parts = utlSplitPath(lpszPath != nullptr ? lpszPath : "");
    m_strDrive = parts.drive.c_str();
    m_strDir = parts.dir.c_str();
    m_strName = parts.name.c_str();
    m_strExt = parts.ext.c_str();
    return *this;
}

CString strFilename::GetDrive() const
{
    return m_strDrive;
}

CString strFilename::GetDir() const
{
    return m_strDir;
}

CString strFilename::GetPath() const
{
    return m_strDrive + m_strDir;
}

CString strFilename::GetName() const
{
    return m_strName;
}

CString strFilename::GetExt() const
{
    return m_strExt.Mid(1);
}

CString strFilename::GetNameExt() const
{
    return m_strName + m_strExt;
}

CString strFilename::GetFull() const
{
    return GetPath() + GetNameExt();
}

void strFilename::SetPath(LPCTSTR lpszPath)
{
    const strFilename folder(velWithBackslash(lpszPath));
    m_strDrive = folder.m_strDrive;
    m_strDir = folder.m_strDir;
}

void strFilename::SetName(LPCTSTR lpszName)
{
    m_strName = lpszName;
}

void strFilename::SetExt(LPCTSTR lpszExt)
{
    const CString ext(lpszExt);
    m_strExt = ext.IsEmpty() || ext[0] == '.' ? ext : "." + ext;
}

// ---------------------------------------------------------------------------------------------------------
// Volumes and files

BOOL velGetFreeSpace(LPCTSTR lpszFolder, velFreeSpace& rSpace)
{
    rSpace = velFreeSpace();
    char root[MAX_PATH + 1] = {};
    if (lpszFolder == nullptr || *lpszFolder == '\0' || !GetVolumePathNameA(lpszFolder, root, sizeof(root)))
    {
        return FALSE;
    }
    DWORD sectorsPerCluster = 0;
    DWORD bytesPerSector = 0;
    if (!GetDiskFreeSpaceA(velWithBackslash(root), &sectorsPerCluster, &bytesPerSector, &rSpace.nFreeClusters,
                           &rSpace.nTotalClusters))
    {
        return FALSE;
    }
    rSpace.nBytesPerCluster = sectorsPerCluster * bytesPerSector;
    return TRUE;
}

BOOL velFileExists(LPCTSTR lpszPath)
{
    const DWORD attributes = lpszPath != nullptr ? GetFileAttributesA(lpszPath) : INVALID_FILE_ATTRIBUTES;
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

BOOL velFolderExists(LPCTSTR lpszPath)
{
    const DWORD attributes = lpszPath != nullptr ? GetFileAttributesA(lpszPath) : INVALID_FILE_ATTRIBUTES;
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

INT_PTR velFindFiles(LPCTSTR lpszPattern, CStringArray& rNames)
{
    std::vector<CString> found;
    CFileFind finder;
    BOOL working = finder.FindFile(lpszPattern);
    while (working)
    {
        working = finder.FindNextFile();
        if (!finder.IsDirectory())
        {
            found.push_back(finder.GetFileName());
        }
    }
    std::ranges::sort(found, [](const CString& one, const CString& other) { return one.CompareNoCase(other) < 0; });
    for (const CString& name : found)
    {
        rNames.Add(name);
    }
    return static_cast<INT_PTR>(found.size());
}

BOOL velCopyFile(LPCTSTR lpszFrom, LPCTSTR lpszTo)
{
    if (lpszFrom == nullptr || lpszTo == nullptr)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    CString partial;
    partial.Format("%s.%lu.part", lpszTo, GetCurrentProcessId());
    if (CopyFileA(lpszFrom, partial, FALSE) &&
        MoveFileExA(partial, lpszTo, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
    {
        return TRUE;
    }
    // A failed copy may leave what it has written, and with it the source's read-only attribute.
    const DWORD error = GetLastError();
    if (velFileExists(partial))
    {
        SetFileAttributesA(partial, FILE_ATTRIBUTE_NORMAL);
        DeleteFileA(partial);
    }
    SetLastError(error);
    return FALSE;
}
