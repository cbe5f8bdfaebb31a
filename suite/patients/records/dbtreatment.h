#pragma once

#include "suite/patients/store/dblist.h"
#include "suite/patients/store/patdefs.h"
#include "suite/util/veldate.h"

/// A treatment that patients can be given.
class VELPAT_API dbCTreatmentStatusRow
{
public:
    const CString& GetCode() const
    {
        return m_strCode;
    }
    const CString& GetDescription() const
    {
        return m_strDescription;
    }
    void SetCode(LPCTSTR psz)
    {
        m_strCode = psz;
    }
    void SetDescription(LPCTSTR psz)
    {
        m_strDescription = psz;
    }

private:
    CString m_strCode, m_strDescription;
};

/// The practice's treatments in table order.
class VELPAT_API dbCTreatmentStatusContainer : public dbTList<dbCTreatmentStatusRow>
{
public:
    /// Reads the treatments; with `bActiveOnly` those in use.
    explicit dbCTreatmentStatusContainer(BOOL bActiveOnly);

    /// Appends a treatment to the table; dbErrInvalid when the code exists.
    static void AddTreatment(LPCTSTR pszCode, LPCTSTR pszDescription, BOOL bActive = TRUE);
};

/// One entry of a patient's treatment history.
class VELPAT_API dbCPatientTreatmentStatusHistoryRow
{
public:
    const CString& GetptshID() const
    {
        return m_strPtshID;
    }
    const CString& GetpatID() const
    {
        return m_strPatID;
    }
    const CString& GetDescription() const
    {
        return m_strDescription;
    }
    const CString& GetNewCode() const
    {
        return m_strNewCode;
    }
    int GetActive() const
    {
        return m_nActive;
    }
    const velCDate& GetDateTime() const
    {
        return m_dateTime;
    }

    void SetptshID(LPCTSTR psz)
    {
        m_strPtshID = psz;
    }
    /// The patient's GUID.
    void SetpatID(LPCTSTR psz)
    {
        m_strPatID = psz;
    }
    void SetDescription(LPCTSTR psz)
    {
        m_strDescription = psz;
    }
    void SetNewCode(LPCTSTR psz)
    {
        m_strNewCode = psz;
    }
    /// -1 active, 0 ended.
    void SetActive(int nActive)
    {
        m_nActive = nActive;
    }
    void SetDateTime(const velCDate& date)
    {
        m_dateTime = date;
    }

private:
    CString m_strPtshID, m_strPatID, m_strDescription, m_strNewCode;
    int m_nActive = -1;
    velCDate m_dateTime;
};

/// A patient's treatment history, oldest first.
class VELPAT_API dbCPatientTreatmentStatusHistoryTable : public dbTList<dbCPatientTreatmentStatusHistoryRow>
{
public:
    void LoadByPatID(LPCTSTR pszPatientGUID);
    /// Stores a row at once and gives it its ptshID.
    void InsertRow(dbCPatientTreatmentStatusHistoryRow& row);
};

/// A stored timepoint as a row.
class VELPAT_API dbCTimepointsRow
{
public:
    const CString& GettpID() const
    {
        return m_strTpID;
    }
    const CString& GetDescription() const
    {
        return m_strDescription;
    }
    const velCDate& GetDateTime() const
    {
        return m_dateTime;
    }
    const CString& GetptshID() const
    {
        return m_strPtshID;
    }
    int GetNumber() const
    {
        return m_nNumber;
    }
    BOOL IsActive() const
    {
        return m_bActive;
    }

private:
    friend class dbCTimepointsContainer;
    CString m_strTpID, m_strDescription, m_strPtshID;
    velCDate m_dateTime;
    int m_nNumber = 0;
    BOOL m_bActive = TRUE;
};

/// The stored timepoints of a patient in list order.
class VELPAT_API dbCTimepointsContainer : public dbTList<dbCTimepointsRow>
{
public:
    /// Reads the timepoints of a patient (GUID); with `nInactive` nonzero only the inactive ones, else all,
    /// so that positions are those of the patient's list. TRUE when there is any.
    BOOL LoadByPatID(LPCTSTR pszPatientGUID, int nInactive);
    /// Shows an inactive timepoint again; FALSE when there is no such timepoint.
    static BOOL Reactivate(LPCTSTR pszTpID);
};
