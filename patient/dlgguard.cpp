#include "patient/dlgguard.h"

#include "patient/chartrules.h"
#include "patient/chartsheet.h"
#include "patient/daynumber.h"
#include "patient/patientres.h"
#include "suite/patients/records/dbpatient.h"

namespace
{
constexpr patContactControls contactControls{IDC_GUARD_ADDRESS_HOME,
                                             IDC_GUARD_ADDRESS_OFFICE,
                                             IDC_GUARD_COMPANY,
                                             IDC_GUARD_STREET,
                                             IDC_GUARD_CITY,
                                             IDC_GUARD_STATE,
                                             IDC_GUARD_POSTALCODE,
                                             IDC_GUARD_COUNTRY,
                                             IDC_GUARD_EMAIL,
                                             {IDC_GUARD_PHONE1, IDC_GUARD_PHONE2},
                                             {IDC_GUARD_PHONETYPE1, IDC_GUARD_PHONETYPE2}};

constexpr int genderFemale = 1;
constexpr int genderMale = 2;
} // namespace

patCDlgGuard::patCDlgGuard(patCChartSheet& sheet)
    : patCSheetPage(sheet, IDD_PATIENT_GUARDIAN, pat::GuardianPage), m_contact(contactControls)
{
}

void patCDlgGuard::DoDataExchange(CDataExchange* pDX)
{
    patCSheetPage::DoDataExchange(pDX);
    DDX_Text(pDX, IDC_GUARD_TITLE, m_strTitle);
    DDV_MaxChars(pDX, m_strTitle, pat::MaxTitle);
    DDX_Text(pDX, IDC_GUARD_FIRSTNAME, m_strFirstname);
    DDV_MaxChars(pDX, m_strFirstname, pat::MaxName);
    DDX_Text(pDX, IDC_GUARD_LASTNAME, m_strLastname);
    DDV_MaxChars(pDX, m_strLastname, pat::MaxName);
    DDX_Text(pDX, IDC_GUARD_NICKNAME, m_strNickname);
    DDV_MaxChars(pDX, m_strNickname, pat::MaxNickname);
    DDX_DateTimeCtrl(pDX, IDC_GUARD_BIRTHDATE, m_dateBirth);
    m_dateBirth = pat::WholeDay(m_dateBirth);
    DDX_Radio(pDX, IDC_GUARD_GENDER_FIRST, m_nGenderButton);
    m_contact.DoDataExchange(pDX);
    DDX_Text(pDX, IDC_GUARD_NOTES, m_strNotes);
}

BOOL patCDlgGuard::OnInitDialog()
{
    patCSheetPage::OnInitDialog();
    static_cast<CEdit*>(GetDlgItem(IDC_GUARD_NOTES))->SetLimitText(0); // as long as memory allows
    m_contact.Initialise(m_sheet.GetDefaultCountry());
    dbCPerson guardian;
    if ((m_sheet.IsNewPatient() || m_sheet.LoadExistingPatient()) &&
        m_sheet.GetPatient().GetPersonInfo(dbPersonGuardian, guardian))
        LoadGuardian(guardian);
    UpdateData(FALSE);
    return TRUE;
}

void patCDlgGuard::LoadGuardian(const dbCPerson& guardian)
{
    m_strTitle = guardian.GetTitle();
    m_strFirstname = guardian.GetFirstname();
    m_strLastname = guardian.GetLastname();
    m_strNickname = guardian.GetNickname();
    m_strNotes = guardian.GetNotes();
    m_dateBirth = guardian.GetBirthdate();
    m_nGenderButton = guardian.GetGender() == genderFemale ? 0 : 1;
    m_contact.Load(guardian.GetAddresses(), guardian.GetPhones(), guardian.GetEmail());
}

pat::GuardianTexts patCDlgGuard::GetTexts() const
{
    pat::GuardianTexts texts;
    texts.nickname = m_strNickname.GetString();
    texts.title = m_strTitle.GetString();
    texts.notes = m_strNotes.GetString();
    texts.company = m_contact.m_strCompany.GetString();
    texts.street = m_contact.m_strStreet.GetString();
    texts.city = m_contact.m_strCity.GetString();
    texts.state = m_contact.m_strState.GetString();
    texts.postalCode = m_contact.m_strPostalCode.GetString();
    texts.email = m_contact.m_strEmail.GetString();
    texts.phone1 = m_contact.m_strPhone[0].GetString();
    texts.phone2 = m_contact.m_strPhone[1].GetString();
    texts.firstname = m_strFirstname.GetString();
    texts.lastname = m_strLastname.GetString();
    return texts;
}

bool patCDlgGuard::Check()
{
    return Report(pat::CheckGuardian(GetTexts())) && Report(m_contact.CheckPhone(0)) &&
           Report(m_contact.CheckPhone(1));
}

void patCDlgGuard::CopyTo(dbCPatient& patient)
{
    dbCPerson guardian;
    const bool bExists = patient.GetPersonInfo(dbPersonGuardian, guardian) != FALSE;
    if (pat::IsGuardianEmpty(GetTexts()))
    {
        if (bExists)
            patient.RemovePersonInfo(dbPersonGuardian);
        return;
    }
    guardian.SetTitle(m_strTitle);
    guardian.SetFirstname(m_strFirstname);
    guardian.SetLastname(m_strLastname);
    guardian.SetNickname(m_strNickname);
    guardian.SetNotes(m_strNotes);
    guardian.SetEmail(m_contact.m_strEmail);
    guardian.SetBirthdate(m_dateBirth);
    guardian.SetGender(m_nGenderButton == 0 ? genderFemale : genderMale);
    m_contact.StoreAddress(guardian.GetAddresses());
    m_contact.StorePhones(guardian.GetPhones());
    if (bExists)
        patient.SetPersonInfo(dbPersonGuardian, guardian);
    else
        patient.AddPersonInfo(dbPersonGuardian, guardian);
}
