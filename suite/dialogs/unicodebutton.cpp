#include "suite/dialogs/unicodebutton.h"

IMPLEMENT_DYNAMIC(CUnicodeButton, CButton)

BEGIN_MESSAGE_MAP(CUnicodeButton, CButton)
END_MESSAGE_MAP()

namespace
{

// The window's property that leads from UnicodeProc to the button's object.
constexpr wchar_t objectProperty[] = L"VelUnicodeButton";

} // namespace

// The control reads its text for drawing through the window's procedure, and the framework's is a narrow one.
// A wide procedure in front of it lets the text messages pass by the conversion; all others go the usual way.
void CUnicodeButton::SetUnicodeText(LPCWSTR pszText)
{
    if (m_pfnNarrow == nullptr && ::SetPropW(m_hWnd, objectProperty, this))
    {
        m_pfnNarrow = reinterpret_cast<WNDPROC>(
            ::SetWindowLongPtrW(m_hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&UnicodeProc)));
    }
    ::SetWindowTextW(m_hWnd, pszText);
}

LRESULT CALLBACK CUnicodeButton::UnicodeProc(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) noexcept
{
    auto* pButton = static_cast<CUnicodeButton*>(::GetPropW(hWnd, objectProperty));
    const WNDPROC pfnNarrow = pButton->m_pfnNarrow;
    switch (nMessage)
    {
    case WM_SETTEXT:
    case WM_GETTEXT:
    case WM_GETTEXTLENGTH:
        return ::CallWindowProcW(*pButton->GetSuperWndProcAddr(), hWnd, nMessage, wParam, lParam);

    case WM_NCDESTROY:
        ::RemovePropW(hWnd, objectProperty);
        ::SetWindowLongPtrW(hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(pfnNarrow));
        pButton->m_pfnNarrow = nullptr;
        return ::CallWindowProcW(pfnNarrow, hWnd, nMessage, wParam, lParam);

    default:
        return ::CallWindowProcW(pfnNarrow, hWnd, nMessage, wParam, lParam);
    }
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
