// The standard controls. Included through afxwin.h.
//
// Thin: each member is the control's message of the same name. Draw and measure members of owner-drawn
// controls are called by reflection, before the parent's handlers.
#pragma once

class AFX_DLL_CLASS CStatic : public CWnd
{
    DECLARE_DYNAMIC(CStatic)
public:
    BOOL Create(LPCTSTR lpszText, DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID = 0xFFFF);
    using CWnd::Create;
    HICON SetIcon(HICON hIcon)
    {
        return Ask<HICON>(STM_SETIMAGE, IMAGE_ICON, hIcon);
    }
    HBITMAP SetBitmap(HBITMAP hBitmap)
    {
        return Ask<HBITMAP>(STM_SETIMAGE, IMAGE_BITMAP, hBitmap);
    }
};

class AFX_DLL_CLASS CButton : public CWnd
{
    DECLARE_DYNAMIC(CButton)
public:
    BOOL Create(LPCTSTR lpszCaption, DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID);
    using CWnd::Create;
    UINT GetState() const
    {
        return Ask<UINT>(BM_GETSTATE);
    }
    void SetState(BOOL bHighlight)
    {
        Ask(BM_SETSTATE, bHighlight);
    }
    int GetCheck() const
    {
        return Ask<int>(BM_GETCHECK);
    }
    void SetCheck(int nCheck)
    {
        Ask(BM_SETCHECK, nCheck);
    }
    UINT GetButtonStyle() const
    {
        return static_cast<UINT>(::GetWindowLongPtr(m_hWnd, GWL_STYLE) & 0xFF);
    }
    void SetButtonStyle(UINT nStyle, BOOL bRedraw = TRUE)
    {
        Ask(BM_SETSTYLE, nStyle, bRedraw);
    }
    HICON SetIcon(HICON hIcon)
    {
        return Ask<HICON>(BM_SETIMAGE, IMAGE_ICON, hIcon);
    }
    HBITMAP SetBitmap(HBITMAP hBitmap)
    {
        return Ask<HBITMAP>(BM_SETIMAGE, IMAGE_BITMAP, hBitmap);
    }
    virtual void DrawItem(LPDRAWITEMSTRUCT lpDrawItemStruct);

protected:
    BOOL OnChildNotify(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* pResult) override;
};

class AFX_DLL_CLASS CEdit : public CWnd
{
    DECLARE_DYNAMIC(CEdit)
public:
    BOOL Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID);
    using CWnd::Create;
    UINT GetLimitText() const
    {
        return Ask<UINT>(EM_GETLIMITTEXT);
    }
    void SetLimitText(UINT nMax)
    {
        Ask(EM_SETLIMITTEXT, nMax);
    }
    void LimitText(int nChars = 0)
    {
        Ask(EM_LIMITTEXT, nChars);
    }
    int GetLineCount() const
    {
        return Ask<int>(EM_GETLINECOUNT);
    }
    // The line's text without a terminator; nMaxLength includes the word that receives it.
    int GetLine(int nIndex, LPTSTR lpszBuffer, int nMaxLength) const;
    int LineLength(int nLine = -1) const
    {
        return Ask<int>(EM_LINELENGTH, nLine);
    }
    int LineIndex(int nLine = -1) const
    {
        return Ask<int>(EM_LINEINDEX, nLine);
    }
    int LineFromChar(int nIndex = -1) const
    {
        return Ask<int>(EM_LINEFROMCHAR, nIndex);
    }
    BOOL GetModify() const
    {
        return Ask<BOOL>(EM_GETMODIFY);
    }
    void SetModify(BOOL bModified = TRUE)
    {
        Ask(EM_SETMODIFY, bModified);
    }
    BOOL SetReadOnly(BOOL bReadOnly = TRUE)
    {
        return Ask<BOOL>(EM_SETREADONLY, bReadOnly);
    }
    void GetSel(int& nStartChar, int& nEndChar) const
    {
        DWORD start = 0;
        DWORD end = 0;
        Ask(EM_GETSEL, reinterpret_cast<WPARAM>(&start), &end);
        nStartChar = static_cast<int>(start);
        nEndChar = static_cast<int>(end);
    }
    DWORD GetSel() const
    {
        return Ask<DWORD>(EM_GETSEL);
    }
    // Scrolls the caret into view unless bNoScroll.
    void SetSel(int nStartChar, int nEndChar, BOOL bNoScroll = FALSE);
    void ReplaceSel(LPCTSTR lpszNewText, BOOL bCanUndo = FALSE)
    {
        Ask(EM_REPLACESEL, bCanUndo, lpszNewText);
    }
    void LineScroll(int nLines, int nChars = 0)
    {
        Ask(EM_LINESCROLL, nChars, nLines);
    }
    BOOL CanUndo() const
    {
        return Ask<BOOL>(EM_CANUNDO);
    }
    BOOL Undo()
    {
        return Ask<BOOL>(EM_UNDO);
    }
    void EmptyUndoBuffer()
    {
        Ask(EM_EMPTYUNDOBUFFER);
    }
    void SetPasswordChar(TCHAR ch)
    {
        Ask(EM_SETPASSWORDCHAR, ch);
    }
    void SetMargins(UINT nLeft, UINT nRight)
    {
        Ask(EM_SETMARGINS, EC_LEFTMARGIN | EC_RIGHTMARGIN, MAKELONG(nLeft, nRight));
    }
    void GetRect(LPRECT lpRect) const
    {
        Ask(EM_GETRECT, 0, lpRect);
    }
    void Cut()
    {
        Ask(WM_CUT);
    }
    void Copy()
    {
        Ask(WM_COPY);
    }
    void Paste()
    {
        Ask(WM_PASTE);
    }
    void Clear()
    {
        Ask(WM_CLEAR);
    }
    // A grey text in an empty field, converted from the system code page.
    BOOL SetCueBanner(LPCTSTR lpszText, BOOL fDrawIfFocused = FALSE);
    BOOL ShowBalloonTip(LPCTSTR lpszTitle, LPCTSTR lpszText, INT ttiIcon = TTI_NONE);
};

class AFX_DLL_CLASS CListBox : public CWnd
{
    DECLARE_DYNAMIC(CListBox)
public:
    BOOL Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID);
    using CWnd::Create;
    int GetCount() const
    {
        return Ask<int>(LB_GETCOUNT);
    }
    int GetCurSel() const
    {
        return Ask<int>(LB_GETCURSEL);
    }
    int SetCurSel(int nSelect)
    {
        return Ask<int>(LB_SETCURSEL, nSelect);
    }
    int GetSel(int nIndex) const
    {
        return Ask<int>(LB_GETSEL, nIndex);
    }
    int SetSel(int nIndex, BOOL bSelect = TRUE)
    {
        return Ask<int>(LB_SETSEL, bSelect, nIndex);
    }
    int GetSelCount() const
    {
        return Ask<int>(LB_GETSELCOUNT);
    }
    int GetSelItems(int nMaxItems, LPINT rgIndex) const
    {
        return Ask<int>(LB_GETSELITEMS, nMaxItems, rgIndex);
    }
    int SelItemRange(BOOL bSelect, int nFirstItem, int nLastItem)
    {
        return Ask<int>(LB_SELITEMRANGE, bSelect, MAKELPARAM(nFirstItem, nLastItem));
    }
    int GetTopIndex() const
    {
        return Ask<int>(LB_GETTOPINDEX);
    }
    int SetTopIndex(int nIndex)
    {
        return Ask<int>(LB_SETTOPINDEX, nIndex);
    }
    int GetCaretIndex() const
    {
        return Ask<int>(LB_GETCARETINDEX);
    }
    int SetCaretIndex(int nIndex, BOOL bScroll = TRUE)
    {
        return Ask<int>(LB_SETCARETINDEX, nIndex, MAKELONG(bScroll, 0));
    }
    DWORD_PTR GetItemData(int nIndex) const
    {
        return Ask<DWORD_PTR>(LB_GETITEMDATA, nIndex);
    }
    int SetItemData(int nIndex, DWORD_PTR dwItemData)
    {
        return Ask<int>(LB_SETITEMDATA, nIndex, dwItemData);
    }
    void* GetItemDataPtr(int nIndex) const
    {
        return reinterpret_cast<void*>(GetItemData(nIndex));
    }
    int SetItemDataPtr(int nIndex, void* pData)
    {
        return SetItemData(nIndex, reinterpret_cast<DWORD_PTR>(pData));
    }
    int GetItemRect(int nIndex, LPRECT lpRect) const
    {
        return Ask<int>(LB_GETITEMRECT, nIndex, lpRect);
    }
    int GetText(int nIndex, LPTSTR lpszBuffer) const
    {
        return Ask<int>(LB_GETTEXT, nIndex, lpszBuffer);
    }
    void GetText(int nIndex, CString& rString) const;
    int GetTextLen(int nIndex) const
    {
        return Ask<int>(LB_GETTEXTLEN, nIndex);
    }
    int AddString(LPCTSTR lpszItem)
    {
        return Ask<int>(LB_ADDSTRING, 0, lpszItem);
    }
    int InsertString(int nIndex, LPCTSTR lpszItem)
    {
        return Ask<int>(LB_INSERTSTRING, nIndex, lpszItem);
    }
    int DeleteString(UINT nIndex)
    {
        return Ask<int>(LB_DELETESTRING, nIndex);
    }
    void ResetContent()
    {
        Ask(LB_RESETCONTENT);
    }
    int FindString(int nStartAfter, LPCTSTR lpszItem) const
    {
        return Ask<int>(LB_FINDSTRING, nStartAfter, lpszItem);
    }
    int FindStringExact(int nIndexStart, LPCTSTR lpszFind) const
    {
        return Ask<int>(LB_FINDSTRINGEXACT, nIndexStart, lpszFind);
    }
    int SelectString(int nStartAfter, LPCTSTR lpszItem)
    {
        return Ask<int>(LB_SELECTSTRING, nStartAfter, lpszItem);
    }
    int InitStorage(int nItems, UINT nBytes)
    {
        return Ask<int>(LB_INITSTORAGE, nItems, nBytes);
    }
    void SetHorizontalExtent(int cxExtent)
    {
        Ask(LB_SETHORIZONTALEXTENT, cxExtent);
    }
    int SetItemHeight(int nIndex, UINT cyItemHeight)
    {
        return Ask<int>(LB_SETITEMHEIGHT, nIndex, MAKELONG(cyItemHeight, 0));
    }
    BOOL SetTabStops(int nTabStops, LPINT rgTabStops)
    {
        return Ask<BOOL>(LB_SETTABSTOPS, nTabStops, rgTabStops);
    }
};

class AFX_DLL_CLASS CComboBox : public CWnd
{
    DECLARE_DYNAMIC(CComboBox)
public:
    BOOL Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID);
    using CWnd::Create;
    int GetCount() const
    {
        return Ask<int>(CB_GETCOUNT);
    }
    int GetCurSel() const
    {
        return Ask<int>(CB_GETCURSEL);
    }
    // Tells nobody, as the control's message does not.
    int SetCurSel(int nSelect)
    {
        return Ask<int>(CB_SETCURSEL, nSelect);
    }
    DWORD GetEditSel() const
    {
        return Ask<DWORD>(CB_GETEDITSEL);
    }
    BOOL SetEditSel(int nStartChar, int nEndChar)
    {
        return Ask<BOOL>(CB_SETEDITSEL, 0, MAKELPARAM(nStartChar, nEndChar));
    }
    BOOL LimitText(int nMaxChars)
    {
        return Ask<BOOL>(CB_LIMITTEXT, nMaxChars);
    }
    DWORD_PTR GetItemData(int nIndex) const
    {
        return Ask<DWORD_PTR>(CB_GETITEMDATA, nIndex);
    }
    int SetItemData(int nIndex, DWORD_PTR dwItemData)
    {
        return Ask<int>(CB_SETITEMDATA, nIndex, dwItemData);
    }
    void* GetItemDataPtr(int nIndex) const
    {
        return reinterpret_cast<void*>(GetItemData(nIndex));
    }
    int SetItemDataPtr(int nIndex, void* pData)
    {
        return SetItemData(nIndex, reinterpret_cast<DWORD_PTR>(pData));
    }
    int GetLBText(int nIndex, LPTSTR lpszText) const
    {
        return Ask<int>(CB_GETLBTEXT, nIndex, lpszText);
    }
    void GetLBText(int nIndex, CString& rString) const;
    int GetLBTextLen(int nIndex) const
    {
        return Ask<int>(CB_GETLBTEXTLEN, nIndex);
    }
    void ShowDropDown(BOOL bShowIt = TRUE)
    {
        Ask(CB_SHOWDROPDOWN, bShowIt);
    }
    BOOL GetDroppedState() const
    {
        return Ask<BOOL>(CB_GETDROPPEDSTATE);
    }
    int AddString(LPCTSTR lpszString)
    {
        return Ask<int>(CB_ADDSTRING, 0, lpszString);
    }
    int DeleteString(UINT nIndex)
    {
        return Ask<int>(CB_DELETESTRING, nIndex);
    }
    int InsertString(int nIndex, LPCTSTR lpszString)
    {
        return Ask<int>(CB_INSERTSTRING, nIndex, lpszString);
    }
    void ResetContent()
    {
        Ask(CB_RESETCONTENT);
    }
    int FindString(int nStartAfter, LPCTSTR lpszString) const
    {
        return Ask<int>(CB_FINDSTRING, nStartAfter, lpszString);
    }
    int FindStringExact(int nIndexStart, LPCTSTR lpszFind) const
    {
        return Ask<int>(CB_FINDSTRINGEXACT, nIndexStart, lpszFind);
    }
    int SelectString(int nStartAfter, LPCTSTR lpszString)
    {
        return Ask<int>(CB_SELECTSTRING, nStartAfter, lpszString);
    }
    int InitStorage(int nItems, UINT nBytes)
    {
        return Ask<int>(CB_INITSTORAGE, nItems, nBytes);
    }
    void SetDroppedWidth(UINT nWidth)
    {
        Ask(CB_SETDROPPEDWIDTH, nWidth);
    }
    int SetMinVisibleItems(int iMinVisible)
    {
        return Ask<int>(CB_SETMINVISIBLE, iMinVisible);
    }
    void GetDroppedControlRect(LPRECT lprect) const
    {
        Ask(CB_GETDROPPEDCONTROLRECT, 0, lprect);
    }
    void Cut()
    {
        Ask(WM_CUT);
    }
    void Copy()
    {
        Ask(WM_COPY);
    }
    void Paste()
    {
        Ask(WM_PASTE);
    }
    void Clear()
    {
        Ask(WM_CLEAR);
    }
};

class AFX_DLL_CLASS CScrollBar : public CWnd
{
    DECLARE_DYNAMIC(CScrollBar)
public:
    BOOL Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID);
    using CWnd::Create;
    int GetScrollPos() const
    {
        return ::GetScrollPos(m_hWnd, SB_CTL);
    }
    int SetScrollPos(int nPos, BOOL bRedraw = TRUE)
    {
        return ::SetScrollPos(m_hWnd, SB_CTL, nPos, bRedraw);
    }
    void SetScrollRange(int nMinPos, int nMaxPos, BOOL bRedraw = TRUE)
    {
        ::SetScrollRange(m_hWnd, SB_CTL, nMinPos, nMaxPos, bRedraw);
    }
    using CWnd::GetScrollInfo;
    using CWnd::SetScrollInfo;
    BOOL GetScrollInfo(LPSCROLLINFO lpScrollInfo, UINT nMask = SIF_ALL)
    {
        return CWnd::GetScrollInfo(SB_CTL, lpScrollInfo, nMask);
    }
    BOOL SetScrollInfo(LPSCROLLINFO lpScrollInfo, BOOL bRedraw = TRUE)
    {
        return CWnd::SetScrollInfo(SB_CTL, lpScrollInfo, bRedraw);
    }
};
