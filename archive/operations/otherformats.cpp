#include "archive/operations/otherformats.h"

#include "archive/res/archivedlgres.h"
#include "archive/operations/archiverecord.h"
#include "archive/files/fileset.h"
#include "archive/files/foldertree.h"
#include "archive/files/pathsafety.h"
#include "archive/status/archiveworker.h"
#include "archive/work/earliersaving.h"
#include "archive/work/filecopies.h"
#include "archive/work/resultcodes.h"
#include "archive/work/volumesaving.h"
#include "suite/patients/records/patientfile.h"
#include "suite/patients/store/dbsteps.h"
#include "suite/util/velpath.h"
#include "suite/util/velstring.h"

#include <memory>

namespace
{
using arc::VolumeStatus;

CString Text(UINT nID)
{
    CString strText;
    strText.LoadString(nID);
    return strText;
}

/// Asks over the progress dialog.
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
    void Expect(std::uint64_t volumes) override
    {
        m_nVolumes = volumes;
    }
    void FirstAgain() override
    {
        m_ask(Text(IDS_ARC_DISK_FIRST_AGAIN), MB_OK | MB_ICONINFORMATION);
    }

private:
    const arcAsk& m_ask;
    const arcProgress& m_progress;
    std::uint64_t m_nVolumes = 0;
};

/// The thread's result for a stream; what the result code has no message for is told here.
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

int SaveVolumes(const arc::VolumeSave& save, bool bConfirmed, const arcAsk& ask, const arcProgress& progress)
{
    arc::FileSystem& files = arc::WindowsFileSystem();
    CDiskettePrompts prompts(ask, progress);
    std::unique_ptr<arc::VolumeSaving> pSaving;
    if (arc::IsDisketteDrive(save.archivePath))
        pSaving = std::make_unique<arc::DisketteSaving>(files, save, prompts, bConfirmed, progress);
    else
        pSaving = std::make_unique<arc::FolderVolumeSaving>(files, save, progress);
    const int nResult = arc::Run(*pSaving);
    return nResult == arc::ResultSaveFailed ? ResultOf(ask, pSaving->Status(), nResult) : nResult;
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
    const arc::VolumeProgress progress = [&show](int nPercent) { return show(nPercent, {}); };
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

CString arcExistingArchive(LPCTSTR pszID, arcFormat nFormat, LPCTSTR pszArchivePath)
{
    if (arc::IsDeviceName(arc::FileNameOf(pszArchivePath)))
        return {}; // always seems to be there, and is refused soon
    dbCPatient patient;
    if (nFormat == arcFormatEarlier && !patient.Load(pszID))
        return {};
    CString strExisting;
    arcMeanwhile([&] {
        arc::FileSystem& files = arc::WindowsFileSystem();
        std::vector<std::string> paths;
        if (nFormat == arcFormatZipped || arc::IsDisketteDrive(pszArchivePath))
        {
            if (const auto info = files.Query(pszArchivePath); info && !info->IsFolder())
                paths.emplace_back(pszArchivePath);
        }
        else if (nFormat == arcFormatVolumes)
            paths = arc::VolumeArchiveFiles(files, pszArchivePath, pszID);
        else
            paths = arc::EarlierArchiveFiles(files, pszArchivePath, arcListedFiles(patient));
        if (!paths.empty())
            strExisting = paths.front().c_str();
    });
    return strExisting;
}

arcWork arcOtherSave(const dbCPatient& patient, arcFormat nFormat, LPCTSTR pszArchivePath, bool bConfirmed)
{
    const std::string id = patient.GetID().GetString();
    const auto trial = [id](const std::string& path) { return arcIsPatientFileOf(path, id); };
    if (nFormat == arcFormatEarlier)
    {
        arc::EarlierSave save;
        save.archivePath = pszArchivePath;
        save.folder = velGetDataPath().GetString();
        save.listed = arcListedFiles(patient);
        save.patientFile = [patient] { return std::make_shared<patCEarlierFile>(patient); };
        save.trial = trial;
        save.step = dbStep;
        return [save](const arcAsk&, const arcProgress& progress) {
            arc::EarlierSaving saving(arc::WindowsFileSystem(), save, progress);
            return arc::Run(saving);
        };
    }
    arc::VolumeSave save;
    save.header = HeaderOf(patient);
    save.archivePath = pszArchivePath;
    save.folder = velGetDataPath().GetString();
    save.listed = arcListedFiles(patient);
    save.saved = Now();
    save.checking = Text(IDS_ARC_STATUS_CHECKING).GetString();
    save.trial = trial;
    save.step = dbStep;
    return [save, bConfirmed](const arcAsk& ask, const arcProgress& progress) {
        return SaveVolumes(save, bConfirmed, ask, progress);
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
