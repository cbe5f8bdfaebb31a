// The static part of a regular DLL: its DllMain, its window procedure and the way to its module state.
#include <afxwin.h>

// The linker's symbol for the module this is linked into.
extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace
{
LRESULT CALLBACK AfxWndProcDll(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam)
{
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    return AfxWndProc(hWnd, nMsg, wParam, lParam);
}
} // namespace

AFX_MODULE_STATE* AfxGetStaticModuleState()
{
    static AFX_MODULE_STATE* const state = AfxGetModuleStateOf(reinterpret_cast<HINSTANCE>(&__ImageBase));
    return state;
}

extern "C" BOOL WINAPI DllMain(HINSTANCE hInstance, DWORD dwReason, LPVOID lpReserved)
{
    switch (dwReason)
    {
    case DLL_PROCESS_ATTACH:
        return AfxRegularDllStart(hInstance, &AfxWndProcDll);
    case DLL_PROCESS_DETACH:
        // When the process ends, other threads were stopped wherever they were: nothing is safe to touch then,
        // and the system takes everything back.
        if (lpReserved == nullptr)
        {
            AfxRegularDllEnd(hInstance);
        }
        break;
    default:
        break;
    }
    return TRUE;
}
