// CFrameWnd: menu, accelerators, command state.
#include "suite/mfc/afxcmn.h"
#include "suite/mfc/afxpriv.h"

IMPLEMENT_DYNAMIC(CFrameWnd, CWnd)

const CRect CFrameWnd::rectDefault(CW_USEDEFAULT, CW_USEDEFAULT, 0, 0);

BEGIN_MESSAGE_MAP(CFrameWnd, CWnd)
ON_WM_CLOSE()
ON_WM_SIZE()
ON_WM_INITMENUPOPUP()
ON_WM_QUERYENDSESSION()
ON_MESSAGE(WM_IDLEUPDATECMDUI, &CFrameWnd::OnIdleUpdateCmdUI)
END_MESSAGE_MAP()

CFrameWnd::CFrameWnd() = default;
CFrameWnd::~CFrameWnd() = default;

BOOL CFrameWnd::Create(LPCTSTR lpszClassName, LPCTSTR lpszWindowName, DWORD dwStyle, const RECT& rect,
                       CWnd* pParentWnd, LPCTSTR lpszMenuName, DWORD dwExStyle, CCreateContext* pContext)
{
    HMENU menu = nullptr;
    if (lpszMenuName != nullptr)
    {
        menu = ::LoadMenu(AfxFindResourceHandle(lpszMenuName, RT_MENU), lpszMenuName);
        if (menu == nullptr)
        {
            PostNcDestroy();
            return FALSE;
        }
    }
    // CW_USEDEFAULT in the left edge stands for all four.
    const bool anywhere = rect.left == CW_USEDEFAULT;
    if (!CreateEx(dwExStyle, lpszClassName, lpszWindowName, dwStyle, rect.left, rect.top,
                  anywhere ? CW_USEDEFAULT : rect.right - rect.left,
                  anywhere ? CW_USEDEFAULT : rect.bottom - rect.top,
                  pParentWnd != nullptr ? pParentWnd->m_hWnd : nullptr, menu, pContext))
    {
        if (menu != nullptr)
        {
            ::DestroyMenu(menu);
        }
        return FALSE;
    }
    return TRUE;
}

BOOL CFrameWnd::LoadFrame(UINT nIDResource, DWORD dwDefaultStyle, CWnd* pParentWnd, CCreateContext* pContext)
{
    CString title;
    if (title.LoadString(nIDResource))
    {
        title = title.SpanExcluding("\n");
    }
    const LPCTSTR name = MAKEINTRESOURCE(nIDResource);
    const HICON icon = ::LoadIcon(AfxFindResourceHandle(name, RT_GROUP_ICON), name);
    const CString windowClass = AfxRegisterWndClass(CS_DBLCLKS, ::LoadCursor(nullptr, IDC_ARROW),
                                                    ::GetSysColorBrush(COLOR_BTNFACE), icon);
    const HINSTANCE module = AfxFindResourceHandle(name, RT_MENU);
    const LPCTSTR menu = ::FindResource(module, name, RT_MENU) != nullptr ? name : nullptr;
    if (!Create(windowClass, title, dwDefaultStyle, rectDefault, pParentWnd, menu, 0, pContext))
    {
        return FALSE;
    }
    LoadAccelTable(name);
    return TRUE;
}

BOOL CFrameWnd::LoadAccelTable(LPCTSTR lpszResourceName)
{
    m_hAccelTable =
        ::LoadAccelerators(AfxFindResourceHandle(lpszResourceName, RT_ACCELERATOR), lpszResourceName);
    return m_hAccelTable != nullptr;
}

BOOL CFrameWnd::PreTranslateMessage(MSG* pMsg)
{
    return CWnd::PreTranslateMessage(pMsg) ||
           (m_hAccelTable != nullptr && ::TranslateAccelerator(m_hWnd, m_hAccelTable, pMsg));
}

BOOL CFrameWnd::OnCmdMsg(UINT nID, int nCode, void* pExtra, AFX_CMDHANDLERINFO* pHandlerInfo)
{
    if (CWnd::OnCmdMsg(nID, nCode, pExtra, pHandlerInfo))
    {
        return TRUE;
    }
    CWinApp* app = AfxGetApp();
    return app != nullptr && app->OnCmdMsg(nID, nCode, pExtra, pHandlerInfo);
}

void CFrameWnd::PostNcDestroy()
{
    delete this;
}

void CFrameWnd::RecalcLayout(BOOL)
{
}

void CFrameWnd::OnSize(UINT nType, int cx, int cy)
{
    CWnd::OnSize(nType, cx, cy);
    if (nType != SIZE_MINIMIZED)
    {
        RecalcLayout();
    }
}

void CFrameWnd::OnClose()
{
    DestroyWindow();
}

BOOL CFrameWnd::OnQueryEndSession()
{
    return TRUE;
}

void CFrameWnd::OnInitMenuPopup(CMenu* pMenu, UINT, BOOL bSysMenu)
{
    if (bSysMenu)
    {
        return;
    }
    CCmdUI state;
    state.m_pMenu = pMenu;
    state.m_nIndexMax = static_cast<UINT>(pMenu->GetMenuItemCount());
    for (state.m_nIndex = 0; state.m_nIndex < state.m_nIndexMax; ++state.m_nIndex)
    {
        state.m_nID = pMenu->GetMenuItemID(static_cast<int>(state.m_nIndex));
        if (state.m_nID == 0 || state.m_nID == static_cast<UINT>(-1))
        {
            continue; // a separator, or a submenu: its items are asked when it opens
        }
        state.m_pSubMenu = nullptr;
        state.DoUpdate(this, m_bAutoMenuEnable);
    }
}

namespace
{
class ToolButtonState : public CCmdUI
{
public:
    explicit ToolButtonState(HWND bar) : m_bar(bar)
    {
    }
    void Enable(BOOL bOn) override
    {
        m_bEnableChanged = TRUE;
        ::SendMessage(m_bar, TB_ENABLEBUTTON, m_nID, MAKELPARAM(bOn != FALSE, 0));
    }
    void SetCheck(int nCheck) override
    {
        ::SendMessage(m_bar, TB_CHECKBUTTON, m_nID, MAKELPARAM(nCheck != 0, 0));
    }
    void SetText(LPCTSTR) override
    {
    }

private:
    HWND m_bar;
};
} // namespace

LRESULT CFrameWnd::OnIdleUpdateCmdUI(WPARAM wParam, LPARAM)
{
    for (HWND bar = ::FindWindowEx(m_hWnd, nullptr, TOOLBARCLASSNAME, nullptr); bar != nullptr;
         bar = ::FindWindowEx(m_hWnd, bar, TOOLBARCLASSNAME, nullptr))
    {
        const auto count = static_cast<UINT>(::SendMessage(bar, TB_BUTTONCOUNT, 0, 0));
        for (UINT index = 0; index < count; ++index)
        {
            TBBUTTON button{};
            ::SendMessage(bar, TB_GETBUTTON, index, reinterpret_cast<LPARAM>(&button));
            if ((button.fsStyle & BTNS_SEP) == 0)
            {
                ToolButtonState state(bar);
                state.m_nID = static_cast<UINT>(button.idCommand);
                state.m_nIndex = index;
                state.m_nIndexMax = count;
                state.DoUpdate(this, static_cast<BOOL>(wParam));
            }
        }
    }
    return 0;
}
