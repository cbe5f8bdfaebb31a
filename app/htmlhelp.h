#pragma once

#include <afxwin.h>

/// Calls HTML Help, which is loaded when it is first needed: most calls of the module never show help.
/// Answers null where the help viewer is not installed.
HWND velHtmlHelp(HWND hOwner, LPCTSTR pszFile, UINT nCommand, DWORD_PTR dwData);
