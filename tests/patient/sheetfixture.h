// A practice of its own for one test of the patient sheet, and a user who works in it.
#pragma once

#include "app/exports/veldlgs.h"
#include "patient/detailsres.h"
#include "patient/patientres.h"
#include "patient/rules/sheetrules.h"
#include "tests/patients/testdatabase.h"
#include "tests/support/dialogquality.h"
#include "tests/support/dialogscript.h"
#include "tests/support/picture.h"

#include <gmock/gmock.h>

// Opens the sheet on a new, empty database. Runs on the user interface thread; scripts run on their own.
class SheetTest : public DatabaseTest
{
protected:
    using Control = veltest::Control;
    using Dialog = veltest::Dialog;
    using DialogScript = veltest::DialogScript;
    using Script = std::function<void(DialogScript&, const Dialog&)>;

    SheetTest()
    {
        dbCOfficeLocations().AddOffice("South");
        dbCPatientStatusList().AddStatus("Waiting");
    }

    // Opens the sheet, plays the script in it, presses the button and expects that to be the result. With 0
    // the script confirms the sheet itself.
    void New(int nButton, const Script& script)
    {
        Play([&] { return NewPatientDlg(nullptr, m_pPatients, m_strGUID); }, nButton, script);
    }
    void NewWithData(dbCPatient& data, int nButton, const Script& script)
    {
        Play([&] { return NewPatientDlgWithData(nullptr, m_pPatients, m_strGUID, &data); }, nButton, script);
    }
    void Change(dbCPatient& patient, int nButton, const Script& script)
    {
        Play([&] { return ChangePatientDlg(nullptr, m_pPatients, &patient); }, nButton, script);
    }

    // The same with the details page of the stored patient A1.
    void OnDetails(int nButton, const Script& script)
    {
        dbCPatient patient = Loaded("A1");
        Change(patient, nButton, [&](DialogScript& s, const Dialog& sheet) {
            sheet.SelectPage(pat::DetailPage);
            script(s, sheet);
        });
    }

    // Opens the editor of A1's referring doctor, which the script closes, and cancels the sheet.
    void InDoctorEditor(const Script& script)
    {
        OnDetails(IDCANCEL, [&](DialogScript& s, const Dialog& sheet) {
            sheet.Press(IDC_DETAIL_EDIT_REFERRING);
            const Dialog editor = s.WaitForDialog("Doctor");
            script(s, editor);
            editor.WaitForClosed();
            s.Settle(sheet.Handle());
        });
    }

    // Something in every field of every page, and what no page shows. Born on 28 February 2010.
    dbCPatient MakePatient(const char* pszID, const char* pszFirstname = "Ann") const
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
    dbCPatient StorePatient(const char* pszID, const char* pszFirstname = "Ann") const
    {
        return Saved(MakePatient(pszID, pszFirstname));
    }

    // Expects the stored patient to be this one.
    void ExpectStored(const char* pszID, const PatientImage& expected) const
    {
        EXPECT_THAT(Differences(expected, database.ImageOf(pszID)), testing::IsEmpty());
    }

    // The text of the last entry in the audit log.
    static CString LatestEvent()
    {
        dbTList<dbSAuditEvent> events;
        return CVeltrixLogin::LoadEvents(events, 1) == 1 ? events[0].strText : CString();
    }

    dbCPatients m_patients;
    dbCPatients* m_pPatients = &m_patients;
    CString m_strGUID;
    const CString m_strIda = AddDoctor("Sorel", "Ida"), m_strGrace = AddDoctor("Bell", "Grace");
    const CString m_strHarbour = dbCInsuranceCompanies::FindOrAdd("Harbour Mutual");
    const CString m_strNorth = dbCOfficeLocations().AddOffice("North");
    const CString m_strUrgent = dbCPatientStatusList().AddStatus("Urgent");

private:
    static void Play(const std::function<__int64()>& open, int nButton, const Script& script)
    {
        const auto play = [&](DialogScript& s) {
            const Dialog sheet = s.WaitForDialogWith(IDC_CHART_ID);
            script(s, sheet);
            if (nButton != 0)
                sheet.Press(nButton);
        };
        EXPECT_EQ(veltest::RunModal(open, play), nButton != 0 ? nButton : IDOK);
    }
};

// Types what every patient needs.
inline void FillNames(const veltest::Dialog& sheet, const std::string& id,
                      const std::string& firstname = "Ann", const std::string& lastname = "Lee")
{
    sheet.Item(IDC_CHART_ID).SetText(id);
    sheet.Item(IDC_CHART_FIRSTNAME).SetText(firstname);
    sheet.Item(IDC_CHART_LASTNAME).SetText(lastname);
}

// Waits for the buttons to follow the fields, then presses one.
inline void PressSettled(const veltest::Dialog& dialog, int nButton)
{
    dialog.SettleIdle();
    dialog.Press(nButton);
}

// Expects a message box, answers it and expects the window below to be open, with the focus on the control
// (0: wherever).
inline void ExpectBox(veltest::DialogScript& script, const veltest::Dialog& window,
                      const testing::Matcher<std::string>& text, int nFocus = 0, int nAnswer = IDOK)
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

// The same after pressing a button.
inline void ExpectRefused(veltest::DialogScript& script, const veltest::Dialog& window,
                          const testing::Matcher<std::string>& text, int nFocus = 0, int nButton = IDOK)
{
    window.Press(nButton);
    ExpectBox(script, window, text, nFocus);
}
