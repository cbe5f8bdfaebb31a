#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

namespace veltest
{

// Runs when this program is started again by ChildProcess; its result is the exit code.
using ChildFunction = int (*)(const std::vector<std::string>& arguments);

// Declares what a second process of this test program does:
//     VEL_CHILD_PROCESS(holdLock) { ... arguments[0] ... return 0; }
//     veltest::ChildProcess child("holdLock", {"A1"});
#define VEL_CHILD_PROCESS(name)                                                                              \
    static int name(const std::vector<std::string>& arguments);                                              \
    static const bool name##Registered = veltest::RegisterChild(#name, name);                                \
    static int name([[maybe_unused]] const std::vector<std::string>& arguments)

bool RegisterChild(const char* name, ChildFunction function);

// Called by the main program: the exit code when the command line asks for a child function.
std::optional<int> RunAsChild(int argc, char** argv);

// Starts this program again on a desktop (null: on this one); its output goes where this process's goes.
// Throws std::runtime_error. The handles are the caller's.
PROCESS_INFORMATION StartThisProgram(std::string commandLine, const char* desktop, DWORD flags);

// A second process of this test program on the same desktop. Its output goes where this program's goes.
// Owns the process: one that still runs is ended by the destructor. Arguments without quotation marks.
class ChildProcess
{
public:
    ChildProcess(const std::string& function, const std::vector<std::string>& arguments);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    DWORD Id() const
    {
        return m_process.dwProcessId;
    }
    bool IsRunning() const;

    // The exit code; throws std::runtime_error when the process does not end in time (milliseconds).
    int Wait(DWORD timeout = 60'000);

    // Ends it as a crash or a power failure would: nothing is flushed or released by the process itself.
    void Kill();

private:
    PROCESS_INFORMATION m_process = {};
};

} // namespace veltest
