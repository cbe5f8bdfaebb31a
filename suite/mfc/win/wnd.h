// CWnd: a window. Included through afxwin.h.
#pragma once

class CDataExchange;
class CFrameWnd;

// A window object belongs to the thread that made it or first met its handle; another thread passes handles.
// Destroying the object destroys the window, unless the object came from FromHandle.
class AFX_DLL_CLASS CWnd : public CCmdTarget
{
    DECLARE_DYNAMIC(CWnd)
public:
    CWnd();
    ~CWnd() override;

    HWND m_hWnd = nullptr;
    // The handle. Unlike a call through a null pointer in old code, the object must exist.
    HWND GetSafeHwnd() const
    {
        return m_hWnd;
    }
    operator HWND() const
    {
        return m_hWnd;
    }
    BOOL operator==(const CWnd& wnd) const
    {
        return wnd.m_hWnd == m_hWnd;
    }
    DWORD GetStyle() const;
    DWORD GetExStyle() const;
    BOOL ModifyStyle(DWORD dwRemove, DWORD dwAdd, UINT nFlags = 0);
    BOOL ModifyStyleEx(DWORD dwRemove, DWORD dwAdd, UINT nFlags = 0);

    // The object of a handle: the program's own, or a temporary one that lives until the thread is idle.
    static CWnd* FromHandle(HWND hWnd);
    static CWnd* FromHandlePermanent(HWND hWnd);
    BOOL Attach(HWND hWndNew);
    HWND Detach();
    virtual void PreSubclassWindow();
    BOOL SubclassWindow(HWND hWnd);
    BOOL SubclassDlgItem(UINT nID, CWnd* pParent);

    virtual BOOL Create(LPCTSTR lpszClassName, LPCTSTR lpszWindowName, DWORD dwStyle, const RECT& rect,
                        CWnd* pParentWnd, UINT nID, void* pContext = nullptr);
    BOOL CreateEx(DWORD dwExStyle, LPCTSTR lpszClassName, LPCTSTR lpszWindowName, DWORD dwStyle, int x, int y,
                  int nWidth, int nHeight, HWND hWndParent, HMENU nIDorHMenu, LPVOID lpParam = nullptr);
    BOOL CreateEx(DWORD dwExStyle, LPCTSTR lpszClassName, LPCTSTR lpszWindowName, DWORD dwStyle,
                  const RECT& rect, CWnd* pParentWnd, UINT nID, LPVOID lpParam = nullptr);
    virtual BOOL PreCreateWindow(CREATESTRUCT& cs);
    virtual BOOL DestroyWindow();

    // Messages
    LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const;
    BOOL PostMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const;
    void SendMessageToDescendants(UINT message, WPARAM wParam = 0, LPARAM lParam = 0, BOOL bDeep = TRUE,
                                  BOOL bOnlyPerm = FALSE);
    // SendMessage with arguments and result of any integral or pointer type, for wrappers of controls.
    template <typename Result = int, typename W = WPARAM, typename L = LPARAM>
    Result Ask(UINT message, W wParam = {}, L lParam = {}) const
    {
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-cstyle-cast): the right cast depends on the types
        return (Result)::SendMessage(m_hWnd, message, (WPARAM)wParam, (LPARAM)lParam);
    }
    LRESULT SendDlgItemMessage(int nID, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const;
    // What is being handled by this thread.
    static const MSG* GetCurrentMessage();

    // Text and font
    void SetWindowText(LPCTSTR lpszString);
    void GetWindowText(CString& rString) const;
    int GetWindowTextLength() const;
    void SetFont(CFont* pFont, BOOL bRedraw = TRUE);
    CFont* GetFont() const;

    // Size, position, order
    BOOL IsIconic() const;
    BOOL IsZoomed() const;
    void MoveWindow(int x, int y, int nWidth, int nHeight, BOOL bRepaint = TRUE);
    void MoveWindow(LPCRECT lpRect, BOOL bRepaint = TRUE);
    BOOL SetWindowPos(const CWnd* pWndInsertAfter, int x, int y, int cx, int cy, UINT nFlags);
    void GetWindowRect(LPRECT lpRect) const;
    void GetClientRect(LPRECT lpRect) const;
    // Over the alternate window, else the owner, else the screen's work area; kept on one monitor.
    void CenterWindow(CWnd* pAlternateOwner = nullptr);
    void ClientToScreen(LPPOINT lpPoint) const;
    void ScreenToClient(LPPOINT lpPoint) const;
    void ScreenToClient(LPRECT lpRect) const;
    void MapWindowPoints(CWnd* pwndTo, LPPOINT lpPoint, UINT nCount) const;

    // Painting
    void UpdateWindow();
    void SetRedraw(BOOL bRedraw = TRUE);
    void Invalidate(BOOL bErase = TRUE);
    void InvalidateRect(LPCRECT lpRect, BOOL bErase = TRUE);
    BOOL ShowWindow(int nCmdShow);
    BOOL IsWindowVisible() const;

    // State, focus, mouse, timers
    BOOL IsWindowEnabled() const;
    BOOL EnableWindow(BOOL bEnable = TRUE);
    static CWnd* GetActiveWindow();
    BOOL SetForegroundWindow();
    CWnd* SetFocus();
    static CWnd* GetCapture();
    CWnd* SetCapture();
    UINT_PTR SetTimer(UINT_PTR nIDEvent, UINT nElapse, TIMERPROC lpfnTimer = nullptr);
    BOOL KillTimer(UINT_PTR nIDEvent);

    // Menus
    CMenu* GetMenu() const;
    CMenu* GetSystemMenu(BOOL bRevert) const;

    // Relatives
    CWnd* GetDlgItem(int nID) const;
    int GetDlgCtrlID() const;
    CWnd* GetParent() const;
    CWnd* GetTopLevelParent() const;
    // The window that should own a new dialog or message box: a top-level one, never a child.
    static CWnd* GetSafeOwner(CWnd* pParent = nullptr, HWND* pWndTop = nullptr);

    // Dialog controls
    void CheckDlgButton(int nIDButton, UINT nCheck);
    void CheckRadioButton(int nIDFirstButton, int nIDLastButton, int nIDCheckButton);
    int GetCheckedRadioButton(int nIDFirstButton, int nIDLastButton) const;
    UINT IsDlgButtonChecked(int nIDButton) const;
    int GetDlgItemText(int nID, CString& rString) const;
    void SetDlgItemText(int nID, LPCTSTR lpszString);
    BOOL IsDialogMessage(LPMSG lpMsg);
    // Controls to members (TRUE) or members to controls (FALSE); FALSE when a validation failed.
    BOOL UpdateData(BOOL bSaveAndValidate = TRUE);
    // Asks the target for the state of every control's command.
    void UpdateDialogControls(CCmdTarget* pTarget, BOOL bDisableIfNoHndler);
    int MessageBox(LPCTSTR lpszText, LPCTSTR lpszCaption = nullptr, UINT nType = MB_OK);

    // Modal loops: RunModalLoop answers what EndModalLoop was given, -1 when the program is ending.
    int RunModalLoop(DWORD dwFlags = 0);
    virtual BOOL ContinueModal();
    virtual void EndModalLoop(int nResult);

    virtual BOOL PreTranslateMessage(MSG* pMsg);
    // PreTranslateMessage of hWnd's object and of its parents up to hWndStop.
    static BOOL WalkPreTranslateTree(HWND hWndStop, MSG* pMsg);
    BOOL PreTranslateInput(LPMSG lpMsg);
    // Called when the window itself is gone; the place for `delete this`.
    virtual void PostNcDestroy();
    // Passes the message being handled to the window procedure that was there before.
    LRESULT Default();

    BOOL OnCmdMsg(UINT nID, int nCode, void* pExtra, AFX_CMDHANDLERINFO* pHandlerInfo) override;

protected:
    virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    virtual BOOL OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* pResult);
    virtual LRESULT DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    virtual BOOL OnCommand(WPARAM wParam, LPARAM lParam);
    virtual BOOL OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* pResult);
    // A message about the control itself that its parent was sent: WM_DRAWITEM. FALSE: the parent handles it.
    virtual BOOL OnChildNotify(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* pResult);
    virtual void DoDataExchange(CDataExchange* pDX);
    virtual WNDPROC* GetSuperWndProcAddr();
    // Makes the window of a dialog template, modeless; used by CDialog.
    BOOL CreateDlgIndirect(LPCDLGTEMPLATE lpDialogTemplate, CWnd* pParentWnd, HINSTANCE hInst);

    // The default of every ON_WM_ handler: Default(), after letting an owner-drawn control draw itself.
    afx_msg void OnActivate(UINT nState, CWnd* pWndOther, BOOL bMinimized);
    afx_msg int OnCreate(LPCREATESTRUCT lpCreateStruct);
    afx_msg void OnDestroy();
    afx_msg void OnDrawItem(int nIDCtl, LPDRAWITEMSTRUCT lpDrawItemStruct);
    afx_msg BOOL OnEraseBkgnd(CDC* pDC);
    afx_msg void OnGetMinMaxInfo(MINMAXINFO* lpMMI);
    afx_msg void OnKillFocus(CWnd* pNewWnd);
    afx_msg void OnMouseLeave();
    afx_msg void OnMouseMove(UINT nFlags, CPoint point);
    afx_msg void OnNcDestroy();
    afx_msg LRESULT OnNcHitTest(CPoint point);
    afx_msg void OnSetFocus(CWnd* pOldWnd);
    afx_msg void OnSize(UINT nType, int cx, int cy);
    afx_msg void OnSysColorChange();
    afx_msg void OnTimer(UINT_PTR nIDEvent);

    int m_nModalResult = 0;
    bool m_bContinueModal = false;
    bool m_bInModalLoop = false;
    WNDPROC m_pfnSuper = nullptr; // the procedure before ours; null for a window that is not subclassed

    DECLARE_MESSAGE_MAP()

private:
    friend struct AfxWndAccess; // the framework's window procedure and hooks
};

// Flags of RunModalLoop.
#define MLF_NOIDLEMSG 0x0001
#define MLF_NOKICKIDLE 0x0002
#define MLF_SHOWONIDLE 0x0004

// Runs an update handler on the CCmdUI that the arguments carry; false when it wants the route continued.
template <typename Handler> bool AfxUpdateUI(AFX_MSGARGS& args, const Handler& handler)
{
    auto* ui = static_cast<CCmdUI*>(args.pExtra);
    handler(ui);
    const bool handled = ui->m_bContinueRouting == FALSE;
    ui->m_bContinueRouting = FALSE;
    return handled;
}
