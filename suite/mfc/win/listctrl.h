// CHeaderCtrl and CListCtrl. Included through afxcmn.h.
#pragma once

class AFX_DLL_CLASS CHeaderCtrl : public CWnd
{
    DECLARE_DYNAMIC(CHeaderCtrl)
public:
    BOOL Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID);
    using CWnd::Create;
    int GetItemCount() const
    {
        return Ask<int>(HDM_GETITEMCOUNT);
    }
    BOOL GetItem(int nPos, HDITEM* pHeaderItem) const
    {
        return Ask<BOOL>(HDM_GETITEM, nPos, pHeaderItem);
    }
    BOOL SetItem(int nPos, HDITEM* pHeaderItem)
    {
        return Ask<BOOL>(HDM_SETITEM, nPos, pHeaderItem);
    }
    int InsertItem(int nPos, HDITEM* phdi)
    {
        return Ask<int>(HDM_INSERTITEM, nPos, phdi);
    }
    BOOL GetItemRect(int nIndex, LPRECT lpRect) const
    {
        return Ask<BOOL>(HDM_GETITEMRECT, nIndex, lpRect);
    }
};

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
    // Walks the selected items: while (pos != nullptr) item = GetNextSelectedItem(pos).
    POSITION GetFirstSelectedItemPosition() const;
    int GetNextSelectedItem(POSITION& pos) const;
    int FindItem(LVFINDINFO* pFindInfo, int nStart = -1) const
    {
        return Ask<int>(LVM_FINDITEM, nStart, pFindInfo);
    }
    BOOL GetItemRect(int nItem, LPRECT lpRect, UINT nCode) const;
    BOOL GetSubItemRect(int iItem, int iSubItem, int nArea, CRect& ref) const;
    int HitTest(LVHITTESTINFO* pHitTestInfo) const
    {
        return Ask<int>(LVM_HITTEST, 0, pHitTestInfo);
    }
    int SubItemHitTest(LVHITTESTINFO* pInfo)
    {
        return Ask<int>(LVM_SUBITEMHITTEST, 0, pInfo);
    }
    BOOL EnsureVisible(int nItem, BOOL bPartialOK)
    {
        return Ask<BOOL>(LVM_ENSUREVISIBLE, nItem, MAKELPARAM(bPartialOK, 0));
    }
    CString GetItemText(int nItem, int nSubItem) const;
    BOOL SetItemText(int nItem, int nSubItem, LPCTSTR lpszText);
    DWORD_PTR GetItemData(int nItem) const;
    BOOL SetItemData(int nItem, DWORD_PTR dwData);
    UINT GetItemState(int nItem, UINT nMask) const
    {
        return Ask<UINT>(LVM_GETITEMSTATE, nItem, nMask);
    }
    BOOL SetItemState(int nItem, UINT nState, UINT nMask);
    BOOL GetCheck(int nItem) const
    {
        return (GetItemState(nItem, LVIS_STATEIMAGEMASK) >> 12) == 2;
    }
    BOOL SetCheck(int nItem, BOOL fCheck = TRUE)
    {
        return SetItemState(nItem, INDEXTOSTATEIMAGEMASK(fCheck ? 2u : 1u), LVIS_STATEIMAGEMASK);
    }
    void SetItemCount(int nItems)
    {
        Ask(LVM_SETITEMCOUNT, nItems);
    }
    BOOL SetItemCountEx(int iCount, DWORD dwFlags = LVSICF_NOINVALIDATEALL)
    {
        return Ask<BOOL>(LVM_SETITEMCOUNT, iCount, dwFlags);
    }
    UINT GetSelectedCount() const
    {
        return Ask<UINT>(LVM_GETSELECTEDCOUNT);
    }
    int GetSelectionMark()
    {
        return Ask<int>(LVM_GETSELECTIONMARK);
    }
    int SetSelectionMark(int iIndex)
    {
        return Ask<int>(LVM_SETSELECTIONMARK, 0, iIndex);
    }
    int GetTopIndex() const
    {
        return Ask<int>(LVM_GETTOPINDEX);
    }
    int GetCountPerPage() const
    {
        return Ask<int>(LVM_GETCOUNTPERPAGE);
    }
    BOOL RedrawItems(int nFirst, int nLast)
    {
        return Ask<BOOL>(LVM_REDRAWITEMS, nFirst, nLast);
    }
    BOOL Update(int nItem)
    {
        return Ask<BOOL>(LVM_UPDATE, nItem);
    }
    BOOL GetColumn(int nCol, LVCOLUMN* pColumn) const
    {
        return Ask<BOOL>(LVM_GETCOLUMN, nCol, pColumn);
    }
    BOOL SetColumn(int nCol, const LVCOLUMN* pColumn)
    {
        return Ask<BOOL>(LVM_SETCOLUMN, nCol, pColumn);
    }
    int InsertColumn(int nCol, const LVCOLUMN* pColumn)
    {
        return Ask<int>(LVM_INSERTCOLUMN, nCol, pColumn);
    }
    int InsertColumn(int nCol, LPCTSTR lpszColumnHeading, int nFormat = LVCFMT_LEFT, int nWidth = -1,
                     int nSubItem = -1);
    BOOL DeleteColumn(int nCol)
    {
        return Ask<BOOL>(LVM_DELETECOLUMN, nCol);
    }
    int GetColumnWidth(int nCol) const
    {
        return Ask<int>(LVM_GETCOLUMNWIDTH, nCol);
    }
    BOOL SetColumnWidth(int nCol, int cx)
    {
        return Ask<BOOL>(LVM_SETCOLUMNWIDTH, nCol, MAKELPARAM(cx, 0));
    }
    DWORD GetExtendedStyle()
    {
        return Ask<DWORD>(LVM_GETEXTENDEDLISTVIEWSTYLE);
    }
    DWORD SetExtendedStyle(DWORD dwNewStyle)
    {
        return Ask<DWORD>(LVM_SETEXTENDEDLISTVIEWSTYLE, 0, dwNewStyle);
    }
    CHeaderCtrl* GetHeaderCtrl();
    CEdit* GetEditControl() const;
    CImageList* GetImageList(int nImageList) const;
    CImageList* SetImageList(CImageList* pImageList, int nImageListType);
    BOOL SortItems(PFNLVCOMPARE pfnCompare, DWORD_PTR dwData)
    {
        return Ask<BOOL>(LVM_SORTITEMS, dwData, pfnCompare);
    }
    BOOL SortItemsEx(PFNLVCOMPARE pfnCompare, DWORD_PTR dwData)
    {
        return Ask<BOOL>(LVM_SORTITEMSEX, dwData, pfnCompare);
    }
    int GetStringWidth(LPCTSTR lpsz) const
    {
        return Ask<int>(LVM_GETSTRINGWIDTH, 0, lpsz);
    }
    COLORREF GetTextColor() const
    {
        return Ask<COLORREF>(LVM_GETTEXTCOLOR);
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
