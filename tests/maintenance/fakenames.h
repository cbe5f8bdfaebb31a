#pragma once

#include <afxwin.h>

#include "suite/timepointnames/timepointnames.h"

#include <objbase.h>
#include <oleauto.h>

#include <stdexcept>
#include <string>
#include <vector>

// Interfaces of COM have no destructor.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

/// What the dialogs tell when a method fails.
constexpr char namesFailed[] = "The list of predefined timepoint names could not be used.\n\nOut of order";

/// The component of predefined timepoint names, answered by the test: a list in memory whose methods fail on
/// request. It is registered for this process and stands before a component that is installed. The object
/// lives on the test's stack, so references are not counted.
class FakeNames final : public ITimepointNames,
                        public ISupportErrorInfo,
                        public IClassFactory,
                        public IRunnableObject
{
public:
    // clang-format off
    enum Method { none, create, run, createAtAll, listAvailable, count, item, removeAt, add, moveUp, moveDown };
    // clang-format on

    explicit FakeNames(std::vector<std::string> list) : names(std::move(list))
    {
        CoInitialize(nullptr);
        CoRegisterClassObject(CLSID_TimepointNames, static_cast<IClassFactory*>(this), CLSCTX_INPROC_SERVER,
                              REGCLS_MULTIPLEUSE, &m_class);
    }
    ~FakeNames()
    {
        CoRevokeClassObject(m_class);
        CoUninitialize();
    }
    FakeNames(const FakeNames&) = delete;
    FakeNames& operator=(const FakeNames&) = delete;

    std::vector<std::string> names;
    Method failing = none;
    bool available = true;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** ppObject) override
    {
        *ppObject = nullptr;
        if (iid == IID_IUnknown || iid == IID_ITimepointNames)
            *ppObject = static_cast<ITimepointNames*>(this);
        else if (iid == IID_ISupportErrorInfo)
            *ppObject = static_cast<ISupportErrorInfo*>(this);
        else if (iid == IID_IClassFactory)
            *ppObject = static_cast<IClassFactory*>(this);
        else if (iid == IID_IRunnableObject)
            *ppObject = static_cast<IRunnableObject*>(this);
        return *ppObject != nullptr ? S_OK : E_NOINTERFACE;
    }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID iid, void** ppObject) override
    {
        if (failing == createAtAll)
            throw std::runtime_error("no memory");
        return failing == create ? E_FAIL : QueryInterface(iid, ppObject);
    }
    HRESULT STDMETHODCALLTYPE get_Item(long nIndex, BSTR* pName) override
    {
        *pName = failing == item ? nullptr : CString(names.begin()[nIndex].c_str()).AllocSysString();
        return Answer(item);
    }
    // clang-format off
    HRESULT STDMETHODCALLTYPE get_ListAvailable(VARIANT_BOOL* pAvailable) override { return *pAvailable = available ? VARIANT_TRUE : VARIANT_FALSE, Answer(listAvailable); }
    HRESULT STDMETHODCALLTYPE get_Count(long* pCount) override { return *pCount = static_cast<long>(names.size()), Answer(count); }
    HRESULT STDMETHODCALLTYPE Remove(long nIndex) override { return Do(removeAt, [&] { names.erase(names.begin() + nIndex); }); }
    HRESULT STDMETHODCALLTYPE Add(BSTR name) override { return Do(add, [&] { names.emplace_back(CString(name).GetString()); }); }
    HRESULT STDMETHODCALLTYPE MoveUp(long nIndex) override { return Do(moveUp, [&] { std::iter_swap(names.begin() + nIndex, names.begin() + nIndex - 1); }); }
    HRESULT STDMETHODCALLTYPE MoveDown(long nIndex) override { return Do(moveDown, [&] { std::iter_swap(names.begin() + nIndex, names.begin() + nIndex + 1); }); }

    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) override { return iid == IID_ITimepointNames ? S_OK : S_FALSE; }
    HRESULT STDMETHODCALLTYPE GetRunningClass(LPCLSID) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Run(IBindCtx*) override { return failing == run ? E_FAIL : S_OK; }
    BOOL STDMETHODCALLTYPE IsRunning() override { return TRUE; }
    HRESULT STDMETHODCALLTYPE LockRunning(BOOL, BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE SetContainedObject(BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override { return E_NOTIMPL; }
    // clang-format on

private:
    template <class Change> HRESULT Do(Method method, const Change& change)
    {
        if (failing != method)
            change();
        return Answer(method);
    }

    /// The result of a method; a failing one says "Out of order".
    HRESULT Answer(Method method) const
    {
        if (method != failing)
            return S_OK;
        ICreateErrorInfo* pCreate = nullptr;
        IErrorInfo* pInfo = nullptr;
        CreateErrorInfo(&pCreate);
        std::wstring text = L"Out of order";
        pCreate->SetDescription(text.data());
        pCreate->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&pInfo));
        SetErrorInfo(0, pInfo);
        pInfo->Release();
        pCreate->Release();
        return E_FAIL;
    }

    DWORD m_class = 0;
};

#pragma GCC diagnostic pop
