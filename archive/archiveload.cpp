// The loading and merging half of the archive manager.
#include "archive/archivemanager.h"

#include "app/velapp.h"
#include "app/velenums.h"
#include "archive/archivedlgres.h"
#include "archive/archiverecord.h"
#include "archive/filenames.h"
#include "archive/mergenames.h"
#include "archive/otherformats.h"
#include "archive/resultcodes.h"
#include "suite/patients/dbexception.h"
#include "suite/patients/dbplacement.h"
#include "suite/patients/dbtransaction.h"
#include "suite/patients/veltrixlogin.h"
#include "suite/util/velini.h"
#include "suite/util/velpath.h"
#include "suite/util/velstring.h"

int arcCArchiveManager::StartLoad(const arcSLoad& load)
{
    m_load = load;
    m_pScratch = std::make_unique<arc::ScratchFolder>(arc::WindowsFileSystem(), velGetTempPath().GetString());
    if (!m_pScratch->Take())
    {
        AfxMessageBox(IDS_ARC_SCRATCH_BUSY, MB_OK | MB_ICONEXCLAMATION);
        EndOperation(arc::ResultNotArchived);
        return arc::ResultNotArchived;
    }

    arcSStatusWork work;
    work.bSave = FALSE;
    work.bDiskette = arc::IsDisketteDrive(load.strArchivePath.GetString());
    const CString strName = strFilename(load.strArchivePath).GetName();
    work.strStatus = velFormatTemplate(IDS_ARC_STATUS_LOADING, strFilename(load.strArchivePath).GetNameExt(), strName);
    work.strArchivePath = load.strArchivePath;
    work.strFolder = m_pScratch->Path().c_str();
    work.hOwner = m_pOwner->GetSafeHwnd();
    work.bAlternativeEngine = velGetIniInt("Defaults", "UseDynaZip", 0) != 0;
    if (!arc::IsZippedArchive(load.strArchivePath.GetString()))
    {
        const arc::ArchiveKind kind = arc::KindOfArchive(load.strArchivePath.GetString());
        if (kind == arc::ArchiveKind::None)
        {
            AfxMessageBox(IDS_ARC_NO_HEADER, MB_OK | MB_ICONEXCLAMATION);
            EndOperation(arc::ResultNotArchived);
            return arc::ResultNotArchived;
        }
        work.otherWork = arcOtherLoad(kind, load.strArchivePath, m_pScratch->Path());
    }
    const int nResult = StartThread(work, Work::Load);
    if (nResult != arc::ResultDone)
        EndOperation(nResult);
    return nResult;
}

void arcCArchiveManager::FinishLoad(int nResult)
{
    if (m_nWork != Work::Load)
        return;
    if (nResult == arc::ResultDone)
    {
        nResult = arc::ResultLoadFailed;
        try
        {
            const CWaitCursor wait;
            if (TakeUnpacked())
                nResult = arc::ResultDone;
        }
        catch (CException* e)
        {
            arcReportException(e, IDS_ARC_SAVE_PATIENT_FAILED);
        }
    }
    EndOperation(nResult);
}

/// Takes what was unpacked into the practice. False, with the user told and nothing changed, when it may not be.
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
    return m_load.strMergeID.IsEmpty() ? AddPatient(archived, names) : MergeInto(archived, names);
}

bool arcCArchiveManager::AddPatient(dbCPatient& archived, const std::vector<std::string>& names)
{
    const CString strID = archived.GetID();
    if (!LockPatient(strID, patLockExclusive))
        return false;

    dbCPatient stored;
    if (stored.Load(strID))
    {
        const UINT nText = stored.isDeleted() ? IDS_ARC_MARKED_DELETED : IDS_ARC_ALREADY_EXISTS;
        AfxMessageBox(velFormatTemplate(nText, arcFullName(archived), strID), MB_OK | MB_ICONEXCLAMATION);
        return false;
    }

    dbCFilePlacement placement;
    const std::string folder = velGetDataPath().GetString();
    for (const std::string& name : names)
    {
        const auto kind = arc::KindOfFile(name, strID.GetString());
        const bool isForeign = kind == arc::PatientFileKind::PerhapsForeign;
        if (kind == arc::PatientFileKind::Record ||
            (isForeign && velFileExists(arc::JoinPath(folder, name).c_str())))
        {
            continue;
        }
        placement.Add(arc::JoinPath(m_pScratch->Path(), name).c_str(), name.c_str());
    }
    placement.Place();

    dbCTransaction transaction;
    if (!dbCPatients().AddFromArchive(archived))
    {
        AfxMessageBox(IDS_ARC_SAVE_PATIENT_FAILED, MB_OK | MB_ICONSTOP);
        return false;
    }
    CVeltrixLogin().AddArchivedPatientEvent(archived.GetGUID(), arcEventText(IDS_ARC_EVENT_LOADED, archived));
    placement.Keep();
    transaction.Commit();

    Notify(ARCHIVE_NOTIFY_LOADED, archived.GetGUID());
    Notify(ARCHIVE_NOTIFY_REFRESH, archived.GetGUID());
    if (VelApp()->GetPracticeManagement() != 0)
    {
        CString strText, strCaption;
        strText.LoadString(IDS_ARC_FIELDS_ASSIGNED);
        strCaption.LoadString(IDS_ARC_CAPTION);
        m_pOwner->MessageBox(strText, strCaption, MB_OK | MB_ICONINFORMATION);
    }
    return true;
}

bool arcCArchiveManager::MergeInto(const dbCPatient& archived, const std::vector<std::string>& names)
{
    if (!LockPatient(m_load.strMergeID, patLockExclusive))
        return false;
    dbCPatient patient;
    if (!patient.Load(m_load.strMergeID))
        dbCException::Throw(dbErrNotFound, m_load.strMergeID);

    arc::MergeNames renamed(archived.GetID().GetString(), patient.GetID().GetString());
    const int nCount = static_cast<int>(archived.GetTimepoints().GetCount());
    for (int i = 0; i < nCount; ++i)
    {
        patCTimepoint timepoint;
        archived.CopyTimepoint(i, timepoint);
        const int nOld = timepoint.GetNumber();
        const int nNew = patient.GetTimepoints().GetFreeNumber();
        timepoint.SetBaseFilename(arc::TimepointBaseName(patient.GetID().GetString(), nNew).c_str());
        if (nNew < 0 || patient.PasteTimepoint(timepoint) != 0)
        {
            AfxMessageBox(IDS_ARC_TOO_MANY_TIMEPOINTS, MB_OK | MB_ICONSTOP);
            return false;
        }
        renamed.Add(nOld, nNew);
    }

    dbCFilePlacement placement;
    for (const std::string& name : names)
    {
        const std::string target = renamed.Of(name);
        if (!target.empty())
            placement.Add(arc::JoinPath(m_pScratch->Path(), name).c_str(), target.c_str());
    }
    placement.Place();

    dbCTransaction transaction;
    patient.Save();
    CVeltrixLogin().AddArchivedPatientEvent(patient.GetGUID(), arcEventText(IDS_ARC_EVENT_MERGED, patient));
    placement.Keep();
    transaction.Commit();
    Notify(ARCHIVE_NOTIFY_MERGED, patient.GetGUID());
    return true;
}
