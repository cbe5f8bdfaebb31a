// SQLite with RAII: one connection that the service's threads share under a lock.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>

namespace svc
{
struct DatabaseError : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

/// Owns the connection and its prepared statements. Whoever uses it holds Lock(); every acknowledged
/// transaction is on the disk.
class Database
{
public:
    /// Opens or creates the file and brings it to the present schema. Throws DatabaseError.
    explicit Database(const std::string& path);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    [[nodiscard]] std::unique_lock<std::recursive_mutex> Lock()
    {
        return std::unique_lock(m_mutex);
    }
    void Execute(const char* sql);
    std::int64_t LastRow() const
    {
        return sqlite3_last_insert_rowid(m_db);
    }
    int Changes() const
    {
        return sqlite3_changes(m_db);
    }

private:
    friend class Statement;
    friend class Transaction;
    sqlite3_stmt* Take(const char* sql);

    sqlite3* m_db = nullptr;
    std::unordered_map<const char*, sqlite3_stmt*> m_statements; ///< keys are string literals
    std::recursive_mutex m_mutex;
    int m_depth = 0; ///< open transactions, one within the other
};

/// A prepared statement for the length of a scope; the SQL is a string literal. Not to be nested with itself.
class Statement
{
public:
    template <class... Values>
    Statement(Database& database, const char* sql, const Values&... values)
        : m_database(database), m_statement(database.Take(sql))
    {
        (Bind(values), ...);
    }
    ~Statement();
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    /// True with a row.
    bool Step();
    /// Runs a statement without rows.
    void Run()
    {
        Step();
    }
    std::int64_t Int(int column) const
    {
        return sqlite3_column_int64(m_statement, column);
    }
    std::string Text(int column) const;

private:
    void Bind(std::int64_t value);
    void Bind(int value)
    {
        Bind(static_cast<std::int64_t>(value));
    }
    void Bind(std::string_view text);
    void Bind(const std::string& text)
    {
        Bind(std::string_view(text));
    }
    void Bind(const char* text)
    {
        Bind(std::string_view(text));
    }
    void Check(int result) const;

    Database& m_database;
    sqlite3_stmt* m_statement;
    int m_bound = 0;
};

/// All or nothing; rolled back unless committed. Holds the database's lock. One within another is part of it:
/// an exception that leaves the inner one has to leave the outer one too.
class Transaction
{
public:
    explicit Transaction(Database& database);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    void Commit();

private:
    Database& m_database;
    std::unique_lock<std::recursive_mutex> m_lock;
    bool m_open = true;
};
} // namespace svc
