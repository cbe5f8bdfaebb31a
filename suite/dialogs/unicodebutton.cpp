#include "suite/dialogs/unicodebutton.h"

IMPLEMENT_DYNAMIC(CUnicodeButton, CButton)

BEGIN_MESSAGE_MAP(CUnicodeButton, CButton)
END_MESSAGE_MAP()

// The window's own procedure takes wide text as it is; only messages sent to the window are converted,
// because the framework's procedure in front of it is a narrow one.
void CUnicodeButton::SetUnicodeText(LPCWSTR pszText)
{
    ::CallWindowProcW(*GetSuperWndProcAddr(), m_hWnd, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(pszText));
    Invalidate();
}

std::wstring CUnicodeButton::GetUnicodeText() const
{
    const WNDPROC pfnButton = *const_cast<CUnicodeButton*>(this)->GetSuperWndProcAddr();
    const auto nLength =
        static_cast<std::size_t>(::CallWindowProcW(pfnButton, m_hWnd, WM_GETTEXTLENGTH, 0, 0));
    std::wstring text(nLength + 1, L'\0');
    const auto nCopied = static_cast<std::size_t>(
        ::CallWindowProcW(pfnButton, m_hWnd, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data())));
    text.resize(nCopied);
    return text;
}
