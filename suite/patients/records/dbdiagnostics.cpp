#include "suite/patients/records/dbdiagnostics.h"

#include "suite/patients/store/dbcore.h"
#include "suite/patients/store/dbtransaction.h"

dbCDiagnosticGroup::dbCDiagnosticGroup(LPCTSTR pszTitle, LPCTSTR pszCategory)
{
    dbCStatement query("SELECT i.guid, i.code, i.title FROM diagnosticGroups g JOIN diagnosticItems i"
                       " ON i.diagnosticGroup = g.id WHERE g.category = ? AND g.title = ? ORDER BY i.id");
    query.Bind(pszCategory).Bind(pszTitle);
    while (query.Step())
    {
        dbCDiagnosticItem item;
        item.m_strDtID = query.Text(0);
        item.m_strItemCode = query.Text(1);
        item.m_strTitle = query.Text(2);
        m_items.Add(item);
    }
}

CString dbCDiagnosticGroup::DefineItem(LPCTSTR pszGroup, LPCTSTR pszCategory, LPCTSTR pszItemCode,
                                       LPCTSTR pszTitle)
{
    CString strDtID = dbNewGUID();
    dbCTransaction transaction;
    dbCStatement("INSERT INTO diagnosticGroups (category, title) VALUES (?, ?) ON CONFLICT DO NOTHING")
        .Bind(pszCategory)
        .Bind(pszGroup)
        .Run();
    dbCStatement("INSERT INTO diagnosticItems (guid, code, title, diagnosticGroup)"
                 " SELECT ?, ?, ?, id FROM diagnosticGroups WHERE category = ? AND title = ?")
        .Bind(strDtID)
        .Bind(pszItemCode)
        .Bind(pszTitle)
        .Bind(pszCategory)
        .Bind(pszGroup)
        .Run();
    transaction.Commit();
    return strDtID;
}

dbCPatientDiagnostics::dbCPatientDiagnostics(LPCTSTR pszPatientGUID, int nTimepoint, LPCTSTR pszCategory)
    : m_strPatientGUID(pszPatientGUID), m_strCategory(pszCategory)
{
    dbCStatement query(
        "SELECT i.guid, t.guid, d.value, d.note, t.number, d.position, d.time FROM persons p"
        " JOIN diagnostics d ON d.patient = p.id JOIN diagnosticItems i ON i.id = d.item"
        " JOIN diagnosticGroups g ON g.id = i.diagnosticGroup LEFT JOIN timepoints t ON t.id = d.timepoint"
        " WHERE p.guid = ? AND g.category = ? AND (? = 0 OR t.number = ?) ORDER BY d.time, d.position, d.id");
    query.Bind(pszPatientGUID).Bind(pszCategory).Bind(nTimepoint).Bind(nTimepoint - 1);
    while (query.Step())
        Add({query.Text(0), query.Text(1), query.Text(2), query.Text(3), query.IsNull(4) ? -1 : query.Int(4),
             query.Int(5), query.Date(6)});
}

void dbCPatientDiagnostics::AddDiagnosticRecord(LPCTSTR pszDtID, int nTP, const dbCDiagnosticInfo& info,
                                                int nPosition, const COleDateTime& dateTime)
{
    dbCStatement insert(
        "INSERT INTO diagnostics (patient, item, timepoint, position, value, note, time)"
        " SELECT p.id, i.id, (SELECT id FROM timepoints WHERE patient = p.id AND number = ?), ?, ?, ?, ?"
        " FROM persons p JOIN patients t ON t.person = p.id, diagnosticItems i WHERE p.guid = ? AND i.guid = "
        "?");
    insert.Bind(nTP).Bind(nPosition).Bind(info.GetValue()).Bind(info.GetNote()).BindDateTime(dateTime);
    insert.Bind(m_strPatientGUID).Bind(pszDtID).Run();
    if (dbCSession::Current().GetChanges() == 0)
        dbCException::Throw(dbErrNotFound, pszDtID);
    Add({pszDtID, "", info.GetValue(), info.GetNote(), nTP, nPosition, dateTime});
}

BOOL dbCPatientDiagnosisTreatmentsContainer::HasDiagnostics(LPCTSTR pszTpID)
{
    dbCStatement query(
        "SELECT 1 FROM timepoints t JOIN diagnostics d ON d.timepoint = t.id WHERE t.guid = ? LIMIT 1");
    query.Bind(pszTpID);
    return query.Step();
}

BOOL dbCAcPatientsContainer::IsPatientGUIDInUse(LPCTSTR pszGUID)
{
    dbCStatement query(
        "SELECT 1 FROM persons p JOIN patients t ON t.person = p.id WHERE p.guid = ?");
    query.Bind(pszGUID);
    return query.Step();
}
