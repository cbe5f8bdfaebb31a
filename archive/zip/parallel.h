// How work on an archive is spread over threads.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace arc
{
struct Parallel
{
    /// Threads besides the calling one. With 1 there are none: the calling thread does everything, entry by
    /// entry, through the zip library.
    unsigned workers = 1;
    /// Bytes that all entries in memory may take together. One entry is always worked on, whatever it takes.
    std::uint64_t memory = 64ULL << 20;
    /// Bytes of the largest entry that is held in memory; a larger one passes the calling thread as a stream.
    std::uint64_t largest = 32ULL << 20;
    /// Starts a thread; throws std::system_error when there can be none. Without it std::thread does.
    std::function<std::thread(std::function<void()> body)> start;

    bool IsParallel() const
    {
        return workers > 1;
    }
};

/// Threads that run one body each. Those that cannot be started are missing.
class Workers
{
public:
    Workers() = default;
    ~Workers()
    {
        Join();
    }
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    /// The body must not throw. False when not one thread could be started.
    bool Start(const Parallel& parallel, const std::function<void()>& body);
    /// The bodies must have been told to end.
    void Join();

private:
    std::vector<std::thread> m_threads;
};

class MemoryBudget;

/// A part of a budget, given back when it is destroyed. The budget must outlive it.
class MemoryShare
{
public:
    MemoryShare() = default; ///< of nothing
    MemoryShare(MemoryBudget& budget, std::uint64_t bytes) : m_budget(&budget), m_bytes(bytes)
    {
    }
    MemoryShare(MemoryShare&& other) noexcept
        : m_budget(std::exchange(other.m_budget, nullptr)), m_bytes(std::exchange(other.m_bytes, 0))
    {
    }
    MemoryShare& operator=(MemoryShare&& other) noexcept
    {
        std::swap(m_budget, other.m_budget);
        std::swap(m_bytes, other.m_bytes);
        return *this;
    }
    ~MemoryShare()
    {
        ShrinkTo(0);
    }
    explicit operator bool() const
    {
        return m_budget != nullptr;
    }
    /// bytes: no more than it has.
    void ShrinkTo(std::uint64_t bytes);

private:
    MemoryBudget* m_budget = nullptr;
    std::uint64_t m_bytes = 0;
};

/// Memory shared by the entries that are on their way. For any number of threads.
class MemoryBudget
{
public:
    explicit MemoryBudget(std::uint64_t bytes) : m_limit(bytes)
    {
    }

    /// Waits until there is room for so many bytes, or nobody holds any, or urgent answers true (looked at
    /// again whenever Poke is called). Nothing after Stop.
    MemoryShare Take(std::uint64_t bytes, const std::function<bool()>& urgent = {});
    void Poke();
    void Stop();

private:
    friend class MemoryShare;
    void GiveBack(std::uint64_t bytes);

    const std::uint64_t m_limit;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::uint64_t m_used = 0;
    bool m_stopped = false;
};
} // namespace arc
