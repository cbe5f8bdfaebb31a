#include "archive/status/statusthread.h"

#include "archive/status/archiveprogressdlg.h"
#include "archive/status/messagewait.h"
#include "archive/work/resultcodes.h"
#include "tests/support/childprocess.h"
#include "tests/support/dialogquality.h"
#include "tests/support/dialogscript.h"
#include "tests/support/mfctestprogram.h"
#include "tests/support/picture.h"

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
    LRESULT DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam) override
    {
        if (message == arcMsgSaveEnded || message == arcMsgLoadEnded)
        {
            m_nEnded = message;
            m_nResult = lParam;
        }
        return CWnd::DefWindowProc(message, wParam, lParam);
    }
};

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

class StatusThreadTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(owner.Open());
        work.hOwner = owner.GetSafeHwnd();
        work.strStatus = "\nArchiving data for\n\nJo Smith (ID:S1).";
        AnswerWith(arc::ResultDone);
    }

    void TearDown() override
    {
        EXPECT_TRUE(owner.IsWindowEnabled());
        owner.DestroyWindow();
    }

    // Runs the thread with the owner's messages dispatched, until it reports.
    int Run(const veltest::DialogScript::Script& script)
    {
        const auto thread = arcCStatusThread::Start(work);
        veltest::RunModal([&] { arcPumpUntil(thread->m_hThread); }, script);
        return thread->Join();
    }

    void AnswerWith(int nResult)
    {
        work.otherWork = [=](const arcAsk&, const arcProgress&) { return nResult; };
    }

    OwnerWindow owner;
    arcSStatusWork work;
};
} // namespace

TEST_F(StatusThreadTest, ShowsTheWorkAndCannotBeClosed)
{
    std::atomic<bool> release = false;
    work.otherWork = [&release](const arcAsk& ask, const arcProgress& progress) {
        while (!release)
        {
            progress(42, "S100.I40");
            ::Sleep(5);
        }
        return ask("Insert disk?", MB_YESNO) == IDYES ? arc::ResultDone : arc::ResultSaveFailed;
    };
    const int nResult = Run([&](veltest::DialogScript& script) {
        const veltest::Dialog dialog = script.WaitForDialogWith(IDC_ARC_PROGRESS_BAR);
        EXPECT_EQ(dialog.Item(IDC_ARC_PROGRESS_TEXT).Text(), "\nArchiving data for\n\nJo Smith (ID:S1).");
        EXPECT_FALSE(::IsWindowEnabled(work.hOwner));
        script.WaitUntil("the bar and the line", [&] {
            return dialog.Item(IDC_ARC_PROGRESS_BAR).Send(PBM_GETPOS) == 42 &&
                   dialog.Item(IDC_ARC_PROGRESS_LINE).Text() == "S100.I40";
        });
        EXPECT_EQ(veltest::DialogFindings(dialog.Handle()).find("cut"), std::string::npos);
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
        const veltest::Dialog box = script.WaitForBox("Insert disk?");
        EXPECT_EQ(::GetWindow(box.Handle(), GW_OWNER), dialog.Handle());
        box.Press(IDYES);
        script.WaitUntil("the window to go", [&] { return !dialog.IsOpen(); });
    });
    EXPECT_EQ(nResult, arc::ResultDone);
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
            EXPECT_TRUE(trouble != Trouble::Destroyed || ask("Nobody is there", MB_YESNO) == 0);
            return bGoOn ? 17 : arc::ResultCancelled;
        };
        const int nResult = Run([&](veltest::DialogScript& script) {
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
                script.AnswerBox("Archive Save Error! (Code: 17)", IDOK);
            }
            ::UnhookWindowsHookEx(hHook);
        });
        const int nExpected = trouble == Trouble::Quit ? arc::ResultCancelled : 17;
        EXPECT_EQ(nResult, nExpected);
        EXPECT_EQ(owner.m_nResult, trouble == Trouble::OwnerGone ? -1 : nExpected);
        owner.m_nResult = -1;
        if (trouble == Trouble::OwnerGone)
        {
            ASSERT_TRUE(owner.Open());
            work.hOwner = owner.GetSafeHwnd();
        }
    }
}

// The window that was active comes to the front again, though neither is it the hidden one that the messages
// go to nor is another program's window far.
TEST_F(StatusThreadTest, TheUsersWindowComesBackToTheFront)
{
    owner.SetWindowText("Here");
    const veltest::ChildProcess other("showWindow", {});
    for (int i = 0; i < 1000 && ::FindWindow(nullptr, "Host") == nullptr; ++i)
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
        AnswerWith(nResult);
        Run([&](veltest::DialogScript& script) {
            if (nResult == arc::ResultDone)
                return;
            const veltest::Dialog box = script.WaitForBox();
            EXPECT_FALSE(dialog.IsWindowEnabled()); // by the thread, or by the box that it owns
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
        Run([](veltest::DialogScript& script) {
            script.AnswerBox(
                "Couldn't create archive file. Please check if the drive or the existing archive "
                "file is read-only.",
                IDOK);
        });
        EXPECT_EQ(owner.m_nResult, arc::ResultSaveFailed);
    }
}

TEST_F(StatusThreadTest, AWindowThatWasDisabledBeforeStaysSoAndNothingOutlivesTheObject)
{

    for (const auto& [bSave, bPosts, nEnded] :
         {std::tuple{TRUE, true, arcMsgSaveEnded}, {FALSE, true, arcMsgLoadEnded}, {TRUE, false, 0U}})
    {
        work.bSave = bSave;
        work.bPostsEnd = bPosts;
        owner.m_nEnded = 0;
        owner.EnableWindow(FALSE);
        const auto thread = arcCStatusThread::Start(work);
        arcPumpUntil(thread->m_hThread);
        EXPECT_FALSE(owner.IsWindowEnabled());
        EXPECT_EQ(owner.m_nEnded, nEnded);
    }
    HANDLE hThread = nullptr;
    ASSERT_TRUE(::DuplicateHandle(::GetCurrentProcess(), arcCStatusThread::Start(work)->m_hThread,
                                  ::GetCurrentProcess(), &hThread, SYNCHRONIZE, FALSE, 0));
    EXPECT_EQ(::WaitForSingleObject(hThread, 0), WAIT_OBJECT_0); // nothing of it outlives the object
    ::CloseHandle(hThread);
    owner.EnableWindow(TRUE);
}
