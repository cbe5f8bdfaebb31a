#pragma once

#include "app/exports/veldlgs.h"

/// Dialogs that are not available yet. This is the only place that says so: each answers here as its dialog
/// does when it is cancelled, and the exported functions do everything else around it already.

INT_PTR velRunNewTimepoint(CWnd* pParent, dbCPatient* pPatient);

/// What the rename dialog hands back.
struct velRenameResult
{
    CString strLastname;
    CString strFirstname;
    CString strPassThrough;
    CString strTimepointName;
    COleDateTime dateTimepoint;
};
INT_PTR velRunRename(CWnd* pParent, dbCPatient* pPatient, int nTimepoint, const CString& strPassThrough,
                     RENAME_OP* pOperation, velRenameResult& result);
