#pragma once

// The interface of the component that keeps the practice's predefined timepoint names. The ids and the order of
// the methods are fixed: callers and components that were built apart meet here.

#include <windows.h>

#include <oaidl.h>

// {FE765C05-F4C9-4AF4-84BD-59D3C2DFA888}
inline constexpr CLSID CLSID_TimepointNames = {
    0xFE765C05, 0xF4C9, 0x4AF4, {0x84, 0xBD, 0x59, 0xD3, 0xC2, 0xDF, 0xA8, 0x88}};

// {D8F5ECE8-6E03-4772-B48B-EF66E0454335}
inline constexpr IID IID_ITimepointNames = {
    0xD8F5ECE8, 0x6E03, 0x4772, {0xB4, 0x8B, 0xEF, 0x66, 0xE0, 0x45, 0x43, 0x35}};

// Interfaces of COM have no destructor: Release deletes.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

/// A dual interface: the practice's list of timepoint names in the practice's order. Dispatch ids run from 1 in
/// the order below. Indices run from 0; one outside the list is E_INVALIDARG. A failed call changes nothing and
/// leaves an IErrorInfo with a sentence for the user.
struct ITimepointNames : IDispatch
{
    /// Whether there is a list to offer; while there is none every other call fails.
    virtual HRESULT STDMETHODCALLTYPE get_ListAvailable(VARIANT_BOOL* pAvailable) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Count(long* pCount) = 0;
    /// The caller frees the string.
    virtual HRESULT STDMETHODCALLTYPE get_Item(long nIndex, BSTR* pName) = 0;
    virtual HRESULT STDMETHODCALLTYPE Remove(long nIndex) = 0;
    /// Appends a name.
    virtual HRESULT STDMETHODCALLTYPE Add(BSTR name) = 0;
    /// Exchanges the name with the one before (after) it; the first (last) one stays where it is.
    virtual HRESULT STDMETHODCALLTYPE MoveUp(long nIndex) = 0;
    virtual HRESULT STDMETHODCALLTYPE MoveDown(long nIndex) = 0;
};

#pragma GCC diagnostic pop
