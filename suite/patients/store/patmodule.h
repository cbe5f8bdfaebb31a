#pragma once

// What the library knows about itself and its surroundings; inside the library only.

#include "suite/patients/store/patdefs.h"

/// A string of the library's own string table.
CString patLoadString(UINT nID);

/// The account name of the user and the name of the computer; never empty.
CString patUserName();
CString patComputerName();
