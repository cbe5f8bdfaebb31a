#pragma once

// Statements of the current session, and what they read and write; inside the library only.

#include "suite/patients/store/dbsession.h"
#include "suite/util/veldate.h"

#include <memory>
#include <string>
#include <string_view>

/// A prepared statement taken from the session's store for the length of a scope. The SQL must be a string
/// literal. Parameters are bound in order with Bind; columns are read from 0 after Step returned true.
class dbCStatement
{
public:
    explicit dbCStatement(std::string_view sql);
    dbCStatement(dbCSession& session, std::string_view sql);
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
        return m_pCursor->IsNull(nColumn);
    }
    __int64 Int64(int nColumn) const
    {
        return m_pCursor->GetInt(nColumn);
    }
    int Int(int nColumn) const
    {
        return static_cast<int>(Int64(nColumn));
    }
    std::string_view Utf8(int nColumn) const
    {
        return m_pCursor->GetText(nColumn);
    }
    CString Text(int nColumn) const;
    CString TextForDisplay(int nColumn) const;
    velCDate Date(int nColumn) const; ///< date with or without time; null for anything else

private:
    dbCSession& m_session;
    std::string_view m_sql;
    std::unique_ptr<dbCCursor> m_pCursor;
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
    dbCSession& m_session;
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
    dbCSession& m_session;
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
