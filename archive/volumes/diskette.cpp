#include "archive/volumes/diskette.h"

#include "archive/res/archiveres.h"
#include "archive/files/filenames.h"
#include "archive/volumes/volumeformat.h"

namespace arc
{
namespace
{
constexpr std::uint32_t ErasableAttributes = 0x37; // read-only, hidden, system, folder, archive
constexpr int MaxFolderDepth = 128;                // a path of 260 characters cannot go deeper

std::uint64_t Clusters(std::uint64_t bytes, std::uint64_t bytesPerCluster)
{
    return bytes / bytesPerCluster + (bytes % bytesPerCluster != 0 ? 1 : 0);
}

std::string DriveRoot(char drive)
{
    return std::string(1, drive) + ":\\";
}

bool EraseBelow(FileSystem& files, const std::string& folder, int depth)
{
    std::vector<FolderEntry> entries;
    if (depth > MaxFolderDepth || !files.List(folder, "*.*", entries))
    {
        return false;
    }
    for (const FolderEntry& entry : entries)
    {
        // "No attributes" is reported as a bit of its own, which is not one that protects a file.
        const std::uint32_t attributes = entry.info.attributes & ~attribute::Normal;
        if ((attributes & ~ErasableAttributes) != 0)
        {
            continue;
        }
        const std::string path = JoinPath(folder, entry.name);
        bool removed = false;
        if (entry.info.IsFolder())
        {
            removed = EraseBelow(files, path, depth + 1) && files.RemoveFolder(path);
        }
        else
        {
            const bool writable = (attributes & attribute::ReadOnly) == 0 ||
                                  files.SetAttributes(path, attributes & ~attribute::ReadOnly);
            removed = writable && files.RemoveFile(path);
        }
        if (!removed)
        {
            return false;
        }
    }
    return true;
}
} // namespace

std::uint64_t EstimateVolumes(std::uint64_t streamBytes, const HeaderLine& label,
                              std::uint64_t bytesPerCluster, std::uint64_t clustersPerVolume)
{
    if (bytesPerCluster == 0 || clustersPerVolume == 0)
    {
        return 0;
    }
    constexpr std::uint64_t labelOverhead = 5; // three field ends and the line's end
    const std::uint64_t labelClusters = Clusters(
        label.lastName.size() + label.firstName.size() + label.id.size() + labelOverhead, bytesPerCluster);
    const auto volumes = [&](std::uint64_t bytes) {
        return Clusters(Clusters(bytes, bytesPerCluster) + labelClusters, clustersPerVolume);
    };
    return volumes(streamBytes + VolumeHeaderSize * volumes(streamBytes));
}

std::optional<HeaderLine> ReadHeaderLine(FileSystem& files, const std::string& path)
{
    const auto file = files.Open(path, Access::ReadShared);
    char bytes[HeaderLineLength];
    const auto got = file ? file->Read(bytes, sizeof bytes) : std::nullopt;
    return got ? ParseHeaderLine(std::string_view(bytes, *got)) : std::nullopt;
}

DisketteCheck CheckDiskette(FileSystem& files, char drive, const HeaderLine& patient, int number)
{
    const std::string root = DriveRoot(drive);
    std::vector<FolderEntry> entries;
    if (!files.List(root, "*.*", entries) || entries.empty())
    {
        return DisketteCheck::NoDisk;
    }
    std::vector<FolderEntry> volumes;
    const bool found = files.List(root, patient.id + ".0*", volumes) && !volumes.empty();
    if (number == 1)
    {
        const auto header = ReadHeaderLine(files, JoinPath(root, LabelFileName));
        if (!header)
        {
            return found ? DisketteCheck::OutOfOrder : DisketteCheck::NotPatientDisk;
        }
        if (!SamePatient(*header, patient))
        {
            return DisketteCheck::OtherPatient;
        }
    }
    if (!found)
    {
        return DisketteCheck::NotPatientDisk;
    }
    const auto volume = files.Open(JoinPath(root, volumes.front().name), Access::ReadShared);
    unsigned char header[VolumeHeaderSize];
    if (!volume || volume->Read(header, sizeof header) != sizeof header)
    {
        return DisketteCheck::NotPatientDisk;
    }
    constexpr std::size_t volumeNumber = 5;
    return header[volumeNumber] == number ? DisketteCheck::Right : DisketteCheck::OutOfOrder;
}

bool IsBlankDisk(FileSystem& files, char drive)
{
    const std::string root = DriveRoot(drive);
    std::vector<FolderEntry> entries;
    return files.List(root, "*.*", entries) && entries.empty() && files.Space(root).has_value();
}

unsigned DisketteQuestion(DisketteCheck check)
{
    switch (check)
    {
    case DisketteCheck::NotPatientDisk:
        return IDS_ARC_DISK_NOT_PATIENT;
    case DisketteCheck::OtherPatient:
        return IDS_ARC_DISK_OTHER_PATIENT;
    case DisketteCheck::OutOfOrder:
        return IDS_ARC_DISK_OUT_OF_ORDER;
    case DisketteCheck::Right:
    case DisketteCheck::NoDisk:
        break;
    }
    return 0;
}

bool EraseDrive(FileSystem& files, char drive)
{
    const std::string root = DriveRoot(drive);
    if (!EraseBelow(files, root, 0))
    {
        return false;
    }
    const auto space = files.Space(root);
    return space && space->freeClusters == space->totalClusters;
}
} // namespace arc
