#include "suite/patients/store/dbsession.h"

#include <iterator>

namespace
{
dbCSession* g_pCurrent = nullptr;
}

dbCSession& dbCSession::Current()
{
    if (!g_pCurrent)
        dbCException::Throw(dbErrNotOpen);
    return *g_pCurrent;
}

dbCSession* dbCSession::CurrentOrNull()
{
    return g_pCurrent;
}

void dbCSession::SetCurrent(dbCSession* pSession)
{
    g_pCurrent = pSession;
}

void dbCSession::RequireTransaction() const
{
    if (GetLevel() > 0 && !IsInTransaction())
        dbCException::Throw(dbErrInternal, "the transaction was ended by the database");
}

int dbCSession::Begin()
{
    const int nLevel = GetLevel() + 1;
    BeginLevel(nLevel);
    m_frames.emplace_back();
    return nLevel;
}

void dbCSession::Commit(int nLevel)
{
    ASSERT(nLevel == GetLevel());
    RequireTransaction();
    CommitLevel(nLevel);
    Frame frame = std::move(m_frames.back());
    m_frames.pop_back();
    if (nLevel > 1)
    {
        Frame& outer = m_frames.back();
        std::move(frame.rollback.begin(), frame.rollback.end(), std::back_inserter(outer.rollback));
        std::move(frame.commit.begin(), frame.commit.end(), std::back_inserter(outer.commit));
        return;
    }
    for (const auto& fn : frame.commit)
        fn();
}

void dbCSession::Rollback(int nLevel) noexcept
{
    // A transaction left open inside this one goes with it.
    while (GetLevel() >= nLevel)
    {
        const int nInner = GetLevel();
        const Frame frame = std::move(m_frames.back());
        m_frames.pop_back();
        if (IsInTransaction())
            RollbackLevel(nInner);
        for (auto fn = frame.rollback.rbegin(); fn != frame.rollback.rend(); ++fn)
            (*fn)();
    }
}

void dbCSession::AtEnd(std::function<void()> fnRollback, std::function<void()> fnCommit)
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
