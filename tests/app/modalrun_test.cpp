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
#include <map>
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

Action Throw(const std::string& reason)
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

constexpr UINT Command(UINT id)
{
    return 0x10000 + id;
}

/// Does what a test says before or after it handles a message; commands by their own numbers.
template <class Base> class Failing : public Base
{
public:
    using Base::Base;

    std::map<UINT, Action> m_before;
    std::map<UINT, Action> m_after;

protected:
    LRESULT WindowProc(UINT nMessage, WPARAM wParam, LPARAM lParam) override
    {
        const UINT key = nMessage == WM_COMMAND ? Command(LOWORD(wParam)) : nMessage;
        Do(m_before[key]);
        const LRESULT nResult = Base::WindowProc(nMessage, wParam, lParam);
        Do(m_after[key]);
        return nResult;
    }
};

class FailingDialog : public Failing<CDialog>
{
public:
    FailingDialog() : Failing(IDD_FAILING)
    {
    }
};

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

    FailingDialog m_dialog;
};

TEST_F(ModalRun, EndsAsTheDialogHadEndedOrCancelled)
{
    const Action notSupported = [] { throw new CNotSupportedException; };
    CString notSupportedText;
    CNotSupportedException().GetErrorMessage(notSupportedText.GetBuffer(256), 256);
    notSupportedText.ReleaseBuffer();

    const struct
    {
        const char* what;
        UINT place;
        Action action;
        int button;
        std::string message;
        INT_PTR result;
    } cases[] = {
        {"in a handler", Command(IDC_FAIL), Throw("no cable"), IDC_FAIL, closed + "no cable", IDCANCEL},
        {"of the framework's kind", Command(IDC_FAIL), notSupported, IDC_FAIL,
         closed + notSupportedText.GetString(), IDCANCEL},
        {"of no kind", Command(IDC_FAIL), [] { throw 42; }, IDC_FAIL, closed + unknown, IDCANCEL},
        {"without words", Command(IDC_FAIL), Throw(""), IDC_FAIL, closed + unknown, IDCANCEL},
        {"without end", Command(IDC_FAIL), Throw(std::string(5000, 'x')), IDC_FAIL,
         closed + std::string(1023, 'x'), IDCANCEL},
        {"while it is initialised", WM_INITDIALOG, Throw("no list"), 0, notOpened + "no list", IDCANCEL},
        {"while it is painted", WM_PAINT, Throw("no brush"), 0, closed + "no brush", IDCANCEL},
        {"after Cancel", WM_DESTROY, Throw("late"), IDCANCEL, notDone + "late", IDCANCEL},
        {"in OK, after it has ended the dialog", Command(IDOK), Throw("late"), IDOK, done + "late", IDOK},
        {"while a confirmed dialog is destroyed", WM_DESTROY, Throw("late"), IDOK, done + "late", IDOK},
        {"nothing", WM_NULL, {}, IDOK, "", IDOK},
    };
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.what);
        FailingDialog dialog;
        // OK fails once it has ended the dialog.
        (c.place == Command(IDOK) ? dialog.m_after : dialog.m_before)[c.place] = c.action;
        EXPECT_EQ(Play([&] { return velRunModal(dialog); }, c.button, c.message), c.result);
    }
}

TEST_F(ModalRun, ASheetThatHasStoredItsWorkEndsWithOK)
{
    const struct
    {
        const char* what;
        UINT place;
        bool stored;
        std::string message;
        INT_PTR result;
    } cases[] = {
        {"before it stored", Command(IDOK), false, closed, IDCANCEL},
        {"between storing and ending", Command(IDOK), true, done, IDOK},
        {"while it is destroyed", WM_DESTROY, true, done, IDOK},
        {"while it is destroyed with nothing stored", WM_DESTROY, false, notDone, IDCANCEL},
    };
    CPropertyPage page(IDD_FAILING_PAGE);
    const auto run = [&](UINT place, bool stored, int button, const std::string& message) {
        Failing<CPropertySheet> sheet("Failing");
        sheet.AddPage(&page);
        if (place != 0)
            sheet.m_before[place] = Throw("a cause");
        return Play([&] { return velRunModal(sheet, [&] { return stored; }); }, button, message);
    };
    for (const auto& c : cases)
        EXPECT_EQ(run(c.place, c.stored, IDOK, c.message + "a cause"), c.result) << c.what;
    EXPECT_EQ(run(0, true, IDCANCEL, ""), IDCANCEL);
}

TEST_F(ModalRun, WhatTheUserWasToldAlreadyEndsNothing)
{
    m_dialog.m_before[Command(IDC_FAIL)] = [] { AfxThrowUserException(); };
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
    m_dialog.m_before[Command(IDC_FAIL)] = Throw("first");
    m_dialog.m_before[WM_DESTROY] = Throw("second");
    EXPECT_EQ(Play([&] { return velRunModal(m_dialog); }, IDC_FAIL, closed + "first"), IDCANCEL);
}

/// An exception ends the innermost run, and the one around it only when no other runs.
TEST_F(ModalRun, NestedRunsFailOnTheirOwn)
{
    m_dialog.m_before[Command(IDC_FAIL)] = Throw("outer");
    INT_PTR innerResult = 0;
    FailingDialog inner;
    inner.m_before[Command(IDC_FAIL)] = Throw("inner");
    m_dialog.m_before[Command(IDC_NEST)] = [&] { innerResult = velRunModal(inner); };
    const auto result = veltest::RunDialog(
        [&] { return velRunModal(m_dialog); }, "Failing",
        [&](DialogScript& script, const Dialog& outer) {
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

    app.SetArchiveOptions(3, 4);
    EXPECT_EQ(app.GetArchiveOption1(), 3);
    EXPECT_EQ(app.GetArchiveOption2(), 4);
}

} // namespace
