#pragma once

#include "suite/patients/store/dblist.h"
#include "suite/patients/store/patdefs.h"
#include "suite/util/veldate.h"

/// Kinds of audit event.
enum dbAuditKind
{
    dbAuditNewPatient = 1,
    dbAuditPatientModified = 2,
    dbAuditArchivedPatient = 3,
    dbAuditPatientDeleted = 4
};

/// One recorded event.
struct dbSAuditEvent
{
    __int64 nID = 0;   ///< ascending in the order of recording
    int nKind = 0;     ///< dbAuditKind
    velCDate dateTime; ///< local time of recording
    CString strUser, strComputer, strPatientGUID, strText;
};

/// Records audit events in the current database, with user, computer and time. Events outlive their patient.
/// Holds nothing: constructible while a library loads, without a database. A call that cannot record throws
/// dbCException*; inside a dbCTransaction the event is part of it.
class VELPAT_API CVeltrixLogin
{
public:
    void AddNewPatientEvent(LPCTSTR pszPatientGUID, LPCTSTR pszText);
    void AddPatientModifiedEvent(LPCTSTR pszPatientGUID, LPCTSTR pszText);
    void AddArchivedPatientEvent(LPCTSTR pszPatientGUID, LPCTSTR pszText);
    void AddPatientDeletedEvent(LPCTSTR pszPatientGUID, LPCTSTR pszText);

    /// Reads the latest `nMax` events, newest first, older than event `nBefore` when that is not 0.
    static int LoadEvents(dbTList<dbSAuditEvent>& events, int nMax, __int64 nBefore = 0);

    /// Nonzero while a new patient is being entered.
    static int m_bNewPatFromDI;
};
