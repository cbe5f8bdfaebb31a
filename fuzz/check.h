// A condition that must hold for every input; its failure is what the fuzzer looks for.
#pragma once

#include <cstdlib>

inline void Check(bool holds)
{
    if (!holds)
        std::abort();
}
