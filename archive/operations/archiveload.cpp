// The loading and merging half of the archive manager.
#include "archive/operations/archivemanager.h"

#include "app/modalrun.h"
#include "app/velapp.h"
#include "app/velenums.h"
#include "archive/res/archivedlgres.h"
#include "archive/operations/archiverecord.h"
#include "archive/operations/loading.h"
#include "archive/operations/otherformats.h"
#include "archive/files/filenames.h"
#include "archive/status/messagewait.h"
#include "archive/work/resultcodes.h"
#include "suite/patients/store/dbexception.h"
#include "suite/util/velini.h"
#include "suite/util/velpath.h"
#include "suite/util/velstring.h"

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

/// What the progress dialog says during a load, from unpacking to the last file in its place.
arcSStatusWork arcCArchiveManager::LoadingWork() const
{
    const strFilename archive(m_load.strArchivePath);
    arcSStatusWork work;
    work.bSave = FALSE;
    work.strStatus = velFormatTemplate(IDS_ARC_STATUS_LOADING, archive.GetNameExt(), archive.GetName());
    return work;
}

/// Up to the running thread.
int arcCArchiveManager::PrepareLoad()
{
    if (!m_load.strMergeID.IsEmpty() && !LockPatient(m_load.strMergeID, patLockExclusive))
        return arc::ResultNotArchived;
    if (m_load.strMergeID.IsEmpty())
        m_pLoading = std::make_unique<arcCPatientLoading>();
    else
        m_pLoading = std::make_unique<arcCMerging>(m_load.strMergeID);
    arc::ScratchState state = arc::ScratchState::Failed;
    Meanwhile([&] { state = m_pLoading->Begin(); });
    if (state != arc::ScratchState::Taken)
    {
        AfxMessageBox(state == arc::ScratchState::Busy
                          ? CString(MAKEINTRESOURCE(IDS_ARC_SCRATCH_BUSY))
                          : velFormatTemplate(IDS_ARC_SCRATCH_FAILED, m_pLoading->Folder().c_str()),
                      MB_OK | MB_ICONEXCLAMATION);
        return arc::ResultNotArchived;
    }

    arcSStatusWork work = LoadingWork();
    work.bDiskette = arc::IsDisketteDrive(m_load.strArchivePath.GetString());
    work.strArchivePath = m_load.strArchivePath;
    work.strFolder = m_pLoading->Folder().c_str();
    work.bAlternativeEngine = velGetIniInt("Defaults", "UseDynaZip", 0) != 0;
    if (!arc::IsZippedArchive(m_load.strArchivePath.GetString()))
    {
        const arc::ArchiveKind kind = arc::KindOfArchive(m_load.strArchivePath.GetString());
        if (kind == arc::ArchiveKind::None)
        {
            AfxMessageBox(IDS_ARC_NO_HEADER, MB_OK | MB_ICONEXCLAMATION);
            return arc::ResultNotArchived;
        }
        work.otherWork = arcOtherLoad(kind, m_load.strArchivePath, m_pLoading->Folder());
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

/// Brings the files to their places on a status thread of its own, so that this one goes on answering;
/// without one, here. False when that was stopped.
bool arcCArchiveManager::Carry()
{
    std::exception_ptr pThrown;
    arcSStatusWork work = LoadingWork();
    work.hOwner = m_pOwner->GetSafeHwnd();
    work.bPostsEnd = false; // it would be taken for the end of the next load
    work.otherWork = [&](const arcAsk&, const arcProgress& progress) {
        try
        {
            return m_pLoading->Carry(progress) ? arc::ResultDone : arc::ResultCancelled;
        }
        catch (...)
        {
            pThrown = std::current_exception(); // goes on, on the other thread
            return arc::ResultDone;
        }
    };
    const auto pThread = arcCStatusThread::Start(work);
    if (!pThread)
        return m_pLoading->Carry([](int, const std::string&) { return true; });
    NoteQuit(arcPumpUntil(pThread->m_hThread));
    const int nResult = pThread->Join();
    if (pThrown)
        std::rethrow_exception(pThrown);
    return nResult == arc::ResultDone;
}

/// False, with the user told, when a file is in the way.
bool arcCArchiveManager::Place()
{
    try
    {
        dbCFilePlacement::RemoveAbandoned();
        Meanwhile([this] { m_pLoading->Plan(); });
        m_pLoading->Note();
        return Carry();
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

/// Takes what was unpacked into the practice. False, with the user told and nothing changed, when it may not
/// be.
bool arcCArchiveManager::TakeUnpacked()
{
    bool bRead = false;
    Meanwhile([&] { bRead = m_pLoading->Read(); });
    if (!bRead)
    {
        AfxMessageBox(IDS_ARC_NO_HEADER, MB_OK | MB_ICONSTOP);
        return false;
    }
    const bool bMerges = !m_load.strMergeID.IsEmpty();
    if ((!bMerges && !LockPatient(m_pLoading->GetID(), patLockExclusive)) || !m_pLoading->Accept() ||
        !Place() || !m_pLoading->Commit())
        return false;

    const std::vector<std::string>& left = m_pLoading->Left();
    m_bLeftBehind = !left.empty() || m_pLoading->ReferralsLeft() != 0;
    if (m_pLoading->ReferralsLeft() != 0)
        AfxMessageBox(IDS_ARC_REFERRALS_LEFT, MB_OK | MB_ICONEXCLAMATION);
    if (!left.empty())
    {
        CString strText;
        strText.Format(IDS_ARC_FILES_LEFT, arcNameList(left).GetString());
        AfxMessageBox(strText, MB_OK | MB_ICONEXCLAMATION);
    }
    const CString strGUID = m_pLoading->GetPatient().GetGUID();
    if (bMerges)
    {
        Notify(ARCHIVE_NOTIFY_MERGED, strGUID);
        return true;
    }
    Notify(ARCHIVE_NOTIFY_LOADED, strGUID);
    Notify(ARCHIVE_NOTIFY_REFRESH, strGUID);
    if (VelApp()->GetPracticeManagement() != 0)
    {
        CString strText, strCaption;
        strText.LoadString(IDS_ARC_FIELDS_ASSIGNED);
        strCaption.LoadString(IDS_ARC_CAPTION);
        ::MessageBox(m_pOwner->GetSafeHwnd(), strText, strCaption, MB_OK | MB_ICONINFORMATION);
    }
    return true;
}
