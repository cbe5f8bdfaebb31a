// Extension DLLs: libraries of the suite whose resources everybody in the process finds.
//
// In DllMain, on DLL_PROCESS_ATTACH: AfxInitExtensionModule, then `new CDynLinkLibrary(module)`;
// on DLL_PROCESS_DETACH: AfxTermExtensionModule, which also ends the CDynLinkLibrary.
#pragma once

#include "suite/mfc/afx.h"

struct AFX_EXTENSION_MODULE
{
    BOOL bInitialized;
    HMODULE hModule;
    HMODULE hResource;
};

// A link of the extension resource chain. The chain is the process's: a regular DLL finds the resources of
// an extension DLL whoever loaded it first. Owned by the framework once made.
class AFX_DLL_CLASS CDynLinkLibrary
{
public:
    explicit CDynLinkLibrary(AFX_EXTENSION_MODULE& state);
    ~CDynLinkLibrary();
    CDynLinkLibrary(const CDynLinkLibrary&) = delete;
    CDynLinkLibrary& operator=(const CDynLinkLibrary&) = delete;

    HMODULE m_hModule;
    HMODULE m_hResource;
};

AFX_DLL_API BOOL AfxInitExtensionModule(AFX_EXTENSION_MODULE& state, HMODULE hModule);
AFX_DLL_API void AfxTermExtensionModule(AFX_EXTENSION_MODULE& state, BOOL bAll = FALSE);
