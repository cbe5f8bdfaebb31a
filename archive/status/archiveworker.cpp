#include "archive/status/archiveworker.h"

#include "archive/status/messagewait.h"

#include <exception>

arcCWorker::arcCWorker(arcWork work, int nFailure) : m_work(std::move(work)), m_nResult(nFailure)
{
}

arcCWorker::~arcCWorker()
{
    if (!m_pThread)
        return;
    Stop();
    arcWaitAnswering(m_pThread->m_hThread); // it may be asking
}

bool arcCWorker::Start(HWND hWindow)
{
    m_hWindow = hWindow;
    m_pThread = std::make_unique<CWinThread>(&arcCWorker::Run, this);
    m_pThread->m_bAutoDelete = FALSE;
    if (!m_pThread->CreateThread(CREATE_SUSPENDED))
    {
        m_pThread.reset();
        return false;
    }
    // Whatever the user does meanwhile comes before it.
    m_pThread->SetThreadPriority(THREAD_PRIORITY_BELOW_NORMAL);
    m_pThread->ResumeThread();
    return true;
}

void arcCWorker::Stop()
{
    m_bStop = true;
}

HANDLE arcCWorker::GetHandle() const
{
    return m_pThread ? m_pThread->m_hThread : nullptr;
}

arcCWorker::Progress arcCWorker::TakeProgress()
{
    const std::lock_guard lock(m_mutex);
    m_bPosted = false;
    return m_progress;
}

UINT arcCWorker::Run(LPVOID pThis)
{
    static_cast<arcCWorker*>(pThis)->Work();
    return 0;
}

void arcCWorker::Work()
{
    arcJoinDesktop(::GetWindowThreadProcessId(m_hWindow, nullptr));
    try
    {
        m_nResult = m_work([this](const CString& strText, UINT nType) { return Ask(strText, nType); },
                           [this](int nPercent, const std::string& name) { return Report(nPercent, name); });
    }
    catch (CException* e)
    {
        e->Delete();
    }
    catch (...)
    {
    }
    ::PostMessage(m_hWindow, arcMsgWorkEnded, 0, 0);
}

bool arcCWorker::Report(int nPercent, const std::string& name)
{
    const std::lock_guard lock(m_mutex);
    m_progress.nPercent = nPercent;
    m_progress.name = name;
    if (!m_bPosted)
        m_bPosted = ::PostMessage(m_hWindow, arcMsgProgress, 0, 0) != FALSE;
    return !m_bStop;
}

int arcCWorker::Ask(const CString& strText, UINT nType) const
{
    const arcSQuestion question{strText, nType};
    return static_cast<int>(::SendMessage(m_hWindow, arcMsgAsk, 0, reinterpret_cast<LPARAM>(&question)));
}

bool arcMeanwhile(const std::function<void()>& work)
{
    std::exception_ptr pThrown;
    const auto guarded = [&](const arcAsk&, const arcProgress&) {
        try
        {
            work();
        }
        catch (...)
        {
            pThrown = std::current_exception();
        }
        return 0;
    };
    arcCWorker worker(guarded, 0);
    bool bQuits = false;
    if (worker.Start(nullptr))
        bQuits = arcPumpUntil(worker.GetHandle());
    else
        work();
    if (pThrown)
        std::rethrow_exception(pThrown);
    return bQuits;
}
