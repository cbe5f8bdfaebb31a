// What a user meets while a patient is saved, loaded and merged: silence_bench plays the archive dialog in
// real windows on a patient of BENCH_MEGABYTES (200) and prints, as archive_bench does, one line a figure:
// name, seconds, 0. For each operation the longest time between a message to the host's window and its
// answer, from OK in the dialog to its end; for the load also the time from OK to the last file in the
// practice. Leaves the archive at the path BENCH_ARCHIVE, so that another program can unpack it too.

#include "suite/patients/store/dbsteps.h"
#include "tests/archive/archivefixture.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <random>
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
    // Gives the patient's files the contents that archive_bench has: of three bytes two are noise, as packed
    // images are, and one is text. They have been on the disk for long, as a practice's files have: the
    // database would wait for them.
    void Fill()
    {
        std::mt19937_64 random(20261121);
        for (const auto& entry : std::filesystem::directory_iterator(m_practice.Path(m_working)))
        {
            const std::size_t nBytes = static_cast<std::size_t>(entry.file_size());
            std::string bytes;
            while (bytes.size() < nBytes / 3 * 2)
            {
                const std::uint64_t nNoise = random();
                bytes.append(reinterpret_cast<const char*>(&nNoise), sizeof nNoise);
            }
            while (bytes.size() < nBytes)
                bytes +=
                    "point " + std::to_string(random() % 4096) + "," + std::to_string(random() % 4096) + "\n";
            if (entry.path().extension() == ".PF")
                continue;
            m_practice.WriteFile(m_working + "\\" + entry.path().filename().string(), bytes);
            const HANDLE hFile = ::CreateFile(entry.path().string().c_str(), GENERIC_WRITE, 0, nullptr,
                                              OPEN_EXISTING, 0, nullptr);
            ::FlushFileBuffers(hFile);
            ::CloseHandle(hFile);
        }
    }

    void Measure(const char* pszName, ARCHIVE_OP nOperation, const std::vector<std::string>& ids)
    {
        std::unique_ptr<Listener> pListener;
        const HWND hHost = m_host;
        const auto listen = [&] { pListener = std::make_unique<Listener>(hHost); };
        const auto play = [&](DialogScript& script) {
            script.SetPatience(600'000);
            const veltest::Dialog choice = WaitForChoice(script);
            if (nOperation != ARCHIVE_OP_SAVE)
                listen();
            choice.Press(IDOK);
            if (nOperation != ARCHIVE_OP_SAVE)
                return;
            TakeOfferedName(script);
            script.WaitUntil("the save to begin", [] { return *g_pszStep != '\0'; });
            listen();
            script.WaitForBox().Press(IDNO);
        };
        EXPECT_EQ(Run(nOperation, ids, Given(nOperation), play), IDOK);
        std::printf("silence_%s %.6f 0\n", pszName, pListener->GetLongest());
        std::fprintf(stderr, "%s: longest silence behind step \"%s\"\n", pszName, pListener->GetStep());
        g_pszStep = "";
    }

    // How long a load takes when nobody listens, from OK to the end of the dialog. Where the time goes is
    // told beside it.
    void TimeLoad()
    {
        static std::vector<std::pair<std::string, Clock::time_point>>
            s_steps; // each waits for the one before
        s_steps.clear();
        dbObserveSteps([](const char* pszStep) { s_steps.emplace_back(pszStep, Clock::now()); });
        Clock::time_point begun;
        const auto play = [&](DialogScript& script) {
            script.SetPatience(600'000);
            const veltest::Dialog choice = WaitForChoice(script);
            begun = Clock::now();
            choice.Press(IDOK);
        };
        EXPECT_EQ(Run(ARCHIVE_OP_LOAD, {}, Given(ARCHIVE_OP_LOAD), play), IDOK);
        const std::chrono::duration<double> time = Clock::now() - begun;
        std::printf("practice_load %.6f 0\n", time.count());
        for (const auto& [step, reached] : s_steps)
        {
            if (step.starts_with("load."))
                std::fprintf(stderr, "%s %.3f s\n", step.c_str(),
                             std::chrono::duration<double>(reached - begun).count());
        }
        EXPECT_TRUE(IsStored("A1"));
    }

private:
    std::vector<std::string> Given(ARCHIVE_OP nOperation) const
    {
        return nOperation == ARCHIVE_OP_SAVE ? std::vector<std::string>() : std::vector{Archive("A1")};
    }
};
} // namespace

TEST_F(SilenceBench, SaveLoadMerge)
{
    constexpr int Timepoints = 60;
    constexpr std::size_t FilesEach = 7; // of StorePatient
    const char* const pszMegabytes = std::getenv("BENCH_MEGABYTES");
    const std::size_t nMegabytes = pszMegabytes != nullptr ? std::strtoull(pszMegabytes, nullptr, 10) : 200;
    m_practice.Set("Defaults", "ArchiveThreads", "0"); // as many as the machine has
    StorePatient("A1", Timepoints, (nMegabytes << 20) / (Timepoints * FilesEach));
    Fill();
    const auto observe = [] { dbObserveSteps([](const char* pszStep) { g_pszStep = pszStep; }); };
    observe();
    Measure("save", ARCHIVE_OP_SAVE, {"A1"});
    if (const char* const pszArchive = std::getenv("BENCH_ARCHIVE"))
        std::filesystem::copy_file(Archive("A1"), pszArchive);
    UsePractice(2);
    TimeLoad(); // first: some file systems are slow to create files for minutes after many were removed
    m_patients.DeletePatient("A1");
    observe();
    Measure("load", ARCHIVE_OP_LOAD, {});
    m_patients.DeletePatient("A1");
    StorePatient("A1", 1, 10);
    Measure("merge", ARCHIVE_OP_MERGE, {"A1"});
    dbObserveSteps(nullptr);
}
