// How a modal run ends when something throws, and what exported functions set for its length. The frame's
// sources are compiled into this program, with an application object of its own.

#include "app/appres.h"
#include "app/callscopes.h"
#include "app/modalrun.h"
#include "app/velapp.h"
#include "suite/patients/records/dbpatients.h"
#include "suite/patients/records/veltrixlogin.h"
#include "tests/app/modalrunres.h"
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

void Do(const Action& action)
{
    if (action)
        action();
}

Action Throw(const char* reason)
{
    return [reason] { throw std::runtime_error(reason); };
}

constexpr const char* closed =
    "An error occurred, and this window had to be closed. What you entered in it was not saved.\n\n";
constexpr const char* notOpened = "An error occurred, and the window could not be opened.\n\n";
constexpr const char* done =
    "An error occurred while the window was being closed. What you confirmed in it has been carried out.\n\n";
constexpr const char* notDone = "An error occurred, and what was asked for was not done.\n\n";
constexpr const char* unknown = "The cause is not known.";

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
    Action m_onEnded; // OK has ended the dialog
    Action m_onDestroy;

protected:
    BOOL OnInitDialog() override
    {
        CDialog::OnInitDialog();
        Do(m_onInit);
        return TRUE;
    }
    void OnOK() override
    {
        CDialog::OnOK();
        Do(m_onEnded);
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
};

BEGIN_MESSAGE_MAP(CFailingDialog, CDialog)
ON_BN_CLICKED(IDC_FAIL, &CFailingDialog::OnFail)
ON_BN_CLICKED(IDC_NEST, &CFailingDialog::OnNest)
ON_WM_PAINT()
ON_WM_DESTROY()
END_MESSAGE_MAP()

class CFailingSheet : public CPropertySheet
{
public:
    CFailingSheet() : CPropertySheet("Failing")
    {
        AddPage(&m_page);
    }
    Action m_onOK;
    Action m_onDestroy;

protected:
    afx_msg void OnOK()
    {
        Do(m_onOK);
        EndDialog(IDOK);
    }
    afx_msg void OnDestroy()
    {
        Do(m_onDestroy);
        CPropertySheet::OnDestroy();
    }
    DECLARE_MESSAGE_MAP()

private:
    CPropertyPage m_page{IDD_FAILING_PAGE};
};

BEGIN_MESSAGE_MAP(CFailingSheet, CPropertySheet)
ON_COMMAND(IDOK, &CFailingSheet::OnOK)
ON_WM_DESTROY()
END_MESSAGE_MAP()

class ModalRun : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        AfxWinInit(GetModuleHandleA(nullptr), nullptr, GetCommandLineA(), SW_SHOW);
    }

    /// The one message about a failure, which this answers.
    static void ExpectMessage(DialogScript& script, const std::string& text)
    {
        const Dialog box = script.WaitForBox();
        EXPECT_EQ(box.BoxText(), text);
        EXPECT_TRUE(box.HasIcon(IDI_ERROR));
        box.Press(IDOK);
        box.WaitForClosed();
    }

    /// Runs a dialog or sheet, presses a button unless it is 0, and expects a message unless it is empty.
    template <class Run> static INT_PTR Play(const Run& run, int button, const std::string& message)
    {
        return veltest::RunModal(run, [&](DialogScript& script) {
            if (button != 0)
                script.WaitForDialog("Failing").Press(button);
            if (!message.empty())
                ExpectMessage(script, message);
        });
    }

    CFailingDialog m_dialog;
};

TEST_F(ModalRun, EndsAsTheDialogHadEndedOrCancelled)
{
    const Action notSupported = [] { throw new CNotSupportedException; };
    CString notSupportedText;
    CNotSupportedException().GetErrorMessage(notSupportedText.GetBuffer(256), 256);
    notSupportedText.ReleaseBuffer();

    struct Case
    {
        const char* what;
        Action CFailingDialog::*place;
        Action action;
        int button;
        std::string message;
        INT_PTR result;
    };
    const Case cases[] = {
        {"in a handler", &CFailingDialog::m_onFail, Throw("no cable"), IDC_FAIL,
         closed + std::string("no cable"), IDCANCEL},
        {"of the framework's kind", &CFailingDialog::m_onFail, notSupported, IDC_FAIL,
         closed + std::string(notSupportedText), IDCANCEL},
        {"of no kind", &CFailingDialog::m_onFail, [] { throw 42; }, IDC_FAIL, closed + std::string(unknown),
         IDCANCEL},
        {"without words", &CFailingDialog::m_onFail, Throw(""), IDC_FAIL, closed + std::string(unknown),
         IDCANCEL},
        {"while it is initialised", &CFailingDialog::m_onInit, Throw("no list"), 0,
         notOpened + std::string("no list"), IDCANCEL},
        {"after Cancel", &CFailingDialog::m_onDestroy, Throw("late"), IDCANCEL, notDone + std::string("late"),
         IDCANCEL},
        {"in OK, after it has ended the dialog", &CFailingDialog::m_onEnded, Throw("late"), IDOK,
         done + std::string("late"), IDOK},
        {"while a confirmed dialog is destroyed", &CFailingDialog::m_onDestroy, Throw("late"), IDOK,
         done + std::string("late"), IDOK},
        {"nothing", &CFailingDialog::m_onFail, {}, IDOK, "", IDOK},
    };
    for (const Case& c : cases)
    {
        SCOPED_TRACE(c.what);
        CFailingDialog dialog;
        dialog.*c.place = c.action;
        EXPECT_EQ(Play([&] { return velRunModal(dialog); }, c.button, c.message), c.result);
    }
}

TEST_F(ModalRun, ASheetThatHasStoredItsWorkEndsWithOK)
{
    struct Case
    {
        const char* what;
        Action CFailingSheet::*place;
        bool stored;
        int button;
        const char* message;
        INT_PTR result;
    };
    const Case cases[] = {
        {"before it stored", &CFailingSheet::m_onOK, false, IDOK, closed, IDCANCEL},
        {"between storing and ending", &CFailingSheet::m_onOK, true, IDOK, done, IDOK},
        {"while it is destroyed", &CFailingSheet::m_onDestroy, true, IDOK, done, IDOK},
        {"while it is destroyed with nothing stored", &CFailingSheet::m_onDestroy, false, IDOK, notDone,
         IDCANCEL},
    };
    for (const Case& c : cases)
    {
        SCOPED_TRACE(c.what);
        CFailingSheet sheet;
        sheet.*c.place = Throw("a cause");
        EXPECT_EQ(Play([&] { return velRunModal(sheet, [&] { return c.stored; }); }, c.button,
                       c.message + std::string("a cause")),
                  c.result);
    }
    CFailingSheet sheet;
    EXPECT_EQ(Play([&] { return velRunModal(sheet, [] { return true; }); }, IDCANCEL, ""), IDCANCEL);
}

TEST_F(ModalRun, AReasonWithoutEndIsCut)
{
    m_dialog.m_onFail = [] { throw std::runtime_error(std::string(5000, 'x')); };
    EXPECT_EQ(Play([&] { return velRunModal(m_dialog); }, IDC_FAIL, closed + std::string(1023, 'x')),
              IDCANCEL);
}

TEST_F(ModalRun, WhatTheUserWasToldAlreadyEndsNothing)
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

TEST_F(ModalRun, APaintingThatThrowsEnds)
{
    int paints = 0;
    m_dialog.m_onPaint = [&] {
        ++paints;
        throw std::runtime_error("no brush");
    };
    EXPECT_EQ(Play([&] { return velRunModal(m_dialog); }, 0, closed + std::string("no brush")), IDCANCEL);
    EXPECT_GT(paints, 0);
}

TEST_F(ModalRun, OnlyTheFirstReasonIsTold)
{
    m_dialog.m_onFail = Throw("first");
    m_dialog.m_onDestroy = Throw("second");
    EXPECT_EQ(Play([&] { return velRunModal(m_dialog); }, IDC_FAIL, closed + std::string("first")), IDCANCEL);
}

/// An exception ends the innermost run, and the one around it only when no other runs.
TEST_F(ModalRun, NestedRunsFailOnTheirOwn)
{
    m_dialog.m_onFail = Throw("outer");
    INT_PTR innerResult = 0;
    CFailingDialog inner;
    inner.m_onFail = Throw("inner");
    m_dialog.m_onNest = [&] { innerResult = velRunModal(inner); };
    const auto result = veltest::RunModal(
        [&] { return velRunModal(m_dialog); },
        [&](DialogScript& script) {
            const Dialog outer = script.WaitForDialog("Failing");
            for (const int button : {IDC_FAIL, IDOK})
            {
                outer.Press(IDC_NEST);
                script.WaitUntil("the inner dialog is open", [&] { return !outer.IsEnabled(); });
                script.WaitForDialog("Failing").Press(button);
                if (button == IDC_FAIL)
                    ExpectMessage(script, closed + std::string("inner"));
                script.WaitUntil("the outer dialog can be used", [&] { return outer.IsEnabled(); });
                EXPECT_EQ(innerResult, button == IDC_FAIL ? IDCANCEL : IDOK);
            }
            outer.Press(IDC_FAIL);
            ExpectMessage(script, closed + std::string("outer"));
        });
    EXPECT_EQ(result, IDCANCEL);

    CNotSupportedException late;
    EXPECT_FALSE(velEndModalRun(&late)) << "no run is left";
}

TEST_F(ModalRun, AGuardTellsInTheTextThatItIsGiven)
{
    const std::string text = notDone;
    const auto guard = [](const Action& work) {
        return velGuard(7, IDS_CALL_FAILED, [&]() -> INT_PTR { return work(), 1; });
    };
    EXPECT_EQ(Play([&] { return guard(Throw("why")); }, 0, text + "why"), 7);
    EXPECT_EQ(Play([&] { return guard([] { throw 1; }); }, 0, text + unknown), 7);
    EXPECT_EQ(guard([] { AfxThrowUserException(); }), 7) << "the user has been told";
    EXPECT_EQ(guard([] {}), 1);
}

TEST_F(ModalRun, ScopesPutBackWhatTheySet)
{
    CVelDlgsApp& app = *VelApp();
    const auto state = [&] {
        return std::tuple(app.GetPatients(), app.GetPracticeManagement(), CVeltrixLogin::m_bNewPatFromDI);
    };
    const auto none = state();
    EXPECT_EQ(none, std::tuple(nullptr, 0, 0));
    dbCPatients patients;
    try
    {
        const CPatientsScope list(&patients);
        const CNewPatientScope entering;
        const CPracticeManagementScope flag(5);
        {
            const CPracticeManagementScope nested(-1);
            EXPECT_EQ(app.GetPracticeManagement(), -1);
        }
        EXPECT_EQ(state(), std::tuple(&patients, 5, 1));
        throw std::runtime_error("a dialog failed");
    }
    catch (const std::runtime_error&)
    {
    }
    EXPECT_EQ(state(), none);

    EXPECT_FALSE(app.IsArchivingAllowed());
    EXPECT_FALSE(app.SetArchivingAllowed(true));
    EXPECT_TRUE(app.SetArchivingAllowed(false));
    app.SetArchiveOptions(3, 4);
    EXPECT_EQ(app.GetArchiveOption1(), 3);
    EXPECT_EQ(app.GetArchiveOption2(), 4);
}

} // namespace
