// Buffering between small reads and writes and a file that is read and written by position.
#pragma once

#include "archive/files/filesystem.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

namespace arc
{
/// The file itself. Its destructor closes it.
class RawFile
{
public:
    virtual ~RawFile() = default;
    /// Bytes read, fewer only at the end of the file; nothing on an error.
    virtual std::optional<std::size_t> ReadAt(std::uint64_t position, void* buffer, std::size_t bytes) = 0;
    virtual bool WriteAt(std::uint64_t position, const void* data, std::size_t bytes) = 0; ///< all or false
    virtual std::optional<std::uint64_t> Size() = 0;
    virtual bool FlushToDisk() = 0;
    virtual bool SetWritten(const LocalTime& time) = 0;
    virtual bool Close() = 0;
};

/// One window of the file is held in memory, read or written. Reads grow from small to the window's size
/// while they go on in order, so that jumping about costs little and reading through is fast.
class BufferedFile final : public File
{
public:
    explicit BufferedFile(std::unique_ptr<RawFile> file);
    ~BufferedFile() override; ///< writes out what is held, without telling whether that worked

    std::optional<std::size_t> Read(void* buffer, std::size_t bytes) override;
    bool Write(const void* data, std::size_t bytes) override;
    bool Seek(std::uint64_t position) override;
    std::uint64_t Position() const override;
    std::optional<std::uint64_t> Size() override;
    bool FlushToDisk() override;
    bool SetWritten(const LocalTime& time) override;
    bool Close() override;

    static constexpr std::size_t WindowSize = std::size_t{256} * 1024;

private:
    bool WriteOut();
    bool Fill();

    std::unique_ptr<RawFile> m_file; ///< null when closed
    std::unique_ptr<unsigned char[]> m_window;
    std::uint64_t m_start = 0; ///< position in the file of the window's first byte
    std::size_t m_held = 0;    ///< bytes in the window
    bool m_bDirty = false;
    bool m_bFailed = false; ///< a write was lost: nothing later may claim success
    std::uint64_t m_position = 0;
    std::size_t m_nReadAhead = 0; ///< bytes of the next read
};
} // namespace arc
