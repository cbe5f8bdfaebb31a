#include "tests/support/dialogscript.h"
#include "tests/support/picture.h"
#include "tests/support/selftest/selftestres.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <commctrl.h>
#include <prsht.h>

#include <filesystem>

namespace
{

struct Asked
{
    std::string name;
    int kindChanges = 0;
    int dateChanges = 0;
    int helpKeys = 0;
    UINT menuCommand = 0;
    int added = 0;
};

Asked* g_asked = nullptr;

void ShowMenu(HWND dialog)
{
    const HMENU menu = CreatePopupMenu();
    AppendMenuA(menu, MF_STRING, 1, "aligner");
    AppendMenuA(menu, MF_SEPARATOR, 0, nullptr);
    AppendMenuA(menu, MF_STRING, 2, "recall");
    g_asked->menuCommand =
        static_cast<UINT>(TrackPopupMenu(menu, TPM_RETURNCMD | TPM_NONOTIFY, 10, 10, 0, dialog, nullptr));
    DestroyMenu(menu);
}

INT_PTR CALLBACK AskingProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_INITDIALOG:
        SetDlgItemTextA(dialog, IDC_NAME, "Ann");
        for (const char* item : {"first", "second", "third"})
        {
            SendDlgItemMessageA(dialog, IDC_KIND, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(item));
            SendDlgItemMessageA(dialog, IDC_WORDS, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(item));
        }
        return TRUE;
    case WM_HELP:
        ++g_asked->helpKeys;
        return TRUE;
    case WM_NOTIFY:
        g_asked->dateChanges += reinterpret_cast<NMHDR*>(lParam)->code == DTN_DATETIMECHANGE ? 1 : 0;
        return FALSE;
    case WM_COMMAND:
        switch (LOWORD(wParam))
        {
        case IDC_KIND:
            g_asked->kindChanges += HIWORD(wParam) == CBN_SELCHANGE ? 1 : 0;
            return TRUE;
        case IDC_ADD:
            g_asked->added += MessageBoxA(dialog, "Add it?", "Question",
                                          MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2) == IDYES
                                  ? 1
                                  : 0;
            return TRUE;
        case IDC_MENU:
            ShowMenu(dialog);
            return TRUE;
        case IDOK:
            g_asked->name = veltest::WindowText(GetDlgItem(dialog, IDC_NAME));
            EndDialog(dialog, IDOK);
            return TRUE;
        case IDCANCEL:
            EndDialog(dialog, IDCANCEL);
            return TRUE;
        }
        return FALSE;
    default:
        return FALSE;
    }
}

class DialogScriptTest : public testing::Test
{
protected:
    DialogScriptTest()
    {
        g_asked = &m_asked;
    }
    ~DialogScriptTest() override
    {
        g_asked = nullptr;
    }

    static INT_PTR Ask()
    {
        const INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_DATE_CLASSES | ICC_TAB_CLASSES};
        InitCommonControlsEx(&controls);
        return DialogBoxParamA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(IDD_ASKING), nullptr, AskingProc,
                               0);
    }

    Asked m_asked;
};

TEST_F(DialogScriptTest, TypesChoosesAnswersAndCloses)
{
    const INT_PTR result = veltest::RunModal(Ask, [&](veltest::DialogScript& script) {
        const veltest::Dialog dialog = script.WaitForDialog("Asking");
        EXPECT_EQ(dialog.ByLabel("Name:").Text(), "Ann");
        dialog.Item(IDC_NAME).Replace("Eva");
        dialog.Item(IDC_NAME).Type(" M\xFCller");
        dialog.ByLabel("&Kind:").Choose("second");
        EXPECT_EQ(dialog.Item(IDC_KIND).SelectedItem(), "second");
        dialog.Item(IDC_WORDS).SelectItems({0, 2});
        EXPECT_EQ(dialog.Item(IDC_WORDS).Send(LB_GETSELCOUNT), 2);
        dialog.Item(IDC_DATE).SetDate(2011, 3, 4);
        EXPECT_EQ(dialog.Item(IDC_DATE).Date().wDay, 4);

        dialog.Press("Add...");
        const veltest::Dialog box = script.WaitForBox("Add it?");
        EXPECT_FALSE(dialog.IsEnabled());
        EXPECT_EQ(box.Title(), "Question");
        EXPECT_EQ(box.Buttons(), (std::vector<std::string>{"Yes", "No"}));
        EXPECT_EQ(box.DefaultButton(), "No");
        EXPECT_TRUE(box.HasIcon(IDI_QUESTION));
        EXPECT_FALSE(box.HasIcon(IDI_ERROR));
        script.AnswerBox("Add it?", IDYES);

        EXPECT_TRUE(veltest::SavePicture(dialog.Handle(), "selftest-asking"));
        dialog.Press(IDOK);
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_EQ(m_asked.name, "Eva M\xFCller");
    EXPECT_EQ(m_asked.kindChanges, 1);
    EXPECT_EQ(m_asked.dateChanges, 1);
    EXPECT_EQ(m_asked.added, 1);
    EXPECT_GT(std::filesystem::file_size(veltest::PictureFolder() + "\\selftest-asking.png"), 1000U);
}

TEST_F(DialogScriptTest, PressesRealKeys)
{
    veltest::RunModal(Ask, [&](veltest::DialogScript& script) {
        const veltest::Dialog dialog = script.WaitForDialog("Asking");
        dialog.Item(IDC_NAME).Focus();
        dialog.PressKey(VK_TAB);
        EXPECT_TRUE(dialog.Item(IDC_ADD).HasFocus());
        dialog.PressAccessKey('k');
        EXPECT_TRUE(dialog.Item(IDC_KIND).HasFocus());
        dialog.PressF1();
        script.WaitUntil("help", [&] { return m_asked.helpKeys == 1; });
        dialog.PressKey(VK_ESCAPE);
        dialog.WaitForClosed();
    });
}

TEST_F(DialogScriptTest, ChoosesFromPopupMenus)
{
    veltest::RunModal(Ask, [&](veltest::DialogScript& script) {
        const veltest::Dialog dialog = script.WaitForDialog("Asking");
        dialog.Press(IDC_MENU);
        EXPECT_EQ(script.WaitForMenu(), (std::vector<std::string>{"aligner", "-", "recall"}));
        script.ChooseMenuItem("recall");
        EXPECT_EQ(m_asked.menuCommand, 2U);
        dialog.Press(IDC_MENU);
        script.CloseMenu();
        dialog.Close();
    });
    EXPECT_EQ(m_asked.menuCommand, 0U);
}

INT_PTR CALLBACK PageProc(HWND, UINT, WPARAM, LPARAM)
{
    return FALSE;
}

TEST_F(DialogScriptTest, GoesThroughPropertyPages)
{
    PROPSHEETPAGEA pages[2] = {};
    const UINT templates[] = {IDD_PAGE_ONE, IDD_PAGE_TWO};
    for (std::size_t page = 0; page < 2; ++page)
    {
        pages[page].dwSize = sizeof pages[page];
        pages[page].hInstance = GetModuleHandleA(nullptr);
        pages[page].pszTemplate = MAKEINTRESOURCEA(templates[page]);
        pages[page].pfnDlgProc = PageProc;
    }
    PROPSHEETHEADERA header = {};
    header.dwSize = sizeof header;
    header.dwFlags = PSH_PROPSHEETPAGE | PSH_NOAPPLYNOW;
    header.pszCaption = "Pages";
    header.nPages = 2;
    header.ppsp = pages;
    const INT_PTR result =
        veltest::RunModal([&] { return PropertySheetA(&header); },
                          [](veltest::DialogScript& script) {
                              const veltest::Dialog sheet = script.WaitForDialog("Pages");
                              ASSERT_EQ(sheet.PageCount(), 2);
                              sheet.Item(IDC_NAME).Type("x");
                              sheet.SelectPage(1);
                              EXPECT_EQ(sheet.PageIndex(), 1);
                              sheet.Press(IDC_ADD);
                              EXPECT_TRUE(sheet.ByText("Wanted").IsChecked());
                              sheet.ClickTab(0);
                              EXPECT_EQ(sheet.Page().ByLabel("Name:").Text(), "x");
                              EXPECT_EQ(veltest::SavePagePictures(script, sheet, "selftest"), 2);
                              sheet.Press(IDOK);
                          });
    EXPECT_EQ(result, 1);
}

// What a broken test must lead to: a failure that names the cause, and an ended modal call.
TEST_F(DialogScriptTest, FailingScriptsFailTheTestAndEndTheModalCall)
{
    const auto waitsInVain = [](veltest::DialogScript& script) {
        script.SetPatience(200);
        script.WaitForDialog("Another title");
    };
    EXPECT_NONFATAL_FAILURE_ON_ALL_THREADS(EXPECT_EQ(veltest::RunModal(Ask, waitsInVain), IDCANCEL),
                                           "waited in vain");

    const auto leavesBoxOpen = [](veltest::DialogScript& script) {
        script.SetPatience(400);
        script.WaitForDialog("Asking").Press(IDC_ADD);
        script.WaitForBox();
    };
    EXPECT_NONFATAL_FAILURE_ON_ALL_THREADS(EXPECT_EQ(veltest::RunModal(Ask, leavesBoxOpen), IDCANCEL),
                                           "left windows open");

    const auto waitsAfterTheEnd = [](veltest::DialogScript& script) {
        script.WaitForDialog("Asking").Press(IDCANCEL);
        script.WaitForBox();
    };
    EXPECT_NONFATAL_FAILURE_ON_ALL_THREADS(veltest::RunModal(Ask, waitsAfterTheEnd),
                                           "the modal call returned");
}

} // namespace
