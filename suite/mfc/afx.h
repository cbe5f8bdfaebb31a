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
#define AFX_DATA AFX_DLL_CLASS

// For extension libraries that compile with _AFXEXT defined.
#ifdef _AFXEXT
#define AFX_EXT_CLASS __declspec(dllexport)
#else
#define AFX_EXT_CLASS __declspec(dllimport)
#endif
#define AFX_EXT_API AFX_EXT_CLASS
#define AFX_EXT_DATA AFX_EXT_CLASS

#define AFXAPI
#define AFX_CDECL
#define AFXAPI_DATA AFX_DLL_CLASS
#define afx_msg
#define _AFXDLL 1

// Checks the arguments of a printf-like function against its format; positions count from 1, `this` included.
#define AFX_PRINTF_FORMAT(formatAt, argsAt) [[gnu::format(__MINGW_PRINTF_FORMAT, formatAt, argsAt)]]

struct AfxPosition;
using POSITION = AfxPosition*; // a place in a collection; null is "none"
#define BEFORE_START_POSITION (reinterpret_cast<POSITION>(-1))

// ---------------------------------------------------------------------------------------------------------
// Diagnostics

// Reports a failed assertion to the debugger and to stderr and ends the process (breaks under a debugger).
AFX_DLL_API void AfxAssertFailed(LPCSTR lpszExpression, LPCSTR lpszFile, int nLine);
// Sends formatted text to the debugger.
AFX_PRINTF_FORMAT(1, 2) AFX_DLL_API void AfxTrace(LPCSTR lpszFormat, ...);
// True when `nBytes` bytes at `p` are readable (and writable); only guards against null and wild pointers.
AFX_DLL_API BOOL AfxIsValidAddress(const void* p, UINT_PTR nBytes, BOOL bReadWrite = TRUE);

#ifdef _DEBUG
#define ASSERT(f) ((f) ? (void)0 : AfxAssertFailed(#f, __FILE__, __LINE__))
#define VERIFY(f) ASSERT(f)
#define TRACE(...) AfxTrace(__VA_ARGS__)
#else
#define ASSERT(f) ((void)0)
#define VERIFY(f) ((void)(f))
#define TRACE(...) ((void)0)
#endif
#define TRACE0(sz) TRACE("%s", sz)
#define TRACE1(sz, p1) TRACE(sz, p1)
#define TRACE2(sz, p1, p2) TRACE(sz, p1, p2)
#define ASSERT_VALID(p) ASSERT((p) != nullptr)
#define ASSERT_POINTER(p, type) ASSERT((p) != nullptr)
#define ASSERT_KINDOF(class_name, object) ASSERT((object)->IsKindOf(RUNTIME_CLASS(class_name)))
// Checked in every build: a broken precondition throws CInvalidArgException.
#define ENSURE(f) ((f) ? (void)0 : AfxThrowInvalidArgException())
#define ENSURE_ARG(f) ENSURE(f)
#ifndef UNREFERENCED_PARAMETER
#define UNREFERENCED_PARAMETER(P) (void)(P)
#endif
#define UNUSED_ALWAYS(x) (void)(x)

// ---------------------------------------------------------------------------------------------------------
// Run-time classes

class CObject;
class CArchive;
class CFile;
class CString;

// Describes a class to IsKindOf, dynamic creation and serialisation. One static object per class.
struct AFX_DLL_CLASS CRuntimeClass
{
    LPCSTR m_lpszClassName;
    int m_nObjectSize;
    UINT m_wSchema; // 0xFFFF: the class does not serialise
    CObject* (*m_pfnCreateObject)();
    CRuntimeClass* (*m_pfnGetBaseClass)();
    CRuntimeClass* m_pNextClass; // list of the classes that serialise

    // A new object on the heap that the caller owns; null for a class without dynamic creation.
    CObject* CreateObject();
    BOOL IsDerivedFrom(const CRuntimeClass* pBaseClass) const;

    void Store(CArchive& ar) const;
    static CRuntimeClass* Load(CArchive& ar, UINT* pwSchemaNum);
    static CRuntimeClass* FromName(LPCSTR lpszClassName);
    static CObject* CreateObject(LPCSTR lpszClassName);
};

// Root of the framework's classes. Objects are not copied; they are passed by pointer or reference.
class AFX_DLL_CLASS CObject
{
public:
    virtual CRuntimeClass* GetRuntimeClass() const;
    virtual ~CObject();

    CObject(const CObject&) = delete;
    CObject& operator=(const CObject&) = delete;

    BOOL IsSerializable() const;
    BOOL IsKindOf(const CRuntimeClass* pClass) const;
    virtual void Serialize(CArchive& ar);
    virtual void AssertValid() const;

    static CRuntimeClass* GetThisClass();

protected:
    CObject() = default;
};

// Enters a class into, and on unload takes it out of, the list that CRuntimeClass::FromName searches.
class AFX_DLL_CLASS AFX_CLASSINIT
{
public:
    explicit AFX_CLASSINIT(CRuntimeClass* pNewClass);
    ~AFX_CLASSINIT();
    AFX_CLASSINIT(const AFX_CLASSINIT&) = delete;
    AFX_CLASSINIT& operator=(const AFX_CLASSINIT&) = delete;

private:
    CRuntimeClass* m_pClass;
};

#define RUNTIME_CLASS(class_name) (class_name::GetThisClass())

#define DECLARE_DYNAMIC(class_name)                                                                          \
public:                                                                                                      \
    static CRuntimeClass class##class_name;                                                                  \
    static CRuntimeClass* GetThisClass();                                                                    \
    CRuntimeClass* GetRuntimeClass() const override;

#define DECLARE_DYNCREATE(class_name)                                                                        \
    DECLARE_DYNAMIC(class_name)                                                                              \
    static CObject* CreateObject();

#define DECLARE_SERIAL(class_name)                                                                           \
    DECLARE_DYNCREATE(class_name)                                                                            \
    friend CArchive& operator>>(CArchive& ar, class_name*& pOb);

#define AFX_IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, schema, create)                              \
    CRuntimeClass class_name::class##class_name = {                                                          \
        #class_name, sizeof(class_name), schema, create, &base_class_name::GetThisClass, nullptr};           \
    CRuntimeClass* class_name::GetThisClass()                                                                \
    {                                                                                                        \
        return &class_name::class##class_name;                                                               \
    }                                                                                                        \
    CRuntimeClass* class_name::GetRuntimeClass() const                                                       \
    {                                                                                                        \
        return &class_name::class##class_name;                                                               \
    }

#define IMPLEMENT_DYNAMIC(class_name, base_class_name)                                                       \
    AFX_IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, 0xFFFF, nullptr)

#define IMPLEMENT_DYNCREATE(class_name, base_class_name)                                                     \
    CObject* class_name::CreateObject()                                                                      \
    {                                                                                                        \
        return new class_name;                                                                               \
    }                                                                                                        \
    AFX_IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, 0xFFFF, &class_name::CreateObject)

#define IMPLEMENT_SERIAL(class_name, base_class_name, wSchema)                                               \
    CObject* class_name::CreateObject()                                                                      \
    {                                                                                                        \
        return new class_name;                                                                               \
    }                                                                                                        \
    AFX_IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, wSchema, &class_name::CreateObject)              \
    static AFX_CLASSINIT init_##class_name(RUNTIME_CLASS(class_name));                                       \
    [[maybe_unused]] CArchive& operator>>(CArchive& ar, class_name*& pOb)                                    \
    {                                                                                                        \
        pOb = static_cast<class_name*>(ar.ReadObject(RUNTIME_CLASS(class_name)));                            \
        return ar;                                                                                           \
    }

#define VERSIONABLE_SCHEMA 0x80000000u

// The object as class_name if it is one, else null.
inline CObject* AfxDynamicDownCast(CRuntimeClass* pClass, CObject* pObject)
{
    return pObject != nullptr && pObject->IsKindOf(pClass) ? pObject : nullptr;
}
#define DYNAMIC_DOWNCAST(class_name, object)                                                                 \
    (static_cast<class_name*>(AfxDynamicDownCast(RUNTIME_CLASS(class_name), object)))
#define STATIC_DOWNCAST(class_name, object) (static_cast<class_name*>(object))

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
// Loads a string resource into a buffer of nMaxBuf characters, terminator included; answers its length,
// and 0 with an empty text when there is no such string.
AFX_DLL_API int AfxLoadString(UINT nIDS, LPTSTR lpszBuf, UINT nMaxBuf = 256);
// Replaces "%1" (and "%2") in a format; a marker inside an argument is not replaced again.
AFX_DLL_API void AfxFormatString1(CString& rString, UINT nIDS, LPCTSTR lpsz1);
AFX_DLL_API void AfxFormatString1(CString& rString, LPCTSTR lpszFormat, LPCTSTR lpsz1);
AFX_DLL_API void AfxFormatString2(CString& rString, UINT nIDS, LPCTSTR lpsz1, LPCTSTR lpsz2);
AFX_DLL_API void AfxFormatString2(CString& rString, LPCTSTR lpszFormat, LPCTSTR lpsz1, LPCTSTR lpsz2);
AFX_DLL_API void AfxFormatStrings(CString& rString, LPCTSTR lpszFormat, LPCTSTR const* rglpsz, int nString);
// The iSubString-th part (from 0) of a text whose parts are separated by chSep; FALSE when there is none.
AFX_DLL_API BOOL AfxExtractSubString(CString& rString, LPCTSTR lpszFullString, int iSubString,
                                     TCHAR chSep = '\n');
