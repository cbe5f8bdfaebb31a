#include "tests/support/dialogscript.h"
#include "tests/support/selftest/selftestres.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <commctrl.h>

namespace
{

INT_PTR CALLBACK AskingProc(HWND dialog, UINT message, WPARAM wParam, LPARAM)
{
    if (message != WM_COMMAND)
        return message == WM_INITDIALOG ? TRUE : FALSE;
    switch (LOWORD(wParam))
    {
    case IDC_ADD:
        MessageBoxA(dialog, "Add it?", "Question", MB_YESNO);
        return TRUE;
    case IDOK:
    case IDCANCEL:
        EndDialog(dialog, LOWORD(wParam));
        return TRUE;
    default:
        return FALSE;
    }
}

INT_PTR Ask()
{
    const INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_DATE_CLASSES};
    InitCommonControlsEx(&controls);
    return DialogBoxParamA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(IDD_ASKING), nullptr, AskingProc, 0);
}

// What a broken test must lead to: a failure that names the cause, and an ended modal call.
TEST(DialogScriptTest, FailingScriptsFailTheTestAndEndTheModalCall)
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
