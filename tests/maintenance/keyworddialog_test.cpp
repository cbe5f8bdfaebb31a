#include "tests/maintenance/keywordpractice.h"
#include "tests/support/dialogquality.h"
#include "tests/support/picture.h"

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using veltest::Dialog;
using veltest::DialogScript;

constexpr int patientList = dbKeywordsPatient;

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
    Store(patientList, {"recall", "Braces", "Crown"});
    Store(dbKeywordsImage, {"Frontal"});
    const auto edit = [](int end) {
        return [end](DialogScript&, const Dialog& dialog) {
            EXPECT_THAT(dialog.Item(IDC_KEYWORD_LIST).Items(), ElementsAre("Braces", "Crown", "recall"));
            dialog.Item(IDC_KEYWORD_TEXT).Type("Crown & \xC4rger <1> %s'");
            dialog.Press(IDC_KEYWORD_ADD);
            EXPECT_EQ(dialog.Item(IDC_KEYWORD_TEXT).Text(), "");
            EXPECT_TRUE(dialog.Item(IDC_KEYWORD_TEXT).HasFocus());
            dialog.Item(IDC_KEYWORD_LIST).SelectItems({1, 3});
            dialog.Press(IDC_KEYWORD_REMOVE);
            EXPECT_THAT(dialog.Item(IDC_KEYWORD_LIST).Items(),
                        ElementsAre("Braces", "Crown & \xC4rger <1> %s'"));
            EXPECT_TRUE(dialog.Item(IDC_KEYWORD_TEXT).HasFocus());
            dialog.Press(end);
        };
    };
    EXPECT_EQ(Edit(edit(IDCANCEL)), IDCANCEL);
    EXPECT_THAT(Stored(patientList), ElementsAre("recall", "Braces", "Crown"));
    EXPECT_EQ(Edit(edit(IDOK), INI_LIST_IMAGE), IDOK) << "the patient list, whichever is asked for";
    EXPECT_THAT(Stored(patientList), ElementsAre("Braces", "Crown & \u00C4rger <1> %s'"));
    EXPECT_THAT(Stored(dbKeywordsImage), ElementsAre("Frontal"));
}

/// Another seat may have another code page.
TEST_F(KeywordDialog, AWordThatDoesNotConvertIsShownAndLeftOrRemoved)
{
    Sql("INSERT INTO keywords (list, word, wordKey) VALUES (0, 'Z\u4E00', 'z\u4E00'), (0, 'Z\u4E01', "
        "'z\u4E01'),"
        " (0, '', '')");
    Store(patientList, {"Braces"});
    Edit([](DialogScript&, const Dialog& dialog) {
        EXPECT_THAT(dialog.Item(IDC_KEYWORD_LIST).Items(), ElementsAre("Braces", "Z?", "Z?"));
        dialog.Item(IDC_KEYWORD_TEXT).Type("New");
        dialog.Press(IDC_KEYWORD_ADD);
        dialog.Item(IDC_KEYWORD_LIST).SelectItems({2});
        dialog.Press(IDC_KEYWORD_REMOVE);
        dialog.Press(IDOK);
    });
    EXPECT_THAT(Stored(patientList), ElementsAre("Z\u4E01", "", "Braces", "New"));
    EXPECT_THAT(Sql("SELECT wordKey FROM keywords ORDER BY id"), ElementsAre("z\u4E01", "", "braces", "new"));
}

TEST_F(KeywordDialog, TellsWhyItTakesNoKeyword)
{
    Store(patientList, {"Braces"});
    const std::string tooLong(501, 'k');
    struct Case
    {
        std::string text;
        std::string message; // empty: none
        std::string caption;
        std::string textAfter;
    };
    const Case cases[] = {
        {"bRACES", "The specified keyword is already in the list.", "Duplicate", ""},
        {"Braces ", "The specified keyword is already in the list.", "Duplicate", ""},
        {tooLong, "A keyword can have at most 500 characters.", "Too Long", tooLong},
        {"  ", "", "", "  "},
    };
    Edit([&](DialogScript& script, const Dialog& dialog) {
        for (const Case& c : cases)
        {
            SCOPED_TRACE(c.text);
            const auto field = dialog.Item(IDC_KEYWORD_TEXT);
            field.SetText(c.text);
            dialog.Press(IDC_KEYWORD_ADD);
            if (!c.message.empty())
            {
                const Dialog box = script.WaitForBox(c.message);
                EXPECT_EQ(box.Title(), c.caption);
                EXPECT_TRUE(box.HasIcon(IDI_EXCLAMATION));
                box.Press(IDOK);
                box.WaitForClosed();
            }
            script.Settle(dialog.Handle());
            EXPECT_EQ(field.Text(), c.textAfter);
            EXPECT_TRUE(field.HasFocus());
            EXPECT_THAT(dialog.Item(IDC_KEYWORD_LIST).Items(), ElementsAre("Braces"));
        }
        dialog.Item(IDC_KEYWORD_TEXT).Replace(tooLong);
        EXPECT_EQ(dialog.Item(IDC_KEYWORD_TEXT).Text().size(), 500u) << "more cannot be typed";
        dialog.Press(IDC_KEYWORD_ADD);
        EXPECT_EQ(dialog.Item(IDC_KEYWORD_LIST).Items().size(), 2u);
        EXPECT_GT(dialog.Item(IDC_KEYWORD_LIST).Send(LB_GETHORIZONTALEXTENT), 500) << "it can be scrolled to";
        dialog.Press(IDOK);
    });
    EXPECT_THAT(Stored(patientList), ElementsAre("Braces", std::string(500, 'k')));
}

TEST_F(KeywordDialog, KeysActWhereTheFocusIs)
{
    Store(patientList, {"Braces"});
    const auto result = Edit([](DialogScript& script, const Dialog& dialog) {
        const auto text = dialog.Item(IDC_KEYWORD_TEXT);
        const auto list = dialog.Item(IDC_KEYWORD_LIST);
        text.Type("Crown");
        text.PressKey(VK_RETURN);
        script.Settle(dialog.Handle());
        ASSERT_TRUE(dialog.IsOpen());
        EXPECT_THAT(list.Items(), ElementsAre("Braces", "Crown"));
        list.SelectItems({0});
        text.PressKey(VK_DELETE);
        text.PressKey('A'); // no key of the dialog's
        script.Settle(dialog.Handle());
        EXPECT_EQ(text.Text(), "a");
        EXPECT_EQ(list.Items().size(), 2u);
        text.Replace("");
        list.PressKey(VK_DELETE);
        script.Settle(dialog.Handle());
        EXPECT_THAT(list.Items(), ElementsAre("Crown"));
        text.PressKey(VK_RETURN); // an empty field leaves Enter to OK
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_THAT(Stored(patientList), ElementsAre("Crown"));
}

TEST_F(KeywordDialog, ButtonsFollowTextAndSelection)
{
    Store(patientList, {"Braces", "Crown & Bridge", "Deep bite", "Extraction"});
    Edit([](DialogScript&, const Dialog& dialog) {
        const auto expectEnabled = [&](bool add, bool remove) {
            dialog.SettleIdle();
            EXPECT_EQ(dialog.Item(IDC_KEYWORD_ADD).IsEnabled(), add);
            EXPECT_EQ(dialog.Item(IDC_KEYWORD_REMOVE).IsEnabled(), remove);
        };
        expectEnabled(false, false);
        dialog.Item(IDC_KEYWORD_TEXT).Type("Aligner");
        expectEnabled(true, false);
        dialog.Item(IDC_KEYWORD_LIST).SelectItems({1, 2});
        expectEnabled(true, true);
        EXPECT_EQ(veltest::DialogFindings(dialog.Handle()), "");
        EXPECT_TRUE(veltest::SavePicture(dialog.Handle(), "edit-keywords"));
        dialog.Item(IDC_KEYWORD_TEXT).Replace("");
        expectEnabled(false, true);
        dialog.Press(IDC_KEYWORD_REMOVE);
        expectEnabled(false, false);
        dialog.Press(IDCANCEL);
    });
}

TEST_F(KeywordDialog, SaysWhenTheListCannotBeReadOrStored)
{
    Sql("CREATE TRIGGER refuse BEFORE INSERT ON keywords BEGIN SELECT RAISE(FAIL, 'the disk is full'); END");
    const auto result = Edit([](DialogScript& script, const Dialog& dialog) {
        dialog.Item(IDC_KEYWORD_TEXT).Type("Crown");
        dialog.Press(IDC_KEYWORD_ADD);
        dialog.Press(IDOK);
        const Dialog box = script.WaitForBox();
        EXPECT_THAT(box.BoxText(), testing::HasSubstr("the disk is full"));
        EXPECT_TRUE(box.HasIcon(IDI_ERROR));
        box.Press(IDOK);
        box.WaitForClosed();
        EXPECT_TRUE(dialog.IsOpen());
        EXPECT_THAT(dialog.Item(IDC_KEYWORD_LIST).Items(), ElementsAre("Crown"));
        dialog.Press(IDCANCEL);
    });
    EXPECT_EQ(result, IDCANCEL);
    EXPECT_THAT(Stored(patientList), IsEmpty());

    dbCPatients::Close();
    const auto unread =
        veltest::RunModal([] { return EditKeywords(nullptr, INI_LIST_PATIENT); },
                          [](DialogScript& script) {
                              script.AnswerBox("The keywords could not be read from the patient "
                                               "database, so they cannot be changed now.",
                                               IDOK);
                          });
    EXPECT_EQ(unread, IDCANCEL);
}

} // namespace
