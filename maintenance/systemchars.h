#pragma once

#include "maintenance/namerules.h"

/// The characters of the system code page as Windows has them.
const maint::CharTable& velSystemChars();
