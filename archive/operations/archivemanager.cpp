#include "archive/operations/archivemanager.h"

#include "app/hostnotice.h"
#include "app/modalrun.h"
#include "app/velenums.h"
#include "archive/res/archivedlgres.h"
#include "archive/operations/loading.h"
#include "archive/status/archiveworker.h"
#include "archive/status/messagewait.h"
#include "archive/work/resultcodes.h"
#include "suite/util/velini.h"
#include "suite/util/velstring.h"

#include <algorithm>

/// Gives a lock back; false when the database could not be asked.
static bool TryUnlock(const CString& strID) noexcept
{
    try
    {
        dbCPatients().Unlock(strID);
        return true;
    }
    catch (CException* e)
    {
        e->Delete();
    }
    catch (...)
    {
    }
    return false;
}

void arcUnlockPatient(const CString& strID) noexcept
try
{
    static std::vector<CString> waiting; // on the user interface thread only
    std::erase_if(waiting, TryUnlock);
    if (TryUnlock(strID))
        return;
    waiting.push_back(strID);
    AfxMessageBox(velFormatTemplate(IDS_ARC_UNLOCK_FAILED, strID), MB_OK | MB_ICONEXCLAMATION);
}
catch (...)
{
    // The lock dies with this process.
}

arcCArchiveManager::arcCArchiveManager(CWnd* pOwner, CWnd* pHost)
    : m_pOwner(pOwner), m_hHost(pHost->GetSafeHwnd()), m_recordFile(arc::WindowsFileSystem())
{
}

arcCArchiveManager::~arcCArchiveManager()
{
    UnlockPatient();
}

/// Locks the patient for this operation; false, with the user told, when somebody else has it. A patient that
/// is in use but passable is not locked.
bool arcCArchiveManager::LockPatient(const CString& strID, int nMode)
{
    m_bPassable = false;
    dbCPatients patients;
    CString strHolder;
    int nLock = patients.IsLocked(strID, &strHolder);
    if (nLock == patLockFree)
        nLock = patients.LockPatient(strID, nMode, &strHolder);

    switch (nLock)
    {
    case patLockFree:
        m_strLockedID = strID;
        return true;
    case patLockPassable:
        m_bPassable = true;
        return true;
    case patLockInUse:
        AfxMessageBox(velFormatTemplate(IDS_ARC_IN_USE, strID, strHolder), MB_OK | MB_ICONEXCLAMATION);
        return false;
    default:
        AfxMessageBox(IDS_ARC_LOCK_FAILED, MB_OK | MB_ICONSTOP);
        return false;
    }
}

void arcCArchiveManager::UnlockPatient()
{
    if (!m_strLockedID.IsEmpty())
        arcUnlockPatient(m_strLockedID);
    m_strLockedID.Empty();
}

int arcCArchiveManager::StartThread(const arcSStatusWork& work, Work nWork)
{
    m_nWork = nWork;
    arcSStatusWork begun = work;
    begun.hOwner = m_pOwner->GetSafeHwnd();
    begun.nWorkers = static_cast<unsigned>(std::max(0, velGetIniInt("Defaults", "ArchiveThreads", 0)));
    m_pThread = arcCStatusThread::Start(begun);
    if (m_pThread)
        return arc::ResultDone;
    AfxMessageBox(IDS_ARC_NO_THREAD, MB_OK | MB_ICONSTOP);
    return arc::ResultNoThread;
}

void arcCArchiveManager::WaitUntilIdle()
{
    bool bQuits = false;
    int nExitCode = 0;
    while (!IsIdle())
    {
        const arcWoken woken = arcPumpOrWait(m_pThread ? m_pThread->m_hThread : nullptr);
        if (woken == arcWoken::Object)
            FinishUnreported();
        if (woken == arcWoken::Quit)
        {
            bQuits = true;
            nExitCode = static_cast<int>(AfxGetCurrentMessage()->wParam);
        }
        NoteQuit(bQuits || m_pOwner->GetSafeHwnd() == nullptr);
    }
    if (bQuits)
        ::PostQuitMessage(nExitCode);
}

/// Work that asks nobody anything, the database least of all.
void arcCArchiveManager::Meanwhile(const std::function<void()>& work)
{
    NoteQuit(arcMeanwhile(work));
}

void arcCArchiveManager::NoteQuit(bool bQuits)
{
    if (!bQuits)
        return;
    m_bHostCloses = true;
    m_save.bAskToRemove = FALSE; // there is nobody to be asked
}

/// The thread has ended and its message has nowhere to go.
void arcCArchiveManager::FinishUnreported()
{
    const int nResult = m_pThread->Join();
    if (m_nWork == Work::Save)
        FinishSave(nResult);
    else
        FinishLoad(nResult);
}

/// Whether that kind of operation has now to be finished. The status thread has then ended.
bool arcCArchiveManager::TakeThread(Work nWork)
{
    if (m_nWork != nWork || !m_pThread)
        return false; // it is being finished already, or somebody else's message
    m_pThread.reset();
    return true;
}

void arcCArchiveManager::EndOperation(int nResult)
{
    UnlockPatient();
    if (m_pLoading)
    {
        velGuard(0, IDS_ARC_UNEXPECTED, [this]() -> INT_PTR {
            Meanwhile([this] { m_pLoading->Clear(); });
            return 0;
        });
        m_pLoading.reset();
    }
    m_nResult = nResult;
    m_nWork = Work::None;
}

void arcCArchiveManager::Notify(int nEvent, const CString& strGUID) const
{
    velNotifyHost(m_hHost, nEvent, strGUID);
}
