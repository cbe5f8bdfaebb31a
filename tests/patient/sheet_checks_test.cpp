// The sheet's look, its checks and its questions: message, focus, and that nothing is written.

#include "tests/patient/sheetfixture.h"

namespace
{

using SheetChecksTest = SheetTest;

constexpr char required[] = "Please make sure all the required patient fields are entered";
constexpr char invalidID[] =
    "The patient ID has some invalid characters. The only valid characters are A-Z, 0-9, _ and -.";
constexpr char takenID[] = "The patient ID already exists. Please enter a unique ID.";
constexpr char deviceID[] = "Windows keeps the name AUX for a device, so the patient's files cannot bear it. "
                            "Please enter another ID.";
constexpr char guardianNames[] =
    "Both guardian firstname and lastname are required for entering guardian info";
constexpr char phone1[] = "Please select a type for phone 1";
constexpr char phone2[] = "Please select a type for phone 2";

TEST_F(SheetChecksTest, EveryPageIsWellLaidOut)
{
    dbCPatient patient = StorePatient("A1");
    Change(patient, IDCANCEL, [](DialogScript& script, const Dialog& sheet) {
        EXPECT_EQ(veltest::SavePagePictures(script, sheet, "patient-sheet"), pat::PageCount);
        RECT help;
        GetWindowRect(sheet.Item(IDC_SHEET_HELP).Handle(), &help);
        EXPECT_EQ(help.right - help.left, help.bottom - help.top);
        for (int nPage = 0; nPage < pat::PageCount; ++nPage)
        {
            sheet.SelectPage(nPage);
            EXPECT_EQ(veltest::DialogFindings(sheet.Page().Handle(), {.isPage = true}), "") << nPage;
        }
    });
}

TEST_F(SheetChecksTest, TheChartPageIsCheckedOnOKAndOnLeaving)
{
    const struct
    {
        const char* pszID;
        const char* pszFirstname;
        const char* pszLastname;
        const char* pszPhone1;
        const char* pszPhone2;
        const char* pszMessage;
        int nFocus;
    } cases[] = {
        {"", "Ann", "Lee", "", "", required, IDC_CHART_ID},
        {"A1", "", "", "", "", required, IDC_CHART_FIRSTNAME},
        {"a b", "Ann", "", "1", "", required, IDC_CHART_LASTNAME},
        {"ab12", "Ann", "Lee", "1", "", invalidID, IDC_CHART_ID},
        {"A'; DROP TABLE--", "Ann", "Lee", "", "", invalidID, IDC_CHART_ID},
        {"A1", "Ann", "Lee", "1", "2", phone1, IDC_CHART_PHONETYPE1},
        {"A1", "Ann", "Lee", "", "2", phone2, IDC_CHART_PHONETYPE2},
    };
    const __int64 nBefore = dbCPatients::GetChangeCounter();
    New(IDCANCEL, [&](DialogScript& script, const Dialog& sheet) {
        for (const auto& c : cases)
        {
            FillNames(sheet, c.pszID, c.pszFirstname, c.pszLastname);
            sheet.Item(IDC_CHART_PHONE1).SetText(c.pszPhone1);
            sheet.Item(IDC_CHART_PHONE2).SetText(c.pszPhone2);
            sheet.Item(IDC_CHART_NICKNAME).Focus();
            ExpectRefused(script, sheet, c.pszMessage, c.nFocus);
            sheet.Item(IDC_CHART_NICKNAME).Focus();
            sheet.ClickTab(pat::GuardianPage);
            ExpectBox(script, sheet, c.pszMessage, c.nFocus);
            EXPECT_EQ(sheet.PageIndex(), pat::ChartPage);
            EXPECT_EQ(sheet.Item(IDC_CHART_ID).Text(), c.pszID);
        }
        // The birth date comes before the phone, and the library says what is wrong with it.
        sheet.Item(IDC_CHART_BIRTHDATE).SetDate(9000, 1, 1);
        ExpectRefused(script, sheet, "The birth date must not lie in the future.", IDC_CHART_BIRTHDATE);
    });
    EXPECT_EQ(dbCPatients::GetChangeCounter(), nBefore);
}

TEST_F(SheetChecksTest, ALongIDIsNotTypedAndFailsSilentlyAndEnterIsOK)
{
    const std::string longest(25, 'A');
    New(0, [&](DialogScript& script, const Dialog& sheet) {
        FillNames(sheet, "");
        sheet.Item(IDC_CHART_LASTNAME).PressKey(VK_RETURN);
        ExpectBox(script, sheet, required, IDC_CHART_ID);
        sheet.Item(IDC_CHART_ID).Type(longest + "A");
        EXPECT_EQ(sheet.Item(IDC_CHART_ID).Text(), longest);
        sheet.Item(IDC_CHART_ID).SetText(longest + "A");
        sheet.Press(IDOK);
        script.Settle(sheet.Handle());
        EXPECT_FALSE(script.FindBox().has_value());
        EXPECT_TRUE(sheet.IsOpen());
        sheet.Item(IDC_CHART_ID).SetText(longest);
        sheet.Item(IDC_CHART_LASTNAME).PressKey(VK_RETURN);
    });
    Loaded(longest.c_str());
}

TEST_F(SheetChecksTest, ATakenOrReservedIDIsRefusedOnOKButNotOnLeaving)
{
    StorePatient("TAKEN");
    dbCPatient patient = StorePatient("A1", "Bob");
    New(IDCANCEL, [](DialogScript& script, const Dialog& sheet) {
        for (const auto& [pszID, pszMessage] : {std::pair("TAKEN", takenID), std::pair("AUX", deviceID)})
        {
            FillNames(sheet, pszID, "Cy");
            sheet.SelectPage(pat::GuardianPage);
            EXPECT_EQ(sheet.PageIndex(), pat::GuardianPage);
            ExpectRefused(script, sheet, pszMessage, IDC_CHART_ID);
            EXPECT_EQ(sheet.PageIndex(), pat::ChartPage);
            EXPECT_EQ(sheet.Item(IDC_CHART_ID).Send(EM_GETSEL), MAKELRESULT(0, strlen(pszID)));
        }
    });
    Change(patient, IDOK, [](DialogScript& script, const Dialog& sheet) {
        sheet.Item(IDC_CHART_ID).SetText("TAKEN");
        ExpectRefused(script, sheet, takenID, IDC_CHART_ID);
        sheet.Item(IDC_CHART_ID).SetText("A1");
    });
}

TEST_F(SheetChecksTest, TheGuardianPageIsCheckedOnOKAndOnLeaving)
{
    New(IDCANCEL, [](DialogScript& script, const Dialog& sheet) {
        FillNames(sheet, "A1");
        sheet.SelectPage(pat::GuardianPage);
        sheet.Item(IDC_GUARD_PHONE1).SetText("1");
        ExpectRefused(script, sheet, guardianNames, IDC_GUARD_FIRSTNAME);
        sheet.Item(IDC_GUARD_FIRSTNAME).SetText("Eve");
        ExpectRefused(script, sheet, guardianNames, IDC_GUARD_LASTNAME);
        sheet.Item(IDC_GUARD_LASTNAME).SetText("Lee");
        ExpectRefused(script, sheet, phone1, IDC_GUARD_PHONETYPE1);
        sheet.ClickTab(pat::InsurancePage);
        ExpectBox(script, sheet, phone1);
        EXPECT_EQ(sheet.PageIndex(), pat::GuardianPage);
        sheet.Item(IDC_GUARD_PHONETYPE1).Choose(1);
        sheet.Item(IDC_GUARD_PHONE2).SetText("2");
        ExpectRefused(script, sheet, phone2, IDC_GUARD_PHONETYPE2);
    });
}

// What is being entered is checked on OK, asked about before another row takes its place, and keeps nobody on
// the page.
TEST_F(SheetChecksTest, AnEntryThatIsNotInTheListIsNotLost)
{
    const struct
    {
        int nPage;
        int nField;
        int nFocus;
        const char* pszWhat;
    } pages[] = {{pat::ReferralPage, IDC_REFER_NOTE, IDC_REFER_DOCTOR, "The referral"},
                 {pat::InsurancePage, IDC_INSURE_NUMBER, IDC_INSURE_COMPANY, "The insurance"}};
    const std::string unfinished =
        " being entered is not in the list yet. Press Add or Change to take it over, or Clear to drop it.";
    const std::string question =
        "What stands in the fields has not been added to the list. Do you want to drop it?";
    dbCPatient patient = StorePatient("A1");
    patient.GetReferrals().AddReferralDoc(m_strGrace, velCDate(2021, 1, 1), "second");
    dbCInsurance insurance;
    insurance.SetCompanyGUID(m_strHarbour);
    insurance.SetNumber("second");
    patient.AssignInsurance(insurance);
    patient.Save();
    Change(patient, IDOK, [&](DialogScript& script, const Dialog& sheet) {
        for (const auto& page : pages)
        {
            SCOPED_TRACE(page.nPage);
            sheet.SelectPage(page.nPage);
            const Control field = sheet.Item(page.nField);
            const Control list = sheet.Item(IDC_ROWS_LIST);
            const auto selectRow = [&](int nRow, int nAnswer, const std::string& expected, int nSelected) {
                list.SelectRow(nRow);
                if (nAnswer != 0)
                    ExpectBox(script, sheet, question, 0, nAnswer);
                EXPECT_FALSE(script.FindBox().has_value());
                EXPECT_EQ(field.Text(), expected);
                EXPECT_EQ(list.Send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED), nSelected);
            };
            const std::string first = list.Rows()[0][2]; // note or number
            EXPECT_NE(list.Send(LVM_GETEXTENDEDLISTVIEWSTYLE) & LVS_EX_FULLROWSELECT, 0);
            sheet.SettleIdle();
            for (const int nButton : {IDC_ROWS_ADD, IDC_ROWS_CHANGE, IDC_ROWS_REMOVE})
                EXPECT_FALSE(sheet.Item(nButton).IsEnabled()) << nButton;
            field.SetText("typed");
            ExpectRefused(script, sheet, page.pszWhat + unfinished, page.nFocus);
            sheet.ClickTab(pat::ChartPage);
            EXPECT_EQ(sheet.PageIndex(), pat::ChartPage);
            sheet.SelectPage(page.nPage);
            EXPECT_EQ(field.Text(), "typed");

            selectRow(1, IDNO, "typed", -1);
            selectRow(1, IDYES, "second", 1);
            selectRow(0, 0, first, 0); // nothing was typed
            field.SetText("typed");
            selectRow(1, IDNO, "typed", 0);
            sheet.Press(IDC_ROWS_CLEAR);
            EXPECT_EQ(field.Text(), "");
        }
    });
}

constexpr char referralDate[] =
    "The referral by Sorel, Ida can neither lie in the future nor before the patient's birth.";

TEST_F(SheetChecksTest, RowsAreCheckedWhenTheyAreAdded)
{
    New(IDCANCEL, [](DialogScript& script, const Dialog& sheet) {
        FillNames(sheet, "A1");
        sheet.Item(IDC_CHART_BIRTHDATE).SetDate(2012, 3, 4);
        sheet.SelectPage(pat::ReferralPage);
        const auto add = [&](int nDay) {
            sheet.Item(IDC_REFER_DOCTOR).Choose("Sorel, Ida");
            sheet.Item(IDC_REFER_DATE).SetDate(2012, 3, static_cast<WORD>(nDay));
            PressSettled(sheet, IDC_ROWS_ADD);
        };
        add(3);
        ExpectBox(script, sheet, referralDate, IDC_REFER_DATE);
        add(4);
        add(4);
        ExpectBox(script, sheet, "Sorel, Ida is already listed with a referral on this date.");
        EXPECT_EQ(sheet.Item(IDC_ROWS_LIST).Rows().size(), 1u);

        sheet.SelectPage(pat::InsurancePage);
        for (const char* pszCompany : {"M\xFCller", " M\xDCLLER "})
        {
            sheet.Item(IDC_INSURE_COMPANY).SetText(pszCompany);
            sheet.Item(IDC_INSURE_NUMBER).SetText("17");
            PressSettled(sheet, IDC_ROWS_ADD);
        }
        ExpectBox(script, sheet, " M\xDCLLER  is already listed with this policy number.");
        sheet.Item(IDC_INSURE_COMPANY).SetText("Harbour");
        PressSettled(sheet, IDC_ROWS_ADD);
        EXPECT_EQ(sheet.Item(IDC_ROWS_LIST).Rows().size(), 2u);
        sheet.Item(IDC_ROWS_LIST).SelectRow(1);
        EXPECT_EQ(sheet.Item(IDC_INSURE_COMPANY).Text(), "Harbour") << "not Harbour Mutual";
    });
}

// The rule concerns two pages: it holds whatever was opened, and either page can be reached to mend it.
TEST_F(SheetChecksTest, AReferralBeforeTheBirthIsRefusedOnOKAlone)
{
    for (const bool bOpened : {false, true})
    {
        const char* const pszID = bOpened ? "A1" : "A2";
        dbCPatient patient = StorePatient(pszID);
        Change(patient, IDOK, [&](DialogScript& script, const Dialog& sheet) {
            if (bOpened)
                sheet.SelectPage(pat::ReferralPage);
            sheet.SelectPage(pat::ChartPage);
            sheet.Item(IDC_CHART_BIRTHDATE).SetDate(2020, 5, 7);
            ExpectRefused(script, sheet, referralDate, IDC_ROWS_LIST);
            EXPECT_EQ(sheet.PageIndex(), pat::ReferralPage);
            sheet.ClickTab(pat::ChartPage);
            EXPECT_EQ(sheet.PageIndex(), pat::ChartPage);
            sheet.Item(IDC_CHART_BIRTHDATE).SetDate(2020, 5, 6);
        });
        EXPECT_EQ(Loaded(pszID).GetBirthdate().ToISO(), "2020-05-06");
    }
}

// Another birth date is another patient, and a patient that is changed is not similar to itself.
TEST_F(SheetChecksTest, ASimilarPatientIsAskedAbout)
{
    database.practice.Set("Defaults", "Country", "Ruritania");
    dbCPatient patient = StorePatient("A1", "Ann %s");
    const std::string question = "Patient 'ANN %S lEE' with DOB " +
                                 std::string(velCDate(2010, 2, 28).FormatDate().GetString()) +
                                 " already exists in the database.\n"
                                 "Are you sure you want to continue creating the patient ?";
    New(0, [&](DialogScript& script, const Dialog& sheet) {
        FillNames(sheet, "A2", "ANN %S", "lEE");
        sheet.Item(IDC_CHART_BIRTHDATE).SetDate(2010, 2, 28);
        sheet.SelectPage(pat::GuardianPage);
        EXPECT_EQ(sheet.Item(IDC_GUARD_COUNTRY).Text(), "Ruritania");
        sheet.Press(IDOK);
        EXPECT_EQ(script.WaitForBox().Title(), "Similar Patient");
        ExpectBox(script, sheet, question, 0, IDNO);
        sheet.Press(IDOK);
        script.AnswerBox(question, IDYES);
    });
    const dbCPatient similar = Loaded("A2");
    dbCPerson guardian;
    EXPECT_FALSE(similar.GetPersonInfo(dbPersonGuardian, guardian)) << "the country alone is none";
    EXPECT_TRUE(similar.GetAddresses().IsEmpty());
    New(IDOK, [](DialogScript&, const Dialog& sheet) { FillNames(sheet, "A3", "Ann %s"); });
    Change(patient, IDOK, [](DialogScript&, const Dialog&) {});
}

} // namespace
