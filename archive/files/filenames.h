// Names of a patient's files, of the volumes and of everything else that archiving reads or writes.
#pragma once

#include "suite/patients/files/filefamily.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace arc
{
inline constexpr std::string_view PatientFileExtension = ".PF";
inline constexpr std::string_view LabelFileName = "CURRENT.DAT";
inline constexpr std::string_view ScratchPatientFile = "VELCOPY.PF";
inline constexpr std::string_view UnpackFolder = "VELTMP";
/// Data files of a timepoint, in the order in which they are listed.
inline constexpr std::array<std::string_view, 5> TimepointDataExtensions = {".DF0", ".DF1", ".DF2", ".DF3",
                                                                            ".M"};

/// The kind of an archive as its path tells.
enum class ArchiveKind
{
    None = 0,         ///< not an archive, or a zipped one (see IsZippedArchive)
    VolumeFile = 100, ///< ".kar"
    Diskettes = 101,  ///< "CURRENT.DAT"
    PatientFile = 102 ///< a bare ".PF" of the earlier format
};

/// The first of ".kar", "current.dat", ".pf" that the lower-cased path holds anywhere decides.
ArchiveKind KindOfArchive(std::string_view path);
/// True for a path whose extension is ".kaz", in any case.
bool IsZippedArchive(std::string_view path);

std::string PatientFileName(std::string_view id);
/// A timepoint's index with two digits at least; three where the number needs them.
std::string TimepointDigits(int index);
std::string TimepointBaseName(std::string_view id, int index);
std::string ImageFileName(std::string_view base, int group, char type);
/// The image's name with the "I" of its extension replaced by "V".
std::string ImageCompanionName(std::string_view imageName);
std::string TimepointDataName(std::string_view id, int index, std::string_view extension);
/// The other name of an image whose name ends in ".I40"; empty for all others.
std::string AlternateImageName(std::string_view imageName);

/// The eight patterns of a patient's files, bare, in their order.
std::vector<std::string> ArchivePatterns(std::string_view id);
/// The same as one argument: each in double quotes, separated by one blank.
std::string ArchivePatternArgument(std::string_view id);
/// The items of such an argument; blanks and double quotes both separate, empty items are skipped.
std::vector<std::string> SplitPatternArgument(std::string_view argument);

/// The number of a volume as its extension shows it: at least three characters ("001", "123").
std::string VolumeNumberText(int number);
/// folder + ID + "." + number; the folder may end in a separator or not ("A:" gives "A:\\ID.001").
std::string VolumeFileName(std::string_view folder, std::string_view id, int number);
/// What finds a volume of the patient on a drive: "A:\\ID.0*".
std::string VolumeSearchPattern(char drive, std::string_view id);

/// Names of one save or load.
std::string WorkingZipName(std::string_view folder, std::string_view id);     ///< ID.ZIP
std::string DatabaseRecordName(std::string_view folder, std::string_view id); ///< ID.ACV

// --- paths ---

/// folder + "\\" + name, with one separator between them; an empty folder gives the name alone.
std::string JoinPath(std::string_view folder, std::string_view name);
std::string_view FileNameOf(std::string_view path); ///< behind the last separator or colon
std::string_view FolderOf(std::string_view path); ///< up to the last separator, which it keeps only as "X:\\"
std::string_view ExtensionOf(std::string_view path); ///< with its dot; empty when there is none
/// The path with its extension replaced (or added); extension without dot.
std::string WithExtension(std::string_view path, std::string_view extension);
/// True when the path begins with a drive letter and a colon; archives take no network paths.
bool HasDriveLetter(std::string_view path);
bool IsDisketteDrive(std::string_view path); ///< drive A:

using pat::EqualNoCase;
using pat::FoldCase;
/// "*" matches any run of characters, "?" exactly one; letters of either case are equal.
bool MatchesWildcard(std::string_view name, std::string_view pattern);
} // namespace arc
