// Keeps the base usable until the windows half is there.
#include "afx.h"

HINSTANCE AfxFindResourceHandle(LPCTSTR, LPCTSTR)
{
    return GetModuleHandleA("VelMfc.dll");
}

AFX_DLL_API int AfxMessageBox(LPCTSTR lpszText, UINT nType, UINT nIDHelp);
int AfxMessageBox(LPCTSTR lpszText, UINT nType, UINT)
{
    return MessageBoxA(nullptr, lpszText, nullptr, nType);
}
