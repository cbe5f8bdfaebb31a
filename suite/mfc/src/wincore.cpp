// A window object's life: handle, creation, subclassing, destruction.
#include "wndaccess.h"
#include "handlemap.h"
#include "msgmap.h"

IMPLEMENT_DYNAMIC(CWnd, CCmdTarget)

BEGIN_MESSAGE_MAP(CWnd, CCmdTarget)
ON_WM_DRAWITEM()
ON_WM_NCDESTROY()
END_MESSAGE_MAP()

CWnd::CWnd() = default;

CWnd::~CWnd()
{
    if (m_hWnd != nullptr && FromHandlePermanent(m_hWnd) == this)
    {
        TRACE("a window object is destroyed before its window\n");
        CWnd::DestroyWindow();
    }
}

// ---------------------------------------------------------------------------------------------------------
// Handles

CWnd* CWnd::FromHandle(HWND hWnd)
{
    if (hWnd == nullptr)
    {
        return nullptr;
    }
    CHandleMaps& maps = AfxMaps();
    return maps.windows.Find(hWnd, maps.NextSerial(), [] { return std::make_unique<CWnd>(); });
}

CWnd* CWnd::FromHandlePermanent(HWND hWnd)
{
    return hWnd != nullptr ? AfxMaps().windows.FindPermanent(hWnd) : nullptr;
}

BOOL CWnd::Attach(HWND hWndNew)
{
    ASSERT(m_hWnd == nullptr);
    if (hWndNew == nullptr)
    {
        return FALSE;
    }
    AfxMaps().windows.SetPermanent(hWndNew, this);
    m_hWnd = hWndNew;
    return TRUE;
}

HWND CWnd::Detach()
{
    const HWND hWnd = m_hWnd;
    if (hWnd != nullptr)
    {
        auto& windows = AfxMaps().windows;
        if (windows.FindPermanent(hWnd) == this)
        {
            windows.Remove(hWnd);
        }
        m_hWnd = nullptr;
    }
    return hWnd;
}

void CWnd::PreSubclassWindow()
{
}

WNDPROC* CWnd::GetSuperWndProcAddr()
{
    return &m_pfnSuper;
}

BOOL CWnd::SubclassWindow(HWND hWnd)
{
    if (hWnd == nullptr || FromHandlePermanent(hWnd) != nullptr)
    {
        return FALSE;
    }
    AfxSubclassTo(*this, hWnd);
    return TRUE;
}

BOOL CWnd::SubclassDlgItem(UINT nID, CWnd* pParent)
{
    return SubclassWindow(::GetDlgItem(pParent->m_hWnd, static_cast<int>(nID)));
}

// ---------------------------------------------------------------------------------------------------------
// Creation and destruction

BOOL CWnd::PreCreateWindow(CREATESTRUCT& cs)
{
    if (cs.lpszClass == nullptr)
    {
        cs.lpszClass = AfxRegisterWndClass(CS_DBLCLKS, ::LoadCursor(nullptr, IDC_ARROW));
    }
    return TRUE;
}

BOOL CWnd::CreateEx(DWORD dwExStyle, LPCTSTR lpszClassName, LPCTSTR lpszWindowName, DWORD dwStyle, int x,
                    int y, int nWidth, int nHeight, HWND hWndParent, HMENU nIDorHMenu, LPVOID lpParam)
{
    ASSERT(m_hWnd == nullptr);
    CREATESTRUCT cs{};
    cs.dwExStyle = dwExStyle;
    cs.lpszClass = lpszClassName;
    cs.lpszName = lpszWindowName;
    cs.style = static_cast<LONG>(dwStyle);
    cs.x = x;
    cs.y = y;
    cs.cx = nWidth;
    cs.cy = nHeight;
    cs.hwndParent = hWndParent;
    cs.hMenu = nIDorHMenu;
    cs.hInstance = AfxGetInstanceHandle();
    cs.lpCreateParams = lpParam;
    if (!PreCreateWindow(cs))
    {
        PostNcDestroy();
        return FALSE;
    }
    AfxHookWindowCreate(this);
    const HWND hWnd =
        ::CreateWindowEx(cs.dwExStyle, cs.lpszClass, cs.lpszName, static_cast<DWORD>(cs.style), cs.x, cs.y,
                         cs.cx, cs.cy, cs.hwndParent, cs.hMenu, cs.hInstance, cs.lpCreateParams);
    if (!AfxUnhookWindowCreate())
    {
        PostNcDestroy(); // no window was made, so none will be destroyed
    }
    return hWnd != nullptr; // the object may be gone by now
}

BOOL CWnd::CreateEx(DWORD dwExStyle, LPCTSTR lpszClassName, LPCTSTR lpszWindowName, DWORD dwStyle,
                    const RECT& rect, CWnd* pParentWnd, UINT nID, LPVOID lpParam)
{
    return CreateEx(dwExStyle, lpszClassName, lpszWindowName, dwStyle, rect.left, rect.top,
                    rect.right - rect.left, rect.bottom - rect.top,
                    pParentWnd != nullptr ? pParentWnd->m_hWnd : nullptr,
                    reinterpret_cast<HMENU>(static_cast<UINT_PTR>(nID)), lpParam);
}

BOOL CWnd::Create(LPCTSTR lpszClassName, LPCTSTR lpszWindowName, DWORD dwStyle, const RECT& rect,
                  CWnd* pParentWnd, UINT nID, void* pContext)
{
    ASSERT(pParentWnd != nullptr);
    return CreateEx(0, lpszClassName, lpszWindowName, dwStyle | WS_CHILD, rect, pParentWnd, nID, pContext);
}

BOOL CWnd::CreateDlgIndirect(LPCDLGTEMPLATE lpDialogTemplate, CWnd* pParentWnd, HINSTANCE hInst)
{
    m_nModalResult = -1;
    m_bContinueModal = true;
    AfxHookWindowCreate(this);
    HWND hWnd = ::CreateDialogIndirectParam(
        hInst, lpDialogTemplate, pParentWnd != nullptr ? pParentWnd->m_hWnd : nullptr, &AfxDlgProc, 0);
    if (!AfxUnhookWindowCreate())
    {
        PostNcDestroy();
        return FALSE;
    }
    if (hWnd == nullptr)
    {
        return FALSE; // destroyed while it was created: the object may be gone
    }
    if (!m_bContinueModal)
    {
        ::DestroyWindow(hWnd); // EndDialog was called while the dialog was initialised
        return FALSE;
    }
    return TRUE;
}

BOOL CWnd::DestroyWindow()
{
    return m_hWnd != nullptr && ::DestroyWindow(m_hWnd);
}

void CWnd::OnNcDestroy()
{
    CWinThread* thread = AfxGetThread();
    if (thread != nullptr && thread->m_pMainWnd == this)
    {
        thread->m_pMainWnd = nullptr;
        // A library's main window closes without ending its host.
        if (!AfxGetModuleState()->m_bDLL || thread != AfxGetApp())
        {
            AfxPostQuitMessage(0);
        }
    }
    Default();
    WNDPROC* previous = GetSuperWndProcAddr();
    if (*previous != nullptr)
    {
        ::SetWindowLongPtr(m_hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(*previous));
        *previous = nullptr;
    }
    Detach();
    m_bContinueModal = false;
    PostNcDestroy(); // may delete this
}

void CWnd::PostNcDestroy()
{
}

// ---------------------------------------------------------------------------------------------------------
// Messages

LRESULT CWnd::WindowProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    LRESULT result = 0;
    if (!OnWndMsg(message, wParam, lParam, &result))
    {
        result = DefWindowProc(message, wParam, lParam);
    }
    return result;
}

LRESULT CWnd::DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    const WNDPROC previous = *GetSuperWndProcAddr();
    return previous != nullptr ? ::CallWindowProc(previous, m_hWnd, message, wParam, lParam)
                               : ::DefWindowProc(m_hWnd, message, wParam, lParam);
}

LRESULT CWnd::Default()
{
    const MSG message = AfxGetThreadState()->m_lastSentMsg;
    return DefWindowProc(message.message, message.wParam, message.lParam);
}

const MSG* CWnd::GetCurrentMessage()
{
    return &AfxGetThreadState()->m_lastSentMsg;
}

BOOL CWnd::OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* pResult)
{
    LRESULT result = 0;
    if (message == WM_COMMAND)
    {
        if (!OnCommand(wParam, lParam))
        {
            return FALSE;
        }
        result = 1;
    }
    else if (message == WM_NOTIFY)
    {
        const auto* header = reinterpret_cast<const NMHDR*>(lParam);
        if (header->hwndFrom == nullptr || !OnNotify(wParam, lParam, &result))
        {
            return FALSE;
        }
    }
    else
    {
        const AFX_MSGMAP_ENTRY* entry = AfxFindEntry(GetMessageMap(), message, 0, 0);
        if (entry == nullptr)
        {
            return FALSE;
        }
        AFX_MSGARGS args{message, wParam, lParam, 0, 0, nullptr};
        if (!entry->pfnHandler(this, args))
        {
            return FALSE;
        }
        result = args.lResult;
    }
    if (pResult != nullptr)
    {
        *pResult = result;
    }
    return TRUE;
}

BOOL CWnd::OnCmdMsg(UINT nID, int nCode, void* pExtra, AFX_CMDHANDLERINFO* pHandlerInfo)
{
    return CCmdTarget::OnCmdMsg(nID, nCode, pExtra, pHandlerInfo);
}

BOOL CWnd::OnCommand(WPARAM wParam, LPARAM lParam)
{
    const UINT id = LOWORD(wParam);
    const auto control = reinterpret_cast<HWND>(lParam);
    int code = HIWORD(wParam);
    if (control == nullptr)
    {
        // From a menu or an accelerator: a command that is disabled is not carried out.
        class EnabledState : public CCmdUI
        {
        public:
            bool m_enabled = true;
            void Enable(BOOL bOn) override
            {
                m_enabled = bOn != FALSE;
            }
            void SetCheck(int) override
            {
            }
            void SetText(LPCTSTR) override
            {
            }
        };
        if (id == 0)
        {
            return FALSE;
        }
        EnabledState state;
        state.m_nID = id;
        OnCmdMsg(id, static_cast<int>(CN_UPDATE_COMMAND_UI), &state, nullptr);
        if (!state.m_enabled)
        {
            return TRUE;
        }
        code = CN_COMMAND;
    }
    else
    {
        if (AfxGetThreadState()->m_hLockoutNotifyWindow == m_hWnd)
        {
            return TRUE; // the data exchange itself caused it
        }
        if (id == 0)
        {
            return FALSE;
        }
    }
    return OnCmdMsg(id, code, nullptr, nullptr);
}

BOOL CWnd::OnNotify(WPARAM, LPARAM lParam, LRESULT* pResult)
{
    auto* header = reinterpret_cast<NMHDR*>(lParam);
    if (AfxGetThreadState()->m_hLockoutNotifyWindow == m_hWnd)
    {
        return TRUE;
    }
    AFX_NOTIFY notify{pResult, header};
    return OnCmdMsg(static_cast<UINT>(::GetDlgCtrlID(header->hwndFrom)) & 0xFFFF,
                    static_cast<int>(MAKELONG(header->code, WM_NOTIFY)), &notify, nullptr);
}

BOOL CWnd::OnChildNotify(UINT, WPARAM, LPARAM, LRESULT*)
{
    return FALSE;
}
