// User interface threads: start, message loop, exit code, exceptions.
#include "mfcprogram.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace
{
constexpr UINT wmAnswer = WM_APP + 1;
constexpr UINT wmThrow = WM_APP + 2;

class CTestThread : public CWinThread
{
public:
    DWORD m_initThread = 0;
    int m_answers = 0;
    std::vector<std::string> m_thrown;
    bool m_refuses = false;

    BOOL InitInstance() override
    {
        m_initThread = ::GetCurrentThreadId();
        return !m_refuses;
    }
    int ExitInstance() override
    {
        return 7;
    }
    LRESULT ProcessWndProcException(CException* e, const MSG*) override
    {
        char text[64] = "";
        e->GetErrorMessage(text, sizeof(text));
        m_thrown.emplace_back(text);
        return 0;
    }

protected:
    void OnAnswer(WPARAM, LPARAM)
    {
        EXPECT_EQ(AfxGetThread(), this);
        ++m_answers;
    }
    void OnThrow(WPARAM, LPARAM)
    {
        throw std::runtime_error("thread");
    }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(CTestThread, CWinThread)
ON_THREAD_MESSAGE(wmAnswer, &CTestThread::OnAnswer)
ON_THREAD_MESSAGE(wmThrow, &CTestThread::OnThrow)
END_MESSAGE_MAP()

DWORD WaitForExit(CWinThread& thread)
{
    EXPECT_EQ(::WaitForSingleObject(thread.m_hThread, 20'000), WAIT_OBJECT_0);
    DWORD code = 0;
    ::GetExitCodeThread(thread.m_hThread, &code);
    return code;
}

TEST(MfcThread, RunsItsLoopOnItsOwnThread)
{
    CTestThread thread;
    thread.m_bAutoDelete = FALSE;
    ASSERT_TRUE(thread.CreateThread());
    // Messages posted at once arrive: the queue is there when CreateThread returns.
    EXPECT_TRUE(::PostThreadMessage(thread.m_nThreadID, wmAnswer, 0, 0));
    EXPECT_TRUE(::PostThreadMessage(thread.m_nThreadID, wmThrow, 0, 0));
    EXPECT_TRUE(::PostThreadMessage(thread.m_nThreadID, wmAnswer, 0, 0));
    EXPECT_TRUE(::PostThreadMessage(thread.m_nThreadID, WM_QUIT, 0, 0));
    EXPECT_EQ(WaitForExit(thread), 7U);
    EXPECT_EQ(thread.m_initThread, thread.m_nThreadID);
    EXPECT_EQ(thread.m_answers, 2);
    EXPECT_EQ(thread.m_thrown, std::vector<std::string>{"thread"});
    EXPECT_EQ(AfxGetThread(), &TestApp());
}

TEST(MfcThread, BeginsSuspendedUntilResumed)
{
    CTestThread thread;
    thread.m_bAutoDelete = FALSE;
    thread.m_refuses = true;
    ASSERT_TRUE(thread.CreateThread(CREATE_SUSPENDED));
    EXPECT_EQ(thread.m_initThread, 0U);
    thread.ResumeThread();
    EXPECT_EQ(WaitForExit(thread), 7U);
    EXPECT_NE(thread.m_initThread, 0U);
}
} // namespace
