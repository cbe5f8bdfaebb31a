// Every field of every page: what is not touched stays, and what is typed arrives where it belongs.

#include "tests/patient/sheetfixture.h"

#include <span>

using veltest::Control;
using veltest::Dialog;

namespace
{

enum class By
{
    Text,   // typed
    Date,   // "yyyy-mm-dd" in a date picker
    Choice, // an entry of a list
    Press   // a radio button
};

struct Field
{
    int nPage;
    int nControl;
    By by;
    int nMaxChars;        // of what can be typed; 0 where there is no limit or none to type
    const char* pszValue; // as the user enters it
    const char* pszName;  // where it arrives in the image
    const char* pszStored = nullptr;
};

// What users and other systems have typed.
constexpr char firstname[] = "O'Bea \"%s\"";
constexpr char lastname[] = "M\xFCller \x80 \xFF & Sons";

const Field fields[] = {
    {pat::ChartPage, IDC_CHART_ID, By::Text, 25, "B-2", "patientID"},
    {pat::ChartPage, IDC_CHART_FIRSTNAME, By::Text, 50, firstname, "0.firstName"},
    {pat::ChartPage, IDC_CHART_LASTNAME, By::Text, 50, lastname, "0.lastName"},
    {pat::ChartPage, IDC_CHART_NICKNAME, By::Text, 30, "%s %n %d 100%", "0.nickname"},
    {pat::ChartPage, IDC_CHART_BIRTHDATE, By::Date, 0, "2011-12-13", "0.birthDate"},
    {pat::ChartPage, IDC_CHART_GENDER_SECOND, By::Press, 0, "", "0.gender", "2"},
    {pat::ChartPage, IDC_CHART_GENDER_IDENTITY, By::Choice, 0, "Male", "genderIdentity", "2"},
    {pat::ChartPage, IDC_CHART_RACE, By::Choice, 0, "South Pacific", "race", "7"},
    {pat::ChartPage, IDC_CHART_ADDRESS_OFFICE, By::Press, 0, "", "0.address.0.type", "O"},
    {pat::ChartPage, IDC_CHART_COMPANY, By::Text, 50, "'; DROP TABLE patients; --", "0.address.0.company"},
    {pat::ChartPage, IDC_CHART_STREET, By::Text, 255, "<1> <2> \\n %1 && \t\x02", "0.address.0.street"},
    {pat::ChartPage, IDC_CHART_CITY, By::Text, 50, "Westport", "0.address.0.city"},
    {pat::ChartPage, IDC_CHART_STATE, By::Text, 20, "WP", "0.address.0.state"},
    {pat::ChartPage, IDC_CHART_POSTALCODE, By::Text, 20, "54321", "0.address.0.postalCode"},
    {pat::ChartPage, IDC_CHART_COUNTRY, By::Text, 30, "Freedonia", "0.address.0.country"},
    {pat::ChartPage, IDC_CHART_PHONE1, By::Text, 30, "811", "0.phone.0.number"},
    {pat::ChartPage, IDC_CHART_PHONETYPE1, By::Choice, 0, "Work", "0.phone.0.type"},
    {pat::ChartPage, IDC_CHART_PHONE2, By::Text, 30, "822", "0.phone.1.number"},
    {pat::ChartPage, IDC_CHART_PHONETYPE2, By::Choice, 0, "Home", "0.phone.1.type"},
    {pat::ChartPage, IDC_CHART_EMAIL, By::Text, 60, "bea@example.org", "0.email"},

    {pat::DetailPage, IDC_DETAIL_TITLE, By::Text, 10, "Dr.", "0.title"},
    {pat::DetailPage, IDC_DETAIL_MODEL, By::Text, 10, "M-2", "modelNumber"},
    {pat::DetailPage, IDC_DETAIL_SALUTATION, By::Text, 50, "Dear Bea", "0.salutation"},
    {pat::DetailPage, IDC_DETAIL_KEYWORDS, By::Text, 255, "Recall", "keywords"},
    {pat::DetailPage, IDC_DETAIL_NOTES, By::Text, 500, "Likes & dislikes\r\n100% of them", "0.notes"},
    {pat::DetailPage, IDC_DETAIL_OFFICE, By::Choice, 0, "South", "office"},
    {pat::DetailPage, IDC_DETAIL_STATUS, By::Choice, 0, "Waiting", "status"},
    {pat::DetailPage, IDC_DETAIL_TREATING, By::Choice, 0, "Bell, Grace", "treating.doctor"},
    {pat::DetailPage, IDC_DETAIL_REFERRING, By::Choice, 0, "Bell, Grace", "referral.0.doctor"},

    {pat::GuardianPage, IDC_GUARD_TITLE, By::Text, 10, "Prof.", "1.title"},
    {pat::GuardianPage, IDC_GUARD_FIRSTNAME, By::Text, 50, "Eva", "1.firstName"},
    {pat::GuardianPage, IDC_GUARD_LASTNAME, By::Text, 50, "Moore", "1.lastName"},
    {pat::GuardianPage, IDC_GUARD_NICKNAME, By::Text, 30, "E.", "1.nickname"},
    {pat::GuardianPage, IDC_GUARD_BIRTHDATE, By::Date, 0, "1979-01-02", "1.birthDate"},
    {pat::GuardianPage, IDC_GUARD_GENDER_FIRST, By::Press, 0, "", "1.gender", "1"},
    {pat::GuardianPage, IDC_GUARD_ADDRESS_HOME, By::Press, 0, "", "1.address.0.type", "H"},
    {pat::GuardianPage, IDC_GUARD_COMPANY, By::Text, 50, "Moore Ltd", "1.address.0.company"},
    {pat::GuardianPage, IDC_GUARD_STREET, By::Text, 255, "Dock 4", "1.address.0.street"},
    {pat::GuardianPage, IDC_GUARD_CITY, By::Text, 50, "Eastport", "1.address.0.city"},
    {pat::GuardianPage, IDC_GUARD_STATE, By::Text, 20, "EP", "1.address.0.state"},
    {pat::GuardianPage, IDC_GUARD_POSTALCODE, By::Text, 20, "777", "1.address.0.postalCode"},
    {pat::GuardianPage, IDC_GUARD_COUNTRY, By::Text, 30, "Sylvania", "1.address.0.country"},
    {pat::GuardianPage, IDC_GUARD_PHONE1, By::Text, 30, "911", "1.phone.0.number"},
    {pat::GuardianPage, IDC_GUARD_PHONETYPE1, By::Choice, 0, "Work", "1.phone.0.type"},
    {pat::GuardianPage, IDC_GUARD_PHONE2, By::Text, 30, "922", "1.phone.1.number"},
    {pat::GuardianPage, IDC_GUARD_PHONETYPE2, By::Choice, 0, "Home", "1.phone.1.type"},
    {pat::GuardianPage, IDC_GUARD_EMAIL, By::Text, 60, "eva@example.org", "1.email"},
    {pat::GuardianPage, IDC_GUARD_NOTES, By::Text, 0, "knows\r\nbest", "1.notes"},

    {pat::ReferralPage, IDC_REFER_DATE, By::Date, 0, "2021-06-07", "referral.0.date"},
    {pat::ReferralPage, IDC_REFER_NOTE, By::Text, 255, "spacing", "referral.0.note"},

    {pat::InsurancePage, IDC_INSURE_COMPANY, By::Text, 0, "Northfield", "insurance.0.company"},
    {pat::InsurancePage, IDC_INSURE_HOLDER, By::Text, 100, "Eva \"M\xFCller\"", "insurance.0.holder"},
    {pat::InsurancePage, IDC_INSURE_NUMBER, By::Text, 30, "18", "insurance.0.number"},
    {pat::InsurancePage, IDC_INSURE_GROUP, By::Text, 30, "G-2", "insurance.0.groupNumber"},
};

void Enter(const Dialog& sheet, const Field& field)
{
    const Control control = sheet.Item(field.nControl);
    EXPECT_TRUE(field.nMaxChars == 0 || control.Send(EM_GETLIMITTEXT) == field.nMaxChars) << field.pszName;
    if (field.by == By::Text)
        control.SetText(field.pszValue);
    else if (field.by == By::Choice)
        control.Choose(field.pszValue);
    else if (field.by == By::Press)
        control.Click();
    else
    {
        SYSTEMTIME date{};
        velCDate::FromISO(field.pszValue).GetAsSystemTime(date);
        control.SetDate(date.wYear, date.wMonth, date.wDay);
    }
}

// What a field shows, as the table has it.
std::string Shown(const Control& control, By by)
{
    if (by == By::Text)
        return control.Text();
    if (by == By::Choice)
        return control.SelectedItem();
    if (by == By::Press)
        return control.IsChecked() ? "" : "not pressed";
    const SYSTEMTIME date = control.Date();
    return velCDate(date.wYear, date.wMonth, date.wDay).ToISO().GetString();
}

bool IsListPage(int nPage)
{
    return nPage == pat::ReferralPage || nPage == pat::InsurancePage;
}

// Fills every page; on the list pages the first row, which is added if there is none.
void EnterPages(const Dialog& sheet)
{
    for (int nPage = 0; nPage < pat::PageCount; ++nPage)
    {
        if (nPage > 0)
            sheet.SelectPage(nPage);
        const bool bRow = IsListPage(nPage) && !sheet.Item(IDC_ROWS_LIST).Rows().empty();
        if (bRow)
            sheet.Item(IDC_ROWS_LIST).SelectRow(0);
        else if (nPage == pat::ReferralPage)
            sheet.Item(IDC_REFER_DOCTOR).Choose("Bell, Grace");
        for (const Field& field : fields)
            if (field.nPage == nPage)
                Enter(sheet, field);
        if (IsListPage(nPage))
            PressSettled(sheet, bRow ? IDC_ROWS_CHANGE : IDC_ROWS_ADD);
    }
}

void ExpectPages(const Dialog& sheet)
{
    for (int nPage = 0; nPage < pat::PageCount; ++nPage)
    {
        sheet.SelectPage(nPage);
        if (IsListPage(nPage))
            sheet.Item(IDC_ROWS_LIST).SelectRow(0);
        for (const Field& field : fields)
        {
            EXPECT_TRUE(field.nPage != nPage || Shown(sheet.Item(field.nControl), field.by) == field.pszValue)
                << field.pszName;
        }
    }
}

using SheetFieldsTest = SheetTest;

// An image with the values of a table in it.
PatientImage WithFields(PatientImage image, std::span<const Field> table)
{
    for (const Field& field : table)
        image[field.pszName] = field.pszStored != nullptr ? field.pszStored : field.pszValue;
    return image;
}

TEST_F(SheetFieldsTest, EveryPageOpenedAndOKChangesNothing)
{
    database.practice.Set("Defaults", "Country", "Ruritania");
    dbCPatient patient = StorePatient("A1");
    patient.GetAddresses()[0].SetType("");
    patient.GetReferrals().AddReferralDoc(AddDoctor("Abel", "Noor"), velCDate(1999, 1, 1), "before birth");
    const std::string longest(300, 'n'); // longer than can be typed
    patient.GetReferrals()[0].Set_note(longest.c_str());
    dbCInsurance& insurance = patient.GetInsurances()[0];
    insurance.SetCompanyGUID(dbCInsuranceCompanies::FindOrAdd(longest.c_str()));
    insurance.SetHolder((longest + "H").c_str());
    insurance.SetNumber((longest + "N").c_str());
    insurance.SetGroup((longest + "G").c_str());
    dbCPerson treating;
    treating.SetPersonGUID(AddDoctor("Treating", "Not", FALSE));
    patient.SetPersonInfo(dbPersonTreatingDoctor, treating);
    patient.Save();
    const PatientImage before = database.ImageOf("A1");
    for (const int nButton : {IDOK, IDCANCEL})
    {
        Change(patient, nButton, [](DialogScript&, const Dialog& sheet) {
            for (int nPage = pat::PageCount - 1; nPage >= 0; --nPage)
            {
                sheet.SelectPage(nPage);
                if (IsListPage(nPage))
                    sheet.Item(IDC_ROWS_LIST).SelectRow(0);
            }
            EXPECT_EQ(sheet.Item(IDC_CHART_RACE).SelectedItem(), "Other (8001)");
            EXPECT_EQ(sheet.Item(IDC_CHART_GENDER_IDENTITY).SelectedItem(), "Other (47)");
            EXPECT_TRUE(sheet.Item(IDC_CHART_GENDER_SECOND).IsChecked());
            EXPECT_TRUE(sheet.Item(IDC_CHART_TEETH).IsEnabled());
        });
        ExpectStored("A1", before);
    }
}

TEST_F(SheetFieldsTest, EveryFieldArrivesWhereItBelongs)
{
    dbCPatient patient = StorePatient("A1");
    PatientImage before = database.ImageOf("A1"), expected = WithFields(before, fields);
    for (const Field& field : fields)
        EXPECT_NE(before[field.pszName], expected[field.pszName]) << field.pszName << " is to be changed";
    Change(patient, IDOK, [](DialogScript&, const Dialog& sheet) {
        EXPECT_EQ(sheet.Title(), "Patient Information - Ann Lee ID: A1");
        EnterPages(sheet);
    });
    EXPECT_EQ(LatestEvent(),
              CString("The patient (B-2) ") + lastname + ", " + firstname + " data, has been modified");
    ExpectStored("B-2", expected);

    // What is emptied goes: the guardian, even if the country stands there, and the insurance.
    dbCPatient changed = Loaded("B-2");
    Change(changed, IDOK, [](DialogScript&, const Dialog& sheet) {
        ExpectPages(sheet);
        PressSettled(sheet, IDC_ROWS_REMOVE);
        EXPECT_TRUE(sheet.Item(IDC_ROWS_LIST).Rows().empty());
        sheet.SelectPage(pat::GuardianPage);
        for (const Field& field : fields)
            if (field.nPage == pat::GuardianPage && field.by == By::Text &&
                field.nControl != IDC_GUARD_COUNTRY)
                sheet.Item(field.nControl).SetText("");
    });
    std::erase_if(expected, [](const auto& entry) {
        return entry.first.starts_with("insurance.") || entry.first.starts_with("1.");
    });
    ExpectStored("B-2", expected);
}

TEST_F(SheetFieldsTest, ANewPatientGetsWhatIsTyped)
{
    database.practice.Set("Defaults", "Country", "Ruritania");
    New(IDOK, [](DialogScript&, const Dialog& sheet) {
        EXPECT_EQ(sheet.Title(), "Patient Information");
        EXPECT_EQ(sheet.PageCount(), 5);
        EXPECT_EQ(sheet.Item(IDC_CHART_COUNTRY).Text(), "Ruritania");
        EXPECT_EQ(sheet.Item(IDC_CHART_BIRTHDATE).Date().wYear, 0);
        EXPECT_TRUE(sheet.Item(IDC_CHART_GENDER_SECOND).IsChecked());
        EXPECT_TRUE(sheet.Item(IDC_CHART_ADDRESS_HOME).IsChecked());
        EXPECT_FALSE(sheet.Item(IDC_CHART_TEETH).IsEnabled());
        EnterPages(sheet);
        const std::vector<std::vector<std::string>> rows{{"Northfield", "Eva \"M\xFCller\"", "18", "G-2"}};
        EXPECT_EQ(sheet.Item(IDC_ROWS_LIST).Rows(), rows);
        sheet.SelectPage(pat::GuardianPage);
        EXPECT_GT(sheet.Item(IDC_GUARD_NOTES).Send(EM_GETLIMITTEXT), 1'000'000); // no limit
    });
    EXPECT_EQ(LatestEvent(),
              CString("The patient (B-2) ") + lastname + ", " + firstname + " has been created");
    PatientImage expected = WithFields(database.ImageOf("B-2"), fields);
    expected["0.guid"] = m_strGUID.GetString();
    expected["referral.0.type"] = DB_REFERRAL_DOC;
    expected["referring.doctor"] = "Bell, Grace";
    ExpectStored("B-2", expected);
    dbCInsuranceCompanies companies;
    companies.Load();
    EXPECT_EQ(companies.GetCount(), 2);
}

TEST_F(SheetFieldsTest, DataFillEveryPageAndArriveWhetherItIsOpenedOrNot)
{
    database.practice.Set("Defaults", "Country", "Ruritania");
    const auto make = [&] {
        dbCPatient patient = MakePatient("A1");
        patient.GetTimepoints().RemoveAll();
        dbCPerson referring;
        referring.SetPersonGUID(m_strGrace);
        patient.SetPersonInfo(dbPersonReferringDoctor, referring);
        return patient;
    };
    const dbCPatient stored = Saved(make());
    const std::vector<std::vector<std::string>> referrals{
        {"Sorel, Ida", velCDate(2020, 5, 6).FormatDate().GetString(), "crowding"}};
    PatientImage before = database.ImageOf("A1"), expected = WithoutIdentity(before);
    expected["veltrixID"] = "";
    expected["0.gender"] = "2"; // a new patient gets the one that the page shows
    for (const char* const pszID : {"D00", "D01", "D10", "D11"}) // whether stored, whether opened
    {
        SCOPED_TRACE(pszID);
        dbCPatient data = pszID[1] == '1' ? stored : make();
        if (!data.IsValid())
            data.SetVeltrixID("");
        NewWithData(data, 0, [&](DialogScript& script, const Dialog& sheet) {
            EXPECT_EQ(sheet.Item(IDC_CHART_FIRSTNAME).Text(), "Ann");
            sheet.Item(IDC_CHART_ID).SetText(pszID);
            if (pszID[2] == '1')
            {
                sheet.SelectPage(pat::DetailPage);
                EXPECT_EQ(sheet.Item(IDC_DETAIL_MODEL).Text(), "M-1234567");
                sheet.SelectPage(pat::GuardianPage);
                EXPECT_EQ(sheet.Item(IDC_GUARD_PHONE1).Text(), "555-0101");
                sheet.SelectPage(pat::ReferralPage);
                EXPECT_EQ(sheet.Item(IDC_ROWS_LIST).Rows(), referrals);
                sheet.SelectPage(pat::InsurancePage);
                EXPECT_EQ(sheet.Item(IDC_ROWS_LIST).Rows().size(), 1u);
            }
            sheet.Press(IDOK);
            EXPECT_EQ(script.WaitForBox().Title(), "Similar Patient");
            script.AnswerBox("", IDYES);
        });
        EXPECT_EQ(LatestEvent(), CString("The patient from DICOM (") + pszID + ") Lee, Ann has been created");
        PatientImage created = database.ImageOf(pszID);
        EXPECT_EQ(created["0.guid"], m_strGUID.GetString());
        for (const char* pszName : {"0.guid", "referral.0.guid", "insurance.0.guid", "1.guid"})
            EXPECT_NE(created[pszName], before[pszName]);
        expected["patientID"] = pszID;
        EXPECT_THAT(Differences(expected, WithoutIdentity(created)), testing::IsEmpty());
    }
    EXPECT_THAT(Differences(before, database.ImageOf("A1")), testing::IsEmpty());
}

const Field doctorFields[] = {
    {0, IDC_DOCTOR_TITLE, By::Text, 10, "Prof.", "0.title"},
    {0, IDC_DOCTOR_FIRSTNAME, By::Text, 50, "Idina", "0.firstName"},
    {0, IDC_DOCTOR_LASTNAME, By::Text, 50, "Sorell", "0.lastName"},
    {0, IDC_DOCTOR_TYPE, By::Choice, 0, "Dentist", "doctor.type"},
    {0, IDC_DOCTOR_NOTES, By::Text, 2000, "away\r\nin May", "0.notes"},
    {0, IDC_DOCTOR_ADDRESS_HOME, By::Press, 0, "", "0.address.0.type", "H"},
    {0, IDC_DOCTOR_COMPANY, By::Text, 50, "Sorel & Sons", "0.address.0.company"},
    {0, IDC_DOCTOR_STREET, By::Text, 255, "5 Hill Road", "0.address.0.street"},
    {0, IDC_DOCTOR_CITY, By::Text, 50, "Springfield", "0.address.0.city"},
    {0, IDC_DOCTOR_STATE, By::Text, 20, "IL", "0.address.0.state"},
    {0, IDC_DOCTOR_POSTALCODE, By::Text, 20, "62701", "0.address.0.postalCode"},
    {0, IDC_DOCTOR_COUNTRY, By::Text, 30, "Sylvania", "0.address.0.country"},
    {0, IDC_DOCTOR_PHONE1, By::Text, 30, "1", "0.phone.0.number"},
    {0, IDC_DOCTOR_PHONETYPE1, By::Choice, 0, "Home", "0.phone.0.type"},
    {0, IDC_DOCTOR_PHONE2, By::Text, 30, "2", "0.phone.1.number"},
    {0, IDC_DOCTOR_PHONETYPE2, By::Choice, 0, "Work", "0.phone.1.type"},
    {0, IDC_DOCTOR_EMAIL, By::Text, 60, "ida@example.org", "0.email"},
    {0, IDC_DOCTOR_TREATING, By::Press, 0, "", "doctor.treating", "0"}, // checked before
};

TEST_F(SheetFieldsTest, EveryFieldOfADoctorArrivesAndUntouchedOnesStay)
{
    dbCDoctorTypes().AddDoctorType("Dentist");
    StorePatient("A1");
    dbCDoctor doctor;
    ASSERT_TRUE(doctor.Load(m_strIda));
    dbCAddress address;
    address.SetType("O");
    address.SetCity("Northport");
    doctor.GetPerson().SetAddress(0, address);
    doctor.GetPerson().SetAddress(1, address);
    doctor.GetPerson().SetNickname("not shown");
    doctor.Save();
    PatientImage expected = database.ImageOf(m_strIda);
    for (const bool bType : {false, true})
    {
        InDoctorEditor([&](DialogScript&, const Dialog& editor) {
            for (const Field& field : doctorFields)
                if (bType)
                    Enter(editor, field);
            editor.Press(IDOK);
        });
        if (bType)
            expected = WithFields(expected, doctorFields);
        EXPECT_THAT(Differences(expected, database.ImageOf(m_strIda)), testing::IsEmpty());
    }
}

} // namespace
