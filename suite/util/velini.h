// The settings store: values by section and key in one INI file that several programs share.
//
// The file is the one given to velSetIniFile, else the one that the environment variable VELTRIX_INI names,
// else "veltrix.ini" in the folder "Veltrix" of the common application data. Names ignore letter case.
// Nothing in the file is trusted: a value that is too long (4096 characters), holds control characters or
// stands in a damaged, missing or over-large file counts as absent, and the default is answered. Any thread.
#pragma once

#include "suite/util/velutil.h"

/// The value, which may be empty; the default when the key is absent.
VELUTIL_API CString velGetIniString(LPCTSTR lpszSection, LPCTSTR lpszKey, LPCTSTR lpszDefault = "");
/// The section by the id of its name in the string table of the caller's module state.
VELUTIL_API CString velGetIniString(UINT nSectionID, LPCTSTR lpszKey, LPCTSTR lpszDefault = "");

/// The value as a decimal or "0x" number; the default when it is absent, not a number or beyond 32 bits.
VELUTIL_API int velGetIniInt(LPCTSTR lpszSection, LPCTSTR lpszKey, int nDefault);
VELUTIL_API int velGetIniInt(UINT nSectionID, LPCTSTR lpszKey, int nDefault);

/// Writes a value (null removes the key). The file is replaced as a whole, so that a reader and a power cut
/// see the old file or the new one; comments and lines that are not understood stay as they are. FALSE when
/// nothing was written: the file or folder is read-only or out of reach, the file is no settings file,
/// another process holds it for more than five seconds, or name or value could not be read back.
VELUTIL_API BOOL velSetIniString(LPCTSTR lpszSection, LPCTSTR lpszKey, LPCTSTR lpszValue);
VELUTIL_API BOOL velSetIniString(UINT nSectionID, LPCTSTR lpszKey, LPCTSTR lpszValue);
VELUTIL_API BOOL velSetIniInt(LPCTSTR lpszSection, LPCTSTR lpszKey, int nValue);

/// A value of the section "Environment", where the suite keeps its folders.
VELUTIL_API CString velenv(LPCTSTR lpszKey, LPCTSTR lpszDefault = "");

/// Takes another file for the rest of the process; null or empty goes back to the rule above.
VELUTIL_API void velSetIniFile(LPCTSTR lpszPath);
VELUTIL_API CString velGetIniFile();

/// True in the viewer edition (section "Environment", key "Viewer" not 0), which changes no records.
VELUTIL_API BOOL IsViewingSoftware();
