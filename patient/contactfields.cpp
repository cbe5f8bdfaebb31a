#include "patient/contactfields.h"

#include "patient/rules/chartrules.h"

namespace
{

constexpr char officeAddress[] = "O";
constexpr char homeAddress[] = "H";

// Whose contact fields a record's are.
dbCPatient& ContactOf(dbCPatient& patient)
{
    return patient;
}
dbCPerson& ContactOf(dbCPerson& person)
{
    return person;
}
dbCPerson& ContactOf(dbCDoctor& doctor)
{
    return doctor.GetPerson();
}
template <class T> const auto& ContactOf(const T& record)
{
    return ContactOf(const_cast<T&>(record));
}

template <class T> dbCAddress& FirstAddress(T& record)
{
    dbCAddresses& addresses = ContactOf(record).GetAddresses();
    if (addresses.IsEmpty())
        addresses.Add(dbCAddress());
    return addresses[0];
}

template <class T>
patTField<T> AddressText(int nControl, int nLimit, const CString& (dbCAddress::*get)() const,
                         void (dbCAddress::*set)(LPCTSTR))
{
    return patTextField<T>(
        nControl, nLimit,
        [get](const T& record) {
            const dbCAddresses& addresses = ContactOf(record).GetAddresses();
            return addresses.IsEmpty() ? CString() : (addresses[0].*get)();
        },
        [set](T& record, LPCTSTR pszText) { (FirstAddress(record).*set)(pszText); });
}

/// Any type but the office's counts as the first button.
template <class T> patTField<T> AddressType(int nControl)
{
    return patCodeField<T>(
        patFieldKind::Radio, nControl,
        [](const T& record) -> int {
            const dbCAddresses& addresses = ContactOf(record).GetAddresses();
            return !addresses.IsEmpty() && addresses[0].GetType() == officeAddress ? patOfficeAddress
                                                                                   : patHomeAddress;
        },
        [](T& record, int nButton) {
            FirstAddress(record).SetType(nButton == patOfficeAddress ? officeAddress : homeAddress);
        });
}

/// Part of the phone with an index. Phones behind the last one that has anything are none.
template <class T>
patTField<T> PhonePart(patFieldKind nKind, int nControl, int nIndex, const CString& (dbCPhone::*get)() const,
                       void (dbCPhone::*set)(LPCTSTR))
{
    return patTextField<T>(
        nControl, nKind == patFieldKind::Text ? pat::MaxPhone : 0,
        [get, nIndex](const T& record) {
            const dbCPhones& phones = ContactOf(record).GetPhones();
            return nIndex < phones.GetCount() ? (phones[nIndex].*get)() : CString();
        },
        [set, nIndex](T& record, LPCTSTR pszText) {
            dbCPhones& phones = ContactOf(record).GetPhones();
            while (phones.GetCount() <= nIndex)
                phones.Add(dbCPhone());
            (phones[nIndex].*set)(pszText);
            while (!phones.IsEmpty() && phones[phones.GetCount() - 1].GetNumber().IsEmpty() &&
                   phones[phones.GetCount() - 1].GetType().IsEmpty())
                phones.RemoveAt(phones.GetCount() - 1);
        },
        nKind);
}

} // namespace

template <class T> patTFieldTable<T> patContactTable(const patContactControls& controls)
{
    patTFieldTable<T> table{
        AddressType<T>(controls.nHome),
        AddressText<T>(controls.nCompany, pat::MaxCompany, &dbCAddress::GetCompany, &dbCAddress::SetCompany),
        AddressText<T>(controls.nStreet, pat::MaxStreet, &dbCAddress::GetStreet, &dbCAddress::SetStreet),
        AddressText<T>(controls.nCity, pat::MaxCity, &dbCAddress::GetCity, &dbCAddress::SetCity),
        AddressText<T>(controls.nState, pat::MaxState, &dbCAddress::GetState, &dbCAddress::SetState),
        AddressText<T>(controls.nPostalCode, pat::MaxPostalCode, &dbCAddress::GetPostalCode,
                       &dbCAddress::SetPostalCode),
        AddressText<T>(controls.nCountry, pat::MaxCountry, &dbCAddress::GetCountry, &dbCAddress::SetCountry),
        patTextField<T>(
            controls.nEmail, pat::MaxEmail, [](const T& record) { return ContactOf(record).GetEmail(); },
            [](T& record, LPCTSTR pszEmail) { ContactOf(record).SetEmail(pszEmail); }),
    };
    for (int i = 0; i < 2; ++i)
    {
        table.push_back(PhonePart<T>(patFieldKind::Text, controls.nPhone[i], i, &dbCPhone::GetNumber,
                                     &dbCPhone::SetNumber));
        table.push_back(PhonePart<T>(patFieldKind::Choice, controls.nPhoneType[i], i, &dbCPhone::GetType,
                                     &dbCPhone::SetType));
    }
    return table;
}

template patTFieldTable<dbCPatient> patContactTable(const patContactControls&);
template patTFieldTable<dbCPerson> patContactTable(const patContactControls&);
template patTFieldTable<dbCDoctor> patContactTable(const patContactControls&);

void patDropEmptyAddress(dbCAddresses& addresses, bool bHadAddress)
{
    if (addresses.GetCount() == 1 && addresses[0].IsEmpty() &&
        (!bHadAddress || addresses[0].GetCountry().IsEmpty()))
        addresses.RemoveAll();
}

void patFillPhoneTypes(CWnd& page, const patContactControls& controls)
{
    for (const int nControl : controls.nPhoneType)
    {
        CComboBox& list = *static_cast<CComboBox*>(page.GetDlgItem(nControl));
        list.ResetContent();
        list.AddString("");
        for (int i = 0; i < dbCPhone::GetTypeCount(); ++i)
            list.AddString(dbCPhone::GetTypeName(i));
    }
}

pat::Finding patCheckPhones(const patCFieldValues& fields, const patContactControls& controls)
{
    for (int i = 0; i < 2; ++i)
    {
        pat::Finding finding = pat::CheckPhone(fields.GetText(controls.nPhone[i]).GetString(),
                                               !fields.GetText(controls.nPhoneType[i]).IsEmpty(), i + 1,
                                               static_cast<unsigned>(controls.nPhoneType[i]));
        if (!finding.bPassed)
            return finding;
    }
    return {};
}
