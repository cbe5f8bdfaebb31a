// The main program of every window test. It runs itself again on a desktop of its own, so that programs that
// run at the same time do not take the focus from one another, and answers for the end of that second run:
// a crash is printed with its place, a hang is ended.

#include "tests/support/childprocess.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace
{

constexpr const char* desktopVariable = "VELTEST_DESKTOP";
constexpr const char* timeoutVariable = "VELTEST_TIMEOUT"; // seconds for one run
constexpr DWORD defaultTimeout = 220;
constexpr DWORD heapCorruption = 0xC0000374;

using FilePath = std::array<char, MAX_PATH>;

// The module that an address lies in and its file; null outside every module. Does not use the heap.
HMODULE ModuleOf(const void* address, FilePath& path)
{
    HMODULE module = nullptr;
    const bool found = GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                                              GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                                          static_cast<LPCSTR>(address), &module) &&
                       GetModuleFileNameA(module, path.data(), static_cast<DWORD>(path.size())) != 0;
    return found ? module : nullptr;
}

// "VelCtl.dll+0x1234", or the bare address outside every module.
void PrintAddress(const void* address)
{
    FilePath path = {};
    const auto* const begin = reinterpret_cast<const char*>(ModuleOf(address, path));
    const char* name = std::strrchr(path.data(), '\\');
    std::printf("  %s+0x%llx\n", name != nullptr ? name + 1 : path.data(),
                static_cast<long long>(static_cast<const char*>(address) - begin));
}

// True for faults in this program's own libraries; faults inside the system's may be handled there.
bool IsOwnCode(const void* address)
{
    FilePath path = {};
    if (ModuleOf(address, path) == nullptr)
        return true; // a call through a wild pointer
    FilePath system = {};
    const UINT length = GetSystemDirectoryA(system.data(), static_cast<UINT>(system.size()));
    const char* name = std::strrchr(path.data(), '\\');
    const bool runtime = name != nullptr && _stricmp(name, "\\msvcrt.dll") == 0;
    return runtime || _strnicmp(path.data(), system.data(), length) != 0;
}

LONG ReportAndEnd(const EXCEPTION_POINTERS* exception)
{
    const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
    std::printf("CRASH: exception 0x%08lx\n", record.ExceptionCode);
    PrintAddress(record.ExceptionAddress);
    std::array<void*, 40> frames = {};
    const USHORT count = CaptureStackBackTrace(0, static_cast<DWORD>(frames.size()), frames.data(), nullptr);
    for (USHORT frame = 0; frame < count; ++frame)
        PrintAddress(frames[frame]);
    std::fflush(stdout);
    TerminateProcess(GetCurrentProcess(), 5);
    return EXCEPTION_CONTINUE_SEARCH;
}

LONG CALLBACK OnException(EXCEPTION_POINTERS* exception)
{
    const DWORD code = exception->ExceptionRecord->ExceptionCode;
    const bool fatal = code == EXCEPTION_ACCESS_VIOLATION || code == EXCEPTION_ILLEGAL_INSTRUCTION ||
                       code == EXCEPTION_INT_DIVIDE_BY_ZERO || code == EXCEPTION_STACK_OVERFLOW ||
                       code == EXCEPTION_PRIV_INSTRUCTION || code == heapCorruption;
    if (fatal && IsOwnCode(exception->ExceptionRecord->ExceptionAddress))
        return ReportAndEnd(exception);
    return EXCEPTION_CONTINUE_SEARCH;
}

LONG WINAPI OnUnhandledException(EXCEPTION_POINTERS* exception)
{
    return ReportAndEnd(exception);
}

// The second run: same command line, same output, a new desktop. Returns its exit code.
int RunOnOwnDesktop()
{
    const std::string name = "veltest-" + std::to_string(GetCurrentProcessId());
    const HDESK desktop = CreateDesktopA(name.c_str(), nullptr, nullptr, 0, GENERIC_ALL, nullptr);
    if (desktop == nullptr)
    {
        std::printf("no desktop of its own: error %lu\n", GetLastError());
        return 1;
    }
    SetEnvironmentVariableA(desktopVariable, name.c_str());

    const HANDLE job = CreateJobObjectA(nullptr, nullptr);
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits);

    const PROCESS_INFORMATION process =
        veltest::StartThisProgram(GetCommandLineA(), name.c_str(), CREATE_SUSPENDED);
    AssignProcessToJobObject(job, process.hProcess);
    ResumeThread(process.hThread);
    const char* const seconds = std::getenv(timeoutVariable);
    const DWORD timeout = 1000 * (seconds != nullptr ? std::strtoul(seconds, nullptr, 10) : defaultTimeout);
    if (WaitForSingleObject(process.hProcess, timeout) != WAIT_OBJECT_0)
    {
        std::printf("HANG: the test program did not end within %lu s\n", timeout / 1000);
        TerminateJobObject(job, 4);
    }
    DWORD exitCode = 1;
    GetExitCodeProcess(process.hProcess, &exitCode);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    CloseHandle(job);
    CloseDesktop(desktop);
    return static_cast<int>(exitCode);
}

} // namespace

int main(int argc, char** argv)
{
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    if (GetACP() != 1252)
    {
        std::printf("the tests need the system code page 1252, not %u\n", GetACP());
        return 1;
    }
    if (std::getenv(desktopVariable) == nullptr)
        return RunOnOwnDesktop();
    AddVectoredExceptionHandler(1, OnException);
    SetUnhandledExceptionFilter(OnUnhandledException);
    if (const std::optional<int> result = veltest::RunAsChild(argc, argv))
        return *result;
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
