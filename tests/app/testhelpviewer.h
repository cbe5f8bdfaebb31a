#pragma once

#include <windows.h>

/// The test's stand-in for the help viewer: it writes down how it is called.
struct HelpCall
{
    HWND owner;
    char file[MAX_PATH];
    UINT command;
    DWORD_PTR data;
    char name[64]; ///< the text that data points to, for the question for a window
};

/// What HelpCalls answers: the calls so far, oldest first, and the window that the viewer claims to have
/// opened.
struct HelpLog
{
    HelpCall calls[32];
    int count;
    HWND window;
};

/// The one log of the process, exported as "HelpCalls".
using HelpCallsFunction = HelpLog* (*)();
