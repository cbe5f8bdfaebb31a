// What the archive dialog offers and refuses.
#include "tests/archive/archivefixture.h"

using testing::IsEmpty;
using veltest::Dialog;
using veltest::DialogScript;

TEST_F(ArchiveDialogTest, OffersWhatIsPossible)
{
    StorePatient("A1");
    StorePatient("B1");
    struct Case
    {
        std::vector<std::string> ids;
        ARCHIVE_OP nOperation;
        std::string enabled; // of the five buttons, in the order of the group
        int nChecked;        // 0: none
        bool bOK;
    };
    const Case cases[] = {
        {{}, ARCHIVE_OP_SAVE, "10010", IDC_ARC_GET_ARCHIVE, true},
        {{"A1"}, ARCHIVE_OP_MERGE, "11111", IDC_ARC_MERGE, true},
        {{"A1", "B1"}, ARCHIVE_OP_UPLOAD, "11011", 0, false},
    };
    for (const Case& expected : cases)
    {
        const auto look = [&](DialogScript& script) {
            const Dialog choice = WaitForChoice(script);
            choice.SettleIdle();
            std::string enabled;
            int nChecked = 0;
            for (const int nID : {IDC_ARC_GET_ARCHIVE, IDC_ARC_SAVE_ARCHIVE, IDC_ARC_MERGE,
                                  IDC_ARC_GET_INTERNET, IDC_ARC_SAVE_INTERNET})
            {
                enabled += choice.Item(nID).IsEnabled() ? '1' : '0';
                nChecked = choice.Item(nID).IsChecked() ? nID : nChecked;
            }
            EXPECT_EQ(enabled, expected.enabled) << expected.nOperation;
            EXPECT_EQ(nChecked, expected.nChecked) << expected.nOperation;
            EXPECT_EQ(choice.Item(IDC_ARC_INCLUDE_VIEWER).IsEnabled(), !expected.ids.empty());
            EXPECT_EQ(choice.Item(IDOK).IsEnabled(), expected.bOK) << expected.nOperation;
            veltest::ExpectWellMade(choice, "archive-choice");
            choice.Press(IDCANCEL);
        };
        EXPECT_EQ(Run(expected.nOperation, expected.ids, {}, look), IDCANCEL);
    }
}

TEST_F(ArchiveDialogTest, RefusesInPlaceAndStaysOpen)
{
    StorePatient("A1");
    SetArchivingAllowed(false);
    const __int64 nResult = Run(ARCHIVE_OP_SAVE, {"A1"}, {}, [&](DialogScript& script) {
        const Dialog choice = WaitForChoice(script);
        for (const int nRadio : {IDC_ARC_SAVE_ARCHIVE, IDC_ARC_SAVE_INTERNET})
        {
            choice.Press(nRadio);
            choice.Press(IDOK);
            const Dialog box = script.WaitForBox("Archive Save is disabled");
            EXPECT_EQ(box.Title(), "Save Disabled");
            box.Press(IDOK);
        }
        SetArchivingAllowed(true);
        // The practice has no transfer program.
        const std::pair<int, const char*> refusals[] = {
            {IDC_ARC_SAVE_INTERNET, "There is no Rasko program installed on your computer."},
            {IDC_ARC_GET_INTERNET, "Rasko Upload/Download program not available."}};
        for (const auto& [nRadio, pszText] : refusals)
        {
            choice.Press(nRadio);
            choice.Press(IDOK);
            script.AnswerBox(pszText, IDOK);
        }
        EXPECT_TRUE(choice.IsOpen());
        choice.Press(IDCANCEL);
    });
    EXPECT_EQ(nResult, IDCANCEL);
    EXPECT_THAT(NewEvents(), IsEmpty());
    char folder[MAX_PATH];
    ::GetCurrentDirectory(MAX_PATH, folder);
    EXPECT_STRCASEEQ(folder, m_practice.Path("archive").c_str());
}
