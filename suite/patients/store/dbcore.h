#pragma once

// The connection to the database and its statements; inside the library only.
//
// One connection per process, used by the thread that opened it. Statements are prepared once and kept.

#include "suite/patients/store/dbexception.h"
#include "suite/util/veldate.h"

#include <sqlite3.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/// Owns the SQLite handle, the prepared statements and the state of the open transaction.
class dbCConnection
{
public:
    enum class Mode
    {
        Open,
        Create
    };

    /// Opens the file without changing it. Throws dbCException*.
    dbCConnection(LPCTSTR pszPath, Mode mode);
    ~dbCConnection();
    dbCConnection(const dbCConnection&) = delete;
    dbCConnection& operator=(const dbCConnection&) = delete;

    /// The process's database; throws dbErrNotOpen when there is none.
    static dbCConnection& Current();
    static dbCConnection* CurrentOrNull();
    static void SetCurrent(std::unique_ptr<dbCConnection> pConnection);

    sqlite3* GetHandle() const
    {
        return m_pDb;
    }
    const CString& GetPath() const
    {
        return m_strPath;
    }
    /// Whether the file is reached over the network: the memory that processes share for a write-ahead log
    /// then does not work, and a rollback journal takes its place.
    bool IsShared() const
    {
        return m_bShared;
    }

    /// Runs SQL that is part of the program (never built from data), one statement or several.
    void Execute(const char* pszSql);
    __int64 QueryInt(const char* pszSql);
    __int64 GetLastRow() const
    {
        return sqlite3_last_insert_rowid(m_pDb);
    }
    int GetChanges() const
    {
        return sqlite3_changes(m_pDb);
    }

    /// Throws what a failed SQLite call means.
    [[noreturn]] void ThrowError(int nResult) const;

    int Begin();
    void Commit(int nLevel);
    void Rollback(int nLevel) noexcept;
    int GetLevel() const
    {
        return static_cast<int>(m_frames.size());
    }
    void AtEnd(std::function<void()> fnRollback, std::function<void()> fnCommit);

private:
    friend class dbCStatement;

    struct Frame
    {
        std::vector<std::function<void()>> rollback, commit;
    };

    sqlite3_stmt* Take(std::string_view sql);
    void GiveBack(std::string_view sql, sqlite3_stmt* pStatement);
    void RunSavepoint(const char* pszVerb, int nLevel);

    void LeaveWriteAheadLog();

    sqlite3* m_pDb = nullptr;
    CString m_strPath;
    bool m_bShared;
    std::unordered_map<std::string_view, std::vector<sqlite3_stmt*>> m_free; ///< keys are string literals
    std::vector<Frame> m_frames; ///< one per open transaction, outermost first
};

/// A prepared statement taken from the connection's store for the length of a scope. The SQL must be a string
/// literal. Parameters are bound in order with Bind; columns are read from 0 after Step returned true.
class dbCStatement
{
public:
    explicit dbCStatement(std::string_view sql);
    dbCStatement(dbCConnection& connection, std::string_view sql);
    ~dbCStatement();
    dbCStatement(const dbCStatement&) = delete;
    dbCStatement& operator=(const dbCStatement&) = delete;

    dbCStatement& Bind(int nValue)
    {
        return Bind(static_cast<__int64>(nValue));
    }
    dbCStatement& Bind(unsigned long dwValue)
    {
        return Bind(static_cast<__int64>(dwValue));
    }
    dbCStatement& Bind(__int64 nValue);
    dbCStatement& Bind(const char* pszText); ///< code-page text
    dbCStatement& Bind(const CString& strText)
    {
        return Bind(strText.GetString());
    }
    dbCStatement& BindUtf8(std::string_view utf8);
    dbCStatement& BindDate(const COleDateTime& date);     ///< "YYYY-MM-DD", null when not set
    dbCStatement& BindDateTime(const COleDateTime& date); ///< "YYYY-MM-DD HH:MM:SS", null when not set
    dbCStatement& BindRow(__int64 nRow);                  ///< a reference; null for 0
    dbCStatement& BindNull();

    /// TRUE with a row, false at the end. The first call after the end starts over.
    bool Step();
    /// Steps to the end and makes the statement ready for new parameters.
    void Run();
    /// Forgets position and parameters.
    void Reset();

    bool IsNull(int nColumn) const
    {
        return sqlite3_column_type(m_pStatement, nColumn) == SQLITE_NULL;
    }
    __int64 Int64(int nColumn) const
    {
        return sqlite3_column_int64(m_pStatement, nColumn);
    }
    int Int(int nColumn) const
    {
        return sqlite3_column_int(m_pStatement, nColumn);
    }
    std::string_view Utf8(int nColumn) const;
    CString Text(int nColumn) const;
    CString TextForDisplay(int nColumn) const;
    velCDate Date(int nColumn) const; ///< date with or without time; null for anything else

private:
    dbCConnection& m_connection;
    std::string_view m_sql;
    sqlite3_stmt* m_pStatement;
    int m_nBound = 0;
};

/// Several reads that must see one state of the database: everything within the scope does.
class dbCReadScope
{
public:
    dbCReadScope();
    ~dbCReadScope();
    dbCReadScope(const dbCReadScope&) = delete;
    dbCReadScope& operator=(const dbCReadScope&) = delete;

private:
    dbCConnection& m_connection;
    bool m_bOwn;
};

/// For work that can be done again after a power failure: while it lives, a commit does not wait until the disk
/// has it. Nothing happens inside a transaction.
class dbCRelaxedCommits
{
public:
    dbCRelaxedCommits();
    ~dbCRelaxedCommits();
    dbCRelaxedCommits(const dbCRelaxedCommits&) = delete;
    dbCRelaxedCommits& operator=(const dbCRelaxedCommits&) = delete;

private:
    dbCConnection& m_connection;
    bool m_bOwn;
};

/// What is counted over the whole life of a database.
enum class dbCounter
{
    Persons, ///< row numbers of persons, and so of patients and doctors
    Versions ///< versions of records
};

/// The next number of a counter; none is ever given twice. Inside a transaction.
__int64 dbNextNumber(dbCounter counter);

/// A date as the database writes it ("YYYY-MM-DD"), empty when not set; and the way back.
std::string dbDateText(const COleDateTime& date, bool bWithTime);
velCDate dbDateFromText(std::string_view text);
bool dbIsSet(const COleDateTime& date);
