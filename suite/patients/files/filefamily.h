// Whose file is this: the one grammar of the names of a patient's files.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace pat
{
inline constexpr std::size_t MaxIdLength = 25; ///< characters of a patient ID

/// What a file of a patient's family holds.
enum class FileKind
{
    PatientFile,           ///< ID.PF
    Image,                 ///< IDtt.I2A
    Companion,             ///< IDtt.V2A
    FurtherImage,          ///< IDtt.I2A.AVI
    AlternateImage,        ///< IDtt.C01, which may stand for IDtt.I40
    TimepointData,         ///< IDtt.DF0 to IDtt.DF3, IDtt.M
    DataImage,             ///< IDtt.D0.I2A, and others with something in between
    Extra,                 ///< ID$tt$movie.avi; also ID$ followed by anything else, then of no timepoint
    Morph,                 ///< ID, anything, .2dmorph: fits several IDs, see PossibleOwners
    KeptPatientFile,       ///< ID.ORIGINALPF: the patient file while one of the earlier format has its place
    UnfinishedPatientFile, ///< ID.PF~...: a patient file that is being written
    DatabaseRecord         ///< ID.ACV: the record that travels in an archive; never in the working folder
};

/// True for the patient's records, of which archives have their own: they are read, never copied from one.
constexpr bool IsRecord(FileKind kind)
{
    return kind == FileKind::PatientFile || kind == FileKind::KeptPatientFile ||
           kind == FileKind::UnfinishedPatientFile || kind == FileKind::DatabaseRecord;
}

/// A row of the grammar.
struct FileRule
{
    FileKind kind;
    /// What follows the ID: "#" is a decimal digit, "?" any character, "*" any run, "%" any run without "$".
    std::string_view rest;
    /// The wildcard behind the ID by which archiving gathers such files; empty where it does not.
    std::string_view searched;
};

/// All rows; those that archiving searches for stand in the order of its pattern list.
std::span<const FileRule> FileRules();

/// What a file is to one patient.
struct FileIdentity
{
    FileKind kind = FileKind::PatientFile;
    int timepoint = -1; ///< 0 to 99; -1 for a file of no timepoint

    bool operator==(const FileIdentity&) const = default;
};

/// What a file of this name (without folder) is to the patient with this ID; nothing when it is none of his.
/// Letters of either case are equal. Exact but for FileKind::Morph: A101.PF is a file of A101 and none of A1.
std::optional<FileIdentity> IdentifyFile(std::string_view name, std::string_view id);

/// The beginnings of the name that IDs of its owner could be, longest first: the longest that a patient has
/// owns the file. More than one only for FileKind::Morph, or where an ID holds a dot.
std::vector<std::string_view> PossibleOwners(std::string_view name);

/// Whether the file is one of this kind to any of its possible owners.
bool MayBe(std::string_view name, FileKind kind);

/// The name that a patient's file takes with another ID and, if it is of a timepoint and the number is not
/// -1, another number (0 to 99); everything behind keeps its letters. Empty when the file is none of the
/// patient's.
std::string MovedFileName(std::string_view name, std::string_view id, std::string_view newId,
                          int newTimepoint = -1);

/// Case folding as file names know it: ASCII, and the letters of code page 1252 beyond it.
char FoldCase(char character);
std::string FoldCase(std::string_view text);
bool EqualNoCase(std::string_view left, std::string_view right);
} // namespace pat
