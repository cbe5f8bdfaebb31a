// The saving half of the archive manager.
#include "archive/archivemanager.h"

#include "app/velenums.h"
#include "app/velapp.h"
#include "archive/archivedlgres.h"
#include "archive/archiverecord.h"
#include "archive/filenames.h"
#include "archive/otherformats.h"
#include "archive/pathsafety.h"
#include "archive/resultcodes.h"
#include "suite/patients/dbexception.h"
#include "suite/patients/veltrixlogin.h"
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
    if (save.bSeveralPatients && arc::IsDisketteDrive(save.strArchivePath.GetString()))
    {
        AfxMessageBox(IDS_ARC_DISK_MULTIPLE, MB_OK | MB_ICONEXCLAMATION);
        return arc::ResultNotArchived;
    }
    if (arc::IsDeviceName(save.strID.GetString()))
    {
        AfxMessageBox(velFormatTemplate(IDS_ARC_DEVICE_ID, save.strID), MB_OK | MB_ICONEXCLAMATION);
        return arc::ResultNotArchived;
    }
    // The live files would be taken for an archive that is to be replaced.
    if (save.nFormat != arcFormatZipped && IsWorkingFolder(arc::FolderOf(save.strArchivePath.GetString())))
    {
        AfxMessageBox(IDS_ARC_WORKING_FOLDER, MB_OK | MB_ICONEXCLAMATION);
        return arc::ResultNotArchived;
    }
    if (!LockPatient(save.strID, save.bKeepOthersOut ? patLockExclusive : patLockShared))
        return arc::ResultNotArchived;

    int nResult = arc::ResultNotArchived;
    try
    {
        nResult = PrepareSave();
    }
    catch (CException* e)
    {
        arcReportException(e, IDS_ARC_UNEXPECTED);
    }
    if (nResult == arc::ResultDone)
        return nResult;
    if (!m_strRecordFile.IsEmpty())
        ::DeleteFile(m_strRecordFile);
    EndOperation(nResult);
    return nResult;
}

/// From the locked patient to the running thread.
int arcCArchiveManager::PrepareSave()
{
    m_strRecordFile.Empty();
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

    arcSStatusWork work;
    work.bSave = TRUE;
    work.bDiskette = bDiskette;
    work.strStatus = velFormatTemplate(IDS_ARC_STATUS_SAVING, arcFullName(patient), m_save.strID);
    work.strArchivePath = m_save.strArchivePath;
    work.hOwner = m_pOwner->GetSafeHwnd();
    work.strFolder = velGetDataPath();
    work.bAlternativeEngine = velGetIniInt("Defaults", "UseDynaZip", 0) != 0;
    if (m_save.nFormat == arcFormatZipped)
    {
        m_strRecordFile = arc::DatabaseRecordName(velGetTempPath().GetString(), m_save.strID.GetString()).c_str();
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

/// Keeps the files of an archive that the save replaces until the new one is known to be good. (Zipped archives are kept
/// by the thread's work itself.) False, with the user told, when one can neither be moved nor be replaced.
bool arcCArchiveManager::MoveOldArchiveAside(const dbCPatient& patient)
{
    m_aside.clear();
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
    if (m_nWork != Work::Save)
        return;
    if (!m_strRecordFile.IsEmpty())
        ::DeleteFile(m_strRecordFile);
    try
    {
        if (velFileExists(m_save.strArchivePath))
            SetHidden(m_save.strArchivePath, false);
        if (nResult != arc::ResultDone)
        {
            ::DeleteFile(m_save.strArchivePath);
        }
        else
        {
            for (arc::AsideFile& old : m_aside)
                old.Discard();
            dbCPatient patient;
            if (!patient.Load(m_save.strID))
                dbCException::Throw(dbErrNotFound, m_save.strID);
            if (!m_bPassable)
            {
                CVeltrixLogin().AddArchivedPatientEvent(
                    patient.GetGUID(), arcEventText(IDS_ARC_EVENT_SAVED, patient));
            }
            if (m_save.nFormat == arcFormatZipped)
                OfferRemoval(patient);
        }
    }
    catch (CException* e)
    {
        arcReportException(e, IDS_ARC_UNEXPECTED);
    }
    EndOperation(nResult);
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
    // Somebody else's patient stays.
    if (!bRemove || m_bPassable)
        return;

    if (VelApp()->GetPracticeManagement() != 0 && !patient.CanDeletePatient())
    {
        if (m_save.bSeveralPatients)
        {
            AfxMessageBox(velFormatTemplate(IDS_ARC_BALANCE_RUN, patient.GetLastname(), patient.GetFirstname(),
                                            patient.GetID()),
                          MB_OK | MB_ICONEXCLAMATION);
        }
        else
        {
            AfxMessageBox(IDS_ARC_BALANCE, MB_OK | MB_ICONEXCLAMATION);
        }
        return;
    }
    const CWaitCursor wait;
    dbCPatients().DeletePatient(patient.GetGUID());
    Notify(ARCHIVE_NOTIFY_REMOVED, patient.GetGUID());
    CVeltrixLogin().AddPatientDeletedEvent(patient.GetGUID(), arcEventText(IDS_ARC_EVENT_DELETED, patient));
}
