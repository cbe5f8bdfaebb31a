// The standard controls: creation, texts, and the owner drawing of buttons.
#include "suite/mfc/afxcmn.h"

IMPLEMENT_DYNAMIC(CStatic, CWnd)
IMPLEMENT_DYNAMIC(CButton, CWnd)
IMPLEMENT_DYNAMIC(CEdit, CWnd)
IMPLEMENT_DYNAMIC(CListBox, CWnd)
IMPLEMENT_DYNAMIC(CComboBox, CWnd)

namespace
{
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
    if (message != WM_DRAWITEM)
    {
        return CWnd::OnChildNotify(message, wParam, lParam, pResult);
    }
    DrawItem(reinterpret_cast<LPDRAWITEMSTRUCT>(lParam));
    return TRUE;
}

void CEdit::SetSel(int nStartChar, int nEndChar, BOOL bNoScroll)
{
    Ask(EM_SETSEL, nStartChar, nEndChar);
    if (!bNoScroll)
    {
        Ask(EM_SCROLLCARET);
    }
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
