#pragma once

#include "suite/patients/records/dbperson.h"

/// A patient's insurance policy. A value; the patient stores it.
class VELPAT_API dbCInsurance
{
public:
    /// A new policy with a GUID of its own.
    dbCInsurance();

    const CString& GetInsuranceGUID() const
    {
        return m_strGUID;
    }
    const CString& GetCompanyGUID() const
    {
        return m_strCompanyGUID;
    }
    /// The company's name when the policy was read.
    const CString& GetCompanyName() const
    {
        return m_strCompanyName;
    }
    const CString& GetHolder() const
    {
        return m_strHolder;
    }
    const CString& GetNumber() const
    {
        return m_strNumber;
    }
    const CString& GetGroup() const
    {
        return m_strGroup;
    }
    const CString& GetNote() const
    {
        return m_strNote;
    }

    void SetInsuranceGUID(LPCTSTR psz)
    {
        m_strGUID = psz;
    }
    void SetCompanyGUID(LPCTSTR psz)
    {
        m_strCompanyGUID = psz;
    }
    void SetCompanyName(LPCTSTR psz)
    {
        m_strCompanyName = psz;
    }
    void SetHolder(LPCTSTR psz)
    {
        m_strHolder = psz;
    }
    void SetNumber(LPCTSTR psz)
    {
        m_strNumber = psz;
    }
    void SetGroup(LPCTSTR psz)
    {
        m_strGroup = psz;
    }
    void SetNote(LPCTSTR psz)
    {
        m_strNote = psz;
    }

private:
    CString m_strGUID, m_strCompanyGUID, m_strCompanyName, m_strHolder, m_strNumber, m_strGroup, m_strNote;
};

using dbCInsurances = dbTList<dbCInsurance>;

/// An insurance company of the practice's list.
class VELPAT_API dbCInsuranceCompany
{
public:
    const CString& GetCompanyGUID() const
    {
        return m_strGUID;
    }
    const CString& GetName() const
    {
        return m_strName;
    }
    const CString& GetPhone() const
    {
        return m_strPhone;
    }
    const CString& GetNote() const
    {
        return m_strNote;
    }
    const dbCAddress& GetAddress() const
    {
        return m_address;
    }

    void SetCompanyGUID(LPCTSTR psz)
    {
        m_strGUID = psz;
    }
    void SetName(LPCTSTR psz)
    {
        m_strName = psz;
    }
    void SetPhone(LPCTSTR psz)
    {
        m_strPhone = psz;
    }
    void SetNote(LPCTSTR psz)
    {
        m_strNote = psz;
    }
    void SetAddress(const dbCAddress& address)
    {
        m_address = address;
    }

    /// Writes the company at once; a new one gets its GUID. dbErrInvalid without a name.
    void Save();

private:
    CString m_strGUID, m_strName, m_strPhone, m_strNote;
    dbCAddress m_address;
};

/// The practice's insurance companies, in the order of their names.
class VELPAT_API dbCInsuranceCompanies : public dbTList<dbCInsuranceCompany>
{
public:
    void Load();
    /// GUID of the company with this name (any letter case, blanks at the ends ignored); a name that the practice
    /// does not have is added, once, however many seats ask. dbErrInvalid for an empty name.
    static CString FindOrAdd(LPCTSTR pszName);
    /// Position of a company in the loaded list, -1 when it is not there.
    int Find(LPCTSTR pszCompanyGUID) const;
    /// Removes a company from the database and the list; dbErrInUse while a policy names it.
    void Delete(LPCTSTR pszCompanyGUID);
};
