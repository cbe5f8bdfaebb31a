#pragma once

#include "maintenance/recorddialog.h"
#include "maintenance/timepointnamelist.h"
#include "maintenance/treatmentlist.h"
#include "suite/dialogs/unicodebutton.h"

#include <afxdtctl.h>

/// Adds a timepoint to a patient, and keeps the list of predefined timepoint names. The date starts on the
/// one that was confirmed last in this process. Owns its controls; the patient stays the caller's. Belongs
/// to its caller's stack, on the user interface thread.
class CDlgNewTimepoint : public CRecordDialog
{
public:
    /// Without a patient nothing is added.
    CDlgNewTimepoint(CWnd* pParent, dbCPatient* pPatient);

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;
    void OnOK() override;

    afx_msg void OnChooseName();
    afx_msg void OnRefresh();
    afx_msg void OnAddToList();
    afx_msg void OnMoveUp();
    afx_msg void OnMoveDown();
    afx_msg void OnDelete();
    afx_msg void OnChangeDate(NMHDR* pHeader, LRESULT* pResult);
    afx_msg void OnUpdateOK(CCmdUI* pCmdUI);
    afx_msg void OnUpdateAddToList(CCmdUI* pCmdUI);
    afx_msg void OnUpdateDelete(CCmdUI* pCmdUI);
    DECLARE_MESSAGE_MAP()

private:
    void ShowTreatments();
    void Move(int nStep, UINT nSelectFirst);
    CString GetName() const;
    bool IsNameValid() const;
    bool Exists(const CString& strName) const;
    void AddTimepoint(const CString& strName, const CString& strPtshID);

    dbCPatient* m_pPatient;
    CString m_strName; // as typed
    velCDate m_date;
    BOOL m_bAddToList = FALSE;

    CTimepointNameList m_comboNames;
    CDateTimeCtrl m_picker;
    CTreatmentList m_treatments;
    CUnicodeButton m_btnDelete;
    CVeltrixBitmapButton m_btnUp;
    CVeltrixBitmapButton m_btnDown;
};

/// Runs the dialog; the result as velRunModal gives it.
INT_PTR velRunNewTimepoint(CWnd* pParent, dbCPatient* pPatient);
