// A file that is unpacked from an archive: made only where it may be, and kept only when it is whole.
#pragma once

#include "archive/filesystem.h"

#include <cstddef>
#include <memory>
#include <set>
#include <string>

namespace arc
{
// The files that one run has made, to notice when two names of an archive are one file: by name, or because a
// short name is another form of a long one.
class MadeFiles
{
public:
    // True when the name was not used yet; remembers it. relative: a safe path below the run's folder.
    bool TakeName(const std::string& relative);
    bool Contains(const FileIdentity& file) const;
    void Add(const FileIdentity& file);

private:
    std::set<std::string> m_names;
    std::set<FileIdentity> m_files;
};

// Owns the file while it is written. Unless Keep() has answered true, the destructor removes it.
class OutputFile
{
public:
    explicit OutputFile(FileSystem& files);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    // Creates the file or replaces an existing one; read-only does not protect it. False, with nothing
    // touched, when there is a folder or a reparse point of that name, or a file that this run has made (made
    // may be null).
    bool Create(const std::string& path, MadeFiles* made);
    bool Write(const void* data, std::size_t bytes);
    // Closes the file and leaves it there, with this time of last writing if one is given; false when
    // anything written was lost.
    bool Keep(const LocalTime* written = nullptr);

private:
    bool MayReplace(const std::string& path, const MadeFiles* made);

    FileSystem& m_files;
    std::unique_ptr<File> m_file;
    std::string m_path;
};
} // namespace arc
