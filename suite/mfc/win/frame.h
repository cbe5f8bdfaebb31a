// CFrameWnd: a program's main window. Included through afxwin.h.
#pragma once

struct CCreateContext
{
};

// Deletes itself when its window is gone. Menu items and tool bar buttons are updated through command
// routing: the frame, then the application object. When the main window of a program closes, the program
// ends.
class AFX_DLL_CLASS CFrameWnd : public CWnd
{
    DECLARE_DYNAMIC(CFrameWnd)
public:
    CFrameWnd();
    ~CFrameWnd() override;
    static const CRect rectDefault;

    using CWnd::Create;
    virtual BOOL Create(LPCTSTR lpszClassName, LPCTSTR lpszWindowName, DWORD dwStyle = WS_OVERLAPPEDWINDOW,
                        const RECT& rect = rectDefault, CWnd* pParentWnd = nullptr,
                        LPCTSTR lpszMenuName = nullptr, DWORD dwExStyle = 0,
                        CCreateContext* pContext = nullptr);
    // Menu, accelerators, icon and title (first line of the string) of one resource id.
    virtual BOOL LoadFrame(UINT nIDResource, DWORD dwDefaultStyle = WS_OVERLAPPEDWINDOW,
                           CWnd* pParentWnd = nullptr, CCreateContext* pContext = nullptr);
    BOOL LoadAccelTable(LPCTSTR lpszResourceName);

    // Menu items without a handler are greyed.
    BOOL m_bAutoMenuEnable = TRUE;
    HACCEL m_hAccelTable = nullptr;

    // Places the frame's bars; the default does nothing. Called when the size changes.
    virtual void RecalcLayout(BOOL bNotify = TRUE);

    BOOL PreTranslateMessage(MSG* pMsg) override;
    BOOL OnCmdMsg(UINT nID, int nCode, void* pExtra, AFX_CMDHANDLERINFO* pHandlerInfo) override;

protected:
    void PostNcDestroy() override;
    afx_msg void OnClose();
    afx_msg void OnSize(UINT nType, int cx, int cy);
    afx_msg void OnInitMenuPopup(CMenu* pMenu, UINT nIndex, BOOL bSysMenu);
    afx_msg BOOL OnQueryEndSession();
    afx_msg LRESULT OnIdleUpdateCmdUI(WPARAM wParam, LPARAM lParam);
    DECLARE_MESSAGE_MAP()
};
