// How long the user interface thread does not answer while a patient is saved, loaded and merged:
// silence_bench plays the archive dialog in real windows on a patient of BENCH_MEGABYTES (200) and prints, as
// archive_bench does, one line an operation: name, seconds, 0. The longest time between a message to the
// host's window and its answer counts, from OK in the dialog to its end.

#include "suite/patients/store/dbsteps.h"
#include "tests/archive/archivefixture.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <thread>

using veltest::DialogScript;

namespace
{
using Clock = std::chrono::steady_clock;

std::atomic<const char*> g_pszStep = "";

// Sends a window messages, one behind the other, as long as it lives.
class Listener
{
public:
    explicit Listener(HWND hWnd) : m_hWnd(hWnd), m_thread([this] { Run(); })
    {
    }
    ~Listener()
    {
        m_bStop = true;
        m_thread.join();
    }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    double GetLongest() const // seconds
    {
        return m_longest;
    }
    const char* GetStep() const // the last one before the longest silence
    {
        return m_pszStep;
    }

private:
    void Run()
    {
        while (!m_bStop)
        {
            const char* const pszStep = g_pszStep;
            const auto sent = Clock::now();
            ::SendMessage(m_hWnd, WM_NULL, 0, 0);
            const double silent = std::chrono::duration<double>(Clock::now() - sent).count();
            if (silent > m_longest)
            {
                m_longest = silent;
                m_pszStep = pszStep;
            }
            ::Sleep(1);
        }
    }

    const HWND m_hWnd;
    std::atomic<bool> m_bStop = false;
    std::atomic<double> m_longest = 0;
    std::atomic<const char*> m_pszStep = "";
    std::thread m_thread;
};

class SilenceBench : public ArchiveDialogTest
{
protected:
    void Measure(const char* pszName, ARCHIVE_OP nOperation, const std::vector<std::string>& ids,
                 const std::vector<std::string>& given)
    {
        std::unique_ptr<Listener> pListener;
        const HWND hHost = m_host;
        const auto listen = [&] { pListener = std::make_unique<Listener>(hHost); };
        EXPECT_EQ(Run(nOperation, ids, given,
                      [&](DialogScript& script) {
                          script.SetPatience(600'000);
                          const veltest::Dialog choice = WaitForChoice(script);
                          if (nOperation != ARCHIVE_OP_SAVE)
                              listen();
                          choice.Press(IDOK);
                          if (nOperation == ARCHIVE_OP_SAVE)
                          {
                              TakeOfferedName(script);
                              script.WaitUntil("the save to begin", [] { return *g_pszStep != '\0'; });
                              listen();
                              script.WaitForBox().Press(IDNO);
                          }
                      }),
                  IDOK);
        std::printf("silence_%s %.6f 0\n", pszName, pListener->GetLongest());
        std::fprintf(stderr, "%s: longest silence behind step \"%s\"\n", pszName, pListener->GetStep());
        g_pszStep = "";
    }
};
} // namespace

TEST_F(SilenceBench, SaveLoadMerge)
{
    constexpr int Timepoints = 60;
    constexpr std::size_t FilesEach = 7; // of StorePatient
    const char* const pszMegabytes = std::getenv("BENCH_MEGABYTES");
    const std::size_t nMegabytes = pszMegabytes != nullptr ? std::strtoull(pszMegabytes, nullptr, 10) : 200;
    StorePatient("A1", Timepoints, (nMegabytes << 20) / (Timepoints * FilesEach));
    // A practice's files have been on the disk for long; the database would wait for them.
    for (const auto& entry : std::filesystem::directory_iterator(m_practice.Path(m_working)))
    {
        const HANDLE hFile =
            ::CreateFile(entry.path().string().c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
        ::FlushFileBuffers(hFile);
        ::CloseHandle(hFile);
    }
    dbObserveSteps([](const char* pszStep) { g_pszStep = pszStep; });
    Measure("save", ARCHIVE_OP_SAVE, {"A1"}, {});
    UseSecondPractice();
    Measure("load", ARCHIVE_OP_LOAD, {}, {Archive("A1")});
    EXPECT_TRUE(IsStored("A1"));
    m_patients.DeletePatient("A1");
    StorePatient("A1", 1, 10);
    Measure("merge", ARCHIVE_OP_MERGE, {"A1"}, {Archive("A1")});
    dbObserveSteps(nullptr);
}
