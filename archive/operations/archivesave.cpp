// The saving half of the archive manager.
#include "archive/operations/archivemanager.h"

#include "app/modalrun.h"
#include "app/velapp.h"
#include "app/velenums.h"
#include "archive/res/archivedlgres.h"
#include "archive/operations/archiverecord.h"
#include "archive/files/filenames.h"
#include "archive/operations/otherformats.h"
#include "archive/files/pathsafety.h"
#include "archive/work/resultcodes.h"
#include "suite/patients/store/dbexception.h"
#include "suite/patients/store/dbtransaction.h"
#include "suite/patients/records/veltrixlogin.h"
#include "suite/util/velini.h"
#include "suite/util/velpath.h"
#include "suite/util/velstring.h"

#include <shellapi.h>

namespace
{
constexpr int RecordBuffer = 4096; // bytes of the framework archive over the database record

/// Sets or clears a file's hidden attribute by the system's own command, which goes on by itself.
void SetHidden(const CString& strPath, bool bHidden)
{
    const CString strArguments = CString(bHidden ? "+h " : "-h ") + "\"" + strPath + "\"";
    ::ShellExecute(nullptr, "open", "attrib", strArguments, nullptr, SW_HIDE);
}

bool IsWorkingFolder(std::string_view folder)
{
    arc::FileSystem& files = arc::WindowsFileSystem();
    const std::string working(arc::FolderOf(velGetDataPath().GetString()));
    return arc::EqualNoCase(files.Absolute(std::string(folder)), files.Absolute(working));
}

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
    m_strRecordFile.Empty();
    m_aside.clear();
    const INT_PTR nResult = velGuard(arc::ResultNotArchived, IDS_ARC_UNEXPECTED, [this]() -> INT_PTR {
        return CheckSave() ? PrepareSave() : arc::ResultNotArchived;
    });
    if (nResult == arc::ResultDone)
        return arc::ResultDone;
    RemoveDatabaseRecord();
    for (arc::AsideFile& old : m_aside)
        old.PutBack();
    m_aside.clear();
    EndOperation(static_cast<int>(nResult));
    return static_cast<int>(nResult);
}

/// What can be said before anything is done. False, with the user told, when the patient cannot be saved so.
bool arcCArchiveManager::CheckSave() const
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
    if (m_save.nFormat != arcFormatZipped && IsWorkingFolder(arc::FolderOf(path)))
    {
        AfxMessageBox(IDS_ARC_WORKING_FOLDER, MB_OK | MB_ICONEXCLAMATION);
        return false;
    }
    return true;
}

/// Up to the running thread.
int arcCArchiveManager::PrepareSave()
{
    if (!LockPatient(m_save.strID, m_save.bKeepOthersOut ? patLockExclusive : patLockShared))
        return arc::ResultNotArchived;
    const bool bDiskette = arc::IsDisketteDrive(m_save.strArchivePath.GetString());
    if (bDiskette && DriveHoldsFiles(m_save.strArchivePath) &&
        AfxMessageBox(IDS_ARC_DISK_OTHER_PATIENT, MB_YESNO | MB_ICONQUESTION) != IDYES)
    {
        return arc::ResultNotArchived;
    }

    dbCPatient patient;
    if (!patient.Load(m_save.strID))
        dbCException::Throw(dbErrNotFound, m_save.strID);
    const bool bKeepsOld = !bDiskette && m_save.nFormat != arcFormatZipped;
    if (bKeepsOld && !MoveOldArchiveAside(patient))
        return arc::ResultNotArchived;
    m_bPathWasTaken = !arc::WindowsFileSystem().Query(m_save.strArchivePath.GetString()).IsAbsent();

    arcSStatusWork work;
    work.bSave = TRUE;
    work.bDiskette = bDiskette;
    work.strStatus = velFormatTemplate(IDS_ARC_STATUS_SAVING, arcFullName(patient), m_save.strID);
    work.strArchivePath = m_save.strArchivePath;
    work.strFolder = velGetDataPath();
    work.bAlternativeEngine = velGetIniInt("Defaults", "UseDynaZip", 0) != 0;
    if (m_save.nFormat == arcFormatZipped)
    {
        m_strRecordFile =
            arc::DatabaseRecordName(velGetTempPath().GetString(), m_save.strID.GetString()).c_str();
        WriteDatabaseRecord(patient);
        work.strFileList = arc::ArchivePatternArgument(m_save.strID.GetString()).c_str();
        work.moreFiles = arcFilesBesidePatterns(patient);
        work.moreFiles.push_back(m_strRecordFile.GetString());
    }
    else
    {
        work.otherWork = arcOtherSave(patient, m_save.nFormat, m_save.strArchivePath, bDiskette);
    }
    return StartThread(work, Work::Save);
}

/// Writes the ".ACV" file.
void arcCArchiveManager::WriteDatabaseRecord(dbCPatient& patient) const
{
    CFile file(m_strRecordFile, CFile::modeCreate | CFile::modeWrite | CFile::shareExclusive);
    CArchive archive(&file, CArchive::store, RecordBuffer);
    patient.Serialize(archive);
    archive.Close();
    file.Close();
}

void arcCArchiveManager::RemoveDatabaseRecord()
{
    if (!m_strRecordFile.IsEmpty())
        ::DeleteFile(m_strRecordFile);
    m_strRecordFile.Empty();
}

/// Keeps the files of an archive that the save replaces until the new one is known to be good. (Zipped
/// archives are kept by the thread's work itself.) False, with the user told, when one can neither be moved
/// nor be replaced.
bool arcCArchiveManager::MoveOldArchiveAside(const dbCPatient& patient)
{
    for (const std::string& path : arcFilesOfArchive(patient, m_save.nFormat, m_save.strArchivePath))
    {
        m_aside.emplace_back(arc::WindowsFileSystem());
        if (!m_aside.back().MoveAway(path))
        {
            AfxMessageBox(arc::SaveResultText(arc::ResultSaveFailed), MB_OK | MB_ICONSTOP);
            return false;
        }
    }
    return true;
}

void arcCArchiveManager::FinishSave(int nResult)
{
    if (!TakeThread(Work::Save))
        return;
    RemoveDatabaseRecord();
    velGuard(0, IDS_ARC_UNEXPECTED, [&]() -> INT_PTR {
        if (velFileExists(m_save.strArchivePath))
            SetHidden(m_save.strArchivePath, false);
        if (nResult == arc::ResultDone)
            RecordSave();
        else if (!m_bPathWasTaken)
            ::DeleteFile(m_save.strArchivePath);
        return 0;
    });
    m_aside.clear();
    EndOperation(nResult);
}

/// The archive is good: the one it replaces goes, the save is recorded, and the patient may be removed.
void arcCArchiveManager::RecordSave()
{
    for (arc::AsideFile& old : m_aside)
        old.Discard();
    dbCPatient patient;
    if (!patient.Load(m_save.strID))
        dbCException::Throw(dbErrNotFound, m_save.strID);
    if (!m_bPassable)
        CVeltrixLogin().AddArchivedPatientEvent(patient.GetGUID(),
                                                arcEventText(IDS_ARC_EVENT_SAVED, patient));
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

    const CWaitCursor wait;
    dbCTransaction transaction;
    dbCPatients().DeletePatient(patient.GetGUID());
    CVeltrixLogin().AddPatientDeletedEvent(patient.GetGUID(), arcEventText(IDS_ARC_EVENT_DELETED, patient));
    transaction.Commit();
    Notify(ARCHIVE_NOTIFY_REMOVED, patient.GetGUID());
}

/// False, with the user told, for a patient who owes something or whom somebody else is looking at.
bool arcCArchiveManager::MayBeRemoved(const dbCPatient& patient) const
{
    if (VelApp()->GetPracticeManagement() != 0 && !patient.CanDeletePatient())
    {
        const CString strText = m_save.bSeveralPatients
                                    ? velFormatTemplate(IDS_ARC_BALANCE_RUN, patient.GetLastname(),
                                                        patient.GetFirstname(), patient.GetID())
                                    : CString(MAKEINTRESOURCE(IDS_ARC_BALANCE));
        AfxMessageBox(strText, MB_OK | MB_ICONEXCLAMATION);
        return false;
    }
    // The lock of the save may be one that lets others look.
    dbCPatients patients;
    CString strHolder;
    const int nLock = patients.LockPatient(patient.GetID(), patLockExclusive, &strHolder);
    if (nLock == patLockFree)
    {
        patients.Unlock(patient.GetID());
        return true;
    }
    AfxMessageBox(velFormatTemplate(IDS_ARC_IN_USE, patient.GetID(), strHolder), MB_OK | MB_ICONEXCLAMATION);
    return false;
}
