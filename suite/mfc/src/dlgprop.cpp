// CPropertySheet.
#include "wndaccess.h"

#include "suite/mfc/afxdlgs.h"
#include "suite/mfc/afxpriv.h"

IMPLEMENT_DYNAMIC(CPropertySheet, CWnd)

BEGIN_MESSAGE_MAP(CPropertySheet, CWnd)
ON_MESSAGE(WM_INITDIALOG, &CPropertySheet::HandleInitDialog)
ON_MESSAGE(WM_KICKIDLE, &CPropertySheet::OnKickIdle)
ON_MESSAGE(WM_COMMANDHELP, &CPropertySheet::OnCommandHelp)
ON_MESSAGE(PSM_PRESSBUTTON, &CPropertySheet::OnPressButton)
ON_WM_CLOSE()
ON_WM_SYSCOMMAND()
END_MESSAGE_MAP()

CPropertySheet::CPropertySheet(LPCTSTR pszCaption, CWnd* pParentWnd, UINT iSelectPage)
{
    Construct(pszCaption, pParentWnd, iSelectPage);
}

CPropertySheet::~CPropertySheet() = default;

void CPropertySheet::Construct(LPCTSTR pszCaption, CWnd* pParentWnd, UINT iSelectPage)
{
    m_strCaption = pszCaption;
    m_pParentWnd = pParentWnd;
    m_psh = PROPSHEETHEADER{};
    m_psh.dwSize = sizeof(m_psh);
    m_psh.dwFlags = PSH_PROPSHEETPAGE;
    m_psh.nStartPage = iSelectPage;
}

// ---------------------------------------------------------------------------------------------------------
// Pages

void CPropertySheet::AddPage(CPropertyPage* pPage)
{
    ASSERT(pPage != nullptr);
    m_pages.Add(pPage);
    if (m_hWnd != nullptr)
    {
        PROPSHEETPAGE description = Describe(*pPage);
        const HPROPSHEETPAGE handle = ::CreatePropertySheetPage(&description);
        if (handle == nullptr || !Ask<BOOL>(PSM_ADDPAGE, 0, handle))
        {
            m_pages.RemoveAt(m_pages.GetSize() - 1);
            AfxThrowMemoryException();
        }
    }
}

CPropertyPage* CPropertySheet::GetPage(int nPage) const
{
    return m_pages.GetAt(nPage);
}

int CPropertySheet::GetActiveIndex() const
{
    if (m_hWnd == nullptr)
    {
        return static_cast<int>(m_psh.nStartPage);
    }
    return static_cast<int>(::SendMessage(Ask<HWND>(PSM_GETTABCONTROL), TCM_GETCURSEL, 0, 0));
}

CPropertyPage* CPropertySheet::GetActivePage() const
{
    if (m_hWnd != nullptr)
    {
        return dynamic_cast<CPropertyPage*>(CWnd::FromHandlePermanent(Ask<HWND>(PSM_GETCURRENTPAGEHWND)));
    }
    return GetPage(GetActiveIndex());
}

BOOL CPropertySheet::SetActivePage(int nPage)
{
    if (m_hWnd == nullptr)
    {
        m_psh.nStartPage = static_cast<UINT>(nPage);
        return TRUE;
    }
    return Ask<BOOL>(PSM_SETCURSEL, nPage);
}

CTabCtrl* CPropertySheet::GetTabControl() const
{
    return static_cast<CTabCtrl*>(CWnd::FromHandle(Ask<HWND>(PSM_GETTABCONTROL)));
}

PROPSHEETPAGE CPropertySheet::Describe(const CPropertyPage& page)
{
    PROPSHEETPAGE description = page.m_psp;
    description.hInstance = AfxFindResourceHandle(description.pszTemplate, RT_DIALOG);
    return description;
}

void CPropertySheet::BuildPropPageArray()
{
    m_pspages.clear();
    for (int index = 0; index < m_pages.GetSize(); ++index)
    {
        m_pspages.push_back(Describe(*GetPage(index)));
    }
    m_psh.ppsp = m_pspages.data();
    m_psh.nPages = static_cast<UINT>(m_pspages.size());
}

// ---------------------------------------------------------------------------------------------------------
// The run

int CALLBACK CPropertySheet::SheetCallback(HWND, UINT message, LPARAM lParam)
{
    if (message == PSCB_PRECREATE)
    {
        // Shown when it is complete. The style stands elsewhere in an extended template.
        auto* plain = reinterpret_cast<DLGTEMPLATE*>(lParam);
        auto* words = reinterpret_cast<WORD*>(lParam);
        DWORD* style = words[1] == 0xFFFF ? reinterpret_cast<DWORD*>(words + 6) : &plain->style;
        *style &= ~static_cast<DWORD>(WS_VISIBLE);
    }
    return 0;
}

HWND CPropertySheet::CreateSheet(HWND hWndOwner)
{
    INITCOMMONCONTROLSEX controls{sizeof(controls), ICC_TAB_CLASSES};
    ::InitCommonControlsEx(&controls);
    BuildPropPageArray();
    m_psh.dwFlags |= PSH_MODELESS | PSH_USECALLBACK;
    m_psh.pfnCallback = &CPropertySheet::SheetCallback;
    m_psh.pszCaption = m_strCaption;
    m_psh.hwndParent = hWndOwner;
    m_psh.hInstance = AfxGetInstanceHandle();
    m_nModalResult = 0;
    m_bContinueModal = true;
    AfxUnhookWindowCreate();
    AfxHookWindowCreate(this);
    const INT_PTR created = ::PropertySheet(&m_psh);
    AfxUnhookWindowCreate();
    m_psh.dwFlags &= ~static_cast<DWORD>(PSH_MODELESS);
    return created > 0 ? m_hWnd : nullptr;
}

BOOL CPropertySheet::Create(CWnd* pParentWnd, DWORD dwStyle, DWORD dwExStyle)
{
    m_bModeless = TRUE;
    if (CreateSheet(pParentWnd != nullptr ? pParentWnd->m_hWnd : nullptr) == nullptr)
    {
        return FALSE;
    }
    if (dwStyle != static_cast<DWORD>(-1))
    {
        ModifyStyle(0, dwStyle & ~static_cast<DWORD>(WS_VISIBLE));
    }
    ModifyStyleEx(0, dwExStyle);
    if ((dwStyle & WS_VISIBLE) != 0)
    {
        ShowWindow(SW_SHOWNORMAL);
    }
    return TRUE;
}

INT_PTR CPropertySheet::DoModal()
{
    m_bModeless = FALSE;
    HWND top = nullptr;
    const CWnd* ownerWnd = CWnd::GetSafeOwner(m_pParentWnd, &top);
    const HWND owner = ownerWnd != nullptr ? ownerWnd->m_hWnd : nullptr;
    const bool disabled = owner != nullptr && owner != ::GetDesktopWindow() && ::IsWindowEnabled(owner);
    if (disabled)
    {
        ::EnableWindow(owner, FALSE);
    }
    int result = -1;
    try
    {
        if (CreateSheet(owner) != nullptr)
        {
            result = m_bContinueModal ? RunModalLoop(MLF_SHOWONIDLE) : m_nModalResult;
            if (m_hWnd != nullptr)
            {
                SetWindowPos(nullptr, 0, 0, 0, 0,
                             SWP_HIDEWINDOW | SWP_NOSIZE | SWP_NOMOVE | SWP_NOACTIVATE | SWP_NOZORDER);
            }
        }
    }
    catch (...)
    {
        AfxProcessCurrentException(nullptr);
        result = -1;
    }
    if (disabled)
    {
        ::EnableWindow(owner, TRUE);
    }
    if (owner != nullptr && m_hWnd != nullptr && ::GetActiveWindow() == m_hWnd)
    {
        ::SetActiveWindow(owner);
    }
    DestroyWindow();
    if (top != nullptr && ::IsWindow(top))
    {
        ::EnableWindow(top, TRUE);
    }
    return result;
}

BOOL CPropertySheet::ContinueModal()
{
    // The system's OK and Cancel end a modeless sheet by leaving it without a current page.
    return CWnd::ContinueModal() && Ask<HWND>(PSM_GETCURRENTPAGEHWND) != nullptr;
}

void CPropertySheet::EndDialog(int nEndID)
{
    EndModalLoop(nEndID);
    if (m_bModeless)
    {
        DestroyWindow();
    }
}

BOOL CPropertySheet::DestroyWindow()
{
    return CWnd::DestroyWindow();
}

// ---------------------------------------------------------------------------------------------------------
// Messages

LRESULT CPropertySheet::HandleInitDialog(WPARAM, LPARAM)
{
    CRect before(0, 0, 0, 0);
    GetWindowRect(&before);
    BOOL result = FALSE;
    try
    {
        result = OnInitDialog();
    }
    catch (...)
    {
        const MSG message = *GetCurrentMessage();
        AfxProcessCurrentException(&message);
        EndModalLoop(-1);
        return FALSE;
    }
    CRect after(0, 0, 0, 0);
    GetWindowRect(&after);
    if (before.TopLeft() == after.TopLeft() && !IsWindowVisible())
    {
        CenterWindow();
    }
    return result;
}

BOOL CPropertySheet::OnInitDialog()
{
    return static_cast<BOOL>(Default()); // comctl32 makes the tabs and the first page
}

BOOL CPropertySheet::PreTranslateMessage(MSG* pMsg)
{
    if (CWnd::PreTranslateMessage(pMsg))
    {
        return TRUE;
    }
    if (AfxIsSwallowedEscape(*pMsg))
    {
        // Cancels the sheet; the edit control would send it to the page.
        const HWND cancel = ::GetDlgItem(m_hWnd, IDCANCEL);
        if (cancel != nullptr && ::IsWindowEnabled(cancel))
        {
            SendMessage(WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), reinterpret_cast<LPARAM>(cancel));
            return TRUE;
        }
    }
    // Ctrl+Tab, Ctrl+PgUp and Ctrl+PgDn change the page.
    const bool changesPage = pMsg->message == WM_KEYDOWN && ::GetKeyState(VK_CONTROL) < 0 &&
                             (pMsg->wParam == VK_TAB || pMsg->wParam == VK_PRIOR || pMsg->wParam == VK_NEXT);
    if (changesPage && Ask<BOOL>(PSM_ISDIALOGMESSAGE, 0, pMsg))
    {
        return TRUE;
    }
    return PreTranslateInput(pMsg);
}

BOOL CPropertySheet::OnCmdMsg(UINT nID, int nCode, void* pExtra, AFX_CMDHANDLERINFO* pHandlerInfo)
{
    if (CWnd::OnCmdMsg(nID, nCode, pExtra, pHandlerInfo))
    {
        return TRUE;
    }
    const bool command = nCode == CN_COMMAND || static_cast<UINT>(nCode) == CN_UPDATE_COMMAND_UI;
    if (!command || (nID & 0x8000) == 0 || nID >= 0xF000)
    {
        return FALSE;
    }
    CWnd* parent = GetParent();
    if (parent != nullptr && parent->OnCmdMsg(nID, nCode, pExtra, pHandlerInfo))
    {
        return TRUE;
    }
    CWinThread* thread = AfxGetThread();
    return thread != nullptr && thread->OnCmdMsg(nID, nCode, pExtra, pHandlerInfo);
}

BOOL CPropertySheet::OnCommand(WPARAM wParam, LPARAM lParam)
{
    if (CWnd::OnCommand(wParam, lParam))
    {
        return TRUE; // the sheet's own handler
    }
    // The button becomes the result, should it close the sheet.
    const auto button = reinterpret_cast<HWND>(lParam);
    if (button != nullptr && HIWORD(wParam) == BN_CLICKED &&
        (::SendMessage(button, WM_GETDLGCODE, 0, 0) & (DLGC_UNDEFPUSHBUTTON | DLGC_DEFPUSHBUTTON)) != 0)
    {
        m_nModalResult = LOWORD(wParam);
    }
    return FALSE;
}

LRESULT CPropertySheet::DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    const LRESULT result = CWnd::DefWindowProc(message, wParam, lParam);
    if (message == PSM_SETCURSEL || message == PSM_SETCURSELID || message == PSM_ISDIALOGMESSAGE ||
        message == WM_NOTIFY)
    {
        KeepFocusVisible();
    }
    return result;
}

// What is typed after another page has come up must not go to a control of the page that was left.
void CPropertySheet::KeepFocusVisible()
{
    const HWND focus = ::GetFocus();
    if (focus == nullptr || !::IsWindowVisible(m_hWnd) || !::IsChild(m_hWnd, focus) ||
        ::IsWindowVisible(focus))
    {
        return;
    }
    const HWND page = Ask<HWND>(PSM_GETCURRENTPAGEHWND);
    HWND next = page != nullptr ? ::GetNextDlgTabItem(page, nullptr, FALSE) : nullptr;
    if (next == nullptr)
    {
        next = Ask<HWND>(PSM_GETTABCONTROL);
    }
    SendMessage(WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(next), TRUE);
}

LRESULT CPropertySheet::OnPressButton(WPARAM wParam, LPARAM)
{
    // As a click, so that the sheet's handlers are asked.
    int id = 0;
    switch (wParam)
    {
    case PSBTN_OK:
    case PSBTN_FINISH:
        id = IDOK;
        break;
    case PSBTN_CANCEL:
        id = IDCANCEL;
        break;
    default:
        return Default();
    }
    const HWND button = ::GetDlgItem(m_hWnd, id);
    SendMessage(WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(button));
    return 0;
}

void CPropertySheet::OnClose()
{
    if (m_bModeless)
    {
        DestroyWindow();
        return;
    }
    m_nModalResult = IDCANCEL;
    Default();
}

void CPropertySheet::OnSysCommand(UINT nID, LPARAM)
{
    if ((nID & 0xFFF0) == SC_CLOSE)
    {
        m_nModalResult = IDCANCEL;
    }
    Default();
}

LRESULT CPropertySheet::OnKickIdle(WPARAM wParam, LPARAM lParam)
{
    const HWND page = Ask<HWND>(PSM_GETCURRENTPAGEHWND);
    return page != nullptr ? ::SendMessage(page, WM_KICKIDLE, wParam, lParam) : 0;
}

LRESULT CPropertySheet::OnCommandHelp(WPARAM wParam, LPARAM lParam)
{
    CPropertyPage* page = GetActivePage();
    return page != nullptr ? page->SendMessage(WM_COMMANDHELP, wParam, lParam) : 0;
}
