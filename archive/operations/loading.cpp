#include "archive/operations/loading.h"

#include "archive/res/archivedlgres.h"
#include "archive/operations/archiverecord.h"
#include "archive/files/filenames.h"
#include "archive/work/filecopies.h"
#include "suite/patients/records/dbpatients.h"
#include "suite/patients/records/veltrixlogin.h"
#include "suite/patients/store/dbexception.h"
#include "suite/patients/store/dbsteps.h"
#include "suite/patients/store/dbtransaction.h"
#include "suite/util/velpath.h"
#include "suite/util/velstring.h"

arcCLoading::arcCLoading() : m_scratch(arc::WindowsFileSystem(), velGetTempPath().GetString())
{
}

arc::ScratchState arcCLoading::Begin()
{
    const arc::ScratchState state = m_scratch.Take();
    dbStep("load.begun");
    return state;
}

bool arcCLoading::Read()
{
    arc::FileSystem& files = arc::WindowsFileSystem();
    std::vector<arc::FolderEntry> entries;
    if (!arcReadUnpackedRecord(files, Folder(), m_archived) || !files.List(Folder(), "*", entries))
        return false;
    for (const arc::FolderEntry& entry : entries)
    {
        if (!entry.info.IsFolder())
            m_unpacked.push_back(entry.name);
    }
    dbStep("load.read");
    return true;
}

void arcCLoading::Note()
{
    m_placement.Note();
    dbStep("load.noted");
}

bool arcCLoading::Carry(const arcProgress& progress)
{
    const bool bCarried = m_placement.Carry(progress);
    dbStep("load.placed");
    return bCarried;
}

bool arcCLoading::Commit()
{
    dbCTransaction transaction;
    if (!Store(transaction))
        return false;
    m_placement.Keep();
    dbStep("load.stored");
    transaction.Commit();
    dbStep("load.committed");
    return true;
}

void arcCLoading::Clear()
{
    m_scratch.GiveBack();
}

CString arcCPatientLoading::GetID() const
{
    return m_archived.GetID();
}

const dbCPatient& arcCPatientLoading::GetPatient() const
{
    return m_archived;
}

bool arcCPatientLoading::Accept()
{
    dbCPatient stored;
    if (stored.Load(GetID()) || stored.Load(m_archived.GetGUID(), FALSE, TRUE))
    {
        AfxMessageBox(velFormatTemplate(IDS_ARC_ALREADY_EXISTS, arcFullName(stored), stored.GetID()),
                      MB_OK | MB_ICONEXCLAMATION);
        return false;
    }
    if (!dbCPatients().IsIDFree(GetID()))
    {
        AfxMessageBox(velFormatTemplate(IDS_ARC_MARKED_DELETED, arcFullName(m_archived), GetID()),
                      MB_OK | MB_ICONEXCLAMATION);
        return false;
    }
    return true;
}

void arcCPatientLoading::Plan()
{
    arc::FileSystem& files = arc::WindowsFileSystem();
    const std::string id = GetID().GetString();
    const std::string folder = velGetDataPath().GetString();
    const std::string patientFile = arc::PatientFileName(id);
    if (!files.Query(arc::JoinPath(folder, patientFile)).IsAbsent())
        dbCException::Throw(dbErrExists, patientFile.c_str());
    for (const std::string& name : m_unpacked)
    {
        const auto identity = pat::IdentifyFile(name, id);
        if (identity && pat::IsRecord(identity->kind))
            continue;
        const std::string source = arc::JoinPath(Folder(), name);
        const std::string target = arc::JoinPath(folder, name);
        // What may be another patient's file stays as it is.
        const bool bStays =
            identity && identity->kind == pat::FileKind::Morph && !files.Query(target).IsAbsent();
        if (identity && !bStays)
            m_placement.Add(source.c_str(), name.c_str(), true);
        else if (!identity || !arc::SameContents(files, source, target))
            m_left.push_back(name);
    }
    m_placement.Check();
}

bool arcCPatientLoading::Store(dbCTransaction& transaction)
{
    const int nReferrals = m_archived.GetReferrals().GetCount();
    bool bAdded = false;
    try
    {
        bAdded = dbCPatients().AddFromArchive(m_archived) != FALSE;
    }
    catch (CException* e)
    {
        e->Delete();
    }
    if (!bAdded)
    {
        transaction.Rollback(); // nobody waits for the user's answer
        AfxMessageBox(IDS_ARC_SAVE_PATIENT_FAILED, MB_OK | MB_ICONSTOP);
        return false;
    }
    m_nReferralsLeft = nReferrals - m_archived.GetReferrals().GetCount();
    CVeltrixLogin().AddArchivedPatientEvent(m_archived.GetGUID(),
                                            arcEventText(IDS_ARC_EVENT_LOADED, m_archived));
    return true;
}

arcCMerging::arcCMerging(const CString& strID) : m_strID(strID)
{
}

CString arcCMerging::GetID() const
{
    return m_strID;
}

const dbCPatient& arcCMerging::GetPatient() const
{
    return m_patient;
}

bool arcCMerging::Accept()
{
    if (!m_patient.Load(m_strID))
        dbCException::Throw(dbErrNotFound, m_strID);
    const int nCount = static_cast<int>(m_archived.GetTimepoints().GetCount());
    for (int i = 0; i < nCount; ++i)
    {
        patCTimepoint timepoint;
        m_archived.CopyTimepoint(i, timepoint);
        const int nOld = timepoint.GetNumber();
        const int nNew = m_patient.GetTimepoints().GetFreeNumber();
        if (nNew >= 0)
            timepoint.SetBaseFilename(arc::TimepointBaseName(m_patient.GetID().GetString(), nNew).c_str());
        if (nNew < 0 || m_patient.PasteTimepoint(timepoint) != 0)
        {
            AfxMessageBox(IDS_ARC_TOO_MANY_TIMEPOINTS, MB_OK | MB_ICONSTOP);
            return false;
        }
        m_newNumbers[nOld] = nNew;
    }
    return true;
}

void arcCMerging::Plan()
{
    for (const std::string& name : m_unpacked)
    {
        const auto identity = pat::IdentifyFile(name, m_archived.GetID().GetString());
        const auto number = identity ? m_newNumbers.find(identity->timepoint) : m_newNumbers.end();
        if (number == m_newNumbers.end())
            continue; // of no timepoint
        const std::string target = pat::MovedFileName(name, m_archived.GetID().GetString(),
                                                      m_patient.GetID().GetString(), number->second);
        m_placement.Add(arc::JoinPath(Folder(), name).c_str(), target.c_str(), true);
    }
    m_placement.Check();
}

bool arcCMerging::Store(dbCTransaction&)
{
    m_patient.Save();
    CVeltrixLogin().AddArchivedPatientEvent(m_patient.GetGUID(),
                                            arcEventText(IDS_ARC_EVENT_MERGED, m_patient));
    return true;
}
