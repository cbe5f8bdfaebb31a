// The audit log in the main window.
#pragma once

#include <afxcmn.h>
#include <afxwin.h>

/// The latest events of the practice, newest first.
class hostCAuditList : public CListCtrl
{
public:
    BOOL CreateIn(CWnd* parent, UINT id);
    /// Reads the events again; shows nothing while no practice is open.
    void Refresh();

    /// How many events are shown.
    static constexpr int kMostEvents = 500;
};
