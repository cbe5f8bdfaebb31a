// The buttons with images, in the dialog that uses the most of what they can do.

#include "app/exports/veldlgs.h"
#include "maintenance/maintenanceres.h"
#include "tests/support/dialogscript.h"
#include "tests/support/temporarypractice.h"

#include <gtest/gtest.h>

namespace
{

using veltest::Dialog;
using veltest::DialogScript;

// Runs the delete dialog without a patient, where OK is disabled, or on one that is not stored.
__int64 RunDelete(dbCPatient* pPatient, const std::function<void(DialogScript&, const Dialog&)>& script)
{
    const veltest::TemporaryPractice practice;
    __int64 result = 0;
    unsigned operation = 0;
    veltest::RunModal(
        [&] {
            DeleteDlg(nullptr, 0, pPatient, 0, 0, 0, "", result, operation);
            return 0;
        },
        [&](DialogScript& s) { script(s, s.WaitForDialog("Delete")); });
    return result;
}

// How many pixels of the button show a colour, not a grey.
int ColouredPixels(HWND button)
{
    RedrawWindow(button, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    RECT client = {};
    GetClientRect(button, &client);
    const HDC context = GetDC(button);
    int count = 0;
    for (int y = 4; y < client.bottom - 4; ++y)
        for (int x = 4; x < client.right - 4; ++x)
        {
            const COLORREF colour = GetPixel(context, x, y);
            const int red = GetRValue(colour);
            count += std::abs(red - GetGValue(colour)) > 40 || std::abs(red - GetBValue(colour)) > 40 ? 1 : 0;
        }
    ReleaseDC(button, context);
    return count;
}

bool IsDefault(const Dialog& dialog, int id)
{
    return veltest::IsDefaultButton(dialog.Item(id).Handle());
}

TEST(BitmapButton, ShowsItsImageAndAnotherWhenDisabled)
{
    RunDelete(nullptr, [](DialogScript& script, const Dialog& dialog) {
        const auto ok = dialog.Item(IDOK);
        EXPECT_FALSE(ok.IsEnabled());
        EXPECT_EQ(ColouredPixels(ok.Handle()), 0);
        for (const int id : {IDCANCEL, IDHELP})
            EXPECT_GT(ColouredPixels(dialog.Item(id).Handle()), 20) << id;
        EnableWindow(ok.Handle(), TRUE);
        script.Settle(dialog.Handle());
        EXPECT_GT(ColouredPixels(ok.Handle()), 20);
        EXPECT_EQ(ok.Text(), "OK");
        EXPECT_EQ(dialog.Item(IDHELP).Text(), "&?");
        dialog.Press(IDCANCEL);
    });
}

TEST(BitmapButton, IsTheDefaultWhileItHasTheFocus)
{
    dbCPatient patient;
    dbCTimepoint timepoint;
    patient.GetTimepoints().Add(&patient, timepoint, TRUE, TRUE);
    const auto result = RunDelete(&patient, [](DialogScript& script, const Dialog& dialog) {
        EXPECT_TRUE(IsDefault(dialog, IDOK));
        dialog.PressKey(VK_TAB);
        EXPECT_TRUE(dialog.Item(IDOK).HasFocus());
        dialog.PressKey(VK_TAB);
        EXPECT_TRUE(dialog.Item(IDCANCEL).HasFocus());
        EXPECT_TRUE(IsDefault(dialog, IDCANCEL));
        EXPECT_FALSE(IsDefault(dialog, IDOK));
        // Away from the buttons OK is the default again.
        dialog.Item(IDC_DELETE_TIMEPOINT).Focus();
        EXPECT_TRUE(IsDefault(dialog, IDOK));
        dialog.Item(IDOK).Focus();
        dialog.PressKey(VK_SPACE);
        script.AnswerBox("", IDNO);
        dialog.Item(IDCANCEL).Focus();
        dialog.PressKey(VK_RETURN);
    });
    EXPECT_EQ(result, IDCANCEL);
}

} // namespace
