// The component as its callers meet it: through COM, over a real database. Its class object is registered for
// this process alone, so that other programs in the same Windows do not see it come and go.

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

std::string Narrow(BSTR text)
{
    return text != nullptr ? CString(text).GetString() : "";
}

/// The sentence that the last failed call left.
std::string LastSentence()
{
    IErrorInfo* pInfo = nullptr;
    if (GetErrorInfo(0, &pInfo) != S_OK)
        return {};
    BSTR text = nullptr;
    pInfo->GetDescription(&text);
    pInfo->Release();
    const std::string sentence = Narrow(text);
    SysFreeString(text);
    return sentence;
}

class TimepointNames : public testing::Test
{
protected:
    void SetUp() override
    {
        m_practice.Set("Environment", "DatabaseTimeout", "50");
        dbCPatients::Create(Path().c_str());
        ASSERT_EQ(CoInitialize(nullptr), S_OK);
        IUnknown* pFactory = nullptr;
        ASSERT_NE(Server(), nullptr);
        ASSERT_EQ(Entry<decltype(DllGetClassObject)>("DllGetClassObject")(
                      CLSID_TimepointNames, IID_IUnknown, reinterpret_cast<void**>(&pFactory)),
                  S_OK);
        ASSERT_EQ(CoRegisterClassObject(CLSID_TimepointNames, pFactory, CLSCTX_INPROC_SERVER,
                                        REGCLS_MULTIPLEUSE, &m_dwClass),
                  S_OK);
        m_pNames = Create();
        ASSERT_NE(m_pNames, nullptr);
    }
    void TearDown() override
    {
        if (m_pNames != nullptr)
            m_pNames->Release();
        CoRevokeClassObject(m_dwClass);
        CoUninitialize();
        dbCPatients::Close();
    }

    static ITimepointNames* Create()
    {
        ITimepointNames* pNames = nullptr;
        EXPECT_EQ(CoCreateInstance(CLSID_TimepointNames, nullptr, 23, IID_ITimepointNames,
                                   reinterpret_cast<void**>(&pNames)),
                  S_OK);
        EXPECT_EQ(OleRun(pNames), S_OK);
        return pNames;
    }

    HRESULT Add(const wchar_t* pszName) const
    {
        BSTR name = SysAllocString(pszName);
        const HRESULT nResult = m_pNames->Add(name);
        SysFreeString(name);
        return nResult;
    }

    static std::string List(ITimepointNames* pNames)
    {
        long nCount = -1;
        EXPECT_EQ(pNames->get_Count(&nCount), S_OK);
        std::string list;
        for (long i = 0; i < nCount; ++i)
        {
            BSTR name = nullptr;
            EXPECT_EQ(pNames->get_Item(i, &name), S_OK);
            list += Narrow(name) + "|";
            SysFreeString(name);
        }
        return list;
    }
    std::string List() const
    {
        return List(m_pNames);
    }

    std::string Path() const
    {
        return m_practice.Path("patients.db");
    }

    veltest::TemporaryPractice m_practice;
    DWORD m_dwClass = 0;
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
        {[](auto* p) { return p->MoveDown(3); }, "Initial|\xC4nderung & \"%1\"|Phase 1|Recall|"},
        {[](auto* p) { return p->Remove(1); }, "Initial|Phase 1|Recall|"},
        {[](auto* p) { return p->MoveDown(0); }, "Phase 1|Initial|Recall|"},
        {[](auto* p) { return p->MoveDown(1); }, "Phase 1|Recall|Initial|"},
    };
    for (const auto& [change, pszList] : changes)
    {
        EXPECT_EQ(change(m_pNames), S_OK);
        EXPECT_EQ(List(), pszList);
    }
    dbCPatients::Close();
    dbCPatients::Open(Path().c_str());
    EXPECT_EQ(List(), "Phase 1|Recall|Initial|");
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
    long nCount = 0;
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
    EXPECT_TRUE(FAILED(m_pNames->get_Count(&nCount)));
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
    VARIANT text, number, result;
    text.vt = VT_BSTR;
    number.vt = VT_I4;
    for (const wchar_t* name : {L"A", L"B", L"C"})
    {
        text.bstrVal = SysAllocString(name);
        EXPECT_EQ(call(L"add", DISPATCH_METHOD, &text, nullptr), S_OK);
        SysFreeString(text.bstrVal);
    }
    number.lVal = 2;
    EXPECT_EQ(call(L"MoveUp", DISPATCH_METHOD, &number, nullptr), S_OK);
    number.lVal = 0;
    EXPECT_EQ(call(L"MoveDown", DISPATCH_METHOD, &number, nullptr), S_OK);
    EXPECT_EQ(List(), "C|A|B|");
    EXPECT_EQ(call(L"Remove", DISPATCH_METHOD, &number, nullptr), S_OK);
    EXPECT_EQ(call(L"Count", DISPATCH_PROPERTYGET, nullptr, &result), S_OK);
    EXPECT_EQ(result.vt, VT_I4);
    EXPECT_EQ(result.lVal, 2);
    EXPECT_EQ(call(L"ListAvailable", DISPATCH_PROPERTYGET, nullptr, &result), S_OK);
    EXPECT_EQ(result.boolVal, VARIANT_TRUE);
    EXPECT_EQ(call(L"Item", DISPATCH_PROPERTYGET, &number, &result), S_OK);
    EXPECT_EQ(Narrow(result.bstrVal), "A");
    SysFreeString(result.bstrVal);
    number.lVal = 7;
    EXPECT_EQ(call(L"Remove", DISPATCH_METHOD, &number, nullptr), DISP_E_EXCEPTION);
    EXPECT_EQ(call(L"Remove", DISPATCH_METHOD, nullptr, nullptr), DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(call(L"Clear", DISPATCH_METHOD, nullptr, nullptr), DISP_E_UNKNOWNNAME);
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
    EXPECT_EQ(Entry<decltype(DllUnregisterServer)>("DllUnregisterServer")(), S_OK)
        << "nothing left to take out";
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
