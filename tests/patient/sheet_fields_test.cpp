// Every field of every page: what is not touched stays, and what is typed arrives where it belongs.

#include "patient/detailsres.h"
#include "tests/patient/patientimage.h"
#include "tests/patient/sheetfixture.h"

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

    std::string Stored() const
    {
        return pszStored != nullptr ? pszStored : pszValue;
    }
};

// What users and other systems have typed.
constexpr char firstname[] = "O'Bea \"%s\"";
constexpr char lastname[] = "M\xFCller \x80 \xFF & Sons";

const Field fields[] = {
    {pat::ChartPage, IDC_CHART_ID, By::Text, 25, "B-2", "id"},
    {pat::ChartPage, IDC_CHART_FIRSTNAME, By::Text, 50, firstname, "firstname"},
    {pat::ChartPage, IDC_CHART_LASTNAME, By::Text, 50, lastname, "lastname"},
    {pat::ChartPage, IDC_CHART_NICKNAME, By::Text, 30, "%s %n %d 100%", "nickname"},
    {pat::ChartPage, IDC_CHART_BIRTHDATE, By::Date, 0, "2011-12-13", "birthdate"},
    {pat::ChartPage, IDC_CHART_GENDER_SECOND, By::Press, 0, "", "gender", "2"},
    {pat::ChartPage, IDC_CHART_GENDER_IDENTITY, By::Choice, 0, "Male", "genderIdentity", "2"},
    {pat::ChartPage, IDC_CHART_RACE, By::Choice, 0, "South Pacific", "race", "7"},
    {pat::ChartPage, IDC_CHART_ADDRESS_HOME, By::Press, 0, "", "address.0.type", "H"},
    {pat::ChartPage, IDC_CHART_COMPANY, By::Text, 50, "'; DROP TABLE patients; --", "address.0.company"},
    {pat::ChartPage, IDC_CHART_STREET, By::Text, 255, "<1> <2> \\n %1 && \t\x02", "address.0.street"},
    {pat::ChartPage, IDC_CHART_CITY, By::Text, 50, "Westport", "address.0.city"},
    {pat::ChartPage, IDC_CHART_STATE, By::Text, 20, "WP", "address.0.state"},
    {pat::ChartPage, IDC_CHART_POSTALCODE, By::Text, 20, "54321", "address.0.postalCode"},
    {pat::ChartPage, IDC_CHART_COUNTRY, By::Text, 30, "Freedonia", "address.0.country"},
    {pat::ChartPage, IDC_CHART_PHONE1, By::Text, 30, "811", "phone.0.number"},
    {pat::ChartPage, IDC_CHART_PHONETYPE1, By::Choice, 0, "Work", "phone.0.type"},
    {pat::ChartPage, IDC_CHART_PHONE2, By::Text, 30, "822", "phone.1.number"},
    {pat::ChartPage, IDC_CHART_PHONETYPE2, By::Choice, 0, "Home", "phone.1.type"},
    {pat::ChartPage, IDC_CHART_EMAIL, By::Text, 60, "bea@example.org", "email"},

    {pat::DetailPage, IDC_DETAIL_TITLE, By::Text, 10, "Dr.", "title"},
    {pat::DetailPage, IDC_DETAIL_MODEL, By::Text, 10, "M-2", "model"},
    {pat::DetailPage, IDC_DETAIL_SALUTATION, By::Text, 50, "Dear Bea", "salutation"},
    {pat::DetailPage, IDC_DETAIL_KEYWORDS, By::Text, 255, "Recall", "keywords"},
    {pat::DetailPage, IDC_DETAIL_NOTES, By::Text, 500, "Likes & dislikes\r\n100% of them", "notes"},
    {pat::DetailPage, IDC_DETAIL_OFFICE, By::Choice, 0, "South", "office", "(South)"},
    {pat::DetailPage, IDC_DETAIL_STATUS, By::Choice, 0, "Waiting", "status", "(Waiting)"},
    {pat::DetailPage, IDC_DETAIL_TREATING, By::Choice, 0, "Bell, Grace", "person.1.doctor", "(Bell)"},
    {pat::DetailPage, IDC_DETAIL_REFERRING, By::Choice, 0, "Bell, Grace", "referral.0.doctor", "(Bell)"},

    {pat::GuardianPage, IDC_GUARD_TITLE, By::Text, 10, "Prof.", "person.0.title"},
    {pat::GuardianPage, IDC_GUARD_FIRSTNAME, By::Text, 50, "Eva", "person.0.firstname"},
    {pat::GuardianPage, IDC_GUARD_LASTNAME, By::Text, 50, "Moore", "person.0.lastname"},
    {pat::GuardianPage, IDC_GUARD_NICKNAME, By::Text, 30, "E.", "person.0.nickname"},
    {pat::GuardianPage, IDC_GUARD_BIRTHDATE, By::Date, 0, "1979-01-02", "person.0.birthdate"},
    {pat::GuardianPage, IDC_GUARD_GENDER_FIRST, By::Press, 0, "", "person.0.gender", "1"},
    {pat::GuardianPage, IDC_GUARD_ADDRESS_OFFICE, By::Press, 0, "", "person.0.address.0.type", "O"},
    {pat::GuardianPage, IDC_GUARD_COMPANY, By::Text, 50, "Moore Ltd", "person.0.address.0.company"},
    {pat::GuardianPage, IDC_GUARD_STREET, By::Text, 255, "Dock 4", "person.0.address.0.street"},
    {pat::GuardianPage, IDC_GUARD_CITY, By::Text, 50, "Eastport", "person.0.address.0.city"},
    {pat::GuardianPage, IDC_GUARD_STATE, By::Text, 20, "EP", "person.0.address.0.state"},
    {pat::GuardianPage, IDC_GUARD_POSTALCODE, By::Text, 20, "777", "person.0.address.0.postalCode"},
    {pat::GuardianPage, IDC_GUARD_COUNTRY, By::Text, 30, "Sylvania", "person.0.address.0.country"},
    {pat::GuardianPage, IDC_GUARD_PHONE1, By::Text, 30, "911", "person.0.phone.0.number"},
    {pat::GuardianPage, IDC_GUARD_PHONETYPE1, By::Choice, 0, "Work", "person.0.phone.0.type"},
    {pat::GuardianPage, IDC_GUARD_PHONE2, By::Text, 30, "922", "person.0.phone.1.number"},
    {pat::GuardianPage, IDC_GUARD_PHONETYPE2, By::Choice, 0, "Home", "person.0.phone.1.type"},
    {pat::GuardianPage, IDC_GUARD_EMAIL, By::Text, 60, "eva@example.org", "person.0.email"},
    {pat::GuardianPage, IDC_GUARD_NOTES, By::Text, 0, "knows\r\nbest", "person.0.notes"},

    {pat::ReferralPage, IDC_REFER_DATE, By::Date, 0, "2021-06-07", "referral.0.date"},
    {pat::ReferralPage, IDC_REFER_NOTE, By::Text, 255, "spacing", "referral.0.note"},

    {pat::InsurancePage, IDC_INSURE_COMPANY, By::Text, 0, "Northfield", "insurance.0.company"},
    {pat::InsurancePage, IDC_INSURE_HOLDER, By::Text, 100, "Eva \"M\xFCller\"", "insurance.0.holder"},
    {pat::InsurancePage, IDC_INSURE_NUMBER, By::Text, 30, "18", "insurance.0.number"},
    {pat::InsurancePage, IDC_INSURE_GROUP, By::Text, 30, "G-2", "insurance.0.group"},
};

SYSTEMTIME DateOf(const char* pszISO)
{
    SYSTEMTIME date{};
    velCDate::FromISO(pszISO).GetAsSystemTime(date);
    return date;
}

void Enter(const Dialog& sheet, const Field& field)
{
    const Control control = sheet.Item(field.nControl);
    if (field.nMaxChars != 0)
    {
        EXPECT_EQ(control.Send(EM_GETLIMITTEXT), field.nMaxChars) << field.pszName;
    }
    switch (field.by)
    {
    case By::Text:
        control.SetText(field.pszValue);
        break;
    case By::Date: {
        const SYSTEMTIME date = DateOf(field.pszValue);
        control.SetDate(date.wYear, date.wMonth, date.wDay);
        break;
    }
    case By::Choice:
        control.Choose(field.pszValue);
        break;
    case By::Press:
        sheet.Press(field.nControl);
        break;
    }
}

void ExpectShown(const Dialog& sheet, const Field& field)
{
    const Control control = sheet.Item(field.nControl);
    switch (field.by)
    {
    case By::Text:
        EXPECT_EQ(control.Text(), field.pszValue);
        break;
    case By::Date: {
        const SYSTEMTIME date = control.Date();
        EXPECT_STREQ(velCDate(date.wYear, date.wMonth, date.wDay).ToISO(), field.pszValue);
        break;
    }
    case By::Choice:
        EXPECT_EQ(control.SelectedItem(), field.pszValue);
        break;
    case By::Press:
        EXPECT_TRUE(control.IsChecked());
        break;
    }
}

// Fills a page; on the list pages the first row, which is added if there is none.
void EnterPage(const Dialog& sheet, int nPage)
{
    if (sheet.PageIndex() != nPage)
        sheet.SelectPage(nPage);
    const bool bList = nPage == pat::ReferralPage || nPage == pat::InsurancePage;
    const bool bRow = bList && !sheet.Item(IDC_ROWS_LIST).Rows().empty();
    if (bRow)
        sheet.Item(IDC_ROWS_LIST).SelectRow(0);
    else if (nPage == pat::ReferralPage)
        sheet.Item(IDC_REFER_DOCTOR).Choose("Bell, Grace");
    for (const Field& field : fields)
    {
        if (field.nPage == nPage)
            Enter(sheet, field);
    }
    if (!bList)
        return;
    sheet.SettleIdle();
    sheet.Press(bRow ? IDC_ROWS_CHANGE : IDC_ROWS_ADD);
}

void ExpectPage(const Dialog& sheet, int nPage)
{
    sheet.SelectPage(nPage);
    if (nPage == pat::ReferralPage || nPage == pat::InsurancePage)
        sheet.Item(IDC_ROWS_LIST).SelectRow(0);
    for (const Field& field : fields)
    {
        SCOPED_TRACE(field.pszName);
        if (field.nPage == nPage)
            ExpectShown(sheet, field);
    }
}

class SheetFieldsTest : public SheetTest
{
protected:
    // An image with the values of the table in it.
    PatientImage ExpectedOf(PatientImage image) const
    {
        const std::map<std::string, CString> ids{
            {"(South)", m_strSouth}, {"(Waiting)", m_strWaiting}, {"(Bell)", m_strGrace}};
        for (const Field& field : fields)
        {
            const auto id = ids.find(field.Stored());
            image[field.pszName] = id != ids.end() ? id->second.GetString() : field.Stored();
        }
        return image;
    }

    static void ExpectStored(const char* pszID, const PatientImage& expected)
    {
        EXPECT_THAT(Differences(expected, ImageOf(Stored(pszID))), testing::IsEmpty());
    }
};

TEST_F(SheetFieldsTest, EveryPageOpenedAndOKChangesNothing)
{
    m_practice.Set("Defaults", "Country", "Ruritania");
    dbCPatient patient = StorePatient("A1");
    // What no page can show.
    patient.SetGender(0);
    patient.SetGenderIdentity(9);
    patient.SetRace(42);
    patient.SetNickname(std::string(40, 'n').c_str());
    patient.SetNotes(std::string(600, 'n').c_str());
    patient.GetAddresses()[0].SetType("");
    patient.GetReferrals().AddReferralDoc(StoreDoctor("Noor", "Abel"), velCDate(1999, 1, 1), "before birth");
    dbCPerson treating;
    treating.SetPersonGUID(StoreDoctor("Not", "Treating"));
    patient.SetPersonInfo(dbPersonTreatingDoctor, treating);
    patient.Save();
    const PatientImage before = ImageOf(Stored("A1"));
    for (const int nButton : {IDOK, IDCANCEL})
    {
        Change(patient, nButton, [](DialogScript&, const Dialog& sheet) {
            for (int nPage = pat::PageCount - 1; nPage >= 0; --nPage)
                sheet.SelectPage(nPage);
            EXPECT_EQ(sheet.Item(IDC_CHART_RACE).SelectedItem(), "Other (42)");
            EXPECT_EQ(sheet.Item(IDC_CHART_GENDER_IDENTITY).SelectedItem(), "Other (9)");
            EXPECT_TRUE(sheet.Item(IDC_CHART_GENDER_SECOND).IsChecked());
            EXPECT_TRUE(sheet.Item(IDC_CHART_TEETH).IsEnabled());
        });
        ExpectStored("A1", before);
    }
    // What cannot be told from what is stored is stored once it has been chosen.
    Change(patient, IDOK, [](DialogScript&, const Dialog& sheet) {
        sheet.Press(IDC_CHART_GENDER_SECOND);
        sheet.Item(IDC_CHART_RACE).Choose("<N/A>");
    });
    PatientImage expected = before;
    expected["gender"] = "2";
    expected["race"] = "0";
    ExpectStored("A1", expected);
}

TEST_F(SheetFieldsTest, EveryFieldArrivesWhereItBelongs)
{
    dbCPatient patient = StorePatient("A1");
    const PatientImage before = ImageOf(patient);
    PatientImage expected = ExpectedOf(before);
    for (const Field& field : fields)
    {
        ASSERT_TRUE(before.contains(field.pszName)) << field.pszName;
        EXPECT_NE(before.at(field.pszName), expected[field.pszName]) << field.pszName << " is to be changed";
    }
    Change(patient, IDOK, [](DialogScript&, const Dialog& sheet) {
        EXPECT_EQ(sheet.Title(), "Patient Information - Ann Lee ID: A1");
        for (int nPage = 0; nPage < pat::PageCount; ++nPage)
            EnterPage(sheet, nPage);
    });
    EXPECT_EQ(LatestEvent(),
              CString("The patient (B-2) ") + lastname + ", " + firstname + " data, has been modified");
    dbCPatient changed = Stored("B-2");
    expected["insurance.0.companyGUID"] = changed.GetInsurances()[0].GetCompanyGUID().GetString();
    ExpectStored("B-2", expected);
    Change(changed, IDCANCEL, [](DialogScript&, const Dialog& sheet) {
        for (int nPage = 0; nPage < pat::PageCount; ++nPage)
            ExpectPage(sheet, nPage);
    });
}

TEST_F(SheetFieldsTest, ANewPatientGetsWhatIsTyped)
{
    m_practice.Set("Defaults", "Country", "Ruritania");
    New(IDOK, [](DialogScript&, const Dialog& sheet) {
        EXPECT_EQ(sheet.Title(), "Patient Information");
        EXPECT_EQ(sheet.PageCount(), 5);
        EXPECT_EQ(sheet.Item(IDC_CHART_COUNTRY).Text(), "Ruritania");
        EXPECT_EQ(sheet.Item(IDC_CHART_BIRTHDATE).Date().wYear, 0);
        EXPECT_TRUE(sheet.Item(IDC_CHART_GENDER_SECOND).IsChecked());
        EXPECT_TRUE(sheet.Item(IDC_CHART_ADDRESS_HOME).IsChecked());
        EXPECT_FALSE(sheet.Item(IDC_CHART_TEETH).IsEnabled());
        for (int nPage = 0; nPage < pat::PageCount; ++nPage)
            EnterPage(sheet, nPage);
        const std::vector<std::vector<std::string>> rows{{"Northfield", "Eva \"M\xFCller\"", "18", "G-2"}};
        EXPECT_EQ(sheet.Item(IDC_ROWS_LIST).Rows(), rows);
        sheet.SelectPage(pat::GuardianPage);
        EXPECT_GT(sheet.Item(IDC_GUARD_NOTES).Send(EM_GETLIMITTEXT), 1'000'000); // no limit
    });
    EXPECT_EQ(LatestEvent(),
              CString("The patient (B-2) ") + lastname + ", " + firstname + " has been created");
    const dbCPatient created = Stored("B-2");
    EXPECT_EQ(created.GetGUID(), m_strGUID);
    const PatientImage actual = ImageOf(created);
    for (const auto& [name, value] : ExpectedOf({}))
        EXPECT_EQ(actual.contains(name) ? actual.at(name) : "missing", value) << name;
    EXPECT_EQ(actual.at("referral.0.type"), DB_REFERRAL_DOC);
    EXPECT_EQ(actual.at("person.2.doctor"), m_strGrace.GetString());
    dbCInsuranceCompanies companies;
    companies.Load();
    EXPECT_EQ(companies.GetCount(), 2);
}

TEST_F(SheetFieldsTest, DataFillEveryPageAndArriveWhetherItIsOpenedOrNot)
{
    m_practice.Set("Defaults", "Country", "Ruritania");
    dbCPatient stored = StorePatient("A1");
    stored.SetVeltrixID("V1");
    stored.GetTimepoints().RemoveAll();
    stored.Save();
    for (const char* const pszID : {"D00", "D01", "D10", "D11"}) // whether stored, whether opened
    {
        SCOPED_TRACE(pszID);
        dbCPatient data;
        if (pszID[1] == '1')
            data = stored;
        else
            FillPatient(data);
        PatientImage expected = WithoutIdentity(ImageOf(data));
        expected["id"] = pszID;
        expected["veltrixID"] = "";
        NewWithData(data, 0, [&](DialogScript& script, const Dialog& sheet) {
            EXPECT_EQ(sheet.Item(IDC_CHART_CITY).Text(), "Northport");
            sheet.Item(IDC_CHART_ID).SetText(pszID);
            for (int nPage = 0; pszID[2] == '1' && nPage < pat::PageCount; ++nPage)
                sheet.SelectPage(nPage);
            sheet.Press(IDOK);
            script.AnswerBox("", IDYES); // similar to the stored one
        });
        EXPECT_EQ(LatestEvent(), CString("The patient from DICOM (") + pszID + ") Lee, Ann has been created");
        const dbCPatient created = Stored(pszID);
        EXPECT_EQ(created.GetGUID(), m_strGUID);
        for (const char* pszName : {"guid", "referral.0.guid", "insurance.0.guid", "person.0.guid"})
            EXPECT_NE(ImageOf(created)[pszName], ImageOf(stored)[pszName]);
        EXPECT_THAT(Differences(expected, WithoutIdentity(ImageOf(created))), testing::IsEmpty());
    }
    EXPECT_STREQ(Stored("A1").GetVeltrixID(), "V1");
}

TEST_F(SheetFieldsTest, RowsAndAGuardianAreChangedAndRemoved)
{
    dbCPatient patient = StorePatient("A1");
    const PatientImage before = ImageOf(patient);
    const CString strDoctor = StoreDoctor("Noor", "Abel");
    Change(patient, IDOK, [](DialogScript&, const Dialog& sheet) {
        sheet.SelectPage(pat::ReferralPage);
        sheet.SettleIdle();
        EXPECT_FALSE(sheet.Item(IDC_ROWS_CHANGE).IsEnabled());
        sheet.Item(IDC_ROWS_LIST).SelectRow(0);
        EXPECT_EQ(sheet.Item(IDC_REFER_DOCTOR).SelectedItem(), "Sorel, Ida");
        sheet.Item(IDC_REFER_DOCTOR).Choose("Abel, Noor");
        sheet.SettleIdle();
        sheet.Press(IDC_ROWS_CHANGE);
        sheet.SelectPage(pat::InsurancePage);
        sheet.Item(IDC_ROWS_LIST).SelectRow(0);
        sheet.SettleIdle();
        sheet.Press(IDC_ROWS_REMOVE);
        EXPECT_TRUE(sheet.Item(IDC_ROWS_LIST).Rows().empty());
        sheet.SelectPage(pat::GuardianPage); // emptied but for the country
        for (const Field& field : fields)
            if (field.nPage == pat::GuardianPage && field.by == By::Text &&
                field.nControl != IDC_GUARD_COUNTRY)
                sheet.Item(field.nControl).SetText("");
    });
    PatientImage expected = before;
    std::erase_if(expected, [](const auto& entry) {
        return entry.first.starts_with("insurance.") || entry.first.starts_with("person.0.");
    });
    expected["referral.0.doctor"] = strDoctor.GetString();
    ExpectStored("A1", expected);
}

const Field doctorFields[] = {
    {0, IDC_DOCTOR_TITLE, By::Text, 10, "Prof.", "title"},
    {0, IDC_DOCTOR_FIRSTNAME, By::Text, 50, "Idina", "firstname"},
    {0, IDC_DOCTOR_LASTNAME, By::Text, 50, "Sorell", "lastname"},
    {0, IDC_DOCTOR_TYPE, By::Choice, 0, "Dentist", "type"},
    {0, IDC_DOCTOR_NOTES, By::Text, 2000, "away\r\nin May", "notes"},
    {0, IDC_DOCTOR_ADDRESS_HOME, By::Press, 0, "", "address.0.type", "H"},
    {0, IDC_DOCTOR_COMPANY, By::Text, 50, "Sorel & Sons", "address.0.company"},
    {0, IDC_DOCTOR_STREET, By::Text, 255, "5 Hill Road", "address.0.street"},
    {0, IDC_DOCTOR_CITY, By::Text, 50, "Springfield", "address.0.city"},
    {0, IDC_DOCTOR_STATE, By::Text, 20, "IL", "address.0.state"},
    {0, IDC_DOCTOR_POSTALCODE, By::Text, 20, "62701", "address.0.postalCode"},
    {0, IDC_DOCTOR_COUNTRY, By::Text, 30, "Sylvania", "address.0.country"},
    {0, IDC_DOCTOR_PHONE1, By::Text, 30, "1", "phone.0.number"},
    {0, IDC_DOCTOR_PHONETYPE1, By::Choice, 0, "Home", "phone.0.type"},
    {0, IDC_DOCTOR_PHONE2, By::Text, 30, "2", "phone.1.number"},
    {0, IDC_DOCTOR_PHONETYPE2, By::Choice, 0, "Work", "phone.1.type"},
    {0, IDC_DOCTOR_EMAIL, By::Text, 60, "ida@example.org", "email"},
    {0, IDC_DOCTOR_TREATING, By::Press, 0, "", "treating", "0"}, // checked before
};

TEST_F(SheetFieldsTest, EveryFieldOfADoctorArrivesAndUntouchedOnesStay)
{
    dbCDoctorTypes types;
    types.AddDoctorType("Dentist");
    dbCPatient patient = StorePatient("A1");
    dbCDoctor doctor;
    ASSERT_TRUE(doctor.Load(m_strIda));
    dbCAddress address;
    address.SetType("O");
    address.SetCity("Northport");
    doctor.GetPerson().SetAddress(0, address);
    doctor.GetPerson().SetAddress(1, address);
    doctor.GetPerson().SetNickname("not shown");
    doctor.SetType("Surgeon");
    doctor.Save();
    PatientImage expected = ImageOf(doctor);
    for (const bool bType : {false, true})
    {
        Change(patient, IDCANCEL, [&](DialogScript& script, const Dialog& sheet) {
            sheet.SelectPage(pat::DetailPage);
            sheet.Press(IDC_DETAIL_EDIT_REFERRING);
            const Dialog editor = script.WaitForDialog("Doctor");
            for (const Field& field : doctorFields)
                if (bType)
                    Enter(editor, field);
            editor.Press(IDOK);
            editor.WaitForClosed();
            script.Settle(sheet.Handle());
        });
        for (const Field& field : doctorFields)
            if (bType)
                expected[field.pszName] = field.Stored();
        ASSERT_TRUE(doctor.Load(m_strIda));
        EXPECT_THAT(Differences(expected, ImageOf(doctor)), testing::IsEmpty());
    }
}

} // namespace
