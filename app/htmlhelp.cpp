#include "app/htmlhelp.h"

namespace
{

using HtmlHelpProc = HWND(WINAPI*)(HWND hOwner, LPCSTR pszFile, UINT nCommand, DWORD_PTR dwData);

HtmlHelpProc LoadHtmlHelp()
{
    // Never freed: help windows run in the viewer's code and outlive the dialog that opened them.
    const HMODULE hViewer = ::LoadLibrary("hhctrl.ocx");
    if (hViewer == nullptr)
        return nullptr;
    return reinterpret_cast<HtmlHelpProc>(reinterpret_cast<void*>(::GetProcAddress(hViewer, "HtmlHelpA")));
}

} // namespace

HWND velHtmlHelp(HWND hOwner, LPCTSTR pszFile, UINT nCommand, DWORD_PTR dwData)
{
    static const HtmlHelpProc pfnHtmlHelp = LoadHtmlHelp();
    return pfnHtmlHelp != nullptr ? pfnHtmlHelp(hOwner, pszFile, nCommand, dwData) : nullptr;
}
