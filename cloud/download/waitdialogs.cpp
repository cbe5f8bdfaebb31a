#include "cloud/download/waitdialogs.h"

#include "app/modalrun.h"
#include "app/velapp.h"
#include "cloud/queue/transferprogram.h"
#include "cloud/res/cloudres.h"

#include <array>

namespace
{
constexpr UINT_PTR PollTimer = 1;
constexpr UINT PollInterval = 500; // milliseconds
} // namespace

// ---------------------------------------------------------------------------------------------------------
// CFRVLogin

CFRVLogin::CFRVLogin(CWnd* pParent)
{
    if (!Create(IDD_CLD_SIGNING_IN, pParent))
        return;
    CenterWindow(pParent);
    ShowWindow(SW_SHOWNA);
    // Nothing else is drawn until the service has answered.
    UpdateWindow();
}

CFRVLogin::~CFRVLogin()
{
    if (GetSafeHwnd() != nullptr)
        DestroyWindow();
}

void CFRVLogin::OnOK()
{
}

void CFRVLogin::OnCancel()
{
}

// ---------------------------------------------------------------------------------------------------------
// CRaskoWaitDlg

BEGIN_MESSAGE_MAP(CRaskoWaitDlg, mfcCDialog)
ON_WM_TIMER()
ON_BN_CLICKED(IDC_CLD_SIGN_IN_HERE, &CRaskoWaitDlg::OnSignInHere)
END_MESSAGE_MAP()

CRaskoWaitDlg::CRaskoWaitDlg(CWnd* pParent, velCTransferProgram& program, velCCredentials& credentials)
    : mfcCDialog(IDD_CLD_RASKO_WAIT, pParent), m_program(program), m_credentials(credentials)
{
}

BOOL CRaskoWaitDlg::OnInitDialog()
{
    mfcCDialog::OnInitDialog();
    SendDlgItemMessage(IDC_CLD_PROGRESS, PBM_SETMARQUEE, TRUE, 0);
    if (m_program.Connect())
        m_program.EnterCredentials();
    SetTimer(PollTimer, PollInterval, nullptr);
    return TRUE;
}

BOOL CRaskoWaitDlg::OnHelpKey(UINT nHelpID)
{
    VelApp()->ShowHelp(nHelpID);
    return TRUE;
}

void CRaskoWaitDlg::OnTimer(UINT_PTR)
{
    // The call pumps messages while the program answers: no second one meanwhile.
    KillTimer(PollTimer);
    if (m_program.GetCredentials(m_credentials))
        EndDialog(IDOK);
    else if (GetSafeHwnd() != nullptr)
        SetTimer(PollTimer, PollInterval, nullptr);
}

void CRaskoWaitDlg::OnSignInHere()
{
    KillTimer(PollTimer);
    CSignInDlg dialog(this, m_credentials);
    if (velRunModal(dialog) == IDOK)
        EndDialog(IDOK);
    else
        SetTimer(PollTimer, PollInterval, nullptr);
}

// ---------------------------------------------------------------------------------------------------------
// CSignInDlg

BEGIN_MESSAGE_MAP(CSignInDlg, mfcCDialog)
ON_UPDATE_COMMAND_UI(IDOK, &CSignInDlg::OnUpdateOK)
END_MESSAGE_MAP()

CSignInDlg::CSignInDlg(CWnd* pParent, velCCredentials& credentials)
    : mfcCDialog(IDD_CLD_SIGN_IN, pParent), m_credentials(credentials)
{
}

BOOL CSignInDlg::OnInitDialog()
{
    mfcCDialog::OnInitDialog();
    SendDlgItemMessage(IDC_CLD_USER, EM_LIMITTEXT, 255);
    SendDlgItemMessage(IDC_CLD_PASSWORD, EM_LIMITTEXT, 255);
    SetDlgItemText(IDC_CLD_USER, m_credentials.GetUser());
    if (!m_credentials.IsKnown())
        return TRUE;
    // The name is likely right: what was refused is typed again.
    GotoDlgCtrl(GetDlgItem(IDC_CLD_PASSWORD));
    return FALSE;
}

BOOL CSignInDlg::OnHelpKey(UINT nHelpID)
{
    VelApp()->ShowHelp(nHelpID);
    return TRUE;
}

void CSignInDlg::OnUpdateOK(CCmdUI* pCmdUI)
{
    pCmdUI->Enable(::GetWindowTextLength(GetDlgItem(IDC_CLD_USER)->m_hWnd) > 0);
}

void CSignInDlg::OnOK()
{
    std::array<char, 256> user{}, password{};
    ::GetDlgItemText(m_hWnd, IDC_CLD_USER, user.data(), static_cast<int>(user.size()));
    ::GetDlgItemText(m_hWnd, IDC_CLD_PASSWORD, password.data(), static_cast<int>(password.size()));
    m_credentials.Set(user.data(), password.data());
    ::SecureZeroMemory(password.data(), password.size());
    SetDlgItemText(IDC_CLD_PASSWORD, "");
    if (m_credentials.IsKnown())
        mfcCDialog::OnOK();
}
