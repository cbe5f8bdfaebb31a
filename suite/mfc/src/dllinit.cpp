// Start and end: of the framework's own library, of a program and of a regular DLL.
#include "wndaccess.h"

namespace
{
HINSTANCE g_instance = nullptr;
// The id that a library's manifest resource has; comctl32's new controls come through it.
constexpr int libraryManifest = 2;

// The module's own activation context, so that windows made while it is active get the controls its manifest
// names, whatever the program's manifest says.
HANDLE CreateModuleActCtx(HINSTANCE hInstance)
{
    if (::FindResource(hInstance, MAKEINTRESOURCE(libraryManifest), RT_MANIFEST) == nullptr)
    {
        return INVALID_HANDLE_VALUE;
    }
    char path[MAX_PATH + 1] = "";
    if (GetModuleFileName(hInstance, path, MAX_PATH) == 0)
    {
        return INVALID_HANDLE_VALUE;
    }
    ACTCTX context{};
    context.cbSize = sizeof(context);
    context.dwFlags = ACTCTX_FLAG_RESOURCE_NAME_VALID | ACTCTX_FLAG_HMODULE_VALID;
    context.lpSource = path;
    context.lpResourceName = MAKEINTRESOURCE(libraryManifest);
    context.hModule = hInstance;
    return CreateActCtx(&context);
}

// Answers ExitInstance's code, or -1 when it threw.
int ExitApp(CWinApp& app) noexcept
{
    try
    {
        return app.ExitInstance();
    }
    catch (...)
    {
        TRACE("ExitInstance threw\n");
        return -1;
    }
}
} // namespace

HINSTANCE AfxFrameworkInstance()
{
    return g_instance;
}

BOOL WINAPI DllMain(HINSTANCE hInstance, DWORD dwReason, LPVOID)
{
    switch (dwReason)
    {
    case DLL_PROCESS_ATTACH:
        g_instance = hInstance;
        break;
    case DLL_THREAD_DETACH:
        AfxDetachThread();
        break;
    default:
        break;
    }
    return TRUE;
}

BOOL AfxWinInit(HINSTANCE hInstance, HINSTANCE, LPTSTR lpCmdLine, int nCmdShow)
{
    AFX_MODULE_STATE* state = AfxGetModuleState();
    state->m_hCurrentInstanceHandle = hInstance;
    if (state->m_hCurrentResourceHandle == nullptr)
    {
        state->m_hCurrentResourceHandle = hInstance;
    }
    if (CWinApp* app = state->m_pCurrentWinApp)
    {
        app->m_hInstance = hInstance;
        app->m_lpCmdLine = lpCmdLine;
        app->m_nCmdShow = nCmdShow;
        AfxAppAccess::InitNames(*app);
    }
    return TRUE;
}

void AfxWinTerm()
{
    AFX_MODULE_STATE* state = AfxGetModuleState();
    for (const std::string& name : state->m_registeredClasses)
    {
        ::UnregisterClass(name.c_str(), state->m_hCurrentInstanceHandle);
    }
    state->m_registeredClasses.clear();
    if (state->m_hActCtx != INVALID_HANDLE_VALUE)
    {
        ReleaseActCtx(state->m_hActCtx);
        state->m_hActCtx = INVALID_HANDLE_VALUE;
    }
}

int AfxWinMain(HINSTANCE hInstance, HINSTANCE hPrevInstance, LPTSTR lpCmdLine, int nCmdShow)
{
    CWinApp* app = AfxGetApp();
    ASSERT(app != nullptr); // the program has no application object
    if (app == nullptr || !AfxWinInit(hInstance, hPrevInstance, lpCmdLine, nCmdShow))
    {
        return -1;
    }
    int result = -1;
    try
    {
        if (app->InitInstance())
        {
            result = app->Run(); // ends with ExitInstance
        }
        else
        {
            if (app->m_pMainWnd != nullptr)
            {
                app->m_pMainWnd->DestroyWindow();
            }
            result = ExitApp(*app);
        }
    }
    catch (...)
    {
        AfxProcessCurrentException(nullptr);
        result = -1;
    }
    AfxWinTerm();
    return result;
}

BOOL AfxRegularDllStart(HINSTANCE hInstance, WNDPROC pfnAfxWndProc)
{
    AFX_MODULE_STATE* state = AfxGetModuleStateOf(hInstance);
    state->m_pfnAfxWndProc = pfnAfxWndProc;
    state->m_hActCtx = CreateModuleActCtx(hInstance);
    bool started = false;
    {
        AFX_MANAGE_STATE(state);
        try
        {
            static char noCommandLine[] = "";
            started = AfxWinInit(hInstance, nullptr, noCommandLine, SW_HIDE) != FALSE;
            if (started && state->m_pCurrentWinApp != nullptr)
            {
                started = state->m_pCurrentWinApp->InitInstance() != FALSE;
                if (!started)
                {
                    ExitApp(*state->m_pCurrentWinApp);
                }
            }
        }
        catch (CException* e)
        {
            TRACE("InitInstance threw %s\n", e->GetRuntimeClass()->m_lpszClassName);
            e->Delete();
            started = false;
        }
        catch (...)
        {
            TRACE("InitInstance threw\n");
            started = false;
        }
        if (!started)
        {
            AfxWinTerm();
        }
    }
    return started;
}

void AfxRegularDllEnd(HINSTANCE hInstance)
{
    AFX_MODULE_STATE* state = AfxGetModuleStateOf(hInstance);
    {
        AFX_MANAGE_STATE(state);
        if (state->m_pCurrentWinApp != nullptr)
        {
            ExitApp(*state->m_pCurrentWinApp);
        }
        AfxWinTerm();
    }
    // With an application object, the state goes when that object does, after this.
    if (state->m_pCurrentWinApp == nullptr)
    {
        AfxRemoveModuleState(hInstance);
    }
}
