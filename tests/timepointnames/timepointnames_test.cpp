// The component as its callers meet it, over a real database. Its class object is taken from the library
// itself, so that other programs in the same Windows do not see it come and go.

#include "suite/patients/velpat.h"
#include "suite/timepointnames/timepointnames.h"
#include "tests/support/temporarypractice.h"

#include <gtest/gtest.h>

#include <olectl.h>

#include <functional>
#include <map>
#include <string>

namespace
{
HMODULE Server()
{
    static const HMODULE server = LoadLibraryA("VelTimepointNames.dll");
    return server;
}

template <typename Function> Function* Entry(const char* pszName)
{
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(Server(), pszName)));
}

/// The text, which is freed.
std::string Take(BSTR text)
{
    const CString narrow(text);
    SysFreeString(text);
    return narrow.GetString();
}

/// The sentence that the last failed call left.
std::string LastSentence()
{
    IErrorInfo* pInfo = nullptr;
    BSTR text = nullptr;
    if (GetErrorInfo(0, &pInfo) == S_OK)
    {
        pInfo->GetDescription(&text);
        pInfo->Release();
    }
    return Take(text);
}

class TimepointNames : public testing::Test
{
protected:
    void SetUp() override
    {
        m_practice.Set("Environment", "DatabaseTimeout", "50");
        dbCPatients::Create(Path().c_str());
        ASSERT_NE(Server(), nullptr);
        m_pNames = Create();
        ASSERT_NE(m_pNames, nullptr);
    }
    void TearDown() override
    {
        if (m_pNames != nullptr)
            m_pNames->Release();
        dbCPatients::Close();
    }

    static ITimepointNames* Create()
    {
        IClassFactory* pFactory = nullptr;
        EXPECT_EQ(Entry<decltype(DllGetClassObject)>("DllGetClassObject")(
                      CLSID_TimepointNames, IID_IClassFactory, reinterpret_cast<void**>(&pFactory)),
                  S_OK);
        ITimepointNames* pNames = nullptr;
        EXPECT_EQ(pFactory->CreateInstance(nullptr, IID_ITimepointNames, reinterpret_cast<void**>(&pNames)),
                  S_OK);
        pFactory->Release();
        return pNames;
    }

    HRESULT Add(const wchar_t* pszName) const
    {
        BSTR name = SysAllocString(pszName);
        const HRESULT nResult = m_pNames->Add(name);
        SysFreeString(name);
        return nResult;
    }

    std::string List(ITimepointNames* pOther = nullptr) const
    {
        ITimepointNames* const pNames = pOther != nullptr ? pOther : m_pNames;
        long nCount = -1;
        EXPECT_EQ(pNames->get_Count(&nCount), S_OK);
        std::string list;
        for (long i = 0; i < nCount; ++i)
        {
            BSTR name = nullptr;
            EXPECT_EQ(pNames->get_Item(i, &name), S_OK);
            list += Take(name) + "|";
        }
        return list;
    }
    std::string Path() const
    {
        return m_practice.Path("patients.db");
    }

    veltest::TemporaryPractice m_practice;
    ITimepointNames* m_pNames = nullptr;
};

TEST_F(TimepointNames, AreKeptInTheirUsersOrder)
{
    for (const wchar_t* name : {L"Initial", L"Phase 1", L"\x00C4nderung & \"%1\"", L"Recall", L"Initial"})
        ASSERT_EQ(Add(name), S_OK);
    EXPECT_EQ(List(), "Initial|Phase 1|\xC4nderung & \"%1\"|Recall|") << "a name stands once";

    struct
    {
        std::function<HRESULT(ITimepointNames*)> change;
        const char* pszList;
    } const changes[] = {
        {[](auto* p) { return p->MoveUp(2); }, "Initial|\xC4nderung & \"%1\"|Phase 1|Recall|"},
        {[](auto* p) { return p->MoveUp(0); }, "Initial|\xC4nderung & \"%1\"|Phase 1|Recall|"},
        {[](auto* p) { return p->Remove(1); }, "Initial|Phase 1|Recall|"},
        {[](auto* p) { return p->MoveDown(2); }, "Initial|Phase 1|Recall|"},
        {[](auto* p) { return p->MoveDown(0); }, "Phase 1|Initial|Recall|"},
    };
    for (const auto& [change, pszList] : changes)
    {
        EXPECT_EQ(change(m_pNames), S_OK);
        EXPECT_EQ(List(), pszList);
    }
    dbCPatients::Close();
    dbCPatients::Open(Path().c_str());
    EXPECT_EQ(List(), "Phase 1|Initial|Recall|");
}

TEST_F(TimepointNames, AnIndexNamesWhatItsCallerHasSeen)
{
    for (const wchar_t* name : {L"A", L"B", L"C"})
        ASSERT_EQ(Add(name), S_OK);
    ITimepointNames* const pOther = Create();
    EXPECT_EQ(List(pOther), "A|B|C|");
    EXPECT_EQ(m_pNames->Remove(0), S_OK);
    EXPECT_EQ(pOther->Remove(1), S_OK) << "B, which is no longer the second";
    EXPECT_EQ(List(), "C|");

    ASSERT_EQ(Add(L"D"), S_OK);
    EXPECT_EQ(List(pOther), "C|D|");
    EXPECT_EQ(m_pNames->Remove(0), S_OK);
    EXPECT_EQ(pOther->MoveDown(0), MAKE_HRESULT(1, FACILITY_ITF, 0x200 + dbErrChangedElsewhere));
    EXPECT_FALSE(LastSentence().empty());
    EXPECT_EQ(pOther->Remove(0), S_OK) << "it is gone already";
    EXPECT_EQ(List(pOther), "D|");
    pOther->Release();
}

TEST_F(TimepointNames, AFailedCallChangesNothingAndSaysWhy)
{
    ASSERT_EQ(Add(L"A"), S_OK);
    BSTR name = nullptr;
    for (const long nIndex : {-1L, 1L, 1L << 30})
    {
        EXPECT_EQ(m_pNames->get_Item(nIndex, &name), E_INVALIDARG);
        EXPECT_EQ(m_pNames->Remove(nIndex), E_INVALIDARG);
        EXPECT_EQ(m_pNames->MoveUp(nIndex), E_INVALIDARG);
        EXPECT_EQ(m_pNames->MoveDown(nIndex), E_INVALIDARG);
    }
    EXPECT_EQ(m_pNames->get_Item(0, nullptr), E_POINTER);
    EXPECT_EQ(m_pNames->get_Count(nullptr), E_POINTER);
    EXPECT_EQ(Add(nullptr), E_INVALIDARG);
    EXPECT_EQ(Add(L"\x4E00"), MAKE_HRESULT(1, FACILITY_ITF, 0x200 + dbErrText));
    EXPECT_FALSE(LastSentence().empty());
    BSTR withNull = SysAllocStringLen(L"a\0b", 3);
    EXPECT_EQ(m_pNames->Add(withNull), E_INVALIDARG);
    SysFreeString(withNull);
    EXPECT_EQ(List(), "A|");

    dbCPatients::Close();
    VARIANT_BOOL bAvailable = VARIANT_TRUE;
    EXPECT_EQ(m_pNames->get_ListAvailable(&bAvailable), S_OK);
    EXPECT_EQ(bAvailable, VARIANT_FALSE);
    EXPECT_TRUE(FAILED(Add(L"B")));
    EXPECT_FALSE(LastSentence().empty());
}

/// Calls by name, as scripts do.
TEST_F(TimepointNames, AnswerByNameToo)
{
    IDispatch* const pDispatch = m_pNames;
    const auto call = [&](const wchar_t* pszName, WORD wFlags, VARIANT* pArgument,
                          VARIANT* pResult) -> HRESULT {
        DISPID nID = 0;
        auto* name = const_cast<LPOLESTR>(pszName);
        const HRESULT nFound = pDispatch->GetIDsOfNames(IID_NULL, &name, 1, 0, &nID);
        DISPPARAMS params = {pArgument, nullptr, pArgument != nullptr ? 1U : 0U, 0};
        EXCEPINFO exception = {};
        const HRESULT nResult = FAILED(nFound) ? nFound
                                               : pDispatch->Invoke(nID, IID_NULL, 0, wFlags, &params, pResult,
                                                                   &exception, nullptr);
        EXPECT_EQ(nResult == DISP_E_EXCEPTION, exception.bstrDescription != nullptr);
        SysFreeString(exception.bstrDescription);
        SysFreeString(exception.bstrSource);
        return nResult;
    };
    VARIANT argument, result;
    argument.vt = VT_BSTR;
    argument.bstrVal = SysAllocString(L"A");
    EXPECT_EQ(call(L"add", DISPATCH_METHOD, &argument, nullptr), S_OK);
    SysFreeString(argument.bstrVal);
    Add(L"B");
    Add(L"C");
    argument.vt = VT_I4;
    const struct
    {
        const wchar_t* pszName;
        long nIndex;
        HRESULT nResult;
    } changes[] = {{L"MoveUp", 2, S_OK},
                   {L"MoveDown", 0, S_OK},
                   {L"Remove", 1, S_OK},
                   {L"Remove", 7, DISP_E_EXCEPTION},
                   {L"Clear", 0, DISP_E_UNKNOWNNAME}};
    for (const auto& change : changes)
    {
        argument.lVal = change.nIndex;
        EXPECT_EQ(call(change.pszName, DISPATCH_METHOD, &argument, nullptr), change.nResult);
    }
    EXPECT_EQ(call(L"Remove", DISPATCH_METHOD, nullptr, nullptr), DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(call(L"Count", DISPATCH_PROPERTYGET, nullptr, &result), S_OK);
    EXPECT_TRUE(result.vt == VT_I4 && result.lVal == 2);
    EXPECT_EQ(call(L"ListAvailable", DISPATCH_PROPERTYGET, nullptr, &result), S_OK);
    EXPECT_EQ(result.boolVal, VARIANT_TRUE);
    argument.lVal = 1;
    EXPECT_EQ(call(L"Item", DISPATCH_PROPERTYGET, &argument, &result), S_OK);
    EXPECT_EQ(Take(result.bstrVal), "B");
    EXPECT_EQ(List(), "C|B|");
}

TEST_F(TimepointNames, AreRegisteredWithTheirPathAndTakenOutAgain)
{
    // A registry of the test's own in place of the classes' root.
    const char* pszRoot = "Software\\VelTimepointNamesTest";
    HKEY hRoot = nullptr;
    ASSERT_EQ(RegCreateKeyA(HKEY_CURRENT_USER, pszRoot, &hRoot), ERROR_SUCCESS);
    ASSERT_EQ(RegOverridePredefKey(HKEY_CLASSES_ROOT, hRoot), ERROR_SUCCESS);
    const auto value = [&](const char* pszKey, const char* pszName) {
        char szValue[MAX_PATH] = "";
        DWORD dwSize = sizeof(szValue);
        RegGetValueA(hRoot, pszKey, pszName, RRF_RT_REG_SZ, nullptr, szValue, &dwSize);
        return std::string(szValue);
    };
    const std::string key = "CLSID\\{FE765C05-F4C9-4AF4-84BD-59D3C2DFA888}";
    EXPECT_EQ(Entry<decltype(DllRegisterServer)>("DllRegisterServer")(), S_OK);
    char szPath[MAX_PATH] = "";
    GetModuleFileNameA(Server(), szPath, MAX_PATH);
    EXPECT_EQ(value((key + "\\InprocServer32").c_str(), nullptr), szPath);
    EXPECT_EQ(value((key + "\\InprocServer32").c_str(), "ThreadingModel"), "Apartment");
    EXPECT_EQ(value("Veltrix.TimepointNames\\CLSID", nullptr), key.substr(6));
    EXPECT_EQ(Entry<decltype(DllUnregisterServer)>("DllUnregisterServer")(), S_OK);
    EXPECT_EQ(value((key + "\\InprocServer32").c_str(), nullptr), "");
    EXPECT_EQ(value("Veltrix.TimepointNames\\CLSID", nullptr), "");
    RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr);
    RegCloseKey(hRoot);
    RegDeleteTreeA(HKEY_CURRENT_USER, pszRoot);
}

TEST_F(TimepointNames, TheLibraryStaysWhileItIsUsed)
{
    auto* const canUnload = Entry<decltype(DllCanUnloadNow)>("DllCanUnloadNow");
    EXPECT_EQ(canUnload(), S_FALSE);
    IUnknown* pErrors = nullptr;
    ASSERT_EQ(m_pNames->QueryInterface(IID_ISupportErrorInfo, reinterpret_cast<void**>(&pErrors)), S_OK);
    m_pNames->Release();
    m_pNames = nullptr;
    EXPECT_EQ(canUnload(), S_FALSE);
    pErrors->Release();
    EXPECT_EQ(canUnload(), S_OK);
}
} // namespace
