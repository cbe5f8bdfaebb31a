// The common controls.
#include "handlemap.h"

#include "suite/mfc/afxdtctl.h"

IMPLEMENT_DYNAMIC(CListCtrl, CWnd)
IMPLEMENT_DYNAMIC(CTabCtrl, CWnd)
IMPLEMENT_DYNAMIC(CProgressCtrl, CWnd)
IMPLEMENT_DYNAMIC(CDateTimeCtrl, CWnd)

namespace
{
// The classes of the common controls are registered when the library is told to.
void Ready(DWORD classes)
{
    INITCOMMONCONTROLSEX wanted{sizeof(wanted), classes};
    ::InitCommonControlsEx(&wanted);
}

// Texts longer than the first buffer are read with a larger one, up to this many characters.
constexpr int longestItemText = 1 << 20;
} // namespace

#define AFX_CREATE_CONTROL(theClass, windowClass, classes)                                                   \
    BOOL theClass::Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID)                       \
    {                                                                                                        \
        Ready(classes);                                                                                      \
        return CWnd::Create(windowClass, nullptr, dwStyle, rect, pParentWnd, nID);                           \
    }
AFX_CREATE_CONTROL(CListCtrl, WC_LISTVIEW, ICC_LISTVIEW_CLASSES)

// ---------------------------------------------------------------------------------------------------------
// CListCtrl

BOOL CListCtrl::SetItem(int nItem, int nSubItem, UINT nMask, LPCTSTR lpszItem, int nImage, UINT nState,
                        UINT nStateMask, LPARAM lParam)
{
    LVITEM item{};
    item.mask = nMask;
    item.iItem = nItem;
    item.iSubItem = nSubItem;
    item.pszText = const_cast<LPTSTR>(lpszItem); // read only
    item.iImage = nImage;
    item.state = nState;
    item.stateMask = nStateMask;
    item.lParam = lParam;
    return SetItem(&item);
}

int CListCtrl::InsertItem(int nItem, LPCTSTR lpszItem)
{
    LVITEM item{};
    item.mask = LVIF_TEXT;
    item.iItem = nItem;
    item.pszText = const_cast<LPTSTR>(lpszItem);
    return InsertItem(&item);
}

int CListCtrl::InsertItem(int nItem, LPCTSTR lpszItem, int nImage)
{
    LVITEM item{};
    item.mask = LVIF_TEXT | LVIF_IMAGE;
    item.iItem = nItem;
    item.pszText = const_cast<LPTSTR>(lpszItem);
    item.iImage = nImage;
    return InsertItem(&item);
}

CString CListCtrl::GetItemText(int nItem, int nSubItem) const
{
    CString text;
    for (int size = 256; size <= longestItemText; size *= 2)
    {
        LVITEM item{};
        item.iSubItem = nSubItem;
        item.cchTextMax = size;
        item.pszText = text.GetBuffer(size);
        const int length = Ask(LVM_GETITEMTEXT, nItem, &item);
        text.ReleaseBuffer(length);
        if (length < size - 1)
        {
            break;
        }
    }
    return text;
}

BOOL CListCtrl::SetItemText(int nItem, int nSubItem, LPCTSTR lpszText)
{
    LVITEM item{};
    item.iSubItem = nSubItem;
    item.pszText = const_cast<LPTSTR>(lpszText);
    return Ask<BOOL>(LVM_SETITEMTEXT, nItem, &item);
}

DWORD_PTR CListCtrl::GetItemData(int nItem) const
{
    LVITEM item{};
    item.mask = LVIF_PARAM;
    item.iItem = nItem;
    GetItem(&item);
    return static_cast<DWORD_PTR>(item.lParam);
}

BOOL CListCtrl::SetItemData(int nItem, DWORD_PTR dwData)
{
    return SetItem(nItem, 0, LVIF_PARAM, nullptr, 0, 0, 0, static_cast<LPARAM>(dwData));
}

BOOL CListCtrl::SetItemState(int nItem, UINT nState, UINT nMask)
{
    LVITEM item{};
    item.state = nState;
    item.stateMask = nMask;
    return Ask<BOOL>(LVM_SETITEMSTATE, nItem, &item);
}

int CListCtrl::InsertColumn(int nCol, LPCTSTR lpszColumnHeading, int nFormat, int nWidth, int nSubItem)
{
    LVCOLUMN column{};
    column.mask = LVCF_TEXT | LVCF_FMT;
    column.pszText = const_cast<LPTSTR>(lpszColumnHeading);
    column.fmt = nFormat;
    if (nWidth != -1)
    {
        column.mask |= LVCF_WIDTH;
        column.cx = nWidth;
    }
    if (nSubItem != -1)
    {
        column.mask |= LVCF_SUBITEM;
        column.iSubItem = nSubItem;
    }
    return InsertColumn(nCol, &column);
}

// ---------------------------------------------------------------------------------------------------------
// CDateTimeCtrl

BOOL CDateTimeCtrl::GetTime(COleDateTime& timeDest) const
{
    SYSTEMTIME time{};
    if (GetTime(&time) != GDT_VALID)
    {
        timeDest.SetStatus(COleDateTime::null);
        return FALSE;
    }
    timeDest = COleDateTime(time);
    return TRUE;
}

BOOL CDateTimeCtrl::SetTime(const COleDateTime& timeNew)
{
    if (timeNew.GetStatus() == COleDateTime::null)
    {
        return SetTime(static_cast<LPSYSTEMTIME>(nullptr));
    }
    SYSTEMTIME time{};
    return timeNew.GetAsSystemTime(time) && SetTime(&time);
}

BOOL CDateTimeCtrl::SetTime(LPSYSTEMTIME pTimeNew)
{
    return Ask<BOOL>(DTM_SETSYSTEMTIME, pTimeNew != nullptr ? GDT_VALID : GDT_NONE, pTimeNew);
}
