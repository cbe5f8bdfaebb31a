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

TEST(AnchorTest, PlacesFollowTheirEdges)
{
    const struct
    {
        const char* what;
        mfcEdges edges;
        CRect expected;
    } cases[] = {
        {"stays", static_cast<mfcEdges>(mfcLeft | mfcTop), {10, 20, 30, 40}},
        {"moves right", mfcTopRight, {110, 20, 130, 40}},
        {"moves to the corner", mfcBottomRight, {110, 70, 130, 90}},
        {"grows in width", mfcStretchTop, {10, 20, 130, 40}},
        {"grows below", mfcStretchBottom, {10, 70, 130, 90}},
        {"grows in both", mfcStretchAll, {10, 20, 130, 90}},
        {"stays in the middle", mfcTop, {60, 20, 80, 40}},
    };
    for (const auto& test : cases)
    {
        EXPECT_EQ(mfcMovePlace({10, 20, 30, 40}, test.edges, {100, 50}), test.expected) << test.what;
        EXPECT_EQ(mfcMovePlace({10, 20, 30, 40}, test.edges, {0, 0}), CRect(10, 20, 30, 40)) << test.what;
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
        {
            RememberSize("Flex");
        }
    }

    std::vector<UINT> m_helpIds;

protected:
    BOOL OnHelpKey(UINT nHelpID) override
    {
        m_helpIds.push_back(nHelpID);
        return TRUE;
    }

    afx_msg void OnUpdateAdd(CCmdUI* pCmdUI)
    {
        pCmdUI->Enable(GetDlgItem(IDC_FIELD)->GetWindowTextLength() > 0);
    }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(FlexDialog, mfcCDialog)
ON_UPDATE_COMMAND_UI(IDC_ADD, &FlexDialog::OnUpdateAdd)
END_MESSAGE_MAP()

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
    const INT_PTR result = veltest::RunModal(
        [&] { return dialog.DoModal(); },
        [](veltest::DialogScript& script) {
            const veltest::Dialog shown = script.WaitForDialog("Resizable");
            const HWND window = shown.Handle();
            EXPECT_EQ(veltest::DialogFindings(window), "");
            EXPECT_NE(::GetWindowLongPtr(window, GWL_STYLE) & WS_THICKFRAME, 0);
            CRect client;
            ::GetClientRect(window, &client);
            CRect expected(0, 0, 200, 120);
            ::MapDialogRect(window, &expected);
            EXPECT_EQ(client.Size(), expected.Size());

            const CRect start = PlaceOf(window);
            const CRect list = PlaceOf(shown.Item(IDC_LIST).Handle());
            const CRect ok = PlaceOf(shown.Item(IDOK).Handle());
            Resize(script, window, start.Width() + 100, start.Height() + 60);
            EXPECT_EQ(PlaceOf(shown.Item(IDC_LIST).Handle()).Size(),
                      CSize(list.Width() + 100, list.Height() + 60));
            EXPECT_EQ(PlaceOf(shown.Item(IDOK).Handle()), ok + CPoint(100, 60));
            EXPECT_EQ(veltest::DialogFindings(window), "");
            veltest::SavePicture(window, "flexdialog");

            CRect whole = PlaceOf(window);
            EXPECT_EQ(::SendMessage(window, WM_NCHITTEST, 0, MAKELPARAM(whole.right - 8, whole.bottom - 8)),
                      HTBOTTOMRIGHT);
            MINMAXINFO info = {};
            ::SendMessage(window, WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&info));
            EXPECT_EQ(CSize(info.ptMinTrackSize.x, info.ptMinTrackSize.y), start.Size());
            Resize(script, window, start.Width(), start.Height());
            EXPECT_EQ(PlaceOf(shown.Item(IDC_LIST).Handle()), list);
            shown.Press(IDOK);
        });
    EXPECT_EQ(result, IDOK);
}

TEST(FlexDialogTest, KeepsItsSizeWithoutAnchors)
{
    mfcCDialog dialog(IDD_FIXED);
    veltest::RunModal([&] { return dialog.DoModal(); },
                      [](veltest::DialogScript& script) {
                          const veltest::Dialog shown = script.WaitForDialog("Fixed");
                          EXPECT_EQ(::GetWindowLongPtr(shown.Handle(), GWL_STYLE) & WS_THICKFRAME, 0);
                          EXPECT_EQ(veltest::DialogFindings(shown.Handle()), "");
                          shown.Item(IDOK).PostKey(VK_F1); // nobody answers: the key goes on and does no harm
                          shown.Press(IDCANCEL);
                      });
}

TEST(FlexDialogTest, UpdatesControlsWheneverItIsIdle)
{
    FlexDialog dialog;
    veltest::RunModal([&] { return dialog.DoModal(); },
                      [](veltest::DialogScript& script) {
                          const veltest::Dialog shown = script.WaitForDialog("Resizable");
                          const veltest::Control add = shown.Item(IDC_ADD);
                          script.WaitUntil("Add to be disabled", [&] { return !add.IsEnabled(); });
                          shown.Item(IDC_FIELD).Type("x");
                          script.WaitUntil("Add to be enabled", [&] { return add.IsEnabled(); });
                          shown.Item(IDC_FIELD).Replace("");
                          script.WaitUntil("Add to be disabled", [&] { return !add.IsEnabled(); });
                          shown.Press(IDCANCEL);
                      });
}

TEST(FlexDialogTest, AnswersHelpFromKeyAndButton)
{
    FlexDialog dialog;
    EXPECT_EQ(dialog.GetHelpID(), 0x20000U + IDD_FLEX);
    veltest::RunModal([&] { return dialog.DoModal(); },
                      [&](veltest::DialogScript& script) {
                          const veltest::Dialog shown = script.WaitForDialog("Resizable");
                          shown.Item(IDC_FIELD).PressKey(VK_F1);
                          script.SettleIdle(shown.Handle());
                          EXPECT_EQ(dialog.m_helpIds.size(), 1U);
                          shown.Press(IDHELP);
                          EXPECT_EQ(dialog.m_helpIds, std::vector<UINT>(2, 0x20000U + IDD_FLEX));
                          shown.Press(IDCANCEL);
                      });
}

TEST(FlexDialogTest, RemembersItsSizeOnlyWhenAsked)
{
    const veltest::TemporaryPractice practice;
    for (const bool remembers : {false, true})
    {
        CSize first;
        CSize second;
        for (CSize* size : {&first, &second})
        {
            FlexDialog dialog(remembers);
            veltest::RunModal([&] { return dialog.DoModal(); },
                              [&](veltest::DialogScript& script) {
                                  const veltest::Dialog shown = script.WaitForDialog("Resizable");
                                  *size = PlaceOf(shown.Handle()).Size();
                                  Resize(script, shown.Handle(), size->cx + 50, size->cy + 40);
                                  shown.Press(IDCANCEL);
                              });
        }
        EXPECT_EQ(second, remembers ? CSize(first.cx + 50, first.cy + 40) : first);
    }
    for (const char* damaged : {"", "nonsense", "1,1", "999999999,999999999", "-5,7"})
    {
        practice.Set("Dialogs", "Flex", damaged);
        FlexDialog dialog(true);
        veltest::RunModal([&] { return dialog.DoModal(); },
                          [&](veltest::DialogScript& script) {
                              const veltest::Dialog shown = script.WaitForDialog("Resizable");
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
