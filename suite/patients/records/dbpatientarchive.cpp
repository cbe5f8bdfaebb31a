#include "suite/patients/files/dbarchivebytes.h"

#include "suite/patients/records/dboffices.h"
#include "suite/patients/records/dbpatients.h"
#include "suite/patients/records/dbpatientstore.h"

#include <limits>
#include <set>
#include <type_traits>

namespace
{
constexpr __int64 MAX_ROWS = 100000; // of any one list

template <typename Value> void Exchange(dbCArchiveWriter& ar, const Value& value)
{
    if constexpr (std::is_base_of_v<COleDateTime, Value>)
        ar.Text(dbDateText(value, true).c_str());
    else if constexpr (std::is_same_v<CString, Value>)
        ar.Text(value);
    else
        ar.Number(static_cast<__int64>(value));
}

template <typename Value> void Exchange(dbCArchiveReader& ar, Value& value)
{
    if constexpr (std::is_base_of_v<COleDateTime, Value>)
        value = dbDateFromText(ar.Text().GetString());
    else if constexpr (std::is_same_v<CString, Value>)
        value = ar.Text();
    else
        value = static_cast<Value>(
            ar.Number(std::numeric_limits<Value>::min(), std::numeric_limits<Value>::max()));
}

/// Moves one property of an object in the archive's direction.
template <typename Ar, typename Object, typename Get, typename Set>
void Property(Ar& ar, Object& object, Get get, Set set)
{
    std::decay_t<decltype((object.*get)())> value = (object.*get)();
    Exchange(ar, value);
    if constexpr (Ar::READING)
        (object.*set)(value);
}

/// Moves a list item by item; `item` moves one.
template <typename Ar, typename List, typename Item> void Rows(Ar& ar, List& list, __int64 nMax, Item item)
{
    using Value = std::decay_t<decltype(list[0])>;
    if constexpr (Ar::READING)
    {
        list.RemoveAll();
        for (__int64 n = ar.Number(0, nMax); n > 0; --n)
        {
            Value value;
            item(value);
            list.Add(value);
        }
    }
    else
    {
        ar.Number(list.GetCount());
        for (Value& value : list)
            item(value);
    }
}

template <typename Ar> void Address(Ar& ar, dbCAddress& address)
{
    Property(ar, address, &dbCAddress::GetType, &dbCAddress::SetType);
    Property(ar, address, &dbCAddress::GetCompany, &dbCAddress::SetCompany);
    Property(ar, address, &dbCAddress::GetStreet, &dbCAddress::SetStreet);
    Property(ar, address, &dbCAddress::GetCity, &dbCAddress::SetCity);
    Property(ar, address, &dbCAddress::GetState, &dbCAddress::SetState);
    Property(ar, address, &dbCAddress::GetPostalCode, &dbCAddress::SetPostalCode);
    Property(ar, address, &dbCAddress::GetCountry, &dbCAddress::SetCountry);
}

template <typename Ar> void Phone(Ar& ar, dbCPhone& phone)
{
    Property(ar, phone, &dbCPhone::GetNumber, &dbCPhone::SetNumber);
    Property(ar, phone, &dbCPhone::GetType, &dbCPhone::SetType);
}

template <typename Ar> void Contacts(Ar& ar, dbCAddresses& addresses, dbCPhones& phones)
{
    Rows(ar, addresses, MAX_ROWS, [&](dbCAddress& address) { Address(ar, address); });
    Rows(ar, phones, MAX_ROWS, [&](dbCPhone& phone) { Phone(ar, phone); });
}

template <typename Ar> void Person(Ar& ar, dbCPerson& person)
{
    Property(ar, person, &dbCPerson::GetPersonGUID, &dbCPerson::SetPersonGUID);
    Property(ar, person, &dbCPerson::GetTitle, &dbCPerson::SetTitle);
    Property(ar, person, &dbCPerson::GetFirstname, &dbCPerson::SetFirstname);
    Property(ar, person, &dbCPerson::GetLastname, &dbCPerson::SetLastname);
    Property(ar, person, &dbCPerson::GetNickname, &dbCPerson::SetNickname);
    Property(ar, person, &dbCPerson::GetSalutation, &dbCPerson::SetSalutation);
    Property(ar, person, &dbCPerson::GetNotes, &dbCPerson::SetNotes);
    Property(ar, person, &dbCPerson::GetEmail, &dbCPerson::SetEmail);
    Property(ar, person, &dbCPerson::GetBirthdate, &dbCPerson::SetBirthdate);
    Property(ar, person, &dbCPerson::GetGender, &dbCPerson::SetGender);
    Contacts(ar, person.GetAddresses(), person.GetPhones());
}

template <typename Ar> void Images(Ar& ar, patCTimepoint& timepoint)
{
    const auto one = [&](int& nGroup, int& nType, patSImageInfo& info) {
        Exchange(ar, nGroup);
        Exchange(ar, nType);
        Exchange(ar, info.strTitle);
        Exchange(ar, info.strNote);
        Exchange(ar, info.strGUID);
    };
    if constexpr (Ar::READING)
    {
        for (__int64 n = ar.Number(0, patCImageTypes::GROUP_COUNT * 32); n > 0; --n)
        {
            int nGroup = 0, nType = 0;
            patSImageInfo info;
            one(nGroup, nType, info);
            if (nGroup < 0 || nGroup >= patCImageTypes::GROUP_COUNT || nType < 0 || nType >= 32)
                AfxThrowArchiveException(CArchiveException::badIndex);
            timepoint.SetImageInfo(nGroup, nType, info);
        }
    }
    else
    {
        ar.Number(static_cast<__int64>(timepoint.GetImageInfos().size()));
        for (auto [slot, info] : timepoint.GetImageInfos())
        {
            int nGroup = slot.first, nType = slot.second;
            one(nGroup, nType, info);
        }
    }
}

template <typename Ar> void Timepoint(Ar& ar, patCTimepoint& timepoint)
{
    Property(ar, timepoint, &patCTimepoint::GettpID, &patCTimepoint::SettpID);
    Property(ar, timepoint, &patCTimepoint::GetBaseFilename, &patCTimepoint::SetBaseFilename);
    Property(ar, timepoint, &patCTimepoint::GetName, &patCTimepoint::SetName);
    Property(ar, timepoint, &patCTimepoint::GetDate, &patCTimepoint::SetDate);
    for (int nGroup = 0; nGroup < patCImageTypes::GROUP_COUNT; ++nGroup)
    {
        DWORD dwBits = timepoint.GetImageBits(nGroup);
        Exchange(ar, dwBits);
        timepoint.SetImageBits(nGroup, dwBits);
    }
    if (ar.GetFormat() == 1)
    {
        Property(ar, timepoint, &patCTimepoint::IsActive, &patCTimepoint::SetActive);
        Property(ar, timepoint, &patCTimepoint::GetptshID, &patCTimepoint::SetptshID);
        Images(ar, timepoint);
    }
}

template <typename Ar> void Diagnostic(Ar& ar, dbCDiagnosticInfo& info)
{
    Property(ar, info, &dbCDiagnosticInfo::GetGroupTitle, &dbCDiagnosticInfo::SetGroupTitle);
    Property(ar, info, &dbCDiagnosticInfo::GetItemCode, &dbCDiagnosticInfo::SetItemCode);
    Property(ar, info, &dbCDiagnosticInfo::GetTP, &dbCDiagnosticInfo::SetTP);
    Property(ar, info, &dbCDiagnosticInfo::GetValue, &dbCDiagnosticInfo::SetValue);
    Property(ar, info, &dbCDiagnosticInfo::GetNote, &dbCDiagnosticInfo::SetNote);
}

template <typename Ar> void Referral(Ar& ar, dbCPatientReferralsRow& row)
{
    Property(ar, row, &dbCPatientReferralsRow::Get_refID, &dbCPatientReferralsRow::Set_refID);
    Property(ar, row, &dbCPatientReferralsRow::Get_docID, &dbCPatientReferralsRow::Set_docID);
    Property(ar, row, &dbCPatientReferralsRow::Get_type, &dbCPatientReferralsRow::Set_type);
    Property(ar, row, &dbCPatientReferralsRow::Get_note, &dbCPatientReferralsRow::Set_note);
    Property(ar, row, &dbCPatientReferralsRow::Get_date, &dbCPatientReferralsRow::Set_date);
    CString strFirst = row.Get_docFirstname(), strLast = row.Get_docLastname(), strEmail = row.Get_docEmail();
    Exchange(ar, strFirst);
    Exchange(ar, strLast);
    Exchange(ar, strEmail);
    row.Set_doctor(strFirst, strLast, strEmail);
}

template <typename Ar> void Insurance(Ar& ar, dbCInsurance& insurance)
{
    Property(ar, insurance, &dbCInsurance::GetInsuranceGUID, &dbCInsurance::SetInsuranceGUID);
    Property(ar, insurance, &dbCInsurance::GetCompanyGUID, &dbCInsurance::SetCompanyGUID);
    Property(ar, insurance, &dbCInsurance::GetCompanyName, &dbCInsurance::SetCompanyName);
    Property(ar, insurance, &dbCInsurance::GetHolder, &dbCInsurance::SetHolder);
    Property(ar, insurance, &dbCInsurance::GetNumber, &dbCInsurance::SetNumber);
    Property(ar, insurance, &dbCInsurance::GetGroup, &dbCInsurance::SetGroup);
    Property(ar, insurance, &dbCInsurance::GetNote, &dbCInsurance::SetNote);
}

template <typename Ar> void Treatment(Ar& ar, dbCPatientTreatmentStatusHistoryRow& row)
{
    using Row = dbCPatientTreatmentStatusHistoryRow;
    Property(ar, row, &Row::GetptshID, &Row::SetptshID);
    Property(ar, row, &Row::GetDescription, &Row::SetDescription);
    Property(ar, row, &Row::GetNewCode, &Row::SetNewCode);
    Property(ar, row, &Row::GetActive, &Row::SetActive);
    Property(ar, row, &Row::GetDateTime, &Row::SetDateTime);
}

/// What was read must be usable as it stands: identifiers become file names and keys.
void CheckTimepoints(const patCTimepoints& timepoints)
{
    std::set<int> numbers;
    for (const patCTimepoint& timepoint : timepoints)
    {
        const int nNumber = timepoint.GetNumber();
        if (nNumber < 0 || nNumber >= patCTimepoints::MAX_COUNT || !numbers.insert(nNumber).second ||
            !dbCPatients::IsGUID(timepoint.GettpID()))
            AfxThrowArchiveException(CArchiveException::badIndex);
    }
}

void CheckID(const CString& strID)
{
    try
    {
        dbCPatientStore::CheckID(strID);
    }
    catch (dbCException* e)
    {
        e->Delete();
        AfxThrowArchiveException(CArchiveException::badIndex);
    }
}
} // namespace

struct dbCPatient::Archive
{
    template <typename Ar> static void Own(Ar& ar, dbCPatient& patient)
    {
        Fields& f = patient.m_f;
        for (CString* pText :
             {&f.strID, &f.strGUID, &f.strLastname, &f.strFirstname, &f.strNickname, &f.strEmail, &f.strTitle,
              &f.strSalutation, &f.strModelNumber, &f.strKeywords, &f.strNotes, &f.strVeltrixID,
              &patient.m_strArchiveOffice, &patient.m_strArchiveStatus})
            Exchange(ar, *pText);
        Exchange(ar, f.dateBirth);
        Exchange(ar, f.dateRecord);
        for (int* pNumber : {&f.nGender, &f.nGenderIdentity, &f.nRace, &f.nNorm})
            Exchange(ar, *pNumber);
        if (ar.GetFormat() == 1)
        {
            Exchange(ar, f.strTeeth);
            Exchange(ar, f.strOfficeID);
            Exchange(ar, f.strStatusID);
        }
        Contacts(ar, patient.m_addresses, patient.m_phones);
    }

    template <typename Ar> static void Persons(Ar& ar, dbCPatient& patient)
    {
        if constexpr (Ar::READING)
        {
            patient.m_persons.clear();
            for (__int64 n = ar.Number(0, 16); n > 0; --n)
                Person(ar, patient.m_persons[static_cast<int>(ar.Number(0, 15))]);
        }
        else
        {
            ar.Number(static_cast<__int64>(patient.m_persons.size()));
            for (auto& [nKind, person] : patient.m_persons)
            {
                ar.Number(nKind);
                Person(ar, person);
            }
        }
    }

    template <typename Ar> static void Whole(Ar& ar, dbCPatient& patient)
    {
        Own(ar, patient);
        Persons(ar, patient);
        Rows(ar, patient.m_timepoints, patCTimepoints::MAX_COUNT,
             [&](patCTimepoint& row) { Timepoint(ar, row); });
        Rows(ar, patient.m_archiveDiagnostics, MAX_ROWS,
             [&](dbCDiagnosticInfo& row) { Diagnostic(ar, row); });
        if (ar.GetFormat() != 1)
            return;
        Rows(ar, patient.m_referrals, MAX_ROWS, [&](dbCPatientReferralsRow& row) { Referral(ar, row); });
        Rows(ar, patient.m_insurances, MAX_ROWS, [&](dbCInsurance& row) { Insurance(ar, row); });
        Rows(ar, patient.m_archiveTreatments, MAX_ROWS,
             [&](dbCPatientTreatmentStatusHistoryRow& row) { Treatment(ar, row); });
        Emails(ar, patient);
    }

    /// Only where there are any, so that earlier versions read all other patients.
    template <typename Ar> static void Emails(Ar& ar, dbCPatient& patient)
    {
        if constexpr (Ar::READING)
        {
            patient.m_archiveEmails.clear();
            patient.m_archivePatientEmails.RemoveAll();
            if (ar.IsAtEnd())
                return;
            for (__int64 n = ar.Number(0, MAX_ROWS); n > 0; --n)
            {
                dbCPersonEmails& emails = patient.m_archiveEmails[ar.Text()];
                Rows(ar, emails, MAX_ROWS, [&](CString& strAddress) { Exchange(ar, strAddress); });
            }
        }
        else
        {
            if (patient.m_archiveEmails.empty() && patient.m_archivePatientEmails.IsEmpty())
                return;
            ar.Number(static_cast<__int64>(patient.m_archiveEmails.size()));
            for (auto& [strGUID, emails] : patient.m_archiveEmails)
            {
                ar.Text(strGUID);
                Rows(ar, emails, MAX_ROWS, [&](CString& strAddress) { Exchange(ar, strAddress); });
            }
        }
        Rows(ar, patient.m_archivePatientEmails, MAX_ROWS, [&](dbSPatientEmail& row) {
            for (CString* pText : {&row.strPersonID, &row.strCategory, &row.strType, &row.strSalutation,
                                   &row.strFirstname, &row.strLastname, &row.strAddress})
                Exchange(ar, *pText);
        });
    }

    /// The addresses that a person's record has no place for.
    static void AddFurtherEmails(dbCPatient& patient, const CString& strPersonGUID, const CString& strFirst)
    {
        dbCPersonEmails emails;
        emails.LoadByPersonGUID(strPersonGUID);
        if (!emails.IsEmpty() && emails[0] == strFirst)
            emails.RemoveAt(0);
        if (!emails.IsEmpty())
            patient.m_archiveEmails[strPersonGUID] = emails;
    }

    /// What only the database knows of a stored patient.
    static void Complete(dbCPatient& patient)
    {
        const dbCReadScope scope;
        patient.m_strArchiveOffice = dbCOfficeLocations::GetOffice(patient.GetOfficeID());
        patient.m_strArchiveStatus = dbCPatientStatusList::GetStatus(patient.GetStatusID());
        dbCPatientTreatmentStatusHistoryTable history;
        history.LoadByPatID(patient.GetGUID());
        patient.m_archiveTreatments = history;
        patient.m_archiveEmails.clear();
        AddFurtherEmails(patient, patient.GetGUID(), patient.GetEmail());
        for (const auto& [nKind, person] : patient.m_persons)
            AddFurtherEmails(patient, person.GetPersonGUID(), person.GetEmail());
        for (const dbCPatientReferralsRow& row : patient.m_referrals)
            AddFurtherEmails(patient, row.Get_docID(), row.Get_docEmail());
        patient.m_archivePatientEmails.LoadOthersByPatID(patient.GetGUID());

        patient.m_archiveDiagnostics.RemoveAll();
        dbCStatement query("SELECT g.title, i.code, t.number, d.value, d.note FROM persons p"
                           " JOIN diagnostics d ON d.patient = p.id JOIN diagnosticItems i ON i.id = d.item"
                           " JOIN diagnosticGroups g ON g.id = i.diagnosticGroup LEFT JOIN timepoints t ON "
                           "t.id = d.timepoint"
                           " WHERE p.guid = ? AND g.category = 'Clinical' ORDER BY d.time, d.position, d.id");
        query.Bind(patient.GetGUID());
        while (query.Step())
        {
            dbCDiagnosticInfo info;
            info.SetGroupTitle(query.Text(0));
            info.SetItemCode(query.Text(1));
            info.SetTP(query.IsNull(2) ? -1 : query.Int(2));
            info.SetValue(query.Text(3));
            info.SetNote(query.Text(4));
            patient.m_archiveDiagnostics.Add(info);
        }
    }
};

void dbCPatient::Serialize(CArchive& ar, int nFormat)
{
    if (nFormat != 1 && nFormat != 2)
        AfxThrowInvalidArgException();
    dbCPatient patient;
    if (ar.IsStoring())
    {
        patient = *this;
        if (m_bStored && dbCSession::CurrentOrNull())
            Archive::Complete(patient);
        dbCArchiveWriter writer(nFormat);
        Archive::Whole(writer, patient);
        dbWriteArchivePayload(ar, nFormat, writer.GetPayload());
        return;
    }
    dbCArchiveReader reader(nFormat, dbReadArchivePayload(ar, nFormat));
    Archive::Whole(reader, patient);
    reader.RequireEnd();
    CheckID(patient.GetID());
    if (!dbCPatients::IsGUID(patient.GetGUID()))
        AfxThrowArchiveException(CArchiveException::badIndex);
    CheckTimepoints(patient.m_timepoints);
    *this = patient;
}
