#pragma once

// Inside the library only, but for the objects that hold one.

#include "suite/patients/store/dbtransaction.h"

#include <memory>

/// The version of the stored record that an object is based on, 0 for none. Copies of the object share what
/// becomes of it: when the transaction that gave it is rolled back, each of them is based on the version
/// before again.
class dbCRowVersion
{
public:
    __int64 Get() const
    {
        for (const Given* pGiven = m_pGiven.get(); pGiven; pGiven = pGiven->pBefore.get())
            if (!pGiven->bRolledBack)
                return pGiven->nVersion;
        return 0;
    }

    /// As read from the database.
    void SetRead(__int64 nVersion)
    {
        m_pGiven = std::make_shared<Given>(Given{nVersion, nullptr});
    }

    /// As written, 0 for a removed record, within the transaction that does so.
    void SetWritten(__int64 nVersion)
    {
        m_pGiven = std::make_shared<Given>(Given{nVersion, m_pGiven});
        dbCTransaction::AtEnd([p = m_pGiven] { p->bRolledBack = true; },
                              [p = m_pGiven] { p->pBefore.reset(); });
    }

private:
    struct Given
    {
        __int64 nVersion;
        std::shared_ptr<Given> pBefore;
        bool bRolledBack = false;
    };
    std::shared_ptr<Given> m_pGiven;
};
