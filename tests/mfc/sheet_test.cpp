// Property sheets with real windows: the sheet's own OK, vetoes of pages, exceptions, keys.
#include "mfcprogram.h"
#include "mfctestres.h"
#include "tests/support/dialogscript.h"

#include <afxdlgs.h>

#include <gtest/gtest.h>

#include <stdexcept>

namespace
{
using veltest::Dialog;
using veltest::DialogScript;
using veltest::RunModal;

class CTestPage : public CPropertyPage
{
public:
    explicit CTestPage(UINT nIDTemplate) : CPropertyPage(nIDTemplate)
    {
    }

    bool m_leaves = true;
    bool m_applies = true;
    bool m_throwsOnApply = false;
    bool m_throwsOnInit = false;
    int m_applied = 0;
    int m_cancelled = 0;

    BOOL OnInitDialog() override
    {
        CPropertyPage::OnInitDialog();
        if (m_throwsOnInit)
        {
            throw std::runtime_error("page");
        }
        return TRUE;
    }
    BOOL OnKillActive() override
    {
        return m_leaves && CPropertyPage::OnKillActive();
    }
    BOOL OnApply() override
    {
        ++m_applied;
        if (m_throwsOnApply)
        {
            throw std::runtime_error("apply");
        }
        return m_applies;
    }
    void OnCancel() override
    {
        ++m_cancelled;
    }
};

class CTestSheet : public CPropertySheet
{
public:
    explicit CTestSheet(CWnd* pParent = nullptr) : CPropertySheet("Sheet", pParent)
    {
        AddPage(&m_one);
        AddPage(&m_two);
        m_psh.dwFlags |= PSH_NOAPPLYNOW;
    }
    CTestPage m_one{IDD_PAGE_ONE};
    CTestPage m_two{IDD_PAGE_TWO};
    bool m_ownOK = false; // the sheet's own handler answers OK
    int m_okCount = 0;
    int m_okResult = 0; // 0: stays open

    BOOL OnCmdMsg(UINT nID, int nCode, void* pExtra, AFX_CMDHANDLERINFO* pHandlerInfo) override
    {
        // Without the wish for an own OK the map's entry is passed over.
        if (nID == IDOK && nCode == CN_COMMAND && !m_ownOK)
        {
            return FALSE;
        }
        return CPropertySheet::OnCmdMsg(nID, nCode, pExtra, pHandlerInfo);
    }

protected:
    void OnOK()
    {
        ++m_okCount;
        if (m_okResult != 0)
        {
            EndDialog(m_okResult);
        }
    }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(CTestSheet, CPropertySheet)
ON_COMMAND(IDOK, &CTestSheet::OnOK)
END_MESSAGE_MAP()

class MfcSheet : public ::testing::Test
{
protected:
    void SetUp() override
    {
        TestApp().m_thrown.clear();
    }
    static INT_PTR Run(CTestSheet& sheet, const std::function<void(DialogScript&, Dialog&)>& user)
    {
        return RunModal([&] { return sheet.DoModal(); },
                        [&](DialogScript& script) {
                            Dialog open = script.WaitForDialog("Sheet");
                            user(script, open);
                        });
    }
};

TEST_F(MfcSheet, AppliesItsPagesOnOK)
{
    CTestSheet sheet;
    EXPECT_EQ(Run(sheet, [](DialogScript&, Dialog& open) { open.Press(IDOK); }), IDOK);
    EXPECT_EQ(sheet.m_one.m_applied, 1);
    EXPECT_EQ(sheet.m_one.m_cancelled, 0);
    EXPECT_EQ(sheet.m_hWnd, nullptr);
    EXPECT_EQ(sheet.m_one.m_hWnd, nullptr);
}

TEST_F(MfcSheet, StaysOpenUntilEveryPageApplies)
{
    for (const bool throws : {false, true})
    {
        CTestSheet sheet;
        sheet.m_one.m_applies = throws;
        sheet.m_one.m_throwsOnApply = throws;
        EXPECT_EQ(Run(sheet,
                      [&](DialogScript& script, Dialog& open) {
                          open.Press(IDOK);
                          script.Settle(open.Handle());
                          EXPECT_TRUE(open.IsOpen());
                          EXPECT_EQ(sheet.m_one.m_applied, 1);
                          open.Press(IDCANCEL);
                      }),
                  IDCANCEL);
        EXPECT_EQ(TestApp().m_thrown.size(), throws ? 1U : 0U);
    }
}

TEST_F(MfcSheet, AsksItsOwnHandlerFirst)
{
    CTestSheet sheet;
    sheet.m_ownOK = true;
    EXPECT_EQ(Run(sheet,
                  [&](DialogScript& script, Dialog& open) {
                      open.Press(IDOK);
                      script.Settle(open.Handle());
                      EXPECT_TRUE(open.IsOpen()); // the handler did not end it
                      sheet.m_okResult = 9;
                      open.PressKey(VK_RETURN); // the default button goes the same way
                  }),
              9);
    EXPECT_EQ(sheet.m_okCount, 2);
    EXPECT_EQ(sheet.m_one.m_applied, 0);
    EXPECT_EQ(sheet.m_one.m_cancelled, 0);
}

TEST_F(MfcSheet, SendsPressedButtonsThroughItsHandlers)
{
    CTestSheet sheet;
    sheet.m_ownOK = true;
    sheet.m_okResult = 9;
    EXPECT_EQ(Run(sheet, [&](DialogScript&,
                             Dialog& open) { ::PostMessage(open.Handle(), PSM_PRESSBUTTON, PSBTN_OK, 0); }),
              9);
}

TEST_F(MfcSheet, KeepsAPageThatDoesNotLetGo)
{
    CTestSheet sheet;
    sheet.m_one.m_leaves = false;
    EXPECT_EQ(Run(sheet,
                  [&](DialogScript& script, Dialog& open) {
                      open.SelectPage(1);
                      script.Settle(open.Handle());
                      EXPECT_EQ(open.PageIndex(), 0);
                      sheet.m_one.m_leaves = true;
                      open.SelectPage(1);
                      script.Settle(open.Handle());
                      EXPECT_EQ(open.PageIndex(), 1);
                      EXPECT_NE(sheet.m_two.m_hWnd, nullptr);
                      open.Press(IDCANCEL);
                  }),
              IDCANCEL);
    EXPECT_EQ(sheet.m_one.m_cancelled, 1);
}

TEST_F(MfcSheet, CancelsByEscAndByTheCloseBox)
{
    for (const bool escape : {true, false})
    {
        CTestSheet sheet;
        EXPECT_EQ(Run(sheet,
                      [&](DialogScript&, Dialog& open) {
                          if (escape)
                          {
                              open.PressKey(VK_ESCAPE);
                          }
                          else
                          {
                              open.Close();
                          }
                      }),
                  IDCANCEL)
            << escape;
        EXPECT_EQ(sheet.m_one.m_cancelled, 1);
    }
}

TEST_F(MfcSheet, RunsAgainAndStartsOnAnotherPage)
{
    CTestSheet sheet;
    EXPECT_EQ(Run(sheet, [](DialogScript&, Dialog& open) { open.Press(IDCANCEL); }), IDCANCEL);
    sheet.SetActivePage(1);
    EXPECT_EQ(Run(sheet,
                  [&](DialogScript&, Dialog& open) {
                      EXPECT_EQ(open.PageIndex(), 1);
                      open.Press(IDOK);
                  }),
              IDOK);
}

TEST_F(MfcSheet, EndsWhenAPageCannotBeInitialised)
{
    CTestSheet sheet;
    sheet.m_one.m_throwsOnInit = true;
    EXPECT_EQ(sheet.DoModal(), -1);
    EXPECT_EQ(TestApp().m_thrown, std::vector<std::string>{"page"});
    EXPECT_EQ(sheet.m_hWnd, nullptr);
}
} // namespace
