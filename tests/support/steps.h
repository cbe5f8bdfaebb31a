#pragma once

#include "suite/patients/store/dbsteps.h"

#include <windows.h>

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

} // namespace veltest
