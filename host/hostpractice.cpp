#include "host/hostpractice.h"

#include "host/hostres.h"
#include "host/samplepractice.h"
#include "host/transferprogram.h"
#include "suite/patients/store/dbexception.h"
#include "suite/patients/records/dbpatients.h"
#include "suite/util/velini.h"
#include "suite/util/velpath.h"

#include <shlobj.h>

namespace
{

constexpr const char* kSettingsName = "veltrix.ini";
constexpr const char* kDatabaseName = "Veltrix.db";
// The database while it is being filled.
constexpr const char* kUnfinishedName = "Veltrix.new";

CString Join(LPCTSTR folder, LPCTSTR name)
{
    return velWithBackslash(folder) + name;
}

CString WithoutBackslash(LPCTSTR folder)
{
    CString path(folder);
    while (path.GetLength() > 3 && (path[path.GetLength() - 1] == '\\' || path[path.GetLength() - 1] == '/'))
    {
        path.Delete(path.GetLength() - 1);
    }
    return path;
}

CString FullPath(LPCTSTR folder)
{
    char path[MAX_PATH] = {};
    const DWORD length = ::GetFullPathName(folder, MAX_PATH, path, nullptr);
    return WithoutBackslash(length > 0 && length < MAX_PATH ? path : folder);
}

CString Message(UINT id, LPCTSTR first, LPCTSTR second = "")
{
    CString message;
    message.FormatMessage(id, first, second);
    return message;
}

CString SystemMessage(DWORD code)
{
    char text[512] = {};
    ::FormatMessage(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0, text, sizeof text,
                    nullptr);
    CString message(text);
    message.TrimRight();
    return message;
}

CString TakeMessage(CException* thrown)
{
    char text[1024] = {};
    thrown->GetErrorMessage(text, sizeof text);
    thrown->Delete();
    return text;
}

CString ProgramFolder()
{
    char path[MAX_PATH] = {};
    ::GetModuleFileName(nullptr, path, MAX_PATH);
    const CString program(path);
    return program.Left(program.ReverseFind('\\'));
}

BOOL MakeFolder(LPCTSTR folder, CString& error)
{
    if (velFolderExists(folder))
    {
        return TRUE;
    }
    const int code = ::SHCreateDirectoryEx(nullptr, folder, nullptr);
    if (code == ERROR_SUCCESS || code == ERROR_ALREADY_EXISTS)
    {
        return TRUE;
    }
    error = Message(IDS_ERR_CREATE_FOLDER, folder, SystemMessage(static_cast<DWORD>(code)));
    return FALSE;
}

// The folders of a practice, each with the key of section "Environment" that names it.
struct Folder
{
    const char* key;
    const char* name;
};

constexpr Folder kFolders[] = {{"WORKING", "Working\\"}, {"archive", "Archive\\"}};

BOOL WriteSettings(LPCTSTR folder, CString& error)
{
    const CString path = hostCPractice::GetSettingsPath(folder);
    velSetIniFile(path);
    BOOL written = TRUE;
    for (const Folder& part : kFolders)
    {
        if (!MakeFolder(Join(folder, part.name), error))
        {
            return FALSE;
        }
        written = written && velSetIniString("Environment", part.key, Join(folder, part.name));
    }
    written = written && velSetIniString("Defaults", "ArchiveFilePath", Join(folder, "Archive")) &&
              velSetIniString("Defaults", "Country", "USA") && velSetIniString("Host", "Folder", folder);
    if (!written)
    {
        error = Message(IDS_ERR_SETTINGS, path);
    }
    return written;
}

// A practice that was copied or moved must work with its own files, never with those of the practice it came from.
BOOL FollowMovedFolder(const CString& folder, CString& error)
{
    const CString before = velGetIniString("Host", "Folder");
    if (before.IsEmpty() || before.CompareNoCase(folder) == 0)
    {
        return TRUE;
    }
    for (const Folder& part : kFolders)
    {
        const CString value = velenv(part.key);
        if (value.Left(before.GetLength()).CompareNoCase(before) == 0 &&
            !velSetIniString("Environment", part.key, folder + value.Mid(before.GetLength())))
        {
            error = Message(IDS_ERR_SETTINGS, velGetIniFile());
            return FALSE;
        }
    }
    const CString archive = velGetIniString("Defaults", "ArchiveFilePath");
    if (archive.Left(before.GetLength()).CompareNoCase(before) == 0)
    {
        velSetIniString("Defaults", "ArchiveFilePath", folder + archive.Mid(before.GetLength()));
    }
    velSetIniString("Host", "Folder", folder);
    return TRUE;
}

BOOL OpenDatabase(const CString& folder, CString& error)
{
    const CString path = hostCPractice::GetDatabasePath(folder);
    try
    {
        dbCPatients::Open(path);
        return TRUE;
    }
    catch (CException* thrown)
    {
        error = Message(IDS_ERR_DATABASE, path, TakeMessage(thrown));
        return FALSE;
    }
}

} // namespace

hostCPractice::~hostCPractice()
{
    Close();
}

CString hostCPractice::GetSettingsPath(LPCTSTR folder)
{
    return Join(folder, kSettingsName);
}

CString hostCPractice::GetDatabasePath(LPCTSTR folder)
{
    return Join(folder, kDatabaseName);
}

CString hostCPractice::GetSampleFolder()
{
    char folder[MAX_PATH] = {};
    if (FAILED(::SHGetFolderPath(nullptr, CSIDL_LOCAL_APPDATA | CSIDL_FLAG_CREATE, nullptr, 0, folder)))
    {
        return Join(velGetTempPath(), "Sample Practice");
    }
    return Join(folder, "Veltrix\\Sample Practice");
}

CString hostCPractice::GetName() const
{
    return m_folder.Mid(m_folder.ReverseFind('\\') + 1);
}

void hostCPractice::Close()
{
    if (IsOpen())
    {
        dbCPatients::Close();
        hostTellPractice(nullptr);
        m_folder.Empty();
    }
}

BOOL hostCPractice::Open(LPCTSTR requested, const hostAsk& ask, CString& error)
{
    Close();
    error.Empty();
    const CString folder = FullPath(requested);
    if (velFileExists(folder))
    {
        error = Message(IDS_ERR_IS_FILE, folder);
        return FALSE;
    }
    if (!velFileExists(GetDatabasePath(folder)))
    {
        if (!ask(hostQuestion::createPractice, folder) || !Create(folder, kSamplePatients, error))
        {
            return FALSE;
        }
    }
    velSetIniFile(GetSettingsPath(folder));
    if (!velFileExists(GetSettingsPath(folder)))
    {
        if (!ask(hostQuestion::createSettings, folder) || !WriteSettings(folder, error))
        {
            velSetIniFile(nullptr);
            return FALSE;
        }
    }
    if (velGetDataPath().IsEmpty())
    {
        error = Message(IDS_ERR_SETTINGS_CONTENT, GetSettingsPath(folder));
        velSetIniFile(nullptr);
        return FALSE;
    }
    if (!FollowMovedFolder(folder, error) || !OpenDatabase(folder, error))
    {
        velSetIniFile(nullptr);
        return FALSE;
    }
    // The suite's other programs are beside this one.
    if (velenv("SYS").IsEmpty())
    {
        velSetIniString("Environment", "SYS", ProgramFolder());
    }
    hostTellPractice(GetSettingsPath(folder));
    m_folder = folder;
    return TRUE;
}

BOOL hostCPractice::Create(LPCTSTR requested, int patients, CString& error)
{
    const CString folder = FullPath(requested);
    const CString database = GetDatabasePath(folder);
    const CString unfinished = Join(folder, kUnfinishedName);
    if (velFileExists(database))
    {
        error = Message(IDS_ERR_CREATE, database);
        return FALSE;
    }
    if (!MakeFolder(folder, error))
    {
        return FALSE;
    }
    // An existing settings file belongs to somebody: its folders are taken as they are.
    velSetIniFile(GetSettingsPath(folder));
    if (!velFileExists(GetSettingsPath(folder)) && !WriteSettings(folder, error))
    {
        return FALSE;
    }
    for (const char* suffix : {"", "-wal", "-shm", "-journal"})
    {
        ::DeleteFile(unfinished + suffix);
    }
    try
    {
        dbCPatients::Create(unfinished);
        samFillPractice(patients);
        dbCPatients::Close();
    }
    catch (CException* thrown)
    {
        dbCPatients::Close();
        ::DeleteFile(unfinished);
        error = Message(IDS_ERR_DATABASE, database, TakeMessage(thrown));
        return FALSE;
    }
    if (!::MoveFileEx(unfinished, database, MOVEFILE_WRITE_THROUGH))
    {
        error = Message(IDS_ERR_DATABASE, database, SystemMessage(::GetLastError()));
        return FALSE;
    }
    return TRUE;
}
