#include "suite/patients/store/dbcore.h"

#include "suite/patients/store/dbtext.h"

#include <algorithm>
#include <cstdio>

namespace
{
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
} // namespace

// dbCStatement

dbCStatement::dbCStatement(std::string_view sql) : dbCStatement(dbCSession::Current(), sql)
{
}

dbCStatement::dbCStatement(dbCSession& session, std::string_view sql)
    : m_session(session), m_sql(sql), m_pCursor(session.Take(sql))
{
}

dbCStatement::~dbCStatement()
{
    m_session.GiveBack(m_sql, std::move(m_pCursor));
}

dbCStatement& dbCStatement::Bind(__int64 nValue)
{
    m_pCursor->BindInt(m_nBound++, nValue);
    return *this;
}

dbCStatement& dbCStatement::Bind(const char* pszText)
{
    return BindUtf8(dbToUtf8(pszText ? pszText : ""));
}

dbCStatement& dbCStatement::BindUtf8(std::string_view utf8)
{
    m_pCursor->BindText(m_nBound++, utf8);
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
    m_pCursor->BindNull(m_nBound++);
    return *this;
}

bool dbCStatement::Step()
{
    return m_pCursor->Step();
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
    m_pCursor->Reset();
    m_nBound = 0;
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

dbCReadScope::dbCReadScope() : m_session(dbCSession::Current()), m_bOwn(m_session.BeginReading())
{
}

dbCReadScope::~dbCReadScope()
{
    if (m_bOwn)
        m_session.EndReading();
}

// dbCRelaxedCommits

dbCRelaxedCommits::dbCRelaxedCommits()
    : m_session(dbCSession::Current()), m_bOwn(m_session.GetLevel() == 0)
{
    if (m_bOwn)
        m_session.SetRelaxed(true);
}

dbCRelaxedCommits::~dbCRelaxedCommits()
{
    try
    {
        if (m_bOwn)
            m_session.SetRelaxed(false);
    }
    catch (CException* e)
    {
        e->Delete();
    }
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
