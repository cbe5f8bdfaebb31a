#include "suite/rasko/program/automation.h"

#include "suite/rasko/program/credentials.h"
#include "suite/rasko/program/raskowindow.h"
#include "suite/rasko/raskoapi.h"

#include <afxwin.h>
#include <objbase.h>
#include <oleauto.h>

#include <atomic>
#include <cstdlib>
#include <string>

namespace
{
CLSID ClassIdentifier()
{
    CLSID id{};
    CLSIDFromString(std::wstring(rasko::ClassId, rasko::ClassId + sizeof rasko::ClassId - 1).c_str(), &id);
    return id;
}

BSTR ToBstr(std::string_view utf8)
{
    const int wide = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), nullptr, 0);
    BSTR text = SysAllocStringLen(nullptr, static_cast<UINT>(wide));
    if (text)
        MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), text, wide);
    return text;
}

// A text argument, counted from the first.
CString Argument(const DISPPARAMS& parameters, UINT index)
{
    VARIANT text;
    VariantInit(&text);
    CString result;
    if (index < parameters.cArgs &&
        SUCCEEDED(VariantChangeType(&text, &parameters.rgvarg[parameters.cArgs - 1 - index], 0, VT_BSTR)) &&
        text.bstrVal)
        result = CString(text.bstrVal);
    VariantClear(&text);
    return result;
}

/// Handed to other programs; all of them share the window. Reference counted.
class Application final : public IDispatch
{
public:
    explicit Application(CRaskoWindow& window) : m_window(window)
    {
    }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override
    {
        if (!object)
            return E_POINTER;
        *object = iid == IID_IUnknown || iid == IID_IDispatch ? this : nullptr;
        if (!*object)
            return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override
    {
        return ++m_references;
    }
    ULONG STDMETHODCALLTYPE Release() override
    {
        const ULONG left = --m_references;
        if (left == 0)
            delete this;
        return left;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override
    {
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override
    {
        return DISP_E_BADINDEX;
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override
    {
        for (UINT i = 0; i < count; ++i)
            ids[i] = DISPID_UNKNOWN;
        if (count != 1)
            return DISP_E_UNKNOWNNAME;
        for (std::size_t i = 0; i < std::size(rasko::MemberNames); ++i)
            if (_wcsicmp(names[0], rasko::MemberNames[i]) == 0)
                ids[0] = static_cast<DISPID>(i) + 1;
        return ids[0] == DISPID_UNKNOWN ? DISP_E_UNKNOWNNAME : S_OK;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD, DISPPARAMS* parameters,
                                     VARIANT* result, EXCEPINFO*, UINT*) override
    {
        VARIANT ignored;
        VariantInit(&ignored);
        VARIANT& answer = result ? *result : ignored;
        VariantInit(&answer);
        try
        {
            const HRESULT done = Answer(member, *parameters, answer);
            if (!result)
                VariantClear(&ignored);
            return done;
        }
        catch (CException* thrown)
        {
            thrown->Delete();
        }
        catch (const std::exception&)
        {
        }
        return E_FAIL;
    }

private:
    HRESULT Answer(DISPID member, const DISPPARAMS& parameters, VARIANT& answer)
    {
        const auto sentence = [&answer](const CString& text) {
            answer.vt = VT_BSTR;
            answer.bstrVal = ToBstr(rasko::ToUtf8(text));
            return S_OK;
        };
        switch (member)
        {
        case rasko::HasCredentials:
        case rasko::UserName:
        case rasko::Password: {
            const auto credentials = rasko::LoadCredentials(rasko::ToUtf8(rasko::Settings::Load().target));
            if (member == rasko::HasCredentials)
            {
                answer.vt = VT_BOOL;
                answer.boolVal = credentials ? VARIANT_TRUE : VARIANT_FALSE;
            }
            else
            {
                answer.vt = VT_BSTR;
                answer.bstrVal = ToBstr(!credentials                ? std::string_view()
                                        : member == rasko::UserName ? std::string_view(credentials->user)
                                                                    : credentials->password.View());
            }
            return S_OK;
        }
        case rasko::EnterCredentials:
        case rasko::ShowOptions:
            m_window.OpenOptions();
            return S_OK;
        case rasko::RegisterPatient:
            return sentence(
                m_window.RegisterPatient(Argument(parameters, 0), _atoi64(Argument(parameters, 1))));
        case rasko::SetRecipients:
            return sentence(m_window.SetRecipients(Argument(parameters, 0), Argument(parameters, 1),
                                                   Argument(parameters, 2)));
        case rasko::WindowHandle:
            answer.vt = VT_I4;
            answer.lVal = static_cast<LONG>(reinterpret_cast<LONG_PTR>(m_window.m_hWnd));
            return S_OK;
        case rasko::Quit:
            m_window.Quit();
            return S_OK;
        default:
            return DISP_E_MEMBERNOTFOUND;
        }
    }

    CRaskoWindow& m_window;
    std::atomic<ULONG> m_references = 1;
};

/// One for the program; outlives its registration.
class Factory final : public IClassFactory
{
public:
    CRaskoWindow* window = nullptr;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override
    {
        if (!object)
            return E_POINTER;
        *object = iid == IID_IUnknown || iid == IID_IClassFactory ? this : nullptr;
        return *object ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override
    {
        return 2;
    }
    ULONG STDMETHODCALLTYPE Release() override
    {
        return 1;
    }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override
    {
        if (outer)
            return CLASS_E_NOAGGREGATION;
        auto* application = new Application(*window);
        const HRESULT result = application->QueryInterface(iid, object);
        application->Release();
        return result;
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override
    {
        return S_OK;
    }
};
Factory factory;

bool SetDefault(const std::string& key, const std::string& value)
{
    return RegSetKeyValueA(HKEY_LOCAL_MACHINE, ("Software\\Classes\\" + key).c_str(), nullptr, REG_SZ,
                           value.c_str(), static_cast<DWORD>(value.size() + 1)) == ERROR_SUCCESS;
}
} // namespace

namespace rasko
{
AutomationServer::AutomationServer(CRaskoWindow& window)
{
    factory.window = &window;
    CoRegisterClassObject(ClassIdentifier(), &factory, CLSCTX_LOCAL_SERVER, REGCLS_MULTIPLEUSE, &m_cookie);
}

AutomationServer::~AutomationServer()
{
    if (m_cookie)
        CoRevokeClassObject(m_cookie);
}

bool RegisterServer()
{
    char program[MAX_PATH] = "";
    GetModuleFileNameA(nullptr, program, MAX_PATH);
    const std::string classKey = std::string("CLSID\\") + ClassId;
    return SetDefault(ProgId, "Veltrix Rasko") && SetDefault(std::string(ProgId) + "\\CLSID", ClassId) &&
           SetDefault(classKey, "Veltrix Rasko") && SetDefault(classKey + "\\ProgID", ProgId) &&
           SetDefault(classKey + "\\LocalServer32", "\"" + std::string(program) + "\" /Automation");
}

bool UnregisterServer()
{
    const auto remove = [](const std::string& key) {
        const LSTATUS result = RegDeleteTreeA(HKEY_LOCAL_MACHINE, ("Software\\Classes\\" + key).c_str());
        return result == ERROR_SUCCESS || result == ERROR_FILE_NOT_FOUND;
    };
    const bool program = remove(ProgId);
    return remove(std::string("CLSID\\") + ClassId) && program;
}
} // namespace rasko
