#include "archive/status/archiveprogressdlg.h"

#include "archive/work/resultcodes.h"
#include "archive/work/winworkers.h"
#include "archive/work/zipwork.h"

namespace
{
constexpr UINT LineInterval = 50; // milliseconds between two changes of the status line
constexpr UINT_PTR LineTimer = 1;
} // namespace

IMPLEMENT_DYNAMIC(arcCDlgArchiveProgress, mfcCDialog)

BEGIN_MESSAGE_MAP(arcCDlgArchiveProgress, mfcCDialog)
ON_COMMAND(arcCmdStartWork, &arcCDlgArchiveProgress::OnStartWork)
ON_WM_TIMER()
ON_MESSAGE(arcMsgProgress, &arcCDlgArchiveProgress::OnProgress)
ON_MESSAGE(arcMsgWorkEnded, &arcCDlgArchiveProgress::OnWorkEnded)
ON_MESSAGE(arcMsgAsk, &arcCDlgArchiveProgress::OnAsk)
END_MESSAGE_MAP()

arcCDlgArchiveProgress::arcCDlgArchiveProgress(const arcSStatusWork& work)
    : mfcCDialog(IDD_ARC_PROGRESS), m_work(work), m_strText(work.strStatus)
{
}

arcCDlgArchiveProgress::~arcCDlgArchiveProgress()
{
    m_pWorker.reset(); // while there is a dialog that it may ask
}

BOOL arcCDlgArchiveProgress::Create(CWnd* pParentWnd)
{
    return mfcCDialog::Create(static_cast<UINT>(IDD_ARC_PROGRESS), pParentWnd);
}

void arcCDlgArchiveProgress::DoDataExchange(CDataExchange* pDX)
{
    mfcCDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_ARC_PROGRESS_BAR, m_ctlBar);
    DDX_Control(pDX, IDC_ARC_PROGRESS_LINE, m_ctlLine);
    DDX_Text(pDX, IDC_ARC_PROGRESS_TEXT, m_strText);
}

BOOL arcCDlgArchiveProgress::OnInitDialog()
{
    mfcCDialog::OnInitDialog();
    m_ctlBar.SetRange(0, 100);
    CenterWindow();
    return TRUE;
}

// Deliberately nothing: neither Enter nor Esc nor the close box stops the work.
void arcCDlgArchiveProgress::OnOK()
{
}

void arcCDlgArchiveProgress::OnCancel()
{
}

void arcCDlgArchiveProgress::OnStartWork()
{
    if (m_bStarted || m_bFinished)
    {
        return;
    }
    m_bStarted = TRUE;
    ShowWindow(SW_SHOW);
    UpdateWindow();
    // The code of a failed save or load stands unless the work itself says otherwise.
    m_nResult = m_work.bSave ? arc::ResultSaveFailed : arc::ResultLoadFailed;
    m_pWorker = std::make_unique<arcCWorker>(MakeWork(), m_nResult);
    if (!m_pWorker->Start(m_hWnd))
    {
        m_nResult = arc::ResultNoThread;
        m_bFinished = TRUE;
    }
}

arcWork arcCDlgArchiveProgress::MakeWork() const
{
    if (m_work.otherWork)
    {
        return m_work.otherWork;
    }
    if (!m_work.bSave)
    {
        return [archive = std::string(m_work.strArchivePath), folder = std::string(m_work.strFolder),
                nWorkers = m_work.nWorkers](const arcAsk&, const arcProgress& progress) {
            return arc::LoadZip(arc::WindowsFileSystem(), archive, folder, progress,
                                arc::WorkersOfThisMachine(nWorkers));
        };
    }
    CString strChecking;
    static_cast<void>(strChecking.LoadString(IDS_ARC_STATUS_CHECKING));
    arc::ZipSave save;
    save.archivePath = m_work.strArchivePath.GetString();
    save.patterns = m_work.strFileList.GetString();
    save.folder = m_work.strFolder.GetString();
    save.moreFiles = m_work.moreFiles;
    save.diskette = m_work.bDiskette != FALSE;
    save.checking = strChecking.GetString();
    save.parallel = arc::WorkersOfThisMachine(m_work.nWorkers);
    save.workingPath = m_work.strWorkingPath.GetString();
    save.trial = m_work.trial;
    save.step = m_work.step;
    return [save, pStored = m_work.pStored](const arcAsk&, const arcProgress& progress) {
        return arc::SaveZip(arc::WindowsFileSystem(), save, progress, pStored.get());
    };
}

void arcCDlgArchiveProgress::FinishWork()
{
    m_nResult = m_pWorker->GetResult();
    m_bFinished = TRUE;
}

void arcCDlgArchiveProgress::StopWork()
{
    if (m_pWorker)
    {
        m_pWorker->Stop();
        return;
    }
    m_nResult = arc::ResultCancelled;
    m_bFinished = TRUE;
}

LRESULT arcCDlgArchiveProgress::OnProgress(WPARAM, LPARAM)
{
    if (!m_pWorker)
    {
        return 0;
    }
    const arcCWorker::Progress progress = m_pWorker->TakeProgress();
    m_ctlBar.SetPos(progress.nPercent);
    if (progress.name != m_line)
    {
        m_line = progress.name;
        // Names may follow each other faster than anybody reads.
        if (!m_bLineDue)
        {
            m_ctlLine.SetWindowText(m_line.c_str());
            m_bLineDue = SetTimer(LineTimer, LineInterval, nullptr) != 0;
        }
    }
    return 0;
}

void arcCDlgArchiveProgress::OnTimer(UINT_PTR nIDEvent)
{
    KillTimer(nIDEvent); // there is no other
    m_bLineDue = FALSE;
    m_ctlLine.SetWindowText(m_line.c_str());
}

// The end must not wait until the user lets go of the window: the system's loop for moving it ends.
LRESULT arcCDlgArchiveProgress::OnWorkEnded(WPARAM, LPARAM)
{
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    if (::GetGUIThreadInfo(::GetCurrentThreadId(), &info) && (info.flags & GUI_INMOVESIZE) != 0)
    {
        SendMessage(WM_CANCELMODE);
        PostMessage(WM_KEYDOWN, VK_ESCAPE);
    }
    return 0;
}

LRESULT arcCDlgArchiveProgress::OnAsk(WPARAM, LPARAM lParam)
{
    const auto& question = *reinterpret_cast<const arcSQuestion*>(lParam);
    return MessageBox(question.strText, AfxGetAppName(), question.nType);
}

void arcCDlgArchiveProgress::ReportResult()
{
    const UINT nText = m_work.bSave ? arc::SaveResultText(m_nResult) : arc::LoadResultText(m_nResult);
    if (nText == 0)
    {
        return;
    }
    CString strMessage;
    strMessage.Format(nText, m_nResult);
    ::MessageBox(GetSafeHwnd(), strMessage, AfxGetAppName(), MB_OK | MB_ICONEXCLAMATION);
}
