#include "archive/work/winworkers.h"

#include <windows.h>

#include <algorithm>

namespace arc
{
namespace
{
constexpr unsigned MostWorkers = 64; // more would only wait for memory
} // namespace

Parallel WorkersOfThisMachine(unsigned workers)
{
    Parallel parallel;
    parallel.workers =
        std::clamp(workers != 0 ? workers : std::thread::hardware_concurrency(), 1U, MostWorkers);
    parallel.start = [](const std::function<void()>& body) {
        return std::thread([body] {
            SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_BELOW_NORMAL);
            body();
        });
    };
    return parallel;
}
} // namespace arc
