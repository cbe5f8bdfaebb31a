// The small modeless window that shows how far an archive is written or read, and does that work.
#pragma once

#include "archive/status/statusthread.h"
#include "suite/dialogs/mfcdialog.h"

#include <afxcmn.h>

/// Lives on the status thread. The work begins with the command arcCmdStartWork and runs inside its handler,
/// which dispatches the thread's messages whenever the work reports. Nothing that the user does closes the
/// window; the thread destroys it once it is finished.
class arcCDlgArchiveProgress : public mfcCDialog
{
    DECLARE_DYNAMIC(arcCDlgArchiveProgress)

public:
    /// The work stays the caller's and must outlive the dialog.
    explicit arcCDlgArchiveProgress(const arcSStatusWork& work);
    ~arcCDlgArchiveProgress() override;

    using mfcCDialog::Create;
    /// Makes the window, still invisible.
    BOOL Create(CWnd* pParentWnd);

    BOOL IsFinished() const
    {
        return m_bFinished;
    }
    /// The result code (archive/work/resultcodes.h), once it is finished.
    int GetResult() const
    {
        return m_nResult;
    }

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;
    void OnOK() override;
    void OnCancel() override;
    afx_msg void OnStartWork();
    DECLARE_MESSAGE_MAP()

private:
    int Work();
    bool Progress(int nPercent, const std::string& name);
    void ReportResult();

    const arcSStatusWork& m_work;
    CProgressCtrl m_ctlBar;
    CStatic m_ctlLine;
    CString m_strText;
    std::string m_lineShown; ///< what the status line says
    int m_nPercentShown = -1;
    ULONGLONG m_nPainted = 0; ///< tick count of the last change of the status line
    BOOL m_bStarted = FALSE;
    BOOL m_bFinished = FALSE;
    int m_nResult = 0;
};

/// The command that starts the work, sent by the thread to its dialog right after it was made.
inline constexpr UINT arcCmdStartWork = 997;
