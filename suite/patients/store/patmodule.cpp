#include "suite/patients/store/patmodule.h"

#include <lmcons.h>
#include <objbase.h>

#include <cstdio>

extern "C" IMAGE_DOS_HEADER __ImageBase; // NOLINT(bugprone-reserved-identifier): the linker's

namespace
{
constexpr int INTERFACE_VERSION = 1;
}

BOOL InitVelPatDLL(int nVersion)
{
    return nVersion == INTERFACE_VERSION;
}

CString dbNewGUID()
{
    GUID guid{};
    if (FAILED(CoCreateGuid(&guid)))
        AfxThrowResourceException();
    char sz[40];
    snprintf(sz, sizeof(sz), "{%08lX-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", guid.Data1, guid.Data2,
             guid.Data3, guid.Data4[0], guid.Data4[1], guid.Data4[2], guid.Data4[3], guid.Data4[4],
             guid.Data4[5], guid.Data4[6], guid.Data4[7]);
    return sz;
}

CString patLoadString(UINT nID)
{
    CString strText;
    strText.LoadString(reinterpret_cast<HINSTANCE>(&__ImageBase), nID);
    return strText;
}

CString patUserName()
{
    char sz[UNLEN + 1] = "";
    DWORD dwLength = sizeof(sz);
    return GetUserNameA(sz, &dwLength) && sz[0] ? sz : "?";
}

CString patComputerName()
{
    char sz[MAX_COMPUTERNAME_LENGTH + 1] = "";
    DWORD dwLength = sizeof(sz);
    return GetComputerNameA(sz, &dwLength) && sz[0] ? sz : "?";
}
