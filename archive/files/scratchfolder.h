// The folder that archives are unpacked into.
#pragma once

#include "archive/files/filesystem.h"

#include <memory>
#include <string>

namespace arc
{
enum class ScratchState
{
    Taken,
    Busy,  ///< another process uses it
    Failed ///< it cannot be made, or not be made empty
};

/// Holds the scratch folder for one operation. Only one process has it at a time: an open file beside it says
/// so, which Windows closes and removes with its process, so that a dead user is none. What is in the folder
/// is removed when it is taken and when it is given back. For one thread.
class ScratchFolder
{
public:
    /// temporaryFolder: where the folder lies; the file system must outlive this object.
    ScratchFolder(FileSystem& files, const std::string& temporaryFolder);
    ~ScratchFolder(); ///< gives it back
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    /// A link of its name goes, not what it leads to.
    ScratchState Take();
    void GiveBack();
    const std::string& Path() const
    {
        return m_path;
    }

private:
    FileSystem& m_files;
    std::string m_path;
    std::string m_lockPath;
    std::unique_ptr<File> m_lock;
};
} // namespace arc
