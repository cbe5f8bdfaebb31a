#pragma once

#include "suite/patients/records/dbperson.h"
#include "suite/patients/store/dblist.h"
#include "suite/patients/store/patdefs.h"

/// The e-mail addresses of a person, a doctor as a rule; the first is the one that the person's record shows.
class VELPAT_API dbCPersonEmails : public dbTList<CString>
{
public:
    /// FALSE for a database that has one address a person only; Save then throws.
    static BOOL TableExists();
    /// Reads a person's addresses; none for an unknown GUID.
    void LoadByPersonGUID(LPCTSTR pszPersonGUID);
    /// Writes the addresses at once, blank ones left out. A doctor read before has then to be read again.
    /// dbErrNotFound for an unknown GUID.
    void Save(LPCTSTR pszPersonGUID);
};

/// Somebody around a patient who can be written to.
struct dbSPatientEmail
{
    CString strPersonID, strCategory, strType, strSalutation, strFirstname, strLastname, strAddress;
};

/// The patient-related e-mail addresses (patientEmails): those that the records of the patient and the
/// guardian have, under the categories "patient" and "guardian", and the rows of others.
class VELPAT_API dbCPatientEmailsContainer : public dbTList<dbSPatientEmail>
{
public:
    /// FALSE for a database without the table; there are then no rows, and Save throws.
    static BOOL TableExists();
    /// Reads the patient's addresses, the guardian's, then the others in their order. Returns how many.
    int LoadByPatID(LPCTSTR pszPatientGUID);
    /// Reads the others alone.
    int LoadOthersByPatID(LPCTSTR pszPatientGUID);
    /// Replaces the others at once; what the records of patient and guardian have is left out. dbErrNotFound
    /// for an unknown GUID or without the table.
    void Save(LPCTSTR pszPatientGUID) const;

private:
    void AddPerson(const dbCPerson& person, LPCTSTR pszCategory);
    /// Whether a row gives this person this address.
    BOOL Contains(const dbSPatientEmail& row) const;
    void LoadRecords(__int64 nPatient);
    void LoadOthers(__int64 nPatient);
};

/// The name of this computer, as tasks and locks carry it; never empty.
VELPAT_API CString dbGetComputerName();
