// The details page and the doctor editor, opened from the patient information sheet.

#include "app/exports/veldlgs.h"
#include "maintenance/maintenanceres.h"
#include "patient/detailsres.h"
#include "patient/patientres.h"
#include "patient/sheetrules.h"
#include "suite/patients/records/dbdoctors.h"
#include "suite/patients/records/dboffices.h"
#include "suite/patients/records/dbpatient.h"
#include "tests/support/dialogquality.h"
#include "tests/support/dialogscript.h"
#include "tests/support/picture.h"
#include "tests/support/temporarypractice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using testing::ElementsAre;
using veltest::Dialog;
using veltest::DialogScript;

constexpr int detailPage = pat::DetailPage;

class Details : public testing::Test
{
protected:
    void SetUp() override
    {
        dbCPatients::Create(m_practice.Path("patients.db").c_str());
        m_grace = StoreDoctor("Grace", "Bell", true);
        m_hugo = StoreDoctor("Hugo", "Stone", false);
        dbCAddress address;
        address.SetCompany("Stone & Sons");
        address.SetStreet("5 Hill Road");
        address.SetCity("Springfield");
        address.SetState("IL");
        address.SetPostalCode("62701");
        dbCDoctor hugo;
        hugo.Load(m_hugo);
        hugo.GetPerson().SetAddress(0, address);
        hugo.Save();

        dbCOfficeLocations offices;
        m_north = offices.AddOffice("North");
        offices.AddOffice("South");
        dbCPatientStatusList statuses;
        m_active = statuses.AddStatus("Active");

        m_patient.SetID("A1");
        m_patient.SetFirstname("Ann");
        m_patient.SetLastname("Lee");
        m_patient.Save();
    }
    void TearDown() override
    {
        dbCPatients::Close();
    }

    static CString StoreDoctor(const char* given, const char* family, bool treating)
    {
        dbCDoctor doctor;
        doctor.GetPerson().SetFirstname(given);
        doctor.GetPerson().SetLastname(family);
        doctor.SetTreating(treating);
        doctor.Save();
        return doctor.GetGUID();
    }

    static CString LinkedDoctor(dbPersonKind kind)
    {
        dbCPatient patient;
        dbCPerson person;
        return patient.Load("A1") && patient.GetPersonInfo(kind, person) ? person.GetPersonGUID() : CString();
    }

    static void LinkDoctor(dbCPatient& patient, dbPersonKind kind, const CString& guid)
    {
        dbCPerson person;
        person.SetPersonGUID(guid);
        patient.SetPersonInfo(kind, person);
    }

    /// Opens the patient's sheet on the details page.
    __int64 Change(const std::function<void(DialogScript&, const Dialog&)>& script)
    {
        return veltest::RunModal([&] { return ChangePatientDlg(nullptr, &m_patients, &m_patient); },
                                 [&](DialogScript& s) {
                                     const Dialog sheet = s.WaitForDialogWith(IDC_CHART_ID);
                                     sheet.SelectPage(detailPage);
                                     script(s, sheet);
                                 });
    }

    veltest::TemporaryPractice m_practice;
    dbCPatients m_patients;
    dbCPatient m_patient;
    CString m_grace;
    CString m_hugo;
    CString m_north;
    CString m_active;
};

TEST_F(Details, ANewPatientShowsPlaceholdersAndEmptyFields)
{
    CString guid;
    veltest::RunModal(
        [&] { return NewPatientDlg(nullptr, &m_patients, guid); },
        [](DialogScript& script) {
            const Dialog sheet = script.WaitForDialog("Patient Information");
            sheet.Item(IDC_CHART_ID).Replace("N1");
            sheet.Item(IDC_CHART_FIRSTNAME).Replace("New");
            sheet.Item(IDC_CHART_LASTNAME).Replace("Born");
            sheet.SelectPage(detailPage);
            for (const int field :
                 {IDC_DETAIL_TITLE, IDC_DETAIL_MODEL, IDC_DETAIL_SALUTATION, IDC_DETAIL_KEYWORDS,
                  IDC_DETAIL_NOTES, IDC_DETAIL_TREATING_SUMMARY, IDC_DETAIL_REFERRING_SUMMARY})
                EXPECT_EQ(sheet.Item(field).Text(), "") << field;
            EXPECT_EQ(sheet.Item(IDC_DETAIL_TREATING).SelectedItem(), "<Please select a Treating Doctor>");
            EXPECT_EQ(sheet.Item(IDC_DETAIL_REFERRING).SelectedItem(), "<Please select a Referring Doctor>");
            EXPECT_EQ(sheet.Item(IDC_DETAIL_OFFICE).SelectedItem(), "<none>");
            EXPECT_EQ(sheet.Item(IDC_DETAIL_STATUS).SelectedItem(), "<none>");
            sheet.Press(IDCANCEL);
        });
}

TEST_F(Details, ListsHoldWhatThePracticeHas)
{
    Change([](DialogScript&, const Dialog& sheet) {
        EXPECT_THAT(sheet.Item(IDC_DETAIL_TREATING).Items(),
                    ElementsAre("<Please select a Treating Doctor>", "Bell, Grace"));
        EXPECT_THAT(sheet.Item(IDC_DETAIL_REFERRING).Items(),
                    ElementsAre("<Please select a Referring Doctor>", "Bell, Grace", "Stone, Hugo"));
        EXPECT_THAT(sheet.Item(IDC_DETAIL_OFFICE).Items(), ElementsAre("<none>", "North", "South"));
        EXPECT_THAT(sheet.Item(IDC_DETAIL_STATUS).Items(), testing::Contains("Active"));
        sheet.Press(IDCANCEL);
    });
}

// The rows belong to the referral page; the details page may give the first one another doctor, and takes it
// from there.
TEST_F(Details, TheFirstReferralStandsForTheReferringDoctor)
{
    m_patient.GetReferrals().AddReferralDoc(m_hugo, velCDate(2020, 5, 6), "first");
    LinkDoctor(m_patient, dbPersonReferringDoctor, m_grace);
    m_patient.Save();
    const auto expectRow = [&](const CString& doctor) {
        dbCPatientReferralsContainer rows;
        ASSERT_TRUE(rows.LoadWithDoctor(m_patient.GetGUID()));
        ASSERT_EQ(rows.GetCount(), 1);
        EXPECT_STREQ(rows[0].Get_docID(), doctor);
        EXPECT_STREQ(rows[0].Get_note(), "first");
        EXPECT_EQ(rows[0].Get_date().ToISO(), "2020-05-06");
    };
    constexpr char placeholder[] = "<Please select a Referring Doctor>";
    const auto rowOnReferralPage = [](const Dialog& sheet) {
        sheet.SelectPage(pat::ReferralPage);
        const auto rows = sheet.Item(IDC_ROWS_LIST).Rows();
        sheet.SelectPage(pat::DetailPage);
        return rows.size() == 1 ? rows[0][0] : std::string("not one row");
    };
    Change([&](DialogScript&, const Dialog& sheet) {
        EXPECT_EQ(sheet.Item(IDC_DETAIL_REFERRING).SelectedItem(), "Stone, Hugo");
        sheet.Item(IDC_DETAIL_REFERRING).Choose("Bell, Grace");
        EXPECT_EQ(rowOnReferralPage(sheet), "Bell, Grace");
        sheet.Item(IDC_DETAIL_REFERRING).Choose(placeholder); // gives the row its own doctor back
        EXPECT_EQ(rowOnReferralPage(sheet), "Stone, Hugo");
        sheet.Item(IDC_DETAIL_REFERRING).Choose(placeholder);
        sheet.Press(IDOK);
    });
    expectRow(m_hugo);
    EXPECT_STREQ(LinkedDoctor(dbPersonReferringDoctor), "") << "none was chosen here";

    ASSERT_TRUE(m_patient.Load("A1"));
    Change([&](DialogScript&, const Dialog& sheet) {
        sheet.Item(IDC_DETAIL_REFERRING).Choose("Bell, Grace");
        sheet.Press(IDOK);
    });
    expectRow(m_grace);
    EXPECT_STREQ(LinkedDoctor(dbPersonReferringDoctor), "");

    // The other way round, and down to no row at all.
    ASSERT_TRUE(m_patient.Load("A1"));
    Change([&](DialogScript&, const Dialog& sheet) {
        sheet.SelectPage(pat::ReferralPage);
        sheet.Item(IDC_ROWS_LIST).SelectRow(0);
        sheet.Item(IDC_REFER_DOCTOR).Choose("Stone, Hugo");
        sheet.SettleIdle();
        sheet.Press(IDC_ROWS_CHANGE);
        sheet.SelectPage(pat::DetailPage);
        EXPECT_EQ(sheet.Item(IDC_DETAIL_REFERRING).SelectedItem(), "Stone, Hugo");
        EXPECT_EQ(sheet.Item(IDC_DETAIL_REFERRING_SUMMARY).Text(),
                  "Stone & Sons\n5 Hill Road\nSpringfield, IL 62701");
        sheet.SelectPage(pat::ReferralPage);
        sheet.Item(IDC_ROWS_LIST).SelectRow(0);
        sheet.SettleIdle();
        sheet.Press(IDC_ROWS_REMOVE);
        sheet.SelectPage(pat::DetailPage);
        EXPECT_EQ(sheet.Item(IDC_DETAIL_REFERRING).SelectedItem(), placeholder);
        EXPECT_EQ(sheet.Item(IDC_DETAIL_REFERRING_SUMMARY).Text(), "");
        sheet.Item(IDC_DETAIL_REFERRING).Choose("Bell, Grace");
        sheet.Press(IDOK);
    });
    dbCPatientReferralsContainer rows;
    EXPECT_FALSE(rows.LoadWithDoctor(m_patient.GetGUID()));
    EXPECT_STREQ(LinkedDoctor(dbPersonReferringDoctor), m_grace) << "without referrals there is the link";
}

TEST_F(Details, PlaceholdersMeanNone)
{
    LinkDoctor(m_patient, dbPersonTreatingDoctor, m_grace);
    LinkDoctor(m_patient, dbPersonReferringDoctor, m_hugo);
    m_patient.SetOfficeID(m_north);
    m_patient.SetStatusID(m_active);
    m_patient.Save();
    Change([](DialogScript&, const Dialog& sheet) {
        EXPECT_EQ(sheet.Item(IDC_DETAIL_REFERRING).SelectedItem(), "Stone, Hugo");
        for (const int list :
             {IDC_DETAIL_OFFICE, IDC_DETAIL_STATUS, IDC_DETAIL_TREATING, IDC_DETAIL_REFERRING})
            sheet.Item(list).Choose(0);
        EXPECT_EQ(sheet.Item(IDC_DETAIL_REFERRING_SUMMARY).Text(), "");
        sheet.Press(IDOK);
    });
    dbCPatient patient;
    ASSERT_TRUE(patient.Load("A1"));
    EXPECT_STREQ(patient.GetOfficeID(), "");
    EXPECT_STREQ(patient.GetStatusID(), "");
    EXPECT_STREQ(LinkedDoctor(dbPersonTreatingDoctor), "");
    EXPECT_STREQ(LinkedDoctor(dbPersonReferringDoctor), "");
}

TEST_F(Details, FieldsStopAtTheirLimits)
{
    Change([](DialogScript& script, const Dialog& sheet) {
        sheet.Item(IDC_DETAIL_MODEL).Type("12345678901");
        EXPECT_EQ(sheet.Item(IDC_DETAIL_MODEL).Text(), "1234567890");
        EXPECT_EQ(sheet.Item(IDC_DETAIL_NOTES).Send(EM_GETLIMITTEXT), 500);

        // Set past the limit of typing, a text is refused when the sheet is confirmed.
        sheet.Item(IDC_DETAIL_TITLE).SetText("12345678901");
        sheet.Press(IDOK);
        script.AnswerBox("", IDOK);
        EXPECT_TRUE(sheet.IsOpen());
        sheet.Item(IDC_DETAIL_TITLE).SetText("Dr.");
        sheet.Press(IDOK);
    });
    dbCPatient patient;
    ASSERT_TRUE(patient.Load("A1"));
    EXPECT_STREQ(patient.GetTitle(), "Dr.");
    EXPECT_STREQ(patient.GetModelNumber(), "1234567890");
}

TEST_F(Details, EditTheseOpensTheKeywordEditor)
{
    Change([](DialogScript& script, const Dialog& sheet) {
        sheet.Press(IDC_DETAIL_EDIT_KEYWORDS);
        const Dialog editor = script.WaitForDialog("Edit Keywords");
        editor.Press(IDCANCEL);
        editor.WaitForClosed();
        sheet.Press(IDCANCEL);
    });
}

TEST_F(Details, ANewDoctorIsSelectedInTheListItWasEnteredFor)
{
    const auto result = Change([](DialogScript& script, const Dialog& sheet) {
        sheet.Item(IDC_DETAIL_REFERRING).Choose("Stone, Hugo");
        sheet.Press(IDC_DETAIL_EDIT_TREATING);
        const Dialog editor = script.WaitForDialog("Doctor");
        EXPECT_TRUE(editor.Item(IDC_DOCTOR_TREATING).IsChecked());
        EXPECT_TRUE(editor.Item(IDC_DOCTOR_ADDRESS_OFFICE).IsChecked());
        editor.Item(IDC_DOCTOR_FIRSTNAME).Type("Ida");
        editor.Item(IDC_DOCTOR_LASTNAME).Type("Novak");
        editor.Item(IDC_DOCTOR_CITY).Type("Salem");
        editor.Press(IDOK);
        editor.WaitForClosed();
        script.Settle(sheet.Handle());
        EXPECT_EQ(sheet.Item(IDC_DETAIL_TREATING).SelectedItem(), "Novak, Ida");
        EXPECT_EQ(sheet.Item(IDC_DETAIL_TREATING_SUMMARY).Text(), "\n\nSalem,  ");
        EXPECT_EQ(sheet.Item(IDC_DETAIL_REFERRING).SelectedItem(), "Stone, Hugo")
            << "the other list keeps its own";
        EXPECT_THAT(sheet.Item(IDC_DETAIL_REFERRING).Items(), testing::Contains("Novak, Ida"));
        sheet.Press(IDOK);
    });
    EXPECT_EQ(result, IDOK);
    dbCDoctor doctor;
    ASSERT_TRUE(doctor.Load(LinkedDoctor(dbPersonTreatingDoctor)));
    EXPECT_STREQ(doctor.GetPerson().GetLastname(), "Novak");
    EXPECT_STREQ(doctor.GetPerson().GetAddress(0).GetType(), "O");
}

TEST_F(Details, TheDoctorEditorChangesTheSelectedDoctorAndRefusesWhatIsIncomplete)
{
    dbCDoctorTypes types;
    types.AddDoctorType("Dentist");
    Change([](DialogScript& script, const Dialog& sheet) {
        sheet.Item(IDC_DETAIL_REFERRING).Choose("Stone, Hugo");
        sheet.Press(IDC_DETAIL_EDIT_REFERRING);
        const Dialog editor = script.WaitForDialog("Doctor");
        EXPECT_EQ(editor.Item(IDC_DOCTOR_LASTNAME).Text(), "Stone");
        EXPECT_EQ(editor.Item(IDC_DOCTOR_STREET).Text(), "5 Hill Road");

        editor.Item(IDC_DOCTOR_LASTNAME).Replace("");
        editor.Press(IDOK);
        script.AnswerBox("Please enter the doctor's family name.", IDOK);
        editor.Item(IDC_DOCTOR_LASTNAME).Type("Stoner");
        editor.Item(IDC_DOCTOR_PHONE1).Type("555 0100");
        editor.Press(IDOK);
        script.AnswerBox("Please select a type for phone 1", IDOK);
        script.Settle(editor.Handle());
        EXPECT_TRUE(editor.Item(IDC_DOCTOR_PHONETYPE1).HasFocus());
        editor.Item(IDC_DOCTOR_PHONETYPE1).Choose(1);
        editor.Item(IDC_DOCTOR_EMAIL).Type("hugo");
        editor.Press(IDOK);
        script.AnswerBox("Please enter the e-mail address in full, for example name@practice.com.", IDOK);
        editor.Item(IDC_DOCTOR_EMAIL).Replace("hugo@stone.example");
        editor.Item(IDC_DOCTOR_TYPE).Choose("Dentist");
        editor.Press(IDOK);
        editor.WaitForClosed();
        script.Settle(sheet.Handle());
        EXPECT_EQ(sheet.Item(IDC_DETAIL_REFERRING).SelectedItem(), "Stoner, Hugo");
        sheet.Press(IDCANCEL);
    });
    dbCDoctor doctor;
    ASSERT_TRUE(doctor.Load(m_hugo));
    EXPECT_STREQ(doctor.GetPerson().GetLastname(), "Stoner");
    EXPECT_STREQ(doctor.GetPerson().GetPhone(0).GetNumber(), "555 0100");
    EXPECT_STREQ(doctor.GetPerson().GetEmail(), "hugo@stone.example");
    EXPECT_STREQ(doctor.GetType(), "Dentist");
    EXPECT_STREQ(doctor.GetPerson().GetAddress(0).GetCompany(), "Stone & Sons");
}

TEST_F(Details, ADoctorWhoseAddressIsEmptiedHasNone)
{
    Change([](DialogScript& script, const Dialog& sheet) {
        sheet.Item(IDC_DETAIL_REFERRING).Choose("Stone, Hugo");
        sheet.Press(IDC_DETAIL_EDIT_REFERRING);
        const Dialog editor = script.WaitForDialog("Doctor");
        for (const int nField : {IDC_DOCTOR_COMPANY, IDC_DOCTOR_STREET, IDC_DOCTOR_CITY, IDC_DOCTOR_STATE,
                                 IDC_DOCTOR_POSTALCODE})
            editor.Item(nField).Replace("");
        editor.Press(IDOK);
        editor.WaitForClosed();
        script.Settle(sheet.Handle());
        EXPECT_EQ(sheet.Item(IDC_DETAIL_REFERRING_SUMMARY).Text(), "(Address is not entered)");
        sheet.Press(IDCANCEL);
    });
}

TEST_F(Details, TheDoctorEditorStaysOpenWhenTheDoctorWasChangedElsewhere)
{
    Change([&](DialogScript& script, const Dialog& sheet) {
        sheet.Item(IDC_DETAIL_REFERRING).Choose("Stone, Hugo");
        sheet.Press(IDC_DETAIL_EDIT_REFERRING);
        const Dialog editor = script.WaitForDialog("Doctor");
        {
            dbCDoctor other;
            ASSERT_TRUE(other.Load(m_hugo));
            other.GetPerson().SetTitle("Prof.");
            other.Save();
        }
        editor.Item(IDC_DOCTOR_LASTNAME).Replace("Stoner");
        editor.Press(IDOK);
        const Dialog box = script.WaitForBox();
        EXPECT_NE(box.BoxText().find("The doctor could not be saved."), std::string::npos);
        box.Press(IDOK);
        box.WaitForClosed();
        EXPECT_TRUE(editor.IsOpen());
        EXPECT_EQ(editor.Item(IDC_DOCTOR_LASTNAME).Text(), "Stoner");
        editor.Press(IDCANCEL);
        editor.WaitForClosed();
        sheet.Press(IDCANCEL);
    });
}

TEST_F(Details, ALostDatabaseIsReportedAndTheSheetStays)
{
    veltest::RunModal([&] { return ChangePatientDlg(nullptr, &m_patients, &m_patient); },
                      [](DialogScript& script) {
                          const Dialog sheet = script.WaitForDialogWith(IDC_CHART_ID);
                          dbCPatients::Close();
                          sheet.SelectPage(detailPage);
                          const Dialog box = script.WaitForBox();
                          EXPECT_NE(
                              box.BoxText().find("The doctors, offices and statuses could not be read."),
                              std::string::npos);
                          box.Press(IDOK);
                          box.WaitForClosed();
                          script.Settle(sheet.Handle());
                          EXPECT_TRUE(sheet.IsOpen());
                          EXPECT_EQ(sheet.Item(IDC_DETAIL_OFFICE).SelectedItem(), "<none>");
                          sheet.Press(IDCANCEL);
                      });
}

TEST_F(Details, PageAndEditorLookAsTheyShould)
{
    m_patient.SetTitle("Ms");
    m_patient.SetKeywords("Braces, Crown & Bridge, Recall");
    m_patient.SetNotes("Prefers appointments in the morning.");
    m_patient.SetOfficeID(m_north);
    LinkDoctor(m_patient, dbPersonTreatingDoctor, m_grace);
    LinkDoctor(m_patient, dbPersonReferringDoctor, m_hugo);
    m_patient.Save();
    Change([](DialogScript& script, const Dialog& sheet) {
        veltest::QualityOptions page;
        page.isPage = true;
        EXPECT_EQ(veltest::DialogFindings(sheet.Page().Handle(), page), "");
        EXPECT_TRUE(veltest::SavePicture(sheet.Handle(), "patient-details"));
        sheet.Press(IDC_DETAIL_EDIT_REFERRING);
        const Dialog editor = script.WaitForDialog("Doctor");
        EXPECT_EQ(veltest::DialogFindings(editor.Handle()), "");
        EXPECT_TRUE(veltest::SavePicture(editor.Handle(), "edit-doctor"));
        editor.Press(IDCANCEL);
        editor.WaitForClosed();
        sheet.Press(IDCANCEL);
    });
}

} // namespace
