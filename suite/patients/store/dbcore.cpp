#include "suite/patients/store/dbcore.h"

#include "suite/patients/store/dbschema.h"
#include "suite/patients/store/dbtext.h"
#include "suite/util/velini.h"

#include <algorithm>
#include <cstdio>
#include <limits>

namespace
{
constexpr int DEFAULT_TIMEOUT = 5000; // milliseconds

std::unique_ptr<dbCConnection> g_pConnection;

dbError ErrorFromSystem(DWORD dwError)
{
    switch (dwError)
    {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
        return dbErrMissing;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
        return dbErrLocked;
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
        return dbErrReadOnly;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
        return dbErrDiskFull;
    default:
        return dbErrIO;
    }
}

dbError ErrorFromSqlite(sqlite3* pDb, int nResult, const std::string& message)
{
    switch (nResult & 0xFF)
    {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return dbErrLocked;
    case SQLITE_READONLY:
        return dbErrReadOnly;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        return dbErrCorrupt;
    case SQLITE_FULL:
        return dbErrDiskFull;
    case SQLITE_IOERR:
    case SQLITE_CANTOPEN:
        return ErrorFromSystem(pDb ? static_cast<DWORD>(sqlite3_system_errno(pDb)) : 0);
    case SQLITE_TOOBIG:
        return dbErrInvalid;
    case SQLITE_CONSTRAINT:
        if (nResult == SQLITE_CONSTRAINT_FOREIGNKEY)
            return dbErrInUse;
        if (message.find("patients.patientID") != std::string::npos)
            return dbErrDuplicateID;
        if (message.find("persons.guid") != std::string::npos)
            return dbErrDuplicateGUID;
        return dbErrInvalid;
    default:
        return dbErrInternal;
    }
}

CString DetailFromUtf8(const char* psz)
{
    return dbFromUtf8ForDisplay(psz ? psz : "").c_str();
}

/// A number of `nDigits` digits at a position, -1 when there is none.
int Number(std::string_view text, size_t nPos, size_t nDigits)
{
    if (text.size() < nPos + nDigits)
        return -1;
    int nValue = 0;
    for (const char ch : text.substr(nPos, nDigits))
    {
        if (ch < '0' || ch > '9')
            return -1;
        nValue = nValue * 10 + (ch - '0');
    }
    return nValue;
}
/// Whether a file lies on another computer. The setting is for storage that does not look it.
bool IsOnNetwork(LPCTSTR pszPath)
{
    if (velGetIniInt("Environment", "DatabaseOnNetwork", 0) != 0)
        return true;
    char szFull[MAX_PATH] = "", szVolume[MAX_PATH] = "";
    if (!GetFullPathNameA(pszPath, sizeof(szFull), szFull, nullptr))
        return false;
    if (strncmp(szFull, "\\\\", 2) == 0)
        return true;
    return GetVolumePathNameA(szFull, szVolume, sizeof(szVolume)) && GetDriveTypeA(szVolume) == DRIVE_REMOTE;
}

/// Whether the file says of itself that it is written through a write-ahead log.
bool HasWriteAheadLog(LPCTSTR pszPath)
{
    constexpr DWORD READ_VERSION = 19, LOGGED = 2; // of the file format
    BYTE header[READ_VERSION + 1] = {};
    DWORD dwRead = 0;
    const HANDLE hFile = CreateFileA(pszPath, GENERIC_READ,
                                     FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                     OPEN_EXISTING, 0, nullptr);
    if (hFile == INVALID_HANDLE_VALUE)
        return false; // opening it says why
    const BOOL bRead = ReadFile(hFile, header, sizeof(header), &dwRead, nullptr);
    CloseHandle(hFile);
    return bRead && dwRead == sizeof(header) && header[READ_VERSION] == LOGGED;
}
} // namespace

// dbCConnection

dbCConnection::dbCConnection(LPCTSTR pszPath, Mode mode) : m_strPath(pszPath), m_bShared(IsOnNetwork(pszPath))
{
    const DWORD dwAttributes = GetFileAttributesA(pszPath);
    if (mode == Mode::Open)
    {
        if (dwAttributes == INVALID_FILE_ATTRIBUTES)
        {
            const DWORD dwError = GetLastError();
            dbCException::Throw(dwError == ERROR_ACCESS_DENIED ? dbErrIO : dbErrMissing, pszPath);
        }
        if (dwAttributes & FILE_ATTRIBUTE_DIRECTORY)
            dbCException::Throw(dbErrMissing, pszPath);
        if (dwAttributes & FILE_ATTRIBUTE_READONLY)
            dbCException::Throw(dbErrReadOnly, pszPath);
    }
    else if (dwAttributes != INVALID_FILE_ATTRIBUTES)
    {
        dbCException::Throw(dbErrExists, pszPath);
    }

    const int nFlags =
        SQLITE_OPEN_READWRITE | SQLITE_OPEN_EXRESCODE | (mode == Mode::Create ? SQLITE_OPEN_CREATE : 0);
    const int nResult = sqlite3_open_v2(dbToUtf8(pszPath).c_str(), &m_pDb, nFlags, nullptr);
    try
    {
        if (nResult != SQLITE_OK)
            ThrowError(nResult);
        if (sqlite3_db_readonly(m_pDb, "main") == 1)
            dbCException::Throw(dbErrReadOnly, pszPath);
        sqlite3_busy_timeout(m_pDb,
                             std::max(0, velGetIniInt("Environment", "DatabaseTimeout", DEFAULT_TIMEOUT)));
        sqlite3_db_config(m_pDb, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
        sqlite3_db_config(m_pDb, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
        sqlite3_db_config(m_pDb, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
        sqlite3_db_config(m_pDb, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
        if (m_bShared && HasWriteAheadLog(pszPath))
            LeaveWriteAheadLog();
        Execute("PRAGMA foreign_keys = ON; PRAGMA synchronous = FULL; PRAGMA temp_store = MEMORY; PRAGMA "
                "cache_size = -16000");
    }
    catch (...)
    {
        sqlite3_close_v2(m_pDb);
        throw;
    }
}

dbCConnection::~dbCConnection()
{
    if (!m_frames.empty())
        Rollback(1);
    for (auto& [sql, statements] : m_free)
        for (sqlite3_stmt* pStatement : statements)
            sqlite3_finalize(pStatement);
    sqlite3_close_v2(m_pDb);
}

void dbCConnection::LeaveWriteAheadLog()
{
    // Alone with the file the log needs no shared memory.
    if (sqlite3_exec(m_pDb, "PRAGMA locking_mode = EXCLUSIVE; PRAGMA journal_mode = DELETE", nullptr, nullptr,
                     nullptr) != SQLITE_OK ||
        HasWriteAheadLog(m_strPath))
        dbCException::Throw(dbErrNetwork, m_strPath);
    // Gives the file free with the next access.
    Execute("PRAGMA locking_mode = NORMAL; SELECT count(*) FROM sqlite_schema");
}

dbCConnection& dbCConnection::Current()
{
    if (!g_pConnection)
        dbCException::Throw(dbErrNotOpen);
    return *g_pConnection;
}

dbCConnection* dbCConnection::CurrentOrNull()
{
    return g_pConnection.get();
}

void dbCConnection::SetCurrent(std::unique_ptr<dbCConnection> pConnection)
{
    g_pConnection = std::move(pConnection);
}

void dbCConnection::Execute(const char* pszSql)
{
    const int nResult = sqlite3_exec(m_pDb, pszSql, nullptr, nullptr, nullptr);
    if (nResult != SQLITE_OK)
        ThrowError(nResult);
}

__int64 dbCConnection::QueryInt(const char* pszSql)
{
    dbCStatement query(*this, pszSql);
    return query.Step() ? query.Int64(0) : 0;
}

void dbCConnection::ThrowError(int nResult) const
{
    const std::string message = m_pDb ? sqlite3_errmsg(m_pDb) : sqlite3_errstr(nResult);
    const dbError nError = ErrorFromSqlite(m_pDb, nResult, message);
    CString strDetail = DetailFromUtf8(message.c_str());
    strDetail += " (" + m_strPath + ")";
    dbCException::Throw(nError, strDetail);
}

sqlite3_stmt* dbCConnection::Take(std::string_view sql)
{
    auto& statements = m_free[sql];
    if (!statements.empty())
    {
        sqlite3_stmt* pStatement = statements.back();
        statements.pop_back();
        return pStatement;
    }
    sqlite3_stmt* pStatement = nullptr;
    const int nResult = sqlite3_prepare_v3(m_pDb, sql.data(), static_cast<int>(sql.size()),
                                           SQLITE_PREPARE_PERSISTENT, &pStatement, nullptr);
    if (nResult != SQLITE_OK)
        ThrowError(nResult);
    return pStatement;
}

void dbCConnection::GiveBack(std::string_view sql, sqlite3_stmt* pStatement)
{
    sqlite3_reset(pStatement);
    sqlite3_clear_bindings(pStatement);
    m_free[sql].push_back(pStatement);
}

void dbCConnection::RunSavepoint(const char* pszVerb, int nLevel)
{
    char szSql[64];
    snprintf(szSql, sizeof(szSql), "%s level%d", pszVerb, nLevel);
    Execute(szSql);
}

int dbCConnection::Begin()
{
    const int nLevel = GetLevel() + 1;
    if (nLevel == 1)
        Execute("BEGIN IMMEDIATE");
    else
        RunSavepoint("SAVEPOINT", nLevel);
    m_frames.emplace_back();
    return nLevel;
}

void dbCConnection::Commit(int nLevel)
{
    ASSERT(nLevel == GetLevel());
    if (sqlite3_get_autocommit(m_pDb))
        dbCException::Throw(dbErrInternal, "the transaction was ended by the database");
    if (nLevel > 1)
    {
        RunSavepoint("RELEASE", nLevel);
        Frame inner = std::move(m_frames.back());
        m_frames.pop_back();
        Frame& outer = m_frames.back();
        std::move(inner.rollback.begin(), inner.rollback.end(), std::back_inserter(outer.rollback));
        std::move(inner.commit.begin(), inner.commit.end(), std::back_inserter(outer.commit));
        return;
    }
    Execute("COMMIT");
    const Frame frame = std::move(m_frames.back());
    m_frames.clear();
    for (const auto& fn : frame.commit)
        fn();
}

void dbCConnection::Rollback(int nLevel) noexcept
{
    // A transaction left open inside this one goes with it.
    while (GetLevel() >= nLevel)
    {
        const int nInner = GetLevel();
        const Frame frame = std::move(m_frames.back());
        m_frames.pop_back();
        if (!sqlite3_get_autocommit(m_pDb))
        {
            char szSql[64] = "ROLLBACK";
            if (nInner > 1)
                snprintf(szSql, sizeof(szSql), "ROLLBACK TO level%d; RELEASE level%d", nInner, nInner);
            sqlite3_exec(m_pDb, szSql, nullptr, nullptr, nullptr);
        }
        for (auto fn = frame.rollback.rbegin(); fn != frame.rollback.rend(); ++fn)
            (*fn)();
    }
}

void dbCConnection::AtEnd(std::function<void()> fnRollback, std::function<void()> fnCommit)
{
    if (m_frames.empty())
    {
        if (fnCommit)
            fnCommit();
        return;
    }
    if (fnRollback)
        m_frames.back().rollback.push_back(std::move(fnRollback));
    if (fnCommit)
        m_frames.back().commit.push_back(std::move(fnCommit));
}

// dbCStatement

dbCStatement::dbCStatement(std::string_view sql) : dbCStatement(dbCConnection::Current(), sql)
{
}

dbCStatement::dbCStatement(dbCConnection& connection, std::string_view sql)
    : m_connection(connection), m_sql(sql), m_pStatement(connection.Take(sql))
{
}

dbCStatement::~dbCStatement()
{
    m_connection.GiveBack(m_sql, m_pStatement);
}

dbCStatement& dbCStatement::Bind(__int64 nValue)
{
    sqlite3_bind_int64(m_pStatement, ++m_nBound, nValue);
    return *this;
}

dbCStatement& dbCStatement::Bind(const char* pszText)
{
    return BindUtf8(dbToUtf8(pszText ? pszText : ""));
}

dbCStatement& dbCStatement::BindUtf8(std::string_view utf8)
{
    const int nResult = sqlite3_bind_text64(m_pStatement, ++m_nBound, utf8.data(), utf8.size(),
                                            SQLITE_TRANSIENT, SQLITE_UTF8);
    if (nResult != SQLITE_OK)
        m_connection.ThrowError(nResult);
    return *this;
}

dbCStatement& dbCStatement::BindDate(const COleDateTime& date)
{
    return dbIsSet(date) ? BindUtf8(dbDateText(date, false)) : BindNull();
}

dbCStatement& dbCStatement::BindDateTime(const COleDateTime& date)
{
    return dbIsSet(date) ? BindUtf8(dbDateText(date, true)) : BindNull();
}

dbCStatement& dbCStatement::BindRow(__int64 nRow)
{
    return nRow != 0 ? Bind(nRow) : BindNull();
}

dbCStatement& dbCStatement::BindNull()
{
    sqlite3_bind_null(m_pStatement, ++m_nBound);
    return *this;
}

bool dbCStatement::Step()
{
    // The engine ends a transaction by itself after some failures (a full disk); what follows must not then
    // be written statement by statement.
    if (m_connection.GetLevel() > 0 && sqlite3_get_autocommit(m_connection.GetHandle()))
        dbCException::Throw(dbErrInternal, "the transaction was ended by the database");
    const int nResult = sqlite3_step(m_pStatement);
    if (nResult == SQLITE_ROW)
        return true;
    if (nResult == SQLITE_DONE)
        return false;
    m_connection.ThrowError(nResult);
}

void dbCStatement::Run()
{
    while (Step())
    {
    }
    Reset();
}

void dbCStatement::Reset()
{
    sqlite3_reset(m_pStatement);
    sqlite3_clear_bindings(m_pStatement);
    m_nBound = 0;
}

std::string_view dbCStatement::Utf8(int nColumn) const
{
    const auto* pText = reinterpret_cast<const char*>(sqlite3_column_text(m_pStatement, nColumn));
    return pText ? std::string_view(pText, static_cast<size_t>(sqlite3_column_bytes(m_pStatement, nColumn)))
                 : std::string_view();
}

CString dbCStatement::Text(int nColumn) const
{
    const std::string text = dbFromUtf8(Utf8(nColumn));
    return CString(text.data(), static_cast<int>(text.size()));
}

CString dbCStatement::TextForDisplay(int nColumn) const
{
    const std::string text = dbFromUtf8ForDisplay(Utf8(nColumn));
    return CString(text.data(), static_cast<int>(text.size()));
}

velCDate dbCStatement::Date(int nColumn) const
{
    return dbDateFromText(Utf8(nColumn));
}

// dbCReadScope

dbCReadScope::dbCReadScope()
    : m_connection(dbCConnection::Current()), m_bOwn(sqlite3_get_autocommit(m_connection.GetHandle()) != 0)
{
    if (m_bOwn)
        dbCStatement(m_connection, "BEGIN").Run();
}

dbCReadScope::~dbCReadScope()
{
    if (m_bOwn && !sqlite3_get_autocommit(m_connection.GetHandle()))
        sqlite3_exec(m_connection.GetHandle(), "ROLLBACK", nullptr, nullptr, nullptr);
}

// dbCRelaxedCommits

dbCRelaxedCommits::dbCRelaxedCommits()
    : m_connection(dbCConnection::Current()), m_bOwn(m_connection.GetLevel() == 0)
{
    if (m_bOwn)
        m_connection.Execute("PRAGMA synchronous = NORMAL");
}

dbCRelaxedCommits::~dbCRelaxedCommits()
{
    if (m_bOwn)
        sqlite3_exec(m_connection.GetHandle(), "PRAGMA synchronous = FULL", nullptr, nullptr, nullptr);
}

__int64 dbNextNumber(dbCounter counter)
{
    dbCStatement next("UPDATE counters SET last = last + 1 WHERE name = ? RETURNING last");
    next.Bind(counter == dbCounter::Persons ? "persons" : "versions");
    if (!next.Step())
        dbCException::Throw(dbErrCorrupt, "counters");
    return next.Int64(0);
}

// Dates

bool dbIsSet(const COleDateTime& date)
{
    return date.GetStatus() == COleDateTime::valid;
}

std::string dbDateText(const COleDateTime& date, bool bWithTime)
{
    SYSTEMTIME st{};
    if (!dbIsSet(date) || !date.GetAsSystemTime(st))
        return {};
    char sz[80];
    if (bWithTime)
        snprintf(sz, sizeof(sz), "%04u-%02u-%02u %02u:%02u:%02u", st.wYear, st.wMonth, st.wDay, st.wHour,
                 st.wMinute, st.wSecond);
    else
        snprintf(sz, sizeof(sz), "%04u-%02u-%02u", st.wYear, st.wMonth, st.wDay);
    return sz;
}

velCDate dbDateFromText(std::string_view text)
{
    velCDate date;
    date.SetStatus(COleDateTime::null);
    const int nYear = Number(text, 0, 4), nMonth = Number(text, 5, 2), nDay = Number(text, 8, 2);
    if (nYear < 0 || nMonth < 0 || nDay < 0)
        return date;
    const bool bTime = text.size() >= 19;
    const COleDateTime value(nYear, nMonth, nDay, bTime ? std::max(0, Number(text, 11, 2)) : 0,
                             bTime ? std::max(0, Number(text, 14, 2)) : 0,
                             bTime ? std::max(0, Number(text, 17, 2)) : 0);
    if (dbIsSet(value))
        static_cast<COleDateTime&>(date) = value;
    return date;
}
