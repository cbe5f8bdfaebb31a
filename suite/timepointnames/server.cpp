// What makes the library a COM server: its class object, its life in a process and its registration.

#include "suite/timepointnames/timepointnamesobject.h"

#include <olectl.h>

#include <new>
#include <string>

namespace
{
constexpr const wchar_t* PROG_ID = L"Veltrix.TimepointNames";
constexpr const wchar_t* TITLE = L"Predefined timepoint names";

/// Makes the objects. One for the whole library; it is never deleted, so its references need no count.
class CFactory final : public IClassFactory
{
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** ppObject) override
    {
        if (ppObject == nullptr)
            return E_POINTER;
        *ppObject = iid == IID_IUnknown || iid == IID_IClassFactory ? this : nullptr;
        return *ppObject != nullptr ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override
    {
        return 2;
    }
    ULONG STDMETHODCALLTYPE Release() override
    {
        return 1;
    }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* pOuter, REFIID iid, void** ppObject) override
    {
        if (ppObject == nullptr)
            return E_POINTER;
        *ppObject = nullptr;
        if (pOuter != nullptr)
            return CLASS_E_NOAGGREGATION;
        auto* const pObject = new (std::nothrow) CTimepointNames;
        if (pObject == nullptr)
            return E_OUTOFMEMORY;
        const HRESULT nResult = pObject->QueryInterface(iid, ppObject);
        pObject->Release();
        return nResult;
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL bLock) override
    {
        bLock ? ++CTimepointNames::s_nInUse : --CTimepointNames::s_nInUse;
        return S_OK;
    }
};
CFactory factory;
HINSTANCE instance;

std::wstring ClassKey()
{
    wchar_t szClass[40] = L"";
    StringFromGUID2(CLSID_TimepointNames, szClass, static_cast<int>(std::size(szClass)));
    return std::wstring(L"CLSID\\") + szClass;
}

/// Sets a key's value below HKEY_CLASSES_ROOT; a null name is the key's own value.
bool SetValue(const std::wstring& key, const wchar_t* pszName, const std::wstring& value)
{
    const auto nBytes = static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t));
    return RegSetKeyValueW(HKEY_CLASSES_ROOT, key.c_str(), pszName, REG_SZ, value.c_str(), nBytes) ==
           ERROR_SUCCESS;
}
} // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE hInstance, DWORD nReason, LPVOID)
{
    if (nReason == DLL_PROCESS_ATTACH)
    {
        instance = hInstance;
        DisableThreadLibraryCalls(hInstance);
    }
    return TRUE;
}

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, LPVOID* ppObject)
{
    if (ppObject == nullptr)
        return E_POINTER;
    *ppObject = nullptr;
    return clsid == CLSID_TimepointNames ? factory.QueryInterface(iid, ppObject) : CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow()
{
    return CTimepointNames::s_nInUse == 0 ? S_OK : S_FALSE;
}

STDAPI DllRegisterServer()
{
    wchar_t szPath[MAX_PATH] = L"";
    const DWORD nLength = GetModuleFileNameW(instance, szPath, MAX_PATH);
    if (nLength == 0 || nLength == MAX_PATH)
        return SELFREG_E_CLASS;
    const std::wstring key = ClassKey();
    const bool bDone = SetValue(key, nullptr, TITLE) && SetValue(key + L"\\ProgID", nullptr, PROG_ID) &&
                       SetValue(key + L"\\InprocServer32", nullptr, szPath) &&
                       SetValue(key + L"\\InprocServer32", L"ThreadingModel", L"Apartment") &&
                       SetValue(PROG_ID, nullptr, TITLE) &&
                       SetValue(std::wstring(PROG_ID) + L"\\CLSID", nullptr, key.substr(key.find(L'{')));
    return bDone ? S_OK : SELFREG_E_CLASS;
}

STDAPI DllUnregisterServer()
{
    const auto gone = [](const std::wstring& key) {
        const LSTATUS nResult = RegDeleteTreeW(HKEY_CLASSES_ROOT, key.c_str());
        return nResult == ERROR_SUCCESS || nResult == ERROR_FILE_NOT_FOUND;
    };
    const bool bClass = gone(ClassKey()), bName = gone(PROG_ID);
    return bClass && bName ? S_OK : SELFREG_E_CLASS;
}
