// The common controls.
#include "handlemap.h"

#include "suite/mfc/afxdtctl.h"

IMPLEMENT_DYNCREATE(CImageList, CObject)
IMPLEMENT_DYNAMIC(CHeaderCtrl, CWnd)
IMPLEMENT_DYNAMIC(CListCtrl, CWnd)
IMPLEMENT_DYNAMIC(CTabCtrl, CWnd)
IMPLEMENT_DYNAMIC(CProgressCtrl, CWnd)
IMPLEMENT_DYNAMIC(CSpinButtonCtrl, CWnd)
IMPLEMENT_DYNAMIC(CToolTipCtrl, CWnd)
IMPLEMENT_DYNAMIC(CToolBarCtrl, CWnd)
IMPLEMENT_DYNAMIC(CStatusBarCtrl, CWnd)
IMPLEMENT_DYNAMIC(CDateTimeCtrl, CWnd)

namespace
{
// The classes of the common controls are registered when the library is told to.
void Ready(DWORD classes)
{
    INITCOMMONCONTROLSEX wanted{sizeof(wanted), classes};
    ::InitCommonControlsEx(&wanted);
}

HIMAGELIST HandleOf(const CImageList* list)
{
    return list != nullptr ? list->m_hImageList : nullptr;
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
AFX_CREATE_CONTROL(CHeaderCtrl, WC_HEADER, ICC_LISTVIEW_CLASSES)
AFX_CREATE_CONTROL(CListCtrl, WC_LISTVIEW, ICC_LISTVIEW_CLASSES)
AFX_CREATE_CONTROL(CTabCtrl, WC_TABCONTROL, ICC_TAB_CLASSES)
AFX_CREATE_CONTROL(CProgressCtrl, PROGRESS_CLASS, ICC_PROGRESS_CLASS)
AFX_CREATE_CONTROL(CSpinButtonCtrl, UPDOWN_CLASS, ICC_UPDOWN_CLASS)
AFX_CREATE_CONTROL(CToolBarCtrl, TOOLBARCLASSNAME, ICC_BAR_CLASSES)
AFX_CREATE_CONTROL(CStatusBarCtrl, STATUSCLASSNAME, ICC_BAR_CLASSES)
AFX_CREATE_CONTROL(CDateTimeCtrl, DATETIMEPICK_CLASS, ICC_DATE_CLASSES)

// ---------------------------------------------------------------------------------------------------------
// CImageList

CImageList::~CImageList()
{
    DeleteImageList();
}

CImageList* CImageList::FromHandle(HIMAGELIST hImageList)
{
    if (hImageList == nullptr)
    {
        return nullptr;
    }
    CHandleMaps& maps = AfxMaps();
    return maps.imageLists.Find(hImageList, maps.NextSerial(), [] { return std::make_unique<CImageList>(); });
}

CImageList* CImageList::FromHandlePermanent(HIMAGELIST hImageList)
{
    return AfxMaps().imageLists.FindPermanent(hImageList);
}

void CImageList::DeleteTempMap()
{
    AfxMaps().DropSince(0);
}

BOOL CImageList::Attach(HIMAGELIST hImageList)
{
    ASSERT(m_hImageList == nullptr);
    if (hImageList == nullptr)
    {
        return FALSE;
    }
    AfxMaps().imageLists.SetPermanent(hImageList, this);
    m_hImageList = hImageList;
    return TRUE;
}

HIMAGELIST CImageList::Detach()
{
    const HIMAGELIST handle = m_hImageList;
    if (handle != nullptr)
    {
        auto& map = AfxMaps().imageLists;
        if (map.FindPermanent(handle) == this)
        {
            map.Remove(handle);
        }
        m_hImageList = nullptr;
    }
    return handle;
}

BOOL CImageList::DeleteImageList()
{
    return m_hImageList != nullptr && ::ImageList_Destroy(Detach());
}

BOOL CImageList::Create(UINT nBitmapID, int cx, int nGrow, COLORREF crMask)
{
    const HINSTANCE module = AfxFindResourceHandle(MAKEINTRESOURCE(nBitmapID), RT_BITMAP);
    return Attach(::ImageList_LoadImage(module, MAKEINTRESOURCE(nBitmapID), cx, nGrow, crMask, IMAGE_BITMAP,
                                        LR_CREATEDIBSECTION));
}

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

// A position is the item's index plus one, so that null can mean the end.
POSITION CListCtrl::GetFirstSelectedItemPosition() const
{
    return reinterpret_cast<POSITION>(static_cast<INT_PTR>(GetNextItem(-1, LVNI_SELECTED) + 1));
}

int CListCtrl::GetNextSelectedItem(POSITION& pos) const
{
    const int item = static_cast<int>(reinterpret_cast<INT_PTR>(pos)) - 1;
    pos = reinterpret_cast<POSITION>(static_cast<INT_PTR>(GetNextItem(item, LVNI_SELECTED) + 1));
    return item;
}

BOOL CListCtrl::GetItemRect(int nItem, LPRECT lpRect, UINT nCode) const
{
    lpRect->left = static_cast<LONG>(nCode);
    return Ask<BOOL>(LVM_GETITEMRECT, nItem, lpRect);
}

BOOL CListCtrl::GetSubItemRect(int iItem, int iSubItem, int nArea, CRect& ref) const
{
    RECT rect{nArea, iSubItem, 0, 0};
    if (!Ask<BOOL>(LVM_GETSUBITEMRECT, iItem, &rect))
    {
        return FALSE;
    }
    ref = rect;
    return TRUE;
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

CHeaderCtrl* CListCtrl::GetHeaderCtrl()
{
    return static_cast<CHeaderCtrl*>(FromHandle(Ask<HWND>(LVM_GETHEADER)));
}

CEdit* CListCtrl::GetEditControl() const
{
    return static_cast<CEdit*>(FromHandle(Ask<HWND>(LVM_GETEDITCONTROL)));
}

CImageList* CListCtrl::GetImageList(int nImageList) const
{
    return CImageList::FromHandle(Ask<HIMAGELIST>(LVM_GETIMAGELIST, nImageList));
}

CImageList* CListCtrl::SetImageList(CImageList* pImageList, int nImageListType)
{
    return CImageList::FromHandle(Ask<HIMAGELIST>(LVM_SETIMAGELIST, nImageListType, HandleOf(pImageList)));
}

// ---------------------------------------------------------------------------------------------------------
// CTabCtrl

LONG CTabCtrl::InsertItem(int nItem, LPCTSTR lpszItem)
{
    TCITEM item{};
    item.mask = TCIF_TEXT;
    item.pszText = const_cast<LPTSTR>(lpszItem);
    return InsertItem(nItem, &item);
}

CImageList* CTabCtrl::SetImageList(CImageList* pImageList)
{
    return CImageList::FromHandle(Ask<HIMAGELIST>(TCM_SETIMAGELIST, 0, HandleOf(pImageList)));
}

// ---------------------------------------------------------------------------------------------------------
// CToolTipCtrl

namespace
{
// A tool is a window (id 0) or a rectangle of it. The size is that of the structure's first version, which
// every comctl32 knows.
TOOLINFO ToolOf(const CWnd* wnd, UINT_PTR id)
{
    TOOLINFO tool{};
    tool.cbSize = TTTOOLINFOA_V2_SIZE;
    if (id == 0)
    {
        tool.hwnd = ::GetParent(wnd->m_hWnd);
        tool.uFlags = TTF_IDISHWND;
        tool.uId = reinterpret_cast<UINT_PTR>(wnd->m_hWnd);
    }
    else
    {
        tool.hwnd = wnd->m_hWnd;
        tool.uId = id;
    }
    return tool;
}
} // namespace

BOOL CToolTipCtrl::Create(CWnd* pParentWnd, DWORD dwStyle)
{
    Ready(ICC_TAB_CLASSES);
    return CreateEx(0, TOOLTIPS_CLASS, nullptr, WS_POPUP | dwStyle, CW_USEDEFAULT, CW_USEDEFAULT,
                    CW_USEDEFAULT, CW_USEDEFAULT, pParentWnd->m_hWnd, nullptr);
}

BOOL CToolTipCtrl::AddTool(CWnd* pWnd, LPCTSTR lpszText, LPCRECT lpRectTool, UINT_PTR nIDTool)
{
    TOOLINFO tool = ToolOf(pWnd, nIDTool);
    tool.lpszText = const_cast<LPTSTR>(lpszText);
    if (lpRectTool != nullptr)
    {
        tool.rect = *lpRectTool;
    }
    return Ask<BOOL>(TTM_ADDTOOL, 0, &tool);
}

BOOL CToolTipCtrl::AddTool(CWnd* pWnd, UINT nIDText, LPCRECT lpRectTool, UINT_PTR nIDTool)
{
    CString text;
    return text.LoadString(nIDText) && AddTool(pWnd, text.GetString(), lpRectTool, nIDTool);
}

void CToolTipCtrl::DelTool(CWnd* pWnd, UINT_PTR nIDTool)
{
    TOOLINFO tool = ToolOf(pWnd, nIDTool);
    Ask(TTM_DELTOOL, 0, &tool);
}

void CToolTipCtrl::UpdateTipText(LPCTSTR lpszText, CWnd* pWnd, UINT_PTR nIDTool)
{
    TOOLINFO tool = ToolOf(pWnd, nIDTool);
    tool.lpszText = const_cast<LPTSTR>(lpszText);
    Ask(TTM_UPDATETIPTEXT, 0, &tool);
}

void CToolTipCtrl::RelayEvent(LPMSG lpMsg)
{
    Ask(TTM_RELAYEVENT, 0, lpMsg);
}

// ---------------------------------------------------------------------------------------------------------
// Bars and date picker

CImageList* CToolBarCtrl::SetImageList(CImageList* pImageList)
{
    return CImageList::FromHandle(Ask<HIMAGELIST>(TB_SETIMAGELIST, 0, HandleOf(pImageList)));
}

CToolTipCtrl* CToolBarCtrl::GetToolTips() const
{
    return static_cast<CToolTipCtrl*>(FromHandle(Ask<HWND>(TB_GETTOOLTIPS)));
}

CString CStatusBarCtrl::GetText(int nPane, int* pType) const
{
    const auto length = Ask<DWORD>(SB_GETTEXTLENGTH, nPane);
    CString text;
    Ask(SB_GETTEXT, nPane, text.GetBuffer(LOWORD(length)));
    text.ReleaseBuffer();
    if (pType != nullptr)
    {
        *pType = HIWORD(length);
    }
    return text;
}

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

BOOL CDateTimeCtrl::SetRange(const COleDateTime* pMinRange, const COleDateTime* pMaxRange)
{
    SYSTEMTIME limits[2] = {};
    DWORD flags = 0;
    if (pMinRange != nullptr && pMinRange->GetAsSystemTime(limits[0]))
    {
        flags |= GDTR_MIN;
    }
    if (pMaxRange != nullptr && pMaxRange->GetAsSystemTime(limits[1]))
    {
        flags |= GDTR_MAX;
    }
    return Ask<BOOL>(DTM_SETRANGE, flags, limits);
}
