#pragma once

// Reading and writing person rows; inside the library only.

#include "suite/patients/store/dbcore.h"
#include "suite/patients/records/dbperson.h"

/// Row number of the person with this GUID, 0 when there is none.
__int64 dbFindPerson(LPCTSTR pszGUID);

/// Reads a person with addresses and phones.
dbCPerson dbLoadPerson(__int64 nRow);

/// Writes a person, a new row when `nRow` is 0, and returns the row. The GUID must be set.
__int64 dbSavePerson(__int64 nRow, const dbCPerson& person);

/// Removes a person that nothing refers to any more (dbErrInUse otherwise).
void dbDeletePerson(__int64 nRow);
