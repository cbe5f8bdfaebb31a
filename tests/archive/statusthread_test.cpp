#include "archive/status/statusthread.h"

#include "archive/status/archiveprogressdlg.h"
#include "archive/status/messagewait.h"
#include "archive/files/filenames.h"
#include "archive/work/resultcodes.h"
#include "tests/support/childprocess.h"
#include "tests/support/dialogquality.h"
#include "tests/support/dialogscript.h"
#include "tests/support/mfctestprogram.h"
#include "tests/support/picture.h"
#include "tests/support/temporarypractice.h"

#include <afxcmn.h>

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>

VEL_MFC_TEST_PROGRAM();

namespace
{
// The host's main window: owns the operation and takes the message of its end.
class OwnerWindow : public CWnd
{
public:
    BOOL Open()
    {
        return CreateEx(0, AfxRegisterWndClass(0), "Host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 10, 10, 600, 400,
                        nullptr, nullptr);
    }

    UINT m_nEnded = 0; // the message, once it came
    LPARAM m_nResult = -1;

protected:
    afx_msg LRESULT OnSaveEnded(WPARAM, LPARAM lParam)
    {
        m_nEnded = arcMsgSaveEnded;
        m_nResult = lParam;
        return 0;
    }
    afx_msg LRESULT OnLoadEnded(WPARAM, LPARAM lParam)
    {
        m_nEnded = arcMsgLoadEnded;
        m_nResult = lParam;
        return 0;
    }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(OwnerWindow, CWnd)
ON_MESSAGE(arcMsgSaveEnded, &OwnerWindow::OnSaveEnded)
ON_MESSAGE(arcMsgLoadEnded, &OwnerWindow::OnLoadEnded)
END_MESSAGE_MAP()

// Another program, whose window would be the next to come to the front.
VEL_CHILD_PROCESS(showWindow)
{
    OwnerWindow window;
    window.Open();
    while (AfxPumpMessage())
    {
    }
    return 0;
}

// Destroys the window of a message on the window's own thread, as the system does with what a window owns.
constexpr UINT DestroyHere = WM_APP + 100;
LRESULT CALLBACK DestroyOnMessage(int nCode, WPARAM wParam, LPARAM lParam)
{
    const MSG& message = *reinterpret_cast<const MSG*>(lParam);
    if (nCode == HC_ACTION && wParam == PM_REMOVE && message.message == DestroyHere)
        ::DestroyWindow(message.hwnd);
    return ::CallNextHookEx(nullptr, nCode, wParam, lParam);
}

constexpr const char* NotCreated =
    "Couldn't create archive file. Please check if the drive or the existing archive file is read-only.";

class StatusThreadTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(owner.Open());
        work.hOwner = owner.GetSafeHwnd();
        work.strStatus = "\nArchiving data for\n\nJo Smith (ID:S1).";
        work.strFolder = practice.Path("working").c_str();
        work.strFileList = arc::ArchivePatternArgument("S1").c_str();
        work.strArchivePath = practice.Path("archive\\S1.KAZ").c_str();
    }

    void TearDown() override
    {
        EXPECT_TRUE(owner.IsWindowEnabled());
        owner.DestroyWindow();
    }

    static void PumpUntilEnded(HANDLE hThread)
    {
        while (arcPumpOrWait(hThread) != arcWoken::Object)
        {
        }
    }

    // Runs the thread with the owner's messages dispatched, until it reports.
    void Run()
    {
        const auto thread = arcCStatusThread::Start(work);
        ASSERT_TRUE(thread);
        PumpUntilEnded(thread->m_hThread);
        EXPECT_EQ(thread->Join(), owner.m_nResult);
    }
    void Run(const veltest::DialogScript::Script& script)
    {
        veltest::RunModal([this] { Run(); }, script);
    }

    // Does the work as long as the script needs it.
    void HoldWork(std::atomic<bool>& release)
    {
        work.otherWork = [&release](const arcAsk&, const arcProgress& progress) {
            while (!release)
            {
                progress(42, "S100.I40");
                ::Sleep(5);
            }
            return arc::ResultDone;
        };
    }

    veltest::TemporaryPractice practice;
    OwnerWindow owner;
    arcSStatusWork work;
};
} // namespace

TEST_F(StatusThreadTest, SavesAndLoads)
{
    practice.WriteFile("working\\S1.PF", "patient");
    practice.WriteFile("working\\S100.I40", std::string(3'000'000, 'x'));
    practice.WriteFile("temp\\S1.ACV", "record");
    work.moreFiles = {practice.Path("temp\\S1.ACV")};
    Run();
    EXPECT_EQ(owner.m_nEnded, arcMsgSaveEnded);
    EXPECT_EQ(owner.m_nResult, arc::ResultDone);

    owner.m_nEnded = 0;
    work.bSave = FALSE;
    work.strFolder = practice.Path("temp\\VELTMP").c_str();
    Run();
    EXPECT_EQ(owner.m_nEnded, arcMsgLoadEnded);
    EXPECT_EQ(owner.m_nResult, arc::ResultDone);
    EXPECT_EQ(practice.ReadFile("temp\\VELTMP\\S1.ACV"), "record");
    EXPECT_EQ(practice.ReadFile("temp\\VELTMP\\S100.I40").size(), 3'000'000u);
}

TEST_F(StatusThreadTest, ShowsTheWorkAndCannotBeClosed)
{
    std::atomic<bool> release = false;
    HoldWork(release);
    Run([&](veltest::DialogScript& script) {
        const veltest::Dialog dialog = script.WaitForDialogWith(IDC_ARC_PROGRESS_BAR);
        EXPECT_EQ(dialog.Item(IDC_ARC_PROGRESS_TEXT).Text(), "\nArchiving data for\n\nJo Smith (ID:S1).");
        EXPECT_FALSE(::IsWindowEnabled(work.hOwner));
        script.WaitUntil("the bar and the line", [&] {
            return dialog.Item(IDC_ARC_PROGRESS_BAR).Send(PBM_GETPOS) == 42 &&
                   dialog.Item(IDC_ARC_PROGRESS_LINE).Text() == "S100.I40";
        });
        veltest::QualityOptions options;
        options.ignoredIds = {IDC_ARC_PROGRESS_BAR};
        EXPECT_EQ(veltest::DialogFindings(dialog.Handle(), options).find("cut"), std::string::npos);
        EXPECT_TRUE(veltest::SavePicture(dialog.Handle(), "archive-progress"));

        for (const auto& [message, parameter] : {std::pair<UINT, WPARAM>{WM_CLOSE, 0},
                                                 {WM_SYSCOMMAND, SC_CLOSE},
                                                 {WM_COMMAND, IDCANCEL},
                                                 {WM_COMMAND, IDOK},
                                                 {WM_KEYDOWN, VK_ESCAPE},
                                                 {WM_COMMAND, arcCmdStartWork}})
        {
            ::PostMessage(dialog.Handle(), message, parameter, 0);
        }
        script.Settle(dialog.Handle());
        EXPECT_TRUE(dialog.IsOpen());
        EXPECT_EQ(owner.m_nEnded, 0u);
        release = true;
        script.WaitUntil("the window to go", [&] { return !dialog.IsOpen(); });
    });
    EXPECT_EQ(owner.m_nResult, arc::ResultDone);
}

// Whatever becomes of its window, the work is done and its result arrives.
TEST_F(StatusThreadTest, TheWorkDoesNotDependOnTheWindow)
{
    enum class Trouble
    {
        Moved,     // held by the user; the end of the work ends that
        Destroyed, // with a window that owned it
        OwnerGone,
        Quit // the work is told to stop
    };
    for (const Trouble trouble : {Trouble::Moved, Trouble::Destroyed, Trouble::OwnerGone, Trouble::Quit})
    {
        SCOPED_TRACE(static_cast<int>(trouble));
        std::atomic<int> reports = 0;
        std::atomic<bool> release = false;
        work.otherWork = [&](const arcAsk& ask, const arcProgress& progress) {
            bool bGoOn = true;
            while (bGoOn && !release)
            {
                bGoOn = progress(42, "S100.I40");
                ++reports;
                ::Sleep(1);
            }
            if (trouble == Trouble::Destroyed)
            {
                EXPECT_EQ(ask("Nobody is there", MB_YESNO), 0);
            }
            return bGoOn ? 17 : arc::ResultCancelled;
        };
        const auto thread = arcCStatusThread::Start(work);
        ASSERT_TRUE(thread);
        veltest::RunModal(
            [&] { PumpUntilEnded(thread->m_hThread); },
            [&](veltest::DialogScript& script) {
                const veltest::Dialog dialog = script.WaitForDialogWith(IDC_ARC_PROGRESS_BAR);
                const DWORD nThread = ::GetWindowThreadProcessId(dialog.Handle(), nullptr);
                const HHOOK hHook = ::SetWindowsHookEx(WH_GETMESSAGE, DestroyOnMessage, nullptr, nThread);
                script.WaitUntil("work", [&] { return reports > 0; });
                switch (trouble)
                {
                case Trouble::Moved:
                    ::PostMessage(dialog.Handle(), WM_SYSCOMMAND, SC_MOVE, 0);
                    script.WaitUntil("the loop of the move", [&] {
                        GUITHREADINFO info{};
                        info.cbSize = sizeof info;
                        return ::GetGUIThreadInfo(nThread, &info) && (info.flags & GUI_INMOVESIZE) != 0;
                    });
                    break;
                case Trouble::Destroyed:
                    ::PostMessage(dialog.Handle(), DestroyHere, 0, 0);
                    script.WaitUntil("no window", [&] { return !dialog.IsOpen(); });
                    break;
                case Trouble::OwnerGone:
                    ::PostMessage(work.hOwner, WM_CLOSE, 0, 0);
                    script.WaitUntil("no owner", [&] { return !::IsWindow(work.hOwner); });
                    break;
                case Trouble::Quit:
                    ::PostThreadMessage(nThread, WM_QUIT, 0, 0);
                    script.AnswerBox("The archive process was cancelled", IDOK);
                    break;
                }
                if (trouble != Trouble::Quit)
                {
                    const int nBefore = reports;
                    script.WaitUntil("more work", [&] { return reports > nBefore; });
                    release = true;
                    if (trouble != Trouble::Moved)
                        script.AnswerBox("Archive Save Error! (Code: 17)", IDOK);
                    else
                        script.WaitForBox("Archive Save Error! (Code: 17)").Press(IDOK);
                }
                ::UnhookWindowsHookEx(hHook);
            });
        const int nExpected = trouble == Trouble::Quit ? arc::ResultCancelled : 17;
        EXPECT_EQ(thread->Join(), nExpected);
        EXPECT_EQ(owner.m_nResult, trouble == Trouble::OwnerGone ? -1 : nExpected);
        owner.m_nResult = -1;
        if (trouble == Trouble::OwnerGone)
        {
            ASSERT_TRUE(owner.Open());
            work.hOwner = owner.GetSafeHwnd();
        }
    }
}

TEST_F(StatusThreadTest, AsksOverTheProgressDialog)
{
    work.otherWork = [](const arcAsk& ask, const arcProgress&) {
        return ask("Insert disk?", MB_YESNO) == IDYES ? arc::ResultDone : arc::ResultSaveFailed;
    };
    Run([](veltest::DialogScript& script) {
        const veltest::Dialog box = script.WaitForBox("Insert disk?");
        EXPECT_TRUE(::GetDlgItem(::GetWindow(box.Handle(), GW_OWNER), IDC_ARC_PROGRESS_BAR));
        box.Press(IDYES);
    });
    EXPECT_EQ(owner.m_nResult, arc::ResultDone);
}

// The window that was active comes to the front again, though neither is it the hidden one that the messages
// go to nor is another program's window far.
TEST_F(StatusThreadTest, TheUsersWindowComesBackToTheFront)
{
    const veltest::ChildProcess other("showWindow", {});
    const auto otherIsShown = [&] {
        return ::FindWindowEx(nullptr, owner.m_hWnd, nullptr, "Host") != nullptr ||
               ::FindWindow(nullptr, "Host") != owner.m_hWnd;
    };
    for (int i = 0; i < 1000 && !otherIsShown(); ++i)
        ::Sleep(10);
    CWnd hidden;
    ASSERT_TRUE(hidden.CreateEx(0, AfxRegisterWndClass(0), "", WS_POPUP, CRect(0, 0, 9, 9), &owner, 0));
    OwnerWindow dialog;
    ASSERT_TRUE(dialog.CreateEx(0, AfxRegisterWndClass(0), "Choice", WS_POPUP | WS_VISIBLE,
                                CRect(0, 0, 99, 99), &owner, 0));
    ::SetForegroundWindow(dialog);
    ASSERT_EQ(::GetForegroundWindow(), dialog.m_hWnd);
    work.hOwner = hidden;
    for (const int nResult : {arc::ResultDone, arc::ResultCancelled, arc::ResultSaveFailed})
    {
        work.otherWork = [nResult](const arcAsk&, const arcProgress&) { return nResult; };
        const auto thread = arcCStatusThread::Start(work);
        ASSERT_TRUE(thread);
        veltest::RunModal([&] { PumpUntilEnded(thread->m_hThread); },
                          [&](veltest::DialogScript& script) {
                              if (nResult == arc::ResultDone)
                                  return;
                              const veltest::Dialog box = script.WaitForBox();
                              // By the thread, or by the box that it owns.
                              EXPECT_FALSE(dialog.IsWindowEnabled());
                              box.Press(IDOK);
                          });
        EXPECT_EQ(::GetForegroundWindow(), dialog.m_hWnd) << nResult;
        EXPECT_TRUE(dialog.IsWindowEnabled() && owner.IsWindowEnabled());
    }
    dialog.DestroyWindow();
    hidden.DestroyWindow();
}

TEST_F(StatusThreadTest, WhatWasPostedBeforeTheObjectComesFirst)
{
    const HANDLE hEvent = ::CreateEvent(nullptr, TRUE, TRUE, nullptr);
    EXPECT_FALSE(arcPumpUntil(hEvent)); // what the window was opened with
    ::PostMessage(owner, arcMsgSaveEnded, 0, 7);
    EXPECT_EQ(arcPumpOrWait(hEvent), arcWoken::Message);
    EXPECT_EQ(owner.m_nResult, 7);
    ::PostQuitMessage(3);
    EXPECT_TRUE(arcPumpUntil(hEvent));
    EXPECT_EQ(arcPumpOrWait(nullptr), arcWoken::Quit);
    EXPECT_EQ(AfxGetCurrentMessage()->wParam, 3u);
    ::CloseHandle(hEvent);
}

TEST_F(StatusThreadTest, MessagesAreAnsweredWhileWorkIsDoneMeanwhile)
{
    EXPECT_FALSE(arcMeanwhile([&] {
        ::SendMessage(work.hOwner, arcMsgLoadEnded, 0, static_cast<LPARAM>(::GetCurrentThreadId()));
    }));
    EXPECT_NE(owner.m_nResult, static_cast<LPARAM>(::GetCurrentThreadId()));
    EXPECT_EQ(owner.m_nEnded, arcMsgLoadEnded);
    EXPECT_THROW(arcMeanwhile([] { throw std::runtime_error("broken"); }), std::runtime_error);
    EXPECT_TRUE(
        arcMeanwhile([nThread = ::GetCurrentThreadId()] { ::PostThreadMessage(nThread, WM_QUIT, 0, 0); }));
    EXPECT_EQ(arcPumpOrWait(nullptr), arcWoken::Quit);
}

TEST_F(StatusThreadTest, WorkThatThrowsIsAFailedOne)
{
    const std::function<int()> works[] = {[]() -> int { throw std::runtime_error("broken"); },
                                          []() -> int { AfxThrowMemoryException(); }};
    for (const auto& broken : works)
    {
        owner.m_nResult = -1;
        work.otherWork = [&](const arcAsk&, const arcProgress&) { return broken(); };
        Run([](veltest::DialogScript& script) { script.AnswerBox(NotCreated, IDOK); });
        EXPECT_EQ(owner.m_nResult, arc::ResultSaveFailed);
    }
}

TEST_F(StatusThreadTest, AWindowThatWasDisabledBeforeStaysSoAndTheEndIsPostedWhenWanted)
{
    work.otherWork = [](const arcAsk&, const arcProgress&) { return arc::ResultDone; };
    owner.EnableWindow(FALSE);
    Run();
    EXPECT_FALSE(owner.IsWindowEnabled());
    owner.EnableWindow(TRUE);

    work.bPostsEnd = false;
    owner.m_nEnded = 0;
    Run();
    EXPECT_EQ(owner.m_nEnded, 0u);
}
