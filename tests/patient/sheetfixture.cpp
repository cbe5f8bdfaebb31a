#include "tests/patient/sheetfixture.h"

using veltest::Control;
using veltest::Dialog;
using veltest::DialogScript;

SheetTest::SheetTest()
{
    m_practice.Set("Environment", "DatabaseTimeout", "2000"); // milliseconds
    dbCPatients::Create(DatabasePath().c_str());
    m_strIda = StoreDoctor("Ida", "Sorel", TRUE);
    m_strGrace = StoreDoctor("Grace", "Bell", TRUE);
    dbCOfficeLocations offices;
    m_strNorth = offices.AddOffice("North");
    m_strSouth = offices.AddOffice("South");
    dbCPatientStatusList statuses;
    m_strUrgent = statuses.AddStatus("Urgent");
    m_strWaiting = statuses.AddStatus("Waiting");
    dbCInsuranceCompany company;
    company.SetName("Harbour Mutual");
    company.Save();
    m_strHarbour = company.GetCompanyGUID();
}

namespace
{

void Play(const std::function<__int64()>& open, int nButton,
          const std::function<void(DialogScript&, const Dialog&)>& script)
{
    const auto play = [&](DialogScript& s) {
        const Dialog sheet = s.WaitForDialogWith(IDC_CHART_ID);
        script(s, sheet);
        if (nButton != 0)
            sheet.Press(nButton);
    };
    EXPECT_EQ(veltest::RunModal(open, play), nButton != 0 ? nButton : IDOK);
}

} // namespace

void SheetTest::New(int nButton, const Script& script)
{
    Play([&] { return NewPatientDlg(nullptr, m_pPatients, m_strGUID); }, nButton, script);
}

void SheetTest::NewWithData(dbCPatient& data, int nButton, const Script& script)
{
    Play([&] { return NewPatientDlgWithData(nullptr, m_pPatients, m_strGUID, &data); }, nButton, script);
}

void SheetTest::Change(dbCPatient& patient, int nButton, const Script& script)
{
    Play([&] { return ChangePatientDlg(nullptr, m_pPatients, &patient); }, nButton, script);
}

void SheetTest::FillPatient(dbCPatient& patient, const char* pszFirstname, const char* pszLastname) const
{
    patient.SetFirstname(pszFirstname);
    patient.SetLastname(pszLastname);
    patient.SetNickname("Nan");
    patient.SetEmail("ann@example.org");
    patient.SetBirthdate(velCDate(2012, 3, 4));
    patient.SetGender(1);
    patient.SetGenderIdentity(3);
    patient.SetRace(9);
    patient.SetTitle("Ms");
    patient.SetModelNumber("M-1");
    patient.SetSalutation("Dear Ann");
    patient.SetKeywords("Braces");
    patient.SetNotes("first note");
    patient.SetOfficeID(m_strNorth);
    patient.SetStatusID(m_strUrgent);
    dbCAddress address;
    address.SetType("O");
    address.SetCompany("Lee Ltd");
    address.SetStreet("Quay 1");
    address.SetCity("Northport");
    address.SetState("NP");
    address.SetPostalCode("12345");
    address.SetCountry("Ruritania");
    patient.SetAddress(0, address);
    patient.GetPhones().Add(dbCPhone("111", dbCPhone::GetTypeName(0)));
    patient.GetPhones().Add(dbCPhone("222", "Pager"));
    patient.GetPhones().Add(dbCPhone("333", dbCPhone::GetTypeName(1)));

    dbCPerson guardian;
    guardian.SetTitle("Mrs");
    guardian.SetFirstname("Eve");
    guardian.SetLastname("Lee");
    guardian.SetNickname("Evie");
    guardian.SetSalutation("Dear Eve");
    guardian.SetBirthdate(velCDate(1980, 12, 31));
    guardian.SetGender(2);
    guardian.SetEmail("eve@example.org");
    guardian.SetNotes("line 1\r\nline 2");
    address.SetType("H");
    address.SetCity("Southport");
    guardian.SetAddress(0, address);
    address.SetCity("Elsewhere");
    guardian.SetAddress(1, address);
    guardian.SetPhone(0, dbCPhone("444", dbCPhone::GetTypeName(0)));
    guardian.SetPhone(1, dbCPhone("555", dbCPhone::GetTypeName(1)));
    patient.AddPersonInfo(dbPersonGuardian, guardian);
    dbCPerson doctor;
    doctor.SetPersonGUID(m_strIda);
    patient.SetPersonInfo(dbPersonTreatingDoctor, doctor);

    dbCInsurance insurance;
    insurance.SetCompanyGUID(m_strHarbour);
    insurance.SetCompanyName("Harbour Mutual");
    insurance.SetHolder("Eve Lee");
    insurance.SetNumber("17");
    insurance.SetGroup("G-1");
    insurance.SetNote("kept");
    patient.AssignInsurance(insurance);
    patient.GetReferrals().AddReferralDoc(m_strIda, velCDate(2020, 5, 6), "crowding");
}

dbCPatient SheetTest::StorePatient(const char* pszID, const char* pszFirstname, const char* pszLastname) const
{
    dbCPatient patient;
    patient.SetID(pszID);
    FillPatient(patient, pszFirstname, pszLastname);
    patCTimepoint timepoint;
    timepoint.SetName("Initial");
    timepoint.SetDate(velCDate(2020, 7, 8));
    patient.GetTimepoints().Add(&patient, timepoint, TRUE, TRUE);
    patient.Save();
    return Stored(pszID);
}

CString SheetTest::StoreDoctor(const char* pszFirstname, const char* pszLastname, BOOL bTreating)
{
    dbCDoctor doctor;
    doctor.GetPerson().SetFirstname(pszFirstname);
    doctor.GetPerson().SetLastname(pszLastname);
    doctor.SetTreating(bTreating);
    doctor.Save();
    return doctor.GetGUID();
}

CString SheetTest::LatestEvent()
{
    dbTList<dbSAuditEvent> events;
    return CVeltrixLogin::LoadEvents(events, 1) == 1 ? events[0].strText : CString();
}

void FillNames(const Dialog& sheet, const std::string& id, const std::string& firstname,
               const std::string& lastname)
{
    sheet.Item(IDC_CHART_ID).SetText(id);
    sheet.Item(IDC_CHART_FIRSTNAME).SetText(firstname);
    sheet.Item(IDC_CHART_LASTNAME).SetText(lastname);
}

void ExpectBox(DialogScript& script, const Dialog& window, const testing::Matcher<std::string>& text,
               int nFocus, int nAnswer)
{
    const std::string told = script.AnswerBox("", nAnswer);
    EXPECT_THAT(told, text);
    script.WaitUntil("the window is usable again", [&] { return window.IsEnabled(); });
    script.Settle(window.Handle());
    if (nFocus == 0)
        return;
    const HWND focus = window.Focused().Handle();
    const bool bInside = IsChild(window.Item(nFocus).Handle(), focus); // the edit part of a combo box
    EXPECT_EQ(GetDlgCtrlID(bInside ? GetParent(focus) : focus), nFocus) << told;
}

void ExpectRefused(DialogScript& script, const Dialog& window, const testing::Matcher<std::string>& text,
                   int nFocus)
{
    window.Press(IDOK);
    ExpectBox(script, window, text, nFocus);
}

std::string SelectedText(const Control& field)
{
    const LRESULT selection = field.Send(EM_GETSEL);
    return field.Text().substr(LOWORD(selection), HIWORD(selection) - LOWORD(selection));
}
