// From Windows to a window object: the window procedure, the hook that finds new windows, exceptions.
#include "wndaccess.h"
#include "handlemap.h"

#include "suite/mfc/afxpriv.h"

#include <exception>
#include <new>

namespace
{
// Anything thrown that is not a CException, on its way to ProcessWndProcException.
class CForeignException : public CException
{
public:
    explicit CForeignException(const char* text) : CException(FALSE), m_text(text)
    {
    }
    BOOL GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext) const override
    {
        if (pnHelpContext != nullptr)
        {
            *pnHelpContext = 0;
        }
        if (lpszError == nullptr || nMaxError == 0)
        {
            return FALSE;
        }
        lstrcpynA(lpszError, m_text, static_cast<int>(nMaxError));
        return !m_text.IsEmpty();
    }

private:
    CString m_text;
};

// The current exception as a CException, handed on and then deleted.
LRESULT DispatchCurrentException(const MSG* message)
{
    struct Deleter
    {
        void operator()(CException* e) const
        {
            e->Delete();
        }
    };
    try
    {
        throw;
    }
    catch (CException* e)
    {
        const std::unique_ptr<CException, Deleter> owner(e);
        return AfxProcessWndProcException(e, message);
    }
    catch (const std::bad_alloc&)
    {
        const std::unique_ptr<CException, Deleter> owner(new CMemoryException);
        return AfxProcessWndProcException(owner.get(), message);
    }
    catch (const std::exception& e)
    {
        CForeignException foreign(e.what());
        return AfxProcessWndProcException(&foreign, message);
    }
    catch (...)
    {
        CForeignException foreign("");
        return AfxProcessWndProcException(&foreign, message);
    }
}

bool IsInputMethodWindow(const CREATESTRUCT& create)
{
    if ((create.style & WS_CHILD) != 0)
    {
        return false;
    }
    if (IS_INTRESOURCE(create.lpszClass))
    {
        char name[8] = "";
        GlobalGetAtomName(static_cast<ATOM>(reinterpret_cast<ULONG_PTR>(create.lpszClass)), name,
                          sizeof(name));
        return lstrcmpiA(name, "ime") == 0;
    }
    return lstrcmpiA(create.lpszClass, "ime") == 0;
}

LRESULT CALLBACK CbtHook(int code, WPARAM wParam, LPARAM lParam)
{
    AfxThreadState* thread = AfxGetThreadState();
    CWnd* wnd = thread->m_pWndInit;
    if (code == HCBT_CREATEWND && wnd != nullptr &&
        !IsInputMethodWindow(*reinterpret_cast<CBT_CREATEWND*>(lParam)->lpcs))
    {
        thread->m_pWndInit = nullptr;
        try
        {
            AfxSubclassTo(*wnd, reinterpret_cast<HWND>(wParam));
        }
        catch (...)
        {
            AfxProcessCurrentException(nullptr);
            return 1; // the window is not created
        }
    }
    return CallNextHookEx(thread->m_hHookCbt, code, wParam, lParam);
}
} // namespace

void AfxSubclassTo(CWnd& wnd, HWND hWnd)
{
    VERIFY(wnd.Attach(hWnd));
    wnd.PreSubclassWindow();
    const WNDPROC ours = AfxGetAfxWndProc();
    const auto previous =
        reinterpret_cast<WNDPROC>(::SetWindowLongPtr(hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(ours)));
    if (previous != ours)
    {
        *AfxWndAccess::SuperWndProcAddr(wnd) = previous;
    }
}

void AfxHookWindowCreate(CWnd* pWnd)
{
    AfxThreadState* thread = AfxGetThreadState();
    if (thread->m_pWndInit == pWnd)
    {
        return;
    }
    if (thread->m_hHookCbt == nullptr)
    {
        thread->m_hHookCbt = ::SetWindowsHookEx(WH_CBT, &CbtHook, nullptr, GetCurrentThreadId());
        if (thread->m_hHookCbt == nullptr)
        {
            AfxThrowMemoryException();
        }
    }
    ASSERT(pWnd != nullptr && pWnd->m_hWnd == nullptr && thread->m_pWndInit == nullptr);
    thread->m_pWndInit = pWnd;
}

BOOL AfxUnhookWindowCreate()
{
    AfxThreadState* thread = AfxGetThreadState();
    if (thread->m_hHookCbt != nullptr)
    {
        ::UnhookWindowsHookEx(thread->m_hHookCbt);
        thread->m_hHookCbt = nullptr;
    }
    const bool created = thread->m_pWndInit == nullptr;
    thread->m_pWndInit = nullptr;
    return created;
}

WNDPROC AfxGetAfxWndProc()
{
    const WNDPROC own = AfxGetModuleState()->m_pfnAfxWndProc;
    return own != nullptr ? own : &AfxWndProc;
}

LRESULT CALLBACK AfxWndProc(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam)
{
    if (nMsg == WM_QUERYAFXWNDPROC)
    {
        return 1;
    }
    CWnd* wnd = CWnd::FromHandlePermanent(hWnd);
    if (wnd == nullptr || wnd->m_hWnd != hWnd)
    {
        return ::DefWindowProc(hWnd, nMsg, wParam, lParam);
    }
    return AfxCallWndProc(wnd, hWnd, nMsg, wParam, lParam);
}

LRESULT AfxCallWndProc(CWnd* pWnd, HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam)
{
    AfxThreadState* thread = AfxGetThreadState();
    MSG message{};
    message.hwnd = hWnd;
    message.message = nMsg;
    message.wParam = wParam;
    message.lParam = lParam;
    const AfxRestored<MSG> last(thread->m_lastSentMsg, message);
    try
    {
        return AfxWndAccess::WindowProc(*pWnd, nMsg, wParam, lParam);
    }
    catch (...)
    {
        return AfxProcessCurrentException(&message);
    }
}

LRESULT AfxProcessWndProcException(CException* e, const MSG* pMsg)
{
    if (CWinThread* thread = AfxGetThread())
    {
        return thread->ProcessWndProcException(e, pMsg);
    }
    TRACE("%s without a thread object to report it\n", e->GetRuntimeClass()->m_lpszClassName);
    return pMsg != nullptr && pMsg->message == WM_CREATE ? -1 : 0;
}

LRESULT AfxProcessCurrentException(const MSG* pMsg) noexcept
{
    try
    {
        return DispatchCurrentException(pMsg);
    }
    catch (...)
    {
        TRACE("the report of an exception threw\n");
    }
    return pMsg != nullptr && pMsg->message == WM_CREATE ? -1 : 0;
}
