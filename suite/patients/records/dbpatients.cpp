#include "suite/patients/records/dbpatients.h"

#include "suite/patients/records/dbpatientstore.h"
#include "suite/patients/files/dbplacement.h"
#include "suite/patients/store/dbschema.h"
#include "suite/patients/store/dbtext.h"
#include "suite/patients/store/dbtransaction.h"
#include "suite/patients/records/patientfile.h"
#include "suite/patients/files/filework.h"
#include "suite/patients/files/patientfiles.h"
#include "suite/patients/records/patientfile.h"
#include "suite/patients/records/patlocks.h"
#include "suite/patients/records/dbpersonstore.h"

#include <algorithm>
#include <cstdio>
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

/// A row's place in the order: the index columns, the row number last.
struct SortKey
{
    std::string last, first, birth;
    __int64 nRow = 0;

    auto operator<=>(const SortKey&) const = default; // NOLINT(modernize-use-nullptr): there is no pointer

    /// The lengths of the parts stand in front: names may hold any character.
    CString ToText() const
    {
        const std::string text = std::to_string(last.size()) + ' ' + std::to_string(first.size()) + ' ' +
                                 std::to_string(nRow) + ' ' + last + first + birth;
        return text.c_str();
    }

    static SortKey FromText(const CString& strText)
    {
        size_t nLast = 0, nFirst = 0;
        long long nRow = 0;
        int nHeader = 0;
        if (sscanf(strText, "%zu %zu %lld%n", &nLast, &nFirst, &nRow, &nHeader) != 3)
            return {};
        const std::string parts = strText.Mid(nHeader + 1).GetString();
        if (nLast > parts.size() || nFirst > parts.size() - nLast)
            return {};
        return {parts.substr(0, nLast), parts.substr(nLast, nFirst), parts.substr(nLast + nFirst), nRow};
    }
};

/// The GUID that a query finds first; FALSE, with the text unchanged, when it finds none.
BOOL TakeGUID(dbCStatement& query, CString& strGUID)
{
    if (!query.Step())
        return FALSE;
    strGUID = query.Text(0);
    return TRUE;
}

/// The open database: the patient list owns it, calls go through it.
std::unique_ptr<dbCSession> g_pSession;

void CloseCurrent()
{
    if (!dbCSession::CurrentOrNull())
        return;
    patReleaseOwnLocks();
    dbCSession::SetCurrent(nullptr);
    g_pSession.reset();
}

void MakeCurrent(std::unique_ptr<dbCSession> pSession)
{
    g_pSession = std::move(pSession);
    dbCSession::SetCurrent(g_pSession.get());
}
} // namespace

// The current database

void dbCPatients::Open(LPCTSTR pszPath)
{
    auto pSession = std::make_unique<dbCSqliteSession>(pszPath, dbCSqliteSession::Mode::Open);
    dbUpdateSchema(*pSession);
    CloseCurrent();
    MakeCurrent(std::move(pSession));
    dbCFilePlacement::RemoveAbandoned();
    patCEarlierFile::RestoreAbandoned();
    patRemoveAbandonedTexts();
    patCFileWork::FinishAll();
    patFinishPatientFiles();
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
    std::unique_ptr<dbCSqliteSession> pSession;
    try
    {
        pSession = std::make_unique<dbCSqliteSession>(pszPath, dbCSqliteSession::Mode::Open);
        dbCreateSchema(*pSession);
    }
    catch (...)
    {
        pSession.reset();
        DeleteFileA(pszPath);
        throw;
    }
    CloseCurrent();
    MakeCurrent(std::move(pSession));
}

void dbCPatients::Close()
{
    CloseCurrent();
}

BOOL dbCPatients::IsOpen()
{
    return dbCSession::CurrentOrNull() != nullptr;
}

CString dbCPatients::GetPath()
{
    const dbCSession* pSession = dbCSession::CurrentOrNull();
    return pSession ? pSession->GetPath() : CString();
}

__int64 dbCPatients::GetChangeCounter()
{
    return dbCSession::Current().GetChangeCounter();
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
    return !query.Step() && !patCFileWork::IsPending(pszID);
}

BOOL dbCPatients::FindSimilar(LPCTSTR pszFirst, LPCTSTR pszLast, const velCDate& dateBirth, CString* pstrGUID)
{
    dbCStatement query("SELECT p.guid FROM patients t JOIN persons p ON p.id = t.person WHERE t.lastKey = ?"
                       " AND t.firstKey = ? AND t.birthKey = ? ORDER BY t.person LIMIT 1");
    query.BindUtf8(dbFold(pszLast)).BindUtf8(dbFold(pszFirst)).BindUtf8(dbDateText(dateBirth, false));
    CString strGUID;
    return TakeGUID(query, pstrGUID ? *pstrGUID : strGUID);
}

BOOL dbCPatients::FindVeltrixID(LPCTSTR pszVeltrixID, CString& strGUID)
{
    // Those that were never shared have none in common.
    dbCStatement query("SELECT p.guid FROM patients t JOIN persons p ON p.id = t.person"
                       " WHERE t.veltrixID = ? AND t.veltrixID <> ''");
    query.Bind(pszVeltrixID);
    return TakeGUID(query, strGUID);
}

int dbCPatients::GetPage(dbPatientSearch nBy, LPCTSTR pszSearch, const dbSPatientListRow* pAfter, int nMax,
                         dbTList<dbSPatientListRow>& rows)
{
    // One lower bound, so that the index takes it: where the search begins or where the last page ended.
    static constexpr std::string_view BY_NAME =
        "SELECT t.person, p.guid, t.patientID, p.lastName, p.firstName, p.birthDate, t.lastKey, t.firstKey,"
        " t.birthKey FROM patients t JOIN persons p ON p.id = t.person"
        " WHERE (t.lastKey, t.firstKey, t.birthKey, t.person) > (?, ?, ?, ?) AND t.lastKey < ?"
        " AND t.firstKey >= ? AND t.firstKey < ?"
        " ORDER BY t.lastKey, t.firstKey, t.birthKey, t.person LIMIT ?";
    static constexpr std::string_view BY_ID =
        "SELECT t.person, p.guid, t.patientID, p.lastName, p.firstName, p.birthDate, t.lastKey, t.firstKey,"
        " t.birthKey FROM patients t JOIN persons p ON p.id = t.person"
        " WHERE t.patientID >= ? AND t.patientID < ? AND t.patientID <> ? ORDER BY t.patientID LIMIT ?";

    dbCStatement query(nBy == dbSearchID ? BY_ID : BY_NAME);
    if (nBy == dbSearchID)
    {
        const std::string prefix = dbToUtf8(pszSearch);
        const std::string after = pAfter ? dbToUtf8(pAfter->strID.GetString()) : std::string();
        query.BindUtf8(pAfter ? after : prefix).BindUtf8(EndOfPrefix(prefix)).BindUtf8(after).Bind(nMax);
    }
    else
    {
        bool bComma = false;
        const auto [last, first] = SplitNameSearch(pszSearch, bComma);
        SortKey after{last, first, {}, 0};
        if (pAfter)
            after = std::max(after, SortKey::FromText(pAfter->strSortKey));
        query.BindUtf8(after.last).BindUtf8(after.first).BindUtf8(after.birth).Bind(after.nRow);
        query.BindUtf8(EndOfPrefix(last)).BindUtf8(first).BindUtf8(EndOfPrefix(first)).Bind(nMax);
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
        dbCStatement query("SELECT count(*) FROM patients WHERE patientID >= ? AND patientID < ?");
        query.BindUtf8(prefix).BindUtf8(EndOfPrefix(prefix)).Step();
        return query.Int(0);
    }
    bool bComma = false;
    const auto [last, first] = SplitNameSearch(pszSearch, bComma);
    dbCStatement query("SELECT count(*) FROM patients WHERE lastKey >= ? AND lastKey < ?"
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

void dbCPatients::DeletePatient(LPCTSTR pszIDOrGUID, const patFileStates* pFiles)
{
    CString strID, strGUID;
    {
        dbCStatement query(
            IsGUID(pszIDOrGUID)
                ? std::string_view("SELECT t.patientID, p.guid FROM patients t JOIN persons p ON"
                                   " p.id = t.person WHERE p.guid = ?")
                : std::string_view("SELECT t.patientID, p.guid FROM patients t JOIN persons p ON"
                                   " p.id = t.person WHERE t.patientID = ?"));
        query.Bind(pszIDOrGUID);
        if (!query.Step())
            dbCException::Throw(dbErrNotFound, pszIDOrGUID);
        strID = query.Text(0);
        strGUID = query.Text(1);
    }
    const auto work = patCFileWork::BeginRemoval(patCFileWork::RemovePatient, strID,
                                                 pFiles ? *pFiles : patListFiles(strID));
    dbCTransaction transaction;
    dbCStatement query("SELECT t.person, a.person FROM patients t JOIN persons p ON p.id = t.person"
                       " LEFT JOIN patientPersons a ON a.patient = t.person AND a.kind = ?"
                       " WHERE p.guid = ? AND t.patientID = ?");
    query.Bind(dbPersonGuardian).Bind(strGUID).Bind(strID);
    if (!query.Step())
        dbCException::Throw(dbErrChangedElsewhere, strID);
    const __int64 nRow = query.Int64(0), nGuardian = query.Int64(1);
    query.Reset();
    dbDeletePerson(nRow);
    if (nGuardian != 0)
        dbDeletePerson(nGuardian);
    work->Note();
    transaction.Commit();
}
