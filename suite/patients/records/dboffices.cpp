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

// Statuses

void dbCPatientStatusList::Load()
{
    RemoveAll();
    dbCStatement query("SELECT guid, name FROM statuses ORDER BY nameKey");
    while (query.Step())
    {
        dbCPatientStatus status;
        status.SetStatusID(query.Text(0));
        status.SetStatus(query.Text(1));
        Add(status);
    }
}

CString dbCPatientStatusList::GetStatus(LPCTSTR pszStatusID)
{
    return NameOf("SELECT name FROM statuses WHERE guid = ?", pszStatusID);
}

CString dbCPatientStatusList::AddStatus(LPCTSTR pszName)
{
    CString strID = dbNewGUID();
    dbCStatement("INSERT INTO statuses (guid, name, nameKey, shown) VALUES (?, ?, ?, 1)")
        .Bind(strID)
        .Bind(pszName)
        .BindUtf8(RequiredKey(pszName))
        .Run();
    return strID;
}
