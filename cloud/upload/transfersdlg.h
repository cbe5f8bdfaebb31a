// How far the transfers have come.
#pragma once

#include "cloud/queue/farreachveltrix.h"
#include "suite/dialogs/mfcdialog.h"

/// Lists the tasks that this computer has queued since the given one and follows their state in the task
/// table. Closing it changes nothing: the transfer program works on.
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
    DECLARE_MESSAGE_MAP()

private:
    void Refresh();

    velCTransferProgram& m_program;
    const __int64 m_nFirstTask;
    CListCtrl m_list;
};
