#include "app/exports/laterdialogs.h"

INT_PTR velRunNewTimepoint(CWnd*, dbCPatient*)
{
    return IDCANCEL;
}

INT_PTR velRunRename(CWnd*, dbCPatient*, int, const CString&, RENAME_OP*, velRenameResult&)
{
    return IDCANCEL;
}
