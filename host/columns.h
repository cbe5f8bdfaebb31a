// What the lists of the main window share.
#pragma once

#include <afxcmn.h>
#include <afxwin.h>

#include <span>

struct hostSColumn
{
    UINT titleId;
    int width; // pixels at 96 dpi
    int format;
};

/// Gives a report list its columns, whole-row selection and the system's look.
void hostPrepareList(CListCtrl& list, std::span<const hostSColumn> columns);

/// Pixels for a length at 96 dpi.
int hostScale(int length);

/// A string of the host's own table.
CString hostText(UINT id);
