// A file that is unpacked from an archive: made only where it may be, and kept only when it is whole.
#pragma once

#include "archive/files/filesystem.h"

#include <cstddef>
#include <memory>
#include <string>

namespace arc
{
/// True when the folder holds a file or folder of this very name; false when there is none, or when the name
/// is another form of one with a long name ("LONGNA~1.PF"), which would be changed unseen.
bool IsOwnName(FileSystem& files, const std::string& path);

/// Owns the file while it is written. Unless Keep() has answered true, the destructor removes it.
class OutputFile
{
public:
    explicit OutputFile(FileSystem& files);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// Creates the file or replaces an existing one; read-only does not protect it. False, with nothing
    /// touched, when there is a folder or a reparse point of that name, or a file whose own name is another.
    bool Create(const std::string& path);
    /// Creates the file; false when there is anything of the name.
    bool CreateNew(const std::string& path);
    bool Write(const void* data, std::size_t bytes);
    /// Closes the file and leaves it there, with this time of last writing if one is given; false when
    /// anything written was lost. flush: answers true only when it is on the medium.
    bool Keep(const LocalTime* written = nullptr, bool flush = false);

private:
    bool MayReplace(const std::string& path);

    FileSystem& m_files;
    std::unique_ptr<File> m_file;
    std::string m_path;
};
} // namespace arc
