#pragma once

#include "suite/dialogs/ctlapi.h"

#include <string>

/// A push button whose caption may hold any Unicode text although the program's windows use the system code
/// page. Set and read through the usual calls the caption is narrow text as everywhere.
class VELCTL_API CUnicodeButton : public CButton
{
    DECLARE_DYNAMIC(CUnicodeButton)

public:
    /// Sets and reads the caption without going through the system code page.
    void SetUnicodeText(LPCWSTR pszText);
    std::wstring GetUnicodeText() const;

private:
    static LRESULT CALLBACK UnicodeProc(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) noexcept;

    WNDPROC m_pfnNarrow = nullptr; ///< the framework's procedure, behind UnicodeProc once that is in place

protected:
    DECLARE_MESSAGE_MAP()
};
