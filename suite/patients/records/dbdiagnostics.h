#pragma once

#include "suite/patients/store/dblist.h"
#include "suite/patients/store/patdefs.h"
#include "suite/util/veldate.h"

/// A diagnostic entry as it travels in a serialized patient.
class VELPAT_API dbCDiagnosticInfo
{
public:
    const CString& GetGroupTitle() const
    {
        return m_strGroupTitle;
    }
    const CString& GetItemCode() const
    {
        return m_strItemCode;
    }
    /// File number of the timepoint the entry belongs to, -1 for none.
    int GetTP() const
    {
        return m_nTP;
    }
    const CString& GetValue() const
    {
        return m_strValue;
    }
    const CString& GetNote() const
    {
        return m_strNote;
    }

    void SetGroupTitle(LPCTSTR psz)
    {
        m_strGroupTitle = psz;
    }
    void SetItemCode(LPCTSTR psz)
    {
        m_strItemCode = psz;
    }
    void SetTP(int nTP)
    {
        m_nTP = nTP;
    }
    void SetValue(LPCTSTR psz)
    {
        m_strValue = psz;
    }
    void SetNote(LPCTSTR psz)
    {
        m_strNote = psz;
    }

private:
    CString m_strGroupTitle, m_strItemCode, m_strValue, m_strNote;
    int m_nTP = -1;
};

using dbCDiagnosticInfos = dbTList<dbCDiagnosticInfo>;

/// One question of a diagnostic group.
class VELPAT_API dbCDiagnosticItem
{
public:
    const CString& GetItemCode() const
    {
        return m_strItemCode;
    }
    const CString& GetdtID() const
    {
        return m_strDtID;
    }
    const CString& GetTitle() const
    {
        return m_strTitle;
    }

private:
    friend class dbCDiagnosticGroup;
    CString m_strItemCode, m_strDtID, m_strTitle;
};

/// The definition of a diagnostic group; without items when there is no such group.
class VELPAT_API dbCDiagnosticGroup
{
public:
    dbCDiagnosticGroup(LPCTSTR pszTitle, LPCTSTR pszCategory);
    int GetItemCount() const
    {
        return m_items.GetCount();
    }
    const dbCDiagnosticItem& GetItem(int nIndex) const
    {
        return m_items.GetAt(nIndex);
    }

    /// Appends an item to the group's definition (which begins with its first item) and returns its dtID.
    static CString DefineItem(LPCTSTR pszGroup, LPCTSTR pszCategory, LPCTSTR pszItemCode, LPCTSTR pszTitle);

private:
    dbTList<dbCDiagnosticItem> m_items;
};

/// A stored diagnostic record.
struct dbSDiagnosticRecord
{
    CString strDtID, strTpID, strValue, strNote;
    int nTP = -1, nPosition = 0;
    velCDate dateTime;
};

/// A patient's diagnostic records of one category.
class VELPAT_API dbCPatientDiagnostics : public dbTList<dbSDiagnosticRecord>
{
public:
    /// Reads the records; with `nTimepoint` above 0 those of that timepoint's file number minus one, 0 means
    /// all.
    dbCPatientDiagnostics(LPCTSTR pszPatientGUID, int nTimepoint, LPCTSTR pszCategory);
    /// Stores a record at once.
    void AddDiagnosticRecord(LPCTSTR pszDtID, int nTP, const dbCDiagnosticInfo& info, int nPosition,
                             const COleDateTime& dateTime);

private:
    CString m_strPatientGUID, m_strCategory;
};

class VELPAT_API dbCPatientDiagnosisTreatmentsContainer
{
public:
    /// TRUE when questionnaire or diagnostic records exist for the timepoint.
    static BOOL HasDiagnostics(LPCTSTR pszTpID);
};

class VELPAT_API dbCAcPatientsContainer
{
public:
    /// TRUE when a patient (not marked as deleted) has this GUID.
    static BOOL IsPatientGUIDInUse(LPCTSTR pszGUID);
};
