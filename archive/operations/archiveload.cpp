// The loading and merging half of the archive manager.
#include "archive/operations/archivemanager.h"

#include "app/modalrun.h"
#include "app/velapp.h"
#include "app/velenums.h"
#include "archive/res/archivedlgres.h"
#include "archive/operations/archiverecord.h"
#include "archive/files/filenames.h"
#include "archive/operations/otherformats.h"
#include "archive/work/filecopies.h"
#include "archive/work/resultcodes.h"
#include "suite/patients/store/dbexception.h"
#include "suite/patients/files/dbplacement.h"
#include "suite/patients/store/dbsteps.h"
#include "suite/patients/store/dbtransaction.h"
#include "suite/patients/records/veltrixlogin.h"
#include "suite/util/velini.h"
#include "suite/util/velpath.h"
#include "suite/util/velstring.h"

#include <map>

int arcCArchiveManager::StartLoad(const arcSLoad& load)
{
    m_load = load;
    m_bLeftBehind = false;
    const INT_PTR nResult =
        velGuard(arc::ResultNotArchived, IDS_ARC_UNEXPECTED, [this]() -> INT_PTR { return PrepareLoad(); });
    if (nResult != arc::ResultDone)
        EndOperation(static_cast<int>(nResult));
    return static_cast<int>(nResult);
}

/// Up to the running thread.
int arcCArchiveManager::PrepareLoad()
{
    m_pScratch = std::make_unique<arc::ScratchFolder>(arc::WindowsFileSystem(), velGetTempPath().GetString());
    if (!m_pScratch->Take())
    {
        AfxMessageBox(IDS_ARC_SCRATCH_BUSY, MB_OK | MB_ICONEXCLAMATION);
        return arc::ResultNotArchived;
    }
    dbStep("load.begun");

    const strFilename archive(m_load.strArchivePath);
    arcSStatusWork work;
    work.bSave = FALSE;
    work.bDiskette = arc::IsDisketteDrive(m_load.strArchivePath.GetString());
    work.strStatus = velFormatTemplate(IDS_ARC_STATUS_LOADING, archive.GetNameExt(), archive.GetName());
    work.strArchivePath = m_load.strArchivePath;
    work.strFolder = m_pScratch->Path().c_str();
    work.bAlternativeEngine = velGetIniInt("Defaults", "UseDynaZip", 0) != 0;
    if (!arc::IsZippedArchive(m_load.strArchivePath.GetString()))
    {
        const arc::ArchiveKind kind = arc::KindOfArchive(m_load.strArchivePath.GetString());
        if (kind == arc::ArchiveKind::None)
        {
            AfxMessageBox(IDS_ARC_NO_HEADER, MB_OK | MB_ICONEXCLAMATION);
            return arc::ResultNotArchived;
        }
        work.otherWork = arcOtherLoad(kind, m_load.strArchivePath, m_pScratch->Path());
    }
    return StartThread(work, Work::Load);
}

void arcCArchiveManager::FinishLoad(int nResult)
{
    if (!TakeThread(Work::Load))
        return;
    if (nResult == arc::ResultDone)
    {
        nResult = static_cast<int>(velGuard(arc::ResultLoadFailed, IDS_ARC_UNEXPECTED, [this]() -> INT_PTR {
            const CWaitCursor wait;
            return TakeUnpacked() ? arc::ResultDone : arc::ResultLoadFailed;
        }));
    }
    EndOperation(nResult);
}

/// Brings the noted files to their places on a status thread of its own, so that this one goes on answering.
/// False when that was stopped.
bool arcCArchiveManager::Carry(dbCFilePlacement& placement)
{
    CException* pThrown = nullptr;
    const auto carry = [&](const arcProgress& progress) {
        return placement.Carry(progress);
    };
    arcSStatusWork work;
    work.bSave = FALSE;
    const strFilename archive(m_load.strArchivePath);
    work.strStatus = velFormatTemplate(IDS_ARC_STATUS_LOADING, archive.GetNameExt(), archive.GetName());
    work.hOwner = m_pOwner->GetSafeHwnd();
    work.bPostsEnd = false; // it would be taken for the end of the next load
    work.otherWork = [&](const arcAsk&, const arcProgress& progress) {
        try
        {
            return carry(progress) ? arc::ResultDone : arc::ResultCancelled;
        }
        catch (CException* e)
        {
            pThrown = e; // goes on, on the other thread
            return arc::ResultDone;
        }
    };
    const auto pThread = arcCStatusThread::Start(work);
    if (!pThread)
        return carry([](int, const std::string&) { return true; });
    PumpUntilEnded(*pThread);
    const int nResult = pThread->Join();
    if (pThrown != nullptr)
        throw pThrown; // NOLINT(misc-throw-by-value-catch-by-reference): as the framework does
    return nResult == arc::ResultDone;
}

/// False, with the user told, when one of the names is taken.
bool arcCArchiveManager::Place(dbCFilePlacement& placement)
{
    try
    {
        dbCFilePlacement::RemoveAbandoned();
        placement.Check();
        placement.Note();
        return Carry(placement);
    }
    catch (dbCException* e)
    {
        if (e->GetError() != dbErrExists)
            throw;
        const CString strName = e->GetDetail();
        e->Delete();
        AfxMessageBox(velFormatTemplate(IDS_ARC_FILE_IN_THE_WAY, strName), MB_OK | MB_ICONEXCLAMATION);
        return false;
    }
}

/// Stores the patient; false when that is not possible, for whatever reason.
static bool Add(dbCPatient& archived)
{
    try
    {
        return dbCPatients().AddFromArchive(archived) != FALSE;
    }
    catch (CException* e)
    {
        e->Delete();
        return false;
    }
}

/// Takes what was unpacked into the practice. False, with the user told and nothing changed, when it may not
/// be.
bool arcCArchiveManager::TakeUnpacked()
{
    arc::FileSystem& files = arc::WindowsFileSystem();
    dbCPatient archived;
    if (!arcReadUnpackedRecord(files, m_pScratch->Path(), archived))
    {
        AfxMessageBox(IDS_ARC_NO_HEADER, MB_OK | MB_ICONSTOP);
        return false;
    }
    std::vector<std::string> names;
    std::vector<arc::FolderEntry> entries;
    if (!files.List(m_pScratch->Path(), "*", entries))
        return false;
    for (const arc::FolderEntry& entry : entries)
    {
        if (!entry.info.IsFolder())
            names.push_back(entry.name);
    }
    dbStep("load.read");
    return m_load.strMergeID.IsEmpty() ? AddPatient(archived, names) : MergeInto(archived, names);
}

/// False, with the user told, when the practice has this patient, or the patient file of an unknown one.
bool arcCArchiveManager::CheckNew(const dbCPatient& archived) const
{
    const CString& strID = archived.GetID();
    dbCPatient stored;
    if (stored.Load(strID) || stored.Load(archived.GetGUID(), FALSE, TRUE))
    {
        AfxMessageBox(velFormatTemplate(IDS_ARC_ALREADY_EXISTS, arcFullName(stored), stored.GetID()),
                      MB_OK | MB_ICONEXCLAMATION);
        return false;
    }
    if (!dbCPatients().IsIDFree(strID))
    {
        AfxMessageBox(velFormatTemplate(IDS_ARC_MARKED_DELETED, arcFullName(archived), strID),
                      MB_OK | MB_ICONEXCLAMATION);
        return false;
    }
    const CString strPatientFile = arc::PatientFileName(strID.GetString()).c_str();
    if (velFileExists(velGetDataPath() + strPatientFile))
    {
        AfxMessageBox(velFormatTemplate(IDS_ARC_FILE_IN_THE_WAY, strPatientFile), MB_OK | MB_ICONEXCLAMATION);
        return false;
    }
    return true;
}

bool arcCArchiveManager::AddPatient(dbCPatient& archived, const std::vector<std::string>& unpacked)
{
    const CString strID = archived.GetID();
    if (!LockPatient(strID, patLockExclusive) || !CheckNew(archived))
        return false;

    arc::FileSystem& files = arc::WindowsFileSystem();
    dbCFilePlacement placement;
    const std::string folder = velGetDataPath().GetString();
    std::vector<std::string> left;
    for (const std::string& name : unpacked)
    {
        const auto identity = pat::IdentifyFile(name, strID.GetString());
        if (identity && pat::IsRecord(identity->kind))
            continue;
        const std::string source = arc::JoinPath(m_pScratch->Path(), name);
        const std::string target = arc::JoinPath(folder, name);
        // What may be another patient's file stays as it is.
        const bool bStays =
            identity && identity->kind == pat::FileKind::Morph && !files.Query(target).IsAbsent();
        if (identity && !bStays)
            placement.Add(source.c_str(), name.c_str(), true);
        else if (!identity || !arc::SameContents(files, source, target))
            left.push_back(name);
    }
    if (!Place(placement))
        return false;
    dbStep("load.placed");

    dbCTransaction transaction;
    if (!Add(archived))
    {
        transaction.Rollback(); // nobody waits for the user's answer
        AfxMessageBox(IDS_ARC_SAVE_PATIENT_FAILED, MB_OK | MB_ICONSTOP);
        return false;
    }
    CVeltrixLogin().AddArchivedPatientEvent(archived.GetGUID(), arcEventText(IDS_ARC_EVENT_LOADED, archived));
    placement.Keep();
    dbStep("load.stored");
    transaction.Commit();
    dbStep("load.committed");

    m_bLeftBehind = !left.empty();
    if (m_bLeftBehind)
    {
        CString strText;
        strText.Format(IDS_ARC_FILES_LEFT, arcNameList(left).GetString());
        AfxMessageBox(strText, MB_OK | MB_ICONEXCLAMATION);
    }
    Notify(ARCHIVE_NOTIFY_LOADED, archived.GetGUID());
    Notify(ARCHIVE_NOTIFY_REFRESH, archived.GetGUID());
    if (VelApp()->GetPracticeManagement() != 0)
    {
        CString strText, strCaption;
        strText.LoadString(IDS_ARC_FIELDS_ASSIGNED);
        strCaption.LoadString(IDS_ARC_CAPTION);
        ::MessageBox(m_pOwner->GetSafeHwnd(), strText, strCaption, MB_OK | MB_ICONINFORMATION);
    }
    return true;
}

bool arcCArchiveManager::MergeInto(const dbCPatient& archived, const std::vector<std::string>& unpacked)
{
    if (!LockPatient(m_load.strMergeID, patLockExclusive))
        return false;
    dbCPatient patient;
    if (!patient.Load(m_load.strMergeID))
        dbCException::Throw(dbErrNotFound, m_load.strMergeID);

    std::map<int, int> newNumbers;
    const int nCount = static_cast<int>(archived.GetTimepoints().GetCount());
    for (int i = 0; i < nCount; ++i)
    {
        patCTimepoint timepoint;
        archived.CopyTimepoint(i, timepoint);
        const int nOld = timepoint.GetNumber();
        const int nNew = patient.GetTimepoints().GetFreeNumber();
        if (nNew >= 0)
            timepoint.SetBaseFilename(arc::TimepointBaseName(patient.GetID().GetString(), nNew).c_str());
        if (nNew < 0 || patient.PasteTimepoint(timepoint) != 0)
        {
            AfxMessageBox(IDS_ARC_TOO_MANY_TIMEPOINTS, MB_OK | MB_ICONSTOP);
            return false;
        }
        newNumbers[nOld] = nNew;
    }

    dbCFilePlacement placement;
    for (const std::string& name : unpacked)
    {
        const auto identity = pat::IdentifyFile(name, archived.GetID().GetString());
        const auto number = identity ? newNumbers.find(identity->timepoint) : newNumbers.end();
        if (number == newNumbers.end())
            continue; // of no timepoint
        const std::string target = pat::MovedFileName(name, archived.GetID().GetString(),
                                                      patient.GetID().GetString(), number->second);
        placement.Add(arc::JoinPath(m_pScratch->Path(), name).c_str(), target.c_str(), true);
    }
    if (!Place(placement))
        return false;

    dbStep("merge.placed");
    dbCTransaction transaction;
    patient.Save();
    CVeltrixLogin().AddArchivedPatientEvent(patient.GetGUID(), arcEventText(IDS_ARC_EVENT_MERGED, patient));
    placement.Keep();
    dbStep("merge.stored");
    transaction.Commit();
    dbStep("merge.committed");
    Notify(ARCHIVE_NOTIFY_MERGED, patient.GetGUID());
    return true;
}
