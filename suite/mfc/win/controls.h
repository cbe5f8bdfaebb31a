// The standard controls. Included through afxwin.h.
//
// Thin: each member is the control's message of the same name. An owner-drawn button's DrawItem is called
// before the parent's handlers.
#pragma once

class AFX_DLL_CLASS CStatic : public CWnd
{
    DECLARE_DYNAMIC(CStatic)
public:
    BOOL Create(LPCTSTR lpszText, DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID = 0xFFFF);
    using CWnd::Create;
};

class AFX_DLL_CLASS CButton : public CWnd
{
    DECLARE_DYNAMIC(CButton)
public:
    BOOL Create(LPCTSTR lpszCaption, DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID);
    using CWnd::Create;
    int GetCheck() const
    {
        return Ask<int>(BM_GETCHECK);
    }
    void SetButtonStyle(UINT nStyle, BOOL bRedraw = TRUE)
    {
        Ask(BM_SETSTYLE, nStyle, bRedraw);
    }
    virtual void DrawItem(LPDRAWITEMSTRUCT lpDrawItemStruct);

protected:
    BOOL OnChildNotify(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* pResult) override;
};

class AFX_DLL_CLASS CEdit : public CWnd
{
    DECLARE_DYNAMIC(CEdit)
public:
    void SetLimitText(UINT nMax)
    {
        Ask(EM_SETLIMITTEXT, nMax);
    }
    void GetSel(int& nStartChar, int& nEndChar) const
    {
        DWORD start = 0;
        DWORD end = 0;
        Ask(EM_GETSEL, reinterpret_cast<WPARAM>(&start), &end);
        nStartChar = static_cast<int>(start);
        nEndChar = static_cast<int>(end);
    }
    // Scrolls the caret into view unless bNoScroll.
    void SetSel(int nStartChar, int nEndChar, BOOL bNoScroll = FALSE);
};

class AFX_DLL_CLASS CListBox : public CWnd
{
    DECLARE_DYNAMIC(CListBox)
public:
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
    int GetSelCount() const
    {
        return Ask<int>(LB_GETSELCOUNT);
    }
    int GetSelItems(int nMaxItems, LPINT rgIndex) const
    {
        return Ask<int>(LB_GETSELITEMS, nMaxItems, rgIndex);
    }
    DWORD_PTR GetItemData(int nIndex) const
    {
        return Ask<DWORD_PTR>(LB_GETITEMDATA, nIndex);
    }
    int SetItemData(int nIndex, DWORD_PTR dwItemData)
    {
        return Ask<int>(LB_SETITEMDATA, nIndex, dwItemData);
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
    int DeleteString(UINT nIndex)
    {
        return Ask<int>(LB_DELETESTRING, nIndex);
    }
    void ResetContent()
    {
        Ask(LB_RESETCONTENT);
    }
    int FindStringExact(int nIndexStart, LPCTSTR lpszFind) const
    {
        return Ask<int>(LB_FINDSTRINGEXACT, nIndexStart, lpszFind);
    }
    void SetHorizontalExtent(int cxExtent)
    {
        Ask(LB_SETHORIZONTALEXTENT, cxExtent);
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
    BOOL SetEditSel(int nStartChar, int nEndChar)
    {
        return Ask<BOOL>(CB_SETEDITSEL, 0, MAKELPARAM(nStartChar, nEndChar));
    }
    DWORD_PTR GetItemData(int nIndex) const
    {
        return Ask<DWORD_PTR>(CB_GETITEMDATA, nIndex);
    }
    int SetItemData(int nIndex, DWORD_PTR dwItemData)
    {
        return Ask<int>(CB_SETITEMDATA, nIndex, dwItemData);
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
    int AddString(LPCTSTR lpszString)
    {
        return Ask<int>(CB_ADDSTRING, 0, lpszString);
    }
    int DeleteString(UINT nIndex)
    {
        return Ask<int>(CB_DELETESTRING, nIndex);
    }
    void ResetContent()
    {
        Ask(CB_RESETCONTENT);
    }
    int FindStringExact(int nIndexStart, LPCTSTR lpszFind) const
    {
        return Ask<int>(CB_FINDSTRINGEXACT, nIndexStart, lpszFind);
    }
    int InitStorage(int nItems, UINT nBytes)
    {
        return Ask<int>(CB_INITSTORAGE, nItems, nBytes);
    }
};
