// Property sheets and their pages.
//
// A modal sheet is made as a modeless one and then run by the framework's own loop, so that its messages pass
// through PreTranslateMessage like those of any dialog.
#include "suite/mfc/afxdlgs.h"
#include "suite/mfc/afxpriv.h"

// ---------------------------------------------------------------------------------------------------------
// CPropertyPage

IMPLEMENT_DYNAMIC(CPropertyPage, CDialog)

BEGIN_MESSAGE_MAP(CPropertyPage, CDialog)
END_MESSAGE_MAP()

CPropertyPage::CPropertyPage(UINT nIDTemplate, UINT nIDCaption, DWORD dwSize) : m_psp()
{
    m_lpszTemplateName = MAKEINTRESOURCE(nIDTemplate);
    m_psp.dwSize = dwSize;
    m_psp.hInstance = AfxFindResourceHandle(m_lpszTemplateName, RT_DIALOG);
    m_psp.pszTemplate = m_lpszTemplateName;
    m_psp.pfnDlgProc = PageProc;
    m_psp.lParam = reinterpret_cast<LPARAM>(this);
    if (nIDCaption != 0 && m_strCaption.LoadString(nIDCaption))
    {
        m_psp.dwFlags |= PSP_USETITLE;
        m_psp.pszTitle = m_strCaption;
    }
}

CPropertyPage::~CPropertyPage() = default;

// Attaches the page to its window with the first message that comes here, the dialog's initialisation, and lets
// the framework handle that as it does for every dialog.
INT_PTR CALLBACK CPropertyPage::PageProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message != WM_INITDIALOG)
        return FALSE;
    if (CWnd::FromHandlePermanent(hWnd) != nullptr)
        return TRUE;
    const auto* const pPsp = reinterpret_cast<const PROPSHEETPAGE*>(lParam);
    auto* const pPage = reinterpret_cast<CPropertyPage*>(pPsp->lParam);
    if (!pPage->SubclassWindow(hWnd))
        return FALSE;
    return ::SendMessage(hWnd, WM_INITDIALOG, wParam, lParam);
}

CPropertySheet* CPropertyPage::GetParentSheet() const
{
    return dynamic_cast<CPropertySheet*>(CWnd::FromHandlePermanent(::GetParent(m_hWnd)));
}

void CPropertyPage::EndDialog(int nEndID)
{
    if (CPropertySheet* const pSheet = GetParentSheet())
        pSheet->EndDialog(nEndID);
}

// A page that cannot be initialised ends the sheet, as a dialog ends itself.
void CPropertyPage::OnInitDialogFailed()
{
    EndDialog(-1);
}

void CPropertyPage::SetModified(BOOL bChanged)
{
    if (m_hWnd != nullptr)
        ::SendMessage(::GetParent(m_hWnd), bChanged ? PSM_CHANGED : PSM_UNCHANGED, reinterpret_cast<WPARAM>(m_hWnd), 0);
}

void CPropertyPage::CancelToClose()
{
    if (m_hWnd != nullptr)
        ::SendMessage(::GetParent(m_hWnd), PSM_CANCELTOCLOSE, 0, 0);
}

LRESULT CPropertyPage::QuerySiblings(WPARAM wParam, LPARAM lParam)
{
    return m_hWnd == nullptr ? 0 : ::SendMessage(::GetParent(m_hWnd), PSM_QUERYSIBLINGS, wParam, lParam);
}

BOOL CPropertyPage::OnSetActive()
{
    if (m_bFirstSetActive)
        m_bFirstSetActive = FALSE;
    else
        UpdateData(FALSE);
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
}

void CPropertyPage::OnCancel()
{
}

BOOL CPropertyPage::OnQueryCancel()
{
    return TRUE;
}

BOOL CPropertyPage::OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* pResult)
{
    const auto* const pHeader = reinterpret_cast<const NMHDR*>(lParam);
    // Controls of the page send notifications of their own; the sheet's come from the sheet or its tab.
    const HWND hSheet = ::GetParent(m_hWnd);
    if (pHeader->hwndFrom != hSheet && ::GetParent(pHeader->hwndFrom) != hSheet)
        return CDialog::OnNotify(wParam, lParam, pResult);
    if (CDialog::OnNotify(wParam, lParam, pResult))
        return TRUE;

    switch (pHeader->code)
    {
    case PSN_SETACTIVE:
        *pResult = OnSetActive() ? 0 : -1;
        return TRUE;
    case PSN_KILLACTIVE:
        *pResult = OnKillActive() ? FALSE : TRUE;
        return TRUE;
    case PSN_APPLY:
        *pResult = OnApply() ? PSNRET_NOERROR : PSNRET_INVALID_NOCHANGEPAGE;
        return TRUE;
    case PSN_RESET:
        OnReset();
        return TRUE;
    case PSN_QUERYCANCEL:
        *pResult = OnQueryCancel() ? FALSE : TRUE;
        return TRUE;
    case PSN_HELP:
        SendMessage(WM_COMMAND, ID_HELP);
        return TRUE;
    default:
        return FALSE;
    }
}

// Tab, Enter, Esc and the access keys belong to the sheet, whose buttons are among the controls to go to.
BOOL CPropertyPage::PreTranslateMessage(MSG* pMsg)
{
    return CWnd::PreTranslateMessage(pMsg);
}

// ---------------------------------------------------------------------------------------------------------
// CPropertySheet

IMPLEMENT_DYNAMIC(CPropertySheet, CWnd)

BEGIN_MESSAGE_MAP(CPropertySheet, CWnd)
    ON_MESSAGE(WM_INITDIALOG, &CPropertySheet::HandleInitDialog)
    ON_MESSAGE(WM_KICKIDLE, &CPropertySheet::OnKickIdle)
    ON_WM_CLOSE()
END_MESSAGE_MAP()

CPropertySheet::CPropertySheet()
{
    Construct("");
}

CPropertySheet::CPropertySheet(UINT nIDCaption, CWnd* pParentWnd, UINT iSelectPage)
{
    Construct(nIDCaption, pParentWnd, iSelectPage);
}

CPropertySheet::CPropertySheet(LPCTSTR pszCaption, CWnd* pParentWnd, UINT iSelectPage)
{
    Construct(pszCaption, pParentWnd, iSelectPage);
}

CPropertySheet::~CPropertySheet() = default;

void CPropertySheet::Construct(UINT nIDCaption, CWnd* pParentWnd, UINT iSelectPage)
{
    CString strCaption;
    strCaption.LoadString(nIDCaption);
    Construct(strCaption, pParentWnd, iSelectPage);
}

void CPropertySheet::Construct(LPCTSTR pszCaption, CWnd* pParentWnd, UINT iSelectPage)
{
    m_strCaption = pszCaption;
    m_pParentWnd = pParentWnd;
    m_psh = {};
    m_psh.dwSize = sizeof(m_psh);
    m_psh.dwFlags = PSH_PROPSHEETPAGE;
    m_psh.hInstance = AfxGetResourceHandle();
    m_psh.pszCaption = m_strCaption;
    m_psh.nStartPage = iSelectPage;
}

void CPropertySheet::AddPage(CPropertyPage* pPage)
{
    ASSERT(pPage != nullptr && m_hWnd == nullptr);
    m_pages.Add(pPage);
}

void CPropertySheet::RemovePage(int nPage)
{
    if (m_hWnd != nullptr)
        SendMessage(PSM_REMOVEPAGE, static_cast<WPARAM>(nPage));
    m_pages.RemoveAt(nPage);
}

int CPropertySheet::GetPageCount() const
{
    return static_cast<int>(m_pages.GetSize());
}

CPropertyPage* CPropertySheet::GetPage(int nPage) const
{
    return m_pages.GetAt(nPage);
}

int CPropertySheet::GetPageIndex(const CPropertyPage* pPage) const
{
    for (int i = 0; i < GetPageCount(); ++i)
    {
        if (GetPage(i) == pPage)
            return i;
    }
    return -1;
}

CTabCtrl* CPropertySheet::GetTabControl() const
{
    const auto hTab = reinterpret_cast<HWND>(::SendMessage(m_hWnd, PSM_GETTABCONTROL, 0, 0));
    return static_cast<CTabCtrl*>(CWnd::FromHandle(hTab));
}

int CPropertySheet::GetActiveIndex() const
{
    if (m_hWnd == nullptr)
        return static_cast<int>(m_psh.nStartPage);
    const auto hTab = reinterpret_cast<HWND>(::SendMessage(m_hWnd, PSM_GETTABCONTROL, 0, 0));
    return static_cast<int>(::SendMessage(hTab, TCM_GETCURSEL, 0, 0));
}

CPropertyPage* CPropertySheet::GetActivePage() const
{
    const int nActive = GetActiveIndex();
    return nActive >= 0 && nActive < GetPageCount() ? GetPage(nActive) : nullptr;
}

BOOL CPropertySheet::SetActivePage(int nPage)
{
    if (m_hWnd == nullptr)
    {
        m_psh.nStartPage = static_cast<UINT>(nPage);
        return TRUE;
    }
    return SendMessage(PSM_SETCURSEL, static_cast<WPARAM>(nPage)) != 0;
}

BOOL CPropertySheet::SetActivePage(CPropertyPage* pPage)
{
    const int nPage = GetPageIndex(pPage);
    return nPage >= 0 && SetActivePage(nPage);
}

void CPropertySheet::SetTitle(LPCTSTR lpszText, UINT nStyle)
{
    m_strCaption = lpszText;
    m_psh.pszCaption = m_strCaption;
    m_psh.dwFlags = (m_psh.dwFlags & ~static_cast<DWORD>(PSH_PROPTITLE)) | nStyle;
    if (m_hWnd != nullptr)
        SendMessage(PSM_SETTITLE, nStyle, reinterpret_cast<LPARAM>(lpszText));
}

BOOL CPropertySheet::PressButton(int nButton)
{
    return PostMessage(PSM_PRESSBUTTON, static_cast<WPARAM>(nButton));
}

void CPropertySheet::BuildPropPageArray()
{
    m_pspages.clear();
    for (int i = 0; i < GetPageCount(); ++i)
    {
        CPropertyPage* const pPage = GetPage(i);
        pPage->m_bFirstSetActive = TRUE;
        m_pspages.push_back(pPage->m_psp);
    }
    m_psh.ppsp = m_pspages.data();
    m_psh.nPages = static_cast<UINT>(m_pspages.size());
}

HWND CPropertySheet::CreateSheet(HWND hWndOwner)
{
    BuildPropPageArray();
    m_psh.hwndParent = hWndOwner;
    m_psh.dwFlags |= PSH_MODELESS;
    AfxHookWindowCreate(this);
    const INT_PTR nResult = ::PropertySheet(&m_psh);
    AfxUnhookWindowCreate();
    return nResult > 0 ? m_hWnd : nullptr;
}

INT_PTR CPropertySheet::DoModal()
{
    ASSERT(m_hWnd == nullptr);
    HWND hWndTop = nullptr;
    CWnd* const pOwner = CWnd::GetSafeOwner(m_pParentWnd, &hWndTop);
    const HWND hOwner = pOwner != nullptr ? pOwner->GetSafeHwnd() : nullptr;
    const bool bDisableOwner = hOwner != nullptr && ::IsWindowEnabled(hOwner);
    if (bDisableOwner)
        ::EnableWindow(hOwner, FALSE);
    if (::GetCapture() != nullptr)
        ::SendMessage(::GetCapture(), WM_CANCELMODE, 0, 0);

    m_bModeless = FALSE;
    m_bEndDialog = false;
    m_nModalResult = -1;
    m_bContinueModal = true;
    // A page or the sheet itself may have ended it while it was made.
    if (CreateSheet(hOwner) != nullptr && !m_bEndDialog)
        RunModalLoop(MLF_NOIDLEMSG);
    const INT_PTR nResult = m_nModalResult;

    // The owner must be enabled before the sheet goes, or another application comes to the front.
    if (m_hWnd != nullptr)
        ::ShowWindow(m_hWnd, SW_HIDE);
    if (bDisableOwner)
        ::EnableWindow(hOwner, TRUE);
    if (hOwner != nullptr && ::GetActiveWindow() == m_hWnd)
        ::SetActiveWindow(hOwner);
    if (m_hWnd != nullptr)
        DestroyWindow();
    if (hWndTop != nullptr)
        ::EnableWindow(hWndTop, TRUE);
    return nResult;
}

BOOL CPropertySheet::Create(CWnd* pParentWnd, DWORD, DWORD)
{
    m_bModeless = TRUE;
    return CreateSheet(pParentWnd != nullptr ? pParentWnd->GetSafeHwnd() : nullptr) != nullptr;
}

void CPropertySheet::EndDialog(int nEndID)
{
    if (m_bModeless)
    {
        DestroyWindow();
        return;
    }
    m_bEndDialog = true;
    EndModalLoop(nEndID);
}

void CPropertySheet::MapDialogRect(LPRECT lpRect) const
{
    ::MapDialogRect(m_hWnd, lpRect);
}

// Without an active page comctl32 has finished with the sheet (OK or Cancel went through).
BOOL CPropertySheet::ContinueModal()
{
    return CWnd::ContinueModal() && ::IsWindow(m_hWnd) && ::SendMessage(m_hWnd, PSM_GETCURRENTPAGEHWND, 0, 0) != 0;
}

BOOL CPropertySheet::OnInitDialog()
{
    const BOOL bResult = static_cast<BOOL>(Default());
    if (!m_bModeless)
        CenterWindow();
    return bResult;
}

LRESULT CPropertySheet::HandleInitDialog(WPARAM, LPARAM)
{
    return OnInitDialog();
}

void CPropertySheet::OnClose()
{
    if (m_bModeless)
        DestroyWindow();
    else
        SendMessage(WM_COMMAND, IDCANCEL);
}

// The page's controls have the commands whose states are asked for while the loop is idle.
LRESULT CPropertySheet::OnKickIdle(WPARAM wParam, LPARAM lParam)
{
    CPropertyPage* const pPage = GetActivePage();
    return pPage != nullptr && pPage->m_hWnd != nullptr ? pPage->SendMessage(WM_KICKIDLE, wParam, lParam) : 0;
}

BOOL CPropertySheet::OnCommand(WPARAM wParam, LPARAM lParam)
{
    if (CWnd::OnCommand(wParam, lParam))
        return TRUE;
    // comctl32 does the rest; should it end the sheet, this is the result.
    if (HIWORD(wParam) == BN_CLICKED && (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL))
        m_nModalResult = LOWORD(wParam);
    return FALSE;
}

BOOL CPropertySheet::PreTranslateMessage(MSG* pMsg)
{
    if (CWnd::PreTranslateMessage(pMsg))
        return TRUE;
    const bool bInput = (pMsg->message >= WM_KEYFIRST && pMsg->message <= WM_KEYLAST) ||
                        (pMsg->message >= WM_MOUSEFIRST && pMsg->message <= WM_MOUSELAST);
    return bInput && SendMessage(PSM_ISDIALOGMESSAGE, 0, reinterpret_cast<LPARAM>(pMsg)) != 0;
}
