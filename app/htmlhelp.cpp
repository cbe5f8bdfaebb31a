#include "app/htmlhelp.h"

#include <string>

namespace
{

using HtmlHelpProc = HWND(WINAPI*)(HWND hOwner, LPCSTR pszFile, UINT nCommand, DWORD_PTR dwData);

HtmlHelpProc LoadHtmlHelp()
{
    char szFolder[MAX_PATH] = "";
    const UINT nLength = ::GetSystemDirectory(szFolder, MAX_PATH);
    if (nLength == 0 || nLength >= MAX_PATH)
        return nullptr;
    // Never freed: help windows run in the viewer's code and outlive the dialog that opened them.
    const std::string path = std::string(szFolder) + "\\hhctrl.ocx";
    const HMODULE hViewer = ::LoadLibraryEx(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (hViewer == nullptr)
        return nullptr;
    return reinterpret_cast<HtmlHelpProc>(reinterpret_cast<void*>(::GetProcAddress(hViewer, "HtmlHelpA")));
}

class CHtmlHelp : public velHelpViewer
{
public:
    HWND Call(HWND hOwner, LPCTSTR pszFile, UINT nCommand, DWORD_PTR dwData) override
    {
        static const HtmlHelpProc pfnHtmlHelp = LoadHtmlHelp();
        return pfnHtmlHelp != nullptr ? pfnHtmlHelp(hOwner, pszFile, nCommand, dwData) : nullptr;
    }
};

} // namespace

velHelpViewer& velHtmlHelp()
{
    static CHtmlHelp viewer;
    return viewer;
}
