#include "suite/patients/records/dbreferrals.h"

#include "suite/patients/records/dbpatientstore.h"

void dbCPatientReferralsRow::Set_doctor(LPCTSTR pszFirst, LPCTSTR pszLast, LPCTSTR pszEmail)
{
    m_strDocFirst = pszFirst;
    m_strDocLast = pszLast;
    m_strDocEmail = pszEmail;
}

BOOL dbCPatientReferralsContainer::LoadWithDoctor(LPCTSTR pszPatientGUID)
{
    RemoveAll();
    if (const __int64 nRow = dbCPatientStore::FindRow(pszPatientGUID))
        dbLoadReferrals(*this, nRow);
    return !IsEmpty();
}

int dbCPatientReferralsContainer::AddReferralDoc(LPCTSTR pszDoctorGUID, const velCDate& date, LPCTSTR pszNote)
{
    if (!pszDoctorGUID || !*pszDoctorGUID)
        return -1;
    dbCPatientReferralsRow row;
    row.Set_refID(dbNewGUID());
    row.Set_type(DB_REFERRAL_DOC);
    row.Set_docID(pszDoctorGUID);
    row.Set_date(date);
    row.Set_note(pszNote);
    return Add(row);
}

void dbCPatientReferralsContainer::UpdateDocID(int nIndex, LPCTSTR pszDoctorGUID)
{
    dbCPatientReferralsRow& row = GetAt(nIndex);
    if (row.Get_docID() == pszDoctorGUID)
        return;
    row.Set_docID(pszDoctorGUID);
    row.Set_doctor("", "", "");
}

void dbLoadReferrals(dbCPatientReferralsContainer& referrals, __int64 nPatientRow)
{
    dbCStatement query(
        "SELECT r.guid, r.type, r.date, r.note, p.guid, p.firstName, p.lastName, p.email FROM referrals r"
        " JOIN persons p ON p.id = r.doctor WHERE r.patient = ? ORDER BY r.position");
    query.Bind(nPatientRow);
    while (query.Step())
    {
        dbCPatientReferralsRow row;
        row.Set_refID(query.Text(0));
        row.Set_type(query.Text(1));
        row.Set_date(query.Date(2));
        row.Set_note(query.Text(3));
        row.Set_docID(query.Text(4));
        row.Set_doctor(query.Text(5), query.Text(6), query.Text(7));
        referrals.Add(row);
    }
}

void dbSaveReferrals(dbCPatientReferralsContainer& referrals, __int64 nPatientRow)
{
    dbCStatement("DELETE FROM referrals WHERE patient = ?").Bind(nPatientRow).Run();
    dbCStatement insert("INSERT INTO referrals (guid, patient, position, doctor, type, date, note)"
                        " VALUES (?, ?, ?, ?, ?, ?, ?)");
    int nPosition = 0;
    for (dbCPatientReferralsRow& row : referrals)
    {
        if (row.Get_refID().IsEmpty())
            row.Set_refID(dbNewGUID());
        insert.Bind(row.Get_refID())
            .Bind(nPatientRow)
            .Bind(nPosition++)
            .Bind(dbRequireDoctor(row.Get_docID()))
            .Bind(row.Get_type());
        insert.BindDate(row.Get_date()).Bind(row.Get_note()).Run();
    }
}
