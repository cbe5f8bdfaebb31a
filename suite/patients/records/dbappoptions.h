#pragma once

#include "suite/patients/store/dblist.h"
#include "suite/patients/store/patdefs.h"

/// One row of the application-options table.
struct dbSApplicationOption
{
    __int64 nRow = 0; ///< 0 until stored
    CString strKey, strValue, strDescription, strEmployeeID, strOldID;
    int nStatus = 1;
    int nForUser = 0;
};

/// The options stored under one key. A key can have several rows.
class VELPAT_API dbCApplicationOptionsContainer : public dbTList<dbSApplicationOption>
{
public:
    /// Reads the rows of a key (exact), in the order of storing.
    explicit dbCApplicationOptionsContainer(LPCTSTR pszKey);

    void InsertRow(const dbSApplicationOption& row);
    void UpdateRow(const dbSApplicationOption& row);

    /// -1 and `strValue` untouched when the key has no row, otherwise 0 and the first row's value.
    static int GetApplicationOption(LPCTSTR pszKey, CString& strValue);
    /// Inserts or updates the key's one row and returns 0; with more than one row writes nothing and returns
    /// -1.
    static int SetApplicationOption(LPCTSTR pszKey, LPCTSTR pszValue);
};
