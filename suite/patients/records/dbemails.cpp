#include "suite/patients/records/dbemails.h"

#include "suite/patients/records/dbpatientstore.h"
#include "suite/patients/records/dbpersonstore.h"
#include "suite/patients/store/dbtransaction.h"
#include "suite/patients/store/patmodule.h"

#include <algorithm>

BOOL dbCPersonEmails::TableExists()
{
    return dbCSession::Current().HasTable("emails");
}

void dbCPersonEmails::LoadByPersonGUID(LPCTSTR pszPersonGUID)
{
    RemoveAll();
    const dbCReadScope scope;
    dbCStatement first("SELECT email FROM persons WHERE guid = ? AND email <> ''");
    first.Bind(pszPersonGUID);
    if (first.Step())
        Add(first.Text(0));
    if (!TableExists())
        return;
    dbCStatement further("SELECT e.address FROM persons p JOIN emails e ON e.person = p.id WHERE p.guid = ?"
                         " ORDER BY e.position");
    further.Bind(pszPersonGUID);
    while (further.Step())
        Add(further.Text(0));
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

void dbCPatientEmailsContainer::AddPerson(const dbCPerson& person, LPCTSTR pszCategory)
{
    dbCPersonEmails emails;
    emails.LoadByPersonGUID(person.GetPersonGUID());
    for (const CString& strAddress : emails)
        Add({person.GetPersonGUID(), pszCategory, "", person.GetSalutation(), person.GetFirstname(),
             person.GetLastname(), strAddress});
}

BOOL dbCPatientEmailsContainer::Contains(const dbSPatientEmail& row) const
{
    return std::any_of(begin(), end(), [&](const dbSPatientEmail& own) {
        return own.strPersonID == row.strPersonID && own.strAddress == row.strAddress;
    });
}

void dbCPatientEmailsContainer::LoadRecords(__int64 nPatient)
{
    AddPerson(dbLoadPerson(nPatient), "patient");
    dbCStatement guardian("SELECT person FROM patientPersons WHERE patient = ? AND kind = ?");
    guardian.Bind(nPatient).Bind(dbPersonGuardian);
    if (guardian.Step())
        AddPerson(dbLoadPerson(guardian.Int64(0)), "guardian");
}

void dbCPatientEmailsContainer::LoadOthers(__int64 nPatient)
{
    dbCStatement query("SELECT personID, category, type, salutation, firstName, lastName, address"
                       " FROM patientEmails WHERE patient = ? ORDER BY position");
    query.Bind(nPatient);
    while (query.Step())
    {
        const dbSPatientEmail row{query.Text(0), query.Text(1), query.Text(2), query.Text(3),
                                  query.Text(4), query.Text(5), query.Text(6)};
        // A record may have got the address since.
        if (!Contains(row))
            Add(row);
    }
}

int dbCPatientEmailsContainer::LoadByPatID(LPCTSTR pszPatientGUID)
{
    RemoveAll();
    const dbCReadScope scope;
    const __int64 nPatient = dbCPatientStore::FindRow(pszPatientGUID);
    if (nPatient == 0 || !TableExists())
        return 0;
    LoadRecords(nPatient);
    LoadOthers(nPatient);
    return GetCount();
}

int dbCPatientEmailsContainer::LoadOthersByPatID(LPCTSTR pszPatientGUID)
{
    RemoveAll();
    const dbCReadScope scope;
    const __int64 nPatient = dbCPatientStore::FindRow(pszPatientGUID);
    if (nPatient != 0 && TableExists())
        LoadOthers(nPatient);
    return GetCount();
}

void dbCPatientEmailsContainer::Save(LPCTSTR pszPatientGUID) const
{
    dbCTransaction transaction;
    const __int64 nPatient = dbCPatientStore::FindRow(pszPatientGUID);
    if (nPatient == 0 || !TableExists())
        dbCException::Throw(dbErrNotFound, pszPatientGUID);
    dbCPatientEmailsContainer records;
    records.LoadRecords(nPatient);
    dbCStatement("DELETE FROM patientEmails WHERE patient = ?").Bind(nPatient).Run();
    dbCStatement insert("INSERT INTO patientEmails (patient, position, personID, category, type, salutation,"
                        " firstName, lastName, address) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)");
    int nPosition = 0;
    for (const dbSPatientEmail& row : *this)
    {
        if (records.Contains(row))
            continue;
        insert.Bind(nPatient).Bind(nPosition++).Bind(row.strPersonID).Bind(row.strCategory).Bind(row.strType);
        insert.Bind(row.strSalutation).Bind(row.strFirstname).Bind(row.strLastname).Bind(row.strAddress).Run();
    }
    transaction.Commit();
}

CString dbGetComputerName()
{
    return patComputerName();
}
