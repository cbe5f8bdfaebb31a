#include "suite/patients/files/patientfiles.h"

#include "suite/patients/store/dbcore.h"
#include "suite/patients/records/dbpersonstore.h"
#include "suite/patients/store/dbtransaction.h"
#include "suite/patients/store/patmodule.h"
#include "suite/util/velpath.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <functional>
#include <string_view>

namespace
{
constexpr char SEPARATOR = '\x01';
constexpr size_t MAX_HEADER_FIELD = 25;

/// A field of a ".PF" line: nothing in it may look like a separator or a line end.
std::string Field(LPCTSTR psz, size_t nMax = std::string::npos)
{
    std::string text = std::string(psz).substr(0, nMax);
    for (char& ch : text)
        if (static_cast<unsigned char>(ch) < ' ')
            ch = ' ';
    return text + SEPARATOR;
}

[[noreturn]] void ThrowFileError(DWORD dwError, LPCTSTR pszPath)
{
    const bool bFull = dwError == ERROR_DISK_FULL || dwError == ERROR_HANDLE_DISK_FULL;
    dbCException::Throw(bFull ? dbErrDiskFull : dbErrIO, pszPath);
}

struct HandleCloser
{
    void operator()(HANDLE hFile) const
    {
        CloseHandle(hFile);
    }
};
using UniqueHandle = std::unique_ptr<void, HandleCloser>;

UniqueHandle OpenFileHandle(LPCTSTR pszPath, DWORD dwAccess, DWORD dwShare, DWORD dwDisposition)
{
    const HANDLE hFile =
        CreateFileA(pszPath, dwAccess, dwShare, nullptr, dwDisposition, FILE_ATTRIBUTE_NORMAL, nullptr);
    return UniqueHandle(hFile != INVALID_HANDLE_VALUE ? hFile : nullptr);
}

/// Writes the text into a new file beside `strPath` and returns its name.
CString WriteBeside(const CString& strPath, const std::string& text)
{
    CString strTemp;
    strTemp.Format("%s~%lx@%s", strPath.GetString(), GetCurrentProcessId(), patComputerName().GetString());
    UniqueHandle file = OpenFileHandle(strTemp, GENERIC_WRITE, 0, CREATE_ALWAYS);
    if (!file)
        ThrowFileError(GetLastError(), strPath);
    DWORD dwWritten = 0;
    const BOOL bWritten =
        WriteFile(file.get(), text.data(), static_cast<DWORD>(text.size()), &dwWritten, nullptr);
    const DWORD dwError = bWritten ? ERROR_DISK_FULL : GetLastError();
    file.reset();
    if (!bWritten || dwWritten != text.size())
    {
        DeleteFileA(strTemp);
        ThrowFileError(dwError, strPath);
    }
    return strTemp;
}

/// Whether a process of this computer has certainly ended. What cannot be asked counts as running.
bool HasEnded(DWORD dwProcess)
{
    const UniqueHandle process(OpenProcess(SYNCHRONIZE, FALSE, dwProcess));
    return process ? WaitForSingleObject(process.get(), 0) == WAIT_OBJECT_0
                   : GetLastError() == ERROR_INVALID_PARAMETER;
}

void RemoveAbandonedTexts()
{
    const CString strFolder = velGetDataPath();
    if (strFolder.IsEmpty())
        return;
    CStringArray names;
    velFindFiles(strFolder + "*.PF~*", names);
    for (INT_PTR i = 0; i < names.GetSize(); ++i)
    {
        // ID.PF~process@computer; other computers clear away their own.
        const CString& strName = names[i];
        const DWORD dwProcess = strtoul(strName.Mid(strName.ReverseFind('~') + 1), nullptr, 16);
        const bool bHere = strName.Mid(strName.ReverseFind('@') + 1).CompareNoCase(patComputerName()) == 0;
        if (bHere && (dwProcess == GetCurrentProcessId() || HasEnded(dwProcess)))
            DeleteFileA(strFolder + strName);
    }
}

CString PatientFilePath(const CString& strFolder, const patCPatient& patient)
{
    return velWithBackslash(strFolder) + patient.GetID() + ".PF";
}

/// Removes or renames cleanly only if nobody else has the file open.
bool IsFileFree(const CString& strPath)
{
    return OpenFileHandle(strPath, DELETE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                          OPEN_EXISTING) != nullptr;
}

/// The names of a patient's files in the working folder.
std::vector<std::string> ListFiles(const CString& strFolder, LPCTSTR pszID)
{
    std::vector<std::string> names;
    WIN32_FIND_DATAA data;
    const HANDLE hFind = FindFirstFileA(strFolder + pszID + "*", &data);
    if (hFind == INVALID_HANDLE_VALUE)
        return names;
    do
    {
        bool bShared = false;
        if (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY ||
            !patIsPatientFile(data.cFileName, pszID, &bShared))
            continue;
        bool bOwn = true;
        if (bShared)
        {
            dbCStatement longer(
                "SELECT 1 FROM patients WHERE ? LIKE replace(replace(replace(patientID, '\\', '\\\\'),"
                " '_', '\\_'), '%', '\\%') || '%' ESCAPE '\\' AND length(patientID) > ? LIMIT 1");
            longer.Bind(data.cFileName).Bind(static_cast<int>(strlen(pszID)));
            bOwn = !longer.Step();
        }
        if (bOwn)
            names.emplace_back(data.cFileName);
    } while (FindNextFileA(hFind, &data));
    FindClose(hFind);
    return names;
}

bool RenameFiles(LPCTSTR pszOldID, LPCTSTR pszNewID)
{
    const CString strFolder = velGetDataPath();
    if (strFolder.IsEmpty())
        return true;
    if (!velFolderExists(strFolder))
        return false;
    bool bAll = true;
    for (const std::string& name : ListFiles(strFolder, pszOldID))
    {
        const CString strTo = strFolder + pszNewID + name.substr(strlen(pszOldID)).c_str();
        bAll = MoveFileExA(strFolder + name.c_str(), strTo, 0) && bAll;
    }
    return bAll;
}

bool RemoveFiles(LPCTSTR pszID)
{
    const CString strFolder = velGetDataPath();
    if (strFolder.IsEmpty())
        return true;
    if (!velFolderExists(strFolder))
        return false;
    bool bAll = true;
    for (const std::string& name : ListFiles(strFolder, pszID))
    {
        const CString strPath = strFolder + name.c_str();
        SetFileAttributesA(strPath, FILE_ATTRIBUTE_NORMAL);
        bAll = DeleteFileA(strPath) && bAll;
    }
    return bAll;
}

void FinishRenames()
{
    struct Rename
    {
        __int64 nRow;
        CString strOld, strNew;
    };
    std::vector<Rename> renames;
    {
        dbCStatement query("SELECT id, oldID, newID FROM fileRenames ORDER BY id");
        while (query.Step())
            renames.push_back({query.Int64(0), query.Text(1), query.Text(2)});
    }
    for (const Rename& rename : renames)
        if (RenameFiles(rename.strOld, rename.strNew))
            dbCStatement("DELETE FROM fileRenames WHERE id = ?").Bind(rename.nRow).Run();
}

void FinishDeletions()
{
    std::vector<std::pair<__int64, CString>> deleted;
    {
        dbCStatement query("SELECT person, patientID FROM patients WHERE deleted <> 0");
        while (query.Step())
            deleted.emplace_back(query.Int64(0), query.Text(1));
    }
    for (const auto& [nRow, strID] : deleted)
    {
        if (!RemoveFiles(strID))
            continue;
        dbCTransaction transaction;
        dbCStatement guardian("SELECT person FROM patientPersons WHERE patient = ? AND kind = 0");
        guardian.Bind(nRow);
        const __int64 nGuardian = guardian.Step() ? guardian.Int64(0) : 0;
        guardian.Reset();
        dbDeletePerson(nRow);
        if (nGuardian != 0)
            dbDeletePerson(nGuardian);
        transaction.Commit();
    }
}

/// Runs a piece of work that is taken up again later when it fails.
void Attempt(void (*pfnWork)()) noexcept
{
    try
    {
        pfnWork();
    }
    catch (CException* e)
    {
        e->Delete();
    }
    catch (...)
    {
    }
}
} // namespace

std::string patPatientFileText(const patCPatient& patient)
{
    std::string text = Field(patient.GetLastname(), MAX_HEADER_FIELD) +
                       Field(patient.GetFirstname(), MAX_HEADER_FIELD) +
                       Field(patient.GetID(), MAX_HEADER_FIELD) + "\n";
    for (const patCTimepoint& timepoint : patient.GetTimepoints())
    {
        char szNumbers[120];
        int nLength = snprintf(szNumbers, sizeof(szNumbers), "%d", timepoint.GetNumber());
        for (int nGroup = 0; nGroup < patCImageTypes::GROUP_COUNT; ++nGroup)
            nLength += snprintf(szNumbers + nLength, sizeof(szNumbers) - static_cast<size_t>(nLength),
                                " %08lx", timepoint.GetImageBits(nGroup));
        text += Field(szNumbers) + Field(dbDateText(timepoint.GetDate(), true).c_str()) +
                Field(timepoint.GetName()) + "\n";
    }
    return text;
}

void patWritePatientFile(const patCPatient& patient, LPCTSTR pszFolder)
{
    const CString strFolder = pszFolder && *pszFolder ? CString(pszFolder) : velGetDataPath();
    if (strFolder.IsEmpty())
        return;
    const CString strPath = PatientFilePath(strFolder, patient);
    const CString strTemp = WriteBeside(strPath, patPatientFileText(patient));
    if (!MoveFileExA(strTemp, strPath, MOVEFILE_REPLACE_EXISTING))
    {
        const DWORD dwError = GetLastError();
        DeleteFileA(strTemp);
        ThrowFileError(dwError, strPath);
    }
}

void patWritePatientFileAtCommit(const patCPatient& patient)
{
    const CString strFolder = velGetDataPath();
    if (strFolder.IsEmpty())
        return;
    const CString strPath = PatientFilePath(strFolder, patient);
    const CString strTemp = WriteBeside(strPath, patPatientFileText(patient));
    dbCTransaction::AtEnd([strTemp] { DeleteFileA(strTemp); },
                          [strTemp, strPath] {
                              // A file in use keeps its old content; the next Save or WritePatientFile
                              // replaces it.
                              if (!MoveFileExA(strTemp, strPath, MOVEFILE_REPLACE_EXISTING))
                                  DeleteFileA(strTemp);
                          });
}

void patRenameFilesAtCommit(LPCTSTR pszOldID, LPCTSTR pszNewID)
{
    const CString strFolder = velGetDataPath();
    if (strFolder.IsEmpty())
        return;
    // Only the letter case differs: on Windows these are the same files, and renaming finds nothing in the
    // way.
    const bool bSameFiles = CString(pszOldID).CompareNoCase(pszNewID) == 0;
    for (const std::string& name : ListFiles(strFolder, pszOldID))
    {
        const CString strFrom = strFolder + name.c_str();
        const CString strTo = strFolder + pszNewID + name.substr(strlen(pszOldID)).c_str();
        if (!IsFileFree(strFrom))
            dbCException::Throw(dbErrIO, strFrom);
        if (!bSameFiles && GetFileAttributesA(strTo) != INVALID_FILE_ATTRIBUTES)
            dbCException::Throw(dbErrIO, strTo);
    }
    dbCStatement("INSERT INTO fileRenames (oldID, newID) VALUES (?, ?)").Bind(pszOldID).Bind(pszNewID).Run();
    dbCTransaction::AtEnd(nullptr, patFinishFileWork);
}

void patRequireNoPendingRename(LPCTSTR pszID)
{
    dbCStatement query("SELECT 1 FROM fileRenames WHERE oldID = ? COLLATE NOCASE");
    query.Bind(pszID);
    if (query.Step())
        dbCException::Throw(dbErrIO, velGetDataPath() + pszID + ".*");
}

bool patIsPatientFile(const std::string& name, const std::string& id, bool* pbShared)
{
    if (pbShared)
        *pbShared = false;
    const auto lower = [](std::string text) {
        std::transform(text.begin(), text.end(), text.begin(), [](char ch) {
            return static_cast<char>(ch >= 'A' && ch <= 'Z' ? ch - 'A' + 'a' : ch);
        });
        return text;
    };
    const std::string file = lower(name);
    if (id.empty() || file.rfind(lower(id), 0) != 0)
        return false;
    const std::string_view rest = std::string_view(file).substr(id.size());
    constexpr std::string_view morph = ".2dmorph";
    // With "~": a patient file that a process which has died was about to put in place.
    if (rest == ".pf" || rest == ".originalpf" || rest.substr(0, 4) == ".pf~")
        return true;
    if (rest.size() >= morph.size() && rest.substr(rest.size() - morph.size()) == morph)
    {
        if (pbShared)
            *pbShared = true;
        return true;
    }
    const auto twoDigits = [&](size_t nPos) {
        return rest.size() >= nPos + 2 && isdigit(static_cast<unsigned char>(rest[nPos])) &&
               isdigit(static_cast<unsigned char>(rest[nPos + 1]));
    };
    if (rest.size() >= 3 && rest[0] == '$')
        return twoDigits(1); // extras: ID $ number, anything
    return twoDigits(0) && rest.size() > 3 &&
           rest[2] == '.'; // images, companions and data files of a timepoint
}

void patRemoveAbandonedTexts() noexcept
{
    Attempt(RemoveAbandonedTexts);
}

void patFinishFileWork() noexcept
{
    Attempt(FinishRenames);
    Attempt(FinishDeletions);
}
