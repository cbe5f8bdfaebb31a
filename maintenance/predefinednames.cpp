#include "maintenance/predefinednames.h"

#include <ole2.h>
#include <oleauto.h>

IMPLEMENT_DYNAMIC(CComCallException, CException)

namespace
{

constexpr DWORD anyServer = 23; // in this process, in another or on another computer

struct StringFree
{
    void operator()(OLECHAR* psz) const
    {
        ::SysFreeString(psz);
    }
};
using ComString = std::unique_ptr<OLECHAR, StringFree>;

/// What the component says about the call that failed, if it says so for this interface.
CString Description(IUnknown* pObject, const IID& iid)
{
    CString strText;
    ISupportErrorInfo* pSupport = nullptr;
    if (FAILED(pObject->QueryInterface(IID_ISupportErrorInfo, reinterpret_cast<void**>(&pSupport))))
        return strText;
    IErrorInfo* pInfo = nullptr;
    if (pSupport->InterfaceSupportsErrorInfo(iid) == S_OK && ::GetErrorInfo(0, &pInfo) == S_OK)
    {
        BSTR text = nullptr;
        pInfo->GetDescription(&text);
        const ComString owned(text);
        strText = CString(text);
        pInfo->Release();
    }
    pSupport->Release();
    return strText;
}

CString SystemText(HRESULT nResult)
{
    CString strText;
    const DWORD nLength =
        ::FormatMessage(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                        static_cast<DWORD>(nResult), 0, strText.GetBuffer(1024), 1024, nullptr);
    strText.ReleaseBuffer(static_cast<int>(nLength));
    strText.TrimRight();
    if (strText.IsEmpty())
        strText.Format("0x%08lX", static_cast<unsigned long>(nResult));
    return strText;
}

} // namespace

CComCallException::CComCallException(HRESULT nResult, const IID& iid, CString strText)
    : m_nResult(nResult), m_iid(iid), m_strText(std::move(strText))
{
}

BOOL CComCallException::GetErrorMessage(LPTSTR pszError, UINT nMaxError, PUINT pnHelpContext) const
{
    if (pnHelpContext != nullptr)
        *pnHelpContext = 0;
    lstrcpyn(pszError, m_strText, static_cast<int>(nMaxError));
    return TRUE;
}

CPredefinedNames::CPredefinedNames() : m_bComStarted(SUCCEEDED(::CoInitialize(nullptr)))
{
    ITimepointNames* pNames = nullptr;
    if (SUCCEEDED(::CoCreateInstance(CLSID_TimepointNames, nullptr, anyServer, IID_ITimepointNames,
                                     reinterpret_cast<void**>(&pNames))))
        m_pNames.reset(pNames);
    if (m_pNames != nullptr && FAILED(::OleRun(m_pNames.get())))
        m_pNames.reset();
}

CPredefinedNames::~CPredefinedNames()
{
    m_pNames.reset();
    if (m_bComStarted)
        ::CoUninitialize();
}

bool CPredefinedNames::IsAvailable() const
{
    VARIANT_BOOL bAvailable = VARIANT_FALSE;
    Check(m_pNames->get_ListAvailable(&bAvailable));
    return bAvailable != VARIANT_FALSE;
}

std::vector<CString> CPredefinedNames::Load() const
{
    std::vector<CString> names;
    if (!IsAvailable())
        return names;
    long nCount = 0;
    Check(m_pNames->get_Count(&nCount));
    for (long i = 0; i < nCount; ++i)
    {
        BSTR name = nullptr;
        Check(m_pNames->get_Item(i, &name));
        const ComString owned(name);
        names.emplace_back(name);
    }
    return names;
}

void CPredefinedNames::Add(LPCTSTR pszName)
{
    const ComString name(CString(pszName).AllocSysString());
    Check(m_pNames->Add(name.get()));
}

void CPredefinedNames::Remove(int nIndex)
{
    Check(m_pNames->Remove(nIndex));
}

void CPredefinedNames::MoveUp(int nIndex)
{
    Check(m_pNames->MoveUp(nIndex));
}

void CPredefinedNames::MoveDown(int nIndex)
{
    Check(m_pNames->MoveDown(nIndex));
}

void CPredefinedNames::Check(HRESULT nResult) const
{
    if (SUCCEEDED(nResult))
        return;
    CString strText = Description(m_pNames.get(), IID_ITimepointNames);
    if (strText.IsEmpty())
        strText = SystemText(nResult);
    throw new CComCallException(nResult, IID_ITimepointNames, std::move(strText));
}
