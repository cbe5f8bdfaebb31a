// CListCtrl. Included through afxcmn.h.
#pragma once

class AFX_DLL_CLASS CListCtrl : public CWnd
{
    DECLARE_DYNAMIC(CListCtrl)
public:
    BOOL Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID);
    using CWnd::Create;
    int GetItemCount() const
    {
        return Ask<int>(LVM_GETITEMCOUNT);
    }
    BOOL GetItem(LVITEM* pItem) const
    {
        return Ask<BOOL>(LVM_GETITEM, 0, pItem);
    }
    BOOL SetItem(const LVITEM* pItem)
    {
        return Ask<BOOL>(LVM_SETITEM, 0, pItem);
    }
    BOOL SetItem(int nItem, int nSubItem, UINT nMask, LPCTSTR lpszItem, int nImage, UINT nState,
                 UINT nStateMask, LPARAM lParam);
    int InsertItem(const LVITEM* pItem)
    {
        return Ask<int>(LVM_INSERTITEM, 0, pItem);
    }
    int InsertItem(int nItem, LPCTSTR lpszItem);
    int InsertItem(int nItem, LPCTSTR lpszItem, int nImage);
    BOOL DeleteItem(int nItem)
    {
        return Ask<BOOL>(LVM_DELETEITEM, nItem);
    }
    BOOL DeleteAllItems()
    {
        return Ask<BOOL>(LVM_DELETEALLITEMS);
    }
    int GetNextItem(int nItem, int nFlags) const
    {
        return Ask<int>(LVM_GETNEXTITEM, nItem, MAKELPARAM(nFlags, 0));
    }
    BOOL EnsureVisible(int nItem, BOOL bPartialOK)
    {
        return Ask<BOOL>(LVM_ENSUREVISIBLE, nItem, MAKELPARAM(bPartialOK, 0));
    }
    CString GetItemText(int nItem, int nSubItem) const;
    BOOL SetItemText(int nItem, int nSubItem, LPCTSTR lpszText);
    DWORD_PTR GetItemData(int nItem) const;
    BOOL SetItemData(int nItem, DWORD_PTR dwData);
    BOOL SetItemState(int nItem, UINT nState, UINT nMask);
    BOOL SetItemCountEx(int iCount, DWORD dwFlags = LVSICF_NOINVALIDATEALL)
    {
        return Ask<BOOL>(LVM_SETITEMCOUNT, iCount, dwFlags);
    }
    UINT GetSelectedCount() const
    {
        return Ask<UINT>(LVM_GETSELECTEDCOUNT);
    }
    int InsertColumn(int nCol, const LVCOLUMN* pColumn)
    {
        return Ask<int>(LVM_INSERTCOLUMN, nCol, pColumn);
    }
    int InsertColumn(int nCol, LPCTSTR lpszColumnHeading, int nFormat = LVCFMT_LEFT, int nWidth = -1,
                     int nSubItem = -1);
    DWORD SetExtendedStyle(DWORD dwNewStyle)
    {
        return Ask<DWORD>(LVM_SETEXTENDEDLISTVIEWSTYLE, 0, dwNewStyle);
    }
    BOOL SetTextColor(COLORREF cr)
    {
        return Ask<BOOL>(LVM_SETTEXTCOLOR, 0, cr);
    }
    BOOL SetBkColor(COLORREF cr)
    {
        return Ask<BOOL>(LVM_SETBKCOLOR, 0, cr);
    }
    BOOL SetTextBkColor(COLORREF cr)
    {
        return Ask<BOOL>(LVM_SETTEXTBKCOLOR, 0, cr);
    }
};
