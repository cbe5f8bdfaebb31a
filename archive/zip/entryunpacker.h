// Unpacks the entries of a zip on worker threads.
#pragma once

#include "archive/files/filesystem.h"
#include "archive/zip/codec.h"
#include "archive/zip/parallel.h"
#include "archive/zip/zipdirectory.h"

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace arc
{
/// Unpacks entries that fit into memory, each whole, in any order, and compares their checksums. What it is
/// given must outlive it.
class EntryUnpacker
{
public:
    /// Gets an entry's contents, on a worker thread. False ends everything.
    using Take = std::function<bool(std::size_t index, ByteSpan contents)>;

    /// indexes: of the entries to unpack. Each thread opens the zip for itself.
    EntryUnpacker(FileSystem& files, const std::string& zipPath, Access access,
                  const std::vector<ZipEntry>& entries, std::vector<std::size_t> indexes,
                  const Parallel& parallel, Take take);
    ~EntryUnpacker(); ///< stops what is under way and waits for the threads
    EntryUnpacker(const EntryUnpacker&) = delete;
    EntryUnpacker& operator=(const EntryUnpacker&) = delete;

    /// Whether an entry of this size is for these threads at all.
    static bool Fits(const ZipEntry& entry, const Parallel& parallel)
    {
        return entry.size <= parallel.largest && entry.packedSize <= parallel.largest;
    }
    /// False when no thread could be started.
    bool HasWorkers() const
    {
        return m_hasWorkers;
    }
    bool HasFailed() const
    {
        return m_failed;
    }
    std::size_t Done() const
    {
        return m_done;
    }
    /// Waits for all entries. wait is called at least every 50 ms meanwhile and behind the last; false
    /// when it answers false or an entry failed.
    bool Wait(const std::function<bool()>& wait);
    /// After that: the entries for which a thread got no memory; they are the caller's.
    const std::vector<std::size_t>& Left() const
    {
        return m_left;
    }

private:
    struct Tools; ///< of one thread

    void Run() noexcept;
    bool Unpack(std::size_t index, Tools& tools);
    void TellCaller();

    FileSystem& m_files;
    const std::string m_zipPath;
    const Access m_access;
    const std::vector<ZipEntry>& m_entries;
    const std::vector<std::size_t> m_indexes;
    const Take m_take;
    MemoryBudget m_budget;
    std::atomic<bool> m_stop = false;
    std::atomic<bool> m_failed = false;
    std::atomic<std::size_t> m_begun = 0; ///< entries that a thread has begun
    std::atomic<std::size_t> m_done = 0;  ///< entries that no thread has to do with any more
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<std::size_t> m_left; ///< under the mutex while threads run; has room for all
    bool m_hasWorkers = false;
    Workers m_workers;
};
} // namespace arc
