// The standard controls: creation, texts, and the owner drawing of buttons by reflection.
#include "suite/mfc/afxcmn.h"

IMPLEMENT_DYNAMIC(CStatic, CWnd)
IMPLEMENT_DYNAMIC(CButton, CWnd)
IMPLEMENT_DYNAMIC(CEdit, CWnd)
IMPLEMENT_DYNAMIC(CListBox, CWnd)
IMPLEMENT_DYNAMIC(CComboBox, CWnd)
IMPLEMENT_DYNAMIC(CScrollBar, CWnd)

namespace
{
// From the system code page.
std::wstring Wide(LPCTSTR text)
{
    if (text == nullptr)
    {
        return {};
    }
    const int length = ::MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(length > 0 ? length : 1), L'\0');
    ::MultiByteToWideChar(CP_ACP, 0, text, -1, wide.data(), length);
    return wide;
}

// The text of a list's item, of which its length is known, or an error.
template <class Read> void ReadItem(int length, CString& text, const Read& read)
{
    text.Empty();
    if (length > 0)
    {
        read(text.GetBuffer(length));
        text.ReleaseBuffer();
    }
}
} // namespace

BOOL CStatic::Create(LPCTSTR lpszText, DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID)
{
    return CWnd::Create("STATIC", lpszText, dwStyle, rect, pParentWnd, nID);
}

BOOL CButton::Create(LPCTSTR lpszCaption, DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID)
{
    return CWnd::Create("BUTTON", lpszCaption, dwStyle, rect, pParentWnd, nID);
}

void CButton::DrawItem(LPDRAWITEMSTRUCT)
{
    ASSERT(FALSE); // an owner-drawn button draws itself in its class's DrawItem
}

BOOL CButton::OnChildNotify(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* pResult)
{
    if (CWnd::OnChildNotify(message, wParam, lParam, pResult))
    {
        return TRUE;
    }
    if (message != WM_DRAWITEM)
    {
        return FALSE;
    }
    DrawItem(reinterpret_cast<LPDRAWITEMSTRUCT>(lParam));
    return TRUE;
}

BOOL CEdit::Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID)
{
    return CWnd::Create("EDIT", nullptr, dwStyle, rect, pParentWnd, nID);
}

int CEdit::GetLine(int nIndex, LPTSTR lpszBuffer, int nMaxLength) const
{
    ENSURE(lpszBuffer != nullptr && nMaxLength >= static_cast<int>(sizeof(WORD)));
    *reinterpret_cast<WORD*>(lpszBuffer) = static_cast<WORD>(nMaxLength);
    return Ask(EM_GETLINE, nIndex, lpszBuffer);
}

void CEdit::SetSel(int nStartChar, int nEndChar, BOOL bNoScroll)
{
    Ask(EM_SETSEL, nStartChar, nEndChar);
    if (!bNoScroll)
    {
        Ask(EM_SCROLLCARET);
    }
}

BOOL CEdit::SetCueBanner(LPCTSTR lpszText, BOOL fDrawIfFocused)
{
    const std::wstring text = Wide(lpszText);
    return Ask<BOOL>(EM_SETCUEBANNER, fDrawIfFocused, text.c_str());
}

BOOL CEdit::ShowBalloonTip(LPCTSTR lpszTitle, LPCTSTR lpszText, INT ttiIcon)
{
    const std::wstring title = Wide(lpszTitle);
    const std::wstring text = Wide(lpszText);
    EDITBALLOONTIP tip{sizeof(EDITBALLOONTIP), title.c_str(), text.c_str(), ttiIcon};
    return Ask<BOOL>(EM_SHOWBALLOONTIP, 0, &tip);
}

BOOL CListBox::Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID)
{
    return CWnd::Create("LISTBOX", nullptr, dwStyle, rect, pParentWnd, nID);
}

void CListBox::GetText(int nIndex, CString& rString) const
{
    ReadItem(GetTextLen(nIndex), rString, [&](LPTSTR buffer) { GetText(nIndex, buffer); });
}

BOOL CComboBox::Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID)
{
    return CWnd::Create("COMBOBOX", nullptr, dwStyle, rect, pParentWnd, nID);
}

void CComboBox::GetLBText(int nIndex, CString& rString) const
{
    ReadItem(GetLBTextLen(nIndex), rString, [&](LPTSTR buffer) { GetLBText(nIndex, buffer); });
}

BOOL CScrollBar::Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID)
{
    return CWnd::Create("SCROLLBAR", nullptr, dwStyle, rect, pParentWnd, nID);
}
