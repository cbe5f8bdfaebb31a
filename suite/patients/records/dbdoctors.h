#pragma once

#include "suite/patients/records/dbperson.h"
#include "suite/patients/store/dbrowversion.h"

#include <deque>
#include <string>

class CComboBox;

/// A doctor's record: a person with a doctor type. Its GUID is the person's.
class VELPAT_API dbCDoctor
{
public:
    /// Reads a doctor by GUID; FALSE, with the object unchanged, when there is none.
    BOOL Load(LPCTSTR pszGUID);

    /// Writes person, type, addresses and phones in one transaction; a new doctor gets a GUID. dbErrInvalid
    /// without a family name, dbErrChangedElsewhere when the record changed since it was loaded. A rollback
    /// of a transaction around it counts as if it had not been called; a new doctor keeps the GUID.
    void Save();

    /// Removes the stored doctor; dbErrInUse while a patient refers to it.
    void Delete();

    const CString& GetGUID() const
    {
        return m_person.GetPersonGUID();
    }
    dbCPerson& GetPerson()
    {
        return m_person;
    }
    const dbCPerson& GetPerson() const
    {
        return m_person;
    }

    /// Name of the doctor type (dbCDoctorTypes), empty for none.
    const CString& GetType() const
    {
        return m_strType;
    }
    void SetType(LPCTSTR psz)
    {
        m_strType = psz;
    }

    /// A doctor of this practice, offered as treating doctor; every doctor is offered as referring doctor.
    BOOL IsTreating() const
    {
        return m_bTreating;
    }
    void SetTreating(BOOL bTreating)
    {
        m_bTreating = bTreating;
    }

private:
    dbCPerson m_person;
    CString m_strType;
    BOOL m_bTreating = FALSE;
    dbCRowVersion m_version;
};

/// One doctor in an enumeration. The texts stay where they are until the enumerating object enumerates again
/// or is destroyed, so that their addresses can serve as item data.
struct dbSDoctorRow
{
    std::string guid, title, first, last, type;
    bool treating = false;
};

/// Receives one doctor; FALSE stops the enumeration.
using dbDOCTORENUMPROC = BOOL (*)(const dbSDoctorRow& row, LPVOID pContext);

enum dbDoctorOrder
{
    dbDoctorsAsStored = 0,
    dbDoctorsByName = 1 ///< family name, then given name, ignoring case
};

/// The practice's doctors.
class VELPAT_API dbCDoctors
{
public:
    void RegisterEnumCallback(dbDOCTORENUMPROC pfnCallback, LPVOID pContext);

    /// Reads all doctors in one query and hands each to the callback. Returns how many there are.
    int Enum(int nOrder = dbDoctorsByName);

private:
    dbDOCTORENUMPROC m_pfnCallback = nullptr;
    LPVOID m_pContext = nullptr;
    std::deque<dbSDoctorRow> m_rows;
};

/// The doctors of the practice itself.
class VELPAT_API dbCTreatingDoctors
{
public:
    /// Appends the treating doctors by name as "family name, given name". An entry's item data is a pointer
    /// to the doctor's GUID (const char*), which this object owns: valid until the next call or its
    /// destruction. Returns how many.
    int EnumTreatingDoctors(CComboBox& combo);

private:
    std::deque<dbSDoctorRow> m_rows;
};

/// The names that doctor types can have.
class VELPAT_API dbCDoctorTypes : public dbTList<CString>
{
public:
    /// Reads the types in alphabetical order.
    void Load();

    /// Each writes at once and returns TRUE on success: FALSE for an empty name, one that exists (any letter
    /// case) or an unknown old one. A rename goes through to the doctors of that type; deleting leaves them
    /// without type.
    BOOL AddDoctorType(LPCTSTR pszName);
    BOOL ModifyDoctorType(LPCTSTR pszOldName, LPCTSTR pszNewName);
    BOOL DeleteDoctorType(LPCTSTR pszName);
};
