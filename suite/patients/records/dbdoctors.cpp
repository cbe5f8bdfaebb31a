#include "suite/patients/records/dbdoctorrows.h"

#include "suite/patients/records/dbpersonstore.h"
#include "suite/patients/store/dbtext.h"
#include "suite/patients/store/dbtransaction.h"

namespace
{
/// Row of a doctor type, 0 for an empty name; a name that is not in the list yet is added to it.
__int64 RequireType(const CString& strType)
{
    const std::string key = dbFold(strType.GetString());
    if (key.empty())
        return 0;
    dbCStatement query("SELECT id FROM doctorTypes WHERE nameKey = ?");
    query.BindUtf8(key);
    if (query.Step())
        return query.Int64(0);
    dbCStatement("INSERT INTO doctorTypes (name, nameKey) VALUES (?, ?)").Bind(strType).BindUtf8(key).Run();
    return dbCSession::Current().GetLastRow();
}
} // namespace

BOOL dbCDoctor::Load(LPCTSTR pszGUID)
{
    const dbCReadScope scope;
    dbCStatement query(
        "SELECT d.person, d.treating, d.rowVersion, t.name FROM persons p JOIN doctors d ON d.person = p.id"
        " LEFT JOIN doctorTypes t ON t.id = d.type WHERE p.guid = ?");
    query.Bind(pszGUID);
    if (!query.Step())
        return FALSE;
    const dbCPerson person = dbLoadPerson(query.Int64(0));
    m_strType = query.Text(3);
    m_bTreating = query.Int(1) != 0;
    m_version.SetRead(query.Int64(2));
    m_person = person;
    return TRUE;
}

void dbCDoctor::Save()
{
    if (dbFold(m_person.GetLastname().GetString()).empty())
        dbCException::Throw(dbErrInvalid);
    const bool bNew = m_version.Get() == 0;
    dbCPerson person = m_person;
    if (person.GetPersonGUID().IsEmpty())
        person.SetPersonGUID(dbNewGUID());

    dbCTransaction transaction;
    __int64 nRow = 0;
    if (!bNew)
    {
        dbCStatement query("SELECT d.person FROM persons p JOIN doctors d ON d.person = p.id"
                           " WHERE p.guid = ? AND d.rowVersion = ?");
        query.Bind(person.GetPersonGUID()).Bind(m_version.Get());
        if (!query.Step())
            dbCException::Throw(dbErrChangedElsewhere, person.GetLastname());
        nRow = query.Int64(0);
    }
    nRow = dbSavePerson(nRow, person);
    const __int64 nVersion = dbNextNumber(dbCounter::Versions);
    dbCStatement write(
        bNew ? std::string_view("INSERT INTO doctors (type, treating, lastKey, firstKey, rowVersion, person)"
                                " VALUES (?, ?, ?, ?, ?, ?)")
             : std::string_view("UPDATE doctors SET type = ?, treating = ?, lastKey = ?, firstKey = ?,"
                                " rowVersion = ? WHERE person = ?"));
    write.BindRow(RequireType(m_strType))
        .Bind(m_bTreating ? 1 : 0)
        .BindUtf8(dbFold(person.GetLastname().GetString()));
    write.BindUtf8(dbFold(person.GetFirstname().GetString())).Bind(nVersion).Bind(nRow).Run();
    m_version.SetWritten(nVersion);
    transaction.Commit();
    m_person = person;
}

void dbCDoctor::Delete()
{
    dbCTransaction transaction;
    // Referrals and patients refer to the doctor and so refuse; nothing is taken along silently.
    if (const __int64 nRow = dbFindPerson(GetGUID()))
        dbDeletePerson(nRow);
    m_version.SetWritten(0);
    transaction.Commit();
}

namespace
{
constexpr std::string_view DOCTORS_BY_NAME =
    "SELECT p.guid, p.title, p.firstName, p.lastName, t.name, d.treating FROM doctors d JOIN persons p ON "
    "p.id = d.person"
    " LEFT JOIN doctorTypes t ON t.id = d.type ORDER BY d.lastKey, d.firstKey, d.person";
constexpr std::string_view DOCTORS_AS_STORED = "SELECT p.guid, p.title, p.firstName, p.lastName, t.name, "
                                               "d.treating FROM doctors d JOIN persons p ON p.id = d.person"
                                               " LEFT JOIN doctorTypes t ON t.id = d.type ORDER BY d.person";
} // namespace

std::deque<dbSDoctorRow> dbReadDoctors(int nOrder)
{
    dbCStatement query(nOrder == dbDoctorsByName ? DOCTORS_BY_NAME : DOCTORS_AS_STORED);
    const auto text = [&](int nColumn) { return dbFromUtf8ForDisplay(query.Utf8(nColumn)); };
    std::deque<dbSDoctorRow> rows;
    while (query.Step())
        rows.push_back({text(0), text(1), text(2), text(3), text(4), query.Int(5) != 0});
    return rows;
}

void dbCDoctors::RegisterEnumCallback(dbDOCTORENUMPROC pfnCallback, LPVOID pContext)
{
    m_pfnCallback = pfnCallback;
    m_pContext = pContext;
}

int dbCDoctors::Enum(int nOrder)
{
    m_rows = dbReadDoctors(nOrder);
    for (const dbSDoctorRow& row : m_rows)
        if (m_pfnCallback && !m_pfnCallback(row, m_pContext))
            break;
    return static_cast<int>(m_rows.size());
}

// dbCDoctorTypes

void dbCDoctorTypes::Load()
{
    RemoveAll();
    dbCStatement query("SELECT name FROM doctorTypes ORDER BY nameKey");
    while (query.Step())
        Add(query.Text(0));
}

BOOL dbCDoctorTypes::AddDoctorType(LPCTSTR pszName)
{
    const std::string key = dbFold(pszName);
    if (key.empty())
        return FALSE;
    dbCStatement("INSERT INTO doctorTypes (name, nameKey) VALUES (?, ?) ON CONFLICT DO NOTHING")
        .Bind(pszName)
        .BindUtf8(key)
        .Run();
    return dbCSession::Current().GetChanges() > 0;
}

BOOL dbCDoctorTypes::ModifyDoctorType(LPCTSTR pszOldName, LPCTSTR pszNewName)
{
    const std::string oldKey = dbFold(pszOldName);
    const std::string newKey = dbFold(pszNewName);
    if (newKey.empty())
        return FALSE;
    dbCStatement("UPDATE OR IGNORE doctorTypes SET name = ?, nameKey = ? WHERE nameKey = ?")
        .Bind(pszNewName)
        .BindUtf8(newKey)
        .BindUtf8(oldKey)
        .Run();
    return dbCSession::Current().GetChanges() > 0;
}

BOOL dbCDoctorTypes::DeleteDoctorType(LPCTSTR pszName)
{
    dbCStatement("DELETE FROM doctorTypes WHERE nameKey = ?").BindUtf8(dbFold(pszName)).Run();
    return dbCSession::Current().GetChanges() > 0;
}
