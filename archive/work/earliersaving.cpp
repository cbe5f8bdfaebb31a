#include "archive/work/earliersaving.h"

#include "archive/files/filenames.h"
#include "archive/work/filecopies.h"

namespace arc
{
std::vector<std::string> EarlierArchiveFiles(FileSystem& files, const std::string& archivePath,
                                             const std::vector<std::string>& listed)
{
    std::vector<std::string> paths;
    if (!files.Query(archivePath).IsAbsent())
    {
        paths.push_back(archivePath);
    }
    for (const std::string& name : listed)
    {
        for (const std::string& candidate : {name, AlternateImageName(name)})
        {
            const std::string path = JoinPath(FolderOf(archivePath), candidate);
            if (!candidate.empty() && !EqualNoCase(path, archivePath) && !files.Query(path).IsAbsent())
            {
                paths.push_back(path);
            }
        }
    }
    return paths;
}

EarlierSaving::EarlierSaving(FileSystem& files, const EarlierSave& save, const WorkProgress& progress)
    : Saving(files, progress, save.step), m_save(save), m_to(FolderOf(save.archivePath))
{
}

EarlierSaving::~EarlierSaving()
{
    if (IsCommitted())
    {
        return;
    }
    for (const PresentFile& file : m_copied)
    {
        Files().RemoveFile(JoinPath(m_to, file.name));
    }
}

std::vector<std::string> EarlierSaving::Replaced()
{
    return EarlierArchiveFiles(Files(), m_save.archivePath, m_save.listed);
}

bool EarlierSaving::WriteArchive()
{
    const auto earlier = m_save.patientFile();
    Step("save.patientFile");
    const auto set = FilesToSave(Files(), m_save.folder, m_save.listed);
    if (!set || !CopyAllNew(Files(), m_save.folder, *set, m_to,
                            [this](int percent, const std::string& name) { return Report(percent, name); }))
    {
        return false;
    }
    m_copied = *set;
    return true;
}

bool EarlierSaving::ProveArchive()
{
    return m_save.trial(JoinPath(m_to, m_copied.front().name));
}

bool EarlierSaving::PlaceArchive()
{
    return true;
}
} // namespace arc
