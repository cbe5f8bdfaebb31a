// Folders and file names. Any thread.
#pragma once

#include "suite/util/velutil.h"

/// The folder of temporary files with a backslash at its end: the setting "Environment"/"TEMP" when it names
/// an existing folder, else the system's.
VELUTIL_API CString velGetTempPath();
/// The working folder of the live patient files ("Environment"/"WORKING") with a backslash at its end; empty
/// when the setting is missing.
VELUTIL_API CString velGetDataPath();

/// A file in a folder that the settings name: make_filename("Veltrix", "chm", "sys") is "Veltrix.chm" in the
/// folder of the key SYS of section "Environment", or in "c:\veltrix" without one.
VELUTIL_API CString make_filename(LPCTSTR lpszName, LPCTSTR lpszExt, LPCTSTR lpszFolderKey);

/// The folder with exactly one backslash at its end; empty stays empty.
VELUTIL_API CString velWithBackslash(LPCTSTR lpszFolder);

/// A path by its parts.
class VELUTIL_API strFilename
{
public:
    strFilename() = default;
    explicit strFilename(LPCTSTR lpszPath);
    strFilename& operator=(LPCTSTR lpszPath);

    CString GetPath() const; // drive and folder, with a backslash at its end when there is a folder
    CString GetName() const; // without extension
    CString GetNameExt() const;
    CString GetFull() const;

    void SetPath(LPCTSTR lpszPath); // drive and folder, with or without a backslash at the end
    void SetName(LPCTSTR lpszName);
    void SetExt(LPCTSTR lpszExt); // with or without the dot; empty takes the extension away

private:
    CString m_strDrive;
    CString m_strDir;
    CString m_strName;
    CString m_strExt;
};

VELUTIL_API BOOL velFileExists(LPCTSTR lpszPath);   // a file, not a folder
VELUTIL_API BOOL velFolderExists(LPCTSTR lpszPath); // a folder
/// The names (without folder, files only) that match a pattern, appended in the order of the alphabet.
/// Answers how many. "?" and "*" match as the system's own search matches them.
VELUTIL_API INT_PTR velFindFiles(LPCTSTR lpszPattern, CStringArray& rNames);
