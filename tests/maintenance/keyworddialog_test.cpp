#include "app/exports/veldlgs.h"
#include "maintenance/maintenanceres.h"
#include "tests/maintenance/keywordpractice.h"
#include "tests/support/dialogquality.h"
#include "tests/support/dialogscript.h"
#include "tests/support/picture.h"

#include <gmock/gmock.h>

namespace
{

using testing::ElementsAre;
using veltest::Dialog;
using veltest::DialogScript;

class KeywordDialog : public KeywordPractice
{
protected:
    static __int64 Edit(const std::function<void(DialogScript&, const Dialog&)>& script,
                        INI_LIST list = INI_LIST_PATIENT)
    {
        return veltest::RunModal([&] { return EditKeywords(nullptr, list); },
                                 [&](DialogScript& s) { script(s, s.WaitForDialog("Edit Keywords")); });
    }
};

TEST_F(KeywordDialog, AddsAndRemovesOnOK)
{
    Store(dbKeywordsPatient, {"recall", "Braces", "Crown"});
    const auto result = Edit([](DialogScript&, const Dialog& dialog) {
        EXPECT_THAT(dialog.Item(IDC_KEYWORD_LIST).Items(), ElementsAre("Braces", "Crown", "recall"));
        dialog.Item(IDC_KEYWORD_TEXT).Type("Crown & Bridge");
        dialog.Press(IDC_KEYWORD_ADD);
        EXPECT_EQ(dialog.Item(IDC_KEYWORD_TEXT).Text(), "");
        EXPECT_TRUE(dialog.Item(IDC_KEYWORD_TEXT).HasFocus());
        dialog.Item(IDC_KEYWORD_LIST).SelectItems({1, 3});
        dialog.Press(IDC_KEYWORD_REMOVE);
        EXPECT_THAT(dialog.Item(IDC_KEYWORD_LIST).Items(), ElementsAre("Braces", "Crown & Bridge"));
        EXPECT_TRUE(dialog.Item(IDC_KEYWORD_TEXT).HasFocus());
        dialog.Press(IDOK);
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_THAT(Stored(dbKeywordsPatient), ElementsAre("Braces", "Crown & Bridge"));
}

TEST_F(KeywordDialog, CancelStoresNothing)
{
    Store(dbKeywordsPatient, {"Braces"});
    const auto result = Edit([](DialogScript&, const Dialog& dialog) {
        dialog.Item(IDC_KEYWORD_TEXT).Type("Crown");
        dialog.Press(IDC_KEYWORD_ADD);
        dialog.Item(IDC_KEYWORD_LIST).SelectItems({0, 1});
        dialog.Press(IDC_KEYWORD_REMOVE);
        EXPECT_TRUE(dialog.Item(IDC_KEYWORD_LIST).Items().empty());
        dialog.Press(IDCANCEL);
    });
    EXPECT_EQ(result, IDCANCEL);
    EXPECT_THAT(Stored(dbKeywordsPatient), ElementsAre("Braces"));
}

TEST_F(KeywordDialog, EditsThePatientListWhicheverIsAskedFor)
{
    Store(dbKeywordsPatient, {"Braces"});
    Store(dbKeywordsImage, {"Frontal"});
    Edit(
        [](DialogScript&, const Dialog& dialog) {
            EXPECT_THAT(dialog.Item(IDC_KEYWORD_LIST).Items(), ElementsAre("Braces"));
            dialog.Press(IDCANCEL);
        },
        INI_LIST_IMAGE);
}

TEST_F(KeywordDialog, AKeywordThatDiffersInCaseIsADuplicate)
{
    Store(dbKeywordsPatient, {"Braces"});
    Edit([](DialogScript& script, const Dialog& dialog) {
        dialog.Item(IDC_KEYWORD_TEXT).Type("bRACES");
        dialog.Press(IDC_KEYWORD_ADD);
        const Dialog box = script.WaitForBox("The specified keyword is already in the list.");
        EXPECT_EQ(box.Title(), "Duplicate");
        EXPECT_TRUE(box.HasIcon(IDI_EXCLAMATION));
        box.Press(IDOK);
        box.WaitForClosed();
        script.Settle(dialog.Handle());
        EXPECT_EQ(dialog.Item(IDC_KEYWORD_TEXT).Text(), "");
        EXPECT_TRUE(dialog.Item(IDC_KEYWORD_TEXT).HasFocus());
        EXPECT_THAT(dialog.Item(IDC_KEYWORD_LIST).Items(), ElementsAre("Braces"));
        dialog.Press(IDCANCEL);
    });
}

TEST_F(KeywordDialog, EnterAddsWhileThereIsTextAndClosesWithoutIt)
{
    const auto result = Edit([](DialogScript& script, const Dialog& dialog) {
        dialog.Item(IDC_KEYWORD_TEXT).Type("Crown");
        dialog.Item(IDC_KEYWORD_TEXT).PressKey(VK_RETURN);
        script.Settle(dialog.Handle());
        ASSERT_TRUE(dialog.IsOpen());
        EXPECT_THAT(dialog.Item(IDC_KEYWORD_LIST).Items(), ElementsAre("Crown"));
        dialog.Item(IDC_KEYWORD_TEXT).PressKey(VK_RETURN);
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_THAT(Stored(dbKeywordsPatient), ElementsAre("Crown"));
}

TEST_F(KeywordDialog, DeleteKeyRemovesOnlyInTheList)
{
    Store(dbKeywordsPatient, {"Braces", "Crown"});
    Edit([](DialogScript& script, const Dialog& dialog) {
        dialog.Item(IDC_KEYWORD_LIST).SelectItems({0});
        dialog.Item(IDC_KEYWORD_TEXT).PressKey(VK_DELETE);
        script.Settle(dialog.Handle());
        EXPECT_EQ(dialog.Item(IDC_KEYWORD_LIST).Items().size(), 2u);
        dialog.Item(IDC_KEYWORD_LIST).PressKey(VK_DELETE);
        script.Settle(dialog.Handle());
        EXPECT_THAT(dialog.Item(IDC_KEYWORD_LIST).Items(), ElementsAre("Crown"));
        dialog.Press(IDCANCEL);
    });
}

TEST_F(KeywordDialog, ButtonsFollowTextAndSelection)
{
    Store(dbKeywordsPatient, {"Braces", "Crown"});
    Edit([](DialogScript&, const Dialog& dialog) {
        const auto add = dialog.Item(IDC_KEYWORD_ADD);
        const auto remove = dialog.Item(IDC_KEYWORD_REMOVE);
        EXPECT_FALSE(add.IsEnabled());
        EXPECT_FALSE(remove.IsEnabled());
        dialog.Item(IDC_KEYWORD_TEXT).Type("x");
        dialog.SettleIdle();
        EXPECT_TRUE(add.IsEnabled());
        dialog.Item(IDC_KEYWORD_TEXT).Replace("");
        dialog.SettleIdle();
        EXPECT_FALSE(add.IsEnabled());
        dialog.Item(IDC_KEYWORD_LIST).SelectItems({1});
        dialog.SettleIdle();
        EXPECT_TRUE(remove.IsEnabled());
        dialog.Press(IDC_KEYWORD_REMOVE);
        dialog.SettleIdle();
        EXPECT_FALSE(remove.IsEnabled());
        dialog.Press(IDCANCEL);
    });
}

TEST_F(KeywordDialog, NothingComesUpWhenTheListCannotBeLoaded)
{
    dbCPatients::Close();
    EXPECT_EQ(veltest::RunModal([] { return EditKeywords(nullptr, INI_LIST_PATIENT); }, [](DialogScript&) {}),
              IDCANCEL);
}

TEST_F(KeywordDialog, StaysOpenWhenTheListCannotBeStored)
{
    Edit([](DialogScript& script, const Dialog& dialog) {
        dialog.Item(IDC_KEYWORD_TEXT).Type("Crown");
        dialog.Press(IDC_KEYWORD_ADD);
        script.Settle(dialog.Handle());
        dbCPatients::Close();
        dialog.Press(IDOK);
        script.AnswerBox("", IDOK);
        script.Settle(dialog.Handle());
        EXPECT_TRUE(dialog.IsOpen());
        EXPECT_THAT(dialog.Item(IDC_KEYWORD_LIST).Items(), ElementsAre("Crown"));
        dialog.Press(IDCANCEL);
    });
}

TEST_F(KeywordDialog, TakesLongAndStrangeKeywords)
{
    const std::string longest(500, 'k');
    const auto result = Edit([&](DialogScript& script, const Dialog& dialog) {
        for (const std::string& word : {longest, std::string("100% %s <1> 'x'; --"), std::string("\xC4rger")})
        {
            dialog.Item(IDC_KEYWORD_TEXT).SetText(word);
            dialog.Press(IDC_KEYWORD_ADD);
            script.Settle(dialog.Handle());
        }
        EXPECT_EQ(dialog.Item(IDC_KEYWORD_LIST).Items().size(), 3u);
        dialog.Press(IDOK);
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_THAT(Stored(dbKeywordsPatient), ElementsAre(longest, "100% %s <1> 'x'; --", "\xC4rger"));
}

TEST_F(KeywordDialog, LooksAsItShould)
{
    Store(dbKeywordsPatient, {"Braces", "Crown & Bridge", "Deep bite", "Extraction", "Recall", "Retainer"});
    Edit([](DialogScript&, const Dialog& dialog) {
        dialog.Item(IDC_KEYWORD_TEXT).Type("Aligner");
        dialog.Item(IDC_KEYWORD_LIST).SelectItems({2, 3});
        dialog.SettleIdle();
        EXPECT_EQ(veltest::DialogFindings(dialog.Handle()), "");
        EXPECT_TRUE(veltest::SavePicture(dialog.Handle(), "edit-keywords"));
        dialog.Press(IDCANCEL);
    });
}

} // namespace
