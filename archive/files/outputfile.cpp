#include "archive/files/outputfile.h"

#include "archive/files/filenames.h"

#include <algorithm>

namespace arc
{
bool IsOwnName(FileSystem& files, const std::string& path)
{
    const std::string_view name = FileNameOf(path);
    std::vector<FolderEntry> entries;
    return files.List(std::string(FolderOf(path)), std::string(name), entries) &&
           std::any_of(entries.begin(), entries.end(),
                       [&](const FolderEntry& entry) { return EqualNoCase(entry.name, name); });
}

OutputFile::OutputFile(FileSystem& files) : m_files(files)
{
}

OutputFile::~OutputFile()
{
    if (m_file)
    {
        m_file.reset();
        m_files.RemoveFile(m_path);
    }
}

bool OutputFile::Create(const std::string& path)
{
    // Mostly there is nothing of the name, and making the file is all it takes.
    if (!CreateNew(path) && MayReplace(path))
    {
        m_file = m_files.Open(path, Access::Replace);
    }
    return m_file != nullptr;
}

bool OutputFile::CreateNew(const std::string& path)
{
    m_path = path;
    m_file = m_files.Open(path, Access::CreateNew);
    return m_file != nullptr;
}

bool OutputFile::MayReplace(const std::string& path)
{
    const auto existing = m_files.Query(path);
    if (!existing || existing->IsFolder() || existing->IsReparsePoint() || !IsOwnName(m_files, path))
    {
        return false;
    }
    // A hidden, system or read-only file cannot be replaced as it is.
    return (existing->attributes & ~(attribute::Normal | attribute::Archive)) == 0 ||
           m_files.SetAttributes(path, attribute::Normal);
}

bool OutputFile::Write(const void* data, std::size_t bytes)
{
    return m_file->Write(data, bytes);
}

bool OutputFile::Keep(const LocalTime* written, bool flush)
{
    if (written)
    {
        m_file->SetWritten(*written);
    }
    if ((flush && !m_file->FlushToDisk()) || !m_file->Close())
    {
        return false;
    }
    m_file.reset();
    return true;
}
} // namespace arc
