#include "suite/patients/store/sqlitesession.h"

#include "suite/patients/store/dbtext.h"
#include "suite/util/velini.h"

#include <algorithm>
#include <cstdio>

namespace
{
constexpr int DEFAULT_TIMEOUT = 5000; // milliseconds

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

/// Whether a file lies on another computer. The setting is for storage that does not look it.
bool IsOnNetwork(LPCTSTR pszPath)
{
    if (velGetIniInt("Environment", "DatabaseOnNetwork", 0) != 0)
        return true;
    char szFull[MAX_PATH] = "", szVolume[MAX_PATH] = "";
    if (!GetFullPathNameA(pszPath, sizeof(szFull), szFull, nullptr))
        return false;
    GetVolumePathNameA(szFull, szVolume, sizeof(szVolume));
    return dbIsRemote(szFull, GetDriveTypeA(szVolume));
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

bool dbIsRemote(LPCTSTR pszFullPath, UINT nDriveType)
{
    bool bShare = strncmp(pszFullPath, R"(\\)", 2) == 0;
    if (strncmp(pszFullPath, R"(\\?\)", 4) == 0 || strncmp(pszFullPath, R"(\\.\)", 4) == 0)
        bShare = _strnicmp(pszFullPath + 4, R"(UNC\)", 4) == 0; // else a drive of this computer
    return bShare || nDriveType == DRIVE_REMOTE;
}

/// A statement of SQLite; the session that made it outlives it.
class dbCSqliteCursor : public dbCCursor
{
public:
    dbCSqliteCursor(const dbCSqliteSession& session, sqlite3_stmt* pStatement)
        : m_session(session), m_pStatement(pStatement)
    {
    }
    ~dbCSqliteCursor() override
    {
        sqlite3_finalize(m_pStatement);
    }

    void BindInt(int nParameter, __int64 nValue) override
    {
        Check(sqlite3_bind_int64(m_pStatement, nParameter + 1, nValue));
    }
    void BindText(int nParameter, std::string_view utf8) override
    {
        Check(sqlite3_bind_text64(m_pStatement, nParameter + 1, utf8.data(), utf8.size(), SQLITE_TRANSIENT,
                                  SQLITE_UTF8));
    }
    void BindNull(int nParameter) override
    {
        Check(sqlite3_bind_null(m_pStatement, nParameter + 1));
    }
    bool Step() override
    {
        // What follows a transaction that the engine has ended must not be written statement by statement.
        m_session.RequireTransaction();
        const int nResult = sqlite3_step(m_pStatement);
        if (nResult != SQLITE_ROW && nResult != SQLITE_DONE)
            m_session.ThrowError(nResult);
        return nResult == SQLITE_ROW;
    }
    void Reset() noexcept override
    {
        sqlite3_reset(m_pStatement);
        sqlite3_clear_bindings(m_pStatement);
    }
    bool IsNull(int nColumn) const override
    {
        return sqlite3_column_type(m_pStatement, nColumn) == SQLITE_NULL;
    }
    __int64 GetInt(int nColumn) const override
    {
        return sqlite3_column_int64(m_pStatement, nColumn);
    }
    std::string_view GetText(int nColumn) const override
    {
        const auto* pText = reinterpret_cast<const char*>(sqlite3_column_text(m_pStatement, nColumn));
        const auto nBytes = static_cast<size_t>(sqlite3_column_bytes(m_pStatement, nColumn));
        return pText ? std::string_view(pText, nBytes) : std::string_view();
    }

private:
    void Check(int nResult) const
    {
        if (nResult != SQLITE_OK)
            m_session.ThrowError(nResult);
    }

    const dbCSqliteSession& m_session;
    sqlite3_stmt* m_pStatement;
};

dbCSqliteSession::dbCSqliteSession(LPCTSTR pszPath, Mode mode) : m_strPath(pszPath), m_bShared(IsOnNetwork(pszPath))
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

dbCSqliteSession::~dbCSqliteSession()
{
    if (GetLevel() > 0)
        Rollback(1);
    m_free.clear();
    sqlite3_close_v2(m_pDb);
}

void dbCSqliteSession::LeaveWriteAheadLog()
{
    // Alone with the file the log needs no shared memory.
    if (sqlite3_exec(m_pDb, "PRAGMA locking_mode = EXCLUSIVE; PRAGMA journal_mode = DELETE", nullptr, nullptr,
                     nullptr) != SQLITE_OK ||
        HasWriteAheadLog(m_strPath))
        dbCException::Throw(dbErrNetwork, m_strPath);
    // Gives the file free with the next access.
    Execute("PRAGMA locking_mode = NORMAL; SELECT count(*) FROM sqlite_schema");
}

void dbCSqliteSession::Execute(const char* pszSql)
{
    const int nResult = sqlite3_exec(m_pDb, pszSql, nullptr, nullptr, nullptr);
    if (nResult != SQLITE_OK)
        ThrowError(nResult);
}

__int64 dbCSqliteSession::QueryInt(const char* pszSql)
{
    auto pCursor = Take(pszSql);
    const __int64 nValue = pCursor->Step() ? pCursor->GetInt(0) : 0;
    GiveBack(pszSql, std::move(pCursor));
    return nValue;
}

void dbCSqliteSession::ThrowError(int nResult) const
{
    const std::string message = m_pDb ? sqlite3_errmsg(m_pDb) : sqlite3_errstr(nResult);
    const dbError nError = ErrorFromSqlite(m_pDb, nResult, message);
    CString strDetail = dbFromUtf8ForDisplay(message).c_str();
    strDetail += " (" + m_strPath + ")";
    dbCException::Throw(nError, strDetail);
}

std::unique_ptr<dbCCursor> dbCSqliteSession::Take(std::string_view sql)
{
    auto& cursors = m_free[sql];
    if (!cursors.empty())
    {
        auto pCursor = std::move(cursors.back());
        cursors.pop_back();
        return pCursor;
    }
    sqlite3_stmt* pStatement = nullptr;
    const int nResult = sqlite3_prepare_v3(m_pDb, sql.data(), static_cast<int>(sql.size()),
                                           SQLITE_PREPARE_PERSISTENT, &pStatement, nullptr);
    if (nResult != SQLITE_OK)
        ThrowError(nResult);
    return std::make_unique<dbCSqliteCursor>(*this, pStatement);
}

void dbCSqliteSession::GiveBack(std::string_view sql, std::unique_ptr<dbCCursor> pCursor) noexcept
{
    pCursor->Reset();
    m_free[sql].push_back(std::move(pCursor));
}

__int64 dbCSqliteSession::GetLastRow() const
{
    return sqlite3_last_insert_rowid(m_pDb);
}

int dbCSqliteSession::GetChanges() const
{
    return sqlite3_changes(m_pDb);
}

__int64 dbCSqliteSession::GetChangeCounter()
{
    // data_version counts the commits of others, total_changes the rows of this connection.
    return (QueryInt("PRAGMA data_version") << 40) + sqlite3_total_changes64(m_pDb);
}

bool dbCSqliteSession::HasTable(LPCTSTR pszTable)
{
    constexpr std::string_view SQL = "SELECT 1 FROM sqlite_schema WHERE type = 'table' AND name = ?";
    auto pCursor = Take(SQL);
    pCursor->BindText(0, pszTable);
    const bool bFound = pCursor->Step();
    GiveBack(SQL, std::move(pCursor));
    return bFound;
}

void dbCSqliteSession::SetRelaxed(bool bRelaxed)
{
    Execute(bRelaxed ? "PRAGMA synchronous = NORMAL" : "PRAGMA synchronous = FULL");
}

bool dbCSqliteSession::BeginReading()
{
    if (IsInTransaction())
        return false;
    Execute("BEGIN");
    return true;
}

void dbCSqliteSession::EndReading() noexcept
{
    if (IsInTransaction())
        sqlite3_exec(m_pDb, "ROLLBACK", nullptr, nullptr, nullptr);
}

bool dbCSqliteSession::IsInTransaction() const
{
    return !sqlite3_get_autocommit(m_pDb);
}

void dbCSqliteSession::BeginLevel(int nLevel)
{
    char szSql[64] = "BEGIN IMMEDIATE";
    if (nLevel > 1)
        snprintf(szSql, sizeof(szSql), "SAVEPOINT level%d", nLevel);
    Execute(szSql);
}

void dbCSqliteSession::CommitLevel(int nLevel)
{
    char szSql[64] = "COMMIT";
    if (nLevel > 1)
        snprintf(szSql, sizeof(szSql), "RELEASE level%d", nLevel);
    Execute(szSql);
}

void dbCSqliteSession::RollbackLevel(int nLevel) noexcept
{
    char szSql[64] = "ROLLBACK";
    if (nLevel > 1)
        snprintf(szSql, sizeof(szSql), "ROLLBACK TO level%d; RELEASE level%d", nLevel, nLevel);
    sqlite3_exec(m_pDb, szSql, nullptr, nullptr, nullptr);
}
