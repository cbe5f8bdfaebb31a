#include "tests/maintenance/keywordfieldres.h"
#include "tests/maintenance/keywordpractice.h"

namespace
{

using testing::ElementsAre;
using veltest::Control;
using veltest::Dialog;
using veltest::DialogScript;

INT_PTR CALLBACK FieldsProc(HWND dialog, UINT message, WPARAM wParam, LPARAM)
{
    if (message == WM_COMMAND && LOWORD(wParam) == IDOK)
        EndDialog(dialog, IDOK);
    return message == WM_INITDIALOG;
}

/// A dialog with three keyword fields: for patients, for images and for no list.
class KeywordField : public KeywordPractice
{
protected:
    static void Run(const std::function<void(DialogScript&, const Dialog&)>& script)
    {
        const auto result = veltest::RunModal(
            [] {
                return DialogBoxParamA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(IDD_KEYWORD_FIELDS),
                                       nullptr, FieldsProc, 0);
            },
            [&](DialogScript& s) {
                const Dialog dialog = s.WaitForDialog("Keyword fields");
                script(s, dialog);
                dialog.Press(IDOK);
            });
        EXPECT_EQ(result, IDOK);
    }

    static void OpenMenu(const Control& field)
    {
        POINT point = {4, 4};
        ClientToScreen(field.Handle(), &point);
        field.Post(WM_CONTEXTMENU, reinterpret_cast<WPARAM>(field.Handle()), MAKELPARAM(point.x, point.y));
    }

    static void ChooseKeyword(DialogScript& script, const Control& field, const std::string& keyword)
    {
        OpenMenu(field);
        script.WaitForMenu();
        script.ChooseMenuItem(keyword);
        script.Settle(field.Handle());
    }

    static std::vector<std::string> MenuOf(DialogScript& script, const Control& field)
    {
        OpenMenu(field);
        std::vector<std::string> items = script.WaitForMenu();
        script.CloseMenu();
        script.Settle(field.Handle());
        return items;
    }

    // Loads the module, and with it the window class.
    const int m_moduleLoaded = SetArchivingAllowed(false);
};

TEST_F(KeywordField, OffersTheListThatItsTextNames)
{
    Store(dbKeywordsPatient, {"recall", "Braces"});
    Store(dbKeywordsImage, {"Frontal"});
    Run([](DialogScript& script, const Dialog& dialog) {
        EXPECT_EQ(dialog.Item(IDC_FIELD_PATIENT).Text(), "") << "the list's name is cleared";
        EXPECT_THAT(MenuOf(script, dialog.Item(IDC_FIELD_PATIENT)),
                    ElementsAre("recall", "Braces", "-", "Edit These..."));
        EXPECT_THAT(MenuOf(script, dialog.Item(IDC_FIELD_IMAGE)),
                    ElementsAre("Frontal", "-", "Edit These..."));
        EXPECT_THAT(MenuOf(script, dialog.Item(IDC_FIELD_NONE)), ElementsAre("-", "Edit These..."));

        // By the keyboard, next to the field's corner.
        const Control field = dialog.Item(IDC_FIELD_NONE);
        field.Post(WM_CONTEXTMENU, reinterpret_cast<WPARAM>(field.Handle()), MAKELPARAM(-1, -1));
        script.WaitForMenu();
        RECT corner = {};
        RECT menu = {};
        GetWindowRect(field.Handle(), &corner);
        GetWindowRect(script.WaitForWindowOfClass("#32768"), &menu);
        EXPECT_NEAR(menu.left, corner.left, 4);
        EXPECT_NEAR(menu.top, corner.top, 4);
        script.CloseMenu();
    });
    dbCPatients::Close();
    Run([](DialogScript& script, const Dialog& dialog) {
        EXPECT_THAT(MenuOf(script, dialog.Item(IDC_FIELD_PATIENT)), ElementsAre("-", "Edit These..."));
    });
}

TEST_F(KeywordField, AppendsTheChosenKeyword)
{
    Store(dbKeywordsPatient, {"Crown & Bridge", "Recall", "&&"});
    Run([](DialogScript& script, const Dialog& dialog) {
        const Control field = dialog.Item(IDC_FIELD_PATIENT);
        dialog.Item(IDC_FIELD_NONE).Focus();
        ChooseKeyword(script, field, "Crown && Bridge");
        EXPECT_EQ(field.Text(), "Crown & Bridge");
        EXPECT_TRUE(field.HasFocus());
        ChooseKeyword(script, field, "&&&&");
        EXPECT_EQ(field.Text(), "Crown & Bridge, &&");
        const auto end = static_cast<WORD>(field.Text().size());
        EXPECT_EQ(field.Send(EM_GETSEL), MAKELRESULT(end, end)) << "the caret stands at the end";
        ChooseKeyword(script, field, "Recall");
        EXPECT_EQ(field.Text(), "Crown & Bridge, &&, Recall");
    });
}

TEST_F(KeywordField, EditTheseOpensTheEditorOverTheDialog)
{
    Store(dbKeywordsPatient, {"Braces"});
    Store(dbKeywordsImage, {"Frontal"});
    Run([](DialogScript& script, const Dialog& dialog) {
        OpenMenu(dialog.Item(IDC_FIELD_IMAGE));
        script.WaitForMenu();
        script.ChooseMenuItem("Edit These...");
        const Dialog editor = script.WaitForDialog("Edit Keywords");
        EXPECT_FALSE(dialog.IsEnabled());
        EXPECT_THAT(editor.Item(IDC_KEYWORD_LIST).Items(), ElementsAre("Braces"));
        editor.Item(IDC_KEYWORD_TEXT).Type("Crown");
        editor.Press(IDC_KEYWORD_ADD);
        editor.Press(IDOK);
        editor.WaitForClosed();
        script.Settle(dialog.Handle());
        EXPECT_TRUE(dialog.IsEnabled());
        EXPECT_THAT(MenuOf(script, dialog.Item(IDC_FIELD_PATIENT)),
                    ElementsAre("Braces", "Crown", "-", "Edit These..."));
    });
}

TEST_F(KeywordField, OffersFiveThousandKeywordsAndLongOnes)
{
    std::vector<std::string> words;
    words.reserve(5000);
    for (int i = 0; i < 5000; ++i)
        words.push_back("keyword " + std::to_string(i));
    words[0] = std::string(500, 'k');
    Store(dbKeywordsPatient, words);
    Run([&](DialogScript& script, const Dialog& dialog) {
        const Control field = dialog.Item(IDC_FIELD_PATIENT);
        EXPECT_EQ(MenuOf(script, field).size(), 5002u);
        field.Post(WM_COMMAND, 30000);
        script.Settle(field.Handle());
        EXPECT_EQ(field.Text(), "keyword 4999");
        field.Post(WM_COMMAND, 25001);
        script.Settle(field.Handle());
        EXPECT_EQ(field.Text(), "keyword 4999, " + words[0]);
    });
}

TEST_F(KeywordField, IsAnEditFieldInEveryOtherWay)
{
    Run([](DialogScript&, const Dialog& dialog) {
        const Control field = dialog.Item(IDC_FIELD_PATIENT);
        field.Type("typed");
        EXPECT_EQ(field.Text(), "typed");
        field.Send(EM_SETLIMITTEXT, 7);
        field.Type(" text");
        EXPECT_EQ(field.Text(), "typed t");
    });
}

} // namespace
