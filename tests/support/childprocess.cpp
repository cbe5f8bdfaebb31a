#include "tests/support/childprocess.h"

#include <array>
#include <cstdio>
#include <exception>
#include <map>
#include <stdexcept>

namespace veltest
{

namespace
{

constexpr std::string_view childOption = "--veltest-child=";

std::map<std::string, ChildFunction>& Children()
{
    static std::map<std::string, ChildFunction> children;
    return children;
}

// So that the C runtime of the new process reads it back unchanged; for arguments without quotation marks.
std::string Quoted(const std::string& argument)
{
    return "\"" + argument + (argument.ends_with('\\') ? "\\\"" : "\"");
}

} // namespace

bool RegisterChild(const char* name, ChildFunction function)
{
    return Children().emplace(name, function).second;
}

std::optional<int> RunAsChild(int argc, char** argv)
{
    if (argc < 2 || !std::string_view(argv[1]).starts_with(childOption))
        return std::nullopt;
    const auto child = Children().find(argv[1] + childOption.size());
    if (child == Children().end())
    {
        std::printf("no child function for %s\n", argv[1]);
        return 100;
    }
    try
    {
        return child->second(std::vector<std::string>(argv + 2, argv + argc));
    }
    catch (const std::exception& failure)
    {
        std::printf("child %s failed: %s\n", child->first.c_str(), failure.what());
        return 101;
    }
}

PROCESS_INFORMATION StartThisProgram(std::string commandLine, const char* desktop, DWORD flags)
{
    std::array<char, MAX_PATH> path = {};
    GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size()));
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    startup.lpDesktop = const_cast<char*>(desktop);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    startup.hStdOutput = GetStdHandle(STD_OUTPUT_HANDLE);
    startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    PROCESS_INFORMATION process = {};
    // A busy machine's Wine refuses once in some thousand times.
    for (int nLeft = 5; !CreateProcessA(path.data(), commandLine.data(), nullptr, nullptr, TRUE, flags,
                                        nullptr, nullptr, &startup, &process);
         --nLeft)
    {
        const DWORD dwError = GetLastError();
        if (nLeft == 0)
            throw std::runtime_error("this program could not be started again: error " +
                                     std::to_string(dwError));
        Sleep(200);
    }
    return process;
}

ChildProcess::ChildProcess(const std::string& function, const std::vector<std::string>& arguments)
{
    std::string commandLine = "child " + Quoted(std::string(childOption) + function);
    for (const std::string& argument : arguments)
        commandLine += " " + Quoted(argument);
    m_process = StartThisProgram(commandLine, nullptr, 0);
}

ChildProcess::~ChildProcess()
{
    if (IsRunning())
        Kill();
    CloseHandle(m_process.hThread);
    CloseHandle(m_process.hProcess);
}

bool ChildProcess::IsRunning() const
{
    return WaitForSingleObject(m_process.hProcess, 0) == WAIT_TIMEOUT;
}

int ChildProcess::Wait(DWORD timeout)
{
    if (WaitForSingleObject(m_process.hProcess, timeout) != WAIT_OBJECT_0)
        throw std::runtime_error("the child process did not end in time");
    DWORD exitCode = 0;
    GetExitCodeProcess(m_process.hProcess, &exitCode);
    return static_cast<int>(exitCode);
}

void ChildProcess::Kill()
{
    TerminateProcess(m_process.hProcess, 99);
    WaitForSingleObject(m_process.hProcess, 10'000);
}

} // namespace veltest
