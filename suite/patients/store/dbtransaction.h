#pragma once

#include "suite/patients/store/patdefs.h"

#include <functional>

/// Everything done on the current database between construction and Commit() happens at once or not at all.
/// Rolls back when it is destroyed uncommitted. Transactions nest: an inner one can be rolled back by itself,
/// an inner Commit becomes lasting with the outermost one. The outermost takes the write lock at once, so
/// that what is read inside stays true until the end; waits up to the database timeout for it (dbErrLocked).
class VELPAT_API dbCTransaction
{
public:
    dbCTransaction();
    ~dbCTransaction();
    dbCTransaction(const dbCTransaction&) = delete;
    dbCTransaction& operator=(const dbCTransaction&) = delete;

    /// Makes the changes lasting. Throws dbCException*; the transaction is then rolled back.
    void Commit();

    /// Undoes the changes now; a second call and the destructor then do nothing.
    void Rollback();

    static BOOL IsActive();

    /// Registers an action for the end of the innermost open transaction, and of those around it: the first
    /// runs when that transaction is rolled back (last registered first), the second when the outermost one
    /// has been committed. Neither may throw. With no open transaction the commit action runs at once.
    static void AtEnd(std::function<void()> fnRollback, std::function<void()> fnCommit = nullptr);

private:
    int m_nLevel; ///< nesting depth of this transaction, 1 for the outermost; 0 when it has ended
};
