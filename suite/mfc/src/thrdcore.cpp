// CWinThread: message loop, idle work, threads of the framework.
#include "wndaccess.h"
#include "handlemap.h"

#include "suite/mfc/afxpriv.h"

#include <utility>

#include <process.h>

IMPLEMENT_DYNAMIC(CWinThread, CCmdTarget)

BEGIN_MESSAGE_MAP(CWinThread, CCmdTarget)
END_MESSAGE_MAP()

CWinThread::CWinThread() = default;

CWinThread::CWinThread(AFX_THREADPROC pfnThreadProc, LPVOID pParam)
    : m_pfnThreadProc(pfnThreadProc), m_pThreadParams(pParam)
{
}

CWinThread::~CWinThread()
{
    if (m_hThread != nullptr)
    {
        ::CloseHandle(m_hThread);
    }
    AFX_MODULE_THREAD_STATE* state = AfxGetModuleThreadState();
    if (state->m_pCurrentWinThread == this)
    {
        state->m_pCurrentWinThread = nullptr;
    }
}

// ---------------------------------------------------------------------------------------------------------
// Starting a thread

struct AfxThreadAccess
{
    // Handed from the creating thread, which waits for `started` unless the thread begins suspended.
    struct Startup
    {
        CWinThread* thread;
        AFX_MODULE_STATE* module;
        HWND mainWindow;
        HANDLE started;
    };

    static unsigned __stdcall Entry(void* parameter)
    {
        const std::unique_ptr<Startup> owner(static_cast<Startup*>(parameter));
        const Startup startup = *owner;
        AFX_MANAGE_STATE(startup.module);
        CWinThread* thread = startup.thread;
        UINT exitCode = static_cast<UINT>(-1);
        HANDLE waiting = startup.started; // the creator closes it once it is set
        const auto release = [&waiting] {
            if (waiting != nullptr)
            {
                ::SetEvent(std::exchange(waiting, nullptr));
            }
        };
        try
        {
            AfxGetModuleThreadState()->m_pCurrentWinThread = thread;
            // The thread's dialogs and message boxes are owned by the program's main window.
            CWnd mainWindow;
            if (thread->m_pMainWnd == nullptr && startup.mainWindow != nullptr)
            {
                mainWindow.Attach(startup.mainWindow);
                thread->m_pMainWnd = &mainWindow;
            }
            MSG message;
            ::PeekMessage(&message, nullptr, WM_USER, WM_USER, PM_NOREMOVE); // makes the message queue
            release();
            exitCode = Run(*thread);
            mainWindow.Detach();
        }
        catch (...)
        {
            AfxProcessCurrentException(nullptr);
        }
        release();
        AfxGetModuleThreadState()->m_pCurrentWinThread = nullptr;
        try
        {
            thread->Delete();
        }
        catch (...)
        {
            TRACE("a thread object's destructor threw\n");
        }
        return exitCode;
    }

    static UINT Run(CWinThread& thread)
    {
        try
        {
            if (thread.m_pfnThreadProc != nullptr)
            {
                return thread.m_pfnThreadProc(thread.m_pThreadParams);
            }
            return static_cast<UINT>(thread.InitInstance() ? thread.Run() : thread.ExitInstance());
        }
        catch (...)
        {
            AfxProcessCurrentException(nullptr);
            return static_cast<UINT>(-1);
        }
    }

    // The new thread owns its object from the moment it runs: nothing touches `thread` after that.
    static bool Create(CWinThread& thread, DWORD flags, UINT stackSize, LPSECURITY_ATTRIBUTES security,
                       int priority)
    {
        ENSURE(thread.m_hThread == nullptr);
        CWinApp* app = AfxGetApp();
        CWnd* mainWindow = app != nullptr ? app->m_pMainWnd : nullptr;
        auto startup = std::make_unique<Startup>(Startup{
            &thread, AfxGetModuleState(), mainWindow != nullptr ? mainWindow->m_hWnd : nullptr, nullptr});
        const bool suspended = (flags & CREATE_SUSPENDED) != 0;
        if (!suspended)
        {
            startup->started = ::CreateEvent(nullptr, TRUE, FALSE, nullptr);
            if (startup->started == nullptr)
            {
                return false;
            }
        }
        const HANDLE started = startup->started;
        unsigned id = 0;
        const auto handle = reinterpret_cast<HANDLE>(
            ::_beginthreadex(security, stackSize, &Entry, startup.get(), CREATE_SUSPENDED, &id));
        if (handle == nullptr)
        {
            if (started != nullptr)
            {
                ::CloseHandle(started);
            }
            return false;
        }
        static_cast<void>(startup.release()); // the thread's
        thread.m_hThread = handle;
        thread.m_nThreadID = id;
        ::SetThreadPriority(handle, priority);
        if (!suspended)
        {
            // Messages can be posted to the thread once this returns.
            ::ResumeThread(handle);
            ::WaitForSingleObject(started, INFINITE);
            ::CloseHandle(started);
        }
        return true;
    }
};

BOOL CWinThread::CreateThread(DWORD dwCreateFlags, UINT nStackSize, LPSECURITY_ATTRIBUTES lpSecurityAttrs)
{
    return AfxThreadAccess::Create(*this, dwCreateFlags, nStackSize, lpSecurityAttrs, THREAD_PRIORITY_NORMAL);
}

BOOL CWinThread::SetThreadPriority(int nPriority)
{
    return ::SetThreadPriority(m_hThread, nPriority);
}

DWORD CWinThread::ResumeThread()
{
    return ::ResumeThread(m_hThread);
}

void CWinThread::Delete()
{
    if (m_bAutoDelete)
    {
        delete this;
    }
}

// ---------------------------------------------------------------------------------------------------------
// The message loop

BOOL CWinThread::InitInstance()
{
    return FALSE;
}

int CWinThread::Run()
{
    bool idle = true;
    LONG idleCount = 0;
    for (;;)
    {
        MSG waiting;
        while (idle && !::PeekMessage(&waiting, nullptr, 0, 0, PM_NOREMOVE))
        {
            idle = OnIdle(idleCount++) != FALSE;
        }
        do
        {
            if (!PumpMessage())
            {
                return ExitInstance();
            }
            if (IsIdleMessage(AfxGetCurrentMessage()))
            {
                idle = true;
                idleCount = 0;
            }
        } while (::PeekMessage(&waiting, nullptr, 0, 0, PM_NOREMOVE));
    }
}

int CWinThread::ExitInstance()
{
    return static_cast<int>(AfxGetCurrentMessage()->wParam);
}

BOOL CWinThread::PumpMessage()
{
    MSG* message = AfxGetCurrentMessage();
    if (::GetMessage(message, nullptr, 0, 0) <= 0)
    {
        return FALSE;
    }
    if (message->message == WM_KICKIDLE)
    {
        return TRUE;
    }
    bool translated = false;
    try
    {
        translated = PreTranslateMessage(message) != FALSE;
    }
    catch (...)
    {
        AfxProcessCurrentException(message);
        translated = true;
    }
    if (!translated)
    {
        ::TranslateMessage(message);
        ::DispatchMessage(message);
    }
    return TRUE;
}

BOOL CWinThread::PreTranslateMessage(MSG* pMsg)
{
    if (pMsg->hwnd == nullptr)
    {
        return FALSE;
    }
    CWnd* main = GetMainWnd();
    if (CWnd::WalkPreTranslateTree(main != nullptr ? main->m_hWnd : nullptr, pMsg))
    {
        return TRUE;
    }
    // Messages of modeless dialogs pass the main window's accelerators last.
    // An active window that merely stands in for the main window has been asked on the way up.
    if (main != nullptr && main == m_pMainWnd && CWnd::FromHandle(pMsg->hwnd)->GetTopLevelParent() != main)
    {
        return main->PreTranslateMessage(pMsg);
    }
    return FALSE;
}

BOOL CWinThread::OnIdle(LONG lCount)
{
    if (lCount <= 0)
    {
        CWnd* main = m_pMainWnd;
        if (main != nullptr && main->m_hWnd != nullptr && main->IsWindowVisible() &&
            CWnd::FromHandlePermanent(main->m_hWnd) == main)
        {
            AfxCallWndProc(main, main->m_hWnd, WM_IDLEUPDATECMDUI, TRUE, 0);
            main->SendMessageToDescendants(WM_IDLEUPDATECMDUI, TRUE, 0, TRUE, TRUE);
        }
        return TRUE;
    }
    AfxMaps().DropSince(0);
    return FALSE;
}

BOOL CWinThread::IsIdleMessage(MSG* pMsg)
{
    // A mouse that stands still and painting do not change what idle work looks at.
    if (pMsg->message == WM_MOUSEMOVE || pMsg->message == WM_NCMOUSEMOVE)
    {
        AfxThreadState* state = AfxGetThreadState();
        if (state->m_ptCursorLast.x == pMsg->pt.x && state->m_ptCursorLast.y == pMsg->pt.y &&
            state->m_nMsgLast == pMsg->message)
        {
            return FALSE;
        }
        state->m_ptCursorLast = pMsg->pt;
        state->m_nMsgLast = pMsg->message;
        return TRUE;
    }
    constexpr UINT systemTimer = 0x0118;
    return pMsg->message != WM_PAINT && pMsg->message != systemTimer;
}

LRESULT CWinThread::ProcessWndProcException(CException* e, const MSG* pMsg)
{
    if (pMsg != nullptr && pMsg->message == WM_PAINT)
    {
        ::ValidateRect(pMsg->hwnd, nullptr); // or it would be painted, and fail, without end
    }
    // A CUserException says that the user has been told.
    if (!e->IsKindOf(RUNTIME_CLASS(CUserException)))
    {
        const bool command = pMsg != nullptr && pMsg->message == WM_COMMAND;
        e->ReportError(MB_ICONEXCLAMATION | MB_OK,
                       command ? AFX_IDP_COMMAND_FAILURE : AFX_IDP_INTERNAL_FAILURE);
    }
    return pMsg != nullptr && pMsg->message == WM_CREATE ? -1 : 0;
}

CWnd* CWinThread::GetMainWnd()
{
    return m_pMainWnd != nullptr ? m_pMainWnd : CWnd::GetActiveWindow();
}

// ---------------------------------------------------------------------------------------------------------
// The current thread

CWinThread* AfxGetThread()
{
    CWinThread* thread = AfxGetModuleThreadState()->m_pCurrentWinThread;
    return thread != nullptr ? thread : AfxGetApp();
}

CWnd* AfxGetMainWnd()
{
    CWinThread* thread = AfxGetThread();
    return thread != nullptr ? thread->GetMainWnd() : CWnd::GetActiveWindow();
}

MSG* AfxGetCurrentMessage()
{
    return &AfxGetThreadState()->m_msgCur;
}

BOOL AfxPumpMessage()
{
    if (CWinThread* thread = AfxGetThread())
    {
        return thread->PumpMessage();
    }
    MSG* message = AfxGetCurrentMessage();
    if (::GetMessage(message, nullptr, 0, 0) <= 0)
    {
        return FALSE;
    }
    if (message->message != WM_KICKIDLE && !AfxPreTranslateMessage(message))
    {
        ::TranslateMessage(message);
        ::DispatchMessage(message);
    }
    return TRUE;
}

BOOL AfxIsIdleMessage(MSG* pMsg)
{
    CWinThread* thread = AfxGetThread();
    return thread != nullptr ? thread->IsIdleMessage(pMsg) : pMsg->message != WM_PAINT;
}

BOOL AfxPreTranslateMessage(MSG* pMsg)
{
    CWinThread* thread = AfxGetThread();
    return thread != nullptr ? thread->PreTranslateMessage(pMsg) : CWnd::WalkPreTranslateTree(nullptr, pMsg);
}

void AfxPostQuitMessage(int nExitCode)
{
    ::PostQuitMessage(nExitCode);
}
