#pragma once

#include "suite/patients/store/dblist.h"
#include "suite/patients/store/patdefs.h"

/// The e-mail addresses of a person, a doctor as a rule; the first is the one that the person's record shows.
class VELPAT_API dbCPersonEmails : public dbTList<CString>
{
public:
    /// FALSE for a database that has one address a person only; the other calls then throw.
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

/// The table of patient-related e-mail addresses (patientEmails).
class VELPAT_API dbCPatientEmailsContainer : public dbTList<dbSPatientEmail>
{
public:
    /// FALSE for a database without the table; it then has no rows, and Save throws.
    static BOOL TableExists();
    /// Reads a patient's rows in their order. Returns how many.
    int LoadByPatID(LPCTSTR pszPatientGUID);
    /// Replaces the patient's rows at once. dbErrNotFound for an unknown GUID or without the table.
    void Save(LPCTSTR pszPatientGUID) const;
};

/// The name of this computer, as tasks and locks carry it; never empty.
VELPAT_API CString dbGetComputerName();
