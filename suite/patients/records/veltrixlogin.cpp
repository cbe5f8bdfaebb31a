#include "suite/patients/records/veltrixlogin.h"

#include "suite/patients/store/dbcore.h"
#include "suite/patients/store/patmodule.h"

int CVeltrixLogin::m_bNewPatFromDI = 0;

namespace
{
void Record(dbAuditKind nKind, LPCTSTR pszPatientGUID, LPCTSTR pszText)
{
    dbCStatement insert("INSERT INTO auditEvents (kind, time, userName, computer, patientGuid, text) VALUES "
                        "(?, ?, ?, ?, ?, ?)");
    insert.Bind(static_cast<int>(nKind)).BindDateTime(COleDateTime::GetCurrentTime()).Bind(patUserName());
    insert.Bind(patComputerName()).Bind(pszPatientGUID).Bind(pszText).Run();
}
} // namespace

void CVeltrixLogin::AddNewPatientEvent(LPCTSTR pszPatientGUID, LPCTSTR pszText)
{
    Record(dbAuditNewPatient, pszPatientGUID, pszText);
}

void CVeltrixLogin::AddPatientModifiedEvent(LPCTSTR pszPatientGUID, LPCTSTR pszText)
{
    Record(dbAuditPatientModified, pszPatientGUID, pszText);
}

void CVeltrixLogin::AddArchivedPatientEvent(LPCTSTR pszPatientGUID, LPCTSTR pszText)
{
    Record(dbAuditArchivedPatient, pszPatientGUID, pszText);
}

void CVeltrixLogin::AddPatientDeletedEvent(LPCTSTR pszPatientGUID, LPCTSTR pszText)
{
    Record(dbAuditPatientDeleted, pszPatientGUID, pszText);
}

int CVeltrixLogin::LoadEvents(dbTList<dbSAuditEvent>& events, int nMax, __int64 nBefore)
{
    events.RemoveAll();
    dbCStatement query(
        "SELECT id, kind, time, userName, computer, patientGuid, text FROM auditEvents WHERE id < ?"
        " ORDER BY id DESC LIMIT ?");
    query.Bind(nBefore != 0 ? nBefore : INT64_MAX).Bind(nMax);
    while (query.Step())
    {
        dbSAuditEvent event;
        event.nID = query.Int64(0);
        event.nKind = query.Int(1);
        event.dateTime = query.Date(2);
        event.strUser = query.TextForDisplay(3);
        event.strComputer = query.TextForDisplay(4);
        event.strPatientGUID = query.TextForDisplay(5);
        event.strText = query.TextForDisplay(6);
        events.Add(event);
    }
    return events.GetCount();
}
