// The small modeless window that shows how far an archive is written or read, and has that done.
#pragma once

#include "archive/status/archiveworker.h"
#include "suite/dialogs/mfcdialog.h"

#include <afxcmn.h>

/// Lives on the status thread. The command arcCmdStartWork starts the worker, which the dialog owns. Nothing
/// that the user does closes the window; the thread destroys it once it is finished.
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

    BOOL HasStarted() const
    {
        return m_bStarted;
    }
    BOOL IsFinished() const
    {
        return m_bFinished;
    }
    /// Signalled when the work is over; null before it was started.
    HANDLE GetWorker() const
    {
        return m_pWorker ? m_pWorker->GetHandle() : nullptr;
    }
    /// Once that is signalled: takes the result.
    void FinishWork();
    /// Shows the message of the result.
    void ReportResult();
    /// Work that has not begun is finished then, as cancelled.
    void StopWork();
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
    afx_msg void OnTimer(UINT_PTR nIDEvent);
    afx_msg LRESULT OnProgress(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnWorkEnded(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnAsk(WPARAM wParam, LPARAM lParam);
    DECLARE_MESSAGE_MAP()

private:
    arcWork MakeWork() const;

    const arcSStatusWork& m_work;
    std::unique_ptr<arcCWorker> m_pWorker;
    CProgressCtrl m_ctlBar;
    CStatic m_ctlLine;
    CString m_strText;
    std::string m_line;      ///< what the status line is to say
    BOOL m_bLineDue = FALSE; ///< a timer will show it
    BOOL m_bStarted = FALSE;
    BOOL m_bFinished = FALSE;
    int m_nResult = 0;
};

/// The command that starts the work, sent by the thread to its dialog right after it was made.
inline constexpr UINT arcCmdStartWork = 997;
