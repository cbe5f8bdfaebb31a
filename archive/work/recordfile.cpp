#include "archive/work/recordfile.h"

#include "archive/files/filenames.h"
#include "archive/files/outputfile.h"

namespace arc
{
namespace
{
std::string LockPath(const std::string& path)
{
    return path + ".LCK";
}
} // namespace

RecordFile::RecordFile(FileSystem& files) : m_files(files)
{
}

RecordFile::~RecordFile()
{
    Remove();
}

// The name is this object's, and there is no file of it.
bool RecordFile::Take(const std::string& path)
{
    // Opening for replacement shares nothing: it fails while another process has the file open.
    m_lock = m_files.Open(LockPath(path), Access::Replace);
    if (!m_lock)
    {
        return false;
    }
    m_path = path;
    const FileQuery left = m_files.Query(path);
    return left.IsAbsent() || (left && m_files.RemoveFile(path));
}

bool RecordFile::Write(const std::string& folder, const std::string& id, const std::string& bytes)
{
    Remove();
    OutputFile file(m_files);
    if (Take(DatabaseRecordName(folder, id)) && file.CreateNew(m_path) &&
        file.Write(bytes.data(), bytes.size()) && file.Keep(nullptr, true))
    {
        return true;
    }
    Remove();
    return false;
}

void RecordFile::Remove()
{
    if (m_lock)
    {
        m_files.RemoveFile(m_path);
        m_lock.reset();
        m_files.RemoveFile(LockPath(m_path));
    }
    m_path.clear();
}

void RecordFile::ClearAbandoned(FileSystem& files, const std::string& folder)
{
    std::vector<FolderEntry> entries;
    files.List(folder, "*.ACV.LCK", entries);
    for (const FolderEntry& entry : entries)
    {
        RecordFile dead(files);
        dead.Take(JoinPath(folder, entry.name.substr(0, entry.name.size() - LockPath({}).size())));
    }
}
} // namespace arc
