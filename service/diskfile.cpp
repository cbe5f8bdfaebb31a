#include "service/diskfile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

namespace svc
{
DiskFile::DiskFile(std::string path, Mode mode)
    : m_path(std::move(path)),
      m_descriptor(::open(m_path.c_str(),
                          mode == Mode::Read ? O_RDONLY | O_CLOEXEC : O_RDWR | O_CREAT | O_CLOEXEC, 0600))
{
    if (m_descriptor < 0)
        Fail();
}

DiskFile::~DiskFile()
{
    ::close(m_descriptor);
}

std::int64_t DiskFile::Size() const
{
    struct stat state = {};
    if (::fstat(m_descriptor, &state) != 0)
        Fail();
    return state.st_size;
}

void DiskFile::WriteAt(std::int64_t offset, std::string_view bytes)
{
    while (!bytes.empty())
    {
        const ssize_t written = ::pwrite(m_descriptor, bytes.data(), bytes.size(), offset);
        if (written < 0 && errno != EINTR)
            Fail();
        if (written > 0)
        {
            offset += written;
            bytes.remove_prefix(static_cast<std::size_t>(written));
        }
    }
}

std::size_t DiskFile::ReadAt(std::int64_t offset, void* buffer, std::size_t size) const
{
    ssize_t count = 0;
    do
        count = ::pread(m_descriptor, buffer, size, offset);
    while (count < 0 && errno == EINTR);
    if (count < 0)
        Fail();
    return static_cast<std::size_t>(count);
}

void DiskFile::Truncate(std::int64_t size)
{
    if (::ftruncate(m_descriptor, size) != 0)
        Fail();
}

void DiskFile::BeginSync(std::int64_t offset, std::size_t size) noexcept
{
    // Only to have less left for Sync, which tells what goes wrong.
    (void)::sync_file_range(m_descriptor, offset, static_cast<off_t>(size), SYNC_FILE_RANGE_WRITE);
}

void DiskFile::Sync()
{
    if (::fdatasync(m_descriptor) != 0)
        Fail();
}

void DiskFile::Fail() const
{
    throw std::system_error(errno, std::generic_category(), m_path);
}

void WriteWhole(const std::string& path, std::string_view bytes)
{
    const std::string unfinished = path + ".new";
    {
        std::error_code none;
        std::filesystem::remove(unfinished, none);
        DiskFile file(unfinished, DiskFile::Mode::Write);
        file.WriteAt(0, bytes);
        file.Sync();
    }
    std::filesystem::rename(unfinished, path);
    SyncFolder(std::filesystem::path(path).parent_path().string());
}

void SyncFolder(const std::string& folder)
{
    DiskFile(folder, DiskFile::Mode::Read).Sync();
}
} // namespace svc
