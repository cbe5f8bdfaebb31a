#include "suite/patients/files/flusher.h"

#include <exception>

namespace
{
constexpr size_t THREADS = 4;
constexpr size_t WAIT_AT_ONCE = 64; // open files
} // namespace

patCFlusher::patCFlusher()
{
    try
    {
        m_threads.reserve(THREADS);
        while (m_threads.size() < THREADS)
            m_threads.emplace_back([this] { Run(); });
    }
    catch (const std::exception&)
    {
        // It goes on with fewer.
    }
}

patCFlusher::~patCFlusher()
{
    std::deque<Written> left;
    {
        const std::lock_guard lock(m_mutex);
        left.swap(m_waiting);
        m_bEnds = true;
    }
    m_changed.notify_all();
    for (std::thread& thread : m_threads)
        thread.join();
}

void patCFlusher::Add(patCHandle file, const std::string& path)
{
    if (m_threads.empty())
    {
        if (!FlushFileBuffers(file.get()))
            patThrowFileError(GetLastError(), path.c_str());
        return;
    }
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_waiting.size() < WAIT_AT_ONCE || m_dwError != 0; });
        ThrowFailure();
        m_waiting.push_back({std::move(file), path});
    }
    m_changed.notify_all();
}

void patCFlusher::Finish()
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return (m_waiting.empty() && m_nUnderWay == 0) || m_dwError != 0; });
    ThrowFailure();
}

void patCFlusher::ThrowFailure() const
{
    if (m_dwError != 0)
        patThrowFileError(m_dwError, m_failed.c_str());
}

void patCFlusher::Run() noexcept
{
    std::unique_lock lock(m_mutex);
    for (;;)
    {
        m_changed.wait(lock, [this] { return !m_waiting.empty() || m_bEnds; });
        if (m_waiting.empty())
            return;
        Written written = std::move(m_waiting.front());
        m_waiting.pop_front();
        ++m_nUnderWay;
        lock.unlock();
        const DWORD dwError = FlushFileBuffers(written.file.get()) ? 0 : GetLastError();
        written.file.reset();
        lock.lock();
        --m_nUnderWay;
        if (dwError != 0 && m_dwError == 0)
        {
            m_dwError = dwError;
            m_failed = std::move(written.path);
        }
        m_changed.notify_all();
    }
}
