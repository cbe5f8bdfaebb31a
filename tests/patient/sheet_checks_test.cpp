// The sheet's checks and questions: message, focus, and that nothing is written.

#include "patient/detailsres.h"
#include "tests/patient/sheetfixture.h"

using veltest::Control;
using veltest::Dialog;
using veltest::DialogScript;

namespace
{

using SheetChecksTest = SheetTest;

constexpr char required[] = "Please make sure all the required patient fields are entered";
constexpr char invalidID[] =
    "The patient ID has some invalid characters. The only valid characters are A-Z, 0-9, _ and -.";
constexpr char takenID[] = "The patient ID already exists. Please enter a unique ID.";
constexpr char guardianNames[] =
    "Both guardian firstname and lastname are required for entering guardian info";

TEST_F(SheetChecksTest, TheChartPageIsCheckedOnOKAndOnLeaving)
{
    struct Case
    {
        const char* pszID;
        const char* pszFirstname;
        const char* pszLastname;
        const char* pszPhone1;
        const char* pszPhone2;
        const char* pszMessage;
        int nFocus;
    };
    const Case cases[] = {
        {"", "Ann", "Lee", "", "", required, IDC_CHART_ID},
        {"A1", "", "", "", "", required, IDC_CHART_FIRSTNAME},
        {"a b", "Ann", "", "1", "", required, IDC_CHART_LASTNAME},
        {"ab12", "Ann", "Lee", "1", "", invalidID, IDC_CHART_ID},
        {"A 1", "Ann", "Lee", "", "", invalidID, IDC_CHART_ID},
        {"A'; DROP TABLE--", "Ann", "Lee", "", "", invalidID, IDC_CHART_ID},
        {"\xC4", "Ann", "Lee", "", "", invalidID, IDC_CHART_ID},
        {"A1", "Ann", "Lee", "1", "2", "Please select a type for phone 1", IDC_CHART_PHONETYPE1},
        {"A1", "Ann", "Lee", "", "2", "Please select a type for phone 2", IDC_CHART_PHONETYPE2},
    };
    const __int64 nBefore = dbCPatients::GetChangeCounter();
    RunNew([&](DialogScript& script) {
        const Dialog sheet = WaitForSheet(script);
        for (const Case& c : cases)
        {
            SCOPED_TRACE(std::string(c.pszID) + ": " + c.pszMessage);
            FillNames(sheet, c.pszID, c.pszFirstname, c.pszLastname);
            sheet.Item(IDC_CHART_PHONE1).SetText(c.pszPhone1);
            sheet.Item(IDC_CHART_PHONE2).SetText(c.pszPhone2);
            sheet.Item(IDC_CHART_NICKNAME).Focus();
            ExpectRefused(script, sheet, c.pszMessage, c.nFocus);

            sheet.Item(IDC_CHART_NICKNAME).Focus();
            sheet.ClickTab(pat::GuardianPage);
            EXPECT_EQ(script.WaitForBox().BoxText(), c.pszMessage);
            script.AnswerBox("", IDOK);
            script.WaitUntil("the sheet is usable again", [&] { return sheet.IsEnabled(); });
            EXPECT_EQ(sheet.PageIndex(), pat::ChartPage);
            EXPECT_EQ(sheet.Focused().Id(), c.nFocus);
            EXPECT_EQ(sheet.Item(IDC_CHART_ID).Text(), c.pszID);
        }
        sheet.Press(IDCANCEL);
    });
    EXPECT_EQ(dbCPatients::GetChangeCounter(), nBefore);
}

TEST_F(SheetChecksTest, ALongIDIsNotTypedAndFailsSilently)
{
    EXPECT_EQ(RunNew([](DialogScript& script) {
                  const Dialog sheet = WaitForSheet(script);
                  FillNames(sheet, "", "Ann", "Lee");
                  sheet.Item(IDC_CHART_ID).Type(std::string(26, 'A'));
                  EXPECT_EQ(sheet.Item(IDC_CHART_ID).Text(), std::string(25, 'A'));
                  for (const std::size_t nLength : {26u, 10000u})
                  {
                      sheet.Item(IDC_CHART_ID).SetText(std::string(nLength, 'A'));
                      sheet.Press(IDOK);
                      script.Settle(sheet.Handle());
                      EXPECT_FALSE(script.FindBox().has_value());
                      EXPECT_TRUE(sheet.IsOpen());
                  }
                  sheet.Item(IDC_CHART_ID).SetText(std::string(25, 'A'));
                  sheet.Press(IDOK);
              }),
              IDOK);
    Stored(std::string(25, 'A').c_str());
}

TEST_F(SheetChecksTest, ABirthDateInTheFutureIsRefused)
{
    RunNew([](DialogScript& script) {
        const Dialog sheet = WaitForSheet(script);
        FillNames(sheet, "A1", "Ann", "Lee");
        sheet.Item(IDC_CHART_PHONE1).SetText("1"); // the birth date comes first
        sheet.Item(IDC_CHART_BIRTHDATE).SetDate(9000, 1, 1);
        sheet.Press(IDOK);
        EXPECT_EQ(script.WaitForBox().BoxText().find("phone"), std::string::npos);
        script.AnswerBox("", IDOK);
        script.WaitUntil("the sheet is usable again", [&] { return sheet.IsEnabled(); });
        EXPECT_EQ(sheet.Focused().Id(), IDC_CHART_BIRTHDATE);
        sheet.Press(IDCANCEL);
    });
}

TEST_F(SheetChecksTest, ATakenIDIsRefusedOnOKButNotOnLeaving)
{
    StorePatient("TAKEN");
    dbCPatient patient = StorePatient("A1", "Bob");
    RunNew([](DialogScript& script) {
        const Dialog sheet = WaitForSheet(script);
        FillNames(sheet, "TAKEN", "Cy", "Lee");
        sheet.SelectPage(pat::GuardianPage);
        EXPECT_EQ(sheet.PageIndex(), pat::GuardianPage);
        sheet.Item(IDC_GUARD_PHONE1).SetText("1"); // the guardian's checks come later
        for (int nTime = 0; nTime < 2; ++nTime)
        {
            ExpectRefused(script, sheet, takenID, IDC_CHART_ID);
            EXPECT_EQ(sheet.PageIndex(), pat::ChartPage);
            EXPECT_EQ(SelectedText(sheet.Item(IDC_CHART_ID)), "TAKEN");
        }
        sheet.SelectPage(pat::GuardianPage);
        EXPECT_EQ(sheet.Item(IDC_GUARD_PHONE1).Text(), "1");
        sheet.Press(IDCANCEL);
    });
    EXPECT_EQ(RunChange(patient,
                        [](DialogScript& script) {
                            const Dialog sheet = WaitForSheet(script);
                            sheet.Item(IDC_CHART_ID).SetText("TAKEN");
                            ExpectRefused(script, sheet, takenID, IDC_CHART_ID);
                            sheet.Item(IDC_CHART_ID).SetText("A1");
                            sheet.Press(IDOK);
                        }),
              IDOK);
}

TEST_F(SheetChecksTest, TheGuardianPageIsCheckedOnOKAndOnLeaving)
{
    RunNew([](DialogScript& script) {
        const Dialog sheet = WaitForSheet(script);
        FillNames(sheet, "A1", "Ann", "Lee");
        sheet.SelectPage(pat::GuardianPage);
        sheet.Item(IDC_GUARD_COUNTRY).SetText("Ruritania"); // alone it is no guardian
        sheet.SelectPage(pat::ChartPage);
        EXPECT_EQ(sheet.PageIndex(), pat::ChartPage);
        sheet.SelectPage(pat::GuardianPage);

        sheet.Item(IDC_GUARD_PHONE1).SetText("1");
        ExpectRefused(script, sheet, guardianNames, IDC_GUARD_FIRSTNAME);
        sheet.Item(IDC_GUARD_FIRSTNAME).SetText("Eve");
        ExpectRefused(script, sheet, guardianNames, IDC_GUARD_LASTNAME);
        sheet.Item(IDC_GUARD_LASTNAME).SetText("Lee");
        ExpectRefused(script, sheet, "Please select a type for phone 1", IDC_GUARD_PHONETYPE1);
        sheet.ClickTab(pat::InsurancePage);
        script.AnswerBox("Please select a type for phone 1", IDOK);
        script.WaitUntil("the sheet is usable again", [&] { return sheet.IsEnabled(); });
        EXPECT_EQ(sheet.PageIndex(), pat::GuardianPage);
        sheet.Item(IDC_GUARD_PHONETYPE1).Choose(1);
        sheet.Item(IDC_GUARD_PHONE2).SetText("2");
        ExpectRefused(script, sheet, "Please select a type for phone 2", IDC_GUARD_PHONETYPE2);
        sheet.Press(IDCANCEL);
    });
}

TEST_F(SheetChecksTest, AGuardianWithTheCountryAloneIsNotWritten)
{
    m_practice.Set("Defaults", "Country", "Ruritania");
    EXPECT_EQ(RunNew([](DialogScript& script) {
                  const Dialog sheet = WaitForSheet(script);
                  FillNames(sheet, "A1", "Ann", "Lee");
                  sheet.SelectPage(pat::GuardianPage);
                  sheet.Press(IDOK);
              }),
              IDOK);
    const dbCPatient patient = Stored("A1");
    dbCPerson guardian;
    EXPECT_FALSE(patient.GetPersonInfo(dbPersonGuardian, guardian));
    EXPECT_TRUE(patient.GetAddresses().IsEmpty()); // nor an address of the patient's
}

// What is being entered is checked on OK, asked about before another row takes its place, and keeps nobody on
// the page.
TEST_F(SheetChecksTest, AnEntryThatIsNotInTheListIsNotLost)
{
    struct Page
    {
        int nPage;
        int nField;
        int nFocus;
        const char* pszUnfinished;
    };
    const Page pages[] = {
        {pat::ReferralPage, IDC_REFER_NOTE, IDC_REFER_DOCTOR,
         "The referral being entered is not in the list yet. Press Add or Change to take it over, or Clear "
         "to "
         "drop it."},
        {pat::InsurancePage, IDC_INSURE_NUMBER, IDC_INSURE_COMPANY,
         "The insurance being entered is not in the list yet. Press Add or Change to take it over, or Clear "
         "to "
         "drop it."},
    };
    const std::string question =
        "What stands in the fields has not been added to the list. Do you want to drop it?";
    dbCPatient patient = StorePatient("A1");
    patient.GetReferrals().AddReferralDoc(m_strGrace, velCDate(2021, 1, 1), "second");
    dbCInsurance insurance;
    insurance.SetCompanyGUID(m_strHarbour);
    insurance.SetNumber("second");
    patient.AssignInsurance(insurance);
    patient.Save();
    RunChange(patient, [&](DialogScript& script) {
        const Dialog sheet = WaitForSheet(script);
        for (const Page& page : pages)
        {
            SCOPED_TRACE(page.nPage);
            sheet.SelectPage(page.nPage);
            const Control field = sheet.Item(page.nField);
            const Control list = sheet.Item(IDC_ROWS_LIST);
            sheet.SettleIdle();
            EXPECT_FALSE(sheet.Item(IDC_ROWS_ADD).IsEnabled());
            EXPECT_FALSE(sheet.Item(IDC_ROWS_REMOVE).IsEnabled());
            field.SetText("typed");
            ExpectRefused(script, sheet, page.pszUnfinished, page.nFocus);
            sheet.ClickTab(pat::ChartPage);
            EXPECT_EQ(sheet.PageIndex(), pat::ChartPage);
            sheet.SelectPage(page.nPage);
            EXPECT_EQ(field.Text(), "typed");

            list.SelectRow(1);
            script.AnswerBox(question, IDNO);
            script.Settle(sheet.Handle());
            EXPECT_EQ(field.Text(), "typed");
            EXPECT_EQ(list.Send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED), -1);
            list.SelectRow(1);
            script.AnswerBox(question, IDYES);
            script.Settle(sheet.Handle());
            EXPECT_EQ(field.Text(), "second");
            list.SelectRow(0); // nothing was typed, so nothing is asked
            EXPECT_FALSE(script.FindBox().has_value());
            EXPECT_NE(field.Text(), "second");
            field.SetText("typed");
            list.SelectRow(1);
            script.AnswerBox(question, IDNO);
            script.Settle(sheet.Handle());
            EXPECT_EQ(list.Send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED), 0);
            EXPECT_EQ(field.Text(), "typed");
            sheet.Press(IDC_ROWS_CLEAR);
            EXPECT_EQ(field.Text(), "");
        }
        sheet.Press(IDOK);
    });
}

constexpr char referralDate[] =
    "The referral by Sorel, Ida can neither lie in the future nor before the patient's birth.";

TEST_F(SheetChecksTest, RowsAreCheckedWhenTheyAreAdded)
{
    RunNew([](DialogScript& script) {
        const Dialog sheet = WaitForSheet(script);
        FillNames(sheet, "A1", "Ann", "Lee");
        sheet.Item(IDC_CHART_BIRTHDATE).SetDate(2012, 3, 4);
        sheet.SelectPage(pat::ReferralPage);
        const auto add = [&](int nDay) {
            sheet.Item(IDC_REFER_DOCTOR).Choose("Sorel, Ida");
            sheet.Item(IDC_REFER_DATE).SetDate(2012, 3, static_cast<WORD>(nDay));
            sheet.SettleIdle();
            sheet.Press(IDC_ROWS_ADD);
        };
        add(3);
        script.AnswerBox(referralDate, IDOK);
        script.Settle(sheet.Handle());
        EXPECT_TRUE(sheet.Item(IDC_REFER_DATE).HasFocus());
        add(4);
        add(4);
        script.AnswerBox("Sorel, Ida is already listed with a referral on this date.", IDOK);
        EXPECT_EQ(sheet.Item(IDC_ROWS_LIST).Rows().size(), 1u);

        sheet.SelectPage(pat::InsurancePage);
        for (const char* pszCompany : {"M\xFCller", " M\xDCLLER "})
        {
            sheet.Item(IDC_INSURE_COMPANY).SetText(pszCompany);
            sheet.Item(IDC_INSURE_NUMBER).SetText("17");
            sheet.SettleIdle();
            sheet.Press(IDC_ROWS_ADD);
        }
        script.AnswerBox(" M\xDCLLER  is already listed with this policy number.", IDOK);
        EXPECT_EQ(sheet.Item(IDC_ROWS_LIST).Rows().size(), 1u);
        sheet.Press(IDCANCEL);
    });
}

// The rule concerns two pages: it holds whatever was opened, and either page can be reached to mend it.
TEST_F(SheetChecksTest, AReferralBeforeTheBirthIsRefusedOnOKAlone)
{
    dbCPatient patient = StorePatient("A1");
    for (const bool bOpened : {false, true})
    {
        RunChange(patient, [&](DialogScript& script) {
            const Dialog sheet = WaitForSheet(script);
            if (bOpened)
                sheet.SelectPage(pat::ReferralPage);
            sheet.SelectPage(pat::ChartPage);
            sheet.Item(IDC_CHART_BIRTHDATE).SetDate(2020, 5, 7);
            ExpectRefused(script, sheet, referralDate, IDC_ROWS_LIST);
            EXPECT_EQ(sheet.PageIndex(), pat::ReferralPage);
            sheet.ClickTab(pat::ChartPage);
            EXPECT_EQ(sheet.PageIndex(), pat::ChartPage);
            sheet.Item(IDC_CHART_BIRTHDATE).SetDate(2020, 5, 6);
            sheet.Press(IDOK);
        });
        EXPECT_EQ(Stored("A1").GetBirthdate().ToISO(), "2020-05-06");
        patient = Stored("A1");
        patient.SetBirthdate(velCDate(2012, 3, 4));
        patient.Save();
    }
}

TEST_F(SheetChecksTest, ADeviceNamePassesThePageAndIsRefusedWithItsReason)
{
    const __int64 nBefore = dbCPatients::GetChangeCounter();
    RunNew([](DialogScript& script) {
        const Dialog sheet = WaitForSheet(script);
        FillNames(sheet, "AUX", "Ann", "Lee");
        sheet.SelectPage(pat::GuardianPage);
        EXPECT_EQ(sheet.PageIndex(), pat::GuardianPage);
        ExpectRefused(
            script, sheet,
            "Windows keeps the name AUX for a device, so the patient's files cannot bear it. Please "
            "enter another ID.",
            IDC_CHART_ID);
        EXPECT_EQ(SelectedText(sheet.Item(IDC_CHART_ID)), "AUX");
        sheet.Press(IDCANCEL);
    });
    EXPECT_EQ(dbCPatients::GetChangeCounter(), nBefore);
}

TEST_F(SheetChecksTest, ASimilarPatientIsAskedAbout)
{
    StorePatient("A1", "Ann %s", "O'Lee");
    const std::string question =
        "Patient 'ANN %S o'lee' with DOB " + std::string(velCDate(2012, 3, 4).FormatDate().GetString()) +
        " already exists in the database.\nAre you sure you want to continue creating the "
        "patient ?";
    EXPECT_EQ(RunNew([&](DialogScript& script) {
                  const Dialog sheet = WaitForSheet(script);
                  FillNames(sheet, "A2", "ANN %S", "o'lee");
                  sheet.Item(IDC_CHART_BIRTHDATE).SetDate(2012, 3, 4);
                  sheet.Item(IDC_CHART_CITY).SetText("Northport");
                  sheet.Press(IDOK);
                  const Dialog box = script.WaitForBox();
                  EXPECT_EQ(box.Title(), "Similar Patient");
                  EXPECT_EQ(box.BoxText(), question);
                  box.Press(IDNO);
                  box.WaitForClosed();
                  EXPECT_TRUE(sheet.IsOpen());
                  EXPECT_EQ(sheet.Item(IDC_CHART_CITY).Text(), "Northport");
                  sheet.Press(IDOK);
                  script.AnswerBox(question, IDYES);
              }),
              IDOK);
    EXPECT_EQ(Stored("A2").GetAddress().GetCity(), "Northport");

    // Another birth date is another patient, and a patient that is changed is not similar to itself.
    EXPECT_EQ(RunNew([](DialogScript& script) {
                  const Dialog sheet = WaitForSheet(script);
                  FillNames(sheet, "A3", "Ann %s", "O'Lee");
                  sheet.Press(IDOK);
              }),
              IDOK);
    dbCPatient patient = Stored("A1");
    EXPECT_EQ(RunChange(patient, [](DialogScript& script) { WaitForSheet(script).Press(IDOK); }), IDOK);
}

} // namespace
