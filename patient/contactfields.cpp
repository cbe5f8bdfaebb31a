#include "patient/contactfields.h"

#include "patient/chartrules.h"

namespace
{
constexpr char officeAddress[] = "O";
constexpr char homeAddress[] = "H";
} // namespace

patCContactFields::patCContactFields(const patContactControls& controls) : m_controls(controls)
{
}

void patCContactFields::DoDataExchange(CDataExchange* pDX)
{
    struct
    {
        int nControl;
        CString& strText;
        int nMaxChars;
    } const fields[] = {
        {m_controls.nCompany, m_strCompany, pat::MaxCompany},
        {m_controls.nStreet, m_strStreet, pat::MaxStreet},
        {m_controls.nCity, m_strCity, pat::MaxCity},
        {m_controls.nState, m_strState, pat::MaxState},
        {m_controls.nPostalCode, m_strPostalCode, pat::MaxPostalCode},
        {m_controls.nCountry, m_strCountry, pat::MaxCountry},
        {m_controls.nPhone[0], m_strPhone[0], pat::MaxPhone},
        {m_controls.nPhone[1], m_strPhone[1], pat::MaxPhone},
        {m_controls.nEmail, m_strEmail, pat::MaxEmail},
    };
    DDX_Radio(pDX, m_controls.nHome, m_nAddressButton);
    for (const auto& field : fields)
    {
        DDX_Text(pDX, field.nControl, field.strText);
        DDV_MaxChars(pDX, field.strText, field.nMaxChars);
    }
    for (int i = 0; i < 2; ++i)
        DDX_Control(pDX, m_controls.nPhoneType[i], m_listPhoneType[i]);
}

void patCContactFields::Initialise(const CString& strCountry)
{
    m_nAddressButton = 0;
    m_strCountry = strCountry;
    for (CComboBox& list : m_listPhoneType)
    {
        list.ResetContent();
        list.AddString("");
        for (int i = 0; i < dbCPhone::GetTypeCount(); ++i)
            list.AddString(dbCPhone::GetTypeName(i));
        list.SetCurSel(0);
    }
}

void patCContactFields::Load(const dbCAddresses& addresses, const dbCPhones& phones, const CString& strEmail)
{
    if (!addresses.IsEmpty())
    {
        const dbCAddress& address = addresses[0];
        m_strCompany = address.GetCompany();
        m_strStreet = address.GetStreet();
        m_strCity = address.GetCity();
        m_strState = address.GetState();
        m_strPostalCode = address.GetPostalCode();
        m_strCountry = address.GetCountry();
        m_nAddressButton = address.GetType() == officeAddress ? 1 : 0;
    }
    for (int i = 0; i < 2 && i < phones.GetCount(); ++i)
    {
        m_strPhone[i] = phones[i].GetNumber();
        SelectPhoneType(i, phones[i].GetType());
    }
    m_strEmail = strEmail;
}

bool patCContactFields::HasAddress() const
{
    return !m_strCompany.IsEmpty() || !m_strStreet.IsEmpty() || !m_strCity.IsEmpty() ||
           !m_strState.IsEmpty() || !m_strPostalCode.IsEmpty();
}

void patCContactFields::StoreAddress(dbCAddresses& addresses) const
{
    if (addresses.IsEmpty())
    {
        if (!HasAddress())
            return;
        addresses.Add(dbCAddress());
    }
    else if (addresses.GetCount() == 1 && !HasAddress() && m_strCountry.IsEmpty())
    {
        addresses.RemoveAll(); // emptied: there is no address any more, and summaries say so
        return;
    }
    dbCAddress& address = addresses[0];
    address.SetCompany(m_strCompany);
    address.SetStreet(m_strStreet);
    address.SetCity(m_strCity);
    address.SetState(m_strState);
    address.SetPostalCode(m_strPostalCode);
    address.SetCountry(m_strCountry);
    if (m_nAddressButton == 1)
        address.SetType(officeAddress);
    else if (address.GetType() == officeAddress || address.GetType().IsEmpty())
        address.SetType(homeAddress); // any other type counts as the first button and stays as it is
}

void patCContactFields::StorePhones(dbCPhones& phones) const
{
    for (int i = 0; i < 2; ++i)
    {
        const dbCPhone phone(m_strPhone[i], GetPhoneType(i));
        if (i < phones.GetCount())
            phones[i] = phone;
        else
            phones.Add(phone);
    }
    while (!phones.IsEmpty() && phones[phones.GetCount() - 1].GetNumber().IsEmpty() &&
           phones[phones.GetCount() - 1].GetType().IsEmpty())
        phones.RemoveAt(phones.GetCount() - 1);
}

pat::Finding patCContactFields::CheckPhone(int nIndex) const
{
    return pat::CheckPhone(m_strPhone[nIndex].GetString(), m_listPhoneType[nIndex].GetCurSel() > 0,
                           nIndex + 1, static_cast<unsigned>(m_controls.nPhoneType[nIndex]));
}

void patCContactFields::SelectPhoneType(int nIndex, const CString& strType)
{
    CComboBox& list = m_listPhoneType[nIndex];
    int nEntry = strType.IsEmpty() ? 0 : list.FindStringExact(0, strType);
    if (nEntry == CB_ERR)
        nEntry = list.AddString(strType); // a type of another system is kept as it is
    list.SetCurSel(nEntry);
}

CString patCContactFields::GetPhoneType(int nIndex) const
{
    CString strType;
    const CComboBox& list = m_listPhoneType[nIndex];
    const int nEntry = list.GetCurSel();
    if (nEntry > 0)
        list.GetLBText(nEntry, strType);
    return strType;
}
