// CDialog.
#include "wndaccess.h"
#include "handlemap.h"

#include "suite/mfc/afxpriv.h"

#include <utility>

IMPLEMENT_DYNAMIC(CDialog, CWnd)

BEGIN_MESSAGE_MAP(CDialog, CWnd)
ON_COMMAND(IDOK, &CDialog::OnOK)
ON_COMMAND(IDCANCEL, &CDialog::OnCancel)
ON_MESSAGE(WM_INITDIALOG, &CDialog::HandleInitDialog)
ON_MESSAGE(WM_SETFONT, &CDialog::HandleSetFont)
ON_MESSAGE(WM_COMMANDHELP, &CDialog::OnCommandHelp)
END_MESSAGE_MAP()

namespace
{
struct Template
{
    LPCDLGTEMPLATE dialog = nullptr;
    HINSTANCE module = nullptr;
};

Template LoadDialogTemplate(LPCTSTR name)
{
    Template found;
    found.module = AfxFindResourceHandle(name, RT_DIALOG);
    if (HRSRC resource = ::FindResource(found.module, name, RT_DIALOG))
    {
        found.dialog = static_cast<LPCDLGTEMPLATE>(::LockResource(::LoadResource(found.module, resource)));
    }
    return found;
}

// A template at the origin without a rule of its own asks to be centred.
bool AsksForCentre(LPCDLGTEMPLATE dialog)
{
    struct Extended // the head of DLGTEMPLATEEX
    {
        WORD dlgVer;
        WORD signature;
        DWORD helpID;
        DWORD exStyle;
        DWORD style;
        WORD cDlgItems;
        short x;
        short y;
    };
    DWORD style = dialog->style;
    short x = dialog->x;
    short y = dialog->y;
    const auto* extended = reinterpret_cast<const Extended*>(dialog);
    if (extended->signature == 0xFFFF)
    {
        style = extended->style;
        x = extended->x;
        y = extended->y;
    }
    return (style & (DS_CENTER | DS_CENTERMOUSE | DS_ABSALIGN | WS_CHILD)) == 0 && x == 0 && y == 0;
}

// Disables windows while a modal dialog is up, and enables them again exactly once.
class DisabledWindows
{
public:
    explicit DisabledWindows(HWND parent)
    {
        if (parent != nullptr && parent != ::GetDesktopWindow() && ::IsWindowEnabled(parent))
        {
            ::EnableWindow(parent, FALSE);
            m_parent = parent;
        }
    }
    ~DisabledWindows()
    {
        Enable();
    }
    DisabledWindows(const DisabledWindows&) = delete;
    DisabledWindows& operator=(const DisabledWindows&) = delete;
    void Enable()
    {
        if (m_parent != nullptr)
        {
            ::EnableWindow(std::exchange(m_parent, nullptr), TRUE);
        }
    }

private:
    HWND m_parent = nullptr;
};
} // namespace

CDialog::CDialog() = default;

CDialog::CDialog(UINT nIDTemplate, CWnd* pParentWnd)
    : m_nIDHelp(nIDTemplate), m_lpszTemplateName(MAKEINTRESOURCE(nIDTemplate)), m_pParentWnd(pParentWnd)
{
}

CDialog::~CDialog()
{
    if (m_hWnd != nullptr)
    {
        TRACE("a dialog object is destroyed before its window\n");
        CWnd::DestroyWindow();
    }
}

// ---------------------------------------------------------------------------------------------------------
// Modeless

BOOL CDialog::Create(UINT nIDTemplate, CWnd* pParentWnd)
{
    return Create(MAKEINTRESOURCE(nIDTemplate), pParentWnd);
}

BOOL CDialog::Create(LPCTSTR lpszTemplateName, CWnd* pParentWnd)
{
    m_lpszTemplateName = lpszTemplateName;
    if (IS_INTRESOURCE(lpszTemplateName) && m_nIDHelp == 0)
    {
        m_nIDHelp = LOWORD(reinterpret_cast<ULONG_PTR>(lpszTemplateName));
    }
    const Template found = LoadDialogTemplate(lpszTemplateName);
    return found.dialog != nullptr && CreateIndirect(found.dialog, pParentWnd, found.module);
}

BOOL CDialog::CreateIndirect(LPCDLGTEMPLATE lpDialogTemplate, CWnd* pParentWnd, HINSTANCE hInst)
{
    if (pParentWnd == nullptr)
    {
        pParentWnd = AfxGetMainWnd();
    }
    m_lpDialogTemplate = lpDialogTemplate;
    m_bInitFailed = false;
    return CreateDlgIndirect(lpDialogTemplate, pParentWnd, hInst);
}

// ---------------------------------------------------------------------------------------------------------
// Modal

HWND CDialog::PreModal()
{
    ASSERT(m_hWnd == nullptr);
    CWnd* owner = CWnd::GetSafeOwner(m_pParentWnd, &m_hWndTop);
    return owner != nullptr ? owner->m_hWnd : nullptr;
}

void CDialog::PostModal()
{
    if (m_hWndTop != nullptr)
    {
        if (::IsWindow(m_hWndTop))
        {
            ::EnableWindow(m_hWndTop, TRUE);
        }
        m_hWndTop = nullptr;
    }
}

INT_PTR CDialog::DoModal()
{
    Template source{m_lpDialogTemplate, AfxGetResourceHandle()};
    if (m_lpszTemplateName != nullptr)
    {
        source = LoadDialogTemplate(m_lpszTemplateName);
    }
    if (source.dialog == nullptr)
    {
        return -1;
    }
    m_lpDialogTemplate = source.dialog;
    m_bInitFailed = false;
    m_nModalResult = -1;
    const HWND owner = PreModal();
    DisabledWindows disabled(owner);
    AfxUnhookWindowCreate();
    int result = -1;
    try
    {
        if (CreateDlgIndirect(source.dialog, CWnd::FromHandle(owner), source.module))
        {
            DWORD flags = MLF_SHOWONIDLE;
            if ((GetStyle() & DS_NOIDLEMSG) != 0)
            {
                flags |= MLF_NOIDLEMSG;
            }
            result = RunModalLoop(flags);
            if (m_hWnd != nullptr)
            {
                // Hidden before the owner is enabled, so that the owner is activated and not another program.
                SetWindowPos(nullptr, 0, 0, 0, 0,
                             SWP_HIDEWINDOW | SWP_NOSIZE | SWP_NOMOVE | SWP_NOACTIVATE | SWP_NOZORDER);
            }
        }
        else if (!m_bInitFailed)
        {
            result = m_nModalResult; // ended while it was initialised
        }
    }
    catch (CException* e)
    {
        AfxProcessWndProcException(e, nullptr);
        e->Delete();
        result = -1;
    }
    catch (...)
    {
        AfxProcessCurrentException(nullptr);
        result = -1;
    }
    disabled.Enable();
    if (owner != nullptr && ::GetActiveWindow() == m_hWnd && m_hWnd != nullptr)
    {
        ::SetActiveWindow(owner);
    }
    DestroyWindow();
    PostModal();
    return result;
}

void CDialog::EndDialog(int nResult)
{
    ASSERT(::IsWindow(m_hWnd));
    EndModalLoop(nResult); // of several calls the last one's result is the dialog's
    ::EndDialog(m_hWnd, nResult);
}

// ---------------------------------------------------------------------------------------------------------
// Initialisation

INT_PTR CALLBACK AfxDlgProc(HWND hWnd, UINT message, WPARAM, LPARAM)
{
    if (message != WM_INITDIALOG)
    {
        return FALSE;
    }
    auto* dialog = dynamic_cast<CDialog*>(CWnd::FromHandlePermanent(hWnd));
    if (dialog == nullptr)
    {
        return TRUE;
    }
    try
    {
        return dialog->OnInitDialog();
    }
    catch (...)
    {
        const MSG initialising{hWnd, message, 0, 0, 0, {}};
        AfxProcessCurrentException(&initialising);
        AfxDialogAccess::InitFailed(*dialog);
        return FALSE;
    }
}

LRESULT CDialog::HandleInitDialog(WPARAM, LPARAM)
{
    PreInitDialog();
    CRect before(0, 0, 0, 0);
    GetWindowRect(&before);
    const LRESULT result = Default(); // calls OnInitDialog by way of the dialog procedure
    if (m_hWnd != nullptr && m_lpDialogTemplate != nullptr && AsksForCentre(m_lpDialogTemplate) &&
        !IsWindowVisible())
    {
        CRect after(0, 0, 0, 0);
        GetWindowRect(&after);
        if (before.TopLeft() == after.TopLeft())
        {
            CenterWindow(); // unless the dialog placed itself
        }
    }
    return result;
}

void CDialog::PreInitDialog()
{
}

BOOL CDialog::OnInitDialog()
{
    if (!UpdateData(FALSE))
    {
        TRACE("the initial data exchange failed\n");
        OnInitDialogFailed();
        return FALSE;
    }
    return TRUE; // the system sets the focus
}

void CDialog::OnInitDialogFailed()
{
    m_bInitFailed = true;
    m_nModalResult = -1;
    m_bContinueModal = false;
}

LRESULT CDialog::HandleSetFont(WPARAM wParam, LPARAM)
{
    OnSetFont(CFont::FromHandle(reinterpret_cast<HFONT>(wParam)));
    return Default();
}

void CDialog::OnSetFont(CFont*)
{
}

void CDialog::OnOK()
{
    if (UpdateData(TRUE))
    {
        EndDialog(IDOK);
    }
}

void CDialog::OnCancel()
{
    EndDialog(IDCANCEL);
}

// ---------------------------------------------------------------------------------------------------------
// Routing

BOOL CDialog::OnCmdMsg(UINT nID, int nCode, void* pExtra, AFX_CMDHANDLERINFO* pHandlerInfo)
{
    if (CWnd::OnCmdMsg(nID, nCode, pExtra, pHandlerInfo))
    {
        return TRUE;
    }
    // Only commands and their state go on, not the notifications of controls.
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

bool AfxIsSwallowedEscape(const MSG& message)
{
    if (message.message != WM_KEYDOWN || message.wParam != VK_ESCAPE)
    {
        return false;
    }
    // By what the control says of itself: a class made from the edit control's may have any name.
    constexpr LRESULT editOfSeveralLines = DLGC_HASSETSEL | DLGC_WANTALLKEYS;
    const LRESULT code = ::SendMessage(message.hwnd, WM_GETDLGCODE, 0, 0);
    return (code & editOfSeveralLines) == editOfSeveralLines;
}

BOOL CDialog::PreTranslateMessage(MSG* pMsg)
{
    if (CWnd::PreTranslateMessage(pMsg))
    {
        return TRUE;
    }
    if (AfxIsSwallowedEscape(*pMsg))
    {
        const HWND cancel = ::GetDlgItem(m_hWnd, IDCANCEL);
        if (cancel == nullptr || ::IsWindowEnabled(cancel))
        {
            SendMessage(WM_COMMAND, IDCANCEL, 0);
            return TRUE;
        }
    }
    return PreTranslateInput(pMsg);
}

LRESULT CDialog::OnCommandHelp(WPARAM, LPARAM lParam)
{
    if (lParam == 0 && m_nIDHelp != 0)
    {
        if (CWinApp* app = AfxGetApp())
        {
            app->WinHelp(HID_BASE_RESOURCE + m_nIDHelp);
            return TRUE;
        }
    }
    return FALSE;
}

// ---------------------------------------------------------------------------------------------------------
// Controls

void CDialog::GotoDlgCtrl(CWnd* pWndCtrl)
{
    SendMessage(WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(pWndCtrl->m_hWnd), 1);
}

void CDialog::MapDialogRect(LPRECT lpRect) const
{
    ::MapDialogRect(m_hWnd, lpRect);
}
