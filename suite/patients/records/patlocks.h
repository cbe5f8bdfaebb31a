#pragma once

// Who holds which patient; inside the library only.

#include "suite/patients/store/patdefs.h"

/// Has this process's lock of a patient, if it has one, go along with a change of ID within the open
/// transaction. Throws dbErrPatientInUse with the holder's name when another user has locked the new ID.
void patMoveLock(LPCTSTR pszOldID, LPCTSTR pszNewID);

/// Gives back everything this process still holds, when the database is closed. Throws nothing.
void patReleaseOwnLocks() noexcept;
