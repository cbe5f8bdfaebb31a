#pragma once

#include "maintenance/deleterules.h"
#include "maintenance/recorddialog.h"
#include "suite/dialogs/unicodebutton.h"
#include "suite/patients/records/dbpatient.h"

/// Asks what to delete of a patient: the images of the current timepoint, the timepoint, or the whole
/// patient. Deletes nothing itself. Owns its controls; the patient stays the caller's. Belongs to its
/// caller's stack, on the user interface thread.
class CDlgDelete : public CRecordDialog
{
public:
    /// nTimepoint is negative when there is no current timepoint; the patient may be null.
    CDlgDelete(CWnd* pParent, dbCPatient* pPatient, int nTimepoint);

    /// The operation (DELETE_OP) that was selected when the user closed the dialog with OK or Cancel; before
    /// that, and when something else ended the dialog, the one that it started on.
    unsigned GetOperation() const
    {
        return m_nOperationLeft;
    }

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;
    BOOL OnCommand(WPARAM wParam, LPARAM lParam) override;
    void OnOK() override;
    void OnCancel() override;

private:
    void Refresh();
    bool IsTimepointDiagnosed() const;
    bool IsBalanceOpen() const;
    CString MakeQuestion() const;

    dbCPatient* m_pPatient;
    maint::DeleteSubject m_subject;
    int m_nOperation;
    unsigned m_nOperationLeft;
    CString m_strTemplateDescription;
    CUnicodeButton m_radioImages;
    CUnicodeButton m_radioTimepoint;
    CUnicodeButton m_radioPatient;
};

/// Runs the dialog; the result as velRunModal gives it. nOperation receives what GetOperation answers.
INT_PTR velRunDelete(CWnd* pParent, dbCPatient* pPatient, int nTimepoint, unsigned& nOperation);
