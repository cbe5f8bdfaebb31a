// Files of the service's data folder. Failures are std::system_error with the path.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace svc
{
/// An open file; owns the descriptor.
class DiskFile
{
public:
    enum class Mode
    {
        Read,
        Write ///< created when missing, never shortened
    };
    DiskFile(std::string path, Mode mode);
    ~DiskFile();
    DiskFile(const DiskFile&) = delete;
    DiskFile& operator=(const DiskFile&) = delete;

    std::int64_t Size() const;
    void WriteAt(std::int64_t offset, std::string_view bytes);
    /// Bytes read; 0 at the end.
    std::size_t ReadAt(std::int64_t offset, void* buffer, std::size_t size) const;
    void Truncate(std::int64_t size);
    /// Has the system begin to write a part to the disk; returns at once.
    void BeginSync(std::int64_t offset, std::size_t size) noexcept;
    void Sync();

private:
    [[noreturn]] void Fail() const;

    std::string m_path;
    int m_descriptor;
};

/// Writes a file that is there whole or not at all, readable by this user only.
void WriteWhole(const std::string& path, std::string_view bytes);

/// Has a folder's entries on the disk.
void SyncFolder(const std::string& folder);
} // namespace svc
