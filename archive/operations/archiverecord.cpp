#include "archive/operations/archiverecord.h"

#include "app/fullname.h"
#include "archive/volumes/diskette.h"
#include "archive/files/filenames.h"
#include "archive/files/fileset.h"
#include "archive/files/pathsafety.h"
#include "patient/chartrules.h"
#include "suite/patients/files/patientfile.h"
#include "suite/patients/files/patimagetypes.h"
#include "suite/util/velpath.h"
#include "suite/util/velstring.h"

#include <algorithm>
#include <iterator>
#include <set>

namespace
{
constexpr int RecordBuffer = 4096; // bytes of the framework archive over the database record

// The present format, then the earlier one that other programs of the suite write.
constexpr int RecordFormats[] = {1, 2};

const arc::ImageTypeTable& ImageTypes()
{
    static const arc::ImageTypeTable table = [] {
        arc::ImageTypeTable types;
        for (int nGroup = 0; nGroup < arc::ImageGroups; ++nGroup)
        {
            for (int nType = 0; nType < patCImageTypes::GetTypeCount(nGroup); ++nType)
                types[static_cast<std::size_t>(nGroup)] += patCImageTypes::GetType(nGroup, nType).chCode;
        }
        return types;
    }();
    return table;
}

bool ReadRecord(const std::string& path, dbCPatient& patient)
{
    for (const int nFormat : RecordFormats)
    {
        try
        {
            CFile file(path.c_str(), CFile::modeRead | CFile::shareDenyWrite);
            CArchive archive(&file, CArchive::load, RecordBuffer);
            patient.Serialize(archive, nFormat);
            return true;
        }
        catch (CException* e)
        {
            e->Delete();
        }
    }
    return false;
}

// What came from outside must be a patient that could have been entered here.
bool IsSound(const dbCPatient& patient)
{
    const std::string id = patient.GetID().GetString();
    if (id.empty() || !pat::CheckID(id).bPassed || arc::IsDeviceName(id))
        return false;
    std::set<int> numbers;
    for (const patCTimepoint& timepoint : patient.GetTimepoints())
    {
        const int nNumber = timepoint.GetNumber();
        if (nNumber < 0 || nNumber >= patCTimepoints::MAX_COUNT || !numbers.insert(nNumber).second)
            return false;
        if (!arc::EqualNoCase(timepoint.GetBaseFilename().GetString(), arc::TimepointBaseName(id, nNumber)))
            return false;
    }
    return true;
}

// The path of the only file with this extension; empty when there is none, nothing when there are several.
std::optional<std::string> OnlyFile(arc::FileSystem& files, const std::string& folder,
                                    std::string_view extension)
{
    std::vector<arc::FolderEntry> entries;
    std::string path;
    if (!files.List(folder, "*", entries))
        return std::nullopt;
    for (const arc::FolderEntry& entry : entries)
    {
        if (entry.info.IsFolder() || !arc::EqualNoCase(arc::ExtensionOf(entry.name), extension))
            continue;
        if (!path.empty())
            return std::nullopt;
        path = arc::JoinPath(folder, entry.name);
    }
    return path;
}
} // namespace

CString arcFullName(const patCPatient& patient)
{
    return velMakeFullname(patient.GetFirstname(), patient.GetLastname(), NAMEORDER_DEFAULT);
}

CString arcEventText(UINT nText, const patCPatient& patient)
{
    return velFormatTemplate(nText, patient.GetID(), patient.GetLastname(patNameForText),
                             patient.GetFirstname(patNameForText));
}

std::vector<std::string> arcListedFiles(const patCPatient& patient)
{
    std::vector<arc::TimepointFiles> timepoints;
    for (const patCTimepoint& timepoint : patient.GetTimepoints())
    {
        arc::TimepointFiles files;
        files.index = timepoint.GetNumber();
        files.baseName = timepoint.GetBaseFilename().GetString();
        for (int nGroup = 0; nGroup < arc::ImageGroups; ++nGroup)
            files.typeBits[static_cast<std::size_t>(nGroup)] = timepoint.GetImageBits(nGroup);
        timepoints.push_back(std::move(files));
    }
    return arc::ListFileSet(patient.GetID().GetString(), timepoints, ImageTypes());
}

std::vector<std::string> arcFilesBesidePatterns(const patCPatient& patient)
{
    const std::string folder = velGetDataPath().GetString();
    const std::vector<std::string> patterns = arc::ArchivePatterns(patient.GetID().GetString());
    std::vector<std::string> paths;
    for (const arc::PresentFile& file :
         arc::PresentFiles(arc::WindowsFileSystem(), folder, arcListedFiles(patient)))
    {
        const bool isMatched = std::any_of(patterns.begin(), patterns.end(), [&](const std::string& pattern) {
            return arc::MatchesWildcard(file.name, pattern);
        });
        if (!isMatched)
            paths.push_back(arc::JoinPath(folder, file.name));
    }
    return paths;
}

std::vector<std::string> arcFilesToTake(const dbCPatient& archived, const std::vector<std::string>& names)
{
    const std::string id = archived.GetID().GetString();
    std::vector<std::string> taken;
    std::copy_if(names.begin(), names.end(), std::back_inserter(taken), [&](const std::string& name) {
        const auto identity = pat::IdentifyFile(name, id);
        return identity && !pat::IsRecord(identity->kind);
    });
    return taken;
}

bool arcReadUnpackedRecord(arc::FileSystem& files, const std::string& folder, dbCPatient& patient)
{
    const auto record = OnlyFile(files, folder, ".ACV");
    const auto patientFile = OnlyFile(files, folder, arc::PatientFileExtension);
    if (!record || !patientFile || patientFile->empty())
        return false;
    const auto header = arc::ReadHeaderLine(files, *patientFile);
    if (!header)
        return false;
    if (!(record->empty() ? patReadPatientFile(patientFile->c_str(), patient) : ReadRecord(*record, patient)))
        return false;
    return IsSound(patient) &&
           arc::EqualNoCase(header->id,
                            std::string_view(patient.GetID().GetString()).substr(0, arc::HeaderFieldLength));
}
