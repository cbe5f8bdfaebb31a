#include "archive/operations/archiverecord.h"

#include "app/fullname.h"
#include "archive/res/archivedlgres.h"
#include "archive/volumes/diskette.h"
#include "archive/files/filenames.h"
#include "archive/files/fileset.h"
#include "archive/files/pathsafety.h"
#include "archive/zip/unzipper.h"
#include "patient/rules/chartrules.h"
#include "suite/patients/records/patientfile.h"
#include "suite/patients/files/patimagetypes.h"
#include "suite/util/velpath.h"
#include "suite/util/velstring.h"

#include <algorithm>
#include <iterator>
#include <set>

namespace
{
constexpr int RecordBuffer = 4096;                // bytes of the framework archive over the database record
constexpr std::uint64_t MaxRecord = 80 << 20;     // bytes; no record that could be loaded is longer
constexpr std::uint64_t MaxPatientFile = 1 << 20; // bytes

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

bool ReadRecord(std::string bytes, dbCPatient& patient)
{
    for (const int nFormat : RecordFormats)
    {
        try
        {
            CMemFile file(reinterpret_cast<BYTE*>(bytes.data()), static_cast<UINT>(bytes.size()));
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

std::optional<std::string> ReadWhole(arc::FileSystem& files, const std::string& path)
{
    const auto file = files.Open(path, arc::Access::ReadShared);
    const auto size = file ? file->Size() : std::nullopt;
    if (!size || *size > MaxRecord)
        return std::nullopt;
    std::string bytes(static_cast<std::size_t>(*size), '\0');
    return file->Read(bytes.data(), bytes.size()) == bytes.size() ? std::optional(bytes) : std::nullopt;
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

// The record and the header of its patient file speak of one patient that could have been entered here.
bool IsSoundFor(const arc::HeaderLine& header, const dbCPatient& patient)
{
    return IsSound(patient) &&
           arc::EqualNoCase(header.id,
                            std::string_view(patient.GetID().GetString()).substr(0, arc::HeaderFieldLength));
}

// The path of the only file of this kind; empty when there is none, nothing when there are several.
std::optional<std::string> OnlyFile(arc::FileSystem& files, const std::string& folder, pat::FileKind kind)
{
    std::vector<arc::FolderEntry> entries;
    std::string path;
    if (!files.List(folder, "*", entries))
        return std::nullopt;
    for (const arc::FolderEntry& entry : entries)
    {
        if (entry.info.IsFolder() || !pat::MayBe(entry.name, kind))
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

CString arcNameList(const std::vector<std::string>& names)
{
    constexpr std::size_t MaxShown = 10;
    CString strList;
    for (std::size_t i = 0; i < std::min(names.size(), MaxShown); ++i)
        strList += CString(names[i].c_str()) + "\n";
    if (names.size() > MaxShown)
    {
        CString strMore;
        strMore.Format(IDS_ARC_AND_MORE, static_cast<int>(names.size() - MaxShown));
        strList += strMore;
    }
    return strList;
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

std::optional<std::vector<std::string>> arcFilesBesidePatterns(const patCPatient& patient)
{
    const std::string folder = velGetDataPath().GetString();
    const std::vector<std::string> patterns = arc::ArchivePatterns(patient.GetID().GetString());
    const auto present = arc::PresentFiles(arc::WindowsFileSystem(), folder, arcListedFiles(patient));
    if (!present)
        return std::nullopt;
    std::vector<std::string> paths;
    for (const arc::PresentFile& file : *present)
    {
        const bool isMatched = std::any_of(patterns.begin(), patterns.end(), [&](const std::string& pattern) {
            return arc::MatchesWildcard(file.name, pattern);
        });
        if (!isMatched)
            paths.push_back(arc::JoinPath(folder, file.name));
    }
    return paths;
}

bool arcReadUnpackedRecord(arc::FileSystem& files, const std::string& folder, dbCPatient& patient)
{
    const auto record = OnlyFile(files, folder, pat::FileKind::DatabaseRecord);
    const auto patientFile = OnlyFile(files, folder, pat::FileKind::PatientFile);
    if (!record || !patientFile || patientFile->empty())
        return false;
    const auto header = arc::ReadHeaderLine(files, *patientFile);
    if (!header)
        return false;
    const auto bytes = record->empty() ? std::nullopt : ReadWhole(files, *record);
    if (!(record->empty() ? patReadPatientFile(patientFile->c_str(), patient) != FALSE
                          : bytes && ReadRecord(*bytes, patient)))
        return false;
    return IsSoundFor(*header, patient);
}

bool arcIsPatientFileOf(const std::string& path, const std::string& id)
{
    dbCPatient patient;
    const auto header = arc::ReadHeaderLine(arc::WindowsFileSystem(), path);
    return header && patReadPatientFile(path.c_str(), patient) && IsSoundFor(*header, patient) &&
           arc::EqualNoCase(patient.GetID().GetString(), id);
}

bool arcTrialReading(const std::string& archivePath, const std::string& id, const std::string& guid)
{
    CUnzipper unzipper(arc::WindowsFileSystem());
    if (!unzipper.OpenZip(archivePath))
        return false;
    std::string patientFile, record;
    int nPatientFiles = 0, nRecords = 0;
    for (bool more = unzipper.GoToFirstEntry(); more; more = unzipper.GoToNextEntry())
    {
        CUnzipper::EntryInfo entry;
        if (!unzipper.CurrentEntryInfo(entry))
            return false;
        const bool bPatientFile = pat::MayBe(entry.name, pat::FileKind::PatientFile);
        const bool bRecord = pat::MayBe(entry.name, pat::FileKind::DatabaseRecord);
        nPatientFiles += bPatientFile;
        nRecords += bRecord;
        if ((bPatientFile && !unzipper.ReadCurrentEntry(patientFile, MaxPatientFile)) ||
            (bRecord && !unzipper.ReadCurrentEntry(record, MaxRecord)))
            return false;
    }
    dbCPatient patient;
    const auto header = arc::ParseHeaderLine(patientFile);
    return nPatientFiles == 1 && nRecords == 1 && header && ReadRecord(record, patient) &&
           IsSoundFor(*header, patient) && id == patient.GetID().GetString() &&
           guid == patient.GetGUID().GetString();
}

std::string arcRecordBytes(dbCPatient& patient)
{
    CMemFile file;
    CArchive archive(&file, CArchive::store, RecordBuffer);
    patient.Serialize(archive);
    archive.Close();
    return {reinterpret_cast<const char*>(file.GetBufferPtr()), static_cast<std::size_t>(file.GetLength())};
}
