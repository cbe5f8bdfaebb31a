// What extends windows and dialogs; the name that sources include beside afxwin.h.
#pragma once

#include "suite/mfc/afxwin.h"
#include "suite/mfc/afxdllx.h"
