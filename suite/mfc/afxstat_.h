// Module and thread state: whose resources, application object and window procedure are in force.
//
// A module is the program or a regular DLL. Extension DLLs have no state of their own; they run in the
// caller's. Every thread has a current module state; AFX_MANAGE_STATE changes it for a block.
#pragma once

#include "suite/mfc/afx.h"

#include <memory>
#include <vector>

class CWinApp;
class CWinThread;
class CWnd;
class CHandleMaps;
struct AFX_MODULE_STATE;

// What one thread holds for one module. Used by its thread only.
class AFX_MODULE_THREAD_STATE
{
public:
    AFX_MODULE_THREAD_STATE();
    ~AFX_MODULE_THREAD_STATE();
    AFX_MODULE_THREAD_STATE(const AFX_MODULE_THREAD_STATE&) = delete;
    AFX_MODULE_THREAD_STATE& operator=(const AFX_MODULE_THREAD_STATE&) = delete;

    CWinThread* m_pCurrentWinThread = nullptr; // not owned
    std::unique_ptr<CHandleMaps> m_maps;
    int m_nDepth = 0; // blocks of AFX_MANAGE_STATE for this module that are open on this thread
};

// One per module; made on first use and kept until the module unloads. The fields are set while the module
// loads and only read afterwards; the list of window classes is guarded.
struct AFX_MODULE_STATE
{
    HINSTANCE m_hCurrentInstanceHandle = nullptr;
    HINSTANCE m_hCurrentResourceHandle = nullptr;
    CWinApp* m_pCurrentWinApp = nullptr; // not owned
    bool m_bDLL = false;
    WNDPROC m_pfnAfxWndProc = nullptr; // switches to this state, then does what AfxWndProc does
    HANDLE m_hActCtx = INVALID_HANDLE_VALUE;
    std::vector<std::string> m_registeredClasses; // unregistered when the module unloads
};

AFX_DLL_API AFX_MODULE_STATE* AfxGetModuleState();
// Makes a state the current thread's; answers the previous one. AFX_MANAGE_STATE is the safe way.
AFX_DLL_API AFX_MODULE_STATE* AfxSetModuleState(AFX_MODULE_STATE* pNewState);
AFX_DLL_API AFX_MODULE_THREAD_STATE* AfxGetModuleThreadState();
// The state of the program or of the regular DLL with this instance handle, made when there is none yet.
AFX_DLL_API AFX_MODULE_STATE* AfxGetModuleStateOf(HINSTANCE hInstance);
// The state of the regular DLL that the call is compiled into; it comes with the static part (velmfcs).
AFX_MODULE_STATE* AfxGetStaticModuleState();

// Switches the thread to a module's state and its activation context, and back at the end of the block.
class AFX_DLL_CLASS AFX_MAINTAIN_STATE2
{
public:
    explicit AFX_MAINTAIN_STATE2(AFX_MODULE_STATE* pModuleState) noexcept;
    ~AFX_MAINTAIN_STATE2();
    AFX_MAINTAIN_STATE2(const AFX_MAINTAIN_STATE2&) = delete;
    AFX_MAINTAIN_STATE2& operator=(const AFX_MAINTAIN_STATE2&) = delete;

private:
    AFX_MODULE_STATE* m_pPrevModuleState;
    ULONG_PTR m_ulActCtxCookie = 0;
    bool m_bValidActCtxCookie = false;
};

// For every export of a regular DLL: AFX_MANAGE_STATE(AfxGetStaticModuleState());
#define AFX_MANAGE_STATE(p) AFX_MAINTAIN_STATE2 ctlState(p)

// ---------------------------------------------------------------------------------------------------------
// Resources of the current module state

AFX_DLL_API HINSTANCE AfxGetInstanceHandle();
AFX_DLL_API HINSTANCE AfxGetResourceHandle();
AFX_DLL_API LPCTSTR AfxGetAppName();

// ---------------------------------------------------------------------------------------------------------
// Start and end of modules; called by the static part and by programs with a `main` of their own.

// Readies the framework for the program: call it before InitInstance. FALSE: nothing works.
AFX_DLL_API BOOL AfxWinInit(HINSTANCE hInstance, HINSTANCE hPrevInstance, LPTSTR lpCmdLine, int nCmdShow);
// Ends what AfxWinInit began for the current module state: window classes, activation context.
AFX_DLL_API void AfxWinTerm();
// A program's whole run: AfxWinInit, InitInstance, Run, ExitInstance; answers the exit code.
AFX_DLL_API int AfxWinMain(HINSTANCE hInstance, HINSTANCE hPrevInstance, LPTSTR lpCmdLine, int nCmdShow);
// A regular DLL's start and end; FALSE when InitInstance refused or threw. Called with the loader locked.
AFX_DLL_API BOOL AfxRegularDllStart(HINSTANCE hInstance, WNDPROC pfnAfxWndProc);
AFX_DLL_API void AfxRegularDllEnd(HINSTANCE hInstance);
