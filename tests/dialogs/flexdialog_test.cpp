#include "suite/dialogs/mfcdialog.h"
#include "tests/dialogs/dialogstestres.h"
#include "tests/support/dialogquality.h"
#include "tests/support/dialogscript.h"
#include "tests/support/mfctestprogram.h"
#include "tests/support/picture.h"
#include "tests/support/temporarypractice.h"

#include <gtest/gtest.h>

VEL_MFC_TEST_PROGRAM();

namespace
{

using veltest::Dialog;
using veltest::DialogScript;

TEST(AnchorTest, PlacesFollowTheirEdges)
{
    const std::pair<mfcEdges, CRect> cases[] = {
        {static_cast<mfcEdges>(mfcLeft | mfcTop), {10, 20, 30, 40}}, // stays
        {mfcTopRight, {110, 20, 130, 40}},
        {mfcBottomRight, {110, 70, 130, 90}},
        {mfcStretchTop, {10, 20, 130, 40}},
        {mfcStretchBottom, {10, 70, 130, 90}},
        {mfcStretchAll, {10, 20, 130, 90}},
        {mfcTop, {60, 20, 80, 40}}, // stays in the middle
    };
    for (const auto& [edges, expected] : cases)
    {
        EXPECT_EQ(mfcMovePlace({10, 20, 30, 40}, edges, {100, 50}), expected) << edges;
        EXPECT_EQ(mfcMovePlace({10, 20, 30, 40}, edges, {0, 0}), CRect(10, 20, 30, 40)) << edges;
    }
}

constexpr mfcAnchor flexAnchors[] = {
    {IDC_FIELD, mfcStretchTop}, {IDC_ADD, mfcTopRight},   {IDC_LIST, mfcStretchAll}, {IDOK, mfcBottomRight},
    {IDCANCEL, mfcBottomRight}, {IDHELP, mfcBottomRight}, {12345, mfcStretchAll}, // no such control
};

class FlexDialog : public mfcCDialog
{
public:
    explicit FlexDialog(bool remembers = false) : mfcCDialog(IDD_FLEX)
    {
        SetAnchors(flexAnchors);
        if (remembers)
            RememberSize("Flex");
    }
};

INT_PTR Show(CDialog& dialog, const std::function<void(DialogScript&, const Dialog&)>& script)
{
    return veltest::RunDialog([&] { return dialog.DoModal(); }, "", script);
}

CRect PlaceOf(HWND window)
{
    CRect place;
    ::GetWindowRect(window, &place);
    return place;
}

void Resize(veltest::DialogScript& script, HWND window, int width, int height)
{
    ::SetWindowPos(window, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER | SWP_ASYNCWINDOWPOS);
    script.Settle(window);
    script.SettleIdle(window);
}

TEST(FlexDialogTest, GrowsWithItsControlsAndNeverShrinksBelowItsTemplate)
{
    FlexDialog dialog;
    const INT_PTR result = Show(dialog, [](DialogScript& script, const Dialog& shown) {
        const HWND window = shown.Handle();
        CRect client;
        ::GetClientRect(window, &client);
        CRect expected(0, 0, 200, 120);
        ::MapDialogRect(window, &expected);
        EXPECT_EQ(client.Size(), expected.Size());

        const CRect start = PlaceOf(window);
        const CRect list = PlaceOf(shown.Item(IDC_LIST).Handle());
        const CRect ok = PlaceOf(shown.Item(IDOK).Handle());
        Resize(script, window, start.Width() + 100, start.Height() + 60);
        EXPECT_EQ(PlaceOf(shown.Item(IDC_LIST).Handle()).Size(), list.Size() + CSize(100, 60));
        EXPECT_EQ(PlaceOf(shown.Item(IDOK).Handle()), ok + CPoint(100, 60));
        veltest::SavePicture(window, "flexdialog");

        const CRect whole = PlaceOf(window);
        EXPECT_EQ(::SendMessage(window, WM_NCHITTEST, 0, MAKELPARAM(whole.right - 8, whole.bottom - 8)),
                  HTBOTTOMRIGHT);
        MINMAXINFO info = {};
        ::SendMessage(window, WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&info));
        EXPECT_EQ(CSize(info.ptMinTrackSize.x, info.ptMinTrackSize.y), start.Size());
        Resize(script, window, start.Width(), start.Height());
        EXPECT_EQ(PlaceOf(shown.Item(IDC_LIST).Handle()), list);
        veltest::ExpectWellMade(shown, "flexdialog-small", {.grows = true});
        shown.Press(IDOK);
    });
    EXPECT_EQ(result, IDOK);
}

TEST(FlexDialogTest, KeepsItsSizeWithoutAnchors)
{
    mfcCDialog dialog(IDD_FIXED);
    Show(dialog, [](DialogScript&, const Dialog& shown) {
        EXPECT_EQ(::GetWindowLongPtr(shown.Handle(), GWL_STYLE) & WS_THICKFRAME, 0);
        shown.Press(IDCANCEL);
    });
}

TEST(FlexDialogTest, RemembersItsSizeOnlyWhenAsked)
{
    const veltest::TemporaryPractice practice;
    for (const bool remembers : {false, true})
    {
        CSize sizes[2] = {{0, 0}, {0, 0}};
        for (CSize& size : sizes)
        {
            FlexDialog dialog(remembers);
            Show(dialog, [&](DialogScript& script, const Dialog& shown) {
                size = PlaceOf(shown.Handle()).Size();
                Resize(script, shown.Handle(), size.cx + 50, size.cy + 40);
                shown.Press(IDCANCEL);
            });
        }
        EXPECT_EQ(sizes[1], remembers ? sizes[0] + CSize(50, 40) : sizes[0]);
    }
    for (const char* damaged : {"", "nonsense", "1,1", "999999999,999999999", "-5,7"})
    {
        practice.Set("Dialogs", "Flex", damaged);
        FlexDialog dialog(true);
        Show(dialog, [&](DialogScript&, const Dialog& shown) {
            CRect smallest(0, 0, 200, 120);
            ::MapDialogRect(shown.Handle(), &smallest);
            const CRect place = PlaceOf(shown.Handle());
            EXPECT_GE(place.Width(), smallest.Width()) << damaged;
            EXPECT_LE(place.Width(), ::GetSystemMetrics(SM_CXSCREEN)) << damaged;
            shown.Press(IDCANCEL);
        });
    }
}

} // namespace
