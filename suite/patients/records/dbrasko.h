#pragma once

#include "suite/patients/store/dblist.h"
#include "suite/patients/store/patdefs.h"

class dbCStatement;

/// One task of the background transfer program.
struct dbSRaskoTask
{
    enum
    {
        UPLOAD = 0,
        DOWNLOAD = 1,
        STATUS_QUEUED = -2,
        STATUS_FINISHED = 100 ///< and above; everything below is pending
    };

    __int64 nTask = 0; ///< 0 until stored
    int nType = UPLOAD;
    int nStatus = STATUS_QUEUED;
    __int64 nTotalBytes = 0;
    CString strPatientID; ///< the patient's ID on the service
    CString strPatientGUID;
    CString strDescription, strData, strQueueComputer;
    CString strReason; ///< why it waits or has failed; a sentence
};

/// The table of transfer tasks (raskoTasks), shared with the transfer program.
class VELPAT_API dbCRaskoTasksContainer : public dbTList<dbSRaskoTask>
{
public:
    static BOOL TableExists();
    /// Reads the tasks of a patient (GUID) with a status below 100. Returns how many.
    int LoadPending(LPCTSTR pszPatientGUID);
    /// Reads the tasks that a computer has queued, beginning with the task nFirst, without their data.
    /// Returns how many.
    int LoadQueuedBy(LPCTSTR pszComputer, __int64 nFirst);
    /// Reads the tasks of a computer with a status below 100, in the order of queueing. Returns how many.
    int LoadPendingOfComputer(LPCTSTR pszComputer);
    /// FALSE, with `task` unchanged, when there is no such row.
    static BOOL FindRow(__int64 nTask, dbSRaskoTask& task);
    /// Writes status, byte total and reason of a stored task; nothing when the row is gone.
    static void UpdateRow(const dbSRaskoTask& task);
    /// Stores a task at once and sets its number.
    static void InsertRow(dbSRaskoTask& task);

private:
    int ReadAll(dbCStatement& query);
};

/// What the service calls a patient of this practice.
struct dbSServicePatient
{
    CString strPatientGUID, strServiceID, strServiceGUID;
    CString strOwnerGUID{}; ///< the account that owns the record; empty while it is not known
};

class VELPAT_API dbCServicePatients
{
public:
    /// FALSE, with `row` unchanged, when the patient has no row.
    static BOOL FindByGUID(LPCTSTR pszPatientGUID, dbSServicePatient& row);
    /// The patient that the service knows by this ID.
    static BOOL FindByServiceID(LPCTSTR pszServiceID, dbSServicePatient& row);
    /// Inserts or updates the patient's row. An empty owner leaves the one that is known.
    static void Store(const dbSServicePatient& row);
};
