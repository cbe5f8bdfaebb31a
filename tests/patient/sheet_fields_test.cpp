// Every field of every page: what is not touched stays, and what is typed arrives where it belongs.

#include "patient/detailsres.h"
#include "tests/patient/patientimage.h"
#include "tests/patient/sheetfixture.h"

using veltest::Control;
using veltest::Dialog;
using veltest::DialogScript;

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
    const char* pszValue; // as the user enters it
    const char* pszName;  // where it arrives in the image
    const char* pszStored = nullptr;

    std::string Stored() const
    {
        return pszStored != nullptr ? pszStored : pszValue;
    }
};

const Field fields[] = {
    {pat::ChartPage, IDC_CHART_ID, By::Text, "B-2", "id"},
    {pat::ChartPage, IDC_CHART_FIRSTNAME, By::Text, "Bea", "firstname"},
    {pat::ChartPage, IDC_CHART_LASTNAME, By::Text, "Moor", "lastname"},
    {pat::ChartPage, IDC_CHART_NICKNAME, By::Text, "Bee", "nickname"},
    {pat::ChartPage, IDC_CHART_BIRTHDATE, By::Date, "2011-12-13", "birthdate"},
    {pat::ChartPage, IDC_CHART_GENDER_SECOND, By::Press, "", "gender", "2"},
    {pat::ChartPage, IDC_CHART_GENDER_IDENTITY, By::Choice, "Male", "genderIdentity", "2"},
    {pat::ChartPage, IDC_CHART_RACE, By::Choice, "South Pacific", "race", "7"},
    {pat::ChartPage, IDC_CHART_ADDRESS_HOME, By::Press, "", "address.0.type", "H"},
    {pat::ChartPage, IDC_CHART_COMPANY, By::Text, "Moor & Sons", "address.0.company"},
    {pat::ChartPage, IDC_CHART_STREET, By::Text, "Quay 2", "address.0.street"},
    {pat::ChartPage, IDC_CHART_CITY, By::Text, "Westport", "address.0.city"},
    {pat::ChartPage, IDC_CHART_STATE, By::Text, "WP", "address.0.state"},
    {pat::ChartPage, IDC_CHART_POSTALCODE, By::Text, "54321", "address.0.postalCode"},
    {pat::ChartPage, IDC_CHART_COUNTRY, By::Text, "Freedonia", "address.0.country"},
    {pat::ChartPage, IDC_CHART_PHONE1, By::Text, "811", "phone.0.number"},
    {pat::ChartPage, IDC_CHART_PHONETYPE1, By::Choice, "Work", "phone.0.type"},
    {pat::ChartPage, IDC_CHART_PHONE2, By::Text, "822", "phone.1.number"},
    {pat::ChartPage, IDC_CHART_PHONETYPE2, By::Choice, "Home", "phone.1.type"},
    {pat::ChartPage, IDC_CHART_EMAIL, By::Text, "bea@example.org", "email"},

    {pat::DetailPage, IDC_DETAIL_TITLE, By::Text, "Dr.", "title"},
    {pat::DetailPage, IDC_DETAIL_MODEL, By::Text, "M-2", "model"},
    {pat::DetailPage, IDC_DETAIL_SALUTATION, By::Text, "Dear Bea", "salutation"},
    {pat::DetailPage, IDC_DETAIL_KEYWORDS, By::Text, "Recall", "keywords"},
    {pat::DetailPage, IDC_DETAIL_NOTES, By::Text, "Likes & dislikes\r\n100% of them", "notes"},
    {pat::DetailPage, IDC_DETAIL_OFFICE, By::Choice, "South", "office", "(South)"},
    {pat::DetailPage, IDC_DETAIL_STATUS, By::Choice, "Waiting", "status", "(Waiting)"},
    {pat::DetailPage, IDC_DETAIL_TREATING, By::Choice, "Bell, Grace", "person.1.doctor", "(Bell)"},
    {pat::DetailPage, IDC_DETAIL_REFERRING, By::Choice, "Bell, Grace", "referral.0.doctor", "(Bell)"},

    {pat::GuardianPage, IDC_GUARD_TITLE, By::Text, "Prof.", "person.0.title"},
    {pat::GuardianPage, IDC_GUARD_FIRSTNAME, By::Text, "Eva", "person.0.firstname"},
    {pat::GuardianPage, IDC_GUARD_LASTNAME, By::Text, "Moore", "person.0.lastname"},
    {pat::GuardianPage, IDC_GUARD_NICKNAME, By::Text, "E.", "person.0.nickname"},
    {pat::GuardianPage, IDC_GUARD_BIRTHDATE, By::Date, "1979-01-02", "person.0.birthdate"},
    {pat::GuardianPage, IDC_GUARD_GENDER_FIRST, By::Press, "", "person.0.gender", "1"},
    {pat::GuardianPage, IDC_GUARD_ADDRESS_OFFICE, By::Press, "", "person.0.address.0.type", "O"},
    {pat::GuardianPage, IDC_GUARD_COMPANY, By::Text, "Moore Ltd", "person.0.address.0.company"},
    {pat::GuardianPage, IDC_GUARD_STREET, By::Text, "Dock 4", "person.0.address.0.street"},
    {pat::GuardianPage, IDC_GUARD_CITY, By::Text, "Eastport", "person.0.address.0.city"},
    {pat::GuardianPage, IDC_GUARD_STATE, By::Text, "EP", "person.0.address.0.state"},
    {pat::GuardianPage, IDC_GUARD_POSTALCODE, By::Text, "777", "person.0.address.0.postalCode"},
    {pat::GuardianPage, IDC_GUARD_COUNTRY, By::Text, "Sylvania", "person.0.address.0.country"},
    {pat::GuardianPage, IDC_GUARD_PHONE1, By::Text, "911", "person.0.phone.0.number"},
    {pat::GuardianPage, IDC_GUARD_PHONETYPE1, By::Choice, "Work", "person.0.phone.0.type"},
    {pat::GuardianPage, IDC_GUARD_PHONE2, By::Text, "922", "person.0.phone.1.number"},
    {pat::GuardianPage, IDC_GUARD_PHONETYPE2, By::Choice, "Home", "person.0.phone.1.type"},
    {pat::GuardianPage, IDC_GUARD_EMAIL, By::Text, "eva@example.org", "person.0.email"},
    {pat::GuardianPage, IDC_GUARD_NOTES, By::Text, "knows\r\nbest", "person.0.notes"},

    {pat::ReferralPage, IDC_REFER_DATE, By::Date, "2021-06-07", "referral.0.date"},
    {pat::ReferralPage, IDC_REFER_NOTE, By::Text, "spacing", "referral.0.note"},

    {pat::InsurancePage, IDC_INSURE_COMPANY, By::Text, "Northfield", "insurance.0.company"},
    {pat::InsurancePage, IDC_INSURE_HOLDER, By::Text, "Eva Moore", "insurance.0.holder"},
    {pat::InsurancePage, IDC_INSURE_NUMBER, By::Text, "18", "insurance.0.number"},
    {pat::InsurancePage, IDC_INSURE_GROUP, By::Text, "G-2", "insurance.0.group"},
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
        EXPECT_EQ(RunChange(patient,
                            [&](DialogScript& script) {
                                const Dialog sheet = WaitForSheet(script);
                                for (int nPage = pat::PageCount - 1; nPage >= 0; --nPage)
                                    sheet.SelectPage(nPage);
                                EXPECT_EQ(sheet.Item(IDC_CHART_RACE).SelectedItem(), "Other (42)");
                                EXPECT_EQ(sheet.Item(IDC_CHART_GENDER_IDENTITY).SelectedItem(), "Other (9)");
                                EXPECT_TRUE(sheet.Item(IDC_CHART_GENDER_SECOND).IsChecked());
                                sheet.Press(nButton);
                            }),
                  nButton);
        EXPECT_THAT(Differences(before, ImageOf(Stored("A1"))), testing::IsEmpty());
    }
    // What cannot be told from what is stored is stored once it has been chosen.
    RunChange(patient, [](DialogScript& script) {
        const Dialog sheet = WaitForSheet(script);
        sheet.Press(IDC_CHART_GENDER_SECOND);
        sheet.Item(IDC_CHART_RACE).Choose("<N/A>");
        sheet.Press(IDOK);
    });
    PatientImage expected = before;
    expected["gender"] = "2";
    expected["race"] = "0";
    EXPECT_THAT(Differences(expected, ImageOf(Stored("A1"))), testing::IsEmpty());
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
    EXPECT_EQ(RunChange(patient,
                        [](DialogScript& script) {
                            const Dialog sheet = WaitForSheet(script);
                            EXPECT_EQ(sheet.Title(), "Patient Information - Ann Lee ID: A1");
                            for (int nPage = 0; nPage < pat::PageCount; ++nPage)
                                EnterPage(sheet, nPage);
                            sheet.Press(IDOK);
                        }),
              IDOK);
    EXPECT_EQ(LatestEvent(), "The patient (B-2) Moor, Bea data, has been modified");
    const dbCPatient changed = Stored("B-2");
    expected["insurance.0.companyGUID"] = changed.GetInsurances()[0].GetCompanyGUID().GetString();
    EXPECT_THAT(Differences(expected, ImageOf(changed)), testing::IsEmpty());

    dbCPatient again = changed;
    EXPECT_EQ(RunChange(again,
                        [](DialogScript& script) {
                            const Dialog sheet = WaitForSheet(script);
                            for (int nPage = 0; nPage < pat::PageCount; ++nPage)
                                ExpectPage(sheet, nPage);
                            sheet.Press(IDCANCEL);
                        }),
              IDCANCEL);
}

TEST_F(SheetFieldsTest, ANewPatientGetsWhatIsTyped)
{
    m_practice.Set("Defaults", "Country", "Ruritania");
    EXPECT_EQ(RunNew([](DialogScript& script) {
                  const Dialog sheet = WaitForSheet(script);
                  EXPECT_EQ(sheet.Title(), "Patient Information");
                  EXPECT_EQ(sheet.PageCount(), 5);
                  EXPECT_EQ(sheet.Item(IDC_CHART_COUNTRY).Text(), "Ruritania");
                  EXPECT_EQ(sheet.Item(IDC_CHART_BIRTHDATE).Date().wYear, 0);
                  EXPECT_TRUE(sheet.Item(IDC_CHART_GENDER_SECOND).IsChecked());
                  EXPECT_TRUE(sheet.Item(IDC_CHART_ADDRESS_HOME).IsChecked());
                  EXPECT_FALSE(sheet.Item(IDC_CHART_TEETH).IsEnabled());
                  for (int nPage = 0; nPage < pat::PageCount; ++nPage)
                  {
                      EnterPage(sheet, nPage);
                  }
                  EXPECT_EQ(sheet.Item(IDC_ROWS_LIST).Rows(), (std::vector<std::vector<std::string>>{
                                                                  {"Northfield", "Eva Moore", "18", "G-2"}}));
                  sheet.Press(IDOK);
              }),
              IDOK);
    EXPECT_EQ(LatestEvent(), "The patient (B-2) Moor, Bea has been created");
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
    for (const bool bStored : {false, true})
    {
        for (const bool bOpened : {false, true})
        {
            SCOPED_TRACE(std::to_string(bStored) + std::to_string(bOpened));
            dbCPatient data;
            if (bStored)
                data = stored;
            else
                FillPatient(data);
            PatientImage expected = WithoutIdentity(ImageOf(data));
            const std::string id = std::string("D") + (bStored ? "1" : "0") + (bOpened ? "1" : "0");
            expected["id"] = id;
            expected["veltrixID"] = "";
            EXPECT_EQ(RunNewWithData(data,
                                     [&](DialogScript& script) {
                                         const Dialog sheet = WaitForSheet(script);
                                         EXPECT_EQ(sheet.Item(IDC_CHART_CITY).Text(), "Northport");
                                         sheet.Item(IDC_CHART_ID).SetText(id);
                                         for (int nPage = 0; bOpened && nPage < pat::PageCount; ++nPage)
                                             sheet.SelectPage(nPage);
                                         sheet.Press(IDOK);
                                         script.AnswerBox("", IDYES); // similar to the stored one
                                     }),
                      IDOK);
            EXPECT_EQ(LatestEvent(),
                      ("The patient from DICOM (" + id + ") Lee, Ann has been created").c_str());
            const dbCPatient created = Stored(id.c_str());
            EXPECT_EQ(created.GetGUID(), m_strGUID);
            EXPECT_NE(created.GetGUID(), stored.GetGUID());
            PatientImage actual = WithoutIdentity(ImageOf(created));
            for (const char* pszName : {"referral.0.guid", "insurance.0.guid", "person.0.guid"})
                EXPECT_NE(ImageOf(created)[pszName], ImageOf(stored)[pszName]);
            EXPECT_THAT(Differences(expected, actual), testing::IsEmpty());
        }
    }
    EXPECT_STREQ(Stored("A1").GetVeltrixID(), "V1");
}

} // namespace
