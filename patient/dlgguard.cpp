#include "patient/dlgguard.h"

#include "patient/rules/chartrules.h"
#include "patient/chartsheet.h"
#include "patient/contactfields.h"
#include "patient/patientres.h"

namespace
{

constexpr patContactControls contactControls{IDC_GUARD_ADDRESS_HOME,
                                             IDC_GUARD_COMPANY,
                                             IDC_GUARD_STREET,
                                             IDC_GUARD_CITY,
                                             IDC_GUARD_STATE,
                                             IDC_GUARD_POSTALCODE,
                                             IDC_GUARD_COUNTRY,
                                             IDC_GUARD_EMAIL,
                                             {IDC_GUARD_PHONE1, IDC_GUARD_PHONE2},
                                             {IDC_GUARD_PHONETYPE1, IDC_GUARD_PHONETYPE2}};

patTFieldTable<dbCPerson> MakeTable()
{
    patTFieldTable<dbCPerson> table{
        patTextField<dbCPerson>(IDC_GUARD_TITLE, pat::MaxTitle, &dbCPerson::GetTitle, &dbCPerson::SetTitle),
        patTextField<dbCPerson>(IDC_GUARD_FIRSTNAME, pat::MaxName, &dbCPerson::GetFirstname,
                                &dbCPerson::SetFirstname),
        patTextField<dbCPerson>(IDC_GUARD_LASTNAME, pat::MaxName, &dbCPerson::GetLastname,
                                &dbCPerson::SetLastname),
        patTextField<dbCPerson>(IDC_GUARD_NICKNAME, pat::MaxNickname, &dbCPerson::GetNickname,
                                &dbCPerson::SetNickname),
        patDateField<dbCPerson>(IDC_GUARD_BIRTHDATE, &dbCPerson::GetBirthdate, &dbCPerson::SetBirthdate),
        patGenderField<dbCPerson>(IDC_GUARD_GENDER_FIRST),
        patTextField<dbCPerson>(IDC_GUARD_NOTES, 0, &dbCPerson::GetNotes, &dbCPerson::SetNotes,
                                patFieldKind::LongText), // as long as memory allows
    };
    for (patTField<dbCPerson>& row : patContactTable<dbCPerson>(contactControls))
        table.push_back(std::move(row));
    return table;
}

} // namespace

BEGIN_MESSAGE_MAP(patCDlgGuard, patCSheetPage)
ON_BN_CLICKED(IDC_GUARD_GENDER_FIRST, &patCDlgGuard::OnGender)
ON_BN_CLICKED(IDC_GUARD_GENDER_SECOND, &patCDlgGuard::OnGender)
END_MESSAGE_MAP()

patCDlgGuard::patCDlgGuard(patCChartSheet& sheet)
    : patCSheetPage(sheet, IDD_PATIENT_GUARDIAN, pat::GuardianPage), m_fields(MakeTable())
{
}

void patCDlgGuard::DoDataExchange(CDataExchange* pDX)
{
    patCSheetPage::DoDataExchange(pDX);
    m_fields.DoDataExchange(pDX);
}

BOOL patCDlgGuard::OnInitDialog()
{
    patCSheetPage::OnInitDialog();
    patFillPhoneTypes(*this, contactControls);
    m_sheet.LoadPatient();
    dbCPerson guardian;
    const bool bExists = m_sheet.GetPatient().GetPersonInfo(dbPersonGuardian, guardian) != FALSE;
    m_fields.Load(guardian);
    UpdateData(FALSE);
    m_fields.TakeAsLoaded(*this);
    if (!bExists)
        m_fields.SetChosen(IDC_GUARD_GENDER_FIRST);
    if (guardian.GetAddresses().IsEmpty())
        m_fields[IDC_GUARD_COUNTRY].strText = m_sheet.GetDefaultCountry();
    UpdateData(FALSE);
    return TRUE;
}

void patCDlgGuard::OnGender()
{
    m_fields.SetChosen(IDC_GUARD_GENDER_FIRST);
}

const CString& patCDlgGuard::GetLastname() const
{
    return m_fields.GetText(IDC_GUARD_LASTNAME);
}

pat::GuardianTexts patCDlgGuard::GetTexts() const
{
    const auto textOf = [this](int nControl) {
        return std::string_view(m_fields.GetText(nControl).GetString());
    };
    pat::GuardianTexts texts;
    texts.nickname = textOf(IDC_GUARD_NICKNAME);
    texts.title = textOf(IDC_GUARD_TITLE);
    texts.notes = textOf(IDC_GUARD_NOTES);
    texts.company = textOf(IDC_GUARD_COMPANY);
    texts.street = textOf(IDC_GUARD_STREET);
    texts.city = textOf(IDC_GUARD_CITY);
    texts.state = textOf(IDC_GUARD_STATE);
    texts.postalCode = textOf(IDC_GUARD_POSTALCODE);
    texts.email = textOf(IDC_GUARD_EMAIL);
    texts.phone1 = textOf(IDC_GUARD_PHONE1);
    texts.phone2 = textOf(IDC_GUARD_PHONE2);
    texts.firstname = textOf(IDC_GUARD_FIRSTNAME);
    texts.lastname = textOf(IDC_GUARD_LASTNAME);
    return texts;
}

bool patCDlgGuard::Check()
{
    return Report(pat::CheckGuardian(GetTexts())) && Report(patCheckPhones(m_fields, contactControls));
}

void patCDlgGuard::CopyTo(dbCPatient& patient)
{
    dbCPerson guardian;
    const bool bExists = patient.GetPersonInfo(dbPersonGuardian, guardian) != FALSE;
    if (pat::IsGuardianEmpty(GetTexts()))
    {
        if (bExists && m_fields.IsAnyChanged())
            patient.RemovePersonInfo(dbPersonGuardian);
        return;
    }
    const bool bHadAddress = !guardian.GetAddresses().IsEmpty();
    if (!m_fields.Store(guardian))
        return;
    patDropEmptyAddress(guardian.GetAddresses(), bHadAddress);
    if (bExists)
        patient.SetPersonInfo(dbPersonGuardian, guardian);
    else
        patient.AddPersonInfo(dbPersonGuardian, guardian);
}
