// Packs files on worker threads, for one writer that takes them in order.
#pragma once

#include "archive/files/filesystem.h"
#include "archive/zip/codec.h"
#include "archive/zip/parallel.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace arc
{
/// A file as it goes into the zip, or what is to become of it.
struct PackedEntry
{
    enum class State
    {
        Pending,
        Packed,
        Stream, ///< too large for memory, or no memory was had: the caller packs it when its turn comes
        Failed  ///< cannot be read whole
    };
    State state = State::Pending;
    FileInfo info; ///< with the size that was packed
    std::uint32_t crc = 0;
    std::uint16_t internalAttributes = 0;
    MemoryShare memory; ///< that the bytes take
    std::unique_ptr<unsigned char[]> bytes;
    std::size_t packedSize = 0;
};

/// Reads, checks and packs each file on one of its threads, ahead of the calling thread as far as the memory
/// allows. The calling thread takes the entries in list order. The list and the file system must outlive it.
class EntryPacker
{
public:
    EntryPacker(FileSystem& files, const std::vector<std::string>& paths, const Parallel& parallel);
    ~EntryPacker(); ///< stops what is under way and waits for the threads
    EntryPacker(const EntryPacker&) = delete;
    EntryPacker& operator=(const EntryPacker&) = delete;

    /// False when no thread could be started; nothing is packed then.
    bool HasWorkers() const
    {
        return m_hasWorkers;
    }
    /// Waits for the next entry, which must not outlive this object; the others wait for its memory. wait is
    /// called at least every 50 ms meanwhile; nothing comes when it answers false.
    std::optional<PackedEntry> Next(const std::function<bool()>& wait);
    /// Bytes of all files that have been read so far.
    std::uint64_t BytesRead() const
    {
        return m_bytesRead;
    }

private:
    struct Tools; ///< of one thread

    void Run() noexcept;
    void Pack(std::size_t index, Tools& tools, PackedEntry& entry);
    bool Read(File& source, std::span<unsigned char> contents);

    FileSystem& m_files;
    const std::vector<std::string>& m_paths;
    const std::uint64_t m_largest;
    MemoryBudget m_budget;
    std::atomic<bool> m_stop = false;
    std::atomic<std::uint64_t> m_bytesRead = 0;
    std::atomic<std::size_t> m_begun = 0; ///< index of the first file that no thread has begun
    std::atomic<std::size_t> m_turn = 0;  ///< index of the entry that the caller waits for
    std::size_t m_next = 0;               ///< the caller's
    std::mutex m_mutex;
    std::condition_variable m_packed;
    std::vector<PackedEntry> m_entries; ///< under the mutex
    bool m_hasWorkers = false;
    Workers m_workers;
};
} // namespace arc
