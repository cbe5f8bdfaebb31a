#pragma once

#include "app/velenums.h"

#include <afxwin.h>

/// Joins a full name by the user's order and separator. Both are read on first need and then kept until the
/// module is loaded again. Null names count as empty.
CString velMakeFullname(LPCTSTR pszGiven, LPCTSTR pszFamily, NAMEORDER nOrder);
