#include "service/database.h"

namespace
{
constexpr int SchemaVersion = 1;

// AUTOINCREMENT where a number leaves the service: it is never given again. A record's document and time are
// empty until its first upload is complete. A blob belongs to the files that others see, to the upload under
// way, or to both.
constexpr const char* Schema = R"sql(
CREATE TABLE accounts (
    id INTEGER PRIMARY KEY AUTOINCREMENT, guid TEXT NOT NULL UNIQUE, name TEXT NOT NULL UNIQUE COLLATE NOCASE,
    email TEXT NOT NULL UNIQUE COLLATE NOCASE, lastName TEXT NOT NULL, firstName TEXT NOT NULL,
    password TEXT NOT NULL, quota INTEGER NOT NULL);
CREATE TABLE sessions (
    token TEXT PRIMARY KEY, account INTEGER NOT NULL REFERENCES accounts ON DELETE CASCADE, west INTEGER NOT NULL,
    expires INTEGER NOT NULL) WITHOUT ROWID;
CREATE TABLE records (
    id INTEGER PRIMARY KEY AUTOINCREMENT, owner INTEGER NOT NULL REFERENCES accounts ON DELETE CASCADE,
    patientGuid TEXT NOT NULL COLLATE NOCASE, serviceGuid TEXT NOT NULL UNIQUE, patientID TEXT NOT NULL,
    lastName TEXT NOT NULL, firstName TEXT NOT NULL, note TEXT NOT NULL, document TEXT NOT NULL,
    updated INTEGER NOT NULL, lastUpload INTEGER NOT NULL, UNIQUE (owner, patientGuid));
CREATE TABLE shares (
    record INTEGER NOT NULL REFERENCES records ON DELETE CASCADE,
    account INTEGER NOT NULL REFERENCES accounts ON DELETE CASCADE, since INTEGER NOT NULL,
    PRIMARY KEY (record, account)) WITHOUT ROWID;
CREATE INDEX sharesByAccount ON shares (account);
CREATE TABLE uploads (
    id INTEGER PRIMARY KEY AUTOINCREMENT, record INTEGER NOT NULL UNIQUE REFERENCES records ON DELETE CASCADE,
    document TEXT NOT NULL);
CREATE TABLE blobs (
    id INTEGER PRIMARY KEY AUTOINCREMENT, record INTEGER NOT NULL REFERENCES records ON DELETE CASCADE,
    guid TEXT NOT NULL, name TEXT NOT NULL, signature TEXT NOT NULL, size INTEGER NOT NULL,
    complete INTEGER NOT NULL, published INTEGER NOT NULL, wanted INTEGER NOT NULL,
    UNIQUE (record, name, signature));
CREATE TABLE messages (
    id INTEGER PRIMARY KEY AUTOINCREMENT, account INTEGER REFERENCES accounts ON DELETE CASCADE,
    text TEXT NOT NULL, link TEXT NOT NULL, linkname TEXT NOT NULL, action TEXT NOT NULL);
)sql";
} // namespace

namespace svc
{
Database::Database(const std::string& path)
{
    if (sqlite3_open(path.c_str(), &m_db) != SQLITE_OK)
    {
        const std::string reason = sqlite3_errmsg(m_db);
        sqlite3_close(m_db);
        throw DatabaseError(path + ": " + reason);
    }
    try
    {
        sqlite3_busy_timeout(m_db, 10000);
        Execute("PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL; PRAGMA foreign_keys = ON");
        Transaction transaction(*this);
        const auto version = [this] {
            Statement query(*this, "PRAGMA user_version");
            query.Step();
            return query.Int(0);
        }();
        if (version > SchemaVersion)
            throw DatabaseError(path + " was written by a newer version of this program");
        if (version == 0)
        {
            Execute(Schema);
            Execute("PRAGMA user_version = 1");
        }
        transaction.Commit();
    }
    catch (...)
    {
        for (const auto& [sql, statement] : m_statements)
            sqlite3_finalize(statement);
        sqlite3_close(m_db);
        throw;
    }
}

Database::~Database()
{
    for (const auto& [sql, statement] : m_statements)
        sqlite3_finalize(statement);
    sqlite3_close(m_db);
}

void Database::Execute(const char* sql)
{
    if (sqlite3_exec(m_db, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
        throw DatabaseError(sqlite3_errmsg(m_db));
}

sqlite3_stmt* Database::Take(const char* sql)
{
    sqlite3_stmt*& statement = m_statements[sql];
    if (!statement &&
        sqlite3_prepare_v3(m_db, sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr) != SQLITE_OK)
        throw DatabaseError(sqlite3_errmsg(m_db));
    return statement;
}

Statement::~Statement()
{
    sqlite3_reset(m_statement);
    sqlite3_clear_bindings(m_statement);
}

bool Statement::Step()
{
    const int result = sqlite3_step(m_statement);
    if (result == SQLITE_ROW)
        return true;
    if (result != SQLITE_DONE)
        throw DatabaseError(sqlite3_errmsg(m_database.m_db));
    return false;
}

std::string Statement::Text(int column) const
{
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(m_statement, column));
    return text ? std::string(text, static_cast<std::size_t>(sqlite3_column_bytes(m_statement, column)))
                : std::string();
}

void Statement::Bind(std::int64_t value)
{
    Check(sqlite3_bind_int64(m_statement, ++m_bound, value));
}

void Statement::Bind(std::string_view text)
{
    const char* data = text.data() ? text.data() : "";
    Check(sqlite3_bind_text64(m_statement, ++m_bound, data, text.size(), SQLITE_TRANSIENT, SQLITE_UTF8));
}

void Statement::Check(int result) const
{
    if (result != SQLITE_OK)
        throw DatabaseError(sqlite3_errmsg(m_database.m_db));
}

Transaction::Transaction(Database& database) : m_database(database), m_lock(database.Lock())
{
    if (m_database.m_depth == 0)
        m_database.Execute("BEGIN IMMEDIATE");
    ++m_database.m_depth;
}

Transaction::~Transaction()
{
    if (!m_open)
        return;
    if (--m_database.m_depth == 0)
        sqlite3_exec(m_database.m_db, "ROLLBACK", nullptr, nullptr,
                     nullptr); // fails when SQLite has done so itself
}

void Transaction::Commit()
{
    if (m_database.m_depth == 1)
        m_database.Execute("COMMIT");
    --m_database.m_depth;
    m_open = false;
}
} // namespace svc
