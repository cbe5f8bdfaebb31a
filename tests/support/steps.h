#pragma once

#include "suite/patients/store/dbsteps.h"

#include <windows.h>

#include <functional>
#include <string>

namespace veltest
{

// Exit code of a child process that EndAtStep has ended.
constexpr int ENDED_AT_STEP = 77;

// In a child process: ends it, as a crash would, when the nth named step (from 1) is reached. A test starts
// children with 1, 2, 3, ... until one ends by itself, and so has been at every step there is.
inline void EndAtStep(int nth)
{
    static int left;
    left = nth;
    dbObserveSteps([](const char*) {
        if (--left == 0)
            TerminateProcess(GetCurrentProcess(), ENDED_AT_STEP);
    });
}

// As long as it lives: calls back whenever the named step is reached, on the thread that reaches it. One at a
// time.
class AtStep
{
public:
    AtStep(const char* step, std::function<void()> call)
    {
        s_step = step;
        s_call = std::move(call);
        dbObserveSteps([](const char* reached) {
            if (s_step == reached)
                s_call();
        });
    }
    ~AtStep()
    {
        dbObserveSteps(nullptr);
    }
    AtStep(const AtStep&) = delete;
    AtStep& operator=(const AtStep&) = delete;

private:
    static inline std::string s_step;
    static inline std::function<void()> s_call;
};

} // namespace veltest
