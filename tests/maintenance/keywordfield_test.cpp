#include "tests/maintenance/keywordfieldres.h"
#include "tests/maintenance/keywordpractice.h"

namespace
{

using testing::ElementsAre;
using veltest::Control;

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
    Store(dbKeywordsPatient, {"Crown & Bridge", "Recall", "&&", longest});
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
    Store(dbKeywordsPatient, {"Braces"});
    Store(dbKeywordsImage, {"Frontal"});
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
