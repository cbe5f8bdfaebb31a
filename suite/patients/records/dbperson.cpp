#include "suite/patients/records/dbperson.h"

#include "suite/patients/store/patmodule.h"
#include "suite/patients/store/patres.h"

BOOL dbCAddress::IsEmpty() const
{
    return m_strCompany.IsEmpty() && m_strStreet.IsEmpty() && m_strCity.IsEmpty() && m_strState.IsEmpty() &&
           m_strPostalCode.IsEmpty();
}

int dbCPhone::GetTypeCount()
{
    return PHONE_TYPE_COUNT;
}

CString dbCPhone::GetTypeName(int nIndex)
{
    if (nIndex < 0 || nIndex >= PHONE_TYPE_COUNT)
        return CString();
    return patLoadString(IDS_PHONE_TYPE_FIRST + static_cast<UINT>(nIndex));
}

dbCAddress dbCPerson::GetAddress(int nIndex) const
{
    return nIndex >= 0 && nIndex < m_addresses.GetCount() ? m_addresses[nIndex] : dbCAddress();
}

dbCPhone dbCPerson::GetPhone(int nIndex) const
{
    return nIndex >= 0 && nIndex < m_phones.GetCount() ? m_phones[nIndex] : dbCPhone();
}

void dbCPerson::SetAddress(int nIndex, const dbCAddress& address)
{
    while (m_addresses.GetCount() <= nIndex)
        m_addresses.Add(dbCAddress());
    m_addresses[nIndex] = address;
}

void dbCPerson::SetPhone(int nIndex, const dbCPhone& phone)
{
    while (m_phones.GetCount() <= nIndex)
        m_phones.Add(dbCPhone());
    m_phones[nIndex] = phone;
}
