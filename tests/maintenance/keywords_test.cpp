// The keyword editor, and the fields whose menu offers its words.

#include "suite/patients/records/dbkeywords.h"
#include "tests/maintenance/keywordfieldres.h"
#include "tests/maintenance/patientpractice.h"

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using veltest::Control;

constexpr int patientList = dbKeywordsPatient;
constexpr int imageList = dbKeywordsImage;

INT_PTR CALLBACK FieldsProc(HWND dialog, UINT message, WPARAM wParam, LPARAM)
{
    if (message == WM_COMMAND && LOWORD(wParam) == IDOK)
        EndDialog(dialog, IDOK);
    return message == WM_INITDIALOG;
}

/// A practice whose keyword lists a test fills and reads, their editor, and a dialog with three keyword
/// fields: for patients, for images and for no list.
class KeywordPractice : public PatientPractice
{
protected:
    static void Store(int nList, const std::vector<std::string>& words)
    {
        CKeywords keywords;
        ASSERT_TRUE(keywords.Load(nList));
        for (const std::string& word : words)
            keywords.Add(word.c_str());
        keywords.Save();
    }

    /// The words of a list as the file holds them, in UTF-8.
    std::vector<std::string> Stored(int nList) const
    {
        return Sql("SELECT word FROM keywords WHERE list = " + std::to_string(nList) + " ORDER BY id");
    }

    static __int64 Edit(const Script& script, INI_LIST list = INI_LIST_PATIENT)
    {
        return veltest::RunDialog([&] { return EditKeywords(nullptr, list); }, "Edit Keywords", script);
    }

    static std::vector<std::string> Items(const Dialog& dialog)
    {
        return dialog.Item(IDC_KEYWORD_LIST).Items();
    }

    static void ExpectButtons(const Dialog& dialog, bool add, bool remove)
    {
        dialog.SettleIdle();
        EXPECT_EQ(dialog.Item(IDC_KEYWORD_ADD).IsEnabled(), add);
        EXPECT_EQ(dialog.Item(IDC_KEYWORD_REMOVE).IsEnabled(), remove);
    }

    // After Add and Remove the next keyword can be typed.
    static void Press(const Dialog& dialog, int button)
    {
        dialog.Press(button);
        EXPECT_TRUE(dialog.Item(IDC_KEYWORD_TEXT).HasFocus());
    }

    static void Run(const Script& script)
    {
        const auto call = [] {
            return DialogBoxParamA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(IDD_KEYWORD_FIELDS), nullptr,
                                   FieldsProc, 0);
        };
        const auto play = [&](DialogScript& s, const Dialog& dialog) {
            script(s, dialog);
            dialog.Press(IDOK);
        };
        EXPECT_EQ(veltest::RunDialog(call, "Keyword fields", play), IDOK);
    }

    // By the keyboard, unless a place is given.
    static std::vector<std::string> OpenMenu(DialogScript& script, const Control& field,
                                             LPARAM place = MAKELPARAM(-1, -1))
    {
        field.Post(WM_CONTEXTMENU, reinterpret_cast<WPARAM>(field.Handle()), place);
        return script.WaitForMenu();
    }

    static void Choose(DialogScript& script, const Control& field, const std::string& item)
    {
        OpenMenu(script, field);
        script.ChooseMenuItem(item);
    }

    static std::vector<std::string> MenuOf(DialogScript& script, const Control& field)
    {
        std::vector<std::string> items = OpenMenu(script, field);
        script.CloseMenu();
        script.Settle(field.Handle());
        return items;
    }

    // Loads the module, and with it the window class.
    const int m_moduleLoaded = SetArchivingAllowed(false);
};

using KeywordDialog = KeywordPractice;
using KeywordField = KeywordPractice;

TEST_F(KeywordDialog, AddsAndRemovesOnOK)
{
    Store(patientList, {"recall", "Braces", "Crown"});
    Store(imageList, {"Frontal"});
    const auto edit = [](int end) {
        return [end](DialogScript&, const Dialog& dialog) {
            EXPECT_THAT(Items(dialog), ElementsAre("Braces", "Crown", "recall"));
            EXPECT_TRUE(dialog.Item(IDC_KEYWORD_TEXT).HasFocus());
            ExpectButtons(dialog, false, false);
            dialog.Item(IDC_KEYWORD_TEXT).Type("Crown & \xC4rger <1> %s'");
            ExpectButtons(dialog, true, false);
            veltest::ExpectWellMade(dialog, "edit-keywords", {.grows = true});
            Press(dialog, IDC_KEYWORD_ADD);
            EXPECT_EQ(dialog.Item(IDC_KEYWORD_TEXT).Text(), "");
            dialog.Item(IDC_KEYWORD_LIST).SelectItems({1, 3});
            ExpectButtons(dialog, false, true);
            Press(dialog, IDC_KEYWORD_REMOVE);
            ExpectButtons(dialog, false, false);
            EXPECT_THAT(Items(dialog), ElementsAre("Braces", "Crown & \xC4rger <1> %s'"));
            dialog.Press(end);
        };
    };
    EXPECT_EQ(Edit(edit(IDCANCEL)), IDCANCEL);
    EXPECT_THAT(Stored(patientList), ElementsAre("recall", "Braces", "Crown"));
    EXPECT_EQ(Edit(edit(IDOK), INI_LIST_IMAGE), IDOK) << "the patient list, whichever is asked for";
    EXPECT_THAT(Stored(patientList), ElementsAre("Braces", "Crown & \u00C4rger <1> %s'"));
    EXPECT_THAT(Stored(imageList), ElementsAre("Frontal"));
}

/// Another seat may have another code page.
TEST_F(KeywordDialog, AWordThatDoesNotConvertIsShownAndLeftOrRemoved)
{
    Sql("INSERT INTO keywords (list, word, wordKey) VALUES (0, 'Z\u4E00', 'z\u4E00'), (0, 'Z\u4E01', "
        "'z\u4E01'), (0, '', '')");
    Store(patientList, {"Braces"});
    Edit([](DialogScript&, const Dialog& dialog) {
        EXPECT_THAT(Items(dialog), ElementsAre("Braces", "Z?", "Z?"));
        dialog.Item(IDC_KEYWORD_TEXT).Type("New");
        Press(dialog, IDC_KEYWORD_ADD);
        dialog.Item(IDC_KEYWORD_LIST).SelectItems({2});
        Press(dialog, IDC_KEYWORD_REMOVE);
        dialog.Press(IDOK);
    });
    EXPECT_THAT(Stored(patientList), ElementsAre("Z\u4E01", "", "Braces", "New"));
    EXPECT_THAT(Sql("SELECT wordKey FROM keywords ORDER BY id"), ElementsAre("z\u4E01", "", "braces", "new"));
}

TEST_F(KeywordDialog, TellsWhyItTakesNoKeyword)
{
    Store(patientList, {"Braces"});
    const std::string tooLong(501, 'k');
    const char* const listed = "The specified keyword is already in the list.";
    const std::tuple<std::string, const char*, const char*, std::string> cases[] = {
        {"bRACES", listed, "Duplicate", ""},
        {"Braces ", listed, "Duplicate", ""},
        {tooLong, "A keyword can have at most 500 characters.", "Too Long", tooLong},
        {"  ", nullptr, nullptr, "  "}, // nothing is told
    };
    Edit([&](DialogScript& script, const Dialog& dialog) {
        const auto field = dialog.Item(IDC_KEYWORD_TEXT);
        for (const auto& [text, message, caption, after] : cases)
        {
            field.SetText(text);
            dialog.Press(IDC_KEYWORD_ADD);
            if (message != nullptr)
            {
                const Dialog box = script.WaitForBox(message);
                EXPECT_EQ(box.Title(), caption);
                EXPECT_TRUE(box.HasIcon(IDI_EXCLAMATION));
                script.AnswerBox("", IDOK);
                script.Settle(dialog.Handle());
            }
            EXPECT_EQ(field.Text(), after);
            EXPECT_TRUE(field.HasFocus());
            EXPECT_THAT(Items(dialog), ElementsAre("Braces"));
        }
        field.Replace(tooLong);
        EXPECT_EQ(field.Text().size(), 500u) << "more cannot be typed";
        Press(dialog, IDC_KEYWORD_ADD);
        EXPECT_EQ(Items(dialog).size(), 2u);
        EXPECT_GT(dialog.Item(IDC_KEYWORD_LIST).Send(LB_GETHORIZONTALEXTENT), 500) << "it can be scrolled to";
        dialog.Press(IDOK);
    });
    EXPECT_THAT(Stored(patientList), ElementsAre("Braces", std::string(500, 'k')));
}

TEST_F(KeywordDialog, KeysActWhereTheFocusIs)
{
    Store(patientList, {"Braces"});
    const auto result = Edit([](DialogScript&, const Dialog& dialog) {
        const auto text = dialog.Item(IDC_KEYWORD_TEXT);
        text.Type("Crown");
        text.PressKey(VK_RETURN);
        EXPECT_THAT(Items(dialog), ElementsAre("Braces", "Crown"));
        dialog.Item(IDC_KEYWORD_LIST).SelectItems({0});
        text.PressKey(VK_DELETE);
        text.PressKey('A'); // no key of the dialog's
        EXPECT_EQ(text.Text(), "a");
        EXPECT_EQ(Items(dialog).size(), 2u);
        text.Replace("");
        dialog.Item(IDC_KEYWORD_LIST).PressKey(VK_DELETE);
        EXPECT_THAT(Items(dialog), ElementsAre("Crown"));
        text.PressKey(VK_RETURN); // an empty field leaves Enter to OK
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_THAT(Stored(patientList), ElementsAre("Crown"));
}

TEST_F(KeywordDialog, SaysWhenTheListCannotBeReadOrStored)
{
    Sql("CREATE TRIGGER refuse BEFORE INSERT ON keywords BEGIN SELECT RAISE(FAIL, 'the disk is full'); END");
    const auto result = Edit([](DialogScript& script, const Dialog& dialog) {
        dialog.Item(IDC_KEYWORD_TEXT).Type("Crown");
        dialog.Press(IDC_KEYWORD_ADD);
        dialog.Press(IDOK);
        EXPECT_TRUE(script.WaitForBox().HasIcon(IDI_ERROR));
        EXPECT_THAT(script.AnswerBox("", IDOK), testing::HasSubstr("the disk is full"));
        EXPECT_THAT(Items(dialog), ElementsAre("Crown"));
        dialog.Press(IDCANCEL);
    });
    EXPECT_EQ(result, IDCANCEL);
    EXPECT_THAT(Stored(patientList), IsEmpty());

    dbCPatients::Close();
    const char* const unread =
        "The keywords could not be read from the patient database, so they cannot be changed now.";
    EXPECT_EQ(veltest::RunModal([] { return EditKeywords(nullptr, INI_LIST_PATIENT); },
                                [&](DialogScript& script) { script.AnswerBox(unread, IDOK); }),
              IDCANCEL);
}

TEST_F(KeywordField, OffersTheListThatItsTextNames)
{
    Store(patientList, {"recall", "Braces"});
    Store(imageList, {"Frontal"});
    Run([](DialogScript& script, const Dialog& dialog) {
        EXPECT_EQ(dialog.Item(IDC_FIELD_PATIENT).Text(), "") << "the list's name is cleared";
        EXPECT_THAT(MenuOf(script, dialog.Item(IDC_FIELD_PATIENT)),
                    ElementsAre("recall", "Braces", "-", "Edit These..."));
        EXPECT_THAT(MenuOf(script, dialog.Item(IDC_FIELD_IMAGE)),
                    ElementsAre("Frontal", "-", "Edit These..."));
        EXPECT_THAT(MenuOf(script, dialog.Item(IDC_FIELD_NONE)), ElementsAre("-", "Edit These..."));

        // Where the mouse is; by the keyboard, next to the field's corner.
        const Control field = dialog.Item(IDC_FIELD_NONE);
        RECT corner = {};
        GetWindowRect(field.Handle(), &corner);
        for (const POINT& place : {POINT{-1, -1}, POINT{40, 30}})
        {
            OpenMenu(script, field, MAKELPARAM(place.x, place.y));
            RECT menu = {};
            GetWindowRect(script.WaitForWindowOfClass("#32768"), &menu);
            EXPECT_NEAR(menu.left, place.x < 0 ? corner.left : place.x, 4);
            EXPECT_NEAR(menu.top, place.y < 0 ? corner.top : place.y, 4);
            script.CloseMenu();
        }
    });
    dbCPatients::Close();
    Run([](DialogScript& script, const Dialog& dialog) {
        EXPECT_THAT(MenuOf(script, dialog.Item(IDC_FIELD_PATIENT)), ElementsAre("-", "Edit These..."));
    });
}

TEST_F(KeywordField, AppendsTheChosenKeyword)
{
    const std::string longest(500, 'k');
    Store(patientList, {"Crown & Bridge", "Recall", "&&", longest});
    Run([&](DialogScript& script, const Dialog& dialog) {
        const Control field = dialog.Item(IDC_FIELD_PATIENT);
        dialog.Item(IDC_FIELD_NONE).Focus();
        Choose(script, field, "Crown && Bridge");
        EXPECT_EQ(field.Text(), "Crown & Bridge");
        EXPECT_TRUE(field.HasFocus());
        Choose(script, field, "&&&&");
        EXPECT_EQ(field.Text(), "Crown & Bridge, &&");
        const auto end = static_cast<WORD>(field.Text().size());
        EXPECT_EQ(field.Send(EM_GETSEL), MAKELRESULT(end, end)) << "the caret stands at the end";
        Choose(script, field, "Recall");
        EXPECT_EQ(field.Text(), "Crown & Bridge, &&, Recall");
        field.Post(WM_COMMAND, 25004);
        EXPECT_EQ(field.Text(), "Crown & Bridge, &&, Recall, " + longest);
    });
}

TEST_F(KeywordField, EditTheseOpensTheEditorOverTheDialog)
{
    Store(patientList, {"Braces"});
    Store(imageList, {"Frontal"});
    Run([](DialogScript& script, const Dialog& dialog) {
        OpenMenu(script, dialog.Item(IDC_FIELD_IMAGE));
        script.ChooseMenuItem("Edit These...");
        const Dialog editor = script.WaitForDialog("Edit Keywords");
        EXPECT_FALSE(dialog.IsEnabled());
        EXPECT_THAT(editor.Item(IDC_KEYWORD_LIST).Items(), ElementsAre("Braces"));
        editor.Item(IDC_KEYWORD_TEXT).Type("Crown");
        editor.Press(IDC_KEYWORD_ADD);
        editor.Press(IDOK);
        editor.WaitForClosed();
        script.Settle(dialog.Handle());
        EXPECT_THAT(MenuOf(script, dialog.Item(IDC_FIELD_PATIENT)),
                    ElementsAre("Braces", "Crown", "-", "Edit These..."));
    });
}

} // namespace
