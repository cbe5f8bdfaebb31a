#include "archive/status/statusthread.h"

#include "archive/status/archiveprogressdlg.h"
#include "archive/status/messagewait.h"
#include "archive/work/resultcodes.h"

namespace
{
/// Disables a window for as long as it lives; leaves one alone that was disabled before.
class WindowDisabled
{
public:
    explicit WindowDisabled(HWND hWnd)
    {
        if (::IsWindow(hWnd) && ::IsWindowEnabled(hWnd))
        {
            m_hWnd = hWnd;
            ::EnableWindow(hWnd, FALSE);
        }
    }
    ~WindowDisabled()
    {
        if (::IsWindow(m_hWnd))
        {
            ::EnableWindow(m_hWnd, TRUE);
        }
    }
    WindowDisabled(const WindowDisabled&) = delete;
    WindowDisabled& operator=(const WindowDisabled&) = delete;

private:
    HWND m_hWnd = nullptr;
};

/// The application's main window: the one that in the end owns the window that asked.
HWND MainWindowOf(HWND hOwner)
{
    const HWND hRoot = hOwner != nullptr ? ::GetAncestor(hOwner, GA_ROOTOWNER) : nullptr;
    return hRoot != nullptr ? hRoot : hOwner;
}

/// The window that the user works in: the progress dialog lies over it, and it is active again afterwards.
HWND ActiveWindowOf(HWND hOwner)
{
    const HWND hMain = MainWindowOf(hOwner);
    return hMain != nullptr ? ::GetLastActivePopup(hMain) : nullptr;
}

void ShowThreadResult(HWND hOver, int nResult)
{
    CString strMessage;
    const UINT nText = arc::ThreadResultText(nResult);
    if (nText != 0 && strMessage.LoadString(nText))
    {
        ::MessageBox(hOver, strMessage, AfxGetAppName(), MB_OK | MB_ICONEXCLAMATION | MB_SETFOREGROUND);
    }
}
} // namespace

IMPLEMENT_DYNAMIC(arcCStatusThread, CWinThread)

arcCStatusThread::arcCStatusThread()
{
    m_bAutoDelete = FALSE;
}

arcCStatusThread::~arcCStatusThread()
{
    Join();
}

std::unique_ptr<arcCStatusThread> arcCStatusThread::Start(const arcSStatusWork& work)
{
    auto thread = std::make_unique<arcCStatusThread>();
    thread->m_work = work;
    return thread->CreateThread() ? std::move(thread) : nullptr;
}

int arcCStatusThread::Join()
{
    if (m_hThread != nullptr)
        arcWaitAnswering(m_hThread);
    return m_nResult;
}

/// Shows the progress dialog, has the work done and keeps its result. The other windows are enabled again
/// before the dialog goes.
void arcCStatusThread::RunWork(HWND hActive)
{
    arcCDlgArchiveProgress dialog(m_work);
    if (!dialog.Create(CWnd::FromHandle(hActive)))
    {
        return;
    }
    {
        const WindowDisabled mainWindow(MainWindowOf(m_work.hOwner));
        const WindowDisabled activeWindow(hActive);
        dialog.PostMessage(WM_COMMAND, arcCmdStartWork, reinterpret_cast<LPARAM>(dialog.GetSafeHwnd()));
        while (!dialog.IsFinished())
        {
            const arcWoken woken = arcPumpOrWait(dialog.GetWorker());
            if (woken == arcWoken::Object)
                dialog.FinishWork();
            // Its window goes with the windows that own it; work that has begun goes on without it.
            else if (woken == arcWoken::Quit || (dialog.GetSafeHwnd() == nullptr && !dialog.HasStarted()))
                dialog.StopWork();
        }
        m_nResult = dialog.GetResult(); // it stands, told or not
        dialog.ReportResult();
    }
    // Left to itself the system may take another program's window for the next one.
    const bool bInFront = dialog.GetSafeHwnd() != nullptr && ::GetForegroundWindow() == dialog.GetSafeHwnd();
    dialog.DestroyWindow();
    if (bInFront && ::IsWindow(hActive))
    {
        ::SetForegroundWindow(hActive);
    }
}

BOOL arcCStatusThread::InitInstance()
{
    arcJoinDesktop(::GetWindowThreadProcessId(m_work.hOwner, nullptr));
    m_nResult = arc::ResultNoDialog;
    try
    {
        const HWND hActive = ActiveWindowOf(m_work.hOwner);
        RunWork(hActive);
        ShowThreadResult(::IsWindow(hActive) ? hActive : MainWindowOf(m_work.hOwner), m_nResult);
    }
    catch (CException* e)
    {
        e->Delete();
    }
    catch (...)
    {
    }
    if (m_work.bPostsEnd)
        ::PostMessage(m_work.hOwner, m_work.bSave ? arcMsgSaveEnded : arcMsgLoadEnded, 0, m_nResult);
    return FALSE; // all is done: the thread ends without a message loop of its own
}

int arcCStatusThread::ExitInstance()
{
    return m_nResult;
}
