#pragma once

#include "app/velenums.h"
#include "maintenance/recorddialog.h"
#include "maintenance/renamerules.h"
#include "maintenance/timepointnamelist.h"
#include "maintenance/treatmentlist.h"
#include "suite/dialogs/unicodebutton.h"

#include <afxdtctl.h>

/// What the rename dialog hands back.
struct velRenameResult
{
    CString strLastname;
    CString strFirstname;
    CString strPassThrough;
    CString strTimepointName;
    COleDateTime dateTimepoint;
};

/// Asks for the new names of a patient, or for a timepoint's new name, date and treatment. Of these it writes
/// the treatment itself, and with it a new row of the patient's treatment history and a new predefined
/// timepoint name; the rest is the host's. Owns its controls; the patient stays the caller's. Belongs to its
/// caller's stack, on the user interface thread.
class CRenameDlg : public CRecordDialog
{
public:
    /// The patient may be null. *pOperation, where given, receives a RENAME_OP on OK.
    CRenameDlg(CWnd* pParent, dbCPatient* pPatient, int nTimepoint, const CString& strPassThrough,
               RENAME_OP* pOperation);

    /// What the dialog holds; to be read after IDOK.
    const velRenameResult& GetResult() const
    {
        return m_result;
    }

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;
    void OnOK() override;

    afx_msg void OnOperation();
    afx_msg void OnChangeName();
    afx_msg void OnChangeFirstname();
    afx_msg void OnEditTimepointName();
    afx_msg void OnChooseTimepointName();
    afx_msg void OnChangeTreatment();
    afx_msg void OnChangeDate(NMHDR* pHeader, LRESULT* pResult);
    afx_msg void OnUpdateRadio(CCmdUI* pCmdUI);
    afx_msg void OnUpdateAddName(CCmdUI* pCmdUI);
    afx_msg void OnUpdateOK(CCmdUI* pCmdUI);
    DECLARE_MESSAGE_MAP()

private:
    void LoadPatient();
    void ShowOperation();
    void ShowControl(int nID, bool bShow);
    bool HasTimepoint() const;
    bool UsesTreatments() const;
    maint::RenameState GetState() const;
    void ShapeName(CEdit& edit, CString& strName);
    void AddPredefinedName();
    void StoreTreatment(const CString& strPtshID);

    dbCPatient* m_pPatient;
    int m_nTimepoint;
    RENAME_OP* m_pOperation;
    int m_nOperation = RENAME_TIMEPOINT;
    velRenameResult m_result;
    CString m_strOldFullName;
    CString m_strCurrentPtshID;
    CString m_strIdleDescription;
    bool m_bInitialised = false;

    CUnicodeButton m_radioPatient;
    CUnicodeButton m_radioTimepoint;
    CEdit m_editName;
    CEdit m_editFirstname;
    CTimepointNameList m_comboNames;
    CDateTimeCtrl m_date;
    CTreatmentList m_treatments;
};

/// Runs the dialog; the result as velRunModal gives it. `result` is filled on IDOK.
INT_PTR velRunRename(CWnd* pParent, dbCPatient* pPatient, int nTimepoint, const CString& strPassThrough,
                     RENAME_OP* pOperation, velRenameResult& result);
