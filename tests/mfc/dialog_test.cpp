// Dialogs with real windows: data exchange, routing, reflection, exceptions, temporary objects.
#include "mfcprogram.h"
#include "mfctestres.h"
#include "tests/support/dialogscript.h"
#include "tests/support/mfctestprogram.h"

#include <afxpriv.h>

#include <stdexcept>

namespace
{
CTestApp theApp;
[[maybe_unused]] const auto* const environment =
    ::testing::AddGlobalTestEnvironment(new veltest::MfcEnvironment);

using veltest::Dialog;
using veltest::DialogScript;
using veltest::RunModal;

// A button that handles its own click when told to.
class CReflectingButton : public CButton
{
public:
    bool m_handles = false;
    int m_clicks = 0;

protected:
    BOOL OnClicked()
    {
        ++m_clicks;
        return m_handles;
    }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(CReflectingButton, CButton)
ON_CONTROL_REFLECT_EX(BN_CLICKED, &CReflectingButton::OnClicked)
END_MESSAGE_MAP()

enum class Fault
{
    none,
    framework,
    standard,
    foreign
};

[[noreturn]] void Throw(Fault fault)
{
    switch (fault)
    {
    case Fault::framework:
        throw new CTextException("framework");
    case Fault::standard:
        throw std::runtime_error("standard");
    default:
        throw 42;
    }
}

class CBasicDialog : public CDialog
{
public:
    explicit CBasicDialog(CWnd* pParent = nullptr) : CDialog(IDD_BASIC, pParent)
    {
    }

    CString m_name;
    CReflectingButton m_action;
    int m_actions = 0;
    Fault m_initFault = Fault::none;
    Fault m_actionFault = Fault::none;
    int m_endInInit = 0; // of two calls the second counts
    int m_endInAction = 0;
    CWnd* m_kept = nullptr; // made before the loop, so it must outlive the loop's idle work

    BOOL OnInitDialog() override
    {
        CDialog::OnInitDialog();
        m_kept = GetDlgItem(IDC_CHECK);
        if (m_initFault != Fault::none)
        {
            Throw(m_initFault);
        }
        if (m_endInInit != 0)
        {
            EndDialog(IDCANCEL);
            EndDialog(m_endInInit);
        }
        return TRUE;
    }

protected:
    void DoDataExchange(CDataExchange* pDX) override
    {
        CDialog::DoDataExchange(pDX);
        DDX_Control(pDX, IDC_ACTION, m_action);
        DDX_Text(pDX, IDC_NAME, m_name);
        DDV_MaxChars(pDX, m_name, 5);
    }
    void OnAction()
    {
        ++m_actions;
        if (m_endInAction != 0)
        {
            EndDialog(IDCANCEL);
            EndDialog(m_endInAction);
        }
        if (m_actionFault != Fault::none)
        {
            Throw(m_actionFault);
        }
    }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(CBasicDialog, CDialog)
ON_BN_CLICKED(IDC_ACTION, &CBasicDialog::OnAction)
END_MESSAGE_MAP()

class MfcDialog : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_NE(m_owner.m_hWnd, nullptr);
        theApp.m_thrown.clear();
    }
    COwner m_owner;
};

TEST_F(MfcDialog, RefusesTextSetPastTheMaximum)
{
    CBasicDialog dialog(&m_owner);
    const INT_PTR result = RunModal([&] { return dialog.DoModal(); },
                                    [](DialogScript& script) {
                                        Dialog open = script.WaitForDialog("Basic");
                                        open.Item(IDC_NAME).SetText("123456");
                                        open.Press(IDOK);
                                        script.AnswerBox("Please enter no more than 5 characters.", IDOK);
                                        EXPECT_TRUE(open.Item(IDC_NAME).HasFocus());
                                        EXPECT_TRUE(open.IsOpen());
                                        open.Item(IDC_NAME).SetText("12345");
                                        open.Press(IDOK);
                                    });
    EXPECT_EQ(result, IDOK);
    EXPECT_EQ(dialog.m_name, "12345");
}

TEST_F(MfcDialog, LetsAControlAnswerItsOwnNotificationFirst)
{
    CBasicDialog dialog(&m_owner);
    RunModal([&] { return dialog.DoModal(); },
             [&](DialogScript& script) {
                 Dialog open = script.WaitForDialog("Basic");
                 open.Press(IDC_ACTION);
                 script.Settle(open.Handle());
                 EXPECT_EQ(dialog.m_action.m_clicks, 1);
                 EXPECT_EQ(dialog.m_actions, 1);
                 dialog.m_action.m_handles = true;
                 open.Press(IDC_ACTION);
                 script.Settle(open.Handle());
                 EXPECT_EQ(dialog.m_action.m_clicks, 2);
                 EXPECT_EQ(dialog.m_actions, 1); // the dialog was not asked
                 open.Press(IDCANCEL);
             });
}

TEST_F(MfcDialog, GivesWhatHandlersThrowToTheThreadObject)
{
    CBasicDialog dialog(&m_owner);
    RunModal([&] { return dialog.DoModal(); },
             [&](DialogScript& script) {
                 Dialog open = script.WaitForDialog("Basic");
                 for (const Fault fault : {Fault::framework, Fault::standard, Fault::foreign})
                 {
                     dialog.m_actionFault = fault;
                     open.Press(IDC_ACTION);
                     script.Settle(open.Handle());
                 }
                 EXPECT_TRUE(open.IsOpen());
                 open.Press(IDCANCEL);
             });
    EXPECT_EQ(theApp.m_thrown, (std::vector<std::string>{"framework", "standard", ""}));
}

TEST_F(MfcDialog, AnswersMinusOneWhenInitialisationThrows)
{
    for (const Fault fault : {Fault::framework, Fault::standard, Fault::foreign})
    {
        CBasicDialog dialog(&m_owner);
        dialog.m_initFault = fault;
        EXPECT_EQ(dialog.DoModal(), -1);
        EXPECT_TRUE(::IsWindowEnabled(m_owner.m_hWnd));
        EXPECT_EQ(dialog.m_hWnd, nullptr);
    }
    EXPECT_EQ(theApp.m_thrown.size(), 3U);
    CBasicDialog modeless(&m_owner);
    modeless.m_initFault = Fault::framework;
    EXPECT_FALSE(modeless.Create(IDD_BASIC, &m_owner));
    EXPECT_EQ(modeless.m_hWnd, nullptr);
}

TEST_F(MfcDialog, EndsDuringInitialisationWithItsResult)
{
    CBasicDialog dialog(&m_owner);
    dialog.m_endInInit = 77;
    EXPECT_EQ(dialog.DoModal(), 77);
    EXPECT_TRUE(::IsWindowEnabled(m_owner.m_hWnd));
    dialog.m_endInInit = 0;
    dialog.m_endInAction = 78;
    EXPECT_EQ(RunModal([&] { return dialog.DoModal(); },
                       [](DialogScript& script) { script.WaitForDialogWith(IDC_ACTION).Press(IDC_ACTION); }),
              78);
}

TEST_F(MfcDialog, AnswersMinusOneWithoutATemplate)
{
    CDialog dialog(31999, &m_owner);
    EXPECT_EQ(dialog.DoModal(), -1);
    EXPECT_TRUE(::IsWindowEnabled(m_owner.m_hWnd));
}

TEST_F(MfcDialog, KeepsTemporaryObjectsOfTheCallerThroughTheLoop)
{
    CWnd* const before = CWnd::FromHandle(::GetDesktopWindow());
    CBasicDialog dialog(&m_owner);
    RunModal([&] { return dialog.DoModal(); },
             [&](DialogScript& script) {
                 Dialog open = script.WaitForDialog("Basic");
                 open.Press(IDC_ACTION);
                 open.SettleIdle();
                 EXPECT_EQ(dialog.m_kept->m_hWnd, open.Item(IDC_CHECK).Handle());
                 open.Press(IDCANCEL);
             });
    EXPECT_EQ(CWnd::FromHandle(::GetDesktopWindow()), before);
    EXPECT_EQ(before->m_hWnd, ::GetDesktopWindow());
}

TEST(MfcWindow, RefusesToBeCreatedWhenOnCreateThrows)
{
    class CFaulty : public CWnd
    {
    public:
        LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override
        {
            if (message == WM_CREATE)
            {
                throw std::runtime_error("create");
            }
            return CWnd::WindowProc(message, wParam, lParam);
        }
    };
    theApp.m_thrown.clear();
    CFaulty window;
    EXPECT_FALSE(
        window.CreateEx(0, AfxRegisterWndClass(0), "Faulty", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr));
    EXPECT_EQ(window.m_hWnd, nullptr);
    EXPECT_EQ(theApp.m_thrown, std::vector<std::string>{"create"});
}

TEST(MfcWindow, FindsObjectsByHandle)
{
    COwner owner;
    EXPECT_EQ(CWnd::FromHandle(owner.m_hWnd), &owner);
    EXPECT_EQ(CWnd::FromHandlePermanent(::GetDesktopWindow()), nullptr);
    CWnd* const temporary = CWnd::FromHandle(::GetDesktopWindow());
    EXPECT_EQ(CWnd::FromHandle(::GetDesktopWindow()), temporary);
    CWnd second;
    EXPECT_FALSE(second.SubclassWindow(owner.m_hWnd)); // one object per window
}
} // namespace

CTestApp& TestApp()
{
    return theApp;
}
