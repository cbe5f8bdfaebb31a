#include "suite/patients/records/dbrasko.h"

#include "suite/patients/store/dbcore.h"

BOOL dbCRaskoTasksContainer::TableExists()
{
    return dbCSession::Current().HasTable("raskoTasks");
}

int dbCRaskoTasksContainer::ReadAll(dbCStatement& query)
{
    RemoveAll();
    while (query.Step())
    {
        dbSRaskoTask task;
        task.nTask = query.Int64(0);
        task.nType = query.Int(1);
        task.nStatus = query.Int(2);
        task.nTotalBytes = query.Int64(3);
        task.strPatientID = query.Text(4);
        task.strPatientGUID = query.Text(5);
        task.strDescription = query.Text(6);
        task.strData = query.Text(7);
        task.strQueueComputer = query.Text(8);
        task.strReason = query.Text(9);
        Add(task);
    }
    return GetCount();
}

int dbCRaskoTasksContainer::LoadQueuedBy(LPCTSTR pszComputer, __int64 nFirst)
{
    dbCStatement query(
        "SELECT id, type, status, totalBytes, patientID, patientGuid, description, '', queueComputer, reason"
        " FROM raskoTasks WHERE queueComputer = ? AND id >= ? ORDER BY id");
    query.Bind(pszComputer).Bind(nFirst);
    return ReadAll(query);
}

int dbCRaskoTasksContainer::LoadPending(LPCTSTR pszPatientGUID)
{
    dbCStatement query(
        "SELECT id, type, status, totalBytes, patientID, patientGuid, description, data, queueComputer, reason"
        " FROM raskoTasks WHERE patientGuid = ? AND status < ? ORDER BY id");
    query.Bind(pszPatientGUID).Bind(static_cast<int>(dbSRaskoTask::STATUS_FINISHED));
    return ReadAll(query);
}

int dbCRaskoTasksContainer::LoadPendingOfComputer(LPCTSTR pszComputer)
{
    dbCStatement query(
        "SELECT id, type, status, totalBytes, patientID, patientGuid, description, data, queueComputer, reason"
        " FROM raskoTasks WHERE queueComputer = ? COLLATE NOCASE AND status < ? ORDER BY id");
    query.Bind(pszComputer).Bind(static_cast<int>(dbSRaskoTask::STATUS_FINISHED));
    return ReadAll(query);
}

BOOL dbCRaskoTasksContainer::FindRow(__int64 nTask, dbSRaskoTask& task)
{
    dbCStatement query(
        "SELECT id, type, status, totalBytes, patientID, patientGuid, description, data, queueComputer, reason"
        " FROM raskoTasks WHERE id = ?");
    query.Bind(nTask);
    dbCRaskoTasksContainer rows;
    if (rows.ReadAll(query) == 0)
        return FALSE;
    task = rows[0];
    return TRUE;
}

void dbCRaskoTasksContainer::UpdateRow(const dbSRaskoTask& task)
{
    dbCStatement update("UPDATE raskoTasks SET status = ?, totalBytes = ?, reason = ? WHERE id = ?");
    update.Bind(task.nStatus).Bind(task.nTotalBytes).Bind(task.strReason).Bind(task.nTask).Run();
}

void dbCRaskoTasksContainer::InsertRow(dbSRaskoTask& task)
{
    dbCStatement insert(
        "INSERT INTO raskoTasks (type, patientID, patientGuid, description, data, status, totalBytes,"
        " queueComputer, time) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)");
    insert.Bind(task.nType)
        .Bind(task.strPatientID)
        .Bind(task.strPatientGUID)
        .Bind(task.strDescription)
        .Bind(task.strData);
    insert.Bind(task.nStatus)
        .Bind(task.nTotalBytes)
        .Bind(task.strQueueComputer)
        .BindDateTime(COleDateTime::GetCurrentTime());
    insert.Run();
    task.nTask = dbCSession::Current().GetLastRow();
}

BOOL dbCServicePatients::FindByGUID(LPCTSTR pszPatientGUID, dbSServicePatient& row)
{
    dbCStatement query("SELECT serviceID, serviceGuid, ownerGuid FROM servicePatients WHERE patientGuid = ?");
    query.Bind(pszPatientGUID);
    if (!query.Step())
        return FALSE;
    row = {pszPatientGUID, query.Text(0), query.Text(1), query.Text(2)};
    return TRUE;
}

BOOL dbCServicePatients::FindByServiceID(LPCTSTR pszServiceID, dbSServicePatient& row)
{
    dbCStatement query("SELECT patientGuid, serviceGuid, ownerGuid FROM servicePatients WHERE serviceID = ?");
    query.Bind(pszServiceID);
    if (*pszServiceID == 0 || !query.Step())
        return FALSE;
    row = {query.Text(0), pszServiceID, query.Text(1), query.Text(2)};
    return TRUE;
}

void dbCServicePatients::Store(const dbSServicePatient& row)
{
    dbCStatement write(
        "INSERT INTO servicePatients (patientGuid, serviceID, serviceGuid, ownerGuid) VALUES (?, ?, ?, ?)"
        " ON CONFLICT DO UPDATE SET serviceID = excluded.serviceID, serviceGuid = excluded.serviceGuid,"
        " ownerGuid = CASE excluded.ownerGuid WHEN '' THEN ownerGuid ELSE excluded.ownerGuid END");
    write.Bind(row.strPatientGUID)
        .Bind(row.strServiceID)
        .Bind(row.strServiceGUID)
        .Bind(row.strOwnerGUID)
        .Run();
}
