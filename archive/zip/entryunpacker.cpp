#include "archive/zip/entryunpacker.h"

#include <chrono>
#include <memory>
#include <new>
#include <optional>

namespace arc
{
namespace
{
constexpr std::chrono::milliseconds LongestSilence{50};
constexpr std::size_t KeptBuffer = 1 << 20; // a thread keeps no larger one for its next entry
constexpr std::uint16_t MethodStored = 0;
} // namespace

struct EntryUnpacker::Tools
{
    std::unique_ptr<File> zip;
    Inflater inflater;
    Buffer packed;
    Buffer contents;
};

EntryUnpacker::EntryUnpacker(FileSystem& files, const std::string& zipPath, Access access,
                             const std::vector<ZipEntry>& entries, std::vector<std::size_t> indexes,
                             const Parallel& parallel, Take take)
    : m_files(files), m_zipPath(zipPath), m_access(access), m_entries(entries), m_indexes(std::move(indexes)),
      m_take(std::move(take)), m_budget(parallel.memory)
{
    m_left.reserve(m_indexes.size());
    m_hasWorkers = m_workers.Start(parallel, [this] { Run(); });
}

EntryUnpacker::~EntryUnpacker()
{
    m_stop = true;
    m_budget.Stop();
    m_workers.Join();
}

void EntryUnpacker::Run() noexcept
{
    std::optional<Tools> tools;
    for (std::size_t begun = m_begun++; begun < m_indexes.size() && !m_stop && !m_failed; begun = m_begun++)
    {
        const std::size_t index = m_indexes[begun];
        try
        {
            if (!tools)
            {
                tools.emplace();
                tools->zip = m_files.Open(m_zipPath, m_access);
            }
            if (!tools->zip || !Unpack(index, *tools))
            {
                m_failed = true;
            }
        }
        catch (const std::bad_alloc&)
        {
            tools.reset();
            const std::lock_guard lock(m_mutex);
            m_left.push_back(index);
        }
        catch (...)
        {
            m_failed = true;
        }
        // Between, the caller wakes up by itself often enough.
        if (++m_done == m_indexes.size() || m_failed)
        {
            TellCaller();
        }
    }
}

void EntryUnpacker::TellCaller()
{
    {
        const std::lock_guard lock(m_mutex); // who is about to wait has looked or will look again
    }
    m_changed.notify_one();
}

bool EntryUnpacker::Unpack(std::size_t index, Tools& tools)
{
    const ZipEntry& entry = m_entries[index];
    const auto packedSize = static_cast<std::size_t>(entry.packedSize);
    const auto size = static_cast<std::size_t>(entry.size);
    const MemoryShare memory = m_budget.Take(packedSize + size);
    if (!memory)
    {
        return false;
    }
    Buffer largePacked;
    Buffer largeContents;
    const auto packed = (packedSize <= KeptBuffer ? tools.packed : largePacked).Take(packedSize);
    if (!tools.zip->Seek(entry.dataOffset) || tools.zip->Read(packed.data(), packedSize) != packedSize)
    {
        return false;
    }
    std::span<unsigned char> contents = packed;
    if (entry.method != MethodStored)
    {
        contents = (size <= KeptBuffer ? tools.contents : largeContents).Take(size);
        if (!tools.inflater.Unpack(packed, contents))
        {
            return false;
        }
    }
    return Crc32(contents) == entry.crc && m_take(index, contents);
}

bool EntryUnpacker::Wait(const std::function<bool()>& wait)
{
    std::unique_lock lock(m_mutex);
    while (m_done < m_indexes.size() && !m_failed)
    {
        m_changed.wait_for(lock, LongestSilence);
        lock.unlock();
        if (!wait())
        {
            return false;
        }
        lock.lock();
    }
    lock.unlock();
    return !m_failed && wait();
}
} // namespace arc
