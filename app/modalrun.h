#pragma once

#include <afxdlgs.h>
#include <afxwin.h>

#include <functional>

/// Runs a dialog so that no exception gets past it: neither one thrown around its modal loop nor one thrown
/// inside one of its window procedures (WM_INITDIALOG included). Either ends the dialog; the user is then
/// told once and the result is IDCANCEL. Runs may nest; an exception ends the innermost. User interface
/// thread only.
INT_PTR velRunModal(CDialog& dialog);
INT_PTR velRunModal(CPropertySheet& sheet);

/// Calls work, which may build and run a dialog. An exception out of it is shown to the user and gives
/// onFailure.
INT_PTR velGuard(INT_PTR onFailure, UINT idMessage, const std::function<INT_PTR()>& work) noexcept;

/// Takes note of an exception that a window procedure let go, and starts to close the running dialog.
/// False when no dialog is running, so that the framework's own handling applies. The exception stays the
/// caller's.
bool velEndModalRun(CException* e);
