// The thread that does the work of an archive operation.
#pragma once

#include "archive/status/statusthread.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <string>

/// Posted to the window of the worker: there is progress to take. Posted again only when it was taken.
inline constexpr UINT arcMsgProgress = WM_APP + 1;
/// Posted when the work is over; the thread itself ends right behind it.
inline constexpr UINT arcMsgWorkEnded = WM_APP + 2;
/// Sent with an arcSQuestion as lParam: the window asks the user and answers the button.
inline constexpr UINT arcMsgAsk = WM_APP + 3;

struct arcSQuestion
{
    const CString& strText;
    UINT nType; ///< as for a message box
};

/// Runs one piece of work on a thread without windows, below normal priority. Belongs to the thread of its
/// window; only the work itself runs on the other. The window may go before the work has ended: nobody is
/// asked and told any more then, and the work goes on.
class arcCWorker
{
public:
    /// The result is that of the work, or nFailure when it throws.
    arcCWorker(arcWork work, int nFailure);
    ~arcCWorker(); ///< stops the work and waits for it
    arcCWorker(const arcCWorker&) = delete;
    arcCWorker& operator=(const arcCWorker&) = delete;

    /// False when the thread cannot be made. Without a window nobody is asked and told.
    bool Start(HWND hWindow);
    /// The work hears it from its next report of progress.
    void Stop();

    /// Signalled when the thread has ended; null before it was started. Stays the worker's.
    HANDLE GetHandle() const;
    /// Once the handle is signalled.
    int GetResult() const
    {
        return m_nResult;
    }

    struct Progress
    {
        int nPercent = 0;
        std::string name; ///< of what is under way
    };
    Progress TakeProgress();

private:
    static UINT Run(LPVOID pThis);
    void Work();
    bool Report(int nPercent, const std::string& name);
    int Ask(const CString& strText, UINT nType) const;

    const arcWork m_work;
    HWND m_hWindow = nullptr;
    std::unique_ptr<CWinThread> m_pThread;
    std::atomic<bool> m_bStop = false;
    int m_nResult; ///< the worker thread's until that has ended
    std::mutex m_mutex;
    Progress m_progress;    ///< under the mutex
    bool m_bPosted = false; ///< under the mutex
};

/// Has work without progress done on a thread of its own while the calling one goes on answering its
/// messages; in line where there can be no thread. What the work throws goes on here. True when WM_QUIT came
/// meanwhile; the caller's own loop finds it again.
bool arcMeanwhile(const std::function<void()>& work);
