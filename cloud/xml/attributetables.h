// Which attribute of a document's element is which member of an object: read and written by the same tables.
#pragma once

#include "suite/patients/records/dbemails.h"
#include "suite/patients/records/dbperson.h"

/// An attribute and the member that it goes to: a text, or a setter that takes one.
template <typename Member> struct velTAttribute
{
    const wchar_t* pszName;
    Member member;
};
template <typename Member> velTAttribute(const wchar_t*, Member) -> velTAttribute<Member>;

/// An attribute that is written as well.
struct velSAddressAttribute
{
    const wchar_t* pszName;
    void (dbCAddress::*member)(LPCTSTR);
    const CString& (dbCAddress::*get)() const;
};

inline constexpr velSAddressAttribute velAddressAttributes[] = {
    {L"type", &dbCAddress::SetType, &dbCAddress::GetType},
    {L"company", &dbCAddress::SetCompany, &dbCAddress::GetCompany},
    {L"street", &dbCAddress::SetStreet, &dbCAddress::GetStreet},
    {L"city", &dbCAddress::SetCity, &dbCAddress::GetCity},
    {L"state", &dbCAddress::SetState, &dbCAddress::GetState},
    {L"zip", &dbCAddress::SetPostalCode, &dbCAddress::GetPostalCode},
    {L"country", &dbCAddress::SetCountry, &dbCAddress::GetCountry},
};

inline constexpr velTAttribute<CString dbSPatientEmail::*> velEmailAttributes[] = {
    {L"personId", &dbSPatientEmail::strPersonID},   {L"category", &dbSPatientEmail::strCategory},
    {L"type", &dbSPatientEmail::strType},           {L"salutation", &dbSPatientEmail::strSalutation},
    {L"firstName", &dbSPatientEmail::strFirstname}, {L"lastName", &dbSPatientEmail::strLastname},
    {L"address", &dbSPatientEmail::strAddress},
};
