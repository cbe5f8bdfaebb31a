// What a user does with a property sheet, mostly by keyboard, what its pages veto or throw, and what stands
// around a modal window: its owner, message boxes over it, the focus after it has closed.
#include "mfcprogram.h"
#include "sheetkeysres.h"
#include "tests/support/dialogscript.h"

#include <afxdlgs.h>
#include <afxpriv.h>

#include <gtest/gtest.h>

#include <functional>

namespace
{
using veltest::Dialog;
using veltest::DialogScript;
using veltest::RunModal;

class CKeysPage : public CPropertyPage
{
public:
    explicit CKeysPage(UINT nIDTemplate) : CPropertyPage(nIDTemplate)
    {
    }

    std::function<void()> m_onInit = [] {};
    std::function<void()> m_onSetActive = [] {};
    std::function<void()> m_onButton = [] {};
    bool m_leaves = true;
    int m_cancelled = 0;
    int m_pressed = 0;
    bool m_buttonEnabled = true;

    BOOL OnInitDialog() override
    {
        CPropertyPage::OnInitDialog();
        m_onInit();
        return TRUE;
    }
    BOOL OnSetActive() override
    {
        m_onSetActive();
        return CPropertyPage::OnSetActive();
    }
    BOOL OnKillActive() override
    {
        return m_leaves && CPropertyPage::OnKillActive();
    }
    void OnCancel() override
    {
        ++m_cancelled;
    }

protected:
    void OnButton()
    {
        ++m_pressed;
        m_onButton();
    }
    void OnUpdateButton(CCmdUI* pCmdUI)
    {
        pCmdUI->Enable(m_buttonEnabled);
    }
    LRESULT OnKickIdle(WPARAM, LPARAM)
    {
        UpdateDialogControls(this, FALSE);
        return 0;
    }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(CKeysPage, CPropertyPage)
ON_BN_CLICKED(IDC_KEYS_BUTTON, &CKeysPage::OnButton)
ON_UPDATE_COMMAND_UI(IDC_KEYS_BUTTON, &CKeysPage::OnUpdateButton)
ON_MESSAGE(WM_KICKIDLE, &CKeysPage::OnKickIdle)
END_MESSAGE_MAP()

class CKeysSheet : public CPropertySheet
{
public:
    explicit CKeysSheet(CWnd* pParent = nullptr) : CPropertySheet("Keys", pParent)
    {
        AddPage(&m_names);
        AddPage(&m_more);
        m_psh.dwFlags |= PSH_NOAPPLYNOW;
    }
    CKeysPage m_names{IDD_KEYS_NAMES};
    CKeysPage m_more{IDD_KEYS_MORE};
    int m_okResult = 9; // 0: it stays open
    int m_okCount = 0;

protected:
    void OnOK()
    {
        ++m_okCount;
        if (m_okResult != 0)
            EndDialog(m_okResult);
    }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(CKeysSheet, CPropertySheet)
ON_COMMAND(IDOK, &CKeysSheet::OnOK)
END_MESSAGE_MAP()

// A main window with a field that has the focus before the sheet opens.
class CFieldOwner : public COwner
{
public:
    CFieldOwner()
    {
        m_field.CWnd::Create("EDIT", nullptr, WS_CHILD | WS_VISIBLE, CRect(0, 0, 100, 20), this, 1);
        SetForegroundWindow();
        m_field.SetFocus();
    }
    CEdit m_field;

protected:
    afx_msg void OnSetFocus(CWnd*)
    {
        m_field.SetFocus(); // as a frame hands the focus to its view
    }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(CFieldOwner, COwner)
ON_WM_SETFOCUS()
END_MESSAGE_MAP()

class MfcSheet : public ::testing::Test
{
protected:
    void SetUp() override
    {
        TestApp().m_thrown.clear();
    }
    INT_PTR Run(const std::function<void(DialogScript&, const Dialog&)>& user)
    {
        return RunModal([&] { return m_sheet.DoModal(); },
                        [&](DialogScript& script) { user(script, script.WaitForDialog("Keys")); });
    }
    static int FocusId(DialogScript& script, const Dialog& open)
    {
        return ::GetDlgCtrlID(script.FocusOf(open.Handle()));
    }

    CFieldOwner m_owner;
    CKeysSheet m_sheet{&m_owner};
};

TEST_F(MfcSheet, TabGoesThroughThePageTheButtonsAndTheTabs)
{
    Run([&](DialogScript& script, const Dialog& open) {
        const HWND tabs = reinterpret_cast<HWND>(::SendMessage(open.Handle(), PSM_GETTABCONTROL, 0, 0));
        const std::vector<int> order = {IDC_KEYS_NAME, IDC_KEYS_NOTES, IDC_KEYS_CHECK,      IDC_KEYS_BUTTON,
                                        IDOK,          IDCANCEL,       ::GetDlgCtrlID(tabs)};
        EXPECT_EQ(FocusId(script, open), order.front());
        for (std::size_t step = 1; step <= order.size(); ++step)
        {
            open.PressKey(VK_TAB);
            EXPECT_EQ(FocusId(script, open), order[step % order.size()]) << step;
        }
        for (std::size_t step = order.size(); step-- > 0;)
        {
            script.PressKey(open.Focused().Handle(), VK_TAB, VK_SHIFT);
            EXPECT_EQ(FocusId(script, open), order[step]) << step;
        }
        open.Press(IDCANCEL);
    });
}

TEST_F(MfcSheet, AccessKeysReachThePage)
{
    Run([&](DialogScript& script, const Dialog& open) {
        open.PressAccessKey('c');
        EXPECT_TRUE(open.Item(IDC_KEYS_CHECK).IsChecked());
        EXPECT_EQ(FocusId(script, open), IDC_KEYS_CHECK);
        open.PressAccessKey('n');
        EXPECT_EQ(FocusId(script, open), IDC_KEYS_NAME);
        open.PressAccessKey('b');
        EXPECT_EQ(m_sheet.m_names.m_pressed, 1);
        open.Press(IDCANCEL);
    });
}

// Where the focus is when the key is pressed, and what comes of it: a result that closes the sheet, or 0.
TEST_F(MfcSheet, EnterAndEscFromEveryKindOfControl)
{
    const struct
    {
        const char* what;
        int focus;
        UINT key;
        INT_PTR result; // 0: the sheet stays open
        int pressed;    // of the page's button
        const char* notes;
    } cases[] = {
        {"Enter in a field", IDC_KEYS_NAME, VK_RETURN, 9, 0, ""},
        {"Enter in a check box", IDC_KEYS_CHECK, VK_RETURN, 9, 0, ""},
        {"Enter in a field of several lines", IDC_KEYS_NOTES, VK_RETURN, 0, 0, "\r\n"},
        {"Enter on the page's button", IDC_KEYS_BUTTON, VK_RETURN, 0, 1, ""},
        {"Enter on Cancel", IDCANCEL, VK_RETURN, IDCANCEL, 0, ""},
        {"Esc in a field", IDC_KEYS_NAME, VK_ESCAPE, IDCANCEL, 0, ""},
        {"Esc in a field of several lines", IDC_KEYS_NOTES, VK_ESCAPE, IDCANCEL, 0, ""},
        {"Esc on the page's button", IDC_KEYS_BUTTON, VK_ESCAPE, IDCANCEL, 0, ""},
    };
    for (const auto& test : cases)
    {
        SCOPED_TRACE(test.what);
        m_sheet.m_names.m_pressed = 0;
        std::string notes;
        const INT_PTR result = Run([&](DialogScript& script, const Dialog& open) {
            SCOPED_TRACE(test.what); // for this thread too
            open.Item(test.focus).PressKey(test.key);
            if (test.result != 0)
            {
                open.WaitForClosed();
                return;
            }
            script.Settle(open.Handle());
            EXPECT_TRUE(open.IsOpen());
            notes = open.Item(IDC_KEYS_NOTES).Text();
            EXPECT_TRUE(open.Item(test.focus).IsVisible());
            open.Press(IDCANCEL);
        });
        EXPECT_EQ(result, test.result != 0 ? test.result : IDCANCEL);
        EXPECT_EQ(m_sheet.m_names.m_pressed, test.pressed);
        EXPECT_EQ(notes, test.notes);
    }
}

TEST_F(MfcSheet, ControlKeysTurnPagesUnlessThePageRefuses)
{
    Run([&](DialogScript& script, const Dialog& open) {
        const auto turn = [&](UINT key) { script.PressKey(open.Focused().Handle(), key, VK_CONTROL); };
        turn(VK_TAB);
        EXPECT_EQ(open.PageIndex(), 1);
        EXPECT_EQ(FocusId(script, open), IDC_KEYS_OTHER) << "what is typed must not go to a hidden page";
        turn(VK_TAB);
        EXPECT_EQ(open.PageIndex(), 0) << "round from the last page";
        turn(VK_NEXT);
        EXPECT_EQ(open.PageIndex(), 1);
        turn(VK_PRIOR);
        EXPECT_EQ(open.PageIndex(), 0);
        EXPECT_EQ(FocusId(script, open), IDC_KEYS_NAME);
        open.ClickTab(1);
        EXPECT_TRUE(open.Focused().IsVisible());
        open.SelectPage(0);
        EXPECT_TRUE(open.Focused().IsVisible());

        m_sheet.m_names.m_leaves = false;
        open.Item(IDC_KEYS_NAME).Focus();
        turn(VK_TAB);
        EXPECT_EQ(open.PageIndex(), 0);
        EXPECT_EQ(FocusId(script, open), IDC_KEYS_NAME) << "the user goes on where he was";
        open.Press(IDCANCEL);
    });
}

TEST_F(MfcSheet, AsksItsOwnHandlerFirst)
{
    m_sheet.m_okResult = 0;
    EXPECT_EQ(Run([&](DialogScript& script, const Dialog& open) {
                  open.Press(IDOK);
                  script.Settle(open.Handle());
                  EXPECT_TRUE(open.IsOpen()) << "the handler did not end it";
                  m_sheet.m_okResult = 9;
                  open.PressKey(VK_RETURN); // the default button goes the same way
              }),
              9);
    EXPECT_EQ(m_sheet.m_okCount, 2);
    EXPECT_EQ(Run([](DialogScript&, const Dialog& open) {
                  ::PostMessage(open.Handle(), PSM_PRESSBUTTON, PSBTN_OK, 0);
              }),
              9);
    EXPECT_EQ(m_sheet.m_names.m_cancelled, 0);
}

TEST_F(MfcSheet, CancelsByTheCloseBoxAndRunsAgainOnAnotherPage)
{
    EXPECT_EQ(Run([](DialogScript&, const Dialog& open) { open.Close(); }), IDCANCEL);
    EXPECT_EQ(m_sheet.m_names.m_cancelled, 1);
    m_sheet.SetActivePage(1);
    EXPECT_EQ(Run([](DialogScript&, const Dialog& open) {
                  EXPECT_EQ(open.PageIndex(), 1);
                  open.Press(IDOK);
              }),
              9);
}

TEST_F(MfcSheet, FocusMovesOnFromAControlThatIsDisabledWhenIdle)
{
    Run([&](DialogScript& script, const Dialog& open) {
        open.Item(IDC_KEYS_BUTTON).Focus();
        m_sheet.m_names.m_buttonEnabled = false;
        open.SettleIdle();
        EXPECT_FALSE(open.Item(IDC_KEYS_BUTTON).IsEnabled());
        EXPECT_EQ(FocusId(script, open), IDC_KEYS_NAME) << "the next one of the page";
        open.PressKey(VK_ESCAPE);
        open.WaitForClosed();
    });
}

TEST_F(MfcSheet, APageThatCannotBeFilledEndsTheSheet)
{
    m_sheet.m_names.m_onInit = [] { throw new CTextException("first page"); };
    EXPECT_EQ(m_sheet.DoModal(), -1);
    EXPECT_EQ(m_sheet.m_hWnd, nullptr);
    m_sheet.m_names.m_onInit = [] {};
    m_sheet.m_more.m_onInit = [] { throw new CTextException("second page"); };
    EXPECT_EQ(Run([&](DialogScript&, const Dialog& open) {
                  open.SelectPage(1);
                  open.WaitForClosed();
              }),
              -1);
    EXPECT_EQ(TestApp().m_thrown, (std::vector<std::string>{"first page", "second page"}));
    EXPECT_TRUE(m_owner.IsWindowEnabled());
}

// The system decides which page comes up instead; the sheet has to stay usable.
TEST_F(MfcSheet, APageThatThrowsWhenShownCanBeShownLater)
{
    bool throws = true;
    m_sheet.m_more.m_onSetActive = [&] {
        if (throws)
            throw new CTextException("not now");
    };
    EXPECT_EQ(Run([&](DialogScript& script, const Dialog& open) {
                  open.SelectPage(1);
                  script.Settle(open.Handle());
                  EXPECT_TRUE(open.IsOpen());
                  throws = false;
                  for (const int page : {0, 1})
                  {
                      open.SelectPage(page);
                      EXPECT_EQ(open.PageIndex(), page);
                      EXPECT_TRUE(open.Item(page == 0 ? IDC_KEYS_NAME : IDC_KEYS_OTHER).IsVisible());
                  }
                  open.Press(IDOK);
              }),
              9);
    EXPECT_EQ(TestApp().m_thrown, std::vector<std::string>{"not now"});
}

TEST_F(MfcSheet, OwnerIsDisabledMeanwhileAndHasTheFocusBack)
{
    for (const int button : {IDOK, IDCANCEL})
    {
        ASSERT_EQ(::GetFocus(), m_owner.m_field.m_hWnd);
        EXPECT_EQ(Run([&](DialogScript&, const Dialog& open) {
                      EXPECT_EQ(::GetWindow(open.Handle(), GW_OWNER), m_owner.m_hWnd);
                      EXPECT_FALSE(::IsWindowEnabled(m_owner.m_hWnd));
                      open.Press(button);
                  }),
                  button == IDOK ? 9 : IDCANCEL);
        EXPECT_TRUE(m_owner.IsWindowEnabled());
        EXPECT_EQ(::GetActiveWindow(), m_owner.m_hWnd);
        EXPECT_EQ(::GetFocus(), m_owner.m_field.m_hWnd);
    }
    // What was disabled before stays so.
    m_owner.EnableWindow(FALSE);
    EXPECT_EQ(Run([](DialogScript&, const Dialog& open) { open.Press(IDCANCEL); }), IDCANCEL);
    EXPECT_FALSE(m_owner.IsWindowEnabled());
}

// A box is owned by the window that it stands over, although the program has no main window.
TEST_F(MfcSheet, MessageBoxStandsOverTheSheet)
{
    m_sheet.m_names.m_onButton = [] { AfxMessageBox("Sure?", MB_YESNO | MB_ICONQUESTION); };
    EXPECT_EQ(Run([&](DialogScript& script, const Dialog& open) {
                  open.Item(IDC_KEYS_BUTTON).PressKey(VK_SPACE);
                  const Dialog box = script.WaitForBox("Sure?");
                  EXPECT_EQ(::GetWindow(box.Handle(), GW_OWNER), open.Handle());
                  EXPECT_FALSE(open.IsEnabled());
                  EXPECT_FALSE(::IsWindowEnabled(m_owner.m_hWnd));
                  box.Press(IDNO);
                  script.WaitUntil("the sheet to be enabled", [&] { return open.IsEnabled(); });
                  EXPECT_EQ(FocusId(script, open), IDC_KEYS_BUTTON) << "the focus is where it was";
                  EXPECT_FALSE(::IsWindowEnabled(m_owner.m_hWnd));
                  open.Press(IDOK);
              }),
              9);
}
} // namespace
