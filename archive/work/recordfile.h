// The scratch file that a patient's database record goes through on its way into an archive.
#pragma once

#include "archive/files/filesystem.h"

#include <memory>
#include <string>

namespace arc
{
/// The file ID.ACV in the folder of temporary files, for one save. Two saves of one ID, of two practices on
/// one computer for instance, never have it at the same time: an open file beside it says whose it is, which
/// Windows closes with its process. For one thread; the file system must outlive it.
class RecordFile
{
public:
    explicit RecordFile(FileSystem& files);
    ~RecordFile(); ///< removes the file
    RecordFile(const RecordFile&) = delete;
    RecordFile& operator=(const RecordFile&) = delete;

    /// Makes the file new, with these bytes on the medium. False when another save has it or it cannot be
    /// written.
    bool Write(const std::string& folder, const std::string& id, const std::string& bytes);
    void Remove();
    /// Of the file that is there; empty when there is none.
    const std::string& Path() const
    {
        return m_path;
    }

    /// Removes what saves that have died left in the folder.
    static void ClearAbandoned(FileSystem& files, const std::string& folder);

private:
    bool Take(const std::string& path);

    FileSystem& m_files;
    std::string m_path;
    std::unique_ptr<File> m_lock;
};
} // namespace arc
