#pragma once

// A session with a patient database, whatever engine keeps it; inside the library only.
//
// The patient list opens and owns the process's session (dbCPatients::Open); every call goes through it, on the
// thread that opened it. An engine implements dbCSession and dbCCursor; SQL is the common part of SQL that the
// statements of this library keep to.

#include "suite/patients/store/dbexception.h"

#include <functional>
#include <memory>
#include <string_view>
#include <vector>

/// A prepared statement of an engine. Columns and parameters count from 0. Everything throws dbCException*.
class dbCCursor
{
public:
    virtual ~dbCCursor() = default;

    virtual void BindInt(int nParameter, __int64 nValue) = 0;
    virtual void BindText(int nParameter, std::string_view utf8) = 0;
    virtual void BindNull(int nParameter) = 0;

    /// TRUE with a row, false at the end.
    virtual bool Step() = 0;
    /// Forgets position and parameters.
    virtual void Reset() noexcept = 0;

    virtual bool IsNull(int nColumn) const = 0;
    virtual __int64 GetInt(int nColumn) const = 0;
    /// Valid until the next Step or Reset.
    virtual std::string_view GetText(int nColumn) const = 0;
};

/// An open database and the state of its transaction.
class dbCSession
{
public:
    virtual ~dbCSession() = default;
    dbCSession(const dbCSession&) = delete;
    dbCSession& operator=(const dbCSession&) = delete;

    /// The session that calls go through; throws dbErrNotOpen when there is none. The patient list sets it.
    static dbCSession& Current();
    static dbCSession* CurrentOrNull();
    static void SetCurrent(dbCSession* pSession);

    virtual const CString& GetPath() const = 0;
    /// Runs SQL that is part of the program (never built from data), one statement or several.
    virtual void Execute(const char* pszSql) = 0;
    /// A statement ready for parameters, and its return for later use; `sql` is a string literal.
    virtual std::unique_ptr<dbCCursor> Take(std::string_view sql) = 0;
    virtual void GiveBack(std::string_view sql, std::unique_ptr<dbCCursor> pCursor) noexcept = 0;
    virtual __int64 GetLastRow() const = 0;
    virtual int GetChanges() const = 0;
    /// Changes whenever anyone has changed the database.
    virtual __int64 GetChangeCounter() = 0;
    virtual bool HasTable(LPCTSTR pszTable) = 0;
    /// Whether a commit may return before the disk has it. Outside of transactions.
    virtual void SetRelaxed(bool bRelaxed) = 0;

    /// One state of the database for the reads that follow; false when a transaction gives that already.
    virtual bool BeginReading() = 0;
    virtual void EndReading() noexcept = 0;

    // Transactions, nested ones included; dbCTransaction is what callers use.
    int Begin();
    void Commit(int nLevel);
    void Rollback(int nLevel) noexcept;
    int GetLevel() const
    {
        return static_cast<int>(m_frames.size());
    }
    void AtEnd(std::function<void()> fnRollback, std::function<void()> fnCommit);

protected:
    dbCSession() = default;

    /// Whether the engine has a transaction open: some failures (a full disk) end it.
    virtual bool IsInTransaction() const = 0;
    /// Level 1 takes the write lock; deeper ones are savepoints.
    virtual void BeginLevel(int nLevel) = 0;
    virtual void CommitLevel(int nLevel) = 0;
    virtual void RollbackLevel(int nLevel) noexcept = 0;
    void RequireTransaction() const;

private:
    struct Frame
    {
        std::vector<std::function<void()>> rollback, commit;
    };
    std::vector<Frame> m_frames; ///< one per open transaction, outermost first
};
