#pragma once

#include <windows.h>

#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>

namespace veltest
{

// Watches the message queues of threads of this process through hooks, so that a test can wait for an exact
// event instead of sleeping: everything posted so far has been taken from the queue, the framework's idle
// work has run, a key has been read. One watch exists at a time. Its methods are called on the test's second
// thread; the hooks run on the watched threads. Owns the hooks.
class MessageWatch
{
public:
    MessageWatch();
    ~MessageWatch();
    MessageWatch(const MessageWatch&) = delete;
    MessageWatch& operator=(const MessageWatch&) = delete;

    // Waits until the thread has taken everything that was posted to it before this call, and so has either
    // handled it or entered a nested message loop while doing so. True also when the thread has ended or
    // Release was called; false after the time (milliseconds).
    bool WaitForQueue(DWORD thread, DWORD timeout);

    // Waits for the next pass of the framework's idle work (WM_KICKIDLE) after the queue has been emptied.
    // False when none came within the time: plain dialogs and message boxes have no idle work.
    bool WaitForIdle(DWORD thread, DWORD timeout);

    // True when the thread has run idle work since it is being watched.
    bool HasIdled(DWORD thread);

    // Number of key-up messages that the thread has taken from its queue since it is being watched.
    std::uint64_t KeysRead(DWORD thread);
    bool WaitForKeys(DWORD thread, std::uint64_t count, DWORD timeout);

    // Ends every wait, now and later: the modal call under test has returned.
    void Release();
    bool IsReleased();

private:
    struct Thread
    {
        HHOOK getHook = nullptr;
        HHOOK sentHook = nullptr;
        WPARAM marker = 0; // newest marker taken from the queue
        std::uint64_t idlePasses = 0;
        std::uint64_t idleAtMarker = 0; // passes counted when that marker was taken
        std::uint64_t keys = 0;
    };

    Thread& Watched(DWORD thread);
    template <typename Predicate> bool Wait(DWORD timeout, Predicate predicate);
    template <typename Change> static void Note(Change change);

    static LRESULT CALLBACK OnMessageTaken(int code, WPARAM removed, LPARAM message) noexcept;
    static LRESULT CALLBACK OnMessageHandled(int code, WPARAM sender, LPARAM message) noexcept;

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::map<DWORD, Thread> m_threads;
    bool m_released = false;

    static MessageWatch* s_current;
};

} // namespace veltest
