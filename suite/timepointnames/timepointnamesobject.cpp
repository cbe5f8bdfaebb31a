#include "suite/timepointnames/timepointnamesobject.h"

#include "suite/patients/records/dbpatients.h"
#include "suite/patients/store/dbexception.h"

#include <iterator>
#include <new>

namespace
{
constexpr HRESULT E_BASE = MAKE_HRESULT(SEVERITY_ERROR, FACILITY_ITF, 0x200);
constexpr const wchar_t* SOURCE = L"Veltrix.TimepointNames";

/// What callers by name see, in the order of the dispatch ids, which run from 1.
struct Member
{
    const wchar_t* pszName;
    WORD wKind; ///< ways in which it may be called
    UINT nArguments;
};
constexpr Member MEMBERS[] = {
    {L"ListAvailable", DISPATCH_PROPERTYGET, 0},
    {L"Count", DISPATCH_PROPERTYGET, 0},
    {L"Item", DISPATCH_PROPERTYGET | DISPATCH_METHOD, 1},
    {L"Remove", DISPATCH_METHOD, 1},
    {L"Add", DISPATCH_METHOD, 1},
    {L"MoveUp", DISPATCH_METHOD, 1},
    {L"MoveDown", DISPATCH_METHOD, 1},
};

/// Leaves the sentence where the caller of a failed call finds it.
void SetError(const CString& strText) noexcept
{
    ICreateErrorInfo* pCreate = nullptr;
    if (FAILED(CreateErrorInfo(&pCreate)))
        return;
    const int nLength = MultiByteToWideChar(CP_ACP, 0, strText, strText.GetLength(), nullptr, 0);
    if (BSTR text = SysAllocStringLen(nullptr, static_cast<UINT>(nLength)))
    {
        MultiByteToWideChar(CP_ACP, 0, strText, strText.GetLength(), text, nLength);
        pCreate->SetDescription(text);
        SysFreeString(text);
    }
    pCreate->SetGUID(IID_ITimepointNames);
    pCreate->SetSource(const_cast<LPOLESTR>(SOURCE));
    IErrorInfo* pInfo = nullptr;
    if (SUCCEEDED(pCreate->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&pInfo))))
    {
        SetErrorInfo(0, pInfo);
        pInfo->Release();
    }
    pCreate->Release();
}

HRESULT ResultOf(const CException& e)
{
    const auto* pError = dynamic_cast<const dbCException*>(&e);
    if (pError == nullptr)
        return E_FAIL;
    const dbError nError = pError->GetError();
    return nError == dbErrNotFound || nError == dbErrInvalid ? E_INVALIDARG : E_BASE + nError;
}

/// The name in the system code page. Throws dbErrText for characters that it does not have, dbErrInvalid for
/// a name with a null in it.
CString ToCodePage(BSTR name)
{
    const int nLength = static_cast<int>(SysStringLen(name));
    if (nLength == 0)
        return {};
    BOOL bLost = FALSE;
    const int nBytes =
        WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, name, nLength, nullptr, 0, nullptr, &bLost);
    if (nBytes == 0 || bLost)
        dbCException::Throw(dbErrText);
    CString strName;
    WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, name, nLength, strName.GetBuffer(nBytes), nBytes,
                        nullptr, nullptr);
    strName.ReleaseBuffer(nBytes);
    if (strName.Find('\0') >= 0)
        dbCException::Throw(dbErrInvalid);
    return strName;
}

/// Fills a caller's exception record from what a failed call left behind.
void TakeError(HRESULT nResult, EXCEPINFO* pException)
{
    if (pException == nullptr)
        return;
    *pException = {};
    pException->scode = nResult;
    IErrorInfo* pInfo = nullptr;
    if (GetErrorInfo(0, &pInfo) != S_OK)
        return;
    pInfo->GetDescription(&pException->bstrDescription);
    pInfo->GetSource(&pException->bstrSource);
    pInfo->Release();
}
} // namespace

std::atomic<long> CTimepointNames::s_nInUse = 0;

CTimepointNames::CTimepointNames()
{
    ++s_nInUse;
}

CTimepointNames::~CTimepointNames()
{
    --s_nInUse;
}

HRESULT CTimepointNames::QueryInterface(REFIID iid, void** ppObject)
{
    if (ppObject == nullptr)
        return E_POINTER;
    *ppObject = nullptr;
    if (iid == IID_IUnknown || iid == IID_IDispatch || iid == IID_ITimepointNames)
        *ppObject = static_cast<ITimepointNames*>(this);
    else if (iid == IID_ISupportErrorInfo)
        *ppObject = static_cast<ISupportErrorInfo*>(this);
    else
        return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

ULONG CTimepointNames::AddRef()
{
    return ++m_nReferences;
}

ULONG CTimepointNames::Release()
{
    const ULONG nLeft = --m_nReferences;
    if (nLeft == 0)
        delete this;
    return nLeft;
}

HRESULT CTimepointNames::InterfaceSupportsErrorInfo(REFIID iid)
{
    return iid == IID_ITimepointNames ? S_OK : S_FALSE;
}

HRESULT CTimepointNames::GetTypeInfoCount(UINT* pCount)
{
    if (pCount == nullptr)
        return E_POINTER;
    *pCount = 0;
    return S_OK;
}

HRESULT CTimepointNames::GetTypeInfo(UINT /*nInfo*/, LCID /*lcid*/, ITypeInfo** ppInfo)
{
    if (ppInfo != nullptr)
        *ppInfo = nullptr;
    return DISP_E_BADINDEX;
}

HRESULT CTimepointNames::GetIDsOfNames(REFIID iid, LPOLESTR* pNames, UINT nNames, LCID /*lcid*/, DISPID* pIDs)
{
    if (iid != IID_NULL)
        return DISP_E_UNKNOWNINTERFACE;
    if (pNames == nullptr || pIDs == nullptr)
        return E_POINTER;
    // Arguments have no names: of several only the first, the member's own, can be known.
    for (UINT i = 0; i < nNames; ++i)
        pIDs[i] = DISPID_UNKNOWN;
    for (size_t i = 0; nNames > 0 && i < std::size(MEMBERS); ++i)
        if (lstrcmpiW(pNames[0], MEMBERS[i].pszName) == 0)
            pIDs[0] = static_cast<DISPID>(i + 1);
    return nNames == 1 && pIDs[0] != DISPID_UNKNOWN ? S_OK : DISP_E_UNKNOWNNAME;
}

HRESULT CTimepointNames::Invoke(DISPID nID, REFIID iid, LCID /*lcid*/, WORD wFlags, DISPPARAMS* pParams,
                                VARIANT* pResult, EXCEPINFO* pException, UINT* pArgument)
{
    if (iid != IID_NULL)
        return DISP_E_UNKNOWNINTERFACE;
    if (nID < 1 || nID > static_cast<DISPID>(std::size(MEMBERS)) || (MEMBERS[nID - 1].wKind & wFlags) == 0)
        return DISP_E_MEMBERNOTFOUND;
    if (pParams == nullptr || pParams->cArgs != MEMBERS[nID - 1].nArguments)
        return DISP_E_BADPARAMCOUNT;

    constexpr DISPID ADD = 5;
    VARIANT argument;
    VariantInit(&argument);
    UINT nBadArgument = 0;
    if (pParams->cArgs == 1)
    {
        const HRESULT nConverted =
            DispGetParam(pParams, 0, nID == ADD ? VT_BSTR : VT_I4, &argument, &nBadArgument);
        if (FAILED(nConverted))
        {
            if (pArgument != nullptr)
                *pArgument = nBadArgument;
            return nConverted;
        }
    }
    VARIANT result;
    VariantInit(&result);
    HRESULT nResult = S_OK;
    switch (nID)
    {
    case 1:
        nResult = get_ListAvailable(&result.boolVal);
        result.vt = VT_BOOL;
        break;
    case 2:
        nResult = get_Count(&result.lVal);
        result.vt = VT_I4;
        break;
    case 3:
        nResult = get_Item(argument.lVal, &result.bstrVal);
        result.vt = VT_BSTR;
        break;
    case 4:
        nResult = Remove(argument.lVal);
        break;
    case ADD:
        nResult = Add(argument.bstrVal);
        break;
    case 6:
        nResult = MoveUp(argument.lVal);
        break;
    default:
        nResult = MoveDown(argument.lVal);
        break;
    }
    VariantClear(&argument);
    if (FAILED(nResult))
    {
        TakeError(nResult, pException);
        return DISP_E_EXCEPTION;
    }
    if (pResult != nullptr)
        *pResult = result;
    else
        VariantClear(&result);
    return S_OK;
}

template <typename Work> HRESULT CTimepointNames::Call(Work work) noexcept
{
    try
    {
        try
        {
            if (!m_bLoaded)
                m_names.Load();
            m_bLoaded = true;
            work();
            return S_OK;
        }
        catch (CException* e)
        {
            const HRESULT nResult = ResultOf(*e);
            CString strText;
            e->GetErrorMessage(strText.GetBuffer(1024), 1024);
            strText.ReleaseBuffer();
            e->Delete();
            SetError(strText);
            return nResult;
        }
    }
    catch (...)
    {
        return E_OUTOFMEMORY;
    }
}

template <typename Work> HRESULT CTimepointNames::CallAt(long nIndex, Work work) noexcept
{
    return Call([&] {
        if (nIndex < 0 || nIndex >= m_names.GetCount())
            dbCException::Throw(dbErrNotFound);
        work(static_cast<int>(nIndex));
    });
}

HRESULT CTimepointNames::get_ListAvailable(VARIANT_BOOL* pAvailable)
{
    if (pAvailable == nullptr)
        return E_POINTER;
    *pAvailable = dbCPatients::IsOpen() ? VARIANT_TRUE : VARIANT_FALSE;
    return S_OK;
}

HRESULT CTimepointNames::get_Count(long* pCount)
{
    if (pCount == nullptr)
        return E_POINTER;
    *pCount = 0;
    m_bLoaded = false; // what other seats have changed is seen from here on
    return Call([&] { *pCount = m_names.GetCount(); });
}

HRESULT CTimepointNames::get_Item(long nIndex, BSTR* pName)
{
    if (pName == nullptr)
        return E_POINTER;
    *pName = nullptr;
    return CallAt(nIndex, [&](int i) {
        const CString& strName = m_names.GetAt(i);
        const int nLength = MultiByteToWideChar(CP_ACP, 0, strName, strName.GetLength(), nullptr, 0);
        *pName = SysAllocStringLen(nullptr, static_cast<UINT>(nLength));
        if (*pName == nullptr)
            throw std::bad_alloc();
        MultiByteToWideChar(CP_ACP, 0, strName, strName.GetLength(), *pName, nLength);
    });
}

HRESULT CTimepointNames::Remove(long nIndex)
{
    return CallAt(nIndex, [&](int i) { m_names.RemoveAt(i); });
}

HRESULT CTimepointNames::Add(BSTR name)
{
    return Call([&] { m_names.Add(ToCodePage(name)); });
}

HRESULT CTimepointNames::MoveUp(long nIndex)
{
    return CallAt(nIndex, [&](int i) { m_names.MoveUp(i); });
}

HRESULT CTimepointNames::MoveDown(long nIndex)
{
    return CallAt(nIndex, [&](int i) { m_names.MoveDown(i); });
}
