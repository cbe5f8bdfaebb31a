// How the sheet looks and answers the keyboard.

#include "tests/patient/sheetfixture.h"

using veltest::Dialog;
using veltest::DialogScript;

namespace
{

using SheetLookTest = SheetTest;

TEST_F(SheetLookTest, EveryPageIsWellLaidOut)
{
    dbCPatient patient = StorePatient("A1");
    RunChange(patient, [](DialogScript& script) {
        const Dialog sheet = WaitForSheet(script);
        EXPECT_EQ(veltest::SavePagePictures(script, sheet, "patient-sheet"), pat::PageCount);
        RECT rectHelp;
        GetWindowRect(sheet.Item(IDC_SHEET_HELP).Handle(), &rectHelp);
        EXPECT_EQ(rectHelp.right - rectHelp.left, rectHelp.bottom - rectHelp.top);
        veltest::QualityOptions options;
        options.isPage = true;
        for (int nPage = 0; nPage < pat::PageCount; ++nPage)
        {
            sheet.SelectPage(nPage);
            EXPECT_EQ(veltest::DialogFindings(sheet.Page().Handle(), options), "") << "page " << nPage;
        }
        sheet.Press(IDCANCEL);
    });
}

// The box that the setting shows before help is opened names the id.
TEST_F(SheetLookTest, F1OpensTheTopicOfThePage)
{
    m_practice.Set("defaults", "DebugHelp", "1");
    RunNew([](DialogScript& script) {
        const Dialog sheet = WaitForSheet(script);
        FillNames(sheet, "A1", "Ann", "Lee");
        const int topics[] = {140433, 140434, 140438, 140439, 140440};
        const int fields[] = {IDC_CHART_STREET, 0, IDC_GUARD_NOTES, IDC_ROWS_LIST, IDC_INSURE_COMPANY};
        const auto expectHelp = [&](int nTopic) {
            EXPECT_THAT(script.WaitForBox().BoxText(), testing::HasSubstr(std::to_string(nTopic)));
            script.AnswerBox("", IDOK);
            script.WaitUntil("the sheet is usable again", [&] { return sheet.IsEnabled(); });
        };
        for (int nPage = 0; nPage < pat::PageCount; ++nPage)
        {
            sheet.SelectPage(nPage);
            if (fields[nPage] != 0)
                sheet.Item(fields[nPage]).Focus();
            sheet.PressF1();
            expectHelp(topics[nPage]);
            sheet.Item(IDCANCEL).Focus(); // on the frame it is the page's topic too
            sheet.PressF1();
            expectHelp(topics[nPage]);
            sheet.Press(IDC_SHEET_HELP);
            expectHelp(topics[nPage]);
        }
        sheet.Press(IDCANCEL);
    });
}

TEST_F(SheetLookTest, EnterInAFieldIsTheSheetsOK)
{
    EXPECT_EQ(RunNew([](DialogScript& script) {
                  const Dialog sheet = WaitForSheet(script);
                  sheet.Item(IDC_CHART_LASTNAME).PressKey(VK_RETURN);
                  script.AnswerBox("Please make sure all the required patient fields are entered", IDOK);
                  FillNames(sheet, "A1", "Ann", "Lee");
                  sheet.Item(IDC_CHART_LASTNAME).PressKey(VK_RETURN);
              }),
              IDOK);
    Stored("A1");
}

TEST_F(SheetLookTest, TheTeethBelongToPatientsWithTimepoints)
{
    dbCPatient patient = StorePatient("A1");
    const auto teethEnabled = [&](bool bExpected) {
        RunChange(patient, [=](DialogScript& script) {
            const Dialog sheet = WaitForSheet(script);
            EXPECT_EQ(sheet.Item(IDC_CHART_TEETH).IsEnabled(), bExpected);
            sheet.Press(IDCANCEL);
        });
    };
    teethEnabled(true);
    patient.GetTimepoints().RemoveAll();
    patient.Save();
    teethEnabled(false);
}

} // namespace
