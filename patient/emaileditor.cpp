#include "patient/emaileditor.h"

#include "app/velapp.h"
#include "patient/rules/chartrules.h"
#include "patient/rules/detailrules.h"
#include "patient/detailsres.h"
#include "patient/rules/finding.h"
#include "patient/patientres.h"
#include "suite/util/velstring.h"

#include <algorithm>

BEGIN_MESSAGE_MAP(velCDlgEditEmails, mfcCDialog)
ON_LBN_SELCHANGE(IDC_EMAIL_LIST, &velCDlgEditEmails::OnSelect)
ON_BN_CLICKED(IDC_EMAIL_ADD, &velCDlgEditEmails::OnAdd)
ON_BN_CLICKED(IDC_EMAIL_CHANGE, &velCDlgEditEmails::OnChange)
ON_BN_CLICKED(IDC_EMAIL_REMOVE, &velCDlgEditEmails::OnRemove)
ON_BN_CLICKED(IDC_EMAIL_FIRST, &velCDlgEditEmails::OnMakeFirst)
ON_UPDATE_COMMAND_UI(IDC_EMAIL_ADD, &velCDlgEditEmails::OnUpdateAdd)
ON_UPDATE_COMMAND_UI(IDC_EMAIL_CHANGE, &velCDlgEditEmails::OnUpdateChange)
ON_UPDATE_COMMAND_UI(IDC_EMAIL_REMOVE, &velCDlgEditEmails::OnUpdateRemove)
ON_UPDATE_COMMAND_UI(IDC_EMAIL_FIRST, &velCDlgEditEmails::OnUpdateMakeFirst)
END_MESSAGE_MAP()

velCDlgEditEmails::velCDlgEditEmails(std::vector<std::string> emails, CWnd* pParent)
    : mfcCDialog(IDD_EDIT_EMAILS, pParent), m_emails(std::move(emails))
{
}

void velCDlgEditEmails::DoDataExchange(CDataExchange* pDX)
{
    mfcCDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_EMAIL_ADDRESS, m_editAddress);
    DDX_Control(pDX, IDC_EMAIL_LIST, m_list);
}

BOOL velCDlgEditEmails::OnInitDialog()
{
    mfcCDialog::OnInitDialog();
    m_editAddress.SetLimitText(pat::MaxEmail);
    Show(-1);
    return TRUE;
}

BOOL velCDlgEditEmails::OnHelpKey(UINT nHelpID)
{
    VelApp()->ShowHelp(nHelpID);
    return TRUE;
}

std::string velCDlgEditEmails::GetEntry() const
{
    CString strEntry;
    m_editAddress.GetWindowText(strEntry);
    return strEntry.GetString();
}

void velCDlgEditEmails::Show(int nEntry)
{
    m_list.ResetContent();
    for (const std::string& email : m_emails)
        m_list.AddString(email.c_str());
    m_nShown = nEntry;
    m_list.SetCurSel(nEntry);
    m_editAddress.SetWindowText(nEntry < 0 ? "" : m_emails[static_cast<std::size_t>(nEntry)].c_str());
    UpdateControls();
}

void velCDlgEditEmails::OnSelect()
{
    const int nEntry = m_list.GetCurSel();
    if (nEntry < 0 || nEntry == m_nShown)
        return;
    if (!pat::CheckEmailAdded(GetEntry(), m_emails, 0).bPassed &&
        AfxMessageBox(IDS_ROWS_DROP, MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2) != IDYES)
    {
        m_list.SetCurSel(m_nShown);
        return;
    }
    m_nShown = nEntry;
    m_editAddress.SetWindowText(m_emails[static_cast<std::size_t>(nEntry)].c_str());
}

void velCDlgEditEmails::Take(int nEntry)
{
    const std::string entry = GetEntry();
    if (!Report(pat::CheckEmail(entry, IDC_EMAIL_ADDRESS)) ||
        !Report(pat::CheckEmailOnce(entry, m_emails, nEntry, IDC_EMAIL_ADDRESS)))
        return;
    if (nEntry == static_cast<int>(m_emails.size()))
        m_emails.emplace_back();
    m_emails[static_cast<std::size_t>(nEntry)] = entry;
    Show(-1);
    GotoDlgCtrl(&m_editAddress);
}

void velCDlgEditEmails::OnAdd()
{
    Take(static_cast<int>(m_emails.size()));
}

void velCDlgEditEmails::OnChange()
{
    if (const int nEntry = m_list.GetCurSel(); nEntry >= 0)
        Take(nEntry);
}

void velCDlgEditEmails::OnRemove()
{
    const int nEntry = m_list.GetCurSel();
    if (nEntry < 0)
        return;
    m_emails.erase(m_emails.begin() + nEntry);
    Show(-1);
    GotoDlgCtrl(&m_editAddress);
}

void velCDlgEditEmails::OnMakeFirst()
{
    const int nEntry = m_list.GetCurSel();
    if (nEntry <= 0)
        return;
    const std::string entry = GetEntry();
    std::rotate(m_emails.begin(), m_emails.begin() + nEntry, m_emails.begin() + nEntry + 1);
    Show(0);
    m_editAddress.SetWindowText(entry.c_str()); // it may have been changed and not added yet
}

void velCDlgEditEmails::OnUpdateAdd(CCmdUI* pCmdUI)
{
    pCmdUI->Enable(!GetEntry().empty());
}

void velCDlgEditEmails::OnUpdateChange(CCmdUI* pCmdUI)
{
    pCmdUI->Enable(!GetEntry().empty() && m_list.GetCurSel() >= 0);
}

void velCDlgEditEmails::OnUpdateRemove(CCmdUI* pCmdUI)
{
    pCmdUI->Enable(m_list.GetCurSel() >= 0);
}

void velCDlgEditEmails::OnUpdateMakeFirst(CCmdUI* pCmdUI)
{
    pCmdUI->Enable(m_list.GetCurSel() > 0);
}

void velCDlgEditEmails::OnOK()
{
    if (Report(pat::CheckEmailAdded(GetEntry(), m_emails, IDC_EMAIL_ADDRESS)))
        EndDialog(IDOK);
}

bool velCDlgEditEmails::Report(const pat::Finding& finding)
{
    if (finding.bPassed)
        return true;
    AfxMessageBox(velFormatTemplate(finding.nMessage, finding.strArgument.c_str()));
    GotoDlgCtrl(GetDlgItem(static_cast<int>(finding.nControl)));
    return false;
}
