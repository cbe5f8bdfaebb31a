// The library's module: an extension of its callers' modules, which find its resources through the chain of
// extension libraries.

#include "suite/dialogs/ctlhelp.h"

#include <afxdllx.h>

static AFX_EXTENSION_MODULE extensionModule = {};

HINSTANCE ctlInstance()
{
    return extensionModule.hModule;
}

extern "C" BOOL WINAPI DllMain(HINSTANCE hInstance, DWORD nReason, LPVOID)
{
    if (nReason == DLL_PROCESS_ATTACH)
    {
        if (!AfxInitExtensionModule(extensionModule, hInstance))
        {
            return FALSE;
        }
        new CDynLinkLibrary(extensionModule); // the framework deletes it in AfxTermExtensionModule
    }
    else if (nReason == DLL_PROCESS_DETACH)
    {
        AfxTermExtensionModule(extensionModule);
    }
    return TRUE;
}
