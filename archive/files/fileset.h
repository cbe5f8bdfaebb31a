// The list of a patient's files, from the types of image that each timepoint holds.
#pragma once

#include "archive/files/filesystem.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace arc
{
inline constexpr int ImageGroups = 8;

/// Type characters of each group in table order; bit k of a timepoint's word stands for character k.
using ImageTypeTable = std::array<std::string, ImageGroups>;

struct TimepointFiles
{
    int index = 0;        ///< 0 to 99
    std::string baseName; ///< ID and index, as the patient's record names the files
    std::array<std::uint32_t, ImageGroups> typeBits{}; ///< one word a group
};

/// Names of the whole set, without folder: the patient file, then images with their companions by group, type
/// and timepoint, then the timepoints' data files. Whether they exist is not asked. Time is linear in the
/// bits.
std::vector<std::string> ListFileSet(const std::string& id, const std::vector<TimepointFiles>& timepoints,
                                     const ImageTypeTable& types);

struct PresentFile
{
    std::string name; ///< as it is in the folder: ".C01" where that stands for ".I40"
    std::uint64_t size = 0;
    std::int64_t stamp = 0; ///< time of the last write: 100 ns since 1601

    bool operator==(const PresentFile&) const = default;
};

/// Those of the names that the folder holds, in the order given. A missing ".I40" counts when its ".C01" is
/// there. Nothing when one of them cannot be asked.
std::optional<std::vector<PresentFile>> PresentFiles(FileSystem& files, const std::string& folder,
                                                     const std::vector<std::string>& names);

/// The same for a save that lists its files: nothing also when the first one, the patient file, is missing.
std::optional<std::vector<PresentFile>> FilesToSave(FileSystem& files, const std::string& folder,
                                                    const std::vector<std::string>& listed);

/// Everything a zipped archive of the patient holds from the working folder: what the eight patterns match,
/// then what the list names and no pattern matches; no file twice. Only files of exactly the wildcard's form
/// are taken. False when the folder cannot be read.
bool FilesToArchive(FileSystem& files, const std::string& folder, const std::string& id,
                    const std::vector<std::string>& listed, std::vector<PresentFile>& found);
} // namespace arc
