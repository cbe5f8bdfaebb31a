#pragma once

#include "suite/patients/store/dblist.h"
#include "suite/patients/store/patdefs.h"

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
    /// Stores a task at once and sets its number.
    static void InsertRow(dbSRaskoTask& task);
};

/// What the service calls a patient of this practice.
struct dbSServicePatient
{
    CString strPatientGUID, strServiceID, strServiceGUID;
};

class VELPAT_API dbCServicePatients
{
public:
    /// FALSE, with `row` unchanged, when the patient has no row.
    static BOOL FindByGUID(LPCTSTR pszPatientGUID, dbSServicePatient& row);
    /// The patient that the service knows by this ID.
    static BOOL FindByServiceID(LPCTSTR pszServiceID, dbSServicePatient& row);
    static void Store(const dbSServicePatient& row);
};
