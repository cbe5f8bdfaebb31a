#include "suite/patients/records/dbinsurance.h"

#include "suite/patients/store/dbcore.h"
#include "suite/patients/store/dbtext.h"
#include "suite/patients/store/dbtransaction.h"

dbCInsurance::dbCInsurance() : m_strGUID(dbNewGUID())
{
}

void dbCInsuranceCompany::Save()
{
    const std::string key = dbFold(m_strName.GetString());
    if (key.empty())
        dbCException::Throw(dbErrInvalid);
    const CString strGUID = m_strGUID.IsEmpty() ? dbNewGUID() : m_strGUID;
    dbCStatement write(
        "INSERT INTO insuranceCompanies (guid, name, nameKey, phone, note, type, company, street, city, "
        "state,"
        " postalCode, country) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?) ON CONFLICT (guid) DO UPDATE SET"
        " name = excluded.name, nameKey = excluded.nameKey, phone = excluded.phone, note = excluded.note,"
        " type = excluded.type, company = excluded.company, street = excluded.street, city = excluded.city,"
        " state = excluded.state, postalCode = excluded.postalCode, country = excluded.country");
    write.Bind(strGUID)
        .Bind(m_strName)
        .BindUtf8(key)
        .Bind(m_strPhone)
        .Bind(m_strNote)
        .Bind(m_address.GetType());
    write.Bind(m_address.GetCompany())
        .Bind(m_address.GetStreet())
        .Bind(m_address.GetCity())
        .Bind(m_address.GetState());
    write.Bind(m_address.GetPostalCode()).Bind(m_address.GetCountry()).Run();
    m_strGUID = strGUID;
}

void dbCInsuranceCompanies::Load()
{
    RemoveAll();
    dbCStatement query(
        "SELECT guid, name, phone, note, type, company, street, city, state, postalCode, country"
        " FROM insuranceCompanies ORDER BY nameKey, id");
    while (query.Step())
    {
        dbCAddress address;
        address.SetType(query.Text(4));
        address.SetCompany(query.Text(5));
        address.SetStreet(query.Text(6));
        address.SetCity(query.Text(7));
        address.SetState(query.Text(8));
        address.SetPostalCode(query.Text(9));
        address.SetCountry(query.Text(10));
        dbCInsuranceCompany company;
        company.SetCompanyGUID(query.Text(0));
        company.SetName(query.Text(1));
        company.SetPhone(query.Text(2));
        company.SetNote(query.Text(3));
        company.SetAddress(address);
        Add(company);
    }
}

CString dbCInsuranceCompanies::FindOrAdd(LPCTSTR pszName)
{
    dbCTransaction transaction;
    dbCStatement query("SELECT guid FROM insuranceCompanies WHERE nameKey = ? ORDER BY id");
    query.BindUtf8(dbFold(pszName));
    if (query.Step())
        return query.Text(0);
    dbCInsuranceCompany company;
    company.SetName(pszName);
    company.Save();
    transaction.Commit();
    return company.GetCompanyGUID();
}

int dbCInsuranceCompanies::Find(LPCTSTR pszCompanyGUID) const
{
    for (int i = 0; i < GetCount(); ++i)
        if (GetAt(i).GetCompanyGUID() == pszCompanyGUID)
            return i;
    return -1;
}

void dbCInsuranceCompanies::Delete(LPCTSTR pszCompanyGUID)
{
    dbCStatement("DELETE FROM insuranceCompanies WHERE guid = ?").Bind(pszCompanyGUID).Run();
    if (const int nIndex = Find(pszCompanyGUID); nIndex >= 0)
        RemoveAt(nIndex);
}
