// What is asked before records are uploaded.
#pragma once

#include "cloud/queue/farreachveltrix.h"
#include "suite/dialogs/mfcdialog.h"

/// Which extra files go up, who receives the record and what is said to them. The choice of files is kept in
/// the settings from one run to the next.
class upldCUploadDlg : public mfcCDialog
{
public:
    /// strPatients says in a sentence whose records are uploaded.
    upldCUploadDlg(CWnd* pParent, const CString& strPatients);

    /// After IDOK.
    velSUpload GetUpload() const;

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;
    BOOL OnHelpKey(UINT nHelpID) override;
    void OnOK() override;

private:
    const CString m_strPatients;
    BOOL m_bUncropped;
    BOOL m_bOther;
    BOOL m_b3D;
    CString m_strRecipients;
    CString m_strNotes;
};
