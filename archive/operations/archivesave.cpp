// The saving half of the archive manager.
#include "archive/operations/archivemanager.h"

#include "app/modalrun.h"
#include "app/velapp.h"
#include "app/velenums.h"
#include "archive/res/archivedlgres.h"
#include "archive/operations/archiverecord.h"
#include "archive/operations/loading.h"
#include "archive/files/filenames.h"
#include "archive/operations/otherformats.h"
#include "archive/files/pathsafety.h"
#include "archive/work/resultcodes.h"
#include "suite/patients/records/patientfile.h"
#include "suite/patients/records/veltrixlogin.h"
#include "suite/patients/store/dbexception.h"
#include "suite/patients/store/dbsteps.h"
#include "suite/patients/store/dbtransaction.h"
#include "suite/util/velini.h"
#include "suite/util/velpath.h"
#include "suite/util/velstring.h"

#include <objbase.h>
#include <shellapi.h>

#include <algorithm>

namespace
{
constexpr DWORD ATTRIB_PATIENCE = 5000; // ms

/// Sets or clears a file's hidden attribute by the system's own command, and waits for its end, but not for
/// ever. Only the system's folder is looked into for it. For a thread that ends soon.
void SetHidden(const CString& strPath, bool bHidden)
{
    char szSystem[MAX_PATH];
    const UINT nLength = ::GetSystemDirectory(szSystem, sizeof(szSystem));
    if (nLength == 0 || nLength >= sizeof(szSystem))
        return;
    const CString strCommand = velWithBackslash(szSystem) + "attrib.exe";
    const CString strArguments = CString(bHidden ? "+h " : "-h ") + "\"" + strPath + "\"";
    SHELLEXECUTEINFO info{};
    info.cbSize = sizeof(info);
    info.fMask = SEE_MASK_NOASYNC | SEE_MASK_FLAG_NO_UI | SEE_MASK_NOCLOSEPROCESS;
    info.lpVerb = "open";
    info.lpFile = strCommand;
    info.lpParameters = strArguments;
    info.lpDirectory = szSystem;
    info.nShow = SW_HIDE;
    const HRESULT hrCOM = ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE);
    if (::ShellExecuteEx(&info) && info.hProcess != nullptr)
    {
        ::WaitForSingleObject(info.hProcess, ATTRIB_PATIENCE);
        ::CloseHandle(info.hProcess);
    }
    if (SUCCEEDED(hrCOM))
        ::CoUninitialize();
}

/// Whether this is the folder of the live patient files, by whatever path.
bool IsWorkingFolder(std::string_view folder)
{
    arc::FileSystem& files = arc::WindowsFileSystem();
    const std::string working(arc::FolderOf(velGetDataPath().GetString()));
    const std::string identity = files.Identity(std::string(folder));
    return arc::EqualNoCase(files.Absolute(std::string(folder)), files.Absolute(working)) ||
           (!identity.empty() && identity == files.Identity(working));
}

/// An exclusive lock of a patient for the length of a scope.
class PatientLock
{
public:
    explicit PatientLock(const CString& strID) : m_strID(strID)
    {
        m_bHeld = dbCPatients().LockPatient(strID, patLockExclusive, &m_strHolder) == patLockFree;
    }
    ~PatientLock()
    {
        if (m_bHeld)
            arcUnlockPatient(m_strID);
    }
    PatientLock(const PatientLock&) = delete;
    PatientLock& operator=(const PatientLock&) = delete;

    bool IsHeld() const
    {
        return m_bHeld;
    }
    const CString& GetHolder() const
    {
        return m_strHolder;
    }

private:
    const CString m_strID;
    CString m_strHolder;
    bool m_bHeld = false;
};

bool DriveHoldsFiles(const CString& strPath)
{
    std::vector<arc::FolderEntry> entries;
    const std::string root = std::string(1, strPath[0]) + ":\\";
    return arc::WindowsFileSystem().List(root, "*", entries) && !entries.empty();
}
} // namespace

int arcCArchiveManager::StartSave(const arcSSave& save)
{
    m_save = save;
    m_pStored = std::make_shared<std::vector<arc::PresentFile>>();
    const INT_PTR nResult = velGuard(arc::ResultNotArchived, IDS_ARC_UNEXPECTED, [this]() -> INT_PTR {
        return CheckSave() ? PrepareSave() : arc::ResultNotArchived;
    });
    if (nResult == arc::ResultDone)
        return arc::ResultDone;
    m_recordFile.Remove();
    EndOperation(static_cast<int>(nResult));
    return static_cast<int>(nResult);
}

/// What can be said before anything is done. False, with the user told, when the patient cannot be saved so.
bool arcCArchiveManager::CheckSave()
{
    const std::string path = m_save.strArchivePath.GetString();
    if (m_save.bSeveralPatients && arc::IsDisketteDrive(path))
    {
        AfxMessageBox(IDS_ARC_DISK_MULTIPLE, MB_OK | MB_ICONEXCLAMATION);
        return false;
    }
    if (arc::IsDeviceName(m_save.strID.GetString()))
    {
        AfxMessageBox(velFormatTemplate(IDS_ARC_DEVICE_ID, m_save.strID), MB_OK | MB_ICONEXCLAMATION);
        return false;
    }
    // The live files would be taken for an archive that is to be replaced.
    bool bWorking = false;
    if (m_save.nFormat != arcFormatZipped)
        Meanwhile([&] { bWorking = IsWorkingFolder(arc::FolderOf(path)); });
    if (bWorking)
        AfxMessageBox(IDS_ARC_WORKING_FOLDER, MB_OK | MB_ICONEXCLAMATION);
    return !bWorking;
}

/// Up to the running thread.
int arcCArchiveManager::PrepareSave()
{
    if (!LockPatient(m_save.strID, m_save.bKeepOthersOut ? patLockExclusive : patLockShared))
        return arc::ResultNotArchived;
    dbStep("save.locked");
    const bool bDiskette = arc::IsDisketteDrive(m_save.strArchivePath.GetString());
    bool bHoldsFiles = false;
    if (bDiskette)
        Meanwhile([&] { bHoldsFiles = DriveHoldsFiles(m_save.strArchivePath); });
    if (bHoldsFiles && AfxMessageBox(IDS_ARC_DISK_OTHER_PATIENT, MB_YESNO | MB_ICONQUESTION) != IDYES)
        return arc::ResultNotArchived;

    dbCPatient patient;
    if (!patient.Load(m_save.strID))
        dbCException::Throw(dbErrNotFound, m_save.strID);
    if (!EnsurePatientFile())
        return arc::ResultNotArchived;
    if (m_save.nFormat == arcFormatZipped)
        m_record = arcRecordBytes(patient);

    arcSStatusWork work;
    work.bSave = TRUE;
    work.bDiskette = bDiskette;
    work.strStatus = velFormatTemplate(IDS_ARC_STATUS_SAVING, arcFullName(patient), m_save.strID);
    work.strArchivePath = m_save.strArchivePath;
    work.strFolder = velGetDataPath();
    work.bAlternativeEngine = velGetIniInt("Defaults", "UseDynaZip", 0) != 0;
    CString strRefusal;
    Meanwhile([&] { strRefusal = PrepareFiles(patient, work, bHoldsFiles); });
    if (!strRefusal.IsEmpty())
    {
        AfxMessageBox(strRefusal, MB_OK | MB_ICONSTOP);
        return arc::ResultNotArchived;
    }
    return StartThread(work, Work::Save);
}

/// Has the patient file written anew where there is none that a load would take, and for the other formats,
/// which hold the timepoints there alone, in any case. False, with the user told, when that cannot be done.
bool arcCArchiveManager::EnsurePatientFile()
{
    const std::string id = m_save.strID.GetString();
    const std::string path = arc::JoinPath(velGetDataPath().GetString(), arc::PatientFileName(id));
    bool bGood = false;
    const auto look = [&] { bGood = arcIsPatientFileOf(path, id); };
    if (m_save.nFormat == arcFormatZipped)
        Meanwhile(look);
    if (!bGood && patRenewPatientFile(m_save.strID))
        Meanwhile(look);
    if (!bGood)
        AfxMessageBox(velFormatTemplate(IDS_ARC_NO_PATIENT_FILE, path.c_str()), MB_OK | MB_ICONSTOP);
    return bGood;
}

/// What a save needs of files: the record's scratch file, the names. bConfirmed: the user has agreed to lose
/// what the drive's diskette holds. Answers what the user is to be told when it cannot begin. Any thread.
CString arcCArchiveManager::PrepareFiles(const dbCPatient& patient, arcSStatusWork& work, bool bConfirmed)
{
    arc::FileSystem& files = arc::WindowsFileSystem();
    const std::string id = m_save.strID.GetString();
    const std::string temporary = velGetTempPath().GetString();
    arc::RecordFile::ClearAbandoned(files, temporary);
    dbStep("save.prepared");
    if (m_save.nFormat != arcFormatZipped)
    {
        work.otherWork = arcOtherSave(patient, m_save.nFormat, m_save.strArchivePath, bConfirmed);
        return {};
    }
    if (!m_recordFile.Write(temporary, id, m_record))
        return velFormatTemplate(IDS_ARC_RECORD_BUSY, arc::DatabaseRecordName(temporary, id).c_str());
    dbStep("save.record");
    const auto more = arcFilesBesidePatterns(patient);
    if (!more)
        return CString(MAKEINTRESOURCE(arc::SaveResultText(arc::ResultSaveFailed)));
    work.strFileList = arc::ArchivePatternArgument(id).c_str();
    work.moreFiles = *more;
    work.moreFiles.push_back(m_recordFile.Path());
    work.strWorkingPath = WorkingPath(id).c_str();
    work.pStored = m_pStored;
    work.trial = [id, guid = std::string(patient.GetGUID().GetString())](const std::string& path) {
        return arcTrialReading(path, id, guid);
    };
    work.step = dbStep;
    return {};
}

/// The name that the zip has while it is written: one that nothing has.
std::string arcCArchiveManager::WorkingPath(const std::string& id) const
{
    const std::string name = arc::WorkingZipName(arc::FolderOf(m_save.strArchivePath.GetString()), id);
    std::string path = name;
    for (int n = 2; n < 100 && !arc::WindowsFileSystem().Query(path).IsAbsent(); ++n)
        path = name + std::to_string(n);
    return path;
}

void arcCArchiveManager::FinishSave(int nResult)
{
    if (!TakeThread(Work::Save))
        return;
    m_recordFile.Remove();
    dbStep("save.worked");
    velGuard(0, IDS_ARC_UNEXPECTED, [&]() -> INT_PTR {
        Meanwhile([this] {
            if (velFileExists(m_save.strArchivePath))
                SetHidden(m_save.strArchivePath, false);
        });
        // What was saved meanwhile came into the file of the earlier format, which is away again.
        if (m_save.nFormat == arcFormatEarlier)
            patRenewPatientFile(m_save.strID);
        if (nResult == arc::ResultDone)
            RecordSave();
        return 0;
    });
    EndOperation(nResult);
}

/// The archive is good: the save is recorded, and the patient may be removed.
void arcCArchiveManager::RecordSave()
{
    dbCPatient patient;
    if (!patient.Load(m_save.strID))
        dbCException::Throw(dbErrNotFound, m_save.strID);
    if (!m_bPassable)
        CVeltrixLogin().AddArchivedPatientEvent(patient.GetGUID(),
                                                arcEventText(IDS_ARC_EVENT_SAVED, patient));
    dbStep("save.recorded");
    // The other formats leave out what only the database record holds.
    if (m_save.nFormat == arcFormatZipped)
        OfferRemoval(patient);
}

/// Removes the saved patient from the list if the user wants it and nothing is owed.
void arcCArchiveManager::OfferRemoval(dbCPatient& patient)
{
    bool bRemove = m_save.bRemove != FALSE;
    if (m_save.bAskToRemove)
    {
        const CString strAsk = velFormatTemplate(IDS_ARC_REMOVE_ASK, arcFullName(patient), patient.GetID());
        bRemove = AfxMessageBox(strAsk, MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2) == IDYES;
    }
    if (!bRemove || !MayBeRemoved(patient))
        return;

    // The lock of the save may be one that lets others look, and change.
    const PatientLock lock(patient.GetID());
    if (!lock.IsHeld())
    {
        AfxMessageBox(velFormatTemplate(IDS_ARC_IN_USE, patient.GetID(), lock.GetHolder()),
                      MB_OK | MB_ICONEXCLAMATION);
        return;
    }
    const auto stay = RemovePatient(patient);
    if (!stay)
    {
        AfxMessageBox(velFormatTemplate(IDS_ARC_CHANGED_SINCE, patient.GetID()), MB_OK | MB_ICONEXCLAMATION);
        return;
    }
    Notify(ARCHIVE_NOTIFY_REMOVED, patient.GetGUID());
    if (!stay->empty())
    {
        CString strText;
        strText.Format(IDS_ARC_FILES_STAY, velGetDataPath().GetString(), arcNameList(*stay).GetString());
        AfxMessageBox(strText, MB_OK | MB_ICONEXCLAMATION);
    }
}

/// Removes the patient with exactly those files that are as they went into the archive; answers those that
/// stay. Nothing, with nothing removed, when the record is not as it went in.
std::optional<std::vector<std::string>> arcCArchiveManager::RemovePatient(const dbCPatient& patient) const
{
    const CWaitCursor wait;
    const std::string id = patient.GetID().GetString();
    patFileStates removed;
    std::vector<std::string> stay;
    for (const patSFileState& file : patListFiles(patient.GetID()))
    {
        const bool bStored =
            std::any_of(m_pStored->begin(), m_pStored->end(), [&](const arc::PresentFile& stored) {
                return arc::EqualNoCase(stored.name, file.name) &&
                       stored.size == static_cast<std::uint64_t>(file.nSize) && stored.stamp == file.nWritten;
            });
        if (bStored)
            removed.push_back(file);
        else
            stay.push_back(file.name);
    }
    std::vector<arc::FolderEntry> entries;
    arc::WindowsFileSystem().List(velGetDataPath().GetString(), id + "*", entries);
    for (const arc::FolderEntry& entry : entries)
    {
        // Named as a timepoint's file is, but of no kind that anybody's files are.
        if (arc::MatchesWildcard(entry.name, id + "??.*") && pat::PossibleOwners(entry.name).empty())
            stay.push_back(entry.name);
    }

    dbStep("save.listed");

    // Others can change the record until the transaction has begun.
    dbCTransaction transaction;
    dbCPatient present;
    if (!present.Load(patient.GetID()) || arcRecordBytes(present) != m_record)
        return std::nullopt;
    dbCPatients().DeletePatient(patient.GetGUID(), &removed);
    CVeltrixLogin().AddPatientDeletedEvent(patient.GetGUID(), arcEventText(IDS_ARC_EVENT_DELETED, patient));
    transaction.Commit();
    return stay;
}

/// False, with the user told, for a patient who owes something.
bool arcCArchiveManager::MayBeRemoved(const dbCPatient& patient) const
{
    if (VelApp()->GetPracticeManagement() == 0 || patient.CanDeletePatient())
        return true;
    const CString strText = m_save.bSeveralPatients
                                ? velFormatTemplate(IDS_ARC_BALANCE_RUN, patient.GetLastname(),
                                                    patient.GetFirstname(), patient.GetID())
                                : CString(MAKEINTRESOURCE(IDS_ARC_BALANCE));
    AfxMessageBox(strText, MB_OK | MB_ICONEXCLAMATION);
    return false;
}
