#include "suite/patients/files/patientfile.h"

#include "suite/patients/store/dbexception.h"
#include "suite/util/velpath.h"

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace
{
constexpr char SEPARATOR = '\x01';
constexpr size_t MAX_FIELD = 25;
constexpr ULONGLONG MAX_FILE = 1 << 20; ///< bytes; a patient with 100 timepoints needs far less

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
bool ReadNumbers(const std::string& field, const CString& strID, patCTimepoint& timepoint)
{
    int nNumber = -1, nUsed = 0;
    if (sscanf(field.c_str(), "%d%n", &nNumber, &nUsed) != 1 || nNumber < 0 ||
        nNumber >= patCTimepoints::MAX_COUNT)
        return false;
    timepoint.SetNumber(strID, nNumber);
    const char* psz = field.c_str() + nUsed;
    for (int nGroup = 0; nGroup < patCImageTypes::GROUP_COUNT; ++nGroup)
    {
        unsigned long dwBits = 0;
        if (sscanf(psz, " %8lx%n", &dwBits, &nUsed) != 1)
            return false;
        timepoint.SetImageBits(nGroup, dwBits);
        psz += nUsed;
    }
    return *psz == '\0';
}

bool ReadTimepoint(std::string_view line, const CString& strID, patCTimepoint& timepoint)
{
    std::vector<std::string> fields;
    if (!SplitFields(line, fields) || fields.size() != 3)
        return false;
    const velCDate date = velCDate::FromISO(fields[1].c_str());
    if (!ReadNumbers(fields[0], strID, timepoint) || !(date.IsValid() || date.IsNull()))
        return false;
    timepoint.SetDate(date);
    timepoint.SetName(fields[2].c_str());
    return true;
}

bool ReadPatient(std::string_view text, dbCPatient& patient)
{
    std::string_view line;
    std::vector<std::string> fields;
    if (!NextLine(text, line) || !SplitFields(line, fields) || fields.size() != 3)
        return false;
    for (const std::string& field : fields)
        if (field.size() > MAX_FIELD)
            return false;
    patient.SetLastname(fields[0].c_str());
    patient.SetFirstname(fields[1].c_str());
    patient.SetID(fields[2].c_str(), FALSE);
    while (NextLine(text, line))
    {
        dbCTimepoint timepoint;
        if (patient.GetTimepoints().GetCount() >= patCTimepoints::MAX_COUNT ||
            !ReadTimepoint(line, patient.GetID(), timepoint))
            return false;
        patient.GetTimepoints().Add(timepoint);
    }
    return text.empty();
}

std::string ReadText(LPCTSTR pszPath)
{
    CFile file(pszPath, CFile::modeRead | CFile::shareDenyWrite);
    if (file.GetLength() > MAX_FILE)
        return {};
    std::string text(static_cast<size_t>(file.GetLength()), '\0');
    text.resize(file.Read(text.data(), static_cast<UINT>(text.size())));
    return text;
}
} // namespace

BOOL patReadPatientFile(LPCTSTR pszPath, dbCPatient& patient)
{
    try
    {
        dbCPatient read;
        if (!ReadPatient(ReadText(pszPath), read))
            return FALSE;
        patient = read;
        return TRUE;
    }
    catch (CException* e)
    {
        e->Delete();
        return FALSE;
    }
}

patCEarlierFile::patCEarlierFile(const dbCPatient& patient)
{
    const CString strFolder = velGetDataPath();
    m_strFile = strFolder + patient.GetID() + ".PF";
    m_strOriginal = strFolder + patient.GetID() + ".ORIGINALPF";
    RestoreAbandoned();
    const bool bHasOwn = velFileExists(m_strFile) != FALSE;
    if (bHasOwn && !MoveFileA(m_strFile, m_strOriginal))
        dbCException::Throw(dbErrIO, m_strFile);
    m_hOriginal =
        CreateFileA(m_strOriginal, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    if (bHasOwn && m_hOriginal == INVALID_HANDLE_VALUE)
    {
        // Not under our hand: it goes back, unless somebody has put it back already.
        MoveFileA(m_strOriginal, m_strFile);
        dbCException::Throw(dbErrIO, m_strFile);
    }
    try
    {
        patient.WritePatientFile(strFolder);
    }
    catch (...)
    {
        Restore();
        throw;
    }
}

patCEarlierFile::~patCEarlierFile()
{
    Restore();
}

void patCEarlierFile::Restore() noexcept
{
    if (m_hOriginal == INVALID_HANDLE_VALUE)
    {
        DeleteFileA(m_strFile); // there was none before
        return;
    }
    CloseHandle(m_hOriginal);
    MoveFileExA(m_strOriginal, m_strFile, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
}

void patCEarlierFile::RestoreAbandoned() noexcept
try
{
    const CString strFolder = velGetDataPath();
    if (strFolder.IsEmpty())
        return;
    CStringArray names;
    velFindFiles(strFolder + "*.ORIGINALPF", names);
    for (INT_PTR i = 0; i < names.GetSize(); ++i)
    {
        strFilename file(strFolder + names[i]);
        file.SetExt("PF");
        // Fails while the process that moved it lives.
        MoveFileExA(strFolder + names[i], file.GetFull(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
    }
}
catch (CException* e)
{
    e->Delete();
}
catch (...)
{
}
