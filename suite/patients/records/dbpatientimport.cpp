// Storing a patient that comes from an archive: what it refers to is found or made in this practice.

#include "suite/patients/records/dbdoctors.h"
#include "suite/patients/records/dboffices.h"
#include "suite/patients/records/dbpatients.h"
#include "suite/patients/records/dbpatientstore.h"
#include "suite/patients/store/dbtext.h"
#include "suite/patients/store/dbtransaction.h"

namespace
{
/// GUID of the row with this GUID, else of the one with this name, else empty.
CString Match(std::string_view byGuid, std::string_view byName, const CString& strGUID,
              const CString& strName)
{
    dbCStatement exact(byGuid);
    exact.Bind(strGUID);
    if (exact.Step())
        return strGUID;
    dbCStatement named(byName);
    named.BindUtf8(dbFold(strName.GetString()));
    return named.Step() ? named.Text(0) : CString();
}

/// The same, and where there is no such row but a name, the GUID of the one that is added for it.
template <typename Add>
CString Require(std::string_view byGuid, std::string_view byName, const CString& strGUID,
                const CString& strName, Add add)
{
    const CString strFound = Match(byGuid, byName, strGUID, strName);
    return strFound.IsEmpty() && !dbFold(strName.GetString()).empty() ? add(strName) : strFound;
}

using Emails = std::map<CString, dbCPersonEmails>;

/// Gives a person that was just stored the addresses that came with it.
void StoreEmails(const Emails& emails, const CString& strArchivedGUID, const CString& strGUID)
{
    const auto found = emails.find(strArchivedGUID);
    if (found == emails.end())
        return;
    dbCPersonEmails all;
    all.LoadByPersonGUID(strGUID);
    for (const CString& strAddress : found->second)
        all.Add(strAddress);
    all.Save(strGUID);
}

/// The GUID of the doctor with this GUID or name; one that this practice does not have is added.
CString RequireDoctor(const dbCPerson& person, const Emails& emails)
{
    dbCDoctor doctor;
    if (dbCPatients::IsGUID(person.GetPersonGUID()) && doctor.Load(person.GetPersonGUID()))
        return doctor.GetGUID();
    dbCStatement named("SELECT p.guid FROM doctors d JOIN persons p ON p.id = d.person WHERE d.lastKey = ? "
                       "AND d.firstKey = ?");
    named.BindUtf8(dbFold(person.GetLastname().GetString()))
        .BindUtf8(dbFold(person.GetFirstname().GetString()));
    if (named.Step())
        return named.Text(0);
    if (dbFold(person.GetLastname().GetString()).empty())
        return CString();
    doctor.GetPerson() = person;
    dbCStatement taken("SELECT 1 FROM persons WHERE guid = ?");
    taken.Bind(person.GetPersonGUID());
    if (!dbCPatients::IsGUID(person.GetPersonGUID()) || taken.Step())
        doctor.GetPerson().SetPersonGUID("");
    doctor.Save();
    StoreEmails(emails, person.GetPersonGUID(), doctor.GetGUID());
    return doctor.GetGUID();
}

void StoreTreatments(const dbCPatient& patient)
{
    dbCStatement insert("INSERT INTO treatmentHistory (guid, patient, description, code, active, time)"
                        " SELECT ?, id, ?, ?, ?, ? FROM persons WHERE guid = ? ON CONFLICT DO NOTHING");
    for (const auto& row : patient.GetArchiveTreatments())
    {
        insert.Bind(row.GetptshID()).Bind(row.GetDescription()).Bind(row.GetNewCode()).Bind(row.GetActive());
        insert.BindDateTime(row.GetDateTime()).Bind(patient.GetGUID()).Run();
    }
}

/// The item with this group and code; one that this practice does not have is added, named by its code.
CString RequireItem(const dbCDiagnosticInfo& info)
{
    const dbCDiagnosticGroup group(info.GetGroupTitle(), "Clinical");
    for (int i = 0; i < group.GetItemCount(); ++i)
        if (group.GetItem(i).GetItemCode().CompareNoCase(info.GetItemCode()) == 0)
            return group.GetItem(i).GetdtID();
    return dbCDiagnosticGroup::DefineItem(info.GetGroupTitle(), "Clinical", info.GetItemCode(),
                                          info.GetItemCode());
}

void StoreDiagnostics(const dbCPatient& patient)
{
    dbCPatientDiagnostics writer(patient.GetGUID(), 0, "Clinical");
    const COleDateTime now = COleDateTime::GetCurrentTime();
    int nPosition = 0;
    for (const dbCDiagnosticInfo& info : patient.GetArchiveDiagnostics())
    {
        writer.AddDiagnosticRecord(RequireItem(info), info.GetTP(), info, nPosition,
                                   now + COleDateTimeSpan(0, 0, 0, nPosition));
        ++nPosition;
    }
}
} // namespace

BOOL dbCPatients::AddFromArchive(dbCPatient& patient)
{
    dbCTransaction transaction;
    if (!IsIDFree(patient.GetID()) || dbCPatientStore::FindRow(patient.GetGUID()) != 0)
        return FALSE;

    dbCPatient added = patient;
    added.m_bStored = FALSE;
    added.m_strLoadedID.Empty();
    added.SetOfficeID(Require("SELECT 1 FROM offices WHERE guid = ?",
                              "SELECT guid FROM offices WHERE nameKey = ?", added.GetOfficeID(),
                              added.m_strArchiveOffice,
                              [](const CString& str) { return dbCOfficeLocations().AddOffice(str); }));
    added.SetStatusID(Require("SELECT 1 FROM statuses WHERE guid = ?",
                              "SELECT guid FROM statuses WHERE nameKey = ?", added.GetStatusID(),
                              added.m_strArchiveStatus,
                              [](const CString& str) { return dbCPatientStatusList().AddStatus(str); }));
    for (auto person = added.m_persons.begin(); person != added.m_persons.end();)
    {
        if (person->first == dbPersonGuardian)
        {
            dbCStatement taken("SELECT 1 FROM persons WHERE guid = ?");
            taken.Bind(person->second.GetPersonGUID());
            if (!IsGUID(person->second.GetPersonGUID()) || taken.Step())
                person->second.SetPersonGUID(dbNewGUID());
            ++person;
            continue;
        }
        const CString strGUID = RequireDoctor(person->second, added.m_archiveEmails);
        person->second.SetPersonGUID(strGUID);
        person = strGUID.IsEmpty() ? added.m_persons.erase(person) : std::next(person);
    }
    for (int i = added.m_referrals.GetCount() - 1; i >= 0; --i)
    {
        dbCPatientReferralsRow& row = added.m_referrals[i];
        dbCPerson doctor;
        doctor.SetPersonGUID(row.Get_docID());
        doctor.SetFirstname(row.Get_docFirstname());
        doctor.SetLastname(row.Get_docLastname());
        doctor.SetEmail(row.Get_docEmail());
        row.Set_docID(RequireDoctor(doctor, added.m_archiveEmails));
        row.Set_refID(dbNewGUID());
        if (row.Get_docID().IsEmpty())
            added.m_referrals.RemoveAt(i);
    }
    for (dbCInsurance& insurance : added.m_insurances)
    {
        insurance.SetInsuranceGUID(dbNewGUID());
        insurance.SetCompanyGUID(
            Require("SELECT 1 FROM insuranceCompanies WHERE guid = ?",
                    "SELECT guid FROM insuranceCompanies WHERE nameKey = ?", insurance.GetCompanyGUID(),
                    insurance.GetCompanyName(),
                    [](const CString& str) { return dbCInsuranceCompanies::FindOrAdd(str); }));
    }
    for (patCTimepoint& timepoint : added.m_timepoints)
    {
        dbCStatement taken("SELECT 1 FROM timepoints WHERE guid = ?");
        taken.Bind(timepoint.GettpID());
        if (taken.Step())
            timepoint.SettpID(dbNewGUID());
        timepoint.SetNumber(added.GetID(), timepoint.GetNumber());
    }

    // The treatment history refers to the patient and the timepoints to the history: the patient is stored
    // first without its links, then with them.
    added.Save(dbSaveWithoutFile);
    StoreTreatments(added);
    added.Save();
    StoreDiagnostics(added);
    StoreEmails(added.m_archiveEmails, added.GetGUID(), added.GetGUID());
    dbCPerson archived, guardian;
    if (patient.GetPersonInfo(dbPersonGuardian, archived) && added.GetPersonInfo(dbPersonGuardian, guardian))
        StoreEmails(added.m_archiveEmails, archived.GetPersonGUID(), guardian.GetPersonGUID());
    if (!added.m_archivePatientEmails.IsEmpty())
        added.m_archivePatientEmails.Save(added.GetGUID());
    transaction.Commit();
    patient = added;
    return TRUE;
}
