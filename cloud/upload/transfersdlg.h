// How far the transfers have come.
#pragma once

#include "cloud/queue/farreachveltrix.h"
#include "suite/dialogs/mfcdialog.h"
#include "suite/patients/records/dbrasko.h"

/// Lists the tasks that this computer has queued since the given one and follows their state in the task
/// table, with the reason of one that waits or has failed. Closing it changes nothing: the transfer program
/// works on.
class upldCTransfersDlg : public mfcCDialog
{
public:
    upldCTransfersDlg(CWnd* pParent, velCTransferProgram& program, __int64 nFirstTask);

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;
    BOOL OnHelpKey(UINT nHelpID) override;
    afx_msg void OnTimer(UINT_PTR nIDEvent);
    afx_msg void OnShowProgram();
    afx_msg void OnSelection(NMHDR* pHeader, LRESULT* pResult);
    DECLARE_MESSAGE_MAP()

private:
    void Refresh();
    void ShowReason();

    velCTransferProgram& m_program;
    const __int64 m_nFirstTask;
    CListCtrl m_list;
    dbCRaskoTasksContainer m_tasks;
};
