#include "archive/outputfile.h"

#include "archive/pathsafety.h"

namespace arc
{
bool MadeFiles::TakeName(const std::string& relative)
{
    return m_names.insert(SameFileKey(relative)).second;
}

bool MadeFiles::Contains(const FileIdentity& file) const
{
    return m_files.contains(file);
}

void MadeFiles::Add(const FileIdentity& file)
{
    m_files.insert(file);
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

bool OutputFile::Create(const std::string& path, MadeFiles* made)
{
    // Mostly there is nothing of the name, and making the file is all it takes.
    m_file = m_files.Open(path, Access::CreateNew);
    if (!m_file && MayReplace(path, made))
    {
        m_file = m_files.Open(path, Access::Replace);
    }
    if (!m_file)
    {
        return false;
    }
    m_path = path;
    if (const auto identity = made ? m_file->Identity() : std::nullopt)
    {
        made->Add(*identity);
    }
    return true;
}

bool OutputFile::MayReplace(const std::string& path, const MadeFiles* made)
{
    const auto existing = m_files.Query(path);
    if (!existing || existing->IsFolder() || existing->IsReparsePoint())
    {
        return false;
    }
    if (made)
    {
        const auto file = m_files.Open(path, Access::ReadShared);
        const auto identity = file ? file->Identity() : std::nullopt;
        if (!identity || made->Contains(*identity))
        {
            return false;
        }
    }
    // A hidden, system or read-only file cannot be replaced as it is.
    return (existing->attributes & ~(attribute::Normal | attribute::Archive)) == 0 ||
           m_files.SetAttributes(path, attribute::Normal);
}

bool OutputFile::Write(const void* data, std::size_t bytes)
{
    return m_file->Write(data, bytes);
}

bool OutputFile::Keep(const LocalTime* written)
{
    if (written)
    {
        m_file->SetWritten(*written);
    }
    if (!m_file->Close())
    {
        return false;
    }
    m_file.reset();
    return true;
}
} // namespace arc
