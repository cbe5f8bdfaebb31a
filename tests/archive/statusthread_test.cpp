#include "archive/status/statusthread.h"

#include "archive/status/archiveprogressdlg.h"
#include "archive/files/filenames.h"
#include "archive/work/resultcodes.h"
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

    // Runs the thread with the owner's messages dispatched, until it reports.
    void Run()
    {
        ASSERT_TRUE(arcCStatusThread::Start(work));
        while (owner.m_nEnded == 0 && AfxPumpMessage())
        {
        }
    }
    void Run(const veltest::DialogScript::Script& script)
    {
        veltest::RunModal([this] { Run(); }, script);
    }

    // Does the work as long as the script needs it.
    void HoldWork(std::atomic<bool>& release)
    {
        work.otherWork = [&release](CWnd*, const arcProgress& progress) {
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
        ::Sleep(50); // the work goes on reporting meanwhile
        EXPECT_TRUE(dialog.IsOpen());
        EXPECT_EQ(owner.m_nEnded, 0u);
        release = true;
        script.WaitUntil("the window to go", [&] { return !dialog.IsOpen(); });
    });
    EXPECT_EQ(owner.m_nResult, arc::ResultDone);
}

TEST_F(StatusThreadTest, FailuresAreToldAndReported)
{
    work.strArchivePath = practice.Path("nowhere\\S1.KAZ").c_str();
    Run([](veltest::DialogScript& script) {
        script.AnswerBox(NotCreated, IDOK);
    });
    EXPECT_EQ(owner.m_nEnded, arcMsgSaveEnded);
    EXPECT_EQ(owner.m_nResult, arc::ResultSaveFailed);

    practice.WriteFile("archive\\S1.KAZ", "no zip at all");
    work.strArchivePath = practice.Path("archive\\S1.KAZ").c_str();
    work.bSave = FALSE;
    owner.m_nEnded = 0;
    Run([](veltest::DialogScript& script) { script.AnswerBox("Error opening archive file.", IDOK); });
    EXPECT_EQ(owner.m_nEnded, arcMsgLoadEnded);
    EXPECT_EQ(owner.m_nResult, arc::ResultLoadFailed);
}

TEST_F(StatusThreadTest, AnEmptyZipLoadsAsAnEmptyFolder)
{
    practice.WriteFile("archive\\S1.KAZ", std::string("PK\x05\x06", 4) + std::string(18, '\0'));
    work.bSave = FALSE;
    work.strFolder = practice.Path("temp\\VELTMP").c_str();
    Run();
    EXPECT_EQ(owner.m_nResult, arc::ResultDone);
    EXPECT_TRUE(std::filesystem::is_empty(practice.Folder() / "temp" / "VELTMP"));
}

TEST_F(StatusThreadTest, WorkThatThrowsIsAFailedOne)
{
    work.otherWork = [](CWnd*, const arcProgress&) -> int { throw std::runtime_error("broken"); };
    Run([](veltest::DialogScript& script) { script.AnswerBox(NotCreated, IDOK); });
    EXPECT_EQ(owner.m_nResult, arc::ResultSaveFailed);
    owner.m_nEnded = 0;
    work.otherWork = [](CWnd*, const arcProgress&) -> int { AfxThrowMemoryException(); };
    Run([](veltest::DialogScript& script) { script.AnswerBox(NotCreated, IDOK); });
    EXPECT_EQ(owner.m_nResult, arc::ResultSaveFailed);
}

TEST_F(StatusThreadTest, CancelledWorkIsTold)
{
    work.otherWork = [](CWnd*, const arcProgress&) { return arc::ResultCancelled; };
    Run([](veltest::DialogScript& script) { script.AnswerBox("The archive process was cancelled", IDOK); });
    EXPECT_EQ(owner.m_nResult, arc::ResultCancelled);
}

TEST_F(StatusThreadTest, AWindowThatWasDisabledBeforeStaysSo)
{
    work.otherWork = [](CWnd*, const arcProgress&) { return arc::ResultDone; };
    owner.EnableWindow(FALSE);
    Run();
    EXPECT_FALSE(owner.IsWindowEnabled());
    owner.EnableWindow(TRUE);
}
