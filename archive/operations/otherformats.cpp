#include "archive/operations/otherformats.h"

#include "archive/res/archivedlgres.h"
#include "archive/operations/archiverecord.h"
#include "archive/volumes/diskettevolumes.h"
#include "archive/files/fileset.h"
#include "archive/files/foldertree.h"
#include "archive/files/outputfile.h"
#include "archive/files/pathsafety.h"
#include "archive/work/filecopies.h"
#include "archive/work/resultcodes.h"
#include "archive/volumes/volumestream.h"
#include "suite/patients/records/patientfile.h"
#include "suite/patients/store/dbsteps.h"
#include "suite/util/velpath.h"
#include "suite/util/velstring.h"

#include <algorithm>

namespace
{
using arc::VolumeStatus;

CString Text(UINT nID)
{
    CString strText;
    strText.LoadString(nID);
    return strText;
}

// Asks over the progress dialog.
class CDiskettePrompts : public arc::DiskettePrompts
{
public:
    CDiskettePrompts(const arcAsk& ask, const arcProgress& progress) : m_ask(ask), m_progress(progress)
    {
    }

    bool Insert(int number, char drive) override
    {
        CString strText;
        strText.Format(IDS_ARC_DISK_INSERT, number, drive);
        return m_ask(strText, MB_OKCANCEL | MB_ICONINFORMATION) == IDOK;
    }
    bool UseAnyway(unsigned text) override
    {
        return m_ask(Text(text), MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2) == IDYES;
    }
    bool InsertRight(int number, char drive) override
    {
        CString strText;
        strText.Format(IDS_ARC_DISK_READ_ORDER, number, drive, number, drive);
        return m_ask(strText, MB_YESNO | MB_ICONQUESTION) == IDYES;
    }
    void WriteFault(char drive) override
    {
        CString strText;
        strText.Format(IDS_ARC_DISK_WRITE_FAULT, drive);
        m_ask(strText, MB_OK | MB_ICONSTOP);
    }
    void Unreadable(char drive) override
    {
        CString strText;
        strText.Format(IDS_ARC_DISK_UNREADABLE, drive);
        m_ask(strText, MB_OK | MB_ICONSTOP);
    }
    void Erasing() override
    {
        m_progress(0, Text(IDS_ARC_DISK_ERASING).GetString());
    }
    void Writing(int number) override
    {
        if (m_nVolumes > 1)
            m_progress(0, velFormatTemplate(IDS_ARC_DISK_OF, std::to_string(number).c_str(),
                                            std::to_string(m_nVolumes).c_str())
                              .GetString());
    }
    /// How many diskettes the save is expected to take; 0 where that is not known.
    void SetVolumes(std::uint64_t nVolumes)
    {
        m_nVolumes = nVolumes;
    }

private:
    const arcAsk& m_ask;
    const arcProgress& m_progress;
    std::uint64_t m_nVolumes = 0;
};

// The thread's result for a stream; what the result code has no message for is told here.
int ResultOf(const arcAsk& ask, VolumeStatus status, int nFailure)
{
    UINT nText = 0;
    switch (status)
    {
    case VolumeStatus::Done:
        return arc::ResultDone;
    case VolumeStatus::Cancelled:
        return arc::ResultCancelled;
    case VolumeStatus::TooManyBytes:
    case VolumeStatus::TooManyFiles:
        nText = IDS_ARC_TOO_LARGE;
        break;
    case VolumeStatus::TooManyVolumes:
        nText = IDS_ARC_TOO_MANY_VOLUMES;
        break;
    case VolumeStatus::NoRoom:
        if (nFailure == arc::ResultSaveFailed)
            return nFailure;
        nText = IDS_ARC_NO_SPACE;
        break;
    default:
        return nFailure;
    }
    ask(Text(nText), MB_OK | MB_ICONEXCLAMATION);
    return arc::ResultNotArchived;
}

arc::HeaderLine HeaderOf(const dbCPatient& patient)
{
    return {patient.GetLastname().GetString(), patient.GetFirstname().GetString(),
            patient.GetID().GetString()};
}

arc::LocalTime Now()
{
    SYSTEMTIME now;
    ::GetLocalTime(&now);
    return {now.wYear, now.wMonth - 1, now.wDay, now.wHour, now.wMinute, now.wSecond};
}

bool WriteLabelFile(arc::FileSystem& files, const std::string& path, const arc::HeaderLine& header)
{
    arc::OutputFile label(files);
    const std::string line = arc::WriteHeaderLine(header);
    return label.CreateNew(path) && label.Write(line.data(), line.size()) && label.Keep(nullptr, true) &&
           arc::ReadHeaderLine(files, path) == arc::ParseHeaderLine(line);
}

// The listed files that are there, the patient file first; nothing when that is missing or one cannot be
// asked.
std::optional<std::vector<arc::PresentFile>> FilesToSave(const std::string& folder,
                                                         const std::vector<std::string>& listed)
{
    auto set = arc::PresentFiles(arc::WindowsFileSystem(), folder, listed);
    if (set && (set->empty() || set->front().name != listed.front()))
        set.reset();
    return set;
}

// A patient on the way into a volume stream: what the thread needs of it.
struct VolumeSave
{
    arc::HeaderLine header;
    std::string workingFolder;
    std::string archivePath;
    std::vector<std::string> listed;
    bool confirmed = false;

    int ToFolder(const arcAsk& ask, const arc::VolumeProgress& progress) const
    {
        arc::FileSystem& files = arc::WindowsFileSystem();
        const auto set = FilesToSave(workingFolder, listed);
        if (!set)
            return arc::ResultSaveFailed;
        arc::FolderVolumes volumes(files, std::string(arc::FolderOf(archivePath)), header.id);
        VolumeStatus status = arc::WriteVolumeStream(files, workingFolder, *set, Now(), volumes, progress);
        dbStep("save.written");
        if (status == VolumeStatus::Done)
            status = Prove(*set, volumes);
        dbStep("save.proven");
        if (status == VolumeStatus::Done && !WriteLabelFile(files, archivePath, header))
            status = VolumeStatus::WriteFailed;
        if (status != VolumeStatus::Done)
            volumes.RemoveWritten();
        dbStep("save.placed");
        return ResultOf(ask, status, arc::ResultSaveFailed);
    }

    int ToDiskettes(const arcAsk& ask, const arcProgress& show, const arc::VolumeProgress& progress) const
    {
        arc::FileSystem& files = arc::WindowsFileSystem();
        CDiskettePrompts prompts(ask, show);
        const auto set = FilesToSave(workingFolder, listed);
        if (!set)
            return arc::ResultSaveFailed;
        const auto space = files.Space(std::string(1, archivePath.front()) + ":\\");
        if (space)
            prompts.SetVolumes(arc::EstimateVolumes(arc::StreamLength(*set), header, space->bytesPerCluster,
                                                    space->totalClusters));
        arc::DisketteVolumes volumes(files, prompts, archivePath.front(), header, confirmed);
        VolumeStatus status = arc::WriteVolumeStream(files, workingFolder, *set, Now(), volumes, progress);
        if (status == VolumeStatus::Done && volumes.VolumesWritten() > 1)
            ask(Text(IDS_ARC_DISK_FIRST_AGAIN), MB_OK | MB_ICONINFORMATION);
        if (status == VolumeStatus::Done)
            status = Prove(*set, volumes);
        return ResultOf(ask, status, arc::ResultSaveFailed);
    }

    // The volumes hold the very bytes of the files, and the patient file is one that a load takes.
    VolumeStatus Prove(const std::vector<arc::PresentFile>& set, arc::VolumeSource& volumes) const
    {
        const VolumeStatus status =
            arc::VerifyVolumeStream(arc::WindowsFileSystem(), workingFolder, set, volumes);
        if (status != VolumeStatus::Done)
            return status;
        return arcIsPatientFileOf(arc::JoinPath(workingFolder, set.front().name), header.id)
                   ? status
                   : VolumeStatus::Corrupt;
    }
};

// The live ".PF" makes way for one of the earlier format for the length of a save.
int SaveEarlierFormat(const dbCPatient& patient, const std::vector<std::string>& listed,
                      const std::string& folder, const arcProgress& progress)
{
    arc::FileSystem& files = arc::WindowsFileSystem();
    try
    {
        const patCEarlierFile earlier(patient);
        const std::string working = velGetDataPath().GetString();
        const auto set = FilesToSave(working, listed);
        dbStep("save.patientFile");
        if (!set || !arc::CopyAllNew(files, working, *set, folder, progress))
            return arc::ResultSaveFailed;
        dbStep("save.written");
        if (arcIsPatientFileOf(arc::JoinPath(folder, set->front().name), patient.GetID().GetString()))
            return arc::ResultDone;
        for (const arc::PresentFile& file : *set)
            files.RemoveFile(arc::JoinPath(folder, file.name));
    }
    catch (CException* e)
    {
        e->Delete();
    }
    return arc::ResultSaveFailed;
}

int LoadEarlierFormat(const std::string& archivePath, const std::string& scratchFolder,
                      const arcProgress& progress)
{
    arc::FileSystem& files = arc::WindowsFileSystem();
    try
    {
        dbCPatient patient;
        std::vector<arc::PresentFile> found;
        const std::string folder(arc::FolderOf(archivePath));
        // The patient is read from a copy beside the scratch folder, which this load has to itself.
        const std::string copy = arc::JoinPath(arc::FolderOf(scratchFolder), arc::ScratchPatientFile);
        const bool bRead =
            arc::RemoveTree(files, copy) && arc::CopyNew(files, archivePath, copy) &&
            patReadPatientFile(copy.c_str(), patient) &&
            arc::FilesToArchive(files, folder, patient.GetID().GetString(), arcListedFiles(patient), found);
        files.RemoveFile(copy);
        if (bRead && arc::CopyAllNew(files, folder, found, scratchFolder, progress))
            return arc::ResultDone;
    }
    catch (CException* e)
    {
        e->Delete();
    }
    return arc::ResultLoadFailed;
}

int LoadVolumes(const arcAsk& ask, bool bDiskettes, const std::string& archivePath,
                const std::string& scratchFolder, const arcProgress& show)
{
    arc::FileSystem& files = arc::WindowsFileSystem();
    const auto header = arc::ReadHeaderLine(files, archivePath);
    // The ID becomes part of the volumes' names.
    if (!header || !arc::SafeFileName(header->id))
        return arc::ResultLoadFailed;
    const arc::VolumeProgress progress = [&show](int nPercent) { show(nPercent, {}); };
    std::vector<arc::PresentFile> read;
    if (!bDiskettes)
    {
        arc::FolderVolumes volumes(files, std::string(arc::FolderOf(archivePath)), header->id);
        return ResultOf(ask, arc::ReadVolumeStream(files, scratchFolder, volumes, read, progress),
                        arc::ResultLoadFailed);
    }
    CDiskettePrompts prompts(ask, show);
    arc::DisketteVolumes volumes(files, prompts, archivePath.front(), *header, false);
    return ResultOf(ask, arc::ReadVolumeStream(files, scratchFolder, volumes, read, progress),
                    arc::ResultLoadFailed);
}
} // namespace

std::vector<std::string> arcFilesOfArchive(const dbCPatient& patient, arcFormat nFormat,
                                           LPCTSTR pszArchivePath)
{
    arc::FileSystem& files = arc::WindowsFileSystem();
    const std::string folder(arc::FolderOf(pszArchivePath));
    std::vector<std::string> paths;
    if (!files.Query(pszArchivePath).IsAbsent())
        paths.emplace_back(pszArchivePath);
    if (nFormat == arcFormatVolumes)
    {
        for (int nVolume = 1; nVolume <= arc::MaxVolumes; ++nVolume)
        {
            const std::string path = arc::VolumeFileName(folder, patient.GetID().GetString(), nVolume);
            if (files.Query(path).IsAbsent())
                break;
            paths.push_back(path);
        }
    }
    else if (nFormat == arcFormatEarlier)
    {
        for (const std::string& name : arcListedFiles(patient))
        {
            for (const std::string& candidate : {name, arc::AlternateImageName(name)})
            {
                const std::string path = arc::JoinPath(folder, candidate);
                if (!candidate.empty() && !arc::EqualNoCase(path, pszArchivePath) &&
                    !files.Query(path).IsAbsent())
                    paths.push_back(path);
            }
        }
    }
    return paths;
}

CString arcExistingArchive(LPCTSTR pszID, arcFormat nFormat, LPCTSTR pszArchivePath)
{
    if (arc::IsDeviceName(arc::FileNameOf(pszArchivePath)))
        return {}; // always seems to be there, and is refused soon
    dbCPatient patient;
    if (nFormat == arcFormatZipped || arc::IsDisketteDrive(pszArchivePath) || !patient.Load(pszID))
        return velFileExists(pszArchivePath) ? CString(pszArchivePath) : CString();
    const std::vector<std::string> paths = arcFilesOfArchive(patient, nFormat, pszArchivePath);
    return paths.empty() ? CString() : CString(paths.front().c_str());
}

arcWork arcOtherSave(const dbCPatient& patient, arcFormat nFormat, LPCTSTR pszArchivePath, bool bConfirmed)
{
    const std::string archivePath = pszArchivePath;
    if (nFormat == arcFormatEarlier)
    {
        return [patient, listed = arcListedFiles(patient), archivePath](const arcAsk&,
                                                                        const arcProgress& progress) {
            return SaveEarlierFormat(patient, listed, std::string(arc::FolderOf(archivePath)), progress);
        };
    }
    VolumeSave save;
    save.header = HeaderOf(patient);
    save.workingFolder = velGetDataPath().GetString();
    save.archivePath = archivePath;
    save.listed = arcListedFiles(patient);
    save.confirmed = bConfirmed;
    return [save](const arcAsk& ask, const arcProgress& show) {
        const arc::VolumeProgress progress = [&show](int nPercent) { show(nPercent, {}); };
        return arc::IsDisketteDrive(save.archivePath) ? save.ToDiskettes(ask, show, progress)
                                                      : save.ToFolder(ask, progress);
    };
}

arcWork arcOtherLoad(arc::ArchiveKind kind, LPCTSTR pszArchivePath, const std::string& scratchFolder)
{
    const std::string archivePath = pszArchivePath;
    if (kind == arc::ArchiveKind::PatientFile)
    {
        return [archivePath, scratchFolder](const arcAsk&, const arcProgress& progress) {
            return LoadEarlierFormat(archivePath, scratchFolder, progress);
        };
    }
    const bool bDiskettes = kind == arc::ArchiveKind::Diskettes && arc::IsDisketteDrive(archivePath);
    return [=](const arcAsk& ask, const arcProgress& progress) {
        return LoadVolumes(ask, bDiskettes, archivePath, scratchFolder, progress);
    };
}
