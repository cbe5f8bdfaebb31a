#include "patient/doctoreditor.h"

#include "app/modalrun.h"
#include "app/velapp.h"
#include "maintenance/dlgdoctypes.h"
#include "patient/rules/chartrules.h"
#include "patient/contactfields.h"
#include "patient/emaileditor.h"
#include "patient/rules/detailrules.h"
#include "patient/rules/guardianrules.h"
#include "suite/patients/records/dbemails.h"
#include "suite/patients/store/dbtransaction.h"
#include "suite/util/velstring.h"

#include <algorithm>

namespace
{

constexpr patContactControls contactControls{IDC_DOCTOR_ADDRESS_HOME,
                                             IDC_DOCTOR_COMPANY,
                                             IDC_DOCTOR_STREET,
                                             IDC_DOCTOR_CITY,
                                             IDC_DOCTOR_STATE,
                                             IDC_DOCTOR_POSTALCODE,
                                             IDC_DOCTOR_COUNTRY,
                                             IDC_DOCTOR_EMAIL,
                                             {IDC_DOCTOR_PHONE1, IDC_DOCTOR_PHONE2},
                                             {IDC_DOCTOR_PHONETYPE1, IDC_DOCTOR_PHONETYPE2}};

patTField<dbCDoctor> PersonText(int nControl, int nLimit, const CString& (dbCPerson::*get)() const,
                                void (dbCPerson::*set)(LPCTSTR))
{
    return patTextField<dbCDoctor>(
        nControl, nLimit, [get](const dbCDoctor& doctor) { return (doctor.GetPerson().*get)(); },
        [set](dbCDoctor& doctor, LPCTSTR pszText) { (doctor.GetPerson().*set)(pszText); });
}

patTFieldTable<dbCDoctor> MakeTable()
{
    patTFieldTable<dbCDoctor> table{
        PersonText(IDC_DOCTOR_TITLE, pat::MaxTitle, &dbCPerson::GetTitle, &dbCPerson::SetTitle),
        PersonText(IDC_DOCTOR_FIRSTNAME, pat::MaxName, &dbCPerson::GetFirstname, &dbCPerson::SetFirstname),
        PersonText(IDC_DOCTOR_LASTNAME, pat::MaxName, &dbCPerson::GetLastname, &dbCPerson::SetLastname),
        PersonText(IDC_DOCTOR_NOTES, pat::MaxDoctorNotes, &dbCPerson::GetNotes, &dbCPerson::SetNotes),
        patTextField<dbCDoctor>(IDC_DOCTOR_TYPE, 0, &dbCDoctor::GetType, &dbCDoctor::SetType,
                                patFieldKind::Choice),
        patCodeField<dbCDoctor>(patFieldKind::Check, IDC_DOCTOR_TREATING, &dbCDoctor::IsTreating,
                                &dbCDoctor::SetTreating),
    };
    for (patTField<dbCDoctor>& row : patContactTable<dbCDoctor>(contactControls))
        table.push_back(std::move(row));
    return table;
}

} // namespace

BEGIN_MESSAGE_MAP(velCDlgEditDoctor, mfcCDialog)
ON_BN_CLICKED(IDC_DOCTOR_EDIT_TYPES, &velCDlgEditDoctor::OnEditTypes)
ON_BN_CLICKED(IDC_DOCTOR_EDIT_EMAILS, &velCDlgEditDoctor::OnEditEmails)
END_MESSAGE_MAP()

velCDlgEditDoctor::velCDlgEditDoctor(LPCTSTR doctorGUID, CWnd* pParent)
    : mfcCDialog(IDD_EDIT_DOCTOR, pParent), m_strGUID(doctorGUID), m_fields(MakeTable())
{
}

void velCDlgEditDoctor::SetTreating()
{
    m_doctor.SetTreating(TRUE);
}

const CString& velCDlgEditDoctor::GetDoctorGUID() const
{
    return m_doctor.GetGUID();
}

void velCDlgEditDoctor::DoDataExchange(CDataExchange* pDX)
{
    mfcCDialog::DoDataExchange(pDX);
    m_fields.DoDataExchange(pDX);
}

BOOL velCDlgEditDoctor::OnInitDialog()
{
    mfcCDialog::OnInitDialog();
    if (!m_strGUID.IsEmpty() && !m_doctor.Load(m_strGUID))
    {
        AfxMessageBox(IDS_DOCTOR_LOAD_FAILED);
        EndDialog(IDCANCEL);
        return FALSE;
    }
    FillTypes(CString());
    patFillPhoneTypes(*this, contactControls);
    m_fields.Load(m_doctor);
    UpdateData(FALSE);
    m_fields.TakeAsLoaded(*this);
    if (m_doctor.GetPerson().GetAddresses().IsEmpty())
        m_fields[IDC_DOCTOR_ADDRESS_HOME].nCode = patOfficeAddress;
    UpdateData(FALSE);
    GetDlgItem(IDC_DOCTOR_EDIT_EMAILS)->EnableWindow(dbCPersonEmails::TableExists());
    return TRUE;
}

BOOL velCDlgEditDoctor::OnHelpKey(UINT nHelpID)
{
    VelApp()->ShowHelp(nHelpID);
    return TRUE;
}

void velCDlgEditDoctor::OnOK()
{
    if (!UpdateData(TRUE) ||
        !Report(
            pat::CheckDoctorName(m_fields.GetText(IDC_DOCTOR_LASTNAME).GetString(), IDC_DOCTOR_LASTNAME)) ||
        !Report(patCheckPhones(m_fields, contactControls)) ||
        !Report(pat::CheckEmail(m_fields.GetText(IDC_DOCTOR_EMAIL).GetString(), IDC_DOCTOR_EMAIL)))
        return;
    if (velGuard(IDCANCEL, IDS_DOCTOR_SAVE_FAILED, [&]() -> INT_PTR {
            Save();
            return IDOK;
        }) == IDOK)
        EndDialog(IDOK);
}

// The doctor is written from a copy: a write that fails leaves nothing of itself in the record. The addresses
// come second, since the doctor's own write has only the first of them.
void velCDlgEditDoctor::Save()
{
    dbCDoctor doctor = m_doctor;
    const bool bHadAddress = !doctor.GetPerson().GetAddresses().IsEmpty();
    if (m_fields.Store(doctor))
        patDropEmptyAddress(doctor.GetPerson().GetAddresses(), bHadAddress);
    dbCTransaction transaction;
    doctor.Save();
    if (m_furtherEmails)
    {
        dbCPersonEmails emails;
        for (const std::string& email :
             pat::JoinEmails(m_fields.GetText(IDC_DOCTOR_EMAIL).GetString(), *m_furtherEmails))
            emails.Add(email.c_str());
        emails.Save(doctor.GetGUID());
    }
    transaction.Commit();
    m_doctor = doctor;
}

void velCDlgEditDoctor::OnEditEmails()
{
    CString strFirst;
    GetDlgItem(IDC_DOCTOR_EMAIL)->GetWindowText(strFirst);
    if (!Report(pat::CheckEmail(strFirst.GetString(), IDC_DOCTOR_EMAIL)))
        return;
    velGuard(0, IDS_EMAIL_LIST_FAILED, [&]() -> INT_PTR {
        velCDlgEditEmails editor(
            pat::JoinEmails(strFirst.GetString(), m_furtherEmails ? *m_furtherEmails : LoadFurtherEmails()),
            this);
        if (velRunModal(editor) != IDOK)
            return 0;
        std::vector<std::string> emails = editor.GetEmails();
        GetDlgItem(IDC_DOCTOR_EMAIL)->SetWindowText(emails.empty() ? "" : emails.front().c_str());
        if (!emails.empty())
            emails.erase(emails.begin());
        m_furtherEmails = std::move(emails);
        return 0;
    });
}

// The first address is the record's own, which the field shows or has replaced.
std::vector<std::string> velCDlgEditDoctor::LoadFurtherEmails() const
{
    dbCPersonEmails stored;
    stored.LoadByPersonGUID(m_doctor.GetGUID());
    std::vector<std::string> further;
    for (int i = m_doctor.GetPerson().GetEmail().IsEmpty() ? 0 : 1; i < stored.GetCount(); ++i)
        further.emplace_back(stored[i].GetString());
    return further;
}

// Types that are renamed or deleted take their doctors along, so that a doctor whose type is gone from the
// list has the one that is stored now.
void velCDlgEditDoctor::OnEditTypes()
{
    velGuard(0, IDS_DOCTOR_TYPES_FAILED, [&]() -> INT_PTR {
        CChangeDocType types(this);
        velRunModal(types);
        CComboBox& list = *static_cast<CComboBox*>(GetDlgItem(IDC_DOCTOR_TYPE));
        CString strType;
        if (list.GetCurSel() > 0)
            list.GetLBText(list.GetCurSel(), strType);
        FillTypes(strType);
        dbCDoctor stored;
        if (!strType.IsEmpty() && list.GetCurSel() == 0 && stored.Load(m_doctor.GetGUID()))
            FillTypes(stored.GetType());
        return 0;
    });
}

void velCDlgEditDoctor::FillTypes(const CString& strSelected)
{
    CComboBox& list = *static_cast<CComboBox*>(GetDlgItem(IDC_DOCTOR_TYPE));
    CString strNone;
    strNone.LoadString(IDS_DETAIL_NONE);
    dbCDoctorTypes types;
    types.Load();
    list.ResetContent();
    list.AddString(strNone);
    for (const CString& strType : types)
        list.AddString(strType);
    list.SetCurSel(strSelected.IsEmpty() ? 0 : std::max(list.FindStringExact(0, strSelected), 0));
}

bool velCDlgEditDoctor::Report(const pat::Finding& finding)
{
    if (finding.bPassed)
        return true;
    AfxMessageBox(velFormatTemplate(finding.nMessage, finding.strArgument.c_str()));
    if (CWnd* const pControl = GetDlgItem(static_cast<int>(finding.nControl)))
        GotoDlgCtrl(pControl);
    return false;
}
