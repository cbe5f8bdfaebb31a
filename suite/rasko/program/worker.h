// The thread that carries files while the window stays usable.
#pragma once

#include "suite/rasko/transfer/transfer.h"

#include <afxwin.h>

#include <atomic>
#include <mutex>
#include <string>
#include <thread>

namespace rasko
{
/// What a transfer needs besides its task.
struct Connection
{
    std::string target; ///< "host" or "host:port"
    Scripts scripts;
    Credentials credentials;
    int west = 0;
};

/// One transfer at a time on a thread of its own. Tells a window by posted messages; whoever receives them
/// asks for what has been reached. Everything is called on the window's thread.
class Worker
{
public:
    static constexpr UINT MessageProgress = WM_APP + 1; ///< nothing in its parameters: TakeProgress
    static constexpr UINT MessageDone = WM_APP + 2;     ///< TakeOutcome has to be called

    explicit Worker(HWND window) : m_window(window)
    {
    }
    ~Worker();
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    bool IsBusy() const
    {
        return m_thread.joinable();
    }
    void Start(Task task, Connection connection, Folders folders);
    /// At the next block of bytes; the transfer ends as stopped.
    void Stop()
    {
        m_stop = true;
    }
    Progress TakeProgress();
    /// Waits for the thread's last instructions.
    Outcome TakeOutcome();

private:
    HWND m_window;
    std::thread m_thread;
    std::atomic<bool> m_stop = false;
    std::mutex m_mutex; ///< guards the members below
    Progress m_progress;
    bool m_told = false; ///< a progress message is on its way
    Outcome m_outcome;
};
} // namespace rasko
