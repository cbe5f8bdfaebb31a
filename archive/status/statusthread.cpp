#include "archive/status/statusthread.h"

#include "archive/status/archiveprogressdlg.h"
#include "archive/work/resultcodes.h"

#include <memory>

namespace
{
// Disables a window for as long as it lives; leaves one alone that was disabled before.
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

// The application's main window: the one that in the end owns the window that asked.
HWND MainWindowOf(HWND hOwner)
{
    const HWND hRoot = hOwner != nullptr ? ::GetAncestor(hOwner, GA_ROOTOWNER) : nullptr;
    return hRoot != nullptr ? hRoot : hOwner;
}

// Shows the progress dialog and does the work; answers the result code. The main window is enabled again
// before the dialog goes, so that it and no other program's window becomes the active one.
int RunWork(const arcSStatusWork& work)
{
    arcCDlgArchiveProgress dialog(work);
    if (!dialog.Create(CWnd::FromHandle(work.hOwner)))
    {
        return arc::ResultNoDialog;
    }
    {
        const WindowDisabled mainWindow(MainWindowOf(work.hOwner));
        dialog.PostMessage(WM_COMMAND, arcCmdStartWork, reinterpret_cast<LPARAM>(dialog.GetSafeHwnd()));
        while (!dialog.IsFinished() && AfxPumpMessage())
        {
        }
    }
    dialog.DestroyWindow();
    // Told to end before the work had begun: nothing was done.
    return dialog.IsFinished() ? dialog.GetResult() : arc::ResultCancelled;
}

void ShowThreadResult(HWND hOwner, int nResult)
{
    CString strMessage;
    const UINT nText = arc::ThreadResultText(nResult);
    if (nText != 0 && strMessage.LoadString(nText))
    {
        ::MessageBox(hOwner, strMessage, AfxGetAppName(), MB_OK | MB_ICONEXCLAMATION | MB_SETFOREGROUND);
    }
}
} // namespace

IMPLEMENT_DYNCREATE(arcCStatusThread, CWinThread)

bool arcCStatusThread::Start(const arcSStatusWork& work)
{
    auto thread = std::make_unique<arcCStatusThread>();
    thread->m_work = work;
    if (!thread->CreateThread())
    {
        return false;
    }
    static_cast<void>(thread.release()); // deletes itself when it ends
    return true;
}

BOOL arcCStatusThread::InitInstance()
{
    // The window belongs on the desktop of its owner, which need not be the one that new threads begin on.
    const DWORD nOwnerThread = ::GetWindowThreadProcessId(m_work.hOwner, nullptr);
    ::SetThreadDesktop(::GetThreadDesktop(nOwnerThread != 0 ? nOwnerThread : ::GetCurrentThreadId()));
    m_nResult = arc::ResultNoDialog;
    try
    {
        m_nResult = RunWork(m_work);
        ShowThreadResult(m_work.hOwner, m_nResult);
    }
    catch (CException* e)
    {
        e->Delete();
    }
    catch (...)
    {
    }
    ::PostMessage(m_work.hOwner, m_work.bSave ? arcMsgSaveEnded : arcMsgLoadEnded, 0, m_nResult);
    return FALSE; // all is done: the thread ends without a message loop of its own
}

int arcCStatusThread::ExitInstance()
{
    return m_nResult;
}
