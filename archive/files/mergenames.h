// How files of an archive are named in the practice that they come to.
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace arc
{
enum class PatientFileKind
{
    Record,        // the patient file or the database record: read, never copied
    Own,           // certainly a file of this patient
    PerhapsForeign // its name begins with the ID, but may be one of a patient whose ID is longer
};

// What an unpacked file is to the patient with this ID.
PatientFileKind KindOfFile(std::string_view name, std::string_view id);

// Gives the files of an archive's timepoints the names that go with their new numbers in the patient they are merged
// into. Linear in the files; case of letters is kept where the name is.
class MergeNames
{
public:
    MergeNames(std::string archivedId, std::string targetId);

    // The archive's timepoint number (0 to 99) becomes the other.
    void Add(int archivedNumber, int newNumber);
    // The file's new name; empty for a file that belongs to none of the timepoints.
    std::string Of(std::string_view name) const;

private:
    std::string m_archivedId;
    std::string m_targetId;
    std::map<std::string, std::string, std::less<>> m_numbers; // two digits each
};
} // namespace arc
