// Saves as a volume stream, into a folder or on diskettes.
#pragma once

#include "archive/files/headerline.h"
#include "archive/volumes/diskettevolumes.h"
#include "archive/work/saving.h"

#include <functional>
#include <string>
#include <vector>

namespace arc
{
struct VolumeSave
{
    HeaderLine header;               ///< of the patient
    std::string archivePath;         ///< of the label file; on a diskette only its drive counts
    std::string folder;              ///< where the files are
    std::vector<std::string> listed; ///< their names, the patient file's first
    LocalTime saved;
    std::string checking; ///< the name that is reported while the volumes are read back
    /// Whether a load would take the patient file at this path.
    std::function<bool(const std::string& path)> trial;
    WorkStep step;
};

/// The label file and the volumes of an archive at this path, as far as they are there or cannot be asked.
std::vector<std::string> VolumeArchiveFiles(FileSystem& files, const std::string& archivePath,
                                            const std::string& id);

/// A save as a volume stream: what it writes is compared with the files byte by byte.
class VolumeSaving : public Saving
{
public:
    /// Why the save failed.
    VolumeStatus Status() const
    {
        return m_status;
    }

protected:
    VolumeSaving(FileSystem& files, const VolumeSave& save, const WorkProgress& progress);

    /// Keeps the status; true for Done.
    bool Take(VolumeStatus status);
    bool WriteTo(VolumeDestination& destination);
    bool ProveFrom(VolumeSource& source);
    /// False, with the step failed, when the files cannot be listed; before anything is written.
    bool ListFiles();
    const VolumeSave& Save() const
    {
        return m_save;
    }
    const std::vector<PresentFile>& Listed() const
    {
        return m_set;
    }

private:
    const VolumeSave& m_save;
    std::vector<PresentFile> m_set;
    VolumeStatus m_status = VolumeStatus::OpenFailed; ///< as long as nothing else is known
};

/// Into a folder: what is written becomes an archive when its label file is there.
class FolderVolumeSaving : public VolumeSaving
{
public:
    FolderVolumeSaving(FileSystem& files, const VolumeSave& save, const WorkProgress& progress);
    ~FolderVolumeSaving() override;

protected:
    std::vector<std::string> Replaced() override;
    bool WriteArchive() override;
    bool ProveArchive() override;
    bool PlaceArchive() override;

private:
    FolderVolumes m_volumes;
};

/// On diskettes, which are erased one after another when the user agrees; what is on them after a save that
/// failed is no archive.
class DisketteSaving : public VolumeSaving
{
public:
    /// confirmed: the user has already agreed to lose what the diskette in the drive holds.
    DisketteSaving(FileSystem& files, const VolumeSave& save, DiskettePrompts& prompts, bool confirmed,
                   const WorkProgress& progress);

protected:
    std::vector<std::string> Replaced() override;
    bool WriteArchive() override;
    bool ProveArchive() override;
    bool PlaceArchive() override;

private:
    DiskettePrompts& m_prompts;
    DisketteVolumes m_volumes;
};
} // namespace arc
