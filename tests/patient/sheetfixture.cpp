#include "tests/patient/sheetfixture.h"

using veltest::Control;
using veltest::Dialog;
using veltest::DialogScript;

SheetTest::SheetTest()
    : m_strIda(AddDoctor("Sorel", "Ida")), m_strGrace(AddDoctor("Bell", "Grace")),
      m_strNorth(dbCOfficeLocations().AddOffice("North")),
      m_strSouth(dbCOfficeLocations().AddOffice("South")),
      m_strUrgent(dbCPatientStatusList().AddStatus("Urgent")),
      m_strWaiting(dbCPatientStatusList().AddStatus("Waiting")),
      m_strHarbour(dbCInsuranceCompanies::FindOrAdd("Harbour Mutual"))
{
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

void SheetTest::OnDetails(int nButton, const Script& script)
{
    dbCPatient patient = Loaded("A1");
    Change(patient, nButton, [&](DialogScript& s, const Dialog& sheet) {
        sheet.SelectPage(pat::DetailPage);
        script(s, sheet);
    });
}

void SheetTest::InDoctorEditor(const Script& script)
{
    OnDetails(IDCANCEL, [&](DialogScript& s, const Dialog& sheet) {
        sheet.Press(IDC_DETAIL_EDIT_REFERRING);
        const Dialog editor = s.WaitForDialog("Doctor");
        script(s, editor);
        editor.WaitForClosed();
        s.Settle(sheet.Handle());
    });
}

dbCPatient SheetTest::MakePatient(const char* pszID, const char* pszFirstname) const
{
    dbCPatient patient = FullPatient(pszID);
    patient.SetFirstname(pszFirstname);
    patient.SetLastname("Lee");
    patient.SetNickname(std::string(40, 'n').c_str()); // longer than can be typed
    patient.SetNotes(std::string(600, 'n').c_str());
    patient.SetGender(0);
    patient.SetTeeth("");
    patient.SetOfficeID(m_strNorth);
    patient.SetStatusID(m_strUrgent);
    patient.GetPhones().Add(dbCPhone("333", dbCPhone::GetTypeName(1)));
    dbCPerson guardian, doctor;
    patient.GetPersonInfo(dbPersonGuardian, guardian);
    guardian.SetGender(2);
    patient.SetPersonInfo(dbPersonGuardian, guardian);
    doctor.SetPersonGUID(m_strIda);
    patient.SetPersonInfo(dbPersonTreatingDoctor, doctor);
    patient.GetInsurances()[0].SetCompanyGUID(m_strHarbour);
    patient.GetInsurances()[0].SetCompanyName("Harbour Mutual");
    patient.GetReferrals().AddReferralDoc(m_strIda, velCDate(2020, 5, 6), "crowding");
    return patient;
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

void PressSettled(const Dialog& dialog, int nButton)
{
    dialog.SettleIdle();
    dialog.Press(nButton);
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
                   int nFocus, int nButton)
{
    window.Press(nButton);
    ExpectBox(script, window, text, nFocus);
}

std::string SelectedText(const Control& field)
{
    const LRESULT selection = field.Send(EM_GETSEL);
    return field.Text().substr(LOWORD(selection), HIWORD(selection) - LOWORD(selection));
}
