#include "cloud/queue/transferprogram.h"

#include "cloud/res/cloudres.h"
#include "cloud/xml/codepage.h"
#include "suite/patients/records/dbappoptions.h"
#include "suite/rasko/raskoapi.h"
#include "suite/util/velini.h"
#include "suite/util/velpath.h"

#include <afxwin.h>

#include <array>

namespace
{
/// The 64-bit program unless the setting names another.
bool Is64()
{
    return velenv("velrasko", "64") == "64";
}

/// The program's class, where it is registered.
bool FindClass(CLSID& id)
{
    const LPCSTR pszName = Is64() ? rasko::ProgId : "VelRasko.Application";
    return SUCCEEDED(::CLSIDFromProgID(velWide(pszName).c_str(), &id));
}
} // namespace

velCTransferProgram::~velCTransferProgram()
{
    m_object = {};
    if (m_bComInitialised)
        ::CoUninitialize();
}

CString velCTransferProgram::GetPath()
{
    return velWithBackslash(velenv("SYS", "c:\\veltrix")) + (Is64() ? rasko::ProgramFile : "velrasko.exe");
}

BOOL velCTransferProgram::IsInstalled() const
{
    return velFileExists(GetPath());
}

BOOL velCTransferProgram::Start(LPCTSTR pszSwitch) const
{
    CString strHidden;
    dbCApplicationOptionsContainer::GetApplicationOption("RASKOSHOWHIDDEN", strHidden);
    CString strCommand = "\"" + GetPath() + "\"";
    if (*pszSwitch != 0)
        strCommand += CString(" ") + pszSwitch;
    else if (!strHidden.IsEmpty() && strHidden != "0")
        strCommand += CString(" ") + rasko::HiddenSwitch;
    STARTUPINFO start = {};
    start.cb = sizeof start;
    PROCESS_INFORMATION process = {};
    std::string command(strCommand);
    if (!::CreateProcess(GetPath(), command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                         &process))
        return FALSE;
    ::CloseHandle(process.hThread);
    ::CloseHandle(process.hProcess);
    return TRUE;
}

BOOL velCTransferProgram::Connect()
{
    if (m_object)
        return TRUE;
    if (!m_bComInitialised)
        m_bComInitialised = SUCCEEDED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
    CLSID id;
    return FindClass(id) && SUCCEEDED(::CoCreateInstance(id, nullptr, CLSCTX_LOCAL_SERVER, IID_IDispatch,
                                                         m_object.ReceiveVoid()));
}

BOOL velCTransferProgram::Wake()
{
    const CWaitCursor wait;
    // One that is not registered reads the table as it starts.
    if (!Connect() && !Start(""))
    {
        AfxMessageBox(IDS_CLD_START_FAILED, MB_OK | MB_ICONSTOP);
        return FALSE;
    }
    if (const HWND hWindow = ::FindWindow(rasko::WindowClass, nullptr))
        ::PostMessage(hWindow, ::RegisterWindowMessage(rasko::WakeMessage), 0, 0);
    return TRUE;
}

void velCTransferProgram::Show()
{
    const HWND hWindow = ::FindWindow(rasko::WindowClass, nullptr);
    if (hWindow != nullptr)
    {
        ::ShowWindow(hWindow, SW_SHOW);
        ::SetForegroundWindow(hWindow);
    }
    else
        Wake();
}

void velCTransferProgram::ShowOptions()
{
    if (!Start(rasko::OptionsSwitch))
        AfxMessageBox(IDS_CLD_START_FAILED, MB_OK | MB_ICONSTOP);
}

HRESULT velCTransferProgram::Call(long nMember, WORD nKind, VARIANT* pArguments, UINT nArguments,
                                  VARIANT* pResult)
{
    if (!Connect())
        return CO_E_SERVER_EXEC_FAILURE;
    DISPPARAMS parameters = {pArguments, nullptr, nArguments, 0};
    const velComPtr<IDispatch> object = m_object; // messages are handled meanwhile, which may let go of it
    const HRESULT nResult =
        object->Invoke(nMember, IID_NULL, LOCALE_USER_DEFAULT, nKind, &parameters, pResult, nullptr, nullptr);
    // The program has ended meanwhile: the next call starts it again.
    if (HRESULT_FACILITY(nResult) == FACILITY_RPC || HRESULT_FACILITY(nResult) == FACILITY_WIN32)
        m_object = {};
    return nResult;
}

CString velCTransferProgram::Ask(long nMember, VARIANT* pArguments, UINT nArguments)
{
    const CWaitCursor wait;
    velVariant result;
    if (FAILED(Call(nMember, DISPATCH_METHOD, pArguments, nArguments, &result)) || result.vt != VT_BSTR)
    {
        CString strText;
        strText.LoadString(IDS_CLD_NO_DOWNLOAD_PROGRAM);
        return strText;
    }
    return velNarrow({result.bstrVal, ::SysStringLen(result.bstrVal)});
}

BOOL velCTransferProgram::HasCredentials()
{
    velVariant result;
    return SUCCEEDED(Call(rasko::HasCredentials, DISPATCH_PROPERTYGET, nullptr, 0, &result)) &&
           result.vt == VT_BOOL && result.boolVal != VARIANT_FALSE;
}

void velCTransferProgram::EnterCredentials()
{
    velVariant result;
    Call(rasko::EnterCredentials, DISPATCH_METHOD, nullptr, 0, &result);
}

BOOL velCTransferProgram::GetCredentials(velCCredentials& credentials)
{
    velVariant user, password;
    if (!HasCredentials() || FAILED(Call(rasko::UserName, DISPATCH_PROPERTYGET, nullptr, 0, &user)) ||
        FAILED(Call(rasko::Password, DISPATCH_PROPERTYGET, nullptr, 0, &password)) || user.vt != VT_BSTR ||
        password.vt != VT_BSTR)
        return FALSE;
    const UINT nLength = ::SysStringLen(password.bstrVal);
    std::array<char, 1024> narrow{};
    if (nLength > 0)
        ::WideCharToMultiByte(CP_ACP, 0, password.bstrVal, static_cast<int>(nLength), narrow.data(),
                              static_cast<int>(narrow.size()) - 1, nullptr, nullptr);
    credentials.Set(velNarrow({user.bstrVal, ::SysStringLen(user.bstrVal)}), narrow.data());
    ::SecureZeroMemory(narrow.data(), narrow.size());
    ::SecureZeroMemory(password.bstrVal, nLength * sizeof(wchar_t));
    return credentials.IsKnown();
}

CString velCTransferProgram::RegisterPatient(LPCTSTR pszGUID, __int64 nBytes)
{
    // Arguments stand from the last to the first.
    std::array<velVariant, 2> arguments{velVariant(std::to_wstring(nBytes)), velVariant(velWide(pszGUID))};
    return Ask(rasko::RegisterPatient, arguments.data(), 2);
}

CString velCTransferProgram::SetRecipients(LPCTSTR pszGUID, LPCTSTR pszRecipients, LPCTSTR pszNotes)
{
    std::array<velVariant, 3> arguments{velVariant(velWide(pszNotes)), velVariant(velWide(pszRecipients)),
                                        velVariant(velWide(pszGUID))};
    return Ask(rasko::SetRecipients, arguments.data(), 3);
}
