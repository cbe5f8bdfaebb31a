#include "tests/support/messagewatch.h"

#include <atomic>
#include <chrono>
#include <stdexcept>

namespace veltest
{

namespace
{

constexpr UINT wmKickIdle = 0x036A; // sent by the framework's modal loops when they are idle

UINT MarkerMessage()
{
    static const UINT message = RegisterWindowMessageA("VeltrixTestQueueMarker");
    return message;
}

WPARAM NextMarker()
{
    static std::atomic<WPARAM> next = 0;
    return ++next;
}

} // namespace

MessageWatch* MessageWatch::s_current = nullptr;

MessageWatch::MessageWatch()
{
    if (s_current != nullptr)
        throw std::logic_error("one dialog script runs at a time");
    s_current = this;
    MarkerMessage();
}

MessageWatch::~MessageWatch()
{
    for (auto& [id, thread] : m_threads)
    {
        UnhookWindowsHookEx(thread.getHook);
        UnhookWindowsHookEx(thread.sentHook);
    }
    s_current = nullptr;
}

MessageWatch::Thread& MessageWatch::Watched(DWORD id)
{
    const std::scoped_lock lock(m_mutex);
    const auto [position, isNew] = m_threads.try_emplace(id);
    Thread& thread = position->second;
    if (isNew)
    {
        thread.getHook = SetWindowsHookExA(WH_GETMESSAGE, OnMessageTaken, nullptr, id);
        thread.sentHook = SetWindowsHookExA(WH_CALLWNDPROCRET, OnMessageHandled, nullptr, id);
    }
    return thread;
}

static bool HasEnded(DWORD id)
{
    const HANDLE handle = OpenThread(SYNCHRONIZE, FALSE, id);
    if (handle == nullptr)
        return true;
    const bool ended = WaitForSingleObject(handle, 0) == WAIT_OBJECT_0;
    CloseHandle(handle);
    return ended;
}

template <typename Predicate> bool MessageWatch::Wait(DWORD timeout, Predicate predicate)
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, std::chrono::milliseconds(timeout),
                              [&] { return m_released || predicate(); });
}

bool MessageWatch::WaitForQueue(DWORD id, DWORD timeout)
{
    const Thread& thread = Watched(id);
    const WPARAM marker = NextMarker();
    const ULONGLONG start = GetTickCount64();
    if (!PostThreadMessageA(id, MarkerMessage(), marker, 0))
        return true;
    // A thread that ends leaves what was posted to it unread.
    constexpr DWORD slice = 50;
    while (!Wait(slice, [&] { return thread.marker >= marker; }))
    {
        if (HasEnded(id))
            return true;
        if (GetTickCount64() - start >= timeout)
            return false;
    }
    return true;
}

bool MessageWatch::WaitForIdle(DWORD id, DWORD timeout)
{
    const Thread& thread = Watched(id);
    const WPARAM marker = NextMarker();
    if (!PostThreadMessageA(id, MarkerMessage(), marker, 0))
        return true;
    return Wait(timeout, [&] { return thread.marker >= marker && thread.idlePasses > thread.idleAtMarker; });
}

bool MessageWatch::HasIdled(DWORD id)
{
    const Thread& thread = Watched(id);
    const std::scoped_lock lock(m_mutex);
    return thread.idlePasses > 0;
}

std::uint64_t MessageWatch::KeysRead(DWORD id)
{
    const Thread& thread = Watched(id);
    const std::scoped_lock lock(m_mutex);
    return thread.keys;
}

bool MessageWatch::WaitForKeys(DWORD id, std::uint64_t count, DWORD timeout)
{
    const Thread& thread = Watched(id);
    return Wait(timeout, [&] { return thread.keys >= count; });
}

void MessageWatch::Release()
{
    const std::scoped_lock lock(m_mutex);
    m_released = true;
    m_changed.notify_all();
}

bool MessageWatch::IsReleased()
{
    const std::scoped_lock lock(m_mutex);
    return m_released;
}

// In a hook: what the watched thread has just done.
template <typename Change> void MessageWatch::Note(Change change)
{
    MessageWatch* watch = s_current;
    if (watch == nullptr)
        return;
    const std::scoped_lock lock(watch->m_mutex);
    const auto thread = watch->m_threads.find(GetCurrentThreadId());
    if (thread == watch->m_threads.end())
        return;
    change(thread->second);
    watch->m_changed.notify_all();
}

LRESULT CALLBACK MessageWatch::OnMessageTaken(int code, WPARAM removed, LPARAM message) noexcept
{
    const MSG& taken = *reinterpret_cast<const MSG*>(message);
    const bool isTaken = code == HC_ACTION && removed == PM_REMOVE;
    if (isTaken && taken.message == MarkerMessage())
        Note([&](Thread& thread) {
            thread.marker = taken.wParam;
            thread.idleAtMarker = thread.idlePasses;
        });
    if (isTaken && (taken.message == WM_KEYUP || taken.message == WM_SYSKEYUP))
        Note([](Thread& thread) { ++thread.keys; });
    return CallNextHookEx(nullptr, code, removed, message);
}

LRESULT CALLBACK MessageWatch::OnMessageHandled(int code, WPARAM sender, LPARAM message) noexcept
{
    if (code == HC_ACTION && reinterpret_cast<const CWPRETSTRUCT*>(message)->message == wmKickIdle)
        Note([](Thread& thread) { ++thread.idlePasses; });
    return CallNextHookEx(nullptr, code, sender, message);
}

} // namespace veltest
