#include "cloud/upload/transfersdlg.h"

#include "app/velapp.h"
#include "cloud/res/cloudres.h"
#include "suite/patients/velpat.h"

#include <array>

namespace
{
constexpr UINT_PTR RefreshTimer = 1;
constexpr UINT RefreshInterval = 1000;           // milliseconds
constexpr std::array<int, 2> Widths = {200, 90}; // dialog units

CString StateText(int nStatus)
{
    CString strText;
    if (nStatus < 0)
        strText.LoadString(IDS_CLD_TRANSFER_QUEUED);
    else if (nStatus < dbSRaskoTask::STATUS_FINISHED)
        strText.Format("%d %%", nStatus);
    else
        strText.LoadString(nStatus == 100   ? IDS_CLD_TRANSFER_DONE
                           : nStatus == 102 ? IDS_CLD_TRANSFER_CANCELLED
                                            : IDS_CLD_TRANSFER_FAILED);
    return strText;
}
} // namespace

BEGIN_MESSAGE_MAP(upldCTransfersDlg, mfcCDialog)
ON_WM_TIMER()
ON_BN_CLICKED(IDC_CLD_SHOW_RASKO, &upldCTransfersDlg::OnShowProgram)
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

void upldCTransfersDlg::Refresh()
{
    dbCRaskoTasksContainer tasks;
    try
    {
        tasks.LoadQueuedBy(CFarreachVeltrix::GetComputer(), m_nFirstTask);
    }
    catch (dbCException* e)
    {
        // Somebody else has the database for the moment: the next look tells.
        e->Delete();
        return;
    }
    for (int i = 0; i < tasks.GetCount(); ++i)
    {
        if (i >= m_list.GetItemCount())
            m_list.InsertItem(i, tasks[i].strDescription);
        const CString strState = StateText(tasks[i].nStatus);
        if (m_list.GetItemText(i, 1) != strState)
            m_list.SetItemText(i, 1, strState);
    }
}
