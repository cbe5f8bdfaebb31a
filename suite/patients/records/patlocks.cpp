#include "suite/patients/records/patlocks.h"

#include "suite/patients/store/dbcore.h"
#include "suite/patients/records/dbpatients.h"
#include "suite/patients/store/dbtext.h"
#include "suite/patients/store/dbtransaction.h"
#include "suite/patients/store/patmodule.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace
{
/// A process, told from a later one with the same number by its start time.
struct Process
{
    __int64 nID = 0;
    __int64 nStart = 0; ///< 100 ns since 1601
};

__int64 StartTime(HANDLE hProcess)
{
    FILETIME created{}, exited{}, kernel{}, user{};
    if (!GetProcessTimes(hProcess, &created, &exited, &kernel, &user))
        return 0;
    return static_cast<__int64>((static_cast<unsigned __int64>(created.dwHighDateTime) << 32) |
                                created.dwLowDateTime);
}

const Process& OwnProcess()
{
    static const Process own{GetCurrentProcessId(), StartTime(GetCurrentProcess())};
    return own;
}

struct ProcessCloser
{
    void operator()(HANDLE hProcess) const
    {
        CloseHandle(hProcess);
    }
};

/// Whether a process of this computer has certainly ended. What cannot be asked counts as running.
bool HasEnded(const Process& process)
{
    const std::unique_ptr<void, ProcessCloser> handle(
        OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION | SYNCHRONIZE, FALSE, static_cast<DWORD>(process.nID)));
    if (!handle)
        return GetLastError() == ERROR_INVALID_PARAMETER;
    return WaitForSingleObject(handle.get(), 0) == WAIT_OBJECT_0 || StartTime(handle.get()) != process.nStart;
}

/// How often this process holds each patient (folded ID). The database has one row per patient and process.
std::map<std::string, int>& OwnLocks()
{
    static std::map<std::string, int> locks;
    return locks;
}

struct Holder
{
    CString strUser, strComputer;
    Process process;
    int nMode = patLockExclusive;
};

std::vector<Holder> OtherHolders(LPCTSTR pszID)
{
    dbCStatement query("SELECT userName, computer, process, processStart, mode FROM locks WHERE patientID = ?"
                       " AND NOT (computer = ? AND process = ? AND processStart = ?) ORDER BY mode, time");
    query.Bind(pszID).Bind(patComputerName()).Bind(OwnProcess().nID).Bind(OwnProcess().nStart);
    std::vector<Holder> holders;
    while (query.Step())
        holders.push_back({query.TextForDisplay(0),
                           query.TextForDisplay(1),
                           {query.Int64(2), query.Int64(3)},
                           query.Int(4)});
    return holders;
}

void RemoveLock(LPCTSTR pszID, const CString& strComputer, const Process& process)
{
    dbCStatement(
        "DELETE FROM locks WHERE patientID = ? AND computer = ? AND process = ? AND processStart = ?")
        .Bind(pszID)
        .Bind(strComputer)
        .Bind(process.nID)
        .Bind(process.nStart)
        .Run();
}

/// The answer for this process, with dead holders removed.
int Ask(LPCTSTR pszID, CString* pstrHolder)
{
    for (const Holder& holder : OtherHolders(pszID))
    {
        if (holder.strComputer == patComputerName() && HasEnded(holder.process))
        {
            RemoveLock(pszID, holder.strComputer, holder.process);
            continue;
        }
        if (pstrHolder)
            *pstrHolder = holder.strUser;
        // Exclusive holders come first.
        return holder.nMode == patLockExclusive ? patLockInUse : patLockPassable;
    }
    return patLockFree;
}

void StoreLock(LPCTSTR pszID, int nMode)
{
    dbCStatement insert(
        "INSERT INTO locks (patientID, computer, process, processStart, userName, mode, time)"
        " VALUES (?, ?, ?, ?, ?, ?, ?) ON CONFLICT DO UPDATE SET mode = min(mode, excluded.mode)");
    insert.Bind(pszID)
        .Bind(patComputerName())
        .Bind(OwnProcess().nID)
        .Bind(OwnProcess().nStart)
        .Bind(patUserName());
    insert.Bind(nMode).BindDateTime(COleDateTime::GetCurrentTime()).Run();
}
} // namespace

int patCPatients::IsLocked(LPCTSTR pszID, CString* pstrHolder)
{
    if (pstrHolder)
        pstrHolder->Empty();
    try
    {
        return Ask(pszID, pstrHolder);
    }
    catch (CException* e)
    {
        e->Delete();
        return patLockFailed;
    }
}

int patCPatients::LockPatient(LPCTSTR pszID, int nMode, CString* pstrHolder)
{
    if (pstrHolder)
        pstrHolder->Empty();
    try
    {
        dbCTransaction transaction;
        const int nAnswer = Ask(pszID, pstrHolder);
        // Those who only look do not keep each other out.
        const bool bGranted =
            nAnswer == patLockFree || (nAnswer == patLockPassable && nMode == patLockShared);
        if (bGranted)
        {
            StoreLock(pszID, nMode);
            const std::string key = dbFold(pszID);
            ++OwnLocks()[key];
            dbCTransaction::AtEnd([key] {
                if (--OwnLocks()[key] == 0)
                    OwnLocks().erase(key);
            });
        }
        transaction.Commit();
        return bGranted ? patLockFree : nAnswer;
    }
    catch (CException* e)
    {
        e->Delete();
        return patLockFailed;
    }
}

BOOL patCPatients::Unlock(LPCTSTR pszID)
{
    const auto held = OwnLocks().find(dbFold(pszID));
    if (held == OwnLocks().end())
        return FALSE;
    if (held->second == 1)
        RemoveLock(pszID, patComputerName(), OwnProcess());
    if (--held->second == 0)
        OwnLocks().erase(held);
    return TRUE;
}

void patCPatients::BreakLock(LPCTSTR pszID)
{
    dbCStatement("DELETE FROM locks WHERE patientID = ?").Bind(pszID).Run();
    OwnLocks().erase(dbFold(pszID));
}

void patMoveLock(LPCTSTR pszOldID, LPCTSTR pszNewID)
{
    CString strHolder;
    if (Ask(pszNewID, &strHolder) != patLockFree)
        dbCException::Throw(dbErrPatientInUse, strHolder);
    const std::string oldKey = dbFold(pszOldID), newKey = dbFold(pszNewID);
    const auto held = OwnLocks().find(oldKey);
    if (held == OwnLocks().end() || oldKey == newKey)
        return;
    dbCStatement("UPDATE OR REPLACE locks SET patientID = ? WHERE patientID = ? AND computer = ? AND process = ?"
                 " AND processStart = ?")
        .Bind(pszNewID)
        .Bind(pszOldID)
        .Bind(patComputerName())
        .Bind(OwnProcess().nID)
        .Bind(OwnProcess().nStart)
        .Run();
    dbCTransaction::AtEnd([locks = OwnLocks()] { OwnLocks() = locks; });
    OwnLocks()[newKey] += held->second;
    OwnLocks().erase(oldKey);
}

void patReleaseOwnLocks() noexcept
{
    OwnLocks().clear();
    try
    {
        dbCStatement("DELETE FROM locks WHERE computer = ? AND process = ? AND processStart = ?")
            .Bind(patComputerName())
            .Bind(OwnProcess().nID)
            .Bind(OwnProcess().nStart)
            .Run();
    }
    catch (CException* e)
    {
        e->Delete();
    }
    catch (...)
    {
    }
}
