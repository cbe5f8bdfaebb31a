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

const std::string closed =
    "An error occurred, and this window had to be closed. What you entered in it was not saved.\n\n";
const std::string notOpened = "An error occurred, and the window could not be opened.\n\n";
const std::string done =
    "An error occurred while the window was being closed. What you confirmed in it has been carried out.\n\n";
const std::string notDone = "An error occurred, and what was asked for was not done.\n\n";
const std::string unknown = "The cause is not known.";

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

    using D = CFailingDialog;
    const struct
    {
        const char* what;
        Action D::*place;
        Action action;
        int button;
        std::string message;
        INT_PTR result;
    } cases[] = {
        {"in a handler", &D::m_onFail, Throw("no cable"), IDC_FAIL, closed + "no cable", IDCANCEL},
        {"of the framework's kind", &D::m_onFail, notSupported, IDC_FAIL,
         closed + notSupportedText.GetString(), IDCANCEL},
        {"of no kind", &D::m_onFail, [] { throw 42; }, IDC_FAIL, closed + unknown, IDCANCEL},
        {"without words", &D::m_onFail, Throw(""), IDC_FAIL, closed + unknown, IDCANCEL},
        {"while it is initialised", &D::m_onInit, Throw("no list"), 0, notOpened + "no list", IDCANCEL},
        {"after Cancel", &D::m_onDestroy, Throw("late"), IDCANCEL, notDone + "late", IDCANCEL},
        {"in OK, after it has ended the dialog", &D::m_onEnded, Throw("late"), IDOK, done + "late", IDOK},
        {"while a confirmed dialog is destroyed", &D::m_onDestroy, Throw("late"), IDOK, done + "late", IDOK},
        {"without end", &D::m_onFail, [] { throw std::runtime_error(std::string(5000, 'x')); }, IDC_FAIL,
         closed + std::string(1023, 'x'), IDCANCEL},
        {"while it is painted", &D::m_onPaint, Throw("no brush"), 0, closed + "no brush", IDCANCEL},
        {"nothing", &D::m_onFail, {}, IDOK, "", IDOK},
    };
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.what);
        CFailingDialog dialog;
        dialog.*c.place = c.action;
        EXPECT_EQ(Play([&] { return velRunModal(dialog); }, c.button, c.message), c.result);
    }
}

TEST_F(ModalRun, ASheetThatHasStoredItsWorkEndsWithOK)
{
    const struct
    {
        const char* what;
        Action CFailingSheet::*place;
        bool stored;
        int button;
        std::string message;
        INT_PTR result;
    } cases[] = {
        {"before it stored", &CFailingSheet::m_onOK, false, IDOK, closed, IDCANCEL},
        {"between storing and ending", &CFailingSheet::m_onOK, true, IDOK, done, IDOK},
        {"while it is destroyed", &CFailingSheet::m_onDestroy, true, IDOK, done, IDOK},
        {"while it is destroyed with nothing stored", &CFailingSheet::m_onDestroy, false, IDOK, notDone,
         IDCANCEL},
    };
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.what);
        CFailingSheet sheet;
        sheet.*c.place = Throw("a cause");
        EXPECT_EQ(Play([&] { return velRunModal(sheet, [&] { return c.stored; }); }, c.button,
                       c.message + "a cause"),
                  c.result);
    }
    CFailingSheet sheet;
    EXPECT_EQ(Play([&] { return velRunModal(sheet, [] { return true; }); }, IDCANCEL, ""), IDCANCEL);
}

TEST_F(ModalRun, WhatTheUserWasToldAlreadyEndsNothing)
{
    m_dialog.m_onFail = [] { AfxThrowUserException(); };
    const auto play = [](DialogScript& script, const Dialog& dialog) {
        dialog.Press(IDC_FAIL);
        script.Settle(dialog.Handle());
        EXPECT_FALSE(script.FindBox().has_value());
        dialog.Press(IDOK);
    };
    const auto result = veltest::RunDialog([&] { return velRunModal(m_dialog); }, "Failing", play);
    EXPECT_EQ(result, IDOK);
}

TEST_F(ModalRun, OnlyTheFirstReasonIsTold)
{
    m_dialog.m_onFail = Throw("first");
    m_dialog.m_onDestroy = Throw("second");
    EXPECT_EQ(Play([&] { return velRunModal(m_dialog); }, IDC_FAIL, closed + "first"), IDCANCEL);
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
                    ExpectMessage(script, closed + "inner");
                script.WaitUntil("the outer dialog can be used", [&] { return outer.IsEnabled(); });
                EXPECT_EQ(innerResult, button == IDC_FAIL ? IDCANCEL : IDOK);
            }
            outer.Press(IDC_FAIL);
            ExpectMessage(script, closed + "outer");
        });
    EXPECT_EQ(result, IDCANCEL);

    CNotSupportedException late;
    EXPECT_FALSE(velEndModalRun(&late)) << "no run is left";
}

TEST_F(ModalRun, AGuardTellsInTheTextThatItIsGiven)
{
    const auto guard = [](const Action& work) {
        return velGuard(7, IDS_CALL_FAILED, [&]() -> INT_PTR { return work(), 1; });
    };
    EXPECT_EQ(Play([&] { return guard(Throw("why")); }, 0, notDone + "why"), 7);
    EXPECT_EQ(Play([&] { return guard([] { throw 1; }); }, 0, notDone + unknown), 7);
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
