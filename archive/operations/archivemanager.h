// One archive operation for one patient from start to end.
#pragma once

#include "archive/files/fileset.h"
#include "archive/status/statusthread.h"
#include "archive/work/recordfile.h"
#include "suite/patients/records/dbpatients.h"

#include <afxwin.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

/// The formats that a save writes, in the order of the save dialog's file types.
enum arcFormat
{
    arcFormatZipped = 0, ///< ".kaz": everything, the database record included
    arcFormatVolumes =
        1, ///< ".kar": label file and volume files; the files listed by the patient's timepoints
    arcFormatEarlier = 2 ///< ".PF" of the earlier format with its files beside it
};

/// One patient to save.
struct arcSSave
{
    CString strID;
    CString strArchivePath; ///< with drive letter; an existing archive there is replaced
    arcFormat nFormat = arcFormatZipped;
    BOOL bSeveralPatients = FALSE; ///< the run holds more than one
    BOOL bAskToRemove = TRUE;      ///< ask whether to remove the patient from the list afterwards
    BOOL bRemove = FALSE;          ///< without asking: remove it
    BOOL bKeepOthersOut = TRUE;    ///< nobody else may open the patient meanwhile
};

/// One archive to load, or to merge into a patient.
struct arcSLoad
{
    CString strArchivePath;
    CString strMergeID; ///< the patient to merge the timepoints into; empty to load a new patient
};

/// Gives a lock of this process back. One that cannot be given back now is with the next call, and the user
/// is told.
void arcUnlockPatient(const CString& strID) noexcept;

/// Saves, loads and merges. Starting an operation leaves its copying to the status thread; when the thread
/// reports to the owner window, that hands the result to FinishSave or FinishLoad, and the manager is idle
/// again. Locks the patient for the length of the operation and never gives back a lock of somebody else. All
/// calls belong to the user interface thread and show their messages themselves; none throws. The database is
/// asked on that thread only; what else may take its time is done on others while it answers its messages.
/// Owns the status thread, which has ended when the operation has, and the scratch files of the operation.
class arcCArchiveManager
{
public:
    /// pOwner receives the status thread's messages; it stays the caller's and must outlive the manager,
    /// which its window need not. The window of pHost, which may be null, gets the notice of what happened to
    /// a patient (app/velenums.h).
    arcCArchiveManager(CWnd* pOwner, CWnd* pHost);
    arcCArchiveManager(const arcCArchiveManager&) = delete;
    arcCArchiveManager& operator=(const arcCArchiveManager&) = delete;

    /// 0 when the work has begun; otherwise arc::ResultNotArchived or arc::ResultNoThread, with the user
    /// told.
    virtual int StartSave(const arcSSave& save);
    virtual int StartLoad(const arcSLoad& load);
    /// With the result code that the status thread posted.
    virtual void FinishSave(int nResult);
    virtual void FinishLoad(int nResult);

    virtual ~arcCArchiveManager();

    BOOL IsIdle() const
    {
        return m_nWork == Work::None;
    }
    /// Dispatches the thread's messages until the manager is idle. An operation whose owner window is
    /// destroyed meanwhile is finished here. WM_QUIT is found by the caller's loop again afterwards.
    void WaitUntilIdle();
    /// The host has begun to close while an operation was under way: no other is to be begun.
    BOOL IsHostClosing() const
    {
        return m_bHostCloses;
    }
    /// Whether the load that ended last took less than all of the archive; the user has been told.
    BOOL LeftSomethingBehind() const
    {
        return m_bLeftBehind;
    }
    /// Of the operation that ended last: 0, or why it failed.
    int GetResult() const
    {
        return m_nResult;
    }

private:
    enum class Work
    {
        None,
        Save,
        Load
    };

    bool LockPatient(const CString& strID, int nMode);
    void UnlockPatient();
    int StartThread(const arcSStatusWork& work, Work nWork);
    void FinishUnreported();
    void Meanwhile(const std::function<void()>& work);
    void NoteQuit(bool bQuits);
    bool TakeThread(Work nWork);
    void EndOperation(int nResult);

    bool CheckSave();
    int PrepareSave();
    bool EnsurePatientFile();
    CString PrepareFiles(const dbCPatient& patient, arcSStatusWork& work, bool bConfirmed);
    std::string WorkingPath(const std::string& id) const;
    void RecordSave();
    void OfferRemoval(dbCPatient& patient);
    std::optional<std::vector<std::string>> RemovePatient(const dbCPatient& patient) const;
    bool MayBeRemoved(const dbCPatient& patient) const;

    int PrepareLoad();
    arcSStatusWork LoadingWork() const;
    bool TakeUnpacked();
    bool Place();
    bool Carry();
    void Notify(int nEvent, const CString& strGUID) const;

    CWnd* const m_pOwner;
    const HWND m_hHost; ///< the host may destroy its window, and with it the object, at any time
    std::unique_ptr<arcCStatusThread> m_pThread;
    bool m_bHostCloses = false;
    Work m_nWork = Work::None;
    int m_nResult = 0;
    CString m_strLockedID;    ///< of the lock that this manager holds; empty for none
    bool m_bPassable = false; ///< the patient is in use, but may be archived; nothing is recorded then

    arcSSave m_save;
    arc::RecordFile m_recordFile; ///< ".ACV" of the save under way
    std::string m_record;         ///< what it holds
    std::shared_ptr<std::vector<arc::PresentFile>>
        m_pStored; ///< what the zip of that save holds, as it went in
    arcSLoad m_load;
    bool m_bLeftBehind = false;
    std::unique_ptr<class arcCLoading> m_pLoading; ///< the load or merge under way
};
