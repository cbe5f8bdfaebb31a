#include "suite/rasko/program/raskowindow.h"

#include "suite/rasko/program/credentials.h"
#include "suite/rasko/program/optionsdialog.h"
#include "suite/rasko/program/wininetchannel.h"
#include "suite/rasko/raskoapi.h"
#include "suite/rasko/transfer/texts.h"
#include "suite/util/velpath.h"

#include <commctrl.h>

#include <filesystem>

namespace
{
constexpr UINT_PTR RetryTimer = 1;
constexpr UINT RetryMilliseconds = 60000;
constexpr int ColumnPatient = 0, ColumnKind = 1, ColumnState = 2;

constexpr mfcAnchor Anchors[] = {
    {IDC_TASKS, mfcStretchAll},       {IDC_REASON, mfcStretchBottom}, {IDC_CURRENT, mfcStretchBottom},
    {IDC_PROGRESS, mfcStretchBottom}, {IDC_STOP, mfcBottomLeft},      {IDC_RETRY, mfcBottomLeft},
    {IDC_OPTIONS, mfcBottomLeft},     {IDCANCEL, mfcBottomRight},
};

const UINT WakeMessageNumber = RegisterWindowMessageA(rasko::WakeMessage);

// The sentence of what the database throws; the exception is deleted.
CString TakeMessage(CException* thrown)
{
    char text[512] = "";
    thrown->GetErrorMessage(text, sizeof text);
    thrown->Delete();
    return text;
}

rasko::Task TransferTask(const dbSRaskoTask& row)
{
    return {row.nTask, row.nType == dbSRaskoTask::UPLOAD, rasko::ToUtf8(row.strData)};
}

std::filesystem::path Path(const CString& folder)
{
    return std::filesystem::u8path(rasko::ToUtf8(folder));
}
} // namespace

BEGIN_MESSAGE_MAP(CRaskoWindow, mfcCDialog)
ON_BN_CLICKED(IDC_STOP, &CRaskoWindow::OnStop)
ON_BN_CLICKED(IDC_RETRY, &CRaskoWindow::OnRetry)
ON_BN_CLICKED(IDC_OPTIONS, &CRaskoWindow::OnOptions)
ON_NOTIFY(LVN_ITEMCHANGED, IDC_TASKS, &CRaskoWindow::OnSelection)
ON_WM_TIMER()
ON_WM_DESTROY()
ON_COMMAND(ID_APP_EXIT, &CRaskoWindow::OnExit)
ON_MESSAGE(RaskoMessageShow, &CRaskoWindow::OnShowWindowCommand)
ON_MESSAGE(RaskoMessageOptions, &CRaskoWindow::OnOptionsCommand)
ON_MESSAGE(rasko::Worker::MessageProgress, &CRaskoWindow::OnProgress)
ON_MESSAGE(rasko::Worker::MessageDone, &CRaskoWindow::OnDone)
ON_REGISTERED_MESSAGE(WakeMessageNumber, &CRaskoWindow::OnWake)
END_MESSAGE_MAP()

void CRaskoWindow::RegisterWindowClass()
{
    WNDCLASSEXA dialog{};
    dialog.cbSize = sizeof dialog;
    GetClassInfoExA(nullptr, "#32770", &dialog);
    dialog.hInstance = AfxGetInstanceHandle();
    dialog.lpszClassName = rasko::WindowClass;
    dialog.hIcon = AfxGetApp()->LoadIcon(IDR_RASKO);
    RegisterClassExA(&dialog);
}

BOOL CRaskoWindow::Open()
{
    SetAnchors(Anchors);
    return Create(IDD_RASKO);
}

BOOL CRaskoWindow::OnInitDialog()
{
    mfcCDialog::OnInitDialog();
    const HWND list = GetDlgItem(IDC_TASKS)->m_hWnd;
    ListView_SetExtendedListViewStyle(list, LVS_EX_FULLROWSELECT);
    RECT place;
    ::GetClientRect(list, &place);
    const struct
    {
        UINT title;
        int percent;
    } columns[] = {{IDS_COLUMN_PATIENT, 60}, {IDS_COLUMN_KIND, 17}, {IDS_COLUMN_STATE, 22}};
    for (int i = 0; i < static_cast<int>(std::size(columns)); ++i)
    {
        CString title = rasko::Text(columns[i].title);
        LVCOLUMNA column{};
        column.mask = LVCF_TEXT | LVCF_WIDTH;
        column.cx = place.right * columns[i].percent / 100;
        column.pszText = title.GetBuffer();
        ::SendMessageA(list, LVM_INSERTCOLUMNA, i, reinterpret_cast<LPARAM>(&column));
    }
    m_worker = std::make_unique<rasko::Worker>(m_hWnd);
    SetTimer(RetryTimer, RetryMilliseconds);
    ShowCurrent();
    UpdateButtons();
    return TRUE;
}

void CRaskoWindow::OnCancel()
{
    ShowWindow(SW_HIDE);
}

void CRaskoWindow::OnDestroy()
{
    // What is under way goes on at the next start. A thread that waits for the network is not waited for:
    // nothing that it holds is worth more than what is on the disk already.
    const bool abandon = m_worker && m_worker->IsBusy();
    mfcCDialog::OnDestroy();
    if (abandon)
    {
        dbCPatients::Close();
        TerminateProcess(GetCurrentProcess(), 0);
    }
    AfxPostQuitMessage(0);
}

void CRaskoWindow::Quit()
{
    PostMessage(WM_COMMAND, ID_APP_EXIT);
}

void CRaskoWindow::OnExit()
{
    DestroyWindow();
}

dbSRaskoTask* CRaskoWindow::Find(__int64 number)
{
    for (dbSRaskoTask& task : m_tasks)
        if (task.nTask == number)
            return &task;
    return nullptr;
}

dbSRaskoTask* CRaskoWindow::Selected()
{
    const HWND list = GetDlgItem(IDC_TASKS)->m_hWnd;
    const int row = ListView_GetNextItem(list, -1, LVNI_SELECTED);
    return row < 0 || row >= static_cast<int>(m_tasks.size()) ? nullptr
                                                              : &m_tasks[static_cast<std::size_t>(row)];
}

CString CRaskoWindow::StateText(const dbSRaskoTask& task) const
{
    CString text;
    const int percent = std::max(0, task.nStatus);
    if (task.nStatus == rasko::Finished)
        return rasko::Text(IDS_STATE_DONE);
    if (task.nStatus == rasko::Failed)
        return rasko::Text(IDS_STATE_FAILED);
    if (task.nStatus == rasko::Cancelled)
        return rasko::Text(IDS_STATE_CANCELLED);
    if (task.nStatus > rasko::Placing)
        return rasko::Text(IDS_STATE_UNKNOWN);
    if (task.nTask != m_current && !task.strReason.IsEmpty())
        text.Format(IDS_STATE_WAITING, percent);
    else if (task.nStatus < rasko::Begun)
        return rasko::Text(IDS_STATE_QUEUED);
    else if (task.nStatus == rasko::Placing)
        return rasko::Text(IDS_STATE_PLACING);
    else
        text.Format(IDS_STATE_PERCENT, percent);
    return text;
}

void CRaskoWindow::ShowTask(const dbSRaskoTask& task)
{
    const HWND list = GetDlgItem(IDC_TASKS)->m_hWnd;
    const auto row = static_cast<int>(&task - m_tasks.data());
    const auto set = [list, row](int column, CString text) {
        char present[512] = "";
        LVITEMA item{};
        item.iSubItem = column;
        item.pszText = present;
        item.cchTextMax = sizeof present;
        ::SendMessageA(list, LVM_GETITEMTEXTA, row, reinterpret_cast<LPARAM>(&item));
        if (text == present)
            return;
        item.pszText = text.GetBuffer();
        ::SendMessageA(list, LVM_SETITEMTEXTA, row, reinterpret_cast<LPARAM>(&item));
    };
    if (row >= ListView_GetItemCount(list))
    {
        LVITEMA item{};
        item.iItem = row;
        ::SendMessageA(list, LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item));
    }
    set(ColumnPatient, task.strDescription.Left(255));
    set(ColumnKind, rasko::Text(task.nType == dbSRaskoTask::UPLOAD ? IDS_KIND_UPLOAD : IDS_KIND_DOWNLOAD));
    set(ColumnState, StateText(task));
}

void CRaskoWindow::ShowCurrent()
{
    const dbSRaskoTask* task = Find(m_current);
    CString text = rasko::Text(IDS_IDLE);
    if (task)
        text.Format(task->nType == dbSRaskoTask::UPLOAD ? IDS_SENDING : IDS_FETCHING,
                    m_progress.file.empty() ? task->strDescription.GetString()
                                            : rasko::FromUtf8(m_progress.file).GetString());
    SetDlgItemText(IDC_CURRENT, text);
    ::SendDlgItemMessageA(m_hWnd, IDC_PROGRESS, PBM_SETPOS, task ? std::max(0, m_progress.status) : 0, 0);
    const dbSRaskoTask* selected = Selected();
    SetDlgItemText(IDC_REASON, selected ? selected->strReason : CString());
}

void CRaskoWindow::UpdateButtons()
{
    const dbSRaskoTask* selected = Selected();
    const bool pending = selected && selected->nStatus < rasko::Finished;
    GetDlgItem(IDC_STOP)->EnableWindow(pending);
    GetDlgItem(IDC_RETRY)->EnableWindow(!m_waiting.empty() && !m_worker->IsBusy());
}

void CRaskoWindow::OnSelection(NMHDR*, LRESULT* result)
{
    *result = 0;
    if (m_worker)
    {
        ShowCurrent();
        UpdateButtons();
    }
}

// The table's pending rows; those that have ended stay in sight, those that somebody has removed go.
void CRaskoWindow::ReadTasks()
{
    dbCRaskoTasksContainer rows;
    rows.LoadPendingOfComputer(dbGetComputerName());
    std::set<__int64> pending;
    for (int i = 0; i < rows.GetCount(); ++i)
    {
        const dbSRaskoTask row = rows[i];
        pending.insert(row.nTask);
        if (dbSRaskoTask* known = Find(row.nTask))
            *known = row;
        else
            m_tasks.push_back(row);
    }
    std::erase_if(m_tasks, [&](const dbSRaskoTask& task) {
        return task.nStatus < rasko::Finished && task.nTask != m_current && !pending.contains(task.nTask);
    });
    const HWND list = GetDlgItem(IDC_TASKS)->m_hWnd;
    while (ListView_GetItemCount(list) > static_cast<int>(m_tasks.size()))
        ListView_DeleteItem(list, ListView_GetItemCount(list) - 1);
    for (const dbSRaskoTask& task : m_tasks)
        ShowTask(task);
}

rasko::Folders CRaskoWindow::Folders(const rasko::Settings& settings) const
{
    return {Path(velGetDataPath()), Path(settings.folder)};
}

// Takes the first task that has not been tried since the last wake. A database that is locked or gone is
// asked again by the timer.
void CRaskoWindow::StartNext()
{
    if (m_worker->IsBusy() || !dbCPatients::IsOpen())
        return;
    try
    {
        if (!dbCRaskoTasksContainer::TableExists())
            return;
        ReadTasks();
        for (dbSRaskoTask& task : m_tasks)
        {
            if (task.nStatus >= rasko::Finished || m_waiting.contains(task.nTask))
                continue;
            const rasko::Settings settings = rasko::Settings::Load();
            const auto credentials = rasko::LoadCredentials(rasko::ToUtf8(settings.target));
            if (!credentials || !rasko::IsWritableFolder(settings.folder))
            {
                task.strReason =
                    !credentials ? rasko::FromUtf8(rasko::text::NoCredentials) : rasko::Text(IDS_NO_FOLDER);
                m_waiting.insert(task.nTask);
                Save(task);
                continue;
            }
            m_current = task.nTask;
            m_progress = {};
            task.strReason.Empty();
            m_worker->Start(
                TransferTask(task),
                {rasko::ToUtf8(settings.target), settings.scripts, *credentials, rasko::MinutesWest()},
                Folders(settings));
            break;
        }
    }
    catch (CException* thrown)
    {
        SetDlgItemText(IDC_REASON, TakeMessage(thrown));
    }
    for (const dbSRaskoTask& task : m_tasks)
        ShowTask(task);
    ShowCurrent();
    UpdateButtons();
}

void CRaskoWindow::Save(const dbSRaskoTask& task)
{
    try
    {
        dbCRaskoTasksContainer::UpdateRow(task);
    }
    catch (CException* thrown)
    {
        SetDlgItemText(IDC_REASON, TakeMessage(thrown));
    }
}

LRESULT CRaskoWindow::OnProgress(WPARAM, LPARAM)
{
    m_progress = m_worker->TakeProgress();
    dbSRaskoTask* task = Find(m_current);
    if (!task)
        return 0;
    if (m_progress.status > task->nStatus)
    {
        task->nStatus = m_progress.status;
        Save(*task);
        ShowTask(*task);
    }
    ShowCurrent();
    return 0;
}

LRESULT CRaskoWindow::OnDone(WPARAM, LPARAM)
{
    const rasko::Outcome outcome = m_worker->TakeOutcome();
    dbSRaskoTask* task = Find(m_current);
    m_current = 0;
    if (task)
    {
        task->strReason = rasko::FromUtf8(outcome.reason);
        switch (outcome.kind)
        {
        case rasko::Outcome::Complete:
            task->nStatus = rasko::Finished;
            break;
        case rasko::Outcome::Hopeless:
            task->nStatus = rasko::Failed;
            break;
        case rasko::Outcome::Stopped:
            task->nStatus = rasko::Cancelled;
            break;
        case rasko::Outcome::Waiting:
            m_waiting.insert(task->nTask);
            break;
        }
        Save(*task);
        if (outcome.kind == rasko::Outcome::Hopeless || outcome.kind == rasko::Outcome::Stopped)
            rasko::DropStaged(TransferTask(*task), Folders(rasko::Settings::Load()));
        ShowTask(*task);
    }
    StartNext();
    return 0;
}

LRESULT CRaskoWindow::OnWake(WPARAM, LPARAM)
{
    m_waiting.clear();
    StartNext();
    return 0;
}

void CRaskoWindow::OnTimer(UINT_PTR timer)
{
    if (timer == RetryTimer)
        OnRetry();
}

void CRaskoWindow::OnRetry()
{
    m_waiting.clear();
    StartNext();
}

void CRaskoWindow::OnStop()
{
    const dbSRaskoTask* const selected = Selected();
    if (!selected || selected->nStatus >= rasko::Finished)
        return;
    const __int64 number = selected->nTask;
    if (AfxMessageBox(IDS_ASK_STOP, MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2) != IDYES)
        return;
    if (number == m_current)
    {
        m_worker->Stop();
        return;
    }
    // Transfers went on while the question was open.
    dbSRaskoTask* const task = Find(number);
    if (!task || task->nStatus >= rasko::Finished)
        return;
    task->nStatus = rasko::Cancelled;
    task->strReason.Empty();
    Save(*task);
    rasko::DropStaged(TransferTask(*task), Folders(rasko::Settings::Load()));
    ShowTask(*task);
    UpdateButtons();
}

void CRaskoWindow::OnOptions()
{
    CRaskoOptions options(this);
    if (options.DoModal() == IDOK)
        OnRetry();
}

void CRaskoWindow::OpenOptions()
{
    PostMessage(RaskoMessageOptions);
}

LRESULT CRaskoWindow::OnOptionsCommand(WPARAM, LPARAM)
{
    if (CRaskoOptions::IsOpen())
        return 0;
    ShowWindow(SW_SHOW);
    SetForegroundWindow();
    OnOptions();
    return 0;
}

LRESULT CRaskoWindow::OnShowWindowCommand(WPARAM, LPARAM)
{
    ShowWindow(SW_SHOWNORMAL);
    SetForegroundWindow();
    return 0;
}

namespace
{
// Runs a conversation with the service; the sentence of what went wrong, empty when nothing did.
template <class Talk> CString Converse(Talk talk)
{
    try
    {
        const rasko::Settings settings = rasko::Settings::Load();
        const auto credentials = rasko::LoadCredentials(rasko::ToUtf8(settings.target));
        if (!credentials)
            return rasko::Text(IDS_NO_CREDENTIALS);
        rasko::WinInetChannel channel(rasko::ToUtf8(settings.target));
        rasko::ServiceClient client(channel, settings.scripts, *credentials, rasko::MinutesWest());
        talk(client);
        return {};
    }
    catch (CException* thrown)
    {
        return TakeMessage(thrown);
    }
    catch (const rasko::Interrupted& cut)
    {
        return rasko::FromUtf8(rasko::text::Fill(rasko::text::NoAnswer, cut.what()));
    }
    catch (const std::exception& refusal)
    {
        return rasko::FromUtf8(refusal.what());
    }
}
} // namespace

CString CRaskoWindow::RegisterPatient(const CString& patientGuid, __int64 bytes)
{
    const CWaitCursor wait;
    return Converse([&](rasko::ServiceClient& client) {
        const rasko::ServiceRecord record = client.Register(rasko::ToUtf8(patientGuid), {}, bytes);
        dbCServicePatients::Store(
            {patientGuid, rasko::FromUtf8(record.number), rasko::FromUtf8(record.guid)});
    });
}

CString CRaskoWindow::SetRecipients(const CString& patientGuid, const CString& recipients,
                                    const CString& notes)
{
    const CWaitCursor wait;
    std::vector<std::string> names;
    for (int at = 0; at >= 0;)
    {
        CString name = recipients.Tokenize(";", at);
        name.Trim();
        if (!name.IsEmpty())
            names.push_back(rasko::ToUtf8(name));
    }
    return Converse([&](rasko::ServiceClient& client) {
        client.SetRecipients(rasko::ToUtf8(patientGuid), {}, names, rasko::ToUtf8(notes));
    });
}
