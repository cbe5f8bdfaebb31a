#include "host/hostmodule.h"

#include "host/hostres.h"

#include <array>
#include <cstring>

namespace
{

// In the order of hostCModule::Exports.
constexpr std::array<hostCModule::Name, 13> kNames = {{
    {"NewPatientDlg", "_Z13NewPatientDlgP4CWndP11dbCPatientsR7CString"},
    {"NewPatientDlgWithData", "_Z21NewPatientDlgWithDataP4CWndP11dbCPatientsR7CStringP10dbCPatient"},
    {"ChangePatientDlg", "_Z16ChangePatientDlgP4CWndP11dbCPatientsP10dbCPatient"},
    {"NewTimepointDlg", "_Z15NewTimepointDlgP4CWndiP10dbCPatientRx"},
    {"DeleteDlg", "_Z9DeleteDlgP4CWndiP10dbCPatientiii7CStringRxRj"},
    {"ArchiveDlg", "_Z10ArchiveDlgP4CWndiP10dbCPatient10ARCHIVE_OPR12CStringArrayP11dbCPatientsS5_S5_S5_S5_ii"},
    {"RenameDlg", "_Z9RenameDlgP4CWndiP10dbCPatienti7CStringP9RENAME_OPRS3_S6_S6_S6_R12COleDateTime"},
    {"EditKeywords", "_Z12EditKeywordsP4CWnd8INI_LIST"},
    {"ImportPatientDiagnostics", "ImportPatientDiagnostics"},
    {"SetArchivingAllowed", "_Z19SetArchivingAllowedb"},
    {"nameMakeFullname", "_Z16nameMakeFullnamePKcS0_P7CString9NAMEORDER"},
    {"GrayStringProc", "_Z14GrayStringProcP5HDC__xi"},
    {"g_VelIniSettingContainer", "g_VelIniSettingContainer"},
}};

static_assert(sizeof(hostCModule::Exports) == kNames.size() * sizeof(void*), "one pointer for each name");

constexpr const char* kModuleName = "VelDlgs.dll";

CString BesideProgram()
{
    char path[MAX_PATH] = {};
    ::GetModuleFileName(nullptr, path, MAX_PATH);
    CString folder(path);
    return folder.Left(folder.ReverseFind('\\') + 1) + kModuleName;
}

} // namespace

hostCModule::~hostCModule()
{
    Unload();
}

std::span<const hostCModule::Name> hostCModule::GetNames()
{
    return kNames;
}

BOOL hostCModule::Load(LPCTSTR requested, CString& error)
{
    Unload();
    const CString path = requested != nullptr ? CString(requested) : BesideProgram();
    if (::GetFileAttributes(path) == INVALID_FILE_ATTRIBUTES)
    {
        error.FormatMessage(IDS_ERR_MODULE_MISSING, path.GetString());
        return FALSE;
    }
    // The libraries that it needs are looked for in its own folder.
    const UINT mode = ::SetErrorMode(SEM_FAILCRITICALERRORS);
    m_module = ::LoadLibraryEx(path, nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    const DWORD code = ::GetLastError();
    ::SetErrorMode(mode);
    if (m_module == nullptr)
    {
        CString number;
        number.Format("%lu", code);
        error.FormatMessage(IDS_ERR_MODULE_LOAD, path.GetString(), number.GetString());
        return FALSE;
    }

    std::array<void*, kNames.size()> addresses = {};
    CString missing;
    for (std::size_t index = 0; index < kNames.size(); ++index)
    {
        addresses[index] = reinterpret_cast<void*>(::GetProcAddress(m_module, kNames[index].decorated));
        if (addresses[index] == nullptr)
        {
            missing += CString(missing.IsEmpty() ? "" : ", ") + kNames[index].name;
        }
    }
    if (!missing.IsEmpty())
    {
        Unload();
        error.FormatMessage(IDS_ERR_MODULE_EXPORTS, path.GetString(), missing.GetString());
        return FALSE;
    }
    std::memcpy(&m_exports, addresses.data(), sizeof m_exports);
    return TRUE;
}

void hostCModule::Unload()
{
    if (m_module != nullptr)
    {
        ::FreeLibrary(m_module);
        m_module = nullptr;
        m_exports = {};
    }
}

CString hostCModule::GetPath() const
{
    char path[MAX_PATH] = {};
    ::GetModuleFileName(m_module, path, MAX_PATH);
    return path;
}
