// CWnd among its relatives: parents, owners, descendants, centring, message pre-translation, dialogs'
// controls.
#include "wndaccess.h"
#include "handlemap.h"

#include <algorithm>

#include "suite/mfc/afxpriv.h"

CWnd* CWnd::GetTopLevelParent() const
{
    HWND top = m_hWnd;
    for (HWND next = top; next != nullptr; next = ::GetParent(next))
    {
        top = next;
    }
    return FromHandle(top);
}

void CWnd::SendMessageToDescendants(UINT message, WPARAM wParam, LPARAM lParam, BOOL bDeep, BOOL bOnlyPerm)
{
    HWND next = nullptr;
    for (HWND child = ::GetTopWindow(m_hWnd); child != nullptr; child = next)
    {
        next = ::GetWindow(child, GW_HWNDNEXT); // the message may destroy the child
        if (!bOnlyPerm)
        {
            ::SendMessage(child, message, wParam, lParam);
        }
        else if (CWnd* wnd = FromHandlePermanent(child))
        {
            AfxCallWndProc(wnd, child, message, wParam, lParam);
        }
        if (bDeep && ::IsWindow(child) && ::GetTopWindow(child) != nullptr)
        {
            FromHandle(child)->SendMessageToDescendants(message, wParam, lParam, bDeep, bOnlyPerm);
        }
    }
}

CWnd* CWnd::GetSafeOwner(CWnd* pParent, HWND* pWndTop)
{
    HWND owner = pParent != nullptr ? pParent->m_hWnd : nullptr;
    if (owner == nullptr)
    {
        CWnd* main = AfxGetMainWnd();
        owner = main != nullptr ? main->m_hWnd : nullptr;
    }
    while (owner != nullptr && (::GetWindowLongPtr(owner, GWL_STYLE) & WS_CHILD) != 0)
    {
        owner = ::GetParent(owner);
    }
    HWND top = owner;
    for (HWND next = owner; next != nullptr; next = ::GetParent(next))
    {
        top = next;
    }
    if (pParent == nullptr && owner != nullptr)
    {
        owner = ::GetLastActivePopup(owner);
    }
    // The owner's own owner stays usable unless it is disabled too while the box is up.
    if (pWndTop != nullptr)
    {
        *pWndTop = nullptr;
        if (top != nullptr && top != owner && ::IsWindowEnabled(top))
        {
            *pWndTop = top;
            ::EnableWindow(top, FALSE);
        }
    }
    return FromHandle(owner);
}

void CWnd::CenterWindow(CWnd* pAlternateOwner)
{
    const bool child = (GetStyle() & WS_CHILD) != 0;
    HWND over = nullptr;
    if (pAlternateOwner != nullptr)
    {
        over = pAlternateOwner->m_hWnd;
    }
    else
    {
        over = child ? ::GetParent(m_hWnd) : ::GetWindow(m_hWnd, GW_OWNER);
    }
    CRect own;
    GetWindowRect(&own);
    CRect place;
    CRect limits;
    if (child)
    {
        ::GetClientRect(::GetParent(m_hWnd), &limits);
        ::GetClientRect(over, &place);
        ::MapWindowPoints(over, ::GetParent(m_hWnd), reinterpret_cast<POINT*>(&place), 2);
    }
    else
    {
        if (over != nullptr && (!::IsWindowVisible(over) || ::IsIconic(over)))
        {
            over = nullptr;
        }
        MONITORINFO monitor{};
        monitor.cbSize = sizeof(monitor);
        ::GetMonitorInfo(::MonitorFromWindow(over != nullptr ? over : m_hWnd, MONITOR_DEFAULTTONEAREST),
                         &monitor);
        limits = monitor.rcWork;
        place = limits;
        if (over != nullptr)
        {
            ::GetWindowRect(over, &place);
        }
    }
    int left = place.left + (place.Width() - own.Width()) / 2;
    int top = place.top + (place.Height() - own.Height()) / 2;
    // The caption stays reachable when the window is larger than the screen.
    left = (std::max)(static_cast<int>(limits.left),
                      (std::min)(left, static_cast<int>(limits.right) - own.Width()));
    top = (std::max)(static_cast<int>(limits.top),
                     (std::min)(top, static_cast<int>(limits.bottom) - own.Height()));
    SetWindowPos(nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

int CWnd::GetCheckedRadioButton(int nIDFirstButton, int nIDLastButton) const
{
    for (int id = nIDFirstButton; id <= nIDLastButton; ++id)
    {
        if (IsDlgButtonChecked(id) != 0)
        {
            return id;
        }
    }
    return 0;
}

int CWnd::MessageBox(LPCTSTR lpszText, LPCTSTR lpszCaption, UINT nType)
{
    return ::MessageBox(m_hWnd, lpszText, lpszCaption != nullptr ? lpszCaption : AfxGetAppName(), nType);
}

// ---------------------------------------------------------------------------------------------------------
// Pre-translation

BOOL CWnd::PreTranslateMessage(MSG*)
{
    return FALSE;
}

BOOL CWnd::PreTranslateInput(LPMSG lpMsg)
{
    const bool key = lpMsg->message >= WM_KEYFIRST && lpMsg->message <= WM_KEYLAST;
    const bool mouse = lpMsg->message >= WM_MOUSEFIRST && lpMsg->message <= WM_MOUSELAST;
    return (key || mouse) && IsDialogMessage(lpMsg);
}

BOOL CWnd::IsDialogMessage(LPMSG lpMsg)
{
    return ::IsDialogMessage(m_hWnd, lpMsg);
}

BOOL CWnd::WalkPreTranslateTree(HWND hWndStop, MSG* pMsg)
{
    for (HWND wnd = pMsg->hwnd; wnd != nullptr; wnd = ::GetParent(wnd))
    {
        CWnd* object = FromHandlePermanent(wnd);
        if (object != nullptr && object->PreTranslateMessage(pMsg))
        {
            return TRUE;
        }
        if (wnd == hWndStop)
        {
            break;
        }
    }
    return FALSE;
}

// ---------------------------------------------------------------------------------------------------------
// Data and command state of a dialog's controls

void CWnd::DoDataExchange(CDataExchange*)
{
}

BOOL CWnd::UpdateData(BOOL bSaveAndValidate)
{
    ASSERT(m_hWnd != nullptr);
    CDataExchange dx(this, bSaveAndValidate);
    // What the exchange itself changes must not look like the user's doing.
    const AfxRestored<HWND> lockout(AfxGetThreadState()->m_hLockoutNotifyWindow, m_hWnd);
    try
    {
        DoDataExchange(&dx);
        return TRUE;
    }
    catch (CUserException* e)
    {
        e->Delete(); // the user has been told
    }
    catch (CException* e)
    {
        e->ReportError(MB_ICONEXCLAMATION, AFX_IDP_INTERNAL_FAILURE);
        e->Delete();
    }
    return FALSE;
}

void CWnd::UpdateDialogControls(CCmdTarget* pTarget, BOOL bDisableIfNoHndler)
{
    HWND next = nullptr;
    for (HWND child = ::GetTopWindow(m_hWnd); child != nullptr; child = next)
    {
        next = ::GetWindow(child, GW_HWNDNEXT);
        CWnd* control = FromHandle(child);
        CCmdUI state;
        state.m_nID = static_cast<UINT>(::GetDlgCtrlID(child)) & 0xFFFF;
        state.m_pOther = control;
        // The control itself may know.
        if (CWnd* own = FromHandlePermanent(child))
        {
            if (own->OnCmdMsg(0, static_cast<int>(CN_UPDATE_COMMAND_UI), &state, nullptr))
            {
                continue;
            }
        }
        if (OnCmdMsg(state.m_nID, static_cast<int>(CN_UPDATE_COMMAND_UI), &state, nullptr))
        {
            continue;
        }
        // Only push buttons stand for commands; a check box or group box without a handler stays as it is.
        const auto code = ::SendMessage(child, WM_GETDLGCODE, 0, 0);
        const auto style = ::GetWindowLongPtr(child, GWL_STYLE) & BS_TYPEMASK;
        const bool commands = (code & DLGC_BUTTON) != 0 && style != BS_AUTOCHECKBOX &&
                              style != BS_AUTO3STATE && style != BS_AUTORADIOBUTTON && style != BS_GROUPBOX;
        state.DoUpdate(pTarget, bDisableIfNoHndler && commands);
    }
}

// ---------------------------------------------------------------------------------------------------------
// Modal loops

namespace
{
bool IsSystemTimerMessage(const MSG& message)
{
    constexpr UINT systemTimer = 0x0118;
    return message.message == systemTimer;
}
} // namespace

BOOL CWnd::ContinueModal()
{
    return m_bContinueModal;
}

void CWnd::EndModalLoop(int nResult)
{
    m_nModalResult = nResult;
    if (m_bContinueModal)
    {
        m_bContinueModal = false;
        PostMessage(WM_NULL); // wakes a loop that waits
    }
}

int CWnd::RunModalLoop(DWORD dwFlags)
{
    ASSERT(::IsWindow(m_hWnd) && !m_bInModalLoop);
    const HWND parent = ::GetParent(m_hWnd);
    bool showOnIdle = (dwFlags & MLF_SHOWONIDLE) != 0 && !IsWindowVisible();
    MSG* message = AfxGetCurrentMessage();
    const CTempMapScope temporaries;
    const AfxRestored<bool> inLoop(m_bInModalLoop, true);
    m_bContinueModal = true;
    const auto show = [&] {
        if (showOnIdle)
        {
            showOnIdle = false;
            ShowWindow(SW_SHOWNORMAL);
            UpdateWindow();
        }
    };
    bool idle = true;
    LONG idleCount = 0;
    while (ContinueModal())
    {
        MSG waiting;
        while (idle && !::PeekMessage(&waiting, nullptr, 0, 0, PM_NOREMOVE))
        {
            show();
            if ((dwFlags & MLF_NOIDLEMSG) == 0 && parent != nullptr && idleCount == 0)
            {
                ::SendMessage(parent, WM_ENTERIDLE, MSGF_DIALOGBOX, reinterpret_cast<LPARAM>(m_hWnd));
            }
            if ((dwFlags & MLF_NOKICKIDLE) != 0 || SendMessage(WM_KICKIDLE, MSGF_DIALOGBOX, idleCount++) == 0)
            {
                idle = false;
                temporaries.Drop();
            }
        }
        if (!ContinueModal())
        {
            break; // ended by an idle handler
        }
        do
        {
            if (!AfxPumpMessage())
            {
                AfxPostQuitMessage(static_cast<int>(message->wParam)); // the program's own loop ends too
                m_bContinueModal = false;
                return -1;
            }
            // Keys and the like may keep the loop from becoming idle before the window was shown.
            if (IsSystemTimerMessage(*message) || message->message == WM_SYSKEYDOWN)
            {
                show();
            }
            if (!ContinueModal())
            {
                break;
            }
            if (AfxIsIdleMessage(message))
            {
                idle = true;
                idleCount = 0;
            }
        } while (::PeekMessage(&waiting, nullptr, 0, 0, PM_NOREMOVE));
    }
    return m_nModalResult;
}
