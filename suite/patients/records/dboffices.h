#pragma once

#include "suite/patients/store/dblist.h"
#include "suite/patients/store/patdefs.h"

/// An office of the practice.
class VELPAT_API dbCOfficeLocation
{
public:
    const CString& GetOfficeID() const
    {
        return m_strID;
    }
    const CString& GetOffice() const
    {
        return m_strName;
    }
    void SetOfficeID(LPCTSTR psz)
    {
        m_strID = psz;
    }
    void SetOffice(LPCTSTR psz)
    {
        m_strName = psz;
    }

private:
    CString m_strID, m_strName;
};

/// The practice's offices in the order of their names.
class VELPAT_API dbCOfficeLocations : public dbTList<dbCOfficeLocation>
{
public:
    void Load();
    /// Name of the office with this ID, read from the database; empty when there is none.
    static CString GetOffice(LPCTSTR pszOfficeID);
    /// Stores a new office and returns its ID; dbErrInvalid for an empty name or one that exists.
    CString AddOffice(LPCTSTR pszName);
};

/// A status that patients can have, such as "In treatment".
class VELPAT_API dbCPatientStatus
{
public:
    const CString& GetStatusID() const
    {
        return m_strID;
    }
    const CString& GetStatus() const
    {
        return m_strName;
    }
    void SetStatusID(LPCTSTR psz)
    {
        m_strID = psz;
    }
    void SetStatus(LPCTSTR psz)
    {
        m_strName = psz;
    }

private:
    CString m_strID, m_strName;
};

/// The practice's patient statuses in the order of their names.
class VELPAT_API dbCPatientStatusList : public dbTList<dbCPatientStatus>
{
public:
    void Load();
    /// Name of the status with this ID, read from the database; empty when there is none.
    static CString GetStatus(LPCTSTR pszStatusID);
    CString AddStatus(LPCTSTR pszName);
};
