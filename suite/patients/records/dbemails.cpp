#include "suite/patients/records/dbemails.h"

#include "suite/patients/records/dbpatientstore.h"
#include "suite/patients/records/dbpersonstore.h"
#include "suite/patients/store/dbtransaction.h"
#include "suite/patients/store/patmodule.h"

BOOL dbCPersonEmails::TableExists()
{
    return dbCSession::Current().HasTable("emails");
}

void dbCPersonEmails::LoadByPersonGUID(LPCTSTR pszPersonGUID)
{
    RemoveAll();
    const dbCReadScope scope;
    dbCStatement query("SELECT email, 0 AS place FROM persons WHERE guid = ? AND email <> '' UNION ALL"
                       " SELECT e.address, e.position FROM persons p JOIN emails e ON e.person = p.id"
                       " WHERE p.guid = ? ORDER BY place");
    query.Bind(pszPersonGUID).Bind(pszPersonGUID);
    while (query.Step())
        Add(query.Text(0));
}

void dbCPersonEmails::Save(LPCTSTR pszPersonGUID)
{
    dbCTransaction transaction;
    const __int64 nPerson = dbFindPerson(pszPersonGUID);
    if (nPerson == 0)
        dbCException::Throw(dbErrNotFound, pszPersonGUID);
    for (int i = GetCount() - 1; i >= 0; --i)
        if (GetAt(i).Trim().IsEmpty())
            RemoveAt(i);
    dbCStatement("UPDATE persons SET email = ? WHERE id = ?")
        .Bind(IsEmpty() ? CString() : GetAt(0))
        .Bind(nPerson)
        .Run();
    dbCStatement("DELETE FROM emails WHERE person = ?").Bind(nPerson).Run();
    dbCStatement insert("INSERT INTO emails (person, position, address) VALUES (?, ?, ?)");
    for (int i = 1; i < GetCount(); ++i)
        insert.Bind(nPerson).Bind(i).Bind(GetAt(i)).Run();
    dbCStatement("UPDATE doctors SET rowVersion = ? WHERE person = ?")
        .Bind(dbNextNumber(dbCounter::Versions))
        .Bind(nPerson)
        .Run();
    transaction.Commit();
}

BOOL dbCPatientEmailsContainer::TableExists()
{
    return dbCSession::Current().HasTable("patientEmails");
}

int dbCPatientEmailsContainer::LoadByPatID(LPCTSTR pszPatientGUID)
{
    RemoveAll();
    if (!TableExists())
        return 0;
    dbCStatement query("SELECT e.personID, e.category, e.type, e.salutation, e.firstName, e.lastName, e.address"
                       " FROM persons p JOIN patientEmails e ON e.patient = p.id WHERE p.guid = ?"
                       " ORDER BY e.position");
    query.Bind(pszPatientGUID);
    while (query.Step())
        Add({query.Text(0), query.Text(1), query.Text(2), query.Text(3), query.Text(4), query.Text(5),
             query.Text(6)});
    return GetCount();
}

void dbCPatientEmailsContainer::Save(LPCTSTR pszPatientGUID) const
{
    dbCTransaction transaction;
    const __int64 nPatient = dbCPatientStore::FindRow(pszPatientGUID);
    if (nPatient == 0 || !TableExists())
        dbCException::Throw(dbErrNotFound, pszPatientGUID);
    dbCStatement("DELETE FROM patientEmails WHERE patient = ?").Bind(nPatient).Run();
    dbCStatement insert("INSERT INTO patientEmails (patient, position, personID, category, type, salutation,"
                        " firstName, lastName, address) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)");
    int nPosition = 0;
    for (const dbSPatientEmail& row : *this)
    {
        insert.Bind(nPatient).Bind(nPosition++).Bind(row.strPersonID).Bind(row.strCategory).Bind(row.strType);
        insert.Bind(row.strSalutation).Bind(row.strFirstname).Bind(row.strLastname).Bind(row.strAddress).Run();
    }
    transaction.Commit();
}

CString dbGetComputerName()
{
    return patComputerName();
}
