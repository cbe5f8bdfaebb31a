// Dialogs with real windows: data exchange, exceptions, ends, temporary objects.
#include "mfcprogram.h"
#include "mfctestres.h"
#include "tests/support/dialogscript.h"
#include "tests/support/mfctestprogram.h"

#include <functional>
#include <stdexcept>

namespace
{
CTestApp theApp;
[[maybe_unused]] const auto* const environment =
    ::testing::AddGlobalTestEnvironment(new veltest::MfcEnvironment);

using veltest::Dialog;
using veltest::DialogScript;
using veltest::RunModal;

// What handlers may throw: an exception of the framework, of the library, anything.
const std::function<void()> faults[] = {[] { throw new CTextException("framework"); },
                                        [] { throw std::runtime_error("standard"); }, [] { throw 42; }};

class CBasicDialog : public CDialog
{
public:
    explicit CBasicDialog(CWnd* pParent = nullptr) : CDialog(IDD_BASIC, pParent)
    {
    }

    CString m_name;
    std::function<void()> m_onInit = [] {};
    std::function<void()> m_onAction = [] {};
    CWnd* m_kept = nullptr; // made before the loop, so it must outlive the loop's idle work

    BOOL OnInitDialog() override
    {
        CDialog::OnInitDialog();
        m_kept = GetDlgItem(IDC_CHECK);
        m_onInit();
        return TRUE;
    }
    // Of two calls the second counts.
    void EndTwice(int result)
    {
        EndDialog(IDCANCEL);
        EndDialog(result);
    }

protected:
    void DoDataExchange(CDataExchange* pDX) override
    {
        CDialog::DoDataExchange(pDX);
        DDX_Text(pDX, IDC_NAME, m_name);
        DDV_MaxChars(pDX, m_name, 5);
    }
    void OnAction()
    {
        m_onAction();
    }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(CBasicDialog, CDialog)
ON_BN_CLICKED(IDC_ACTION, &CBasicDialog::OnAction)
END_MESSAGE_MAP()

class MfcDialog : public ::testing::Test
{
protected:
    MfcDialog()
    {
        theApp.m_thrown.clear();
    }
    INT_PTR Run(const std::function<void(DialogScript&, const Dialog&)>& user)
    {
        return RunModal([&] { return m_dialog.DoModal(); },
                        [&](DialogScript& script) { user(script, script.WaitForDialog("Basic")); });
    }
    COwner m_owner;
    CBasicDialog m_dialog{&m_owner};
};

TEST_F(MfcDialog, RefusesTextSetPastTheMaximum)
{
    EXPECT_EQ(Run([](DialogScript& script, const Dialog& open) {
                  open.Item(IDC_NAME).SetText("123456");
                  open.Press(IDOK);
                  script.AnswerBox("Please enter no more than 5 characters.", IDOK);
                  EXPECT_TRUE(open.Item(IDC_NAME).HasFocus());
                  EXPECT_TRUE(open.IsOpen());
                  open.Item(IDC_NAME).SetText("12345");
                  open.Press(IDOK);
              }),
              IDOK);
    EXPECT_EQ(m_dialog.m_name, "12345");
}

TEST_F(MfcDialog, GivesWhatHandlersThrowToTheThreadObject)
{
    Run([&](DialogScript& script, const Dialog& open) {
        for (const auto& fault : faults)
        {
            m_dialog.m_onAction = fault;
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
    for (const auto& fault : faults)
    {
        m_dialog.m_onInit = fault;
        EXPECT_EQ(m_dialog.DoModal(), -1);
        EXPECT_TRUE(::IsWindowEnabled(m_owner.m_hWnd));
        EXPECT_EQ(m_dialog.m_hWnd, nullptr);
    }
    EXPECT_EQ(theApp.m_thrown.size(), 3U);
    EXPECT_FALSE(m_dialog.Create(IDD_BASIC, &m_owner)) << "modeless";
    EXPECT_EQ(m_dialog.m_hWnd, nullptr);
}

TEST_F(MfcDialog, EndsDuringInitialisationWithItsResult)
{
    m_dialog.m_onInit = [&] { m_dialog.EndTwice(77); };
    EXPECT_EQ(m_dialog.DoModal(), 77);
    EXPECT_TRUE(::IsWindowEnabled(m_owner.m_hWnd));
    m_dialog.m_onInit = [] {};
    m_dialog.m_onAction = [&] { m_dialog.EndTwice(78); };
    EXPECT_EQ(Run([](DialogScript&, const Dialog& open) { open.Press(IDC_ACTION); }), 78);
}

TEST_F(MfcDialog, KeepsTemporaryObjectsOfTheCallerThroughTheLoop)
{
    CWnd* const before = CWnd::FromHandle(::GetDesktopWindow());
    Run([&](DialogScript&, const Dialog& open) {
        open.Press(IDC_ACTION);
        open.SettleIdle();
        EXPECT_EQ(m_dialog.m_kept->m_hWnd, open.Item(IDC_CHECK).Handle());
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
                throw std::runtime_error("create");
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
} // namespace

CTestApp& TestApp()
{
    return theApp;
}
