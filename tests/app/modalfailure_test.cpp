// Exceptions inside dialogs: the run ends as cancelled, with one message, and later runs are not touched by
// it. The application object and the modal run are compiled into this program, as its own.

#include "app/appres.h"
#include "app/modalrun.h"
#include "app/velapp.h"
#include "tests/app/modalfailureres.h"
#include "tests/support/dialogscript.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

BOOL CVelDlgsApp::InitInstance()
{
    return TRUE;
}

int CVelDlgsApp::ExitInstance()
{
    return 0;
}

namespace
{

using veltest::Dialog;
using veltest::DialogScript;

using Action = std::function<void()>;

[[noreturn]] void ThrowFrameworkException()
{
    throw new CNotSupportedException;
}

/// Does what a test says at the places where dialogs fail.
class CFailingDialog : public CDialog
{
public:
    CFailingDialog() : CDialog(IDD_FAILING)
    {
    }

    Action m_onInit;
    Action m_onFail;
    Action m_onNest;
    Action m_onPaint;
    Action m_onDestroy;

protected:
    BOOL OnInitDialog() override
    {
        CDialog::OnInitDialog();
        Do(m_onInit);
        return TRUE;
    }
    afx_msg void OnFail()
    {
        Do(m_onFail);
    }
    afx_msg void OnNest()
    {
        Do(m_onNest);
    }
    afx_msg void OnPaint()
    {
        Do(m_onPaint);
        Default();
    }
    afx_msg void OnDestroy()
    {
        Do(m_onDestroy);
        CDialog::OnDestroy();
    }
    DECLARE_MESSAGE_MAP()

private:
    static void Do(const Action& action)
    {
        if (action)
            action();
    }
};

BEGIN_MESSAGE_MAP(CFailingDialog, CDialog)
ON_BN_CLICKED(IDC_FAIL, &CFailingDialog::OnFail)
ON_BN_CLICKED(IDC_NEST, &CFailingDialog::OnNest)
ON_WM_PAINT()
ON_WM_DESTROY()
END_MESSAGE_MAP()

class ModalFailure : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        AfxWinInit(GetModuleHandleA(nullptr), nullptr, GetCommandLineA(), SW_SHOW);
    }

    /// The one message about a failure; answers it.
    static void ExpectMessage(DialogScript& script, const std::string& reason)
    {
        const Dialog box = script.WaitForBox();
        EXPECT_EQ(box.BoxText(),
                  "An error occurred, and this window had to be closed. What you entered in it was "
                  "not saved.\n\n" +
                      reason);
        EXPECT_TRUE(box.HasIcon(IDI_ERROR));
        box.Press(IDOK);
        box.WaitForClosed();
    }

    CFailingDialog m_dialog;
};

TEST_F(ModalFailure, AHandlersExceptionCancelsTheDialog)
{
    m_dialog.m_onFail = [] { throw std::runtime_error("the cable was pulled"); };
    const auto result = veltest::RunModal([&] { return velRunModal(m_dialog); },
                                          [](DialogScript& script) {
                                              script.WaitForDialog("Failing").Press(IDC_FAIL);
                                              ExpectMessage(script, "the cable was pulled");
                                          });
    EXPECT_EQ(result, IDCANCEL);
}

TEST_F(ModalFailure, InitialisationThatThrowsShowsOnlyTheMessage)
{
    m_dialog.m_onInit = [] { throw std::runtime_error("no list"); };
    const auto result = veltest::RunModal([&] { return velRunModal(m_dialog); },
                                          [](DialogScript& script) {
                                              ExpectMessage(script, "no list");
                                              EXPECT_FALSE(script.FindDialog("Failing").has_value());
                                          });
    EXPECT_EQ(result, IDCANCEL);
}

TEST_F(ModalFailure, EveryKindOfExceptionIsCaught)
{
    const std::pair<Action, const char*> kinds[] = {
        {ThrowFrameworkException, nullptr},
        {[] { throw 42; }, "The cause is not known."},
        {[] { throw std::runtime_error(""); }, "The cause is not known."},
        {[] { throw std::runtime_error(std::string(5000, 'x')); }, nullptr},
    };
    for (const auto& [action, reason] : kinds)
    {
        CFailingDialog dialog;
        dialog.m_onFail = action;
        const auto result = veltest::RunModal([&] { return velRunModal(dialog); },
                                              [&, expected = reason](DialogScript& script) {
                                                  script.WaitForDialog("Failing").Press(IDC_FAIL);
                                                  if (expected != nullptr)
                                                      ExpectMessage(script, expected);
                                                  else
                                                      script.AnswerBox("", IDOK);
                                              });
        EXPECT_EQ(result, IDCANCEL);
    }
}

TEST_F(ModalFailure, WhatTheUserWasToldAlreadyEndsNothing)
{
    m_dialog.m_onFail = [] { AfxThrowUserException(); };
    const auto result = veltest::RunModal([&] { return velRunModal(m_dialog); },
                                          [](DialogScript& script) {
                                              const Dialog dialog = script.WaitForDialog("Failing");
                                              dialog.Press(IDC_FAIL);
                                              script.Settle(dialog.Handle());
                                              EXPECT_FALSE(script.FindBox().has_value());
                                              dialog.Press(IDOK);
                                          });
    EXPECT_EQ(result, IDOK);
}

TEST_F(ModalFailure, APaintingThatThrowsEnds)
{
    int paints = 0;
    m_dialog.m_onPaint = [&] {
        ++paints;
        throw std::runtime_error("no brush");
    };
    const auto result = veltest::RunModal([&] { return velRunModal(m_dialog); },
                                          [](DialogScript& script) { ExpectMessage(script, "no brush"); });
    EXPECT_EQ(result, IDCANCEL);
    EXPECT_GT(paints, 0);
}

TEST_F(ModalFailure, OnlyTheFirstReasonIsTold)
{
    m_dialog.m_onFail = [] { throw std::runtime_error("first"); };
    m_dialog.m_onDestroy = [] { throw std::runtime_error("second"); };
    const auto result = veltest::RunModal([&] { return velRunModal(m_dialog); },
                                          [](DialogScript& script) {
                                              script.WaitForDialog("Failing").Press(IDC_FAIL);
                                              ExpectMessage(script, "first");
                                          });
    EXPECT_EQ(result, IDCANCEL);
}

TEST_F(ModalFailure, EndsTheInnermostDialogAndLeavesTheOuterOpen)
{
    CFailingDialog inner;
    INT_PTR innerResult = 0;
    inner.m_onFail = [] { throw std::runtime_error("inner"); };
    m_dialog.m_onNest = [&] { innerResult = velRunModal(inner); };
    const auto result = veltest::RunModal(
        [&] { return velRunModal(m_dialog); },
        [&](DialogScript& script) {
            const Dialog outer = script.WaitForDialog("Failing");
            outer.Press(IDC_NEST);
            script.WaitUntil("the inner dialog is open", [&] { return !outer.IsEnabled(); });
            script.WaitForDialog("Failing").Press(IDC_FAIL);
            ExpectMessage(script, "inner");
            script.WaitUntil("the outer dialog can be used", [&] { return outer.IsEnabled(); });
            outer.Press(IDOK);
        });
    EXPECT_EQ(innerResult, IDCANCEL);
    EXPECT_EQ(result, IDOK);
}

TEST_F(ModalFailure, AnExceptionAroundTheDialogGivesTheResultAskedFor)
{
    const auto result = veltest::RunModal(
        [] { return velGuard(7, IDS_MODAL_FAILED, []() -> INT_PTR { throw new CNotSupportedException; }); },
        [](DialogScript& script) { script.AnswerBox("", IDOK); });
    EXPECT_EQ(result, 7);
    EXPECT_EQ(velGuard(7, IDS_MODAL_FAILED, []() -> INT_PTR { return 1; }), 1);
}

TEST_F(ModalFailure, ExchangesReturnWhatWasThereBefore)
{
    CVelDlgsApp& app = *VelApp();
    EXPECT_EQ(app.GetPracticeManagement(), 0);
    EXPECT_EQ(app.SetPracticeManagement(5), 0);
    EXPECT_EQ(app.SetPracticeManagement(0), 5);
    EXPECT_EQ(app.GetPatients(), nullptr);
    EXPECT_FALSE(app.IsArchivingAllowed());
    EXPECT_FALSE(app.SetArchivingAllowed(true));
    EXPECT_TRUE(app.SetArchivingAllowed(false));
}

} // namespace
