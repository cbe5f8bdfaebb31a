#pragma once

#include <afxwin.h>

#include "suite/timepointnames/timepointnames.h"

#include <memory>
#include <string>
#include <vector>

/// A failed call of a COM interface: its result, the interface, and the sentence that the component gave,
/// else the system's. Thrown by pointer.
class CComCallException : public CException
{
    DECLARE_DYNAMIC(CComCallException)

public:
    CComCallException(HRESULT nResult, const IID& iid, CString strText);

    BOOL GetErrorMessage(LPTSTR pszError, UINT nMaxError, PUINT pnHelpContext = nullptr) const override;

    HRESULT GetResult() const
    {
        return m_nResult;
    }
    const IID& GetInterface() const
    {
        return m_iid;
    }

private:
    HRESULT m_nResult;
    IID m_iid;
    CString m_strText;
};

/// The practice's predefined timepoint names, kept by a component of the suite. Names are text of the system
/// code page; every call but Create and IsCreated throws CComCallException*. Owns its reference to the
/// component, and COM while it lives; user interface thread.
class CPredefinedNames
{
public:
    CPredefinedNames();
    ~CPredefinedNames();
    CPredefinedNames(const CPredefinedNames&) = delete;
    CPredefinedNames& operator=(const CPredefinedNames&) = delete;

    /// Whether the component was found and runs. Nothing else may be called otherwise.
    bool IsCreated() const
    {
        return m_pNames != nullptr;
    }

    /// Whether there is a list to offer.
    bool IsAvailable() const;
    /// The names in the practice's order; none when there is no list to offer.
    std::vector<CString> Load() const;

    void Add(LPCTSTR pszName);
    void Remove(int nIndex);
    void MoveUp(int nIndex);
    void MoveDown(int nIndex);

private:
    struct Releaser
    {
        void operator()(ITimepointNames* pNames) const
        {
            pNames->Release();
        }
    };

    void Check(HRESULT nResult) const;

    bool m_bComStarted;
    std::unique_ptr<ITimepointNames, Releaser> m_pNames;
};
