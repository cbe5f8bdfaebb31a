#include "suite/patients/records/dbtreatment.h"

#include "suite/patients/store/dbcore.h"
#include "suite/patients/store/dbtransaction.h"

dbCTreatmentStatusContainer::dbCTreatmentStatusContainer(BOOL bActiveOnly)
{
    dbCStatement query("SELECT code, description FROM treatments WHERE active <> 0 OR ? = 0 ORDER BY id");
    query.Bind(bActiveOnly ? 1 : 0);
    while (query.Step())
    {
        dbCTreatmentStatusRow row;
        row.SetCode(query.Text(0));
        row.SetDescription(query.Text(1));
        Add(row);
    }
}

void dbCTreatmentStatusContainer::AddTreatment(LPCTSTR pszCode, LPCTSTR pszDescription, BOOL bActive)
{
    dbCStatement("INSERT INTO treatments (code, description, active) VALUES (?, ?, ?)")
        .Bind(pszCode)
        .Bind(pszDescription)
        .Bind(bActive ? 1 : 0)
        .Run();
}

void dbCPatientTreatmentStatusHistoryTable::LoadByPatID(LPCTSTR pszPatientGUID)
{
    RemoveAll();
    dbCStatement query("SELECT h.guid, h.description, h.code, h.active, h.time FROM persons p"
                       " JOIN treatmentHistory h ON h.patient = p.id WHERE p.guid = ? ORDER BY h.time, h.id");
    query.Bind(pszPatientGUID);
    while (query.Step())
    {
        dbCPatientTreatmentStatusHistoryRow row;
        row.SetptshID(query.Text(0));
        row.SetpatID(pszPatientGUID);
        row.SetDescription(query.Text(1));
        row.SetNewCode(query.Text(2));
        row.SetActive(query.Int(3));
        row.SetDateTime(query.Date(4));
        Add(row);
    }
}

void dbCPatientTreatmentStatusHistoryTable::InsertRow(dbCPatientTreatmentStatusHistoryRow& row)
{
    const CString strID = dbNewGUID();
    dbCStatement insert(
        "INSERT INTO treatmentHistory (guid, patient, description, code, active, time)"
        " SELECT ?, t.person, ?, ?, ?, ? FROM persons p JOIN patients t ON t.person = p.id WHERE p.guid = ?");
    insert.Bind(strID).Bind(row.GetDescription()).Bind(row.GetNewCode()).Bind(row.GetActive());
    insert.BindDateTime(row.GetDateTime()).Bind(row.GetpatID()).Run();
    if (dbCSession::Current().GetChanges() == 0)
        dbCException::Throw(dbErrNotFound, row.GetpatID());
    row.SetptshID(strID);
    Add(row);
}

BOOL dbCTimepointsContainer::LoadByPatID(LPCTSTR pszPatientGUID, int nInactive)
{
    RemoveAll();
    dbCStatement query(
        "SELECT t.guid, t.name, t.date, h.guid, t.number, t.active FROM persons p"
        " JOIN timepoints t ON t.patient = p.id LEFT JOIN treatmentHistory h ON h.id = t.treatment"
        " WHERE p.guid = ? AND (? = 0 OR t.active = 0) ORDER BY t.position");
    query.Bind(pszPatientGUID).Bind(nInactive);
    while (query.Step())
    {
        dbCTimepointsRow row;
        row.m_strTpID = query.Text(0);
        row.m_strDescription = query.Text(1);
        row.m_dateTime = query.Date(2);
        row.m_strPtshID = query.Text(3);
        row.m_nNumber = query.Int(4);
        row.m_bActive = query.Int(5) != 0;
        Add(row);
    }
    return !IsEmpty();
}

BOOL dbCTimepointsContainer::Reactivate(LPCTSTR pszTpID)
{
    dbCTransaction transaction;
    dbCStatement("UPDATE timepoints SET active = 1 WHERE guid = ?").Bind(pszTpID).Run();
    if (dbCSession::Current().GetChanges() == 0)
        return FALSE;
    // Whoever has loaded the patient before would make it inactive again.
    dbCStatement("UPDATE patients SET rowVersion = ? WHERE person = (SELECT patient FROM timepoints WHERE guid = ?)")
        .Bind(dbNextNumber(dbCounter::Versions))
        .Bind(pszTpID)
        .Run();
    transaction.Commit();
    return TRUE;
}
