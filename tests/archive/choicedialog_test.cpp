// What the archive dialog offers and refuses.
#include "tests/archive/archivefixture.h"

using testing::AllOf;
using testing::EndsWith;
using testing::IsEmpty;
using testing::Key;
using testing::StartsWith;
using testing::UnorderedElementsAre;
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

TEST_F(ArchiveDialogTest, TakesTheNamesThatAreTyped)
{
    StorePatient("A1");
    const auto type = [&](const char* pszName) {
        Play(ARCHIVE_OP_SAVE, {"A1"}, {}, [&](DialogScript& script) {
            TakeOfferedName(script, 0, pszName);
            script.AnswerBox("", IDNO);
        });
    };
    type("one.kar"); // an extension of another format makes way
    type("one.old"); // any other belongs to the name
    const auto archives = FilesIn("archive");
    EXPECT_THAT(archives, UnorderedElementsAre(Key("ONE.KAZ"), Key("ONE.OLD.KAZ")));
    EXPECT_EQ(m_practice.Get("Defaults", "ArchiveFilePath"), m_practice.Path("archive\\"));
    m_practice.WriteFile("archive\\A1.001", "of an archive without its label");
    for (const int nAnswer : {IDNO, IDCANCEL})
    {
        const auto refuse = [&](DialogScript& script) {
            WaitForChoice(script).Press(IDOK);
            nAnswer == IDNO ? TakeOfferedName(script, 0, "one") : TakeOfferedName(script, 1);
            const Dialog overwrite = script.WaitForDialogWith(IDC_ARC_OVERWRITE_TEXT);
            EXPECT_EQ(overwrite.DefaultButton(), "No");
            EXPECT_THAT(overwrite.Item(IDC_ARC_OVERWRITE_DETAILS).Text(),
                        AllOf(StartsWith("The existing file is from "), EndsWith(" KB.")));
            overwrite.Press(nAnswer);
            WaitForChoice(script).Press(IDCANCEL);
        };
        EXPECT_EQ(Run(ARCHIVE_OP_SAVE, {"A1"}, {}, refuse), IDCANCEL);
        EXPECT_EQ(FilesIn("archive").size(), archives.size() + 1);
    }
    // A single archive that does not open is asked for; several may be chosen.
    UsePractice(2);
    Play(ARCHIVE_OP_LOAD, {}, {Archive("none")}, [&](DialogScript& script) {
        const Dialog dialog = script.WaitForDialog("Choose archive file...");
        dialog.Item(FileNameField).SetText("\"one.kaz\" \"one.old.kaz\"");
        dialog.Press("Open");
        script.AnswerBox("", IDYES);
        script.AnswerBox("Patient Zo\xeb Lee A1 (ID:A1) already exists.", IDOK);
        script.AnswerBox("", IDOK);
    });
    EXPECT_TRUE(IsStored("A1"));
    EXPECT_THAT(FilesIn("archive"), UnorderedElementsAre(Key("A1.001"), Key("ONE.OLD.KAZ")));
}
