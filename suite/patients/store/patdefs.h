#pragma once

// The patient-database library: common declarations.
//
// Text is narrow text in the system code page in every call. The library is used from the thread that
// opened the database (the user interface thread); none of its classes may be shared between threads.

#include <afx.h>
#include <afxcoll.h>

#ifdef velpat_EXPORTS
#define VELPAT_API __declspec(dllexport)
#else
#define VELPAT_API __declspec(dllimport)
#endif

/// Prepares the library's own data. May run while a library is being loaded: it opens no database, starts no
/// thread and shows nothing. `nVersion` is the interface version the caller was built for (1); returns FALSE
/// for any other.
VELPAT_API BOOL InitVelPatDLL(int nVersion);

/// A new globally unique identifier in the form "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}", upper case.
VELPAT_API CString dbNewGUID();
