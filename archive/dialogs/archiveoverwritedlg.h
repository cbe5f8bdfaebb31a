// Asks before an existing archive is replaced.
#pragma once

#include "suite/dialogs/mfcdialog.h"

/// Ends with IDYES, IDC_ARC_OVERWRITE_ALL, IDNO or IDCANCEL. On its caller's stack, on the user interface
/// thread.
class CDlgArchiveOverwrite : public mfcCDialog
{
public:
    /// bSeveral: more archives follow, so that the answer may be given for all of them.
    CDlgArchiveOverwrite(CWnd* pParent, LPCTSTR pszPath, bool bSeveral);

protected:
    BOOL OnInitDialog() override;
    BOOL OnHelpKey(UINT nHelpID) override;
    afx_msg void OnAnswer(UINT nID);
    DECLARE_MESSAGE_MAP()

private:
    const CString m_strPath;
    const bool m_bSeveral;
};
