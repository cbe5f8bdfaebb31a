// The framework's windows: application object, threads, message maps, windows, dialogs, controls, drawing.
#pragma once

#include "suite/mfc/afx.h"
#include "suite/mfc/afxcoll.h"
#include "suite/mfc/afxres.h"
#include "suite/mfc/afxstat_.h"
#include "suite/mfc/atltypes.h"

#include <commctrl.h>
#include <commdlg.h>
#include <shellapi.h>

#include "suite/mfc/win/cmdtarg.h"
#include "suite/mfc/afxmsg_.h"
#include "suite/mfc/win/menu.h"
#include "suite/mfc/win/gdi.h"
#include "suite/mfc/win/wnd.h"
#include "suite/mfc/win/thread.h"
#include "suite/mfc/win/dialog.h"
#include "suite/mfc/win/frame.h"
#include "suite/mfc/win/controls.h"
#include "suite/mfc/afxdd_.h"

// ---------------------------------------------------------------------------------------------------------
// Message boxes, owned by the active window of the thread and captioned with the application's name

AFX_DLL_API int AfxMessageBox(LPCTSTR lpszText, UINT nType = MB_OK, UINT nIDHelp = 0);
AFX_DLL_API int AfxMessageBox(UINT nIDPrompt, UINT nType = MB_OK, UINT nIDHelp = static_cast<UINT>(-1));

// ---------------------------------------------------------------------------------------------------------
// Window classes: unregistered when the module that registered them unloads

AFX_DLL_API BOOL AfxRegisterClass(WNDCLASS* lpWndClass);
// The name of a class with these properties, registered on first use. Valid until the thread's next call.
AFX_DLL_API LPCTSTR AfxRegisterWndClass(UINT nClassStyle, HCURSOR hCursor = nullptr,
                                        HBRUSH hbrBackground = nullptr, HICON hIcon = nullptr);

// ---------------------------------------------------------------------------------------------------------
// Below the windows

// The window procedure of the current module state; it finds the object and calls its WindowProc. Nothing
// that is thrown leaves it.
AFX_DLL_API WNDPROC AfxGetAfxWndProc();
AFX_DLL_API LRESULT CALLBACK AfxWndProc(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam);
// The next window that this thread creates becomes pWnd's. Unhook answers FALSE when none was created.
AFX_DLL_API void AfxHookWindowCreate(CWnd* pWnd);
AFX_DLL_API BOOL AfxUnhookWindowCreate();
