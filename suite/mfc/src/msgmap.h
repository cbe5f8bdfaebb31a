// Look-up in message maps. Private to the framework.
#pragma once

#include "suite/mfc/afxwin.h"

// The entry of a message, the derived class's first; null when there is none.
const AFX_MSGMAP_ENTRY* AfxFindEntry(const AFX_MSGMAP* map, UINT message, UINT code, UINT id);
