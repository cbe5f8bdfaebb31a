#include "cloud/download/receiver.h"

#include "app/modalrun.h"
#include "cloud/protocol/servicetime.h"
#include "cloud/res/cloudres.h"
#include "patient/idconflict.h"
#include "suite/patients/files/filehash.h"
#include "suite/util/velpath.h"
#include "suite/util/velstring.h"

#include <afxwin.h>

namespace
{
/// Keeps others from the patient while it is changed.
class PatientLock
{
public:
    explicit PatientLock(const CString& strID) : m_strID(strID)
    {
        m_bHeld = m_patients.LockPatient(m_strID, patLockExclusive, &m_strHolder) == patLockFree;
    }
    ~PatientLock()
    {
        if (m_bHeld)
            m_patients.Unlock(m_strID);
    }
    PatientLock(const PatientLock&) = delete;
    PatientLock& operator=(const PatientLock&) = delete;

    bool IsHeld() const
    {
        if (m_bHeld)
            return true;
        CString strText;
        strText.Format(IDS_CLD_IN_USE, m_strHolder.GetString());
        AfxMessageBox(strText, MB_OK | MB_ICONEXCLAMATION);
        return false;
    }

private:
    dbCPatients m_patients;
    const CString m_strID;
    CString m_strHolder;
    bool m_bHeld;
};

velCDate DateOf(const std::string& text)
{
    const auto date = cloud::ParseServiceDate(text);
    return date ? velCDate(date->year, date->month, date->day) : velCDate();
}

int GenderOf(const std::string& text)
{
    return text == "1" || text == "2" ? text[0] - '0' : 0;
}

/// The GUID, if it is one and no patient has it.
CString UsableGUID(const std::string& guid)
{
    dbCPatient stored;
    const bool bUsable = dbCPatients::IsGUID(guid.c_str()) && !stored.Load(guid.c_str(), FALSE, TRUE);
    return bUsable ? CString(guid.c_str()) : dbNewGUID();
}
CString Quote(UINT nText, LPCTSTR pszLastname, LPCTSTR pszFirstname, LPCTSTR pszID)
{
    CString strText;
    strText.Format(nText, pszLastname, pszFirstname, pszID);
    return strText;
}
} // namespace

velCReceiver::velCReceiver(CFarreachVeltrix& queue, const cloud::FileChoice& choice, const velCDate& updated)
    : m_queue(queue), m_choice(choice), m_updated(updated)
{
}

std::optional<velSReceived> velCReceiver::Receive(CVelXML& xml)
{
    if (!xml.ReadRecord(m_record) || !cloud::IsPatientId(m_record.patientId))
    {
        AfxMessageBox(IDS_CLD_RECORD_UNUSABLE, MB_OK | MB_ICONEXCLAMATION);
        return std::nullopt;
    }
    m_dateBirth = DateOf(m_record.birthDate);
    if (!FindPatient())
        return std::nullopt;

    const PatientLock lock(m_bNew ? m_strNewID : m_patient.GetID());
    if (!lock.IsHeld())
        return std::nullopt;
    if (m_bNew)
        MakeNew(xml);
    else if (!m_patient.Load(m_patient.GetGUID(), FALSE, TRUE))
        dbCException::Throw(dbErrNotFound, m_patient.GetID());
    if (xml.IsLossy())
    {
        AfxMessageBox(IDS_CLD_RECORD_CHARACTERS, MB_OK | MB_ICONEXCLAMATION);
        return std::nullopt;
    }
    if (!Plan())
        return std::nullopt;
    Apply();
    const int nResult = Store(xml);
    if (nResult != velQueued)
    {
        AfxMessageBox(nResult == velQueueExists ? IDS_CLD_ALREADY_QUEUED : IDS_CLD_RECORD_UNUSABLE,
                      MB_OK | MB_ICONEXCLAMATION);
        return std::nullopt;
    }
    m_queue.StartRasko();
    TellUnsigned();
    TellNote();
    return velSReceived{m_bNew, m_patient.GetGUID()};
}

/// Decides which local patient the record is for, by the service's ID, else by names and birth date; false
/// when it cannot be decided or the user stops it.
bool velCReceiver::FindPatient()
{
    dbCPatients patients;
    CString strGUID;
    dbSServicePatient row;
    const bool bSameRecord = patients.FindVeltrixID(m_record.serviceId.c_str(), strGUID) ||
                             (dbCServicePatients::FindByServiceID(m_record.serviceId.c_str(), row) &&
                              m_patient.Load(strGUID = row.strPatientGUID, FALSE, TRUE));
    if (bSameRecord)
    {
        if (!m_patient.Load(strGUID, FALSE, TRUE))
            dbCException::Throw(dbErrNotFound, strGUID);
        return true;
    }
    const auto similar = [&](const velCDate& date) {
        return patients.FindSimilar(m_record.firstName.c_str(), m_record.lastName.c_str(), date, &strGUID) !=
               FALSE;
    };
    if (m_dateBirth.IsValid() && similar(m_dateBirth))
        return SettleSamePerson(strGUID);
    if (similar(velCDate()))
    {
        // The one that is to be completed is the practice's own, whatever the record's ID.
        m_patient.Load(strGUID, FALSE, TRUE);
        AfxMessageBox(Quote(IDS_CLD_NO_LOCAL_BIRTHDATE, m_patient.GetLastname(), m_patient.GetFirstname(),
                            m_patient.GetID()),
                      MB_OK | MB_ICONEXCLAMATION);
        return false;
    }
    m_bNew = true;
    m_strNewID = m_record.patientId.c_str();
    return RequireFreeID();
}

/// Somebody of this name and birth date is here: the same person, or a new one under another ID.
bool velCReceiver::SettleSamePerson(const CString& strGUID)
{
    if (!m_patient.Load(strGUID, FALSE, TRUE))
        dbCException::Throw(dbErrNotFound, strGUID);
    for (;;)
    {
        CChangePatientID dialog;
        dialog.m_strProposedID = m_record.patientId.c_str();
        dialog.m_strExistingID = m_patient.GetID();
        dialog.m_strExistingPatient =
            m_patient.GetLastname() + ", " + m_patient.GetFirstname() + " ID:" + m_patient.GetID();
        if (velRunModal(dialog) != IDOK)
            return false;
        if (dialog.m_nMode == CChangePatientID::Merge)
            return true;
        if (dialog.m_strResultID.IsEmpty())
            continue;
        if (dbCPatients().IsIDFree(dialog.m_strResultID))
        {
            m_bNew = true;
            m_strNewID = dialog.m_strResultID;
            return true;
        }
        AfxMessageBox(IDS_CLD_ID_TAKEN, MB_OK | MB_ICONEXCLAMATION);
    }
}

bool velCReceiver::RequireFreeID()
{
    while (m_strNewID.IsEmpty() || !dbCPatients().IsIDFree(m_strNewID))
    {
        CGetUniquePatID dialog;
        dialog.m_strTakenID = m_strNewID.IsEmpty() ? CString(m_record.patientId.c_str()) : m_strNewID;
        dialog.m_strPatientName = (m_record.lastName + ", " + m_record.firstName).c_str();
        if (velRunModal(dialog) != IDOK)
            return false;
        m_strNewID = dialog.m_strResultID;
        if (!m_strNewID.IsEmpty() && !dbCPatients().IsIDFree(m_strNewID))
            AfxMessageBox(IDS_CLD_ID_TAKEN, MB_OK | MB_ICONEXCLAMATION);
    }
    return true;
}

void velCReceiver::MakeNew(CVelXML& xml)
{
    m_patient.Initialize();
    m_patient.SetID(m_strNewID);
    m_patient.SetGUID(UsableGUID(m_record.guid));
    m_patient.SetLastname(m_record.lastName.c_str());
    m_patient.SetFirstname(m_record.firstName.c_str());
    m_patient.SetBirthdate(m_dateBirth);
    m_patient.SetGender(GenderOf(m_record.gender));
    xml.ReadPatientDetails(m_patient);
    // Stored last; read now, so that characters which would be lost are known before anything is stored.
    xml.ReadPatientEmails();
}

bool velCReceiver::Plan()
{
    std::vector<cloud::LocalTimepoint> locals;
    for (const patCTimepoint& timepoint : m_patient.GetTimepoints())
        locals.push_back({timepoint.GettpID().GetString(), timepoint.GetName().GetString(),
                          timepoint.GetDate().ToISO().GetString(), timepoint.GetNumber()});
    const CWaitCursor wait;
    m_plan = cloud::PlanReceive(
        m_record, m_patient.GetID().GetString(), locals, m_choice,
        [this](const std::string& name, const std::string& signature) { return Compare(name, signature); });
    return m_plan.fault == cloud::PlanFault::None || TellFault();
}

/// Always false.
bool velCReceiver::TellFault() const
{
    CString strText;
    switch (m_plan.fault)
    {
    case cloud::PlanFault::TimepointNumber:
    case cloud::PlanFault::TooManyTimepoints:
        strText.Format(IDS_CLD_RECORD_TIMEPOINTS, m_plan.faultText.c_str());
        break;
    default:
        // A name may be as long as an attribute.
        strText.Format(IDS_CLD_RECORD_NAME, m_plan.faultText.substr(0, MAX_PATH).c_str());
        break;
    }
    AfxMessageBox(strText, MB_OK | MB_ICONEXCLAMATION);
    return false;
}

void velCReceiver::TellUnsigned() const
{
    constexpr std::size_t most = 10;
    if (m_plan.unsignedFiles.empty())
        return;
    CString strNames, strText;
    for (std::size_t i = 0; i < m_plan.unsignedFiles.size() && i < most; ++i)
        strNames += CString("\n  ") + m_plan.unsignedFiles[i].c_str();
    if (m_plan.unsignedFiles.size() > most)
        strNames += "\n  ...";
    strText.Format(IDS_CLD_UNSIGNED, static_cast<int>(m_plan.unsignedFiles.size()), strNames.GetString());
    AfxMessageBox(strText, MB_OK | MB_ICONINFORMATION);
}

/// What the owner writes to the recipients; their own notes the owners know.
void velCReceiver::TellNote() const
{
    constexpr std::size_t most = 2000; // characters that a box has room for
    if (m_record.note.empty() || m_record.ownerGuid == m_record.userGuid)
        return;
    CString strText;
    strText.Format(IDS_CLD_NOTE, m_record.note.substr(0, most).c_str(),
                   m_record.note.size() > most ? "..." : "");
    AfxMessageBox(strText, MB_OK | MB_ICONINFORMATION);
}

cloud::LocalFile velCReceiver::Compare(const std::string& name, const std::string& signature) const
{
    const CString strPath = velGetDataPath() + name.c_str();
    CFileStatus status;
    if (!CFile::GetStatus(strPath, status))
        return cloud::LocalFile::Absent;
    constexpr std::size_t sha512Digits = 128;
    CString strOwn;
    if (!signature.empty() &&
        SUCCEEDED(patCFileHasher(signature.size() == sha512Digits).GetHash(strPath, strOwn)) &&
        strOwn == signature.c_str())
        return cloud::LocalFile::Same;
    SYSTEMTIME written;
    const bool bOlder =
        m_updated.IsValid() && status.m_mtime.GetAsSystemTime(written) && velCDate(written) < m_updated;
    return bOlder ? cloud::LocalFile::Older : cloud::LocalFile::Newer;
}

/// Puts the plan into the patient in memory.
void velCReceiver::Apply()
{
    patCTimepoints& timepoints = m_patient.GetTimepoints();
    if (!m_bNew)
    {
        ReactivateTimepoints();
        if (m_patient.GetID().CompareNoCase(m_record.patientId.c_str()) != 0)
            AfxMessageBox(IDS_CLD_MERGED, MB_OK | MB_ICONINFORMATION);
    }
    std::vector<int> positions;
    for (std::size_t i = 0; i < m_plan.targets.size(); ++i)
    {
        const cloud::TimepointTarget& target = m_plan.targets[i];
        const cloud::RecordTimepoint& source = m_record.timepoints[i];
        positions.push_back(target.localIndex);
        if (target.localIndex >= 0)
            continue;
        dbCTimepoint timepoint;
        timepoint.SetNumber(m_patient.GetID(), target.localNumber);
        timepoint.SetName(source.name.c_str());
        timepoint.SetDate(DateOf(source.date));
        if (dbCPatients::IsGUID(source.guid.c_str()))
            timepoint.SettpID(source.guid.c_str());
        positions.back() = timepoints.GetCount();
        timepoints.Add(timepoint);
    }
    for (const cloud::PlannedImage& image : m_plan.images)
    {
        const int nType = patCImageTypes::FindType(image.group, image.type);
        patCTimepoint& timepoint = timepoints[positions[image.timepoint]];
        if (nType < 0)
            continue;
        // What is recorded here about an image that was here stays.
        if (!timepoint.HasImage(image.group, nType))
            timepoint.SetImageInfo(
                image.group, nType,
                {image.source->title.c_str(), image.source->note.c_str(), image.source->guid.c_str()});
        timepoint.SetImage(image.group, nType);
    }
}

void velCReceiver::ReactivateTimepoints()
{
    bool bAny = false;
    for (const cloud::TimepointTarget& target : m_plan.targets)
    {
        if (target.localIndex < 0 || m_patient.GetTimepoints()[target.localIndex].IsActive())
            continue;
        m_patient.GetTimepoints()[target.localIndex].SetActive(TRUE);
        bAny = true;
    }
    if (bAny)
        AfxMessageBox(Quote(IDS_CLD_INACTIVE, m_record.lastName.c_str(), m_record.firstName.c_str(),
                            m_record.patientId.c_str()),
                      MB_OK | MB_ICONINFORMATION);
}

/// Patient, task and audit event in one transaction; a velQueueResult.
int velCReceiver::Store(CVelXML& xml)
{
    const CString strEvent = velFormatTemplate(IDS_CLD_EVENT_RECEIVED, m_patient.GetID(),
                                               m_patient.GetLastname(), m_patient.GetFirstname());
    dbCTransaction transaction;
    if (m_patient.GetVeltrixID().IsEmpty())
        m_patient.SetVeltrixID(m_record.serviceId.c_str());
    if (!m_bNew)
        m_patient.Save();
    else if (!dbCPatients().AddFromArchive(m_patient))
        dbCException::Throw(dbErrDuplicateID, m_patient.GetID());
    if (m_bNew && dbCPatientEmailsContainer::TableExists())
        xml.ReadPatientEmails().Save(m_patient.GetGUID());

    // Whoever is shared from here as well keeps that number.
    dbSServicePatient row{m_patient.GetGUID(), m_record.serviceId.c_str(), m_record.serviceGuid.c_str()};
    dbCServicePatients::FindByGUID(m_patient.GetGUID(), row);
    if (row.strServiceID == m_record.serviceId.c_str())
        row.strOwnerGUID = m_record.ownerGuid.c_str();
    dbCServicePatients::Store(row);
    for (const cloud::ManifestFile& file : m_plan.files)
    {
        if (!file.catalogGuid.empty())
            dbCCatalogFiles::Store(m_patient.GetGUID(), {file.finalName.c_str(), file.catalogGuid.c_str(),
                                                         file.signature.c_str()});
    }

    const std::string name = m_record.lastName + ", " + m_record.firstName;
    CString strManifest;
    if (!xml.BuildUploadManifest({name, m_patient.GetGUID().GetString(), m_patient.GetID().GetString(),
                                  m_record.serviceGuid, m_record.serviceId},
                                 m_plan.files, strManifest))
        return velQueueLoadError;
    const int nResult = m_queue.QueueDownload(strManifest);
    if (nResult != velQueued)
        return nResult;
    CVeltrixLogin audit;
    if (m_bNew)
        audit.AddNewPatientEvent(m_patient.GetGUID(), strEvent);
    else
        audit.AddPatientModifiedEvent(m_patient.GetGUID(), strEvent);
    transaction.Commit();
    return velQueued;
}
