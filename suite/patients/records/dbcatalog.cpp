#include "suite/patients/records/dbcatalog.h"

#include "suite/patients/files/filefamily.h"
#include "suite/patients/store/dbcore.h"
#include "suite/patients/store/dbtransaction.h"

namespace
{
struct Owner
{
    __int64 nRow = 0;
    CString strID;
};

/// The row is 0 for an unknown patient.
Owner FindOwner(LPCTSTR pszPatientGUID)
{
    dbCStatement query("SELECT t.person, t.patientID FROM persons p JOIN patients t ON t.person = p.id"
                       " WHERE p.guid = ?");
    query.Bind(pszPatientGUID);
    return query.Step() ? Owner{query.Int64(0), query.Text(1)} : Owner{};
}
} // namespace

int dbCCatalogFiles::LoadByPatID(LPCTSTR pszPatientGUID)
{
    RemoveAll();
    dbCStatement query(
        "SELECT t.patientID, c.name, c.guid, c.hash FROM persons p JOIN patients t ON t.person = p.id"
        " JOIN catalogFiles c ON c.patient = t.person WHERE p.guid = ? ORDER BY c.name");
    query.Bind(pszPatientGUID);
    while (query.Step())
        Add({query.Text(0) + query.Text(1), query.Text(2), query.Text(3)});
    return GetCount();
}

void dbCCatalogFiles::Store(LPCTSTR pszPatientGUID, const dbSCatalogFile& file)
{
    dbCTransaction transaction;
    const Owner owner = FindOwner(pszPatientGUID);
    if (owner.nRow == 0)
        dbCException::Throw(dbErrNotFound, pszPatientGUID);
    if (!pat::IdentifyFile(file.strName.GetString(), owner.strID.GetString()))
        dbCException::Throw(dbErrInvalid, file.strName);
    dbCStatement("INSERT INTO catalogFiles (patient, name, guid, hash) VALUES (?, ?, ?, ?)"
                 " ON CONFLICT DO UPDATE SET guid = excluded.guid, hash = excluded.hash")
        .Bind(owner.nRow)
        .Bind(file.strName.Mid(owner.strID.GetLength()))
        .Bind(file.strCatalogGUID)
        .Bind(file.strHash)
        .Run();
    transaction.Commit();
}

void dbCCatalogFiles::Forget(LPCTSTR pszPatientGUID, const patFileStates& files)
{
    const Owner owner = FindOwner(pszPatientGUID);
    dbCStatement remove("DELETE FROM catalogFiles WHERE patient = ? AND name = ?");
    for (const patSFileState& file : files)
        if (pat::IdentifyFile(file.name, owner.strID.GetString()))
            remove.Bind(owner.nRow).Bind(file.name.c_str() + owner.strID.GetLength()).Run();
}
