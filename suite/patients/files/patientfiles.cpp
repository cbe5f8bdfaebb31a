#include "suite/patients/files/patientfiles.h"

#include "suite/patients/files/filehandle.h"
#include "suite/patients/store/dbcore.h"
#include "suite/patients/store/dbsteps.h"
#include "suite/patients/store/dbtransaction.h"
#include "suite/patients/store/patmodule.h"
#include "suite/util/velpath.h"

#include <cstdio>

namespace
{
constexpr char SEPARATOR = '\x01';
constexpr size_t MAX_FIELD = 25;     ///< characters of a field of the header line
constexpr size_t MAX_TIMEPOINTS = 100;

/// A field of a ".PF" line: nothing in it may look like a separator or a line end.
std::string Field(LPCTSTR psz, size_t nMax = std::string::npos)
{
    std::string text = std::string(psz).substr(0, nMax);
    for (char& ch : text)
        if (static_cast<unsigned char>(ch) < ' ')
            ch = ' ';
    return text + SEPARATOR;
}

/// The line's fields, each ended by the separator; false when the line does not end behind the last.
bool SplitFields(std::string_view line, std::vector<std::string>& fields)
{
    fields.clear();
    while (!line.empty())
    {
        const size_t nEnd = line.find(SEPARATOR);
        if (nEnd == std::string_view::npos)
            return line == "\r";
        fields.emplace_back(line.substr(0, nEnd));
        line.remove_prefix(nEnd + 1);
    }
    return true;
}

bool NextLine(std::string_view& text, std::string_view& line)
{
    const size_t nEnd = text.find('\n');
    if (nEnd == std::string_view::npos)
        return false;
    line = text.substr(0, nEnd);
    text.remove_prefix(nEnd + 1);
    return true;
}

/// The number and the eight words of image types.
bool ReadNumbers(const std::string& field, patSPatientFile::Timepoint& timepoint)
{
    int nUsed = 0;
    if (sscanf(field.c_str(), "%d%n", &timepoint.nNumber, &nUsed) != 1 || timepoint.nNumber < 0 ||
        timepoint.nNumber >= static_cast<int>(MAX_TIMEPOINTS))
        return false;
    const char* psz = field.c_str() + nUsed;
    for (DWORD& dwBits : timepoint.bits)
    {
        unsigned long dwRead = 0;
        if (sscanf(psz, " %8lx%n", &dwRead, &nUsed) != 1)
            return false;
        dwBits = dwRead;
        psz += nUsed;
    }
    return *psz == '\0';
}

bool ReadTimepoint(std::string_view line, patSPatientFile::Timepoint& timepoint)
{
    std::vector<std::string> fields;
    if (!SplitFields(line, fields) || fields.size() != 3)
        return false;
    timepoint.date = velCDate::FromISO(fields[1].c_str());
    timepoint.strName = fields[2].c_str();
    return ReadNumbers(fields[0], timepoint) && (timepoint.date.IsValid() || timepoint.date.IsNull());
}

/// Writes the text into a new file beside `strPath` and returns its name.
CString WriteBeside(const CString& strPath, const std::string& text)
{
    CString strTemp;
    strTemp.Format("%s~%lx@%s", strPath.GetString(), GetCurrentProcessId(), patComputerName().GetString());
    patCHandle file = patOpenFile(strTemp, GENERIC_WRITE, 0, CREATE_ALWAYS);
    if (!file)
        patThrowFileError(GetLastError(), strPath);
    DWORD dwWritten = 0;
    const BOOL bWritten =
        WriteFile(file.get(), text.data(), static_cast<DWORD>(text.size()), &dwWritten, nullptr);
    const DWORD dwError = bWritten ? ERROR_DISK_FULL : GetLastError();
    file.reset();
    if (!bWritten || dwWritten != text.size())
    {
        DeleteFileA(strTemp);
        patThrowFileError(dwError, strPath);
    }
    return strTemp;
}

/// Whether a process of this computer has certainly ended. What cannot be asked counts as running.
bool HasEnded(DWORD dwProcess)
{
    const patCHandle process(OpenProcess(SYNCHRONIZE, FALSE, dwProcess));
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

CString PatientFilePath(const CString& strFolder, const CString& strID)
{
    return velWithBackslash(strFolder) + strID + ".PF";
}

void WriteText(const CString& strPath, const std::string& text)
{
    const CString strTemp = WriteBeside(strPath, text);
    if (!MoveFileExA(strTemp, strPath, MOVEFILE_REPLACE_EXISTING))
    {
        const DWORD dwError = GetLastError();
        DeleteFileA(strTemp);
        patThrowFileError(dwError, strPath);
    }
}

/// A stored patient as its file has to be, and the version that this is of; 0 where no patient has the ID.
struct Stored
{
    patSPatientFile file;
    __int64 nVersion = 0;
};

__int64 StoredVersion(LPCTSTR pszID)
{
    dbCStatement query("SELECT rowVersion FROM patients WHERE patientID = ?");
    query.Bind(pszID);
    return query.Step() ? query.Int64(0) : 0;
}

Stored ReadStored(LPCTSTR pszID)
{
    const dbCReadScope scope;
    Stored stored;
    dbCStatement patient("SELECT t.rowVersion, p.lastName, p.firstName, t.patientID, t.person FROM patients t"
                         " JOIN persons p ON p.id = t.person WHERE t.patientID = ?");
    patient.Bind(pszID);
    if (!patient.Step())
        return stored;
    stored.nVersion = patient.Int64(0);
    stored.file.strLast = patient.Text(1);
    stored.file.strFirst = patient.Text(2);
    stored.file.strID = patient.Text(3);
    dbCStatement timepoints("SELECT number, name, date, bits0, bits1, bits2, bits3, bits4, bits5, bits6, bits7"
                            " FROM timepoints WHERE patient = ? ORDER BY position");
    timepoints.Bind(patient.Int64(4));
    while (timepoints.Step())
    {
        patSPatientFile::Timepoint timepoint{timepoints.Int(0), timepoints.Text(1), timepoints.Date(2), {}};
        for (size_t nGroup = 0; nGroup < timepoint.bits.size(); ++nGroup)
            timepoint.bits[nGroup] = static_cast<DWORD>(timepoints.Int64(3 + static_cast<int>(nGroup)));
        stored.file.timepoints.push_back(timepoint);
    }
    return stored;
}

/// Brings the file of an ID in line with what is stored. Any number of processes may do so at once: whoever
/// has written looks whether what it wrote is still what is stored, so that the last one leaves the newest.
void Follow(LPCTSTR pszID)
{
    const CString strFolder = velGetDataPath();
    if (strFolder.IsEmpty())
        return;
    if (!velFolderExists(strFolder))
        dbCException::Throw(dbErrIO, strFolder);
    for (;;)
    {
        const Stored stored = ReadStored(pszID);
        const CString strPath = PatientFilePath(strFolder, pszID);
        if (stored.nVersion != 0)
            WriteText(strPath, patPatientFileText(stored.file));
        else if (!DeleteFileA(strPath) && !patIsGone(strPath))
            patThrowFileError(GetLastError(), strPath);
        dbStep("patientFile.written");
        if (StoredVersion(pszID) == stored.nVersion)
            return;
    }
}

void FollowNoted(__int64 nRow, LPCTSTR pszID)
{
    dbStep("patientFile.committed");
    Follow(pszID);
    const dbCRelaxedCommits relaxed;
    dbCStatement("DELETE FROM patientFileWork WHERE id = ?").Bind(nRow).Run();
    dbStep("patientFile.done");
}

/// Runs a piece of work that is taken up again later when it fails; false when it does.
template <typename Work> bool Attempt(Work work) noexcept
{
    try
    {
        work();
        return true;
    }
    catch (CException* e)
    {
        e->Delete();
    }
    catch (...)
    {
    }
    return false;
}
} // namespace

std::string patPatientFileText(const patSPatientFile& patient)
{
    std::string text =
        Field(patient.strLast, MAX_FIELD) + Field(patient.strFirst, MAX_FIELD) + Field(patient.strID, MAX_FIELD) + "\n";
    for (const patSPatientFile::Timepoint& timepoint : patient.timepoints)
    {
        char szNumbers[120];
        int nLength = snprintf(szNumbers, sizeof(szNumbers), "%d", timepoint.nNumber);
        for (const DWORD dwBits : timepoint.bits)
            nLength += snprintf(szNumbers + nLength, sizeof(szNumbers) - static_cast<size_t>(nLength),
                                " %08lx", dwBits);
        text += Field(szNumbers) + Field(dbDateText(timepoint.date, true).c_str()) +
                Field(timepoint.strName) + "\n";
    }
    return text;
}

std::optional<patSPatientFile> patReadPatientFileText(std::string_view text)
{
    std::string_view line;
    std::vector<std::string> fields;
    if (!NextLine(text, line) || !SplitFields(line, fields) || fields.size() != 3)
        return std::nullopt;
    for (const std::string& field : fields)
        if (field.size() > MAX_FIELD)
            return std::nullopt;
    patSPatientFile patient{fields[0].c_str(), fields[1].c_str(), fields[2].c_str(), {}};
    while (NextLine(text, line))
    {
        patSPatientFile::Timepoint timepoint;
        if (patient.timepoints.size() >= MAX_TIMEPOINTS || !ReadTimepoint(line, timepoint))
            return std::nullopt;
        patient.timepoints.push_back(timepoint);
    }
    return text.empty() ? std::optional(patient) : std::nullopt;
}

void patWritePatientFile(const patSPatientFile& patient, LPCTSTR pszFolder)
{
    const CString strFolder = pszFolder && *pszFolder ? CString(pszFolder) : velGetDataPath();
    if (!strFolder.IsEmpty())
        WriteText(PatientFilePath(strFolder, patient.strID), patPatientFileText(patient));
}

void patRequireWorkingFolder()
{
    const CString strFolder = velGetDataPath();
    if (!strFolder.IsEmpty() && !velFolderExists(strFolder))
        dbCException::Throw(dbErrIO, strFolder);
}

void patFollowAtCommit(LPCTSTR pszID)
{
    if (velGetDataPath().IsEmpty())
        return;
    dbCStatement("INSERT INTO patientFileWork (patientID) VALUES (?)").Bind(pszID).Run();
    dbCTransaction::AtEnd(nullptr, [nRow = dbCSession::Current().GetLastRow(), strID = CString(pszID)] {
        Attempt([&] { FollowNoted(nRow, strID); });
    });
    dbStep("patientFile.noted");
}

bool patFollowNow(LPCTSTR pszID)
{
    dbCStatement("INSERT INTO patientFileWork (patientID) VALUES (?)").Bind(pszID).Run();
    return Attempt([nRow = dbCSession::Current().GetLastRow(), pszID] { FollowNoted(nRow, pszID); });
}

void patFinishPatientFiles() noexcept
{
    Attempt([] {
        std::vector<std::pair<__int64, CString>> noted;
        {
            dbCStatement query("SELECT id, patientID FROM patientFileWork ORDER BY id");
            while (query.Step())
                noted.emplace_back(query.Int64(0), query.Text(1));
        }
        for (const auto& note : noted)
            Attempt([&] { FollowNoted(note.first, note.second); });
    });
}

void patRemoveAbandonedTexts() noexcept
{
    Attempt(RemoveAbandonedTexts);
}
