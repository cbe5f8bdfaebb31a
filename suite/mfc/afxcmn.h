// The common controls. Thin: each member is the control's message or macro of the same name.
//
// CImageList owns its list unless it came from FromHandle. Everything belongs to one user interface thread.
#pragma once

#include "suite/mfc/afxwin.h"

class AFX_DLL_CLASS CImageList : public CObject
{
    DECLARE_DYNCREATE(CImageList)
public:
    CImageList() = default;
    ~CImageList() override;

    HIMAGELIST m_hImageList = nullptr;
    operator HIMAGELIST() const
    {
        return m_hImageList;
    }
    HIMAGELIST GetSafeHandle() const
    {
        return m_hImageList;
    }
    static CImageList* FromHandle(HIMAGELIST hImageList);
    static CImageList* FromHandlePermanent(HIMAGELIST hImageList);
    static void DeleteTempMap();
    BOOL Attach(HIMAGELIST hImageList);
    HIMAGELIST Detach();
    BOOL DeleteImageList();

    BOOL Create(int cx, int cy, UINT nFlags, int nInitial, int nGrow)
    {
        return Attach(::ImageList_Create(cx, cy, static_cast<int>(nFlags), nInitial, nGrow));
    }
    // From a bitmap resource; crMask CLR_NONE for none.
    BOOL Create(UINT nBitmapID, int cx, int nGrow, COLORREF crMask);
    int GetImageCount() const
    {
        return ::ImageList_GetImageCount(m_hImageList);
    }
    int Add(CBitmap* pbmImage, CBitmap* pbmMask)
    {
        return ::ImageList_Add(m_hImageList, *pbmImage,
                               pbmMask != nullptr ? static_cast<HBITMAP>(*pbmMask) : nullptr);
    }
    int Add(CBitmap* pbmImage, COLORREF crMask)
    {
        return ::ImageList_AddMasked(m_hImageList, *pbmImage, crMask);
    }
    int Add(HICON hIcon)
    {
        return ::ImageList_ReplaceIcon(m_hImageList, -1, hIcon);
    }
    BOOL Draw(CDC* pDC, int nImage, POINT pt, UINT nStyle)
    {
        return ::ImageList_Draw(m_hImageList, nImage, pDC->GetSafeHdc(), pt.x, pt.y, nStyle);
    }
    HICON ExtractIcon(int nImage)
    {
        return ::ImageList_GetIcon(m_hImageList, nImage, ILD_NORMAL);
    }
};

#include "suite/mfc/win/listctrl.h"

class AFX_DLL_CLASS CTabCtrl : public CWnd
{
    DECLARE_DYNAMIC(CTabCtrl)
public:
    BOOL Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID);
    using CWnd::Create;
    int GetItemCount() const
    {
        return Ask<int>(TCM_GETITEMCOUNT);
    }
    BOOL GetItem(int nItem, TCITEM* pTabCtrlItem) const
    {
        return Ask<BOOL>(TCM_GETITEM, nItem, pTabCtrlItem);
    }
    BOOL SetItem(int nItem, TCITEM* pTabCtrlItem)
    {
        return Ask<BOOL>(TCM_SETITEM, nItem, pTabCtrlItem);
    }
    LONG InsertItem(int nItem, TCITEM* pTabCtrlItem)
    {
        return Ask<LONG>(TCM_INSERTITEM, nItem, pTabCtrlItem);
    }
    LONG InsertItem(int nItem, LPCTSTR lpszItem);
    BOOL DeleteItem(int nItem)
    {
        return Ask<BOOL>(TCM_DELETEITEM, nItem);
    }
    BOOL DeleteAllItems()
    {
        return Ask<BOOL>(TCM_DELETEALLITEMS);
    }
    BOOL GetItemRect(int nItem, LPRECT lpRect) const
    {
        return Ask<BOOL>(TCM_GETITEMRECT, nItem, lpRect);
    }
    int GetCurSel() const
    {
        return Ask<int>(TCM_GETCURSEL);
    }
    // Tells nobody, as the control's message does not.
    int SetCurSel(int nItem)
    {
        return Ask<int>(TCM_SETCURSEL, nItem);
    }
    int GetCurFocus() const
    {
        return Ask<int>(TCM_GETCURFOCUS);
    }
    void SetCurFocus(int nItem)
    {
        Ask(TCM_SETCURFOCUS, nItem);
    }
    int GetRowCount() const
    {
        return Ask<int>(TCM_GETROWCOUNT);
    }
    int HitTest(TCHITTESTINFO* pHitTestInfo) const
    {
        return Ask<int>(TCM_HITTEST, 0, pHitTestInfo);
    }
    void AdjustRect(BOOL bLarger, LPRECT lpRect)
    {
        Ask(TCM_ADJUSTRECT, bLarger, lpRect);
    }
    CSize SetItemSize(CSize size)
    {
        const LRESULT previous = ::SendMessage(m_hWnd, TCM_SETITEMSIZE, 0, MAKELPARAM(size.cx, size.cy));
        return {LOWORD(previous), HIWORD(previous)};
    }
    void SetPadding(CSize size)
    {
        Ask(TCM_SETPADDING, 0, MAKELPARAM(size.cx, size.cy));
    }
    int SetMinTabWidth(int cx)
    {
        return Ask<int>(TCM_SETMINTABWIDTH, 0, cx);
    }
    CImageList* SetImageList(CImageList* pImageList);
};

class AFX_DLL_CLASS CProgressCtrl : public CWnd
{
    DECLARE_DYNAMIC(CProgressCtrl)
public:
    BOOL Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID);
    using CWnd::Create;
    void SetRange(short nLower, short nUpper)
    {
        Ask(PBM_SETRANGE, 0, MAKELPARAM(nLower, nUpper));
    }
    void SetRange32(int nLower, int nUpper)
    {
        Ask(PBM_SETRANGE32, nLower, nUpper);
    }
    int GetPos() const
    {
        return Ask<int>(PBM_GETPOS);
    }
    int SetPos(int nPos)
    {
        return Ask<int>(PBM_SETPOS, nPos);
    }
    int OffsetPos(int nPos)
    {
        return Ask<int>(PBM_DELTAPOS, nPos);
    }
    int SetStep(int nStep)
    {
        return Ask<int>(PBM_SETSTEP, nStep);
    }
    int StepIt()
    {
        return Ask<int>(PBM_STEPIT);
    }
    BOOL SetMarquee(BOOL fMarqueeMode, int nInterval)
    {
        return Ask<BOOL>(PBM_SETMARQUEE, fMarqueeMode, nInterval);
    }
};

class AFX_DLL_CLASS CSpinButtonCtrl : public CWnd
{
    DECLARE_DYNAMIC(CSpinButtonCtrl)
public:
    BOOL Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID);
    using CWnd::Create;
    CWnd* SetBuddy(CWnd* pWndBuddy)
    {
        return FromHandle(reinterpret_cast<HWND>(
            ::SendMessage(m_hWnd, UDM_SETBUDDY, reinterpret_cast<WPARAM>(pWndBuddy->m_hWnd), 0)));
    }
    void SetRange32(int nLower, int nUpper)
    {
        Ask(UDM_SETRANGE32, nLower, nUpper);
    }
    int GetPos() const
    {
        return Ask<int>(UDM_GETPOS32);
    }
    int SetPos(int nPos)
    {
        return Ask<int>(UDM_SETPOS32, 0, nPos);
    }
};

class AFX_DLL_CLASS CToolTipCtrl : public CWnd
{
    DECLARE_DYNAMIC(CToolTipCtrl)
public:
    BOOL Create(CWnd* pParentWnd, DWORD dwStyle = 0);
    using CWnd::Create;
    // lpszText may be LPSTR_TEXTCALLBACK; a text is copied by the control.
    BOOL AddTool(CWnd* pWnd, LPCTSTR lpszText = LPSTR_TEXTCALLBACK, LPCRECT lpRectTool = nullptr,
                 UINT_PTR nIDTool = 0);
    BOOL AddTool(CWnd* pWnd, UINT nIDText, LPCRECT lpRectTool = nullptr, UINT_PTR nIDTool = 0);
    void DelTool(CWnd* pWnd, UINT_PTR nIDTool = 0);
    void UpdateTipText(LPCTSTR lpszText, CWnd* pWnd, UINT_PTR nIDTool = 0);
    // For PreTranslateMessage of the window that holds the tools.
    void RelayEvent(LPMSG lpMsg);
    void Activate(BOOL bActivate)
    {
        Ask(TTM_ACTIVATE, bActivate);
    }
    void Pop()
    {
        Ask(TTM_POP);
    }
    void SetDelayTime(DWORD dwDuration, int iTime)
    {
        Ask(TTM_SETDELAYTIME, dwDuration, MAKELPARAM(iTime, 0));
    }
    int SetMaxTipWidth(int iWidth)
    {
        return Ask<int>(TTM_SETMAXTIPWIDTH, 0, iWidth);
    }
};

class AFX_DLL_CLASS CToolBarCtrl : public CWnd
{
    DECLARE_DYNAMIC(CToolBarCtrl)
public:
    BOOL Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID);
    using CWnd::Create;
    BOOL AddButtons(int nNumButtons, const TBBUTTON* lpButtons)
    {
        return Ask<BOOL>(TB_ADDBUTTONS, nNumButtons, lpButtons);
    }
    BOOL InsertButton(int nIndex, const TBBUTTON* lpButton)
    {
        return Ask<BOOL>(TB_INSERTBUTTON, nIndex, lpButton);
    }
    BOOL DeleteButton(int nIndex)
    {
        return Ask<BOOL>(TB_DELETEBUTTON, nIndex);
    }
    BOOL GetButton(int nIndex, LPTBBUTTON lpButton) const
    {
        return Ask<BOOL>(TB_GETBUTTON, nIndex, lpButton);
    }
    int GetButtonCount() const
    {
        return Ask<int>(TB_BUTTONCOUNT);
    }
    int CommandToIndex(UINT nID) const
    {
        return Ask<int>(TB_COMMANDTOINDEX, nID);
    }
    int GetState(int nID) const
    {
        return Ask<int>(TB_GETSTATE, nID);
    }
    BOOL SetState(int nID, UINT nState)
    {
        return Ask<BOOL>(TB_SETSTATE, nID, MAKELPARAM(nState, 0));
    }
    BOOL EnableButton(int nID, BOOL bEnable = TRUE)
    {
        return Ask<BOOL>(TB_ENABLEBUTTON, nID, MAKELPARAM(bEnable, 0));
    }
    BOOL CheckButton(int nID, BOOL bCheck = TRUE)
    {
        return Ask<BOOL>(TB_CHECKBUTTON, nID, MAKELPARAM(bCheck, 0));
    }
    BOOL IsButtonEnabled(int nID) const
    {
        return Ask<BOOL>(TB_ISBUTTONENABLED, nID);
    }
    void AutoSize()
    {
        Ask(TB_AUTOSIZE);
    }
    void SetButtonStructSize(int nSize = sizeof(TBBUTTON))
    {
        Ask(TB_BUTTONSTRUCTSIZE, nSize);
    }
    BOOL SetButtonSize(CSize size)
    {
        return Ask<BOOL>(TB_SETBUTTONSIZE, 0, MAKELPARAM(size.cx, size.cy));
    }
    BOOL SetBitmapSize(CSize size)
    {
        return Ask<BOOL>(TB_SETBITMAPSIZE, 0, MAKELPARAM(size.cx, size.cy));
    }
    BOOL SetMaxTextRows(int iMaxRows)
    {
        return Ask<BOOL>(TB_SETMAXTEXTROWS, iMaxRows);
    }
    BOOL GetItemRect(int nIndex, LPRECT lpRect) const
    {
        return Ask<BOOL>(TB_GETITEMRECT, nIndex, lpRect);
    }
    BOOL GetRect(int nID, LPRECT lpRect) const
    {
        return Ask<BOOL>(TB_GETRECT, nID, lpRect);
    }
    DWORD SetExtendedStyle(DWORD dwExStyle)
    {
        return Ask<DWORD>(TB_SETEXTENDEDSTYLE, 0, dwExStyle);
    }
    CSize GetMaxSize() const
    {
        CSize size;
        Ask(TB_GETMAXSIZE, 0, &size);
        return size;
    }
    CImageList* SetImageList(CImageList* pImageList);
    CToolTipCtrl* GetToolTips() const;
};

class AFX_DLL_CLASS CStatusBarCtrl : public CWnd
{
    DECLARE_DYNAMIC(CStatusBarCtrl)
public:
    BOOL Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID);
    using CWnd::Create;
    BOOL SetText(LPCTSTR lpszText, int nPane, int nType)
    {
        return Ask<BOOL>(SB_SETTEXT, nPane | nType, lpszText);
    }
    CString GetText(int nPane, int* pType = nullptr) const;
    BOOL SetParts(int nParts, int* pWidths)
    {
        return Ask<BOOL>(SB_SETPARTS, nParts, pWidths);
    }
    BOOL GetRect(int nPane, LPRECT lpRect) const
    {
        return Ask<BOOL>(SB_GETRECT, nPane, lpRect);
    }
    BOOL SetSimple(BOOL bSimple = TRUE)
    {
        return Ask<BOOL>(SB_SIMPLE, bSimple);
    }
};
