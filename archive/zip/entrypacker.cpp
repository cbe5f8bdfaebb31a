#include "archive/zip/entrypacker.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <new>

namespace arc
{
namespace
{
constexpr std::chrono::milliseconds LongestSilence{50};
constexpr std::size_t ReadPiece = 1 << 20;  // a stop is heard behind each
constexpr std::size_t KeptBuffer = 1 << 20; // a thread keeps no larger one for its next file
} // namespace

struct EntryPacker::Tools
{
    std::unique_ptr<Deflater> deflater;
    Buffer small; // contents of files up to KeptBuffer
};

EntryPacker::EntryPacker(FileSystem& files, const std::vector<std::string>& paths, const Parallel& parallel)
    : m_files(files), m_paths(paths), m_largest(parallel.largest), m_budget(parallel.memory),
      m_entries(paths.size())
{
    m_hasWorkers = m_workers.Start(parallel, [this] { Run(); });
}

EntryPacker::~EntryPacker()
{
    m_stop = true;
    m_budget.Stop();
    m_workers.Join();
}

void EntryPacker::Run() noexcept
{
    Tools tools;
    for (std::size_t index = m_begun++; index < m_paths.size() && !m_stop; index = m_begun++)
    {
        PackedEntry entry;
        try
        {
            Pack(index, tools, entry);
        }
        catch (const std::bad_alloc&)
        {
            entry = {};
            entry.state = PackedEntry::State::Stream;
        }
        const std::lock_guard lock(m_mutex);
        m_entries[index] = std::move(entry);
        if (index == m_turn)
        {
            m_packed.notify_one();
        }
    }
}

void EntryPacker::Pack(std::size_t index, Tools& tools, PackedEntry& entry)
{
    entry.state = PackedEntry::State::Failed;
    const auto info = m_files.Query(m_paths[index]);
    if (!info || info->IsFolder())
    {
        return;
    }
    const auto source = m_files.Open(m_paths[index], Access::ReadAlone);
    const auto size = source ? source->Size() : std::nullopt;
    if (!size)
    {
        return;
    }
    entry.info = *info;
    entry.info.size = *size;
    if (*size > m_largest)
    {
        entry.state = PackedEntry::State::Stream;
        return;
    }
    if (!tools.deflater)
    {
        tools.deflater = std::make_unique<Deflater>();
    }
    const auto bytes = static_cast<std::size_t>(*size);
    const std::size_t bound = tools.deflater->Bound(bytes);
    entry.memory = m_budget.Take(bytes + bound, [&] { return m_turn == index; });
    if (!entry.memory)
    {
        return; // stopped
    }
    {
        Buffer large;
        const auto contents = (bytes <= KeptBuffer ? tools.small : large).Take(bytes);
        if (!Read(*source, contents))
        {
            return;
        }
        entry.bytes = std::make_unique_for_overwrite<unsigned char[]>(bound);
        entry.packedSize = tools.deflater->Pack(contents, {entry.bytes.get(), bound});
        entry.crc = Crc32(contents);
        entry.internalAttributes = InternalAttributes(contents);
    }
    std::size_t kept = bound;
    if (entry.packedSize < bound / 4 * 3)
    {
        kept = entry.packedSize;
        auto exact = std::make_unique_for_overwrite<unsigned char[]>(kept);
        std::memcpy(exact.get(), entry.bytes.get(), kept);
        entry.bytes = std::move(exact);
    }
    entry.memory.ShrinkTo(kept);
    entry.state = PackedEntry::State::Packed;
}

/// False when the file does not have exactly these bytes.
bool EntryPacker::Read(File& source, std::span<unsigned char> contents)
{
    while (!contents.empty())
    {
        const auto got = source.Read(contents.data(), std::min(contents.size(), ReadPiece));
        if (!got || *got == 0 || m_stop)
        {
            return false;
        }
        contents = contents.subspan(*got);
        m_bytesRead += *got;
    }
    char more;
    return source.Read(&more, 1) == std::size_t{0};
}

std::optional<PackedEntry> EntryPacker::Next(const std::function<bool()>& wait)
{
    const std::size_t index = m_next++;
    m_turn = index;
    m_budget.Poke();
    std::unique_lock lock(m_mutex);
    while (m_entries[index].state == PackedEntry::State::Pending)
    {
        m_packed.wait_for(lock, LongestSilence);
        lock.unlock();
        if (!wait())
        {
            return std::nullopt;
        }
        lock.lock();
    }
    return std::move(m_entries[index]);
}
} // namespace arc
