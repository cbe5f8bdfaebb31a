#include "tests/support/dialogquality.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <commctrl.h>

namespace
{

INT_PTR CALLBACK QuietProc(HWND, UINT, WPARAM, LPARAM)
{
    return FALSE;
}

// Of a dialog of selftest.rc.
std::string FindingsOf(int dialog)
{
    const INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_DATE_CLASSES};
    InitCommonControlsEx(&controls);
    const HWND window =
        CreateDialogA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(dialog), nullptr, QuietProc);
    EXPECT_NE(window, nullptr);
    ShowWindow(window, SW_SHOW);
    const std::string findings = veltest::DialogFindings(window);
    DestroyWindow(window);
    return findings;
}

TEST(DialogQualityTest, FindsEveryFaultOfAnUglyDialogAndNoneInATidyOne)
{
    EXPECT_EQ(FindingsOf(101), "");
    const std::string findings = FindingsOf(102);
    for (const char* expected :
         {"text is cut in Static 207", "overlap: Edit 201 and Button 208", "access key N twice",
          "leaves the dialog: Button 209", "no default button", "height of 11 units: Button 202",
          "the tab order jumps from Button 202", "crowded: Button 203"})
        EXPECT_THAT(findings, testing::HasSubstr(expected));
}

} // namespace
