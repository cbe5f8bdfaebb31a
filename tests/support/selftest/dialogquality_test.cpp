#include "tests/support/dialogquality.h"
#include "tests/support/selftest/selftestres.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <commctrl.h>

namespace
{

using testing::Contains;
using testing::HasSubstr;

INT_PTR CALLBACK QuietProc(HWND, UINT, WPARAM, LPARAM)
{
    return FALSE;
}

HWND Create(int dialog)
{
    const INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_DATE_CLASSES};
    InitCommonControlsEx(&controls);
    const HWND window =
        CreateDialogA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(dialog), nullptr, QuietProc);
    ShowWindow(window, SW_SHOW);
    return window;
}

TEST(DialogQualityTest, FindsNothingInATidyDialog)
{
    const HWND dialog = Create(IDD_ASKING);
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(veltest::DialogFindings(dialog), "");
    DestroyWindow(dialog);
}

TEST(DialogQualityTest, FindsEveryFaultOfAnUglyDialog)
{
    const HWND dialog = Create(IDD_UGLY);
    ASSERT_NE(dialog, nullptr);
    const std::vector<std::string> findings = veltest::CheckDialogQuality(dialog);
    for (const char* expected :
         {"text is cut in Static 207", "overlap: Edit 201 and Button 208", "access key N twice",
          "leaves the dialog: Button 209", "no default button", "height of 11 units: Button 202",
          "the tab order jumps from Button 202", "crowded: Button 203"})
    {
        EXPECT_THAT(findings, Contains(HasSubstr(expected)));
    }
    DestroyWindow(dialog);
}

} // namespace
