#pragma once

#include "suite/dialogs/ctlapi.h"

// The teeth-information control, window class "VELTEETH": shows the 32 permanent teeth of a patient with
// their FDI numbers. A click, or the space key on the tooth with the focus, goes through present, missing,
// extracted; the cursor keys, Home and End move. A change is notified to the parent as WM_COMMAND with
// TEETHN_CHANGE. The class needs no object of the framework. Its data belong to the window.

/// lParam: the dbCPatient* to show, or null for none. The record stays the caller's and must outlive the
/// window or be taken back with null.
#define WM_TEETH_SETPATIENT (WM_USER + 1)
/// The record whose edits are to be written back is the one given last. Returns TRUE, or FALSE without a
/// record. Only changed teeth are written.
#define WM_TEETH_STORE (WM_USER + 4)

#define TEETHN_CHANGE 1

/// Registers the window class for a module; TRUE also when it is registered already. cttUnregisterClass must
/// come before the module unloads, with no window of the class left.
VELCTL_API BOOL cttRegisterClass(HINSTANCE hInstance);
VELCTL_API BOOL cttUnregisterClass(HINSTANCE hInstance);
