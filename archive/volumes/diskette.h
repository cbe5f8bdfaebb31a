// Numbered diskettes: how many a set needs, whether the one in the drive is the right one, and erasing it.
#pragma once

#include "archive/files/filesystem.h"
#include "archive/files/headerline.h"

#include <cstdint>
#include <optional>
#include <string>

namespace arc
{
/// Volumes that a stream needs: stream and label file in whole clusters over the clusters of a volume, and
/// once more with the headers of that many volumes added to the stream. 0 when a volume holds nothing.
std::uint64_t EstimateVolumes(std::uint64_t streamBytes, const HeaderLine& label,
                              std::uint64_t bytesPerCluster, std::uint64_t clustersPerVolume);

/// What is in the drive, as seen from the disk that is wanted.
enum class DisketteCheck
{
    Right = 0,
    NoDisk = 5,
    NotPatientDisk = 6,
    OtherPatient = 7,
    OutOfOrder = 8
};

/// Looks at the drive for the patient's disk with this number, from 1.
DisketteCheck CheckDiskette(FileSystem& files, char drive, const HeaderLine& patient, int number);

/// True for a readable disk with nothing on it. The check cannot tell it from an empty drive; it may be
/// written as it is.
bool IsBlankDisk(FileSystem& files, char drive);

/// The question (Yes/No) that the check raises, as a string resource id; 0 for the right disk and for none.
unsigned DisketteQuestion(DisketteCheck check);

/// The header line of a file, nothing when it has none.
std::optional<HeaderLine> ReadHeaderLine(FileSystem& files, const std::string& path);

/// Removes all that a drive holds. Entries with attributes outside read-only, hidden, system, folder and
/// archive are skipped, and so a link is never entered; read-only is cleared first; the first failure stops.
/// True only when all clusters are free afterwards.
bool EraseDrive(FileSystem& files, char drive);
} // namespace arc
