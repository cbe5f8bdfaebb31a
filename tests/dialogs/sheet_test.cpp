#include "suite/dialogs/mfccoloredtabctrl.h"
#include "suite/dialogs/mfcpropertypage.h"
#include "tests/dialogs/dialogstestres.h"
#include "tests/support/dialogscript.h"
#include "tests/support/picture.h"

#include <gtest/gtest.h>

namespace
{

class ColoredSheet : public CPropertySheet
{
public:
    ColoredSheet() : CPropertySheet("Coloured")
    {
        m_psh.dwFlags |= PSH_NOAPPLYNOW;
        AddPage(&m_names);
        AddPage(&m_notes);
    }

    BOOL OnInitDialog() override
    {
        const BOOL result = CPropertySheet::OnInitDialog();
        m_tabs.SubclassWindow(GetTabControl()->m_hWnd);
        return result;
    }

    mfcCPropertyPage m_names{IDD_PAGE_NAMES};
    mfcCPropertyPage m_notes{IDD_PAGE_NOTES};
    CMfcColoredTabCtrl m_tabs;
};

COLORREF PixelOf(HWND window, int x, int y)
{
    ::RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    const HDC context = ::GetDC(window);
    const COLORREF color = ::GetPixel(context, x, y);
    ::ReleaseDC(window, context);
    return color;
}

TEST(ColoredSheetTest, ShowsItsTabsAndTurnsThem)
{
    ColoredSheet sheet;
    const INT_PTR result = veltest::RunDialog(
        [&] { return sheet.DoModal(); }, "Coloured",
        [&](veltest::DialogScript& script, const veltest::Dialog& shown) {
            ASSERT_EQ(shown.PageCount(), 2);
            const HWND tabs = sheet.m_tabs.m_hWnd;

            // The selected tab carries the line in the tab's colour, the other one is only tinted.
            RECT first = {};
            RECT second = {};
            ::SendMessage(tabs, TCM_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&first));
            ::SendMessage(tabs, TCM_GETITEMRECT, 1, reinterpret_cast<LPARAM>(&second));
            const COLORREF highlight = ::GetSysColor(COLOR_HIGHLIGHT);
            EXPECT_EQ(PixelOf(tabs, first.left + 5, first.top), highlight);
            EXPECT_NE(PixelOf(tabs, second.left + 5, second.top), highlight);
            EXPECT_NE(PixelOf(tabs, second.left + 5, second.top + 3), ::GetSysColor(COLOR_WINDOW));

            shown.ClickTab(1);
            EXPECT_EQ(shown.PageIndex(), 1);
            EXPECT_EQ(PixelOf(tabs, second.left + 5, second.top), highlight);
            // The border of the selected tab stands two pixels outside its place.
            EXPECT_EQ(PixelOf(tabs, second.left - 2, second.bottom - 4), ::GetSysColor(COLOR_BTNSHADOW));
            EXPECT_EQ(veltest::SavePagePictures(script, shown, "coloredsheet"), 2);

            // By keyboard: the strip takes the focus, shows it and changes pages by cursor keys.
            veltest::Control(script, tabs).Focus();
            script.PressKey(tabs, VK_LEFT);
            EXPECT_EQ(shown.PageIndex(), 0);
            veltest::SavePicture(shown.Handle(), "coloredsheet-focus");
            shown.Press(IDOK);
        });
    EXPECT_EQ(result, IDOK);
}

} // namespace
