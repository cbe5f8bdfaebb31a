// Saves in the earlier format: the patient file with its files beside it.
#pragma once

#include "archive/files/fileset.h"
#include "archive/work/saving.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace arc
{
struct EarlierSave
{
    std::string archivePath;         ///< of the patient file's copy
    std::string folder;              ///< where the files are
    std::vector<std::string> listed; ///< their names, the patient file's first
    /// Has the patient file in the folder be one of the earlier format as long as what it answers lives.
    std::function<std::shared_ptr<void>()> patientFile;
    /// Whether a load would take the patient file at this path.
    std::function<bool(const std::string& path)> trial;
    WorkStep step;
};

/// The files of an archive at this path, as far as they are there or cannot be asked.
std::vector<std::string> EarlierArchiveFiles(FileSystem& files, const std::string& archivePath,
                                             const std::vector<std::string>& listed);

/// A save in the earlier format: each copy is compared with its file. Step "save.patientFile" while the
/// patient file is one of that format.
class EarlierSaving : public Saving
{
public:
    EarlierSaving(FileSystem& files, const EarlierSave& save, const WorkProgress& progress);
    ~EarlierSaving() override;

protected:
    std::vector<std::string> Replaced() override;
    bool WriteArchive() override;
    bool ProveArchive() override;
    bool PlaceArchive() override;

private:
    const EarlierSave& m_save;
    const std::string m_to;
    std::vector<PresentFile> m_copied;
};
} // namespace arc
