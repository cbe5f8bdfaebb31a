#include "archive/volumes/diskettevolumes.h"

#include "archive/files/filenames.h"

#include <utility>

namespace arc
{
DisketteVolumes::DisketteVolumes(FileSystem& files, DiskettePrompts& prompts, char drive, HeaderLine patient,
                                 bool firstConfirmed)
    : m_files(files), m_prompts(prompts), m_drive(drive), m_patient(std::move(patient)),
      m_bConfirmed(firstConfirmed)
{
}

std::string DisketteVolumes::Root() const
{
    return std::string(1, m_drive) + ":\\";
}

std::string DisketteVolumes::VolumePath(int number) const
{
    return VolumeFileName(Root(), m_patient.id, number);
}

std::uint64_t DisketteVolumes::ExpectedCapacity()
{
    const auto space = m_files.Space(Root());
    return space ? space->totalClusters * space->bytesPerCluster : 0;
}

// What was agreed to was the diskette that was in the drive then.
bool DisketteVolumes::Insert(int number)
{
    m_bConfirmed = false;
    return m_prompts.Insert(number, m_drive);
}

// Until the drive holds a diskette that may be erased; false when the user aborts.
bool DisketteVolumes::AgreeToUse(int number)
{
    // The one before is still in the drive.
    if (number > 1 && !Insert(number))
        return false;
    for (;;)
    {
        const DisketteCheck check = CheckDiskette(m_files, m_drive, m_patient, number);
        if (check == DisketteCheck::NoDisk && IsBlankDisk(m_files, m_drive))
            return true;
        if (check == DisketteCheck::NoDisk)
        {
            if (!Insert(number))
                return false;
            continue;
        }
        const unsigned question = DisketteQuestion(check);
        return question == 0 || m_bConfirmed || m_prompts.UseAnyway(question);
    }
}

bool DisketteVolumes::WriteLabel()
{
    const auto label = m_files.Open(JoinPath(Root(), LabelFileName), Access::Replace);
    const std::string line = WriteHeaderLine(m_patient);
    return label && label->Write(line.data(), line.size()) && label->FlushToDisk() && label->Close();
}

VolumeStatus DisketteVolumes::OpenForWriting(int number, std::unique_ptr<File>& volume,
                                             std::uint64_t& capacity)
{
    if (!AgreeToUse(number))
        return VolumeStatus::Cancelled;
    m_prompts.Erasing();
    if (!EraseDrive(m_files, m_drive) || (number == 1 && !WriteLabel()))
    {
        m_prompts.WriteFault(m_drive);
        return VolumeStatus::WriteFailed;
    }
    const auto space = m_files.Space(Root());
    if (!space)
        return VolumeStatus::OpenFailed;
    capacity = space->FreeBytes();
    volume = m_files.Open(VolumePath(number), Access::Replace);
    if (!volume)
        return VolumeStatus::OpenFailed;
    m_prompts.Writing(number);
    m_nWritten = number;
    m_nInDrive = number;
    return VolumeStatus::Done;
}

VolumeStatus DisketteVolumes::OpenForReading(int number, std::unique_ptr<File>& volume)
{
    const bool isThere = static_cast<bool>(m_files.Query(VolumePath(number)));
    if (!isThere && m_nInDrive != number && !m_prompts.Insert(number, m_drive))
        return VolumeStatus::Cancelled;
    m_nInDrive = number;
    volume = m_files.Open(VolumePath(number), Access::ReadShared);
    return volume ? VolumeStatus::Done : VolumeStatus::OpenFailed;
}

VolumeStatus DisketteVolumes::Settle(int number, VolumeStatus problem)
{
    if (problem == VolumeStatus::OpenFailed && m_files.Query(VolumePath(number)))
        m_prompts.Unreadable(m_drive);
    return m_prompts.InsertRight(number, m_drive) ? VolumeStatus::Done : VolumeStatus::Cancelled;
}
} // namespace arc
