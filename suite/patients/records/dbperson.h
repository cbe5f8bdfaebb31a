#pragma once

#include "suite/patients/store/dblist.h"
#include "suite/patients/store/patdefs.h"
#include "suite/util/veldate.h"

/// A postal address. Type "H" is a home address, "O" an office address.
class VELPAT_API dbCAddress
{
public:
    const CString& GetType() const
    {
        return m_strType;
    }
    const CString& GetCompany() const
    {
        return m_strCompany;
    }
    const CString& GetStreet() const
    {
        return m_strStreet;
    }
    const CString& GetCity() const
    {
        return m_strCity;
    }
    const CString& GetState() const
    {
        return m_strState;
    }
    const CString& GetPostalCode() const
    {
        return m_strPostalCode;
    }
    const CString& GetCountry() const
    {
        return m_strCountry;
    }

    void SetType(LPCTSTR psz)
    {
        m_strType = psz;
    }
    void SetCompany(LPCTSTR psz)
    {
        m_strCompany = psz;
    }
    void SetStreet(LPCTSTR psz)
    {
        m_strStreet = psz;
    }
    void SetCity(LPCTSTR psz)
    {
        m_strCity = psz;
    }
    void SetState(LPCTSTR psz)
    {
        m_strState = psz;
    }
    void SetPostalCode(LPCTSTR psz)
    {
        m_strPostalCode = psz;
    }
    void SetCountry(LPCTSTR psz)
    {
        m_strCountry = psz;
    }

    /// TRUE when every field but type and country (which forms prefill) is empty.
    BOOL IsEmpty() const;

private:
    CString m_strType = "H";
    CString m_strCompany, m_strStreet, m_strCity, m_strState, m_strPostalCode, m_strCountry;
};

/// A phone number with its type, one of the names below or text of another system.
class VELPAT_API dbCPhone
{
public:
    dbCPhone() = default;
    dbCPhone(LPCTSTR pszNumber, LPCTSTR pszType) : m_strNumber(pszNumber), m_strType(pszType)
    {
    }

    const CString& GetNumber() const
    {
        return m_strNumber;
    }
    const CString& GetType() const
    {
        return m_strType;
    }
    void SetNumber(LPCTSTR psz)
    {
        m_strNumber = psz;
    }
    void SetType(LPCTSTR psz)
    {
        m_strType = psz;
    }

    /// The phone types a form offers, in display order ("Home", "Work", ...); no empty placeholder among
    /// them.
    static int GetTypeCount();
    static CString GetTypeName(int nIndex);

private:
    CString m_strNumber, m_strType;
};

using dbCAddresses = dbTList<dbCAddress>;
using dbCPhones = dbTList<dbCPhone>;

/// A person other than the patient: guardian or doctor. A value; the patient or doctor it belongs to stores
/// it.
class VELPAT_API dbCPerson
{
public:
    /// Empty until the person has been stored.
    const CString& GetPersonGUID() const
    {
        return m_strGUID;
    }
    void SetPersonGUID(LPCTSTR psz)
    {
        m_strGUID = psz;
    }

    const CString& GetTitle() const
    {
        return m_strTitle;
    }
    const CString& GetFirstname() const
    {
        return m_strFirstname;
    }
    const CString& GetLastname() const
    {
        return m_strLastname;
    }
    const CString& GetNickname() const
    {
        return m_strNickname;
    }
    const CString& GetSalutation() const
    {
        return m_strSalutation;
    }
    const CString& GetNotes() const
    {
        return m_strNotes;
    }
    const CString& GetEmail() const
    {
        return m_strEmail;
    }
    const velCDate& GetBirthdate() const
    {
        return m_dateBirth;
    }
    /// 1 female, 2 male, 0 not known.
    int GetGender() const
    {
        return m_nGender;
    }

    void SetTitle(LPCTSTR psz)
    {
        m_strTitle = psz;
    }
    void SetFirstname(LPCTSTR psz)
    {
        m_strFirstname = psz;
    }
    void SetLastname(LPCTSTR psz)
    {
        m_strLastname = psz;
    }
    void SetNickname(LPCTSTR psz)
    {
        m_strNickname = psz;
    }
    void SetSalutation(LPCTSTR psz)
    {
        m_strSalutation = psz;
    }
    void SetNotes(LPCTSTR psz)
    {
        m_strNotes = psz;
    }
    void SetEmail(LPCTSTR psz)
    {
        m_strEmail = psz;
    }
    void SetBirthdate(const velCDate& date)
    {
        m_dateBirth = date;
    }
    void SetGender(int nGender)
    {
        m_nGender = nGender;
    }

    dbCAddresses& GetAddresses()
    {
        return m_addresses;
    }
    const dbCAddresses& GetAddresses() const
    {
        return m_addresses;
    }
    dbCPhones& GetPhones()
    {
        return m_phones;
    }
    const dbCPhones& GetPhones() const
    {
        return m_phones;
    }

    /// The address or phone at an index, an empty one when there is none.
    dbCAddress GetAddress(int nIndex = 0) const;
    dbCPhone GetPhone(int nIndex) const;

    /// Stores an address or phone at an index; the list grows as needed.
    void SetAddress(int nIndex, const dbCAddress& address);
    void SetPhone(int nIndex, const dbCPhone& phone);

private:
    CString m_strGUID, m_strTitle, m_strFirstname, m_strLastname, m_strNickname, m_strSalutation, m_strNotes,
        m_strEmail;
    velCDate m_dateBirth;
    int m_nGender = 0;
    dbCAddresses m_addresses;
    dbCPhones m_phones;
};
