// The ready-made collections, on the templates.
#pragma once

#include "afxtempl.h"

class AFX_DLL_CLASS CByteArray : public CArray<BYTE, BYTE>
{
    DECLARE_SERIAL(CByteArray)
public:
    void Serialize(CArchive& ar) override;
};

class AFX_DLL_CLASS CWordArray : public CArray<WORD, WORD>
{
    DECLARE_SERIAL(CWordArray)
public:
    void Serialize(CArchive& ar) override;
};

class AFX_DLL_CLASS CDWordArray : public CArray<DWORD, DWORD>
{
    DECLARE_SERIAL(CDWordArray)
public:
    void Serialize(CArchive& ar) override;
};

class AFX_DLL_CLASS CStringArray : public CArray<CString, LPCTSTR>
{
    DECLARE_SERIAL(CStringArray)
public:
    void Serialize(CArchive& ar) override;
};

class AFX_DLL_CLASS CUIntArray : public CArray<UINT, UINT>
{
    DECLARE_DYNAMIC(CUIntArray)
};

class AFX_DLL_CLASS CPtrArray : public CArray<void*, void*>
{
    DECLARE_DYNAMIC(CPtrArray)
};

class AFX_DLL_CLASS CObArray : public CArray<CObject*, CObject*>
{
    DECLARE_DYNAMIC(CObArray)
};

class AFX_DLL_CLASS CPtrList : public CList<void*, void*>
{
    DECLARE_DYNAMIC(CPtrList)
};

class AFX_DLL_CLASS CObList : public CList<CObject*, CObject*>
{
    DECLARE_DYNAMIC(CObList)
};

class AFX_DLL_CLASS CStringList : public CList<CString, LPCTSTR>
{
    DECLARE_DYNAMIC(CStringList)
};

class AFX_DLL_CLASS CMapStringToString : public CMap<CString, LPCTSTR, CString, LPCTSTR>
{
    DECLARE_DYNAMIC(CMapStringToString)
};

class AFX_DLL_CLASS CMapStringToPtr : public CMap<CString, LPCTSTR, void*, void*>
{
    DECLARE_DYNAMIC(CMapStringToPtr)
};

class AFX_DLL_CLASS CMapPtrToPtr : public CMap<void*, void*, void*, void*>
{
    DECLARE_DYNAMIC(CMapPtrToPtr)
};
