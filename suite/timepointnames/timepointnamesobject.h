#pragma once

#include "suite/patients/records/dbtimepointnames.h"
#include "suite/timepointnames/timepointnames.h"

#include <atomic>

/// The component's object: the list of the practice whose database the process has open, kept by the patient
/// database. It reads the list when the count is asked for, so that indices mean what the caller has seen,
/// and after each of its own changes. Lives on the thread that opened the database. Owns itself: Release of
/// the last reference deletes it.
class CTimepointNames final : public ITimepointNames, public ISupportErrorInfo
{
public:
    CTimepointNames();
    CTimepointNames(const CTimepointNames&) = delete;
    CTimepointNames& operator=(const CTimepointNames&) = delete;

    /// Objects and locks that keep the library loaded.
    static std::atomic<long> s_nInUse;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** ppObject) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* pCount) override;
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT nInfo, LCID lcid, ITypeInfo** ppInfo) override;
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* pNames, UINT nNames, LCID lcid,
                                            DISPID* pIDs) override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID nID, REFIID iid, LCID lcid, WORD wFlags, DISPPARAMS* pParams,
                                     VARIANT* pResult, EXCEPINFO* pException, UINT* pArgument) override;

    HRESULT STDMETHODCALLTYPE get_ListAvailable(VARIANT_BOOL* pAvailable) override;
    HRESULT STDMETHODCALLTYPE get_Count(long* pCount) override;
    HRESULT STDMETHODCALLTYPE get_Item(long nIndex, BSTR* pName) override;
    HRESULT STDMETHODCALLTYPE Remove(long nIndex) override;
    HRESULT STDMETHODCALLTYPE Add(BSTR name) override;
    HRESULT STDMETHODCALLTYPE MoveUp(long nIndex) override;
    HRESULT STDMETHODCALLTYPE MoveDown(long nIndex) override;

    HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) override;

private:
    ~CTimepointNames();

    /// Runs a call on the list, loaded once; what it throws becomes a result with an IErrorInfo.
    template <typename Work> HRESULT Call(Work work) noexcept;
    /// The same for a call about one entry: E_INVALIDARG for an index outside the list.
    template <typename Work> HRESULT CallAt(long nIndex, Work work) noexcept;

    std::atomic<ULONG> m_nReferences = 1;
    bool m_bLoaded = false;
    dbCTimepointNames m_names;
};
