#include "suite/rasko/program/optionsdialog.h"

#include "suite/patients/velpat.h"
#include "suite/rasko/program/credentials.h"

namespace
{
constexpr int LongestName = 200, LongestPassword = 500;

rasko::Secret WindowText(CWnd& dialog, int control)
{
    // As UTF-16 from the control: a password may hold what the code page does not.
    wchar_t text[LongestPassword + 1] = L"";
    const int length = GetDlgItemTextW(dialog.m_hWnd, control, text, LongestPassword + 1);
    char utf8[4 * LongestPassword];
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, length, utf8, sizeof utf8, nullptr, nullptr);
    rasko::Secret result(std::string_view(utf8, static_cast<std::size_t>(size)));
    SecureZeroMemory(text, sizeof text);
    SecureZeroMemory(utf8, sizeof utf8);
    return result;
}
} // namespace

BEGIN_MESSAGE_MAP(CRaskoOptions, mfcCDialog)
ON_BN_CLICKED(IDC_FORGET, &CRaskoOptions::OnForget)
END_MESSAGE_MAP()

CRaskoOptions::~CRaskoOptions()
{
    s_open = false;
}

BOOL CRaskoOptions::OnInitDialog()
{
    mfcCDialog::OnInitDialog();
    s_open = true;
    m_settings = rasko::Settings::Load();
    for (const auto& [control, limit] : {std::pair{IDC_USER, LongestName},
                                         {IDC_PASSWORD, LongestPassword},
                                         {IDC_SERVICE, LongestName},
                                         {IDC_FOLDER, MAX_PATH - 1}})
        SendDlgItemMessage(control, EM_SETLIMITTEXT, static_cast<WPARAM>(limit));
    SetDlgItemText(IDC_SERVICE, m_settings.target);
    SetDlgItemText(IDC_FOLDER, m_settings.folder);
    CheckDlgButton(IDC_HIDDEN, m_settings.hidden ? BST_CHECKED : BST_UNCHECKED);
    const auto credentials = rasko::LoadCredentials(rasko::ToUtf8(m_settings.target));
    if (credentials)
        SetDlgItemText(IDC_USER, rasko::FromUtf8(credentials->user));
    GetDlgItem(IDC_FORGET)->EnableWindow(credentials.has_value());
    return TRUE;
}

/// Takes effect at once, whatever becomes of the other fields.
void CRaskoOptions::OnForget()
{
    CString question;
    question.Format(IDS_ASK_FORGET, m_settings.target.GetString());
    if (AfxMessageBox(question, MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2) != IDYES ||
        !rasko::StoreCredentials(rasko::ToUtf8(m_settings.target), {}))
        return;
    SetDlgItemText(IDC_USER, "");
    SetDlgItemText(IDC_PASSWORD, "");
    GetDlgItem(IDC_USER)->SetFocus();
    GetDlgItem(IDC_FORGET)->EnableWindow(FALSE);
}

void CRaskoOptions::Refuse(UINT message, int control)
{
    AfxMessageBox(message, MB_OK | MB_ICONEXCLAMATION);
    GetDlgItem(control)->SetFocus();
    SendDlgItemMessage(control, EM_SETSEL, 0, -1);
}

void CRaskoOptions::OnOK()
{
    rasko::Settings settings = m_settings;
    GetDlgItemText(IDC_SERVICE, settings.target);
    GetDlgItemText(IDC_FOLDER, settings.folder);
    settings.target.Trim();
    settings.folder.Trim();
    settings.hidden = IsDlgButtonChecked(IDC_HIDDEN) == BST_CHECKED;
    const std::string service = rasko::ToUtf8(settings.target);
    const auto stored = rasko::LoadCredentials(service);
    const rasko::Credentials credentials{std::string(WindowText(*this, IDC_USER).View()),
                                         WindowText(*this, IDC_PASSWORD)};
    const bool kept = credentials.password.IsEmpty() && stored && stored->user == credentials.user;
    if (credentials.user.empty() || (credentials.password.IsEmpty() && !kept))
        return Refuse(IDS_NO_CREDENTIALS, credentials.user.empty() ? IDC_USER : IDC_PASSWORD);
    if (!rasko::IsServiceName(settings.target))
        return Refuse(IDS_SERVICE_WRONG, IDC_SERVICE);
    if (!rasko::IsWritableFolder(settings.folder))
        return Refuse(IDS_FOLDER_WRONG, IDC_FOLDER);
    settings.Store();
    if (!kept && !rasko::StoreCredentials(service, credentials))
        return Refuse(IDS_NOT_STORED, IDC_PASSWORD);
    mfcCDialog::OnOK();
}
