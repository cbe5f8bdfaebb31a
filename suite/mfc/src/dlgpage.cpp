// CPropertyPage.
#include "wndaccess.h"

#include "suite/mfc/afxdlgs.h"
#include "suite/mfc/afxpriv.h"

IMPLEMENT_DYNAMIC(CPropertyPage, CDialog)

BEGIN_MESSAGE_MAP(CPropertyPage, CDialog)
END_MESSAGE_MAP()

CPropertyPage::CPropertyPage(UINT nIDTemplate, UINT nIDCaption, DWORD dwSize) : CDialog(nIDTemplate), m_psp{}
{
    m_psp.dwSize = dwSize;
    m_psp.dwFlags = PSP_USECALLBACK;
    m_psp.pszTemplate = MAKEINTRESOURCE(nIDTemplate);
    m_psp.pfnDlgProc = &AfxDlgProc;
    m_psp.pfnCallback = &CPropertyPage::PageCallback;
    m_psp.lParam = reinterpret_cast<LPARAM>(this);
    if (nIDCaption != 0 && m_strCaption.LoadString(nIDCaption))
    {
        m_psp.pszTitle = m_strCaption;
        m_psp.dwFlags |= PSP_USETITLE;
    }
    // With help in the program, a page has its Help button unless it gives it up.
    AFX_CMDHANDLERINFO info{};
    CWinApp* app = AfxGetApp();
    if (app != nullptr && app->OnCmdMsg(ID_HELP, CN_COMMAND, nullptr, &info))
    {
        m_psp.dwFlags |= PSP_HASHELP;
    }
}

CPropertyPage::~CPropertyPage() = default;

UINT CALLBACK CPropertyPage::PageCallback(HWND, UINT message, LPPROPSHEETPAGE pPropPage)
{
    if (message != PSPCB_CREATE)
    {
        return 1;
    }
    auto* page = reinterpret_cast<CPropertyPage*>(pPropPage->lParam);
    try
    {
        page->m_bFirstSetActive = true;
        page->m_bInitFailed = false;
        AfxHookWindowCreate(page);
        return 1;
    }
    catch (...)
    {
        AfxProcessCurrentException(nullptr);
        return 0; // the page is not created
    }
}

void CPropertyPage::PreInitDialog()
{
    AfxUnhookWindowCreate(); // its window has been found
    CDialog::PreInitDialog();
}

CPropertySheet* CPropertyPage::GetParentSheet() const
{
    return dynamic_cast<CPropertySheet*>(CWnd::FromHandlePermanent(::GetParent(m_hWnd)));
}

void CPropertyPage::EndDialog(int nEndID)
{
    if (CPropertySheet* sheet = GetParentSheet())
    {
        sheet->EndDialog(nEndID);
    }
}

void CPropertyPage::OnInitDialogFailed()
{
    m_bInitFailed = true;
    EndDialog(-1); // a sheet with a page that is not filled must not be used
}

BOOL CPropertyPage::OnSetActive()
{
    if (m_bFirstSetActive)
    {
        m_bFirstSetActive = false; // OnInitDialog has just filled the controls
    }
    else
    {
        UpdateData(FALSE);
    }
    return TRUE;
}

BOOL CPropertyPage::OnKillActive()
{
    return UpdateData(TRUE);
}

BOOL CPropertyPage::OnApply()
{
    OnOK();
    return TRUE;
}

void CPropertyPage::OnReset()
{
    OnCancel();
}

void CPropertyPage::OnOK()
{
    // The sheet closes, not the page.
}

void CPropertyPage::OnCancel()
{
}

BOOL CPropertyPage::OnQueryCancel()
{
    return TRUE;
}

BOOL CPropertyPage::PreTranslateMessage(MSG* pMsg)
{
    // The sheet comes next; it treats the keys of all its pages and buttons as one dialog.
    return CWnd::PreTranslateMessage(pMsg); // NOLINT(bugprone-parent-virtual-call)
}

BOOL CPropertyPage::OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* pResult)
{
    auto* header = reinterpret_cast<NMHDR*>(lParam);
    if (header->hwndFrom != ::GetParent(m_hWnd) && header->hwndFrom != m_hWnd)
    {
        return CDialog::OnNotify(wParam, lParam, pResult);
    }
    // What the sheet hears when a handler throws: that the page refused.
    LRESULT refusal = 0;
    try
    {
        switch (header->code)
        {
        case PSN_SETACTIVE:
            refusal = -1;
            *pResult = OnSetActive() ? 0 : -1;
            break;
        case PSN_KILLACTIVE:
            refusal = TRUE;
            *pResult = !OnKillActive();
            break;
        case PSN_APPLY:
            refusal = PSNRET_INVALID_NOCHANGEPAGE;
            *pResult = OnApply() ? PSNRET_NOERROR : PSNRET_INVALID_NOCHANGEPAGE;
            break;
        case PSN_RESET:
            OnReset();
            break;
        case PSN_QUERYCANCEL:
            *pResult = !OnQueryCancel();
            break;
        case PSN_HELP:
            SendMessage(WM_COMMANDHELP);
            break;
        default:
            return CDialog::OnNotify(wParam, lParam, pResult);
        }
    }
    catch (...)
    {
        const MSG message = *GetCurrentMessage();
        AfxProcessCurrentException(&message);
        *pResult = refusal;
    }
    return TRUE;
}
