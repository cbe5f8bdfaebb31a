#include "suite/patients/records/dboffices.h"

#include "suite/patients/store/dbcore.h"
#include "suite/patients/store/dbtext.h"

namespace
{
std::string RequiredKey(LPCTSTR pszName)
{
    std::string key = dbFold(pszName);
    if (key.empty())
        dbCException::Throw(dbErrInvalid);
    return key;
}

CString NameOf(std::string_view sql, LPCTSTR pszGUID)
{
    dbCStatement query(sql);
    query.Bind(pszGUID);
    return query.Step() ? query.Text(0) : CString();
}

/// Runs a change of one row; throws when there is no such row.
void Change(dbCStatement& change, LPCTSTR pszGUID)
{
    change.Bind(pszGUID).Run();
    if (dbCSession::Current().GetChanges() == 0)
        dbCException::Throw(dbErrNotFound, pszGUID);
}

void Rename(std::string_view sql, LPCTSTR pszGUID, LPCTSTR pszName)
{
    dbCStatement change(sql);
    change.Bind(pszName).BindUtf8(RequiredKey(pszName));
    Change(change, pszGUID);
}

void Delete(std::string_view sql, LPCTSTR pszGUID)
{
    dbCStatement change(sql);
    Change(change, pszGUID);
}
} // namespace

// Offices

void dbCOfficeLocations::Load()
{
    RemoveAll();
    dbCStatement query("SELECT guid, name FROM offices ORDER BY nameKey");
    while (query.Step())
    {
        dbCOfficeLocation office;
        office.SetOfficeID(query.Text(0));
        office.SetOffice(query.Text(1));
        Add(office);
    }
}

CString dbCOfficeLocations::GetOffice(LPCTSTR pszOfficeID)
{
    return NameOf("SELECT name FROM offices WHERE guid = ?", pszOfficeID);
}

CString dbCOfficeLocations::AddOffice(LPCTSTR pszName)
{
    CString strID = dbNewGUID();
    dbCStatement("INSERT INTO offices (guid, name, nameKey) VALUES (?, ?, ?)")
        .Bind(strID)
        .Bind(pszName)
        .BindUtf8(RequiredKey(pszName))
        .Run();
    return strID;
}

void dbCOfficeLocations::RenameOffice(LPCTSTR pszOfficeID, LPCTSTR pszName)
{
    Rename("UPDATE offices SET name = ?, nameKey = ? WHERE guid = ?", pszOfficeID, pszName);
}

void dbCOfficeLocations::DeleteOffice(LPCTSTR pszOfficeID)
{
    Delete("DELETE FROM offices WHERE guid = ?", pszOfficeID);
}

// Statuses

void dbCPatientStatusList::Load()
{
    RemoveAll();
    dbCStatement query("SELECT guid, name, shown FROM statuses ORDER BY nameKey");
    while (query.Step())
    {
        dbCPatientStatus status;
        status.SetStatusID(query.Text(0));
        status.SetStatus(query.Text(1));
        status.SetShown(query.Int(2) != 0);
        Add(status);
    }
}

CString dbCPatientStatusList::GetStatus(LPCTSTR pszStatusID)
{
    return NameOf("SELECT name FROM statuses WHERE guid = ?", pszStatusID);
}

CString dbCPatientStatusList::AddStatus(LPCTSTR pszName, BOOL bShown)
{
    CString strID = dbNewGUID();
    dbCStatement("INSERT INTO statuses (guid, name, nameKey, shown) VALUES (?, ?, ?, ?)")
        .Bind(strID)
        .Bind(pszName)
        .BindUtf8(RequiredKey(pszName))
        .Bind(bShown ? 1 : 0)
        .Run();
    return strID;
}

void dbCPatientStatusList::RenameStatus(LPCTSTR pszStatusID, LPCTSTR pszName)
{
    Rename("UPDATE statuses SET name = ?, nameKey = ? WHERE guid = ?", pszStatusID, pszName);
}

void dbCPatientStatusList::DeleteStatus(LPCTSTR pszStatusID)
{
    Delete("DELETE FROM statuses WHERE guid = ?", pszStatusID);
}
