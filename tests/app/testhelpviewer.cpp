#include "tests/app/testhelpviewer.h"

#include <cstring>

namespace
{

constexpr UINT getWindow = 6;

HelpLog theLog;

} // namespace

extern "C" __declspec(dllexport) HelpLog* HelpCalls()
{
    return &theLog;
}

extern "C" __declspec(dllexport) HWND WINAPI HtmlHelpA(HWND owner, LPCSTR file, UINT command, DWORD_PTR data)
{
    constexpr int most = sizeof theLog.calls / sizeof theLog.calls[0];
    if (theLog.count < most)
    {
        HelpCall& call = theLog.calls[theLog.count++];
        call = {};
        call.owner = owner;
        call.command = command;
        call.data = data;
        std::strncpy(call.file, file != nullptr ? file : "", sizeof call.file - 1);
        if (command == getWindow)
            std::strncpy(call.name, reinterpret_cast<const char*>(data), sizeof call.name - 1);
    }
    return command == getWindow ? theLog.window : nullptr;
}
