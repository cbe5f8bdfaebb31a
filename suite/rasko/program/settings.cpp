#include "suite/rasko/program/settings.h"

#include "suite/patients/velpat.h"
#include "suite/rasko/raskoapi.h"
#include "suite/util/velini.h"
#include "suite/util/velpath.h"

namespace
{
CString Option(LPCTSTR key, LPCTSTR fallback)
{
    CString value;
    if (dbCApplicationOptionsContainer::GetApplicationOption(key, value) == 0)
        return value;
    dbCApplicationOptionsContainer::SetApplicationOption(key, fallback);
    return fallback;
}
} // namespace

namespace rasko
{
std::string ToUtf8(const CString& text)
{
    const int wide = MultiByteToWideChar(CP_ACP, 0, text, text.GetLength(), nullptr, 0);
    std::wstring utf16(static_cast<std::size_t>(wide), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text, text.GetLength(), utf16.data(), wide);
    const int size = WideCharToMultiByte(CP_UTF8, 0, utf16.data(), wide, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, utf16.data(), wide, utf8.data(), size, nullptr, nullptr);
    return utf8;
}

CString FromUtf8(const std::string& text)
{
    const int wide = MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
    std::wstring utf16(static_cast<std::size_t>(wide), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), utf16.data(), wide);
    const int size = WideCharToMultiByte(CP_ACP, 0, utf16.data(), wide, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_ACP, 0, utf16.data(), wide, narrow.data(), size, nullptr, nullptr);
    return narrow.c_str();
}

Settings Settings::Load()
{
    Settings settings;
    const Scripts defaults;
    settings.target = Option(OptionService, velenv(OptionService, DefaultService));
    settings.scripts.command = Option("RASKOCOMMAND", defaults.command.c_str());
    settings.scripts.upload = Option("RASKOUPLOAD", defaults.upload.c_str());
    dbCApplicationOptionsContainer::GetApplicationOption("RASKOPATH", settings.folder);
    CString hidden;
    dbCApplicationOptionsContainer::GetApplicationOption("RASKOSHOWHIDDEN", hidden);
    settings.hidden = hidden == "1";
    return settings;
}

void Settings::Store() const
{
    dbCTransaction transaction;
    dbCApplicationOptionsContainer::SetApplicationOption(OptionService, target);
    dbCApplicationOptionsContainer::SetApplicationOption("RASKOPATH", folder);
    dbCApplicationOptionsContainer::SetApplicationOption("RASKOSHOWHIDDEN", hidden ? "1" : "0");
    transaction.Commit();
}

bool IsServiceName(const CString& text)
{
    const CString host = text.SpanExcluding(":");
    const CString port = text.Mid(host.GetLength());
    return !host.IsEmpty() &&
           host.SpanIncluding("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-.") == host &&
           (port.IsEmpty() || (port.GetLength() > 1 && port.GetLength() < 7 &&
                               port.Mid(1).SpanIncluding("0123456789") == port.Mid(1) &&
                               atoi(port.Mid(1)) > 0 && atoi(port.Mid(1)) < 65536));
}

bool IsWritableFolder(const CString& folder)
{
    if (folder.IsEmpty() || !velFolderExists(folder))
        return false;
    char file[MAX_PATH];
    if (!GetTempFileNameA(folder, "rsk", 0, file))
        return false;
    DeleteFileA(file);
    return true;
}

int MinutesWest()
{
    TIME_ZONE_INFORMATION zone;
    const DWORD season = GetTimeZoneInformation(&zone);
    return zone.Bias + (season == TIME_ZONE_ID_DAYLIGHT   ? zone.DaylightBias
                        : season == TIME_ZONE_ID_STANDARD ? zone.StandardBias
                                                          : 0);
}

CString Text(UINT id)
{
    CString text;
    text.LoadString(id);
    return text;
}
} // namespace rasko
