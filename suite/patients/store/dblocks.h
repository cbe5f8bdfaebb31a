#pragma once

// Who holds which patient; inside the library only.

#include "suite/patients/store/patdefs.h"

/// Gives back everything this process still holds, when the database is closed. Throws nothing.
void dbReleaseOwnLocks() noexcept;
