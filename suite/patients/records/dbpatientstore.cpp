#include "suite/patients/records/dbpatientstore.h"

#include "suite/patients/records/dbpatients.h"
#include "suite/patients/records/dbpersonstore.h"
#include "suite/patients/store/dbtext.h"
#include "suite/patients/store/dbtransaction.h"
#include "suite/patients/files/filework.h"
#include "suite/patients/files/patientfiles.h"
#include "suite/patients/records/patlocks.h"

#include <map>
#include <string>

namespace
{
constexpr int MAX_ID_LENGTH = 25;

// Literals, since the statements are kept by their text.
constexpr const char* FIND_OFFICE = "SELECT id FROM offices WHERE guid = ?";
constexpr const char* FIND_STATUS = "SELECT id FROM statuses WHERE guid = ?";
constexpr const char* FIND_COMPANY = "SELECT id FROM insuranceCompanies WHERE guid = ?";
constexpr const char* FIND_DOCTOR =
    "SELECT d.person FROM doctors d JOIN persons p ON p.id = d.person WHERE p.guid = ?";
constexpr const char* FIND_TREATMENT = "SELECT id FROM treatmentHistory WHERE guid = ?";

/// Whether a file named so, with whatever extension, is a device to Windows.
bool IsDeviceName(const CString& strID)
{
    CString strName = strID.SpanExcluding(".");
    strName.TrimRight();
    strName.MakeUpper();
    for (const char* psz : {"CON", "PRN", "AUX", "NUL"})
        if (strName == psz)
            return true;
    return strName.GetLength() == 4 && (strName.Left(3) == "COM" || strName.Left(3) == "LPT") &&
           isdigit(static_cast<unsigned char>(strName[3]));
}

__int64 AttachedPerson(__int64 nPatientRow, int nKind)
{
    dbCStatement query("SELECT person FROM patientPersons WHERE patient = ? AND kind = ?");
    query.Bind(nPatientRow).Bind(nKind);
    return query.Step() ? query.Int64(0) : 0;
}
} // namespace

__int64 dbFindListRow(const char* pszSql, LPCTSTR pszGUID)
{
    if (!pszGUID || !*pszGUID)
        return 0;
    dbCStatement query(pszSql);
    query.Bind(pszGUID);
    return query.Step() ? query.Int64(0) : 0;
}

__int64 dbRequireDoctor(LPCTSTR pszGUID)
{
    const __int64 nRow = dbFindListRow(FIND_DOCTOR, pszGUID);
    if (nRow == 0)
        dbCException::Throw(dbErrNotFound, pszGUID);
    return nRow;
}

__int64 dbCPatientStore::FindRow(LPCTSTR pszGUID)
{
    return dbFindListRow("SELECT t.person FROM patients t JOIN persons p ON p.id = t.person WHERE p.guid = ?",
                         pszGUID);
}

void dbCPatientStore::CheckID(const CString& strID)
{
    bool bValid =
        !strID.IsEmpty() && strID.GetLength() <= MAX_ID_LENGTH && strID.FindOneOf("\\/:*?\"<>|") < 0;
    for (int i = 0; i < strID.GetLength(); ++i)
        bValid = bValid && static_cast<unsigned char>(strID[i]) >= ' ';
    if (!bValid)
        dbCException::Throw(dbErrInvalid, "ID \"" + strID.Left(60) + "\"");
}

// Load

BOOL dbCPatientStore::Load(dbCPatient& patient, LPCTSTR pszIDOrGUID, BOOL bByID, BOOL bByGUID)
{
    static constexpr std::string_view BY_GUID =
        "SELECT t.person, t.patientID, t.genderIdentity, t.race, t.modelNumber, t.keywords, t.teeth, o.guid, "
        "s.guid,"
        " t.veltrixID, t.norm, t.recordDate, t.rowVersion FROM persons p JOIN patients t ON t.person = p.id"
        " LEFT JOIN offices o ON o.id = t.office LEFT JOIN statuses s ON s.id = t.status"
        " WHERE p.guid = ?";
    static constexpr std::string_view BY_ID =
        "SELECT t.person, t.patientID, t.genderIdentity, t.race, t.modelNumber, t.keywords, t.teeth, o.guid, "
        "s.guid,"
        " t.veltrixID, t.norm, t.recordDate, t.rowVersion FROM patients t"
        " LEFT JOIN offices o ON o.id = t.office LEFT JOIN statuses s ON s.id = t.status"
        " WHERE t.patientID = ?";

    const dbCReadScope scope;
    const BOOL bIsGUID = dbCPatients::IsGUID(pszIDOrGUID);
    if (bIsGUID ? !bByGUID : !bByID)
        return FALSE;
    dbCStatement query(bIsGUID ? BY_GUID : BY_ID);
    query.Bind(pszIDOrGUID);
    if (!query.Step())
        return FALSE;

    dbCPatient loaded;
    const __int64 nRow = query.Int64(0);
    loaded.m_f.strID = query.Text(1);
    loaded.m_f.nGenderIdentity = query.Int(2);
    loaded.m_f.nRace = query.Int(3);
    loaded.m_f.strModelNumber = query.Text(4);
    loaded.m_f.strKeywords = query.Text(5);
    loaded.m_f.strTeeth = query.Text(6);
    loaded.m_f.strOfficeID = query.Text(7);
    loaded.m_f.strStatusID = query.Text(8);
    loaded.m_f.strVeltrixID = query.Text(9);
    loaded.m_f.nNorm = query.Int(10);
    loaded.m_f.dateRecord = query.Date(11);
    loaded.m_nRowVersion = query.Int64(12);
    loaded.m_strLoadedID = loaded.m_f.strID;
    loaded.m_bStored = TRUE;

    const dbCPerson own = dbLoadPerson(nRow);
    loaded.m_f.strGUID = own.GetPersonGUID();
    loaded.m_f.strTitle = own.GetTitle();
    loaded.m_f.strFirstname = own.GetFirstname();
    loaded.m_f.strLastname = own.GetLastname();
    loaded.m_f.strNickname = own.GetNickname();
    loaded.m_f.strSalutation = own.GetSalutation();
    loaded.m_f.strEmail = own.GetEmail();
    loaded.m_f.strNotes = own.GetNotes();
    loaded.m_f.dateBirth = own.GetBirthdate();
    loaded.m_f.nGender = own.GetGender();
    loaded.m_addresses = own.GetAddresses();
    loaded.m_phones = own.GetPhones();

    LoadPersons(loaded, nRow);
    LoadInsurances(loaded, nRow);
    dbLoadReferrals(loaded.m_referrals, nRow);
    LoadTimepoints(loaded, nRow);
    patient = loaded;
    return TRUE;
}

void dbCPatientStore::LoadPersons(dbCPatient& patient, __int64 nRow)
{
    dbCStatement query("SELECT kind, person FROM patientPersons WHERE patient = ?");
    query.Bind(nRow);
    while (query.Step())
        patient.m_persons[query.Int(0)] = dbLoadPerson(query.Int64(1));
}

void dbCPatientStore::LoadInsurances(dbCPatient& patient, __int64 nRow)
{
    dbCStatement query(
        "SELECT i.guid, c.guid, i.holder, i.number, i.groupNumber, i.note, c.name FROM insurances i"
        " LEFT JOIN insuranceCompanies c ON c.id = i.company WHERE i.patient = ? ORDER BY i.position");
    query.Bind(nRow);
    while (query.Step())
    {
        dbCInsurance insurance;
        insurance.SetInsuranceGUID(query.Text(0));
        insurance.SetCompanyGUID(query.Text(1));
        insurance.SetHolder(query.Text(2));
        insurance.SetNumber(query.Text(3));
        insurance.SetGroup(query.Text(4));
        insurance.SetNote(query.Text(5));
        insurance.SetCompanyName(query.Text(6));
        patient.m_insurances.Add(insurance);
    }
}

void dbCPatientStore::LoadTimepoints(dbCPatient& patient, __int64 nRow)
{
    dbCStatement query(
        "SELECT t.id, t.guid, t.number, t.name, t.date, h.guid, t.active, t.bits0, t.bits1, t.bits2, t.bits3,"
        " t.bits4, t.bits5, t.bits6, t.bits7 FROM timepoints t"
        " LEFT JOIN treatmentHistory h ON h.id = t.treatment WHERE t.patient = ? ORDER BY t.position");
    query.Bind(nRow);
    while (query.Step())
    {
        patCTimepoint timepoint;
        timepoint.SettpID(query.Text(1));
        timepoint.SetNumber(patient.m_f.strID, query.Int(2));
        timepoint.SetName(query.Text(3));
        timepoint.SetDate(query.Date(4));
        timepoint.SetptshID(query.Text(5));
        timepoint.SetActive(query.Int(6) != 0);
        for (int nGroup = 0; nGroup < patCImageTypes::GROUP_COUNT; ++nGroup)
            timepoint.SetImageBits(nGroup, static_cast<DWORD>(query.Int64(7 + nGroup)));

        dbCStatement images("SELECT imageGroup, type, title, note, guid FROM images WHERE timepoint = ?");
        images.Bind(query.Int64(0));
        while (images.Step())
            timepoint.SetImageInfo(images.Int(0), images.Int(1),
                                   {images.Text(2), images.Text(3), images.Text(4)});
        patient.m_timepoints.Add(timepoint);
    }
}

// Save

void dbCPatientStore::Save(dbCPatient& patient, int nOptions)
{
    CheckID(patient.m_f.strID);
    const bool bNew = !patient.m_bStored;
    const bool bRenamed = !bNew && patient.m_strLoadedID != patient.m_f.strID;
    // Who has such an ID from earlier keeps it, without files.
    if ((bNew || bRenamed) && !(nOptions & dbSaveWithoutFile) && IsDeviceName(patient.m_f.strID))
        dbCException::Throw(dbErrReservedID, patient.m_f.strID);
    // What has to look at files does so before the others have to wait.
    patRequireWorkingFolder();
    std::shared_ptr<patCFileWork> pRename;
    if (bNew)
        patCFileWork::RequireNonePending(patient.m_f.strID);
    else if (bRenamed && patient.m_bRenameFiles)
        pRename = patCFileWork::BeginRename(patient.m_strLoadedID, patient.m_f.strID);

    dbCTransaction transaction;

    // What Save changes in the object is put back when the transaction, or one around it, is rolled back.
    dbCTransaction::AtEnd([pSelf = std::weak_ptr(patient.m_pSelf), strGUID = patient.m_f.strGUID,
                           strLoadedID = patient.m_strLoadedID, bStored = patient.m_bStored,
                           nVersion = patient.m_nRowVersion] {
        if (const auto pAlive = pSelf.lock())
        {
            dbCPatient& restored = **pAlive;
            restored.m_f.strGUID = strGUID;
            restored.m_strLoadedID = strLoadedID;
            restored.m_bStored = bStored;
            restored.m_nRowVersion = nVersion;
        }
    });

    if (bNew && patient.m_f.strGUID.IsEmpty())
        patient.m_f.strGUID = dbNewGUID();
    __int64 nRow = bNew ? 0 : CheckVersion(patient);
    nRow = dbSavePerson(nRow, OwnPerson(patient));
    patient.m_nRowVersion = dbNextNumber(dbCounter::Versions);
    WritePatientRow(patient, nRow, bNew);
    SavePersons(patient, nRow);
    SaveInsurances(patient, nRow);
    dbSaveReferrals(patient.m_referrals, nRow);
    SaveTimepoints(patient, nRow, bNew);
    if (bNew || bRenamed)
        patCFileWork::RequireNonePending(patient.m_f.strID);
    if (bRenamed)
        patMoveLock(patient.m_strLoadedID, patient.m_f.strID);
    if (pRename)
    {
        pRename->Note();
        patFollowAtCommit(patient.m_strLoadedID);
    }
    if (pRename || !(nOptions & dbSaveWithoutFile))
        patFollowAtCommit(patient.m_f.strID);
    patient.m_strLoadedID = patient.m_f.strID;
    patient.m_bStored = TRUE;
    transaction.Commit();
}

__int64 dbCPatientStore::CheckVersion(const dbCPatient& patient)
{
    dbCStatement query("SELECT t.person FROM persons p JOIN patients t ON t.person = p.id"
                       " WHERE p.guid = ? AND t.rowVersion = ?");
    query.Bind(patient.m_f.strGUID).Bind(patient.m_nRowVersion);
    if (!query.Step())
        dbCException::Throw(dbErrChangedElsewhere, patient.m_f.strID);
    return query.Int64(0);
}

dbCPerson dbCPatientStore::OwnPerson(const dbCPatient& patient)
{
    dbCPerson own;
    own.SetPersonGUID(patient.m_f.strGUID);
    own.SetTitle(patient.m_f.strTitle);
    own.SetFirstname(patient.m_f.strFirstname);
    own.SetLastname(patient.m_f.strLastname);
    own.SetNickname(patient.m_f.strNickname);
    own.SetSalutation(patient.m_f.strSalutation);
    own.SetEmail(patient.m_f.strEmail);
    own.SetNotes(patient.m_f.strNotes);
    own.SetBirthdate(patient.m_f.dateBirth);
    own.SetGender(patient.m_f.nGender);
    own.GetAddresses() = patient.m_addresses;
    own.GetPhones() = patient.m_phones;
    return own;
}

void dbCPatientStore::WritePatientRow(const dbCPatient& patient, __int64 nRow, bool bNew)
{
    dbCStatement write(
        bNew ? std::string_view(
                   "INSERT INTO patients (patientID, lastKey, firstKey, birthKey, genderIdentity, race,"
                   " modelNumber, keywords, teeth, office, status, veltrixID, norm, recordDate, rowVersion,"
                   " person) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)")
             : std::string_view(
                   "UPDATE patients SET patientID = ?, lastKey = ?, firstKey = ?, birthKey = ?,"
                   " genderIdentity = ?, race = ?, modelNumber = ?, keywords = ?, teeth = ?, office = ?,"
                   " status = ?, veltrixID = ?, norm = ?, recordDate = ?, rowVersion = ? WHERE person = ?"));
    const auto& fields = patient.m_f;
    write.Bind(fields.strID).BindUtf8(dbFold(fields.strLastname.GetString()));
    write.BindUtf8(dbFold(fields.strFirstname.GetString())).BindUtf8(dbDateText(fields.dateBirth, false));
    write.Bind(fields.nGenderIdentity)
        .Bind(fields.nRace)
        .Bind(fields.strModelNumber)
        .Bind(fields.strKeywords);
    write.Bind(fields.strTeeth).BindRow(dbFindListRow(FIND_OFFICE, fields.strOfficeID));
    write.BindRow(dbFindListRow(FIND_STATUS, fields.strStatusID))
        .Bind(fields.strVeltrixID)
        .Bind(fields.nNorm);
    write.BindDate(fields.dateRecord).Bind(patient.m_nRowVersion).Bind(nRow).Run();
}

void dbCPatientStore::SavePersons(const dbCPatient& patient, __int64 nRow)
{
    SaveGuardian(patient, nRow);
    dbCStatement("DELETE FROM patientPersons WHERE patient = ? AND kind <> ?")
        .Bind(nRow)
        .Bind(dbPersonGuardian)
        .Run();
    dbCStatement insert("INSERT INTO patientPersons (patient, kind, person) VALUES (?, ?, ?)");
    for (const auto& [nKind, person] : patient.m_persons)
        if (nKind != dbPersonGuardian)
            insert.Bind(nRow).Bind(nKind).Bind(dbRequireDoctor(person.GetPersonGUID())).Run();
}

void dbCPatientStore::SaveGuardian(const dbCPatient& patient, __int64 nRow)
{
    const __int64 nStored = AttachedPerson(nRow, dbPersonGuardian);
    const auto guardian = patient.m_persons.find(dbPersonGuardian);
    const bool bGiven = guardian != patient.m_persons.end();
    if (nStored != 0 && bGiven && dbFindPerson(guardian->second.GetPersonGUID()) == nStored)
    {
        dbSavePerson(nStored, guardian->second);
        return;
    }
    if (nStored != 0)
    {
        dbCStatement("DELETE FROM patientPersons WHERE patient = ? AND kind = ?")
            .Bind(nRow)
            .Bind(dbPersonGuardian)
            .Run();
        dbDeletePerson(nStored);
    }
    if (bGiven)
    {
        const __int64 nPerson = dbSavePerson(0, guardian->second);
        dbCStatement("INSERT INTO patientPersons (patient, kind, person) VALUES (?, ?, ?)")
            .Bind(nRow)
            .Bind(dbPersonGuardian)
            .Bind(nPerson)
            .Run();
    }
}

void dbCPatientStore::SaveInsurances(const dbCPatient& patient, __int64 nRow)
{
    dbCStatement("DELETE FROM insurances WHERE patient = ?").Bind(nRow).Run();
    dbCStatement insert(
        "INSERT INTO insurances (guid, patient, position, company, holder, number, groupNumber, note)"
        " VALUES (?, ?, ?, ?, ?, ?, ?, ?)");
    int nPosition = 0;
    for (const dbCInsurance& insurance : patient.m_insurances)
    {
        insert.Bind(insurance.GetInsuranceGUID()).Bind(nRow).Bind(nPosition++);
        insert.BindRow(dbFindListRow(FIND_COMPANY, insurance.GetCompanyGUID())).Bind(insurance.GetHolder());
        insert.Bind(insurance.GetNumber()).Bind(insurance.GetGroup()).Bind(insurance.GetNote()).Run();
    }
}

void dbCPatientStore::SaveTimepoints(dbCPatient& patient, __int64 nRow, bool bNew)
{
    // Stored timepoints keep their rows, which diagnostic records refer to. Their numbers are set aside
    // first, so that they can change places.
    std::map<std::string, __int64> stored;
    if (!bNew)
    {
        dbCStatement query("SELECT guid, id FROM timepoints WHERE patient = ?");
        query.Bind(nRow);
        while (query.Step())
            stored.emplace(query.Utf8(0), query.Int64(1));
        dbCStatement("UPDATE timepoints SET number = -1 - id WHERE patient = ?").Bind(nRow).Run();
    }
    int nPosition = 0;
    for (patCTimepoint& timepoint : patient.m_timepoints)
    {
        if (timepoint.GettpID().IsEmpty())
            timepoint.SettpID(dbNewGUID());
        const auto found = stored.find(timepoint.GettpID().GetString());
        const bool bInsert = found == stored.end();
        dbCStatement write(
            bInsert
                ? std::string_view("INSERT INTO timepoints (position, number, name, date, treatment, active,"
                                   " bits0, bits1, bits2, bits3, bits4, bits5, bits6, bits7, guid, patient)"
                                   " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)")
                : std::string_view("UPDATE timepoints SET position = ?, number = ?, name = ?, date = ?,"
                                   " treatment = ?, active = ?, bits0 = ?, bits1 = ?, bits2 = ?, bits3 = ?,"
                                   " bits4 = ?, bits5 = ?, bits6 = ?, bits7 = ? WHERE id = ?"));
        write.Bind(nPosition++)
            .Bind(timepoint.GetNumber())
            .Bind(timepoint.GetName())
            .BindDateTime(timepoint.GetDate());
        write.BindRow(dbFindListRow(FIND_TREATMENT, timepoint.GetptshID()))
            .Bind(timepoint.IsActive() ? 1 : 0);
        for (int nGroup = 0; nGroup < patCImageTypes::GROUP_COUNT; ++nGroup)
            write.Bind(timepoint.GetImageBits(nGroup));
        __int64 nTimepoint = 0;
        if (bInsert)
        {
            write.Bind(timepoint.GettpID()).Bind(nRow).Run();
            nTimepoint = dbCSession::Current().GetLastRow();
        }
        else
        {
            nTimepoint = found->second;
            write.Bind(nTimepoint).Run();
            dbCStatement("DELETE FROM images WHERE timepoint = ?").Bind(nTimepoint).Run();
            stored.erase(found);
        }
        dbCStatement image(
            "INSERT INTO images (timepoint, imageGroup, type, title, note, guid) VALUES (?, ?, ?, ?, ?, ?)");
        for (const auto& [slot, info] : timepoint.GetImageInfos())
            image.Bind(nTimepoint)
                .Bind(slot.first)
                .Bind(slot.second)
                .Bind(info.strTitle)
                .Bind(info.strNote)
                .Bind(info.strGUID)
                .Run();
    }
    for (const auto& [guid, nRemoved] : stored)
        dbCStatement("DELETE FROM timepoints WHERE id = ?").Bind(nRemoved).Run();
}
