#include "cloud/upload/transfersdlg.h"

#include "app/velapp.h"
#include "cloud/res/cloudres.h"
#include "suite/patients/velpat.h"

#include <array>

namespace
{
constexpr UINT_PTR RefreshTimer = 1;
constexpr UINT RefreshInterval = 1000;           // milliseconds
constexpr std::array<int, 2> Widths = {212, 88}; // dialog units

CString StateText(const dbSRaskoTask& task)
{
    CString strText;
    // One that was tried and is to be tried again says why.
    if (task.nStatus < 0 || (task.nStatus < dbSRaskoTask::STATUS_FINISHED && !task.strReason.IsEmpty()))
        strText.LoadString(IDS_CLD_TRANSFER_QUEUED);
    else if (task.nStatus < dbSRaskoTask::STATUS_FINISHED)
        strText.Format("%d %%", task.nStatus);
    else
        strText.LoadString(task.nStatus == 100   ? IDS_CLD_TRANSFER_DONE
                           : task.nStatus == 102 ? IDS_CLD_TRANSFER_CANCELLED
                                                 : IDS_CLD_TRANSFER_FAILED);
    return strText;
}
} // namespace

BEGIN_MESSAGE_MAP(upldCTransfersDlg, mfcCDialog)
ON_WM_TIMER()
ON_BN_CLICKED(IDC_CLD_SHOW_RASKO, &upldCTransfersDlg::OnShowProgram)
ON_NOTIFY(LVN_ITEMCHANGED, IDC_CLD_LIST, &upldCTransfersDlg::OnSelection)
END_MESSAGE_MAP()

upldCTransfersDlg::upldCTransfersDlg(CWnd* pParent, velCTransferProgram& program, __int64 nFirstTask)
    : mfcCDialog(IDD_CLD_TRANSFERS, pParent), m_program(program), m_nFirstTask(nFirstTask)
{
}

void upldCTransfersDlg::DoDataExchange(CDataExchange* pDX)
{
    mfcCDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_CLD_LIST, m_list);
}

BOOL upldCTransfersDlg::OnInitDialog()
{
    mfcCDialog::OnInitDialog();
    m_list.SetExtendedStyle(LVS_EX_FULLROWSELECT | LVS_EX_LABELTIP);
    CString strTitles;
    strTitles.LoadString(IDS_CLD_TRANSFER_COLUMNS);
    int nStart = 0;
    for (std::size_t i = 0; i < Widths.size(); ++i)
    {
        CRect rect(0, 0, Widths.at(i), 8);
        MapDialogRect(&rect);
        m_list.InsertColumn(static_cast<int>(i), strTitles.Tokenize("|", nStart), LVCFMT_LEFT, rect.Width());
    }
    Refresh();
    SetTimer(RefreshTimer, RefreshInterval, nullptr);
    return TRUE;
}

BOOL upldCTransfersDlg::OnHelpKey(UINT nHelpID)
{
    VelApp()->ShowHelp(nHelpID);
    return TRUE;
}

void upldCTransfersDlg::OnTimer(UINT_PTR)
{
    Refresh();
}

void upldCTransfersDlg::OnShowProgram()
{
    m_program.Show();
}

void upldCTransfersDlg::OnSelection(NMHDR*, LRESULT* pResult)
{
    *pResult = 0;
    ShowReason();
}

void upldCTransfersDlg::Refresh()
{
    try
    {
        m_tasks.LoadQueuedBy(CFarreachVeltrix::GetComputer(), m_nFirstTask);
    }
    catch (dbCException* e)
    {
        // Somebody else has the database for the moment: the next look tells.
        e->Delete();
        return;
    }
    for (int i = 0; i < m_tasks.GetCount(); ++i)
    {
        if (i >= m_list.GetItemCount())
            m_list.InsertItem(i, m_tasks[i].strDescription);
        const CString strState = StateText(m_tasks[i]);
        if (m_list.GetItemText(i, 1) != strState)
            m_list.SetItemText(i, 1, strState);
    }
    ShowReason();
}

/// That of the selected transfer; with none selected, of the first that has one.
void upldCTransfersDlg::ShowReason()
{
    const int nSelected = m_list.GetNextItem(-1, LVNI_SELECTED);
    CString strReason;
    for (int i = 0; i < m_tasks.GetCount() && strReason.IsEmpty(); ++i)
    {
        if (nSelected < 0 || i == nSelected)
            strReason = m_tasks[i].strReason;
    }
    CString strShown;
    GetDlgItemText(IDC_CLD_REASON, strShown);
    if (strShown != strReason)
        SetDlgItemText(IDC_CLD_REASON, strReason);
}
