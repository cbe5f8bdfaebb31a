#include "suite/patients/store/dbtransaction.h"

#include "suite/patients/store/dbcore.h"

dbCTransaction::dbCTransaction() : m_nLevel(dbCSession::Current().Begin())
{
}

dbCTransaction::~dbCTransaction()
{
    Rollback();
}

void dbCTransaction::Commit()
{
    if (m_nLevel == 0)
        return;
    try
    {
        dbCSession::Current().Commit(m_nLevel);
    }
    catch (...)
    {
        Rollback();
        throw;
    }
    m_nLevel = 0;
}

void dbCTransaction::Rollback()
{
    if (m_nLevel == 0)
        return;
    // The database may have been closed meanwhile, which rolls back too.
    if (dbCSession* pConnection = dbCSession::CurrentOrNull())
        pConnection->Rollback(m_nLevel);
    m_nLevel = 0;
}

BOOL dbCTransaction::IsActive()
{
    const dbCSession* pConnection = dbCSession::CurrentOrNull();
    return pConnection && pConnection->GetLevel() > 0;
}

void dbCTransaction::AtEnd(std::function<void()> fnRollback, std::function<void()> fnCommit)
{
    dbCSession::Current().AtEnd(std::move(fnRollback), std::move(fnCommit));
}
