// The threads of this machine.
#pragma once

#include "archive/zip/parallel.h"

namespace arc
{
/// So many workers, or one for each core when the number is 0. They run below normal priority, so that
/// whatever the user does comes first.
Parallel WorkersOfThisMachine(unsigned workers);
} // namespace arc
