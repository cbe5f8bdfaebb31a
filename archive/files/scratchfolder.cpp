#include "archive/files/scratchfolder.h"

#include "archive/files/filenames.h"
#include "archive/files/foldertree.h"

namespace arc
{
ScratchFolder::ScratchFolder(FileSystem& files, const std::string& temporaryFolder)
    : m_files(files), m_path(JoinPath(temporaryFolder, UnpackFolder)), m_lockPath(m_path + ".LCK")
{
}

ScratchFolder::~ScratchFolder()
{
    GiveBack();
}

ScratchState ScratchFolder::Take()
{
    if (m_lock)
        return ScratchState::Taken;
    // Opening for replacement shares nothing: it fails while another process has the file open.
    m_lock = m_files.Open(m_lockPath, Access::Replace);
    if (!m_lock)
        return m_files.Query(m_lockPath) ? ScratchState::Busy : ScratchState::Failed;
    if (RemoveTree(m_files, m_path) && m_files.CreateFolder(m_path))
        return ScratchState::Taken;
    GiveBack();
    return ScratchState::Failed;
}

void ScratchFolder::GiveBack()
{
    if (!m_lock)
        return;
    RemoveTree(m_files, m_path);
    m_lock.reset();
    m_files.RemoveFile(m_lockPath);
}
} // namespace arc
