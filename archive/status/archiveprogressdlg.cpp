#include "archive/status/archiveprogressdlg.h"

#include "archive/work/resultcodes.h"
#include "archive/work/zipwork.h"

namespace
{
constexpr ULONGLONG LineInterval = 50; // milliseconds between two changes of the status line

// Dispatches what waits for this thread, and goes on.
void PumpWaitingMessages()
{
    MSG message{};
    while (::PeekMessage(&message, nullptr, 0, 0, PM_NOREMOVE) && AfxPumpMessage())
    {
    }
}
} // namespace

IMPLEMENT_DYNAMIC(arcCDlgArchiveProgress, mfcCDialog)

BEGIN_MESSAGE_MAP(arcCDlgArchiveProgress, mfcCDialog)
ON_COMMAND(arcCmdStartWork, &arcCDlgArchiveProgress::OnStartWork)
END_MESSAGE_MAP()

arcCDlgArchiveProgress::arcCDlgArchiveProgress(const arcSStatusWork& work)
    : mfcCDialog(IDD_ARC_PROGRESS), m_work(work), m_strText(work.strStatus)
{
}

arcCDlgArchiveProgress::~arcCDlgArchiveProgress() = default;

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
    if (m_bStarted)
    {
        return;
    }
    m_bStarted = TRUE;
    ShowWindow(SW_SHOW);
    UpdateWindow();
    // The code of a failed save or load stands unless the work itself says otherwise.
    m_nResult = m_work.bSave ? arc::ResultSaveFailed : arc::ResultLoadFailed;
    try
    {
        m_nResult = Work();
    }
    catch (CException* e)
    {
        e->Delete();
    }
    catch (...)
    {
    }
    ReportResult();
    m_bFinished = TRUE;
}

int arcCDlgArchiveProgress::Work()
{
    const auto progress = [this](int nPercent, const std::string& name) { return Progress(nPercent, name); };
    if (m_work.otherWork)
    {
        return m_work.otherWork(this, progress);
    }
    arc::FileSystem& files = arc::WindowsFileSystem();
    if (!m_work.bSave)
    {
        return arc::LoadZip(files, m_work.strArchivePath.GetString(), m_work.strFolder.GetString(), progress);
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
    return arc::SaveZip(files, save, progress);
}

bool arcCDlgArchiveProgress::Progress(int nPercent, const std::string& name)
{
    if (nPercent != m_nPercentShown)
    {
        m_nPercentShown = nPercent;
        m_ctlBar.SetPos(nPercent);
    }
    const ULONGLONG nNow = ::GetTickCount64();
    if (name != m_lineShown && nNow - m_nPainted >= LineInterval)
    {
        m_lineShown = name;
        m_nPainted = nNow;
        m_ctlLine.SetWindowText(name.c_str());
    }
    PumpWaitingMessages();
    return true;
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
    MessageBox(strMessage, AfxGetAppName(), MB_OK | MB_ICONEXCLAMATION);
}
