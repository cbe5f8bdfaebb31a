#pragma once

#include "suite/patients/store/dblist.h"
#include "suite/patients/store/patdefs.h"
#include "suite/util/veldate.h"

/// The type of a referral by a doctor, the only one that forms know.
#define DB_REFERRAL_DOC "DOC"

/// One referral of a patient. The doctor's names are those of the doctor's record when it was read.
class VELPAT_API dbCPatientReferralsRow
{
public:
    const CString& Get_refID() const
    {
        return m_strRefID;
    }
    const CString& Get_docID() const
    {
        return m_strDocID;
    }
    const CString& Get_type() const
    {
        return m_strType;
    }
    const CString& Get_note() const
    {
        return m_strNote;
    }
    const velCDate& Get_date() const
    {
        return m_date;
    }
    const CString& Get_docFirstname() const
    {
        return m_strDocFirst;
    }
    const CString& Get_docLastname() const
    {
        return m_strDocLast;
    }
    const CString& Get_docEmail() const
    {
        return m_strDocEmail;
    }

    void Set_refID(LPCTSTR psz)
    {
        m_strRefID = psz;
    }
    void Set_docID(LPCTSTR psz)
    {
        m_strDocID = psz;
    }
    void Set_type(LPCTSTR psz)
    {
        m_strType = psz;
    }
    void Set_note(LPCTSTR psz)
    {
        m_strNote = psz;
    }
    void Set_date(const velCDate& date)
    {
        m_date = date;
    }
    void Set_doctor(LPCTSTR pszFirst, LPCTSTR pszLast, LPCTSTR pszEmail);

private:
    CString m_strRefID, m_strDocID, m_strType, m_strNote, m_strDocFirst, m_strDocLast, m_strDocEmail;
    velCDate m_date;
};

/// A patient's referrals in their order; the first is the one that stands for "the" referring doctor. Changes
/// are kept here until the patient that owns the container is saved.
class VELPAT_API dbCPatientReferralsContainer : public dbTList<dbCPatientReferralsRow>
{
public:
    /// Reads the rows of a patient with the doctors' names; the container is emptied first. TRUE when there
    /// is any.
    BOOL LoadWithDoctor(LPCTSTR pszPatientGUID);

    /// Appends a referral by a doctor, type "DOC". Returns its index, or -1 for an empty doctor GUID.
    int AddReferralDoc(LPCTSTR pszDoctorGUID, const velCDate& date, LPCTSTR pszNote = "");

    /// Gives a row another doctor.
    void UpdateDocID(int nIndex, LPCTSTR pszDoctorGUID);
};
