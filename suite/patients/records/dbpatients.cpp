#include "suite/patients/records/dbpatients.h"

#include "suite/patients/store/dblocks.h"
#include "suite/patients/records/dbpatientstore.h"
#include "suite/patients/files/dbplacement.h"
#include "suite/patients/store/dbschema.h"
#include "suite/patients/store/dbtext.h"
#include "suite/patients/store/dbtransaction.h"
#include "suite/patients/files/patientfile.h"
#include "suite/patients/files/patientfiles.h"

#include <utility>

namespace
{
/// The end of all texts that begin with `prefix`: UTF-8 has no byte 0xFF.
std::string EndOfPrefix(const std::string& prefix)
{
    return prefix + '\xFF';
}

/// The folded family name and beginning of the given name in a search text such as "lee, an".
std::pair<std::string, std::string> SplitNameSearch(LPCTSTR pszSearch, bool& bComma)
{
    const CString strSearch = pszSearch;
    const int nComma = strSearch.Find(',');
    bComma = nComma >= 0;
    if (!bComma)
        return {dbFold(strSearch.GetString()), std::string()};
    return {dbFold(strSearch.Left(nComma).GetString()), dbFold(strSearch.Mid(nComma + 1).GetString())};
}

constexpr char KEY_SEPARATOR = '\x01'; // below every character of a folded text

/// A row's place in the order: the index columns, the row number last.
struct SortKey
{
    std::string last, first, birth;
    __int64 nRow = 0;

    CString ToText() const
    {
        const std::string text =
            last + KEY_SEPARATOR + first + KEY_SEPARATOR + birth + KEY_SEPARATOR + std::to_string(nRow);
        return text.c_str();
    }

    static SortKey FromText(const CString& strText)
    {
        std::array<std::string, 4> parts;
        size_t nPart = 0;
        for (const char ch : std::string(strText.GetString()))
        {
            if (ch == KEY_SEPARATOR && nPart < 3)
                ++nPart;
            else
                parts[nPart] += ch;
        }
        return {parts[0], parts[1], parts[2], _atoi64(parts[3].c_str())};
    }
};

void CloseCurrent()
{
    if (!dbCConnection::CurrentOrNull())
        return;
    dbReleaseOwnLocks();
    dbCConnection::SetCurrent(nullptr);
}
} // namespace

// The current database

void dbCPatients::Open(LPCTSTR pszPath)
{
    auto pConnection = std::make_unique<dbCConnection>(pszPath, dbCConnection::Mode::Open);
    dbUpdateSchema(*pConnection);
    CloseCurrent();
    dbCConnection::SetCurrent(std::move(pConnection));
    dbCFilePlacement::RemoveAbandoned();
    patCEarlierFile::RestoreAbandoned();
    patRemoveAbandonedTexts();
    patFinishFileWork();
}

void dbCPatients::Create(LPCTSTR pszPath)
{
    {
        // Claims the name, so that of two processes only one creates.
        const HANDLE hFile =
            CreateFileA(pszPath, GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (hFile == INVALID_HANDLE_VALUE)
        {
            const DWORD dwError = GetLastError();
            dbCException::Throw(dwError == ERROR_FILE_EXISTS || dwError == ERROR_ALREADY_EXISTS ? dbErrExists
                                : dwError == ERROR_ACCESS_DENIED || dwError == ERROR_WRITE_PROTECT
                                    ? dbErrReadOnly
                                    : dbErrIO,
                                pszPath);
        }
        CloseHandle(hFile);
    }
    std::unique_ptr<dbCConnection> pConnection;
    try
    {
        pConnection = std::make_unique<dbCConnection>(pszPath, dbCConnection::Mode::Open);
        dbCreateSchema(*pConnection);
    }
    catch (...)
    {
        pConnection.reset();
        DeleteFileA(pszPath);
        throw;
    }
    CloseCurrent();
    dbCConnection::SetCurrent(std::move(pConnection));
}

void dbCPatients::Close()
{
    CloseCurrent();
}

BOOL dbCPatients::IsOpen()
{
    return dbCConnection::CurrentOrNull() != nullptr;
}

CString dbCPatients::GetPath()
{
    const dbCConnection* pConnection = dbCConnection::CurrentOrNull();
    return pConnection ? pConnection->GetPath() : CString();
}

__int64 dbCPatients::GetChangeCounter()
{
    // data_version counts the commits of others, total_changes the rows of this connection.
    dbCConnection& connection = dbCConnection::Current();
    return (connection.QueryInt("PRAGMA data_version") << 40) +
           sqlite3_total_changes64(connection.GetHandle());
}

// Look-ups

BOOL dbCPatients::IsGUID(LPCTSTR psz)
{
    static constexpr char FORM[] = "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}";
    if (!psz || strlen(psz) != sizeof(FORM) - 1)
        return FALSE;
    for (size_t i = 0; i < sizeof(FORM) - 1; ++i)
        if (FORM[i] == 'X' ? !isxdigit(static_cast<unsigned char>(psz[i])) : psz[i] != FORM[i])
            return FALSE;
    return TRUE;
}

BOOL dbCPatients::IsIDFree(LPCTSTR pszID)
{
    dbCStatement query("SELECT 1 FROM patients WHERE patientID = ?");
    query.Bind(pszID);
    return !query.Step();
}

BOOL dbCPatients::FindSimilar(LPCTSTR pszFirst, LPCTSTR pszLast, const velCDate& dateBirth, CString* pstrGUID)
{
    dbCStatement query("SELECT p.guid FROM patients t JOIN persons p ON p.id = t.person WHERE t.lastKey = ?"
                       " AND t.firstKey = ? AND t.birthKey = ? AND t.deleted = 0 ORDER BY t.person LIMIT 1");
    query.BindUtf8(dbFold(pszLast)).BindUtf8(dbFold(pszFirst)).BindUtf8(dbDateText(dateBirth, false));
    if (!query.Step())
        return FALSE;
    if (pstrGUID)
        *pstrGUID = query.Text(0);
    return TRUE;
}

BOOL dbCPatients::FindID(LPCTSTR pszID, CString& strGUID)
{
    dbCStatement query("SELECT p.guid FROM patients t JOIN persons p ON p.id = t.person"
                       " WHERE t.patientID = ? AND t.deleted = 0");
    query.Bind(pszID);
    if (!query.Step())
        return FALSE;
    strGUID = query.Text(0);
    return TRUE;
}

BOOL dbCPatients::FindVeltrixID(LPCTSTR pszVeltrixID, CString& strGUID)
{
    if (!pszVeltrixID || !*pszVeltrixID)
        return FALSE;
    dbCStatement query("SELECT p.guid FROM patients t JOIN persons p ON p.id = t.person"
                       " WHERE t.veltrixID = ? AND t.veltrixID <> '' AND t.deleted = 0");
    query.Bind(pszVeltrixID);
    if (!query.Step())
        return FALSE;
    strGUID = query.Text(0);
    return TRUE;
}

int dbCPatients::GetPage(dbPatientSearch nBy, LPCTSTR pszSearch, const dbSPatientListRow* pAfter, int nMax,
                         dbTList<dbSPatientListRow>& rows)
{
    static constexpr std::string_view BY_NAME =
        "SELECT t.person, p.guid, t.patientID, p.lastName, p.firstName, p.birthDate, t.lastKey, t.firstKey, "
        "t.birthKey"
        " FROM patients t JOIN persons p ON p.id = t.person WHERE t.deleted = 0 AND t.lastKey >= ? AND "
        "t.lastKey < ?"
        " AND t.firstKey >= ? AND t.firstKey < ? AND (t.lastKey, t.firstKey, t.birthKey, t.person) > (?, ?, "
        "?, ?)"
        " ORDER BY t.lastKey, t.firstKey, t.birthKey, t.person LIMIT ?";
    static constexpr std::string_view BY_ID = "SELECT t.person, p.guid, t.patientID, p.lastName, "
                                              "p.firstName, p.birthDate, t.lastKey, t.firstKey, t.birthKey"
                                              " FROM patients t JOIN persons p ON p.id = t.person WHERE "
                                              "t.deleted = 0 AND t.patientID >= ? AND t.patientID < ?"
                                              " AND t.patientID > ? ORDER BY t.patientID LIMIT ?";

    dbCStatement query(nBy == dbSearchID ? BY_ID : BY_NAME);
    if (nBy == dbSearchID)
    {
        const std::string prefix = dbToUtf8(pszSearch);
        query.BindUtf8(prefix)
            .BindUtf8(EndOfPrefix(prefix))
            .Bind(pAfter ? pAfter->strID.GetString() : "")
            .Bind(nMax);
    }
    else
    {
        bool bComma = false;
        const auto [last, first] = SplitNameSearch(pszSearch, bComma);
        query.BindUtf8(last).BindUtf8(EndOfPrefix(last)).BindUtf8(first).BindUtf8(EndOfPrefix(first));
        const SortKey after = pAfter ? SortKey::FromText(pAfter->strSortKey) : SortKey();
        query.BindUtf8(after.last).BindUtf8(after.first).BindUtf8(after.birth).Bind(after.nRow).Bind(nMax);
    }
    int nRead = 0;
    for (; query.Step(); ++nRead)
    {
        dbSPatientListRow row;
        row.strGUID = query.Text(1);
        row.strID = query.TextForDisplay(2);
        row.strLastname = query.TextForDisplay(3);
        row.strFirstname = query.TextForDisplay(4);
        row.dateBirth = query.Date(5);
        row.strSortKey = SortKey{std::string(query.Utf8(6)), std::string(query.Utf8(7)),
                                 std::string(query.Utf8(8)), query.Int64(0)}
                             .ToText();
        rows.Add(row);
    }
    return nRead;
}

int dbCPatients::GetCount(dbPatientSearch nBy, LPCTSTR pszSearch)
{
    if (nBy == dbSearchID)
    {
        const std::string prefix = dbToUtf8(pszSearch);
        dbCStatement query(
            "SELECT count(*) FROM patients WHERE deleted = 0 AND patientID >= ? AND patientID < ?");
        query.BindUtf8(prefix).BindUtf8(EndOfPrefix(prefix)).Step();
        return query.Int(0);
    }
    bool bComma = false;
    const auto [last, first] = SplitNameSearch(pszSearch, bComma);
    dbCStatement query("SELECT count(*) FROM patients WHERE deleted = 0 AND lastKey >= ? AND lastKey < ?"
                       " AND firstKey >= ? AND firstKey < ?");
    query.BindUtf8(last).BindUtf8(EndOfPrefix(last)).BindUtf8(first).BindUtf8(EndOfPrefix(first)).Step();
    return query.Int(0);
}

int dbCPatients::Get_tpID(LPCTSTR pszPatientID, int nIndex, CString& strTpID)
{
    try
    {
        dbCStatement query("SELECT tp.guid FROM patients t JOIN timepoints tp ON tp.patient = t.person"
                           " WHERE t.patientID = ? AND tp.position = ?");
        query.Bind(pszPatientID).Bind(nIndex);
        if (!query.Step())
            return -1;
        strTpID = query.Text(0);
        return 0;
    }
    catch (CException* e)
    {
        e->Delete();
        return -1;
    }
}

// Adding and removing

void dbCPatients::DeletePatient(LPCTSTR pszIDOrGUID)
{
    dbCTransaction transaction;
    dbCStatement mark(
        IsGUID(pszIDOrGUID)
            ? std::string_view(
                  "UPDATE patients SET deleted = 1, rowVersion = rowVersion + 1 WHERE deleted = 0"
                  " AND person = (SELECT id FROM persons WHERE guid = ?)")
            : std::string_view(
                  "UPDATE patients SET deleted = 1, rowVersion = rowVersion + 1 WHERE deleted = 0"
                  " AND patientID = ?"));
    mark.Bind(pszIDOrGUID).Run();
    if (dbCConnection::Current().GetChanges() == 0)
        dbCException::Throw(dbErrNotFound, pszIDOrGUID);
    dbCTransaction::AtEnd(nullptr, patFinishFileWork);
    transaction.Commit();
}
