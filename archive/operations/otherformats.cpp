#include "archive/operations/otherformats.h"

#include "archive/res/archivedlgres.h"
#include "archive/operations/archiverecord.h"
#include "archive/volumes/diskettevolumes.h"
#include "archive/files/fileset.h"
#include "archive/files/pathsafety.h"
#include "archive/work/resultcodes.h"
#include "archive/volumes/volumestream.h"
#include "suite/patients/files/patientfile.h"
#include "suite/util/velpath.h"

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

private:
    const arcAsk& m_ask;
    const arcProgress& m_progress;
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
    const auto label = files.Open(path, arc::Access::Replace);
    const std::string line = arc::WriteHeaderLine(header);
    return label && label->Write(line.data(), line.size()) && label->FlushToDisk() && label->Close();
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
        const auto set = arc::PresentFiles(files, workingFolder, listed);
        arc::FolderVolumes volumes(files, std::string(arc::FolderOf(archivePath)), header.id);
        VolumeStatus status = arc::WriteVolumeStream(files, workingFolder, set, Now(), volumes, progress);
        if (status == VolumeStatus::Done)
            status = arc::VerifyVolumeStream(files, workingFolder, set, volumes);
        if (status == VolumeStatus::Done && !WriteLabelFile(files, archivePath, header))
            status = VolumeStatus::WriteFailed;
        if (status != VolumeStatus::Done)
            volumes.RemoveWritten();
        return ResultOf(ask, status, arc::ResultSaveFailed);
    }

    int ToDiskettes(const arcAsk& ask, const arcProgress& show, const arc::VolumeProgress& progress) const
    {
        arc::FileSystem& files = arc::WindowsFileSystem();
        CDiskettePrompts prompts(ask, show);
        const auto set = arc::PresentFiles(files, workingFolder, listed);
        arc::DisketteVolumes volumes(files, prompts, archivePath.front(), header, confirmed);
        VolumeStatus status = arc::WriteVolumeStream(files, workingFolder, set, Now(), volumes, progress);
        if (status == VolumeStatus::Done && volumes.VolumesWritten() > 1)
            ask(Text(IDS_ARC_DISK_FIRST_AGAIN), MB_OK | MB_ICONINFORMATION);
        if (status == VolumeStatus::Done)
            status = arc::VerifyVolumeStream(files, workingFolder, set, volumes);
        return ResultOf(ask, status, arc::ResultSaveFailed);
    }
};

bool SameContents(arc::File& left, arc::File& right)
{
    constexpr std::size_t Bytes = 64 * 1024;
    std::vector<char> leftBytes(Bytes), rightBytes(Bytes);
    for (;;)
    {
        const auto leftRead = left.Read(leftBytes.data(), Bytes);
        const auto rightRead = right.Read(rightBytes.data(), Bytes);
        if (!leftRead || !rightRead || *leftRead != *rightRead)
            return false;
        if (*leftRead == 0)
            return true;
        if (!std::equal(leftBytes.begin(), leftBytes.begin() + static_cast<std::ptrdiff_t>(*leftRead),
                        rightBytes.begin()))
        {
            return false;
        }
    }
}

// Copies and reads the copy back.
bool CopyChecked(arc::FileSystem& files, const std::string& from, const std::string& to)
{
    if (!velCopyFile(from.c_str(), to.c_str()))
        return false;
    const auto source = files.Open(from, arc::Access::ReadShared);
    const auto copy = files.Open(to, arc::Access::ReadShared);
    return source && copy && SameContents(*source, *copy);
}

// Copies files of a folder one by one; on failure none of the copies stays.
bool CopyAll(const std::string& from, const std::vector<arc::PresentFile>& set, const std::string& to,
             const arcProgress& progress)
{
    arc::FileSystem& files = arc::WindowsFileSystem();
    std::vector<std::string> made;
    for (const arc::PresentFile& file : set)
    {
        progress(static_cast<int>(made.size() * 100 / set.size()), file.name);
        const std::string target = arc::JoinPath(to, file.name);
        // Only what was not there before may be taken away again.
        const bool isNew = !files.Query(target);
        if (!isNew || !CopyChecked(files, arc::JoinPath(from, file.name), target))
        {
            if (isNew)
                files.RemoveFile(target);
            for (const std::string& path : made)
                files.RemoveFile(path);
            return false;
        }
        made.push_back(target);
    }
    progress(100, {});
    return true;
}

// The live ".PF" makes way for one of the earlier format for the length of a save.
int SaveEarlierFormat(const dbCPatient& patient, const std::vector<std::string>& listed,
                      const std::string& folder, const arcProgress& progress)
{
    arc::FileSystem& files = arc::WindowsFileSystem();
    try
    {
        const patCEarlierFile earlier(patient);
        const std::string working = velGetDataPath().GetString();
        if (CopyAll(working, arc::PresentFiles(files, working, listed), folder, progress))
            return arc::ResultDone;
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
        const bool bRead =
            patReadPatientFile(archivePath.c_str(), patient) &&
            arc::FilesToArchive(files, folder, patient.GetID().GetString(), arcListedFiles(patient), found);
        if (bRead && CopyAll(folder, found, scratchFolder, progress))
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
    if (files.Query(pszArchivePath))
        paths.emplace_back(pszArchivePath);
    if (nFormat == arcFormatVolumes)
    {
        for (int nVolume = 1; nVolume <= arc::MaxVolumes; ++nVolume)
        {
            const std::string path = arc::VolumeFileName(folder, patient.GetID().GetString(), nVolume);
            if (!files.Query(path))
                break;
            paths.push_back(path);
        }
    }
    else if (nFormat == arcFormatEarlier)
    {
        for (const arc::PresentFile& file : arc::PresentFiles(files, folder, arcListedFiles(patient)))
        {
            const std::string path = arc::JoinPath(folder, file.name);
            if (!arc::EqualNoCase(path, pszArchivePath))
                paths.push_back(path);
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
