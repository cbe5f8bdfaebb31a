#pragma once

#include <afxwin.h>

/// What shows help files.
class velHelpViewer
{
public:
    virtual ~velHelpViewer() = default;

    /// One call of the HTML Help interface, with its commands and their data. Answers the help window, null
    /// where there is none.
    virtual HWND Call(HWND hOwner, LPCTSTR pszFile, UINT nCommand, DWORD_PTR dwData) = 0;
};

/// HTML Help, which is loaded when it is first needed: most calls of the module never show help. It is taken
/// from the system folder alone, whatever lies beside the program. Answers null where it is not installed.
velHelpViewer& velHtmlHelp();
