#include "host/transferprogram.h"

#include "suite/rasko/raskoapi.h"

namespace
{
constexpr DWORD kPatience = 5000; // milliseconds
}

void hostTellPractice(LPCTSTR settings)
{
    ::SetEnvironmentVariable("VELTRIX_INI", settings);
}

void hostEndTransferProgram()
{
    const HWND window = ::FindWindow(rasko::WindowClass, nullptr);
    DWORD id = 0;
    if (window == nullptr || ::GetWindowThreadProcessId(window, &id) == 0)
    {
        return;
    }
    const HANDLE process = ::OpenProcess(SYNCHRONIZE, FALSE, id);
    ::PostMessage(window, WM_COMMAND, rasko::QuitCommand, 0);
    if (process != nullptr)
    {
        ::WaitForSingleObject(process, kPatience);
        ::CloseHandle(process);
    }
}
