// The pictures of the toolbar's buttons, drawn for any size.
#pragma once

#include "host/hostcommands.h"

#include <afxwin.h>

#include <commctrl.h>

/// An image list with one picture for each hostIcon but none, in their order (hostIcon::newPatient is image 0). The
/// caller destroys it. A picCSession must be alive.
HIMAGELIST hostMakeToolIcons(int size);
