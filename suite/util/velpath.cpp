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

CString strFilename::GetPath() const
{
    return m_strDrive + m_strDir;
}

CString strFilename::GetName() const
{
    return m_strName;
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
// Files

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
    WIN32_FIND_DATAA file = {};
    const HANDLE search = FindFirstFileA(lpszPattern, &file);
    if (search != INVALID_HANDLE_VALUE)
    {
        const std::unique_ptr<void, decltype(&FindClose)> owner(search, &FindClose);
        do
        {
            if ((file.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
            {
                found.emplace_back(file.cFileName);
            }
        } while (FindNextFileA(search, &file));
    }
    std::ranges::sort(found, [](const CString& one, const CString& other) { return one.CompareNoCase(other) < 0; });
    for (const CString& name : found)
    {
        rNames.Add(name);
    }
    return static_cast<INT_PTR>(found.size());
}
