// VelTour.exe: the host with a user who plays the tour. VelTour --pictures <folder>
#include "host/hostapp.h"
#include "host/hostframe.h"
#include "host/tour/tour.h"
#include "tests/support/dialogscript.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>

namespace
{

/// Works on a sample practice of its own in the folder of temporary files, and removes it at the end.
class tourCApp : public hostCApp
{
public:
    int Run() override;
    int ExitInstance() override;
    int DoMessageBox(LPCTSTR prompt, UINT type, UINT helpId) override;

protected:
    BOOL ReadOptions(hostSOptions& options) override;

private:
    void Play(veltest::DialogScript& script);

    std::filesystem::path m_folder; // holds the practice; made by this run
    int m_result = 1;
    bool m_playing = false;
};

tourCApp theApp;

BOOL tourCApp::ReadOptions(hostSOptions& options)
{
    const std::vector<std::string> arguments = GetArguments();
    if (arguments.size() != 2 || arguments[0] != "--pictures")
    {
        std::printf("usage: VelTour --pictures <folder>\n");
        return FALSE;
    }
    ::SetEnvironmentVariable("VELTEST_PICTURES", arguments[1].c_str());
    m_folder = std::filesystem::temp_directory_path() / ("VelTour-" + std::to_string(::GetCurrentProcessId()));
    std::error_code error;
    std::filesystem::remove_all(m_folder, error);
    options.practice = (m_folder / "Tour Practice").string();
    options.patients = hostCPractice::kSamplePatients;
    return TRUE;
}

// Before the user is there nobody would answer a box.
int tourCApp::DoMessageBox(LPCTSTR prompt, UINT type, UINT helpId)
{
    if (m_playing)
    {
        return hostCApp::DoMessageBox(prompt, type, helpId);
    }
    std::printf("The host does not start: %s\n", prompt);
    std::fflush(stdout);
    return IDCANCEL;
}

int tourCApp::Run()
{
    m_playing = true;
    int argumentCount = 1;
    testing::InitGoogleTest(&argumentCount, __argv);
    tourAttach(m_pMainWnd->m_hWnd);
    veltest::RunModal([&] { return hostCApp::Run(); }, [&](veltest::DialogScript& script) { Play(script); });
    // A script that could not go on has been reported as a failure of no test in particular.
    if (testing::UnitTest::GetInstance()->ad_hoc_test_result().Failed())
    {
        m_result = 1;
    }
    std::printf(m_result == 0 ? "The tour went as expected.\n" : "The tour differs from what is expected.\n");
    std::fflush(stdout);
    return m_result;
}

void tourCApp::Play(veltest::DialogScript& script)
{
    const HWND frame = m_pMainWnd->m_hWnd;
    tourCGuide guide(script, frame);
    try
    {
        for (const tourSStep& step : tourGetSteps())
        {
            guide.BeginStep(step.title);
            step.play(guide);
        }
        m_result = guide.GetFailures() == 0 ? 0 : 1;
    }
    catch (const std::exception& failure)
    {
        guide.Expect(false, failure.what() + std::string("\n") + veltest::DialogScript::ListWindows());
        // What hangs open is closed by the script's own end; the main window goes when the last dialog has gone.
    }
    ::PostMessage(frame, WM_CLOSE, 0, 0);
}

int tourCApp::ExitInstance()
{
    hostCApp::ExitInstance();
    std::error_code error;
    std::filesystem::remove_all(m_folder, error);
    return m_result;
}

} // namespace

// A console program, so that every line is seen where the tour was started.
int main()
{
    char commandLine[] = "";
    return AfxWinMain(::GetModuleHandle(nullptr), nullptr, commandLine, SW_SHOWNORMAL);
}
