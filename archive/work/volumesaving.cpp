#include "archive/work/volumesaving.h"

#include "archive/files/filenames.h"
#include "archive/files/outputfile.h"

namespace arc
{
std::vector<std::string> VolumeArchiveFiles(FileSystem& files, const std::string& archivePath,
                                            const std::string& id)
{
    std::vector<std::string> paths;
    if (!files.Query(archivePath).IsAbsent())
    {
        paths.push_back(archivePath);
    }
    for (int number = 1; number <= MaxVolumes; ++number)
    {
        const std::string path = VolumeFileName(FolderOf(archivePath), id, number);
        if (files.Query(path).IsAbsent())
        {
            break;
        }
        paths.push_back(path);
    }
    return paths;
}

VolumeSaving::VolumeSaving(FileSystem& files, const VolumeSave& save, const WorkProgress& progress)
    : Saving(files, progress, save.step), m_save(save)
{
}

bool VolumeSaving::Take(VolumeStatus status)
{
    m_status = status;
    if (status == VolumeStatus::Cancelled)
    {
        Cancel();
    }
    return status == VolumeStatus::Done;
}

bool VolumeSaving::ListFiles()
{
    auto set = FilesToSave(Files(), m_save.folder, m_save.listed);
    if (set)
    {
        m_set = std::move(*set);
    }
    return set.has_value();
}

bool VolumeSaving::WriteTo(VolumeDestination& destination)
{
    return Take(WriteVolumeStream(Files(), m_save.folder, m_set, m_save.saved, destination,
                                  [this](int percent) { return Report(percent, {}); }));
}

bool VolumeSaving::ProveFrom(VolumeSource& source)
{
    return Take(VerifyVolumeStream(Files(), m_save.folder, m_set, source,
                                   [this](int) { return Report(100, m_save.checking); })) &&
           (m_save.trial(JoinPath(m_save.folder, m_set.front().name)) || Take(VolumeStatus::Corrupt));
}

FolderVolumeSaving::FolderVolumeSaving(FileSystem& files, const VolumeSave& save,
                                       const WorkProgress& progress)
    : VolumeSaving(files, save, progress),
      m_volumes(files, std::string(FolderOf(save.archivePath)), save.header.id)
{
}

FolderVolumeSaving::~FolderVolumeSaving()
{
    if (!IsCommitted())
    {
        m_volumes.RemoveWritten();
    }
}

std::vector<std::string> FolderVolumeSaving::Replaced()
{
    return VolumeArchiveFiles(Files(), Save().archivePath, Save().header.id);
}

bool FolderVolumeSaving::WriteArchive()
{
    return ListFiles() && WriteTo(m_volumes);
}

bool FolderVolumeSaving::ProveArchive()
{
    return ProveFrom(m_volumes);
}

bool FolderVolumeSaving::PlaceArchive()
{
    const std::string& path = Save().archivePath;
    const std::string line = WriteHeaderLine(Save().header);
    OutputFile label(Files());
    if (!label.CreateNew(path) || !label.Write(line.data(), line.size()) || !label.Keep(nullptr, true))
    {
        return Take(VolumeStatus::WriteFailed);
    }
    if (ReadHeaderLine(Files(), path) == ParseHeaderLine(line))
    {
        return true;
    }
    Files().RemoveFile(path);
    return Take(VolumeStatus::WriteFailed);
}

DisketteSaving::DisketteSaving(FileSystem& files, const VolumeSave& save, DiskettePrompts& prompts,
                               bool confirmed, const WorkProgress& progress)
    : VolumeSaving(files, save, progress), m_prompts(prompts),
      m_volumes(files, prompts, save.archivePath.front(), save.header, confirmed)
{
}

std::vector<std::string> DisketteSaving::Replaced()
{
    return {};
}

bool DisketteSaving::WriteArchive()
{
    if (!ListFiles())
    {
        return false;
    }
    if (const auto space = Files().Space(Save().archivePath.substr(0, 1) + ":\\"))
    {
        m_prompts.Expect(EstimateVolumes(StreamLength(Listed()), Save().header, space->bytesPerCluster,
                                         space->totalClusters));
    }
    return WriteTo(m_volumes);
}

bool DisketteSaving::ProveArchive()
{
    if (m_volumes.VolumesWritten() > 1)
    {
        m_prompts.FirstAgain();
    }
    return ProveFrom(m_volumes);
}

bool DisketteSaving::PlaceArchive()
{
    return true;
}
} // namespace arc
