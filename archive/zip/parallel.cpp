#include "archive/zip/parallel.h"

#include <new>
#include <system_error>

namespace arc
{
bool Workers::Start(const Parallel& parallel, const std::function<void()>& body)
{
    try
    {
        m_threads.reserve(parallel.workers);
        while (m_threads.size() < parallel.workers)
        {
            m_threads.push_back(parallel.start ? parallel.start(body) : std::thread(body));
        }
    }
    catch (const std::system_error&)
    {
        // The work goes on with fewer.
    }
    catch (const std::bad_alloc&)
    {
    }
    return !m_threads.empty();
}

void Workers::Join()
{
    for (std::thread& thread : m_threads)
    {
        thread.join();
    }
    m_threads.clear();
}

MemoryShare MemoryBudget::Take(std::uint64_t bytes, const std::function<bool()>& urgent)
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [&] {
        return m_stopped || m_used == 0 || (m_used < m_limit && bytes <= m_limit - m_used) ||
               (urgent && urgent());
    });
    if (m_stopped)
    {
        return {};
    }
    m_used += bytes;
    return {*this, bytes};
}

void MemoryShare::ShrinkTo(std::uint64_t bytes)
{
    if (m_budget && bytes < m_bytes)
    {
        m_budget->GiveBack(m_bytes - bytes);
        m_bytes = bytes;
    }
}

void MemoryBudget::GiveBack(std::uint64_t bytes)
{
    {
        const std::lock_guard lock(m_mutex);
        m_used -= bytes;
    }
    m_changed.notify_all();
}

void MemoryBudget::Poke()
{
    {
        const std::lock_guard lock(m_mutex); // who is about to wait has looked or will look again
    }
    m_changed.notify_all();
}

void MemoryBudget::Stop()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopped = true;
    }
    m_changed.notify_all();
}
} // namespace arc
