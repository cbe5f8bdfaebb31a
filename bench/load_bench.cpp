// How long the module takes to load, its settings container filled, against an empty regular DLL. Each load
// is measured in a process of its own, the two libraries in turn; printed are the medians and their ratio.
//
//     load_bench [rounds]

#include "suite/util/velinisettings.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace
{

constexpr const char* moduleName = "VelDlgs.dll";
constexpr const char* emptyName = "load_empty.dll";
constexpr int displayQuality = 7; // in the settings file, so that the fill can be told from zeros
constexpr DWORD failed = 0x80000000;

// A settings file as a practice has it.
bool WriteSettings(const std::string& path)
{
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr)
    {
        return false;
    }
    std::fprintf(file,
                 "; settings of the practice\r\n[Environment]\r\nWORKING=C:\\veltrix\\working\\\r\n"
                 "SYS=C:\\veltrix\r\narchive=C:\\veltrix\\archive\r\n\r\n"
                 "[Defaults]\r\nCountry=USA\r\nMeasWndNumDisplayPrec=2\r\nTracingPrintTextScale=0.8\r\n"
                 "DisplayQuality=%d\r\nBackgroundColor=255,255,240\r\nTracingLineThickness=1.5\r\n\r\n"
                 "[Intl]\r\nFamilyNameFirst=0\r\n",
                 displayQuality);
    return std::fclose(file) == 0;
}

// In the child process: the time of one load in microseconds.
DWORD MeasureLoad(const std::string& library)
{
    LARGE_INTEGER frequency = {};
    LARGE_INTEGER before = {};
    LARGE_INTEGER after = {};
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&before);
    const HMODULE module = LoadLibraryA(library.c_str());
    QueryPerformanceCounter(&after);
    if (module == nullptr)
    {
        std::printf("%s does not load: error %lu\n", library.c_str(), GetLastError());
        return failed;
    }
    if (library == moduleName)
    {
        const auto* container = reinterpret_cast<const CVelIniSettingsContainer*>(
            reinterpret_cast<const void*>(GetProcAddress(module, "g_VelIniSettingContainer")));
        if (container == nullptr || container->GetDisplayQuality() != displayQuality)
        {
            std::printf("the settings container is not filled\n");
            return failed;
        }
    }
    return static_cast<DWORD>((after.QuadPart - before.QuadPart) * 1000000 / frequency.QuadPart);
}

// One load in a new process.
DWORD LoadInChild(const std::string& program, const std::string& library)
{
    std::string command = "\"" + program + "\" --load " + library;
    STARTUPINFOA startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    if (!CreateProcessA(program.c_str(), command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                        &startup, &process))
    {
        return failed;
    }
    DWORD result = failed;
    if (WaitForSingleObject(process.hProcess, 60000) == WAIT_OBJECT_0)
    {
        GetExitCodeProcess(process.hProcess, &result);
    }
    else
    {
        TerminateProcess(process.hProcess, failed);
    }
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return result;
}

double Median(std::vector<DWORD>& times)
{
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
}

int Compare(const std::string& program, int rounds)
{
    std::array<char, MAX_PATH + 1> folder = {};
    GetTempPathA(static_cast<DWORD>(folder.size()), folder.data());
    const std::string settings = std::string(folder.data()) + "load_bench.ini";
    if (!WriteSettings(settings) || !SetEnvironmentVariableA("VELTRIX_INI", settings.c_str()))
    {
        std::printf("the settings file %s cannot be written\n", settings.c_str());
        return 1;
    }
    std::vector<DWORD> moduleTimes;
    std::vector<DWORD> emptyTimes;
    for (int round = 0; round < rounds; ++round)
    {
        moduleTimes.push_back(LoadInChild(program, moduleName));
        emptyTimes.push_back(LoadInChild(program, emptyName));
    }
    DeleteFileA(settings.c_str());
    const auto isFailure = [](DWORD time) { return time >= failed; };
    if (std::ranges::any_of(moduleTimes, isFailure) || std::ranges::any_of(emptyTimes, isFailure))
    {
        std::printf("a load failed\n");
        return 1;
    }
    const double moduleTime = Median(moduleTimes);
    const double emptyTime = std::max(Median(emptyTimes), 1.0);
    std::printf(
        "module load with container fill %.2f ms, empty regular DLL %.2f ms: ratio %.2f (medians of %d)\n",
        moduleTime / 1000, emptyTime / 1000, moduleTime / emptyTime, rounds);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 3 && std::string(argv[1]) == "--load")
    {
        return static_cast<int>(MeasureLoad(argv[2]));
    }
    std::array<char, MAX_PATH + 1> program = {};
    GetModuleFileNameA(nullptr, program.data(), static_cast<DWORD>(program.size()));
    const int rounds = argc > 1 ? std::atoi(argv[1]) : 31;
    return Compare(program.data(), std::clamp(rounds, 1, 1000));
}
