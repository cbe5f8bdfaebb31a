#include "archive/dialogs/archiveoverwritedlg.h"

#include "app/velapp.h"
#include "archive/res/archivedlgres.h"
#include "archive/res/archiveres.h"
#include "archive/files/filenames.h"
#include "suite/util/veldate.h"
#include "suite/util/velstring.h"

BEGIN_MESSAGE_MAP(CDlgArchiveOverwrite, mfcCDialog)
ON_CONTROL_RANGE(BN_CLICKED, IDYES, IDNO, &CDlgArchiveOverwrite::OnAnswer)
ON_CONTROL_RANGE(BN_CLICKED, IDC_ARC_OVERWRITE_ALL, IDC_ARC_OVERWRITE_ALL, &CDlgArchiveOverwrite::OnAnswer)
END_MESSAGE_MAP()

CDlgArchiveOverwrite::CDlgArchiveOverwrite(CWnd* pParent, LPCTSTR pszPath, bool bSeveral)
    : mfcCDialog(IDD_ARC_OVERWRITE, pParent), m_strPath(pszPath), m_bSeveral(bSeveral)
{
}

BOOL CDlgArchiveOverwrite::OnInitDialog()
{
    mfcCDialog::OnInitDialog();
    CString strText;
    strText.LoadString(IDS_ARC_REPLACE_ASK);
    strText += std::string(arc::FileNameOf(m_strPath.GetString())).c_str();
    SetDlgItemText(IDC_ARC_OVERWRITE_TEXT, strText);

    CFileStatus status;
    if (CFile::GetStatus(m_strPath, status))
    {
        SYSTEMTIME written;
        CString strSize;
        strSize.Format("%llu", (status.m_size + 1023) / 1024);
        if (status.m_mtime.GetAsSystemTime(written))
        {
            SetDlgItemText(
                IDC_ARC_OVERWRITE_DETAILS,
                velFormatTemplate(IDS_ARC_OVERWRITE_DETAILS, velCDate(written).FormatDate(), strSize));
        }
    }
    if (!m_bSeveral)
    {
        // Yes moves up to the other buttons.
        CRect rectAll;
        CWnd* const pAll = GetDlgItem(IDC_ARC_OVERWRITE_ALL);
        pAll->GetWindowRect(&rectAll);
        ScreenToClient(&rectAll);
        pAll->ShowWindow(SW_HIDE);
        GetDlgItem(IDYES)->MoveWindow(&rectAll);
    }
    // Replacing must be chosen, not fallen into.
    GotoDlgCtrl(GetDlgItem(IDNO));
    return FALSE;
}

BOOL CDlgArchiveOverwrite::OnHelpKey(UINT nHelpID)
{
    VelApp()->ShowHelp(nHelpID);
    return TRUE;
}

void CDlgArchiveOverwrite::OnAnswer(UINT nID)
{
    EndDialog(static_cast<int>(nID));
}
