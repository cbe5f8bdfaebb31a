#include "suite/patients/records/dbpatient.h"

#include "suite/patients/records/dbcatalog.h"
#include "suite/patients/records/dbpatientstore.h"
#include "suite/patients/files/filework.h"
#include "suite/patients/files/patientfiles.h"
#include "suite/patients/store/dbtransaction.h"

#include <algorithm>
#include <utility>

dbCPatient::dbCPatient() : m_pSelf(std::make_shared<dbCPatient*>(this))
{
}

dbCPatient::~dbCPatient() = default;

dbCPatient::dbCPatient(const dbCPatient& other)
    : patCPatient(other), m_pSelf(std::make_shared<dbCPatient*>(this))
{
    *this = other;
}

dbCPatient& dbCPatient::operator=(const dbCPatient& other)
{
    if (this == &other)
        return *this;
    patCPatient::operator=(other);
    m_persons = other.m_persons;
    m_addresses = other.m_addresses;
    m_phones = other.m_phones;
    m_insurances = other.m_insurances;
    m_referrals = other.m_referrals;
    m_archiveDiagnostics = other.m_archiveDiagnostics;
    m_archiveTreatments = other.m_archiveTreatments;
    m_strArchiveOffice = other.m_strArchiveOffice;
    m_strArchiveStatus = other.m_strArchiveStatus;
    m_archiveEmails = other.m_archiveEmails;
    m_archivePatientEmails = other.m_archivePatientEmails;
    m_strLoadedID = other.m_strLoadedID;
    m_bRenameFiles = other.m_bRenameFiles;
    m_nRowVersion = other.m_nRowVersion;
    // A rollback concerns what the object was saved as, not what it holds now.
    m_pSelf = std::make_shared<dbCPatient*>(this);
    return *this;
}

// NOLINTNEXTLINE(performance-noexcept-move-constructor): see the declaration
dbCPatient& dbCPatient::operator=(dbCPatient&& other)
{
    if (this == &other)
        return *this;
    *this = std::as_const(other);
    m_pSelf = std::exchange(other.m_pSelf, std::make_shared<dbCPatient*>(&other));
    *m_pSelf = this;
    return *this;
}

void dbCPatient::Initialize()
{
    *this = dbCPatient();
}

BOOL dbCPatient::Load(LPCTSTR pszIDOrGUID, BOOL bByID, BOOL bByGUID)
{
    return dbCPatientStore::Load(*this, pszIDOrGUID, bByID, bByGUID);
}

void dbCPatient::SetID(LPCTSTR pszID, BOOL bRenameFiles)
{
    m_f.strID = pszID;
    m_bRenameFiles = bRenameFiles;
    for (patCTimepoint& timepoint : m_timepoints)
        timepoint.SetNumber(pszID, timepoint.GetNumber());
}

void dbCPatient::Save(int nOptions)
{
    dbCPatientStore::Save(*this, nOptions);
}

dbCAddress dbCPatient::GetAddress(int nIndex) const
{
    return nIndex >= 0 && nIndex < m_addresses.GetCount() ? m_addresses[nIndex] : dbCAddress();
}

void dbCPatient::SetAddress(int nIndex, const dbCAddress& address)
{
    while (m_addresses.GetCount() <= nIndex)
        m_addresses.Add(dbCAddress());
    m_addresses[nIndex] = address;
}

BOOL dbCPatient::GetPersonInfo(int nKind, dbCPerson& person) const
{
    const auto found = m_persons.find(nKind);
    if (found == m_persons.end())
        return FALSE;
    person = found->second;
    return TRUE;
}

void dbCPatient::SetPersonInfo(int nKind, const dbCPerson& person)
{
    const auto previous = m_persons.find(nKind);
    dbCPerson attached = person;
    if (nKind == dbPersonGuardian)
        attached.SetPersonGUID(previous != m_persons.end() ? previous->second.GetPersonGUID() : dbNewGUID());
    m_persons[nKind] = attached;
}

void dbCPatient::AddPersonInfo(int nKind, const dbCPerson& person)
{
    SetPersonInfo(nKind, person);
}

void dbCPatient::RemovePersonInfo(int nKind)
{
    m_persons.erase(nKind);
}

BOOL dbCPatient::SetInsuranceGUID(LPCTSTR pszPolicyGUID)
{
    const auto found =
        std::find_if(m_insurances.begin(), m_insurances.end(),
                     [&](const dbCInsurance& policy) { return policy.GetInsuranceGUID() == pszPolicyGUID; });
    if (found == m_insurances.end())
        return FALSE;
    std::rotate(m_insurances.begin(), found, found + 1);
    return TRUE;
}

void dbCPatient::AssignInsurance(const dbCInsurance& insurance)
{
    for (dbCInsurance& policy : m_insurances)
    {
        if (policy.GetInsuranceGUID() == insurance.GetInsuranceGUID())
        {
            policy = insurance;
            return;
        }
    }
    m_insurances.Add(insurance);
}

void dbCPatient::RemoveInsurance(LPCTSTR pszPolicyGUID)
{
    for (int i = m_insurances.GetCount() - 1; i >= 0; --i)
        if (m_insurances[i].GetInsuranceGUID() == pszPolicyGUID)
            m_insurances.RemoveAt(i);
}

BOOL dbCPatient::CopyTimepoint(int nIndex, patCTimepoint& timepoint) const
{
    if (nIndex < 0 || nIndex >= m_timepoints.GetCount())
        return FALSE;
    timepoint = m_timepoints[nIndex];
    return TRUE;
}

int dbCPatient::PasteTimepoint(const patCTimepoint& timepoint)
{
    if (m_timepoints.GetCount() >= patCTimepoints::MAX_COUNT)
        return patCTimepoints::RESULT_FULL;
    const int nNumber = timepoint.GetNumber();
    const bool bTaken = std::any_of(m_timepoints.begin(), m_timepoints.end(),
                                    [&](const patCTimepoint& own) { return own.GetNumber() == nNumber; });
    if (bTaken || nNumber < 0 || nNumber >= patCTimepoints::MAX_COUNT)
        return PASTE_NUMBER_TAKEN;

    patCTimepoint pasted = timepoint;
    pasted.SetNumber(m_f.strID, nNumber);
    pasted.SettpID(dbNewGUID());
    pasted.SetptshID("");
    m_timepoints.Add(pasted);
    return 0;
}

BOOL dbCPatient::CanDeletePatient() const
{
    dbCStatement query("SELECT b.amount FROM persons p JOIN balances b ON b.patient = p.id WHERE p.guid = ?");
    query.Bind(m_f.strGUID);
    return !query.Step() || query.Int64(0) == 0;
}

void dbCPatient::SetBalance(__int64 nBalance)
{
    dbCStatement write("INSERT INTO balances (patient, amount) SELECT t.person, ? FROM persons p"
                       " JOIN patients t ON t.person = p.id WHERE p.guid = ?"
                       " ON CONFLICT (patient) DO UPDATE SET amount = excluded.amount");
    write.Bind(nBalance).Bind(m_f.strGUID).Run();
    if (dbCSession::Current().GetChanges() == 0)
        dbCException::Throw(dbErrNotFound, m_f.strID);
}

BOOL dbCPatient::isDeleted() const
{
    return m_bStored && dbCPatientStore::FindRow(m_f.strGUID) == 0;
}

void dbCPatient::WritePatientFile(LPCTSTR pszFolder) const
{
    patSPatientFile file{m_f.strLastname, m_f.strFirstname, m_f.strID, {}};
    for (const patCTimepoint& timepoint : m_timepoints)
    {
        patSPatientFile::Timepoint row{timepoint.GetNumber(), timepoint.GetName(), timepoint.GetDate(), {}};
        for (int nGroup = 0; nGroup < patCImageTypes::GROUP_COUNT; ++nGroup)
            row.bits[static_cast<size_t>(nGroup)] = timepoint.GetImageBits(nGroup);
        file.timepoints.push_back(row);
    }
    patWritePatientFile(file, pszFolder);
}

void dbCPatient::DeleteTimepointImages(int nIndex)
{
    patCTimepoint& timepoint = m_timepoints.GetAt(nIndex);
    ChangeTimepoints(patListFiles(m_strLoadedID, patFileSet::TimepointImages, timepoint.GetNumber()), [&] {
        for (int nGroup = 0; nGroup < patCImageTypes::GROUP_COUNT; ++nGroup)
            timepoint.SetImageBits(nGroup, 0);
        timepoint.RemoveImageInfos();
    });
}

void dbCPatient::DeleteTimepoint(int nIndex)
{
    const int nNumber = m_timepoints.GetAt(nIndex).GetNumber();
    ChangeTimepoints(patListFiles(m_strLoadedID, patFileSet::Timepoint, nNumber),
                     [&] { m_timepoints.RemoveAt(nIndex); });
}

void dbCPatient::ChangeTimepoints(const patFileStates& files, const std::function<void()>& change)
{
    const auto work = patCFileWork::BeginRemoval(patCFileWork::RemoveFiles, m_strLoadedID, files);
    dbCTransaction transaction;
    dbCTransaction::AtEnd([pSelf = std::weak_ptr(m_pSelf), timepoints = m_timepoints] {
        if (const auto pAlive = pSelf.lock())
            (*pAlive)->m_timepoints = timepoints;
    });
    dbCCatalogFiles::Forget(m_f.strGUID, files);
    change();
    Save();
    work->Note();
    transaction.Commit();
}
