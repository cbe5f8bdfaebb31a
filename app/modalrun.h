#pragma once

#include <afxdlgs.h>
#include <afxwin.h>

#include <functional>

/// Runs a dialog so that no exception gets past it: neither one thrown around its modal loop nor one thrown
/// inside one of its window procedures (WM_INITDIALOG included). Either ends the dialog, and the user is told
/// once. The result is then IDCANCEL, unless the dialog had already ended with another answer: what is done
/// is done, and the answer stands. Runs may nest; an exception ends the innermost. User interface thread
/// only.
INT_PTR velRunModal(CDialog& dialog);

/// The same for a sheet. isDone says whether the sheet has stored what it was opened for; the result after an
/// exception is then IDOK, however the sheet ended. Without it the answer that the sheet ended with decides.
INT_PTR velRunModal(CPropertySheet& sheet, const std::function<bool()>& isDone = {});

/// Calls work, which may build and run a dialog. An exception out of it is told to the user in the text
/// idMessage, which takes the reason for its "%1", and gives onFailure.
INT_PTR velGuard(INT_PTR onFailure, UINT idMessage, const std::function<INT_PTR()>& work) noexcept;

/// Takes note of an exception that a window procedure let go, and starts to close the running dialog.
/// False when no dialog is running, so that the framework's own handling applies. The exception stays the
/// caller's.
bool velEndModalRun(CException* e);
