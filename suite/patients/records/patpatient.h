#pragma once

#include "suite/patients/records/dbperson.h"
#include "suite/patients/records/pattimepoint.h"

class CComboBox;

/// Name forms of GetLastname and GetFirstname.
enum patNameForm
{
    patNameAsEntered = 0, ///< exactly as stored, for captions and fields
    patNameForText =
        1 ///< for sentences: no blanks at the ends, control characters as blanks, runs of blanks as one
};

/// One patient's own data: identity, names, details and timepoints. Storage is dbCPatient's.
class VELPAT_API patCPatient
{
public:
    patCPatient();
    virtual ~patCPatient() = default;

    const CString& GetID() const
    {
        return m_f.strID;
    }
    const CString& GetGUID() const
    {
        return m_f.strGUID;
    }
    CString GetLastname(int nForm = patNameAsEntered) const;
    CString GetFirstname(int nForm = patNameAsEntered) const;
    const velCDate& GetBirthdate() const
    {
        return m_f.dateBirth;
    }
    /// The birth date as the database writes it, "YYYY-MM-DD" whatever the user's locale; empty when there is
    /// none.
    CString FormatBirthdate() const;
    /// 1 female, 2 male, 0 not known.
    int GetGender() const
    {
        return m_f.nGender;
    }
    /// 0 not given, 1 female, 2 male, 3 non-binary.
    int GetGenderIdentity() const
    {
        return m_f.nGenderIdentity;
    }
    /// Race code, 0 for not given.
    int GetRace() const
    {
        return m_f.nRace;
    }
    const CString& GetNickname() const
    {
        return m_f.strNickname;
    }
    const CString& GetEmail() const
    {
        return m_f.strEmail;
    }
    const CString& GetTitle() const
    {
        return m_f.strTitle;
    }
    const CString& GetSalutation() const
    {
        return m_f.strSalutation;
    }
    /// At most 10 characters.
    const CString& GetModelNumber() const
    {
        return m_f.strModelNumber;
    }
    const CString& GetKeywords() const
    {
        return m_f.strKeywords;
    }
    const CString& GetNotes() const
    {
        return m_f.strNotes;
    }
    /// The state of the 32 permanent teeth, one letter each (P present, M missing, X extracted) in the order
    /// 18 to 11, 21 to 28, 48 to 41, 31 to 38; empty when all are present.
    const CString& GetTeeth() const
    {
        return m_f.strTeeth;
    }
    const CString& GetOfficeID() const
    {
        return m_f.strOfficeID;
    }
    const CString& GetStatusID() const
    {
        return m_f.strStatusID;
    }
    /// The record's own date: the day the patient was first stored.
    const velCDate& GetDate() const
    {
        return m_f.dateRecord;
    }
    /// The service's name of this record, empty when it was never shared.
    const CString& GetVeltrixID() const
    {
        return m_f.strVeltrixID;
    }
    /// The set of normative values the patient is measured against, 0 for the default.
    int GetNorm() const
    {
        return m_f.nNorm;
    }

    /// For a new record that must keep the GUID it has elsewhere (a downloaded patient). A stored one's never
    /// changes.
    void SetGUID(LPCTSTR psz)
    {
        if (!m_bStored)
            m_f.strGUID = psz;
    }
    void SetLastname(LPCTSTR psz)
    {
        m_f.strLastname = psz;
    }
    void SetFirstname(LPCTSTR psz)
    {
        m_f.strFirstname = psz;
    }
    void SetBirthdate(const velCDate& date)
    {
        m_f.dateBirth = date;
    }
    void SetGender(int nGender)
    {
        m_f.nGender = nGender;
    }
    void SetGenderIdentity(int nIdentity)
    {
        m_f.nGenderIdentity = nIdentity;
    }
    void SetRace(int nCode)
    {
        m_f.nRace = nCode;
    }
    void SetNickname(LPCTSTR psz)
    {
        m_f.strNickname = psz;
    }
    void SetEmail(LPCTSTR psz)
    {
        m_f.strEmail = psz;
    }
    void SetTitle(LPCTSTR psz)
    {
        m_f.strTitle = psz;
    }
    void SetSalutation(LPCTSTR psz)
    {
        m_f.strSalutation = psz;
    }
    void SetModelNumber(LPCTSTR psz)
    {
        m_f.strModelNumber = psz;
    }
    void SetKeywords(LPCTSTR psz)
    {
        m_f.strKeywords = psz;
    }
    void SetNotes(LPCTSTR psz)
    {
        m_f.strNotes = psz;
    }
    void SetTeeth(LPCTSTR psz)
    {
        m_f.strTeeth = psz;
    }
    void SetOfficeID(LPCTSTR psz)
    {
        m_f.strOfficeID = psz;
    }
    void SetStatusID(LPCTSTR psz)
    {
        m_f.strStatusID = psz;
    }
    void SetDate(const velCDate& date)
    {
        m_f.dateRecord = date;
    }
    void SetVeltrixID(LPCTSTR psz)
    {
        m_f.strVeltrixID = psz;
    }
    void SetNorm(int nNorm)
    {
        m_f.nNorm = nNorm;
    }

    /// TRUE when the record is one of the database: loaded from it or saved into it.
    BOOL IsValid() const
    {
        return m_bStored;
    }

    patCTimepoints& GetTimepoints()
    {
        return m_timepoints;
    }
    const patCTimepoints& GetTimepoints() const
    {
        return m_timepoints;
    }

    /// The timepoint at a position, an empty one when there is none; and its replacement (position must be
    /// valid).
    virtual patCTimepoint GetTimepoint(int nIndex) const;
    virtual void SetTimepoint(int nIndex, const patCTimepoint& timepoint);

    /// Fills a drop-down list with the patient's treatments, oldest first, and `ptshIDs` in parallel with
    /// their history ids; each entry's item data is its index in `ptshIDs`. `bActiveOnly` leaves ended
    /// treatments out, `bWithNew` appends the entry for "a new treatment" with an empty id. Returns the
    /// number of entries.
    virtual int FillTreatmentList(CComboBox& combo, CStringArray& ptshIDs, BOOL bActiveOnly,
                                  BOOL bWithNew) const;

protected:
    struct Fields
    {
        CString strID, strGUID, strLastname, strFirstname, strNickname, strEmail, strTitle, strSalutation;
        CString strModelNumber, strKeywords, strNotes, strTeeth, strOfficeID, strStatusID, strVeltrixID;
        velCDate dateBirth, dateRecord;
        int nGender = 0, nGenderIdentity = 0, nRace = 0, nNorm = 0;
    };

    Fields m_f;
    patCTimepoints m_timepoints;
    BOOL m_bStored = FALSE;
};
