#include "suite/patients/records/dbappoptions.h"

#include "suite/patients/store/dbcore.h"
#include "suite/patients/store/dbtransaction.h"

dbCApplicationOptionsContainer::dbCApplicationOptionsContainer(LPCTSTR pszKey)
{
    dbCStatement query(
        "SELECT id, optionKey, value, description, status, forUser, employeeID, oldID FROM applicationOptions"
        " WHERE optionKey = ? ORDER BY id");
    query.Bind(pszKey);
    while (query.Step())
    {
        dbSApplicationOption row;
        row.nRow = query.Int64(0);
        row.strKey = query.Text(1);
        row.strValue = query.Text(2);
        row.strDescription = query.Text(3);
        row.nStatus = query.Int(4);
        row.nForUser = query.Int(5);
        row.strEmployeeID = query.Text(6);
        row.strOldID = query.Text(7);
        Add(row);
    }
}

void dbCApplicationOptionsContainer::InsertRow(const dbSApplicationOption& row)
{
    dbCStatement insert(
        "INSERT INTO applicationOptions (optionKey, value, description, status, forUser, employeeID, oldID)"
        " VALUES (?, ?, ?, ?, ?, ?, ?)");
    insert.Bind(row.strKey).Bind(row.strValue).Bind(row.strDescription).Bind(row.nStatus).Bind(row.nForUser);
    insert.Bind(row.strEmployeeID).Bind(row.strOldID).Run();
    dbSApplicationOption stored = row;
    stored.nRow = dbCSession::Current().GetLastRow();
    Add(stored);
}

void dbCApplicationOptionsContainer::UpdateRow(const dbSApplicationOption& row)
{
    dbCStatement update(
        "UPDATE applicationOptions SET value = ?, description = ?, status = ?, forUser = ?, employeeID = ?,"
        " oldID = ? WHERE id = ?");
    update.Bind(row.strValue)
        .Bind(row.strDescription)
        .Bind(row.nStatus)
        .Bind(row.nForUser)
        .Bind(row.strEmployeeID);
    update.Bind(row.strOldID).Bind(row.nRow).Run();
    if (dbCSession::Current().GetChanges() == 0)
        dbCException::Throw(dbErrNotFound, row.strKey);
    for (dbSApplicationOption& own : *this)
        if (own.nRow == row.nRow)
            own = row;
}

int dbCApplicationOptionsContainer::GetApplicationOption(LPCTSTR pszKey, CString& strValue)
{
    const dbCApplicationOptionsContainer options(pszKey);
    if (options.IsEmpty())
        return -1;
    strValue = options[0].strValue;
    return 0;
}

int dbCApplicationOptionsContainer::SetApplicationOption(LPCTSTR pszKey, LPCTSTR pszValue)
{
    dbCTransaction transaction;
    dbCApplicationOptionsContainer options(pszKey);
    if (options.GetCount() > 1)
        return -1;
    dbSApplicationOption row = options.IsEmpty() ? dbSApplicationOption() : options[0];
    row.strKey = pszKey;
    row.strValue = pszValue;
    if (row.nRow == 0)
        options.InsertRow(row);
    else
        options.UpdateRow(row);
    transaction.Commit();
    return 0;
}
