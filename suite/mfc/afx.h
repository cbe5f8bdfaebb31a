// The base of the framework: run-time classes, strings, exceptions, files and archives.
//
// Names, signatures and meaning are MFC's documented ones; text is narrow and in the system code page
// throughout. Nothing here is tied to a thread: an object may live on any thread, but is not locked.
#pragma once

#ifndef STRICT
#define STRICT
#endif
#include <winsock2.h>
#include <windows.h>
#include <ole2.h>
#include <tchar.h>

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// windows.h has a macro of this name for GetTickCount; the date classes use the name.
#undef GetCurrentTime

// ---------------------------------------------------------------------------------------------------------
// Export macros

#ifdef velmfc_EXPORTS
#define AFX_DLL_CLASS __declspec(dllexport)
#else
#define AFX_DLL_CLASS __declspec(dllimport)
#endif
#define AFX_DLL_API AFX_DLL_CLASS

// For extension libraries that compile with _AFXEXT defined.
#ifdef _AFXEXT
#define AFX_EXT_CLASS __declspec(dllexport)
#else
#define AFX_EXT_CLASS __declspec(dllimport)
#endif

#define afx_msg
#define _AFXDLL 1

// Checks the arguments of a printf-like function against its format; positions count from 1, `this` included.
#define AFX_PRINTF_FORMAT(formatAt, argsAt) [[gnu::format(__MINGW_PRINTF_FORMAT, formatAt, argsAt)]]

struct AfxPosition;
using POSITION = AfxPosition*; // a place in a collection; null is "none"

// ---------------------------------------------------------------------------------------------------------
// Diagnostics

// Reports a failed assertion to the debugger and to stderr and ends the process (breaks under a debugger).
AFX_DLL_API void AfxAssertFailed(LPCSTR lpszExpression, LPCSTR lpszFile, int nLine);
// Sends formatted text to the debugger.
AFX_PRINTF_FORMAT(1, 2) AFX_DLL_API void AfxTrace(LPCSTR lpszFormat, ...);

#ifdef _DEBUG
#define ASSERT(f) ((f) ? (void)0 : AfxAssertFailed(#f, __FILE__, __LINE__))
#define VERIFY(f) ASSERT(f)
#define TRACE(...) AfxTrace(__VA_ARGS__)
#else
#define ASSERT(f) ((void)0)
#define VERIFY(f) ((void)(f))
#define TRACE(...) ((void)0)
#endif
// Checked in every build: a broken precondition throws CInvalidArgException.
#define ENSURE(f) ((f) ? (void)0 : AfxThrowInvalidArgException())
#ifndef UNREFERENCED_PARAMETER
#define UNREFERENCED_PARAMETER(P) (void)(P)
#endif

// ---------------------------------------------------------------------------------------------------------
// Run-time classes

class CObject;
class CArchive;
class CFile;
class CString;

// Describes a class to IsKindOf. One static object per class.
struct AFX_DLL_CLASS CRuntimeClass
{
    LPCSTR m_lpszClassName;
    CRuntimeClass* (*m_pfnGetBaseClass)(); // null: the root

    BOOL IsDerivedFrom(const CRuntimeClass* pBaseClass) const;
};

// Root of the framework's classes. Objects are not copied; they are passed by pointer or reference.
class AFX_DLL_CLASS CObject
{
public:
    virtual CRuntimeClass* GetRuntimeClass() const;
    virtual ~CObject();

    CObject(const CObject&) = delete;
    CObject& operator=(const CObject&) = delete;

    BOOL IsKindOf(const CRuntimeClass* pClass) const;

    static CRuntimeClass* GetThisClass();

protected:
    CObject() = default;
};

#define RUNTIME_CLASS(class_name) (class_name::GetThisClass())

#define DECLARE_DYNAMIC(class_name)                                                                          \
public:                                                                                                      \
    static CRuntimeClass class##class_name;                                                                  \
    static CRuntimeClass* GetThisClass();                                                                    \
    CRuntimeClass* GetRuntimeClass() const override;

#define IMPLEMENT_DYNAMIC(class_name, base_class_name)                                                       \
    CRuntimeClass class_name::class##class_name = {#class_name, &base_class_name::GetThisClass};             \
    CRuntimeClass* class_name::GetThisClass()                                                                \
    {                                                                                                        \
        return &class_name::class##class_name;                                                               \
    }                                                                                                        \
    CRuntimeClass* class_name::GetRuntimeClass() const                                                       \
    {                                                                                                        \
        return &class_name::class##class_name;                                                               \
    }

// ---------------------------------------------------------------------------------------------------------
// The rest of the base, a header each for the reader's sake

#include "afxstr.h"
#include "afxexcept.h"
#include "afxtime.h"
#include "afxfile.h"

// ---------------------------------------------------------------------------------------------------------
// Resources

// The module in the resource chain of the current module state that holds the resource.
AFX_DLL_API HINSTANCE AfxFindResourceHandle(LPCTSTR lpszName, LPCTSTR lpszType);
// The module of the chain that holds the string, or null.
AFX_DLL_API HINSTANCE AfxFindStringResourceHandle(UINT nID);
// Replaces "%1" (and "%2") in a format; a marker inside an argument is not replaced again.
AFX_DLL_API void AfxFormatString1(CString& rString, UINT nIDS, LPCTSTR lpsz1);
AFX_DLL_API void AfxFormatString1(CString& rString, LPCTSTR lpszFormat, LPCTSTR lpsz1);
AFX_DLL_API void AfxFormatStrings(CString& rString, LPCTSTR lpszFormat, LPCTSTR const* rglpsz, int nString);
