#pragma once

// Reading and writing a patient as a whole; inside the library only.

#include "suite/patients/store/dbcore.h"
#include "suite/patients/records/dbpatient.h"

class dbCPatientStore
{
public:
    /// Reads the patient in one state of the database; FALSE, `patient` unchanged, when there is none.
    static BOOL Load(dbCPatient& patient, LPCTSTR pszIDOrGUID, BOOL bByID, BOOL bByGUID);
    static void Save(dbCPatient& patient, int nOptions);

    /// Row of a patient; 0 when there is none.
    static __int64 FindRow(LPCTSTR pszGUID);

    /// Throws dbErrInvalid unless the text can be a patient ID and so part of file names.
    static void CheckID(const CString& strID);

private:
    static void LoadPersons(dbCPatient& patient, __int64 nRow);
    static void LoadInsurances(dbCPatient& patient, __int64 nRow);
    static void LoadTimepoints(dbCPatient& patient, __int64 nRow);

    static __int64 CheckVersion(const dbCPatient& patient);
    static void WritePatientRow(const dbCPatient& patient, __int64 nRow, bool bNew);
    static void SavePersons(const dbCPatient& patient, __int64 nRow);
    static void SaveGuardian(const dbCPatient& patient, __int64 nRow);
    static void SaveInsurances(const dbCPatient& patient, __int64 nRow);
    static void SaveTimepoints(dbCPatient& patient, __int64 nRow, bool bNew);
    static dbCPerson OwnPerson(const dbCPatient& patient);
};

/// Reads and writes a patient's referral rows.
void dbLoadReferrals(dbCPatientReferralsContainer& referrals, __int64 nPatientRow);
void dbSaveReferrals(dbCPatientReferralsContainer& referrals, __int64 nPatientRow);

/// Row number behind a GUID of a table of the practice's lists; 0 for an empty or unknown GUID.
__int64 dbFindListRow(const char* pszSql, LPCTSTR pszGUID);

/// Row of a doctor who is referred to; throws dbErrNotFound when there is none with this GUID.
__int64 dbRequireDoctor(LPCTSTR pszGUID);
