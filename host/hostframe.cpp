// The main window's creation, layout and messages; its commands are in hostframerun.cpp.
#include "host/hostframe.h"

#include "host/columns.h"
#include "host/hostres.h"
#include "host/toolicons.h"

#include <algorithm>
#include <array>
#include <memory>

namespace
{

constexpr UINT HOST_WM_SELECTION = WM_APP + 2;
constexpr UINT_PTR kPollTimer = 1;
constexpr UINT kPollInterval = 1000; // milliseconds

constexpr int kMargin = 7; // pixels at 96 dpi, as are the lengths below
constexpr int kLineHeight = 16;
constexpr int kFieldHeight = 22;
constexpr int kTitleHeight = 26;
constexpr int kTimepointsHeight = 130;
constexpr int kSearchByWidth = 96;
constexpr int kUsualWidth = 1080;
constexpr int kUsualHeight = 760;
constexpr int kLeastWidth = 560;
constexpr int kLeastHeight = 420;
constexpr int kLeastPane = 120;

constexpr hostSColumn kTimepointColumns[] = {{IDS_COLUMN_TIMEPOINT, 180, LVCFMT_LEFT},
                                             {IDS_COLUMN_DATE, 90, LVCFMT_RIGHT},
                                             {IDS_COLUMN_IMAGES, 70, LVCFMT_RIGHT}};

} // namespace

BEGIN_MESSAGE_MAP(hostCFrame, CFrameWnd)
    ON_WM_CREATE()
    ON_WM_DESTROY()
    ON_WM_SIZE()
    ON_WM_GETMINMAXINFO()
    ON_WM_ACTIVATE()
    ON_WM_SETFOCUS()
    ON_WM_TIMER()
    ON_WM_MENUSELECT()
    ON_WM_CONTEXTMENU()
    ON_EN_CHANGE(IDC_SEARCH, &hostCFrame::OnSearchChanged)
    ON_CBN_SELCHANGE(IDC_SEARCH_BY, &hostCFrame::OnSearchChanged)
    ON_COMMAND(IDOK, &hostCFrame::OnEnterKey)
    ON_COMMAND(IDCANCEL, &hostCFrame::OnEscapeKey)
    ON_COMMAND(ID_PANE_NEXT, &hostCFrame::OnNextPane)
    ON_COMMAND(ID_APP_EXIT, &hostCFrame::OnExit)
    ON_COMMAND_RANGE(ID_COMMAND_FIRST, ID_COMMAND_LAST, &hostCFrame::OnCommandRange)
    ON_UPDATE_COMMAND_UI_RANGE(ID_COMMAND_FIRST, ID_COMMAND_LAST, &hostCFrame::OnUpdateCommand)
    ON_MESSAGE(WM_NEXTDLGCTL, &hostCFrame::OnNextDlgCtl)
    ON_MESSAGE(HOST_WM_SPLIT, &hostCFrame::OnSplit)
    ON_MESSAGE(HOST_WM_SELECTION, &hostCFrame::OnSelectionChanged)
    ON_MESSAGE(VELDLGS_PATIENT_CHANGED, &hostCFrame::OnPatientChanged)
END_MESSAGE_MAP()

hostCFrame::hostCFrame(hostCSession& session)
    : m_session(session), m_listWidth(hostScale(400)), m_auditHeight(hostScale(150))
{
}

hostCFrame::~hostCFrame()
{
    ::ImageList_Destroy(m_icons);
    ::DeleteObject(m_font);
    ::DeleteObject(m_titleFont);
}

BOOL hostCFrame::PreCreateWindow(CREATESTRUCT& create)
{
    if (!CFrameWnd::PreCreateWindow(create))
    {
        return FALSE;
    }
    CRect work;
    ::SystemParametersInfo(SPI_GETWORKAREA, 0, &work, 0);
    create.cx = std::min(hostScale(kUsualWidth), work.Width() * 95 / 100);
    create.cy = std::min(hostScale(kUsualHeight), work.Height() * 95 / 100);
    return TRUE;
}

int hostCFrame::OnCreate(LPCREATESTRUCT create)
{
    if (CFrameWnd::OnCreate(create) == -1 || !CreateTools() || !CreatePanes())
    {
        return -1;
    }
    SetFonts();
    SetTimer(kPollTimer, kPollInterval, nullptr);
    ShowTitle();
    ShowStatus();
    m_search.SetFocus();
    return 0;
}

void hostCFrame::OnDestroy()
{
    KillTimer(kPollTimer);
    CFrameWnd::OnDestroy();
}

BOOL hostCFrame::CreateTools()
{
    const DWORD toolStyle = WS_CHILD | WS_VISIBLE | TBSTYLE_FLAT | TBSTYLE_TOOLTIPS | TBSTYLE_LIST | CCS_TOP | CCS_NODIVIDER;
    const DWORD statusStyle = WS_CHILD | WS_VISIBLE | CCS_BOTTOM | SBARS_SIZEGRIP;
    if (!m_tools.CreateEx(0, TOOLBARCLASSNAME, "", toolStyle, CRect(0, 0, 0, 0), this, IDC_TOOLBAR) ||
        !m_status.CreateEx(0, STATUSCLASSNAME, "", statusStyle, CRect(0, 0, 0, 0), this, IDC_STATUSBAR))
    {
        return FALSE;
    }
    m_icons = hostMakeToolIcons(hostScale(20));
    m_tools.SendMessage(TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON));
    m_tools.SendMessage(TB_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(m_icons));
    // The texts of buttons that show none are their tips.
    m_tools.SendMessage(TB_SETEXTENDEDSTYLE, 0, TBSTYLE_EX_MIXEDBUTTONS | TBSTYLE_EX_DOUBLEBUFFER);
    for (const hostSCommand& command : hostGetCommands())
    {
        if (command.icon == hostIcon::none)
        {
            continue;
        }
        if (command.startsGroup)
        {
            TBBUTTON gap = {};
            gap.iBitmap = hostScale(8);
            gap.fsStyle = BTNS_SEP;
            m_tools.SendMessage(TB_ADDBUTTONS, 1, reinterpret_cast<LPARAM>(&gap));
        }
        const CString prompt = hostText(static_cast<UINT>(command.id));
        const CString tip = prompt.Mid(prompt.Find('\n') + 1);
        TBBUTTON button = {};
        button.iBitmap = static_cast<int>(command.icon) - 1;
        button.idCommand = command.id;
        button.fsState = TBSTATE_ENABLED;
        button.fsStyle = BTNS_AUTOSIZE;
        button.iString = reinterpret_cast<INT_PTR>(tip.GetString());
        m_tools.SendMessage(TB_ADDBUTTONS, 1, reinterpret_cast<LPARAM>(&button));
    }
    m_tools.SendMessage(TB_AUTOSIZE);
    return TRUE;
}

BOOL hostCFrame::CreatePanes()
{
    const CRect none(0, 0, 0, 0);
    const DWORD label = WS_CHILD | WS_VISIBLE | SS_LEFTNOWORDWRAP;
    const DWORD list = WS_CHILD | WS_VISIBLE | WS_BORDER | WS_TABSTOP | LVS_REPORT | LVS_SINGLESEL | LVS_SHOWSELALWAYS;
    if (!m_searchLabel.Create(hostText(IDS_SEARCH), label, none, this, IDC_SEARCH_LABEL) ||
        !m_search.CreateEx(WS_EX_CLIENTEDGE, "EDIT", "", WS_CHILD | WS_VISIBLE | WS_TABSTOP | ES_AUTOHSCROLL, none, this,
                           IDC_SEARCH) ||
        !m_searchBy.Create(WS_CHILD | WS_VISIBLE | WS_TABSTOP | CBS_DROPDOWNLIST | WS_VSCROLL,
                           CRect(0, 0, hostScale(kSearchByWidth), hostScale(120)), this, IDC_SEARCH_BY) ||
        !m_patients.CreateIn(this, IDC_PATIENTS) || !m_listBar.CreateIn(this, IDC_SPLIT_LIST, TRUE) ||
        !m_name.Create("", label | SS_ENDELLIPSIS | SS_NOPREFIX, none, this, IDC_PATIENT_NAME) ||
        !m_timepointsLabel.Create(hostText(IDS_TIMEPOINTS), label, none, this, IDC_TIMEPOINTS_LABEL) ||
        !m_timepoints.Create(list, none, this, IDC_TIMEPOINTS) ||
        !m_imagesLabel.Create(hostText(IDS_IMAGES), label, none, this, IDC_IMAGES_LABEL) ||
        !m_images.CreateIn(this, IDC_IMAGES) || !m_auditBar.CreateIn(this, IDC_SPLIT_AUDIT, FALSE) ||
        !m_auditLabel.Create(hostText(IDS_AUDIT), label, none, this, IDC_AUDIT_LABEL) ||
        !m_audit.CreateIn(this, IDC_AUDIT))
    {
        return FALSE;
    }
    m_search.SetLimitText(255);
    m_searchBy.AddString(hostText(IDS_BY_NAME));
    m_searchBy.AddString(hostText(IDS_BY_ID));
    m_searchBy.SetCurSel(0);
    hostPrepareList(m_timepoints, kTimepointColumns);
    return TRUE;
}

void hostCFrame::SetFonts()
{
    NONCLIENTMETRICS metrics = {};
    metrics.cbSize = sizeof metrics;
    ::SystemParametersInfo(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    m_font = ::CreateFontIndirect(&metrics.lfMessageFont);
    metrics.lfMessageFont.lfHeight = ::MulDiv(metrics.lfMessageFont.lfHeight, 4, 3);
    metrics.lfMessageFont.lfWeight = FW_SEMIBOLD;
    m_titleFont = ::CreateFontIndirect(&metrics.lfMessageFont);
    for (HWND child = ::GetWindow(m_hWnd, GW_CHILD); child != nullptr; child = ::GetWindow(child, GW_HWNDNEXT))
    {
        const HFONT font = child == m_name.m_hWnd ? m_titleFont : m_font;
        ::SendMessage(child, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    }
}

void hostCFrame::OnGetMinMaxInfo(MINMAXINFO* info)
{
    info->ptMinTrackSize = CPoint(hostScale(kLeastWidth), hostScale(kLeastHeight));
}

void hostCFrame::OnSize(UINT type, int width, int height)
{
    CFrameWnd::OnSize(type, width, height);
    if (type != SIZE_MINIMIZED && m_audit.m_hWnd != nullptr)
    {
        Layout();
    }
}

void hostCFrame::Layout()
{
    CRect client;
    GetClientRect(&client);
    m_tools.ShowWindow(m_showTools ? SW_SHOW : SW_HIDE);
    m_status.ShowWindow(m_showStatus ? SW_SHOW : SW_HIDE);
    if (m_showTools)
    {
        m_tools.SendMessage(TB_AUTOSIZE);
        CRect bar;
        m_tools.GetWindowRect(&bar);
        client.top += bar.Height();
    }
    if (m_showStatus)
    {
        m_status.SendMessage(WM_SIZE);
        CRect bar;
        m_status.GetWindowRect(&bar);
        client.bottom -= bar.Height();
        const int widths[] = {client.Width() * 5 / 10, client.Width() * 7 / 10, -1};
        m_status.SendMessage(SB_SETPARTS, std::size(widths), reinterpret_cast<LPARAM>(widths));
    }

    const int margin = hostScale(kMargin);
    const int line = hostScale(kLineHeight);
    const int field = hostScale(kFieldHeight);
    const int bar = hostCSplitBar::GetThickness();
    const int least = hostScale(kLeastPane);
    client.DeflateRect(margin, margin, margin, hostScale(3));

    for (CWnd* part : {static_cast<CWnd*>(&m_auditBar), static_cast<CWnd*>(&m_auditLabel), static_cast<CWnd*>(&m_audit)})
    {
        part->ShowWindow(m_showAudit ? SW_SHOW : SW_HIDE);
    }
    if (m_showAudit)
    {
        m_auditHeight = std::clamp(m_auditHeight, hostScale(60), std::max(hostScale(60), client.Height() - 2 * least));
        const int top = client.bottom - m_auditHeight;
        m_auditLabel.MoveWindow(client.left, top, client.Width(), line);
        m_audit.MoveWindow(client.left, top + line + 2, client.Width(), m_auditHeight - line - 2);
        m_auditBar.MoveWindow(client.left, top - bar, client.Width(), bar);
        client.bottom = top - bar;
    }

    m_listWidth = std::clamp(m_listWidth, hostScale(200), std::max(hostScale(200), client.Width() - hostScale(240)));
    const CRect left(client.left, client.top, client.left + m_listWidth, client.bottom);
    const int byWidth = hostScale(kSearchByWidth);
    const int labelWidth = hostScale(48);
    m_searchLabel.MoveWindow(left.left, left.top + (field - line) / 2 + 1, labelWidth, line);
    m_search.MoveWindow(left.left + labelWidth, left.top, left.Width() - labelWidth - byWidth - margin, field);
    m_searchBy.MoveWindow(left.right - byWidth, left.top, byWidth, hostScale(120));
    m_patients.MoveWindow(left.left, left.top + field + margin, left.Width(), left.Height() - field - margin);
    m_listBar.MoveWindow(left.right, left.top, bar, left.Height());

    CRect right(left.right + bar, client.top, client.right, client.bottom);
    m_name.MoveWindow(right.left, right.top, right.Width(), hostScale(kTitleHeight));
    right.top += hostScale(kTitleHeight) + hostScale(3);
    m_timepointsLabel.MoveWindow(right.left, right.top, right.Width(), line);
    right.top += line + 2;
    const int timepoints = std::min(hostScale(kTimepointsHeight), std::max(0, right.Height() / 3));
    m_timepoints.MoveWindow(right.left, right.top, right.Width(), timepoints);
    right.top += timepoints + margin;
    m_imagesLabel.MoveWindow(right.left, right.top, right.Width(), line);
    right.top += line + 2;
    m_images.MoveWindow(right.left, right.top, right.Width(), std::max(0, right.Height()));
}

LRESULT hostCFrame::OnSplit(WPARAM id, LPARAM position)
{
    CRect client;
    GetClientRect(&client);
    if (id == IDC_SPLIT_LIST)
    {
        m_listWidth = static_cast<int>(position) - hostScale(kMargin);
    }
    else
    {
        CRect audit;
        m_audit.GetWindowRect(&audit);
        ScreenToClient(&audit);
        m_auditHeight = audit.bottom - static_cast<int>(position) - hostCSplitBar::GetThickness();
    }
    Layout();
    return 0;
}

// Keys: accelerators first, then Tab, access keys, Enter and Esc as in a dialog.
BOOL hostCFrame::PreTranslateMessage(MSG* msg)
{
    return CFrameWnd::PreTranslateMessage(msg) || (m_hWnd != nullptr && ::IsDialogMessage(m_hWnd, msg));
}

void hostCFrame::OnActivate(UINT state, CWnd* other, BOOL minimized)
{
    if (state == WA_INACTIVE)
    {
        const HWND focus = ::GetFocus();
        m_lastFocus = ::IsChild(m_hWnd, focus) ? focus : m_lastFocus;
    }
    CFrameWnd::OnActivate(state, other, minimized);
}

void hostCFrame::OnSetFocus(CWnd*)
{
    ::SetFocus(::IsChild(m_hWnd, m_lastFocus) && ::IsWindowVisible(m_lastFocus) ? m_lastFocus : m_search.m_hWnd);
}

// The panes are reached as the controls of a dialog are.
LRESULT hostCFrame::OnNextDlgCtl(WPARAM control, LPARAM isHandle)
{
    ::SetFocus(isHandle != 0 ? reinterpret_cast<HWND>(control)
                             : ::GetNextDlgTabItem(m_hWnd, ::GetFocus(), control != 0));
    return 0;
}

void hostCFrame::OnNextPane()
{
    const std::array<HWND, 5> panes = {m_search.m_hWnd, m_patients.m_hWnd, m_timepoints.m_hWnd, m_images.m_hWnd,
                                       m_audit.m_hWnd};
    auto at = std::find(panes.begin(), panes.end(), ::GetFocus());
    at = at == panes.end() || at + 1 == panes.end() ? panes.begin() : at + 1;
    ::SetFocus(::IsWindowVisible(*at) ? *at : panes.front());
}

void hostCFrame::OnEnterKey()
{
    if (::GetFocus() == m_search.m_hWnd)
    {
        m_patients.SetFocus();
    }
    else if (::GetFocus() == m_patients.m_hWnd)
    {
        Run(ID_PATIENT_CHANGE);
    }
}

void hostCFrame::OnEscapeKey()
{
    m_search.SetWindowText("");
    m_search.SetFocus();
}

void hostCFrame::OnExit()
{
    PostMessage(WM_CLOSE);
}

void hostCFrame::OnCommandRange(UINT id)
{
    Run(id);
}

BOOL hostCFrame::OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* result)
{
    auto* header = reinterpret_cast<NMHDR*>(lParam);
    *result = 0;
    if (header->hwndFrom == m_patients.m_hWnd)
    {
        switch (header->code)
        {
        case LVN_GETDISPINFO:
            m_patients.OnGetDispInfo(reinterpret_cast<NMLVDISPINFO*>(lParam));
            return TRUE;
        case LVN_ODFINDITEM:
            *result = m_patients.OnFindItem(reinterpret_cast<NMLVFINDITEM*>(lParam));
            return TRUE;
        case LVN_ITEMCHANGED:
        case LVN_ODSTATECHANGED:
            // One look at the selection for a run of changes.
            if (!m_selectionPosted)
            {
                m_selectionPosted = TRUE;
                PostMessage(HOST_WM_SELECTION);
            }
            return TRUE;
        case NM_DBLCLK:
            Run(ID_PATIENT_CHANGE);
            return TRUE;
        case LVN_KEYDOWN:
            if (reinterpret_cast<NMLVKEYDOWN*>(lParam)->wVKey == VK_DELETE)
            {
                Run(ID_PATIENT_DELETE);
            }
            return TRUE;
        default:
            break;
        }
    }
    else if (header->hwndFrom == m_timepoints.m_hWnd && header->code == LVN_ITEMCHANGED)
    {
        const auto* change = reinterpret_cast<NMLISTVIEW*>(lParam);
        if (((change->uNewState ^ change->uOldState) & LVIS_SELECTED) != 0)
        {
            ShowTimepoint();
        }
        return TRUE;
    }
    return CFrameWnd::OnNotify(wParam, lParam, result);
}

void hostCFrame::OnSearchChanged()
{
    if (!m_session.GetPractice().IsOpen())
    {
        return;
    }
    CString text;
    m_search.GetWindowText(text);
    m_patients.Search(m_searchBy.GetCurSel() == 1 ? dbSearchID : dbSearchName, text);
    if (!text.IsEmpty())
    {
        m_patients.SelectFirst();
    }
    OnSelectionChanged(0, 0);
}

LRESULT hostCFrame::OnSelectionChanged(WPARAM, LPARAM)
{
    m_selectionPosted = FALSE;
    ShowSelected();
    ShowStatus();
    return 0;
}

// What others have changed shows up within a second, except while a dialog is open.
void hostCFrame::OnTimer(UINT_PTR id)
{
    if (id == kPollTimer && m_session.GetPractice().IsOpen() && IsWindowEnabled() &&
        dbCPatients::GetChangeCounter() != m_changeCounter)
    {
        Refresh();
    }
}

LRESULT hostCFrame::OnPatientChanged(WPARAM what, LPARAM guid)
{
    const std::unique_ptr<char[]> owned(reinterpret_cast<char*>(guid));
    switch (what)
    {
    case ARCHIVE_NOTIFY_LOADED:
        m_message = hostText(IDS_NOTIFY_LOADED);
        break;
    case ARCHIVE_NOTIFY_REMOVED:
        m_message = hostText(IDS_NOTIFY_REMOVED);
        break;
    case ARCHIVE_NOTIFY_MERGED:
        m_message = hostText(IDS_NOTIFY_MERGED);
        break;
    default:
        break;
    }
    Refresh();
    if (what != ARCHIVE_NOTIFY_REMOVED && owned)
    {
        m_patients.SelectGUID(owned.get());
    }
    return 0;
}

void hostCFrame::OnUpdateCommand(CCmdUI* ui)
{
    if (const hostSCommand* command = hostFindCommand(static_cast<int>(ui->m_nID)))
    {
        ui->Enable(IsOffered(*command));
        ui->SetCheck(IsChecked(command->id));
    }
}

void hostCFrame::OnMenuSelect(UINT item, UINT flags, HMENU menu)
{
    CString prompt;
    if ((flags & (MF_POPUP | MF_SEPARATOR | MF_SYSMENU)) == 0 && menu != nullptr)
    {
        prompt = hostText(item);
        const int end = prompt.Find('\n');
        prompt = end < 0 ? prompt : prompt.Left(end);
    }
    const CString text = menu == nullptr ? m_message : prompt;
    m_status.SendMessage(SB_SETTEXT, 0, reinterpret_cast<LPARAM>(text.GetString()));
}

void hostCFrame::OnContextMenu(CWnd* window, CPoint point)
{
    if (window == nullptr || window->m_hWnd != m_patients.m_hWnd)
    {
        return;
    }
    if (point.x == -1 && point.y == -1)
    {
        point = CPoint(hostScale(20), hostScale(40));
        m_patients.ClientToScreen(&point);
    }
    // The second menu of the bar is the patients'.
    CMenu* bar = GetMenu();
    CMenu* popup = bar != nullptr ? bar->GetSubMenu(1) : nullptr;
    if (popup != nullptr)
    {
        popup->TrackPopupMenu(TPM_LEFTALIGN | TPM_RIGHTBUTTON, point.x, point.y, this);
    }
}

BOOL hostCFrame::DoIdle()
{
    if (!m_session.GetPractice().IsOpen())
    {
        return FALSE;
    }
    const BOOL moreImages = m_images.LoadMore();
    const BOOL morePatients = m_patients.LoadMore();
    return moreImages || morePatients;
}
