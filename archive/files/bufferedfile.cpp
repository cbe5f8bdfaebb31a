#include "archive/files/bufferedfile.h"

#include <algorithm>
#include <cstring>

namespace arc
{
namespace
{
constexpr std::size_t SmallestRead = 4096;
constexpr std::size_t LargeCall = std::size_t{32} * 1024; // from here on the window only costs a copy
constexpr std::size_t LargestCall = std::size_t{1} << 30; // what every system takes at once
} // namespace

BufferedFile::BufferedFile(std::unique_ptr<RawFile> file)
    : m_file(std::move(file)), m_nReadAhead(SmallestRead)
{
}

BufferedFile::~BufferedFile()
{
    Close();
}

std::optional<std::size_t> BufferedFile::Read(void* buffer, std::size_t bytes)
{
    if (!m_file)
    {
        return std::nullopt;
    }
    auto* to = static_cast<unsigned char*>(buffer);
    std::size_t done = 0;
    while (done < bytes)
    {
        if (m_position >= m_start && m_position - m_start < m_held)
        {
            const auto offset = static_cast<std::size_t>(m_position - m_start);
            const std::size_t part = std::min(bytes - done, m_held - offset);
            std::memcpy(to + done, m_window.get() + offset, part);
            m_position += part;
            done += part;
            continue;
        }
        if (bytes - done >= LargeCall)
        {
            const auto got = WriteOut()
                                 ? m_file->ReadAt(m_position, to + done, std::min(bytes - done, LargestCall))
                                 : std::nullopt;
            if (!got)
            {
                return std::nullopt;
            }
            m_position += *got;
            done += *got;
            if (*got == 0)
            {
                break;
            }
            continue;
        }
        if (!Fill())
        {
            return std::nullopt;
        }
        if (m_held == 0)
        {
            break;
        }
    }
    return done;
}

// Brings the bytes from the position on into the window; none at the end of the file.
bool BufferedFile::Fill()
{
    if (!WriteOut())
    {
        return false;
    }
    if (!m_window)
    {
        m_window = std::make_unique_for_overwrite<unsigned char[]>(WindowSize);
    }
    const bool inOrder = m_held > 0 && m_position == m_start + m_held;
    m_nReadAhead = inOrder ? std::min(m_nReadAhead * 4, WindowSize) : SmallestRead;
    m_start = m_position;
    m_held = 0;
    const auto got = m_file->ReadAt(m_position, m_window.get(), m_nReadAhead);
    m_held = got.value_or(0);
    return got.has_value();
}

bool BufferedFile::Write(const void* data, std::size_t bytes)
{
    if (!m_file || m_bFailed)
    {
        return false;
    }
    const auto* from = static_cast<const unsigned char*>(data);
    while (bytes > 0)
    {
        // What is held is worth filling up first.
        if (bytes >= (m_bDirty ? WindowSize : LargeCall))
        {
            const std::size_t part = std::min(bytes, LargestCall);
            m_bFailed = !WriteOut() || !m_file->WriteAt(m_position, from, part);
            if (m_bFailed)
            {
                return false;
            }
            m_held = 0; // it may have been written over
            m_position += part;
            from += part;
            bytes -= part;
            continue;
        }
        if (!m_window)
        {
            m_window = std::make_unique_for_overwrite<unsigned char[]>(WindowSize);
        }
        if (m_position < m_start || m_position - m_start > m_held || m_position - m_start == WindowSize)
        {
            if (!WriteOut())
            {
                return false;
            }
            m_start = m_position;
            m_held = 0;
        }
        const auto offset = static_cast<std::size_t>(m_position - m_start);
        const std::size_t part = std::min(bytes, WindowSize - offset);
        std::memcpy(m_window.get() + offset, from, part);
        m_held = std::max(m_held, offset + part);
        m_bDirty = true;
        m_position += part;
        from += part;
        bytes -= part;
    }
    return true;
}

bool BufferedFile::WriteOut()
{
    if (m_bDirty && !m_bFailed)
    {
        m_bFailed = !m_file->WriteAt(m_start, m_window.get(), m_held);
        m_bDirty = false;
    }
    return !m_bFailed;
}

bool BufferedFile::Seek(std::uint64_t position)
{
    m_position = position;
    return m_file != nullptr;
}

std::uint64_t BufferedFile::Position() const
{
    return m_position;
}

std::optional<std::uint64_t> BufferedFile::Size()
{
    if (!m_file)
    {
        return std::nullopt;
    }
    const auto size = m_file->Size();
    return size && m_bDirty ? std::max(*size, m_start + m_held) : size;
}

bool BufferedFile::FlushToDisk()
{
    return m_file && WriteOut() && m_file->FlushToDisk();
}

bool BufferedFile::SetWritten(const LocalTime& time)
{
    return m_file && WriteOut() && m_file->SetWritten(time);
}

bool BufferedFile::Close()
{
    if (!m_file)
    {
        return true;
    }
    const bool written = WriteOut();
    const bool closed = m_file->Close();
    m_file.reset();
    return written && closed;
}
} // namespace arc
