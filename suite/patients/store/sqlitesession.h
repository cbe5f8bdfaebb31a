#pragma once

// The session with an SQLite file; inside the library only.

#include "suite/patients/store/dbsession.h"

#include <sqlite3.h>

#include <string_view>
#include <unordered_map>
#include <vector>

/// Whether a file of this full path, on a drive of this type (GetDriveType), lies on another computer.
bool dbIsRemote(LPCTSTR pszFullPath, UINT nDriveType);

/// Owns the SQLite handle and the prepared statements, which are made once and kept.
class dbCSqliteSession final : public dbCSession
{
public:
    enum class Mode
    {
        Open,
        Create
    };

    /// Opens the file without changing it, but for a write-ahead log that has to go. Throws dbCException*.
    dbCSqliteSession(LPCTSTR pszPath, Mode mode);
    ~dbCSqliteSession() override;

    /// Whether the file is reached over the network: the memory that processes share for a write-ahead log
    /// then does not work, and a rollback journal takes its place.
    bool IsShared() const
    {
        return m_bShared;
    }
    /// The first column of a query's first row, 0 without one.
    __int64 QueryInt(const char* pszSql);

    const CString& GetPath() const override
    {
        return m_strPath;
    }
    void Execute(const char* pszSql) override;
    std::unique_ptr<dbCCursor> Take(std::string_view sql) override;
    void GiveBack(std::string_view sql, std::unique_ptr<dbCCursor> pCursor) noexcept override;
    __int64 GetLastRow() const override;
    int GetChanges() const override;
    __int64 GetChangeCounter() override;
    bool HasTable(LPCTSTR pszTable) override;
    void SetRelaxed(bool bRelaxed) override;
    bool BeginReading() override;
    void EndReading() noexcept override;

private:
    friend class dbCSqliteCursor;

    bool IsInTransaction() const override;
    void BeginLevel(int nLevel) override;
    void CommitLevel(int nLevel) override;
    void RollbackLevel(int nLevel) noexcept override;

    /// Throws what a failed SQLite call means.
    [[noreturn]] void ThrowError(int nResult) const;
    void LeaveWriteAheadLog();

    sqlite3* m_pDb = nullptr;
    CString m_strPath;
    bool m_bShared;
    /// Keys are string literals.
    std::unordered_map<std::string_view, std::vector<std::unique_ptr<dbCCursor>>> m_free;
};
