#include "cloud/queue/farreachveltrix.h"

#include "archive/files/filenames.h"
#include "cloud/net/serviceoptions.h"
#include "cloud/res/cloudres.h"
#include "suite/patients/records/dbemails.h"
#include "suite/patients/velpat.h"
#include "suite/util/velpath.h"

#include <afxwin.h>

#include <array>

namespace
{
void Show(BOOL bShow, UINT nText, UINT nStyle)
{
    if (bShow)
        AfxMessageBox(nText, nStyle);
}

void ShowText(BOOL bShow, UINT nText, LPCTSTR pszArgument, UINT nStyle)
{
    CString strText;
    strText.Format(nText, pszArgument);
    if (bShow)
        AfxMessageBox(strText, nStyle);
}

/// Whether a file can be made in the folder; attributes and permissions alone do not tell.
bool IsWritable(const CString& strFolder)
{
    std::array<char, MAX_PATH> name{};
    // Not every system says of a name that its file could not be made; one that was made can be deleted.
    return ::GetTempFileName(strFolder, "vel", 0, name.data()) != 0 && ::DeleteFile(name.data());
}

CString FullName(const dbCPatient& patient)
{
    return patient.GetLastname(patNameForText) + ", " + patient.GetFirstname(patNameForText);
}

/// velQueued, velQueueNoImages or velQueueImagesMissing.
int CheckImages(const dbCPatient& patient)
{
    bool bAny = false;
    for (const patCTimepoint& timepoint : patient.GetTimepoints())
    {
        for (int nGroup = 0; nGroup < patCImageTypes::GROUP_COUNT; ++nGroup)
        {
            for (int nType = 0; nType < patCImageTypes::GetTypeCount(nGroup); ++nType)
            {
                if (!timepoint.HasImage(nGroup, nType))
                    continue;
                bAny = true;
                const CString strName = timepoint.GetImageFilename(nGroup, nType);
                const std::string other = arc::AlternateImageName(strName.GetString());
                if (!velFileExists(velGetDataPath() + strName) &&
                    (other.empty() || !velFileExists(velGetDataPath() + other.c_str())))
                    return velQueueImagesMissing;
            }
        }
    }
    return bAny ? velQueued : velQueueNoImages;
}
} // namespace

CFarreachVeltrix::CFarreachVeltrix(velCTransferProgram& program) : m_program(program)
{
}

CString CFarreachVeltrix::GetComputer()
{
    return dbGetComputerName();
}

int CFarreachVeltrix::CheckRasko(BOOL bShowMessages)
{
    if (!m_xml.IsAvailable())
    {
        Show(bShowMessages, IDS_CLD_NO_XML, MB_OK);
        return velQueueNoXml;
    }
    if (!dbCRaskoTasksContainer::TableExists())
    {
        Show(bShowMessages, IDS_CLD_NO_TABLE, MB_OK | MB_ICONSTOP);
        return velQueueNoTable;
    }
    if (!m_program.IsInstalled())
    {
        Show(bShowMessages, IDS_CLD_NO_PROGRAM, MB_OK | MB_ICONSTOP);
        return velQueueNoProgram;
    }
    return velQueued;
}

bool CFarreachVeltrix::IsSetUp(BOOL bShowMessages)
{
    if (m_setup == Setup::Unknown)
        m_setup = CheckSetup(bShowMessages) ? Setup::Done : Setup::Missing;
    return m_setup == Setup::Done;
}

bool CFarreachVeltrix::CheckSetup(BOOL bShowMessages)
{
    CString strFolder;
    dbCApplicationOptionsContainer::GetApplicationOption("RASKOPATH", strFolder);
    if (strFolder.IsEmpty())
    {
        if (bShowMessages && AfxMessageBox(IDS_CLD_SETUP_ASK, MB_YESNO | MB_ICONQUESTION) == IDYES)
            m_program.ShowOptions();
        return false;
    }
    if (!velFolderExists(strFolder))
    {
        Show(bShowMessages, IDS_CLD_NO_FOLDER, MB_OK | MB_ICONEXCLAMATION);
        return false;
    }
    if (!IsWritable(strFolder))
    {
        ShowText(bShowMessages, IDS_CLD_NO_WRITE_ACCESS, strFolder, MB_OK | MB_ICONEXCLAMATION);
        return false;
    }
    velUploadScript();
    velCommandScript();
    // A program that cannot be asked, for it is not registered, tells of it itself once it runs.
    if (velServiceHost().IsEmpty() || (m_program.Connect() && !m_program.HasCredentials()))
    {
        Show(bShowMessages, IDS_CLD_NOT_CONFIGURED, MB_OK | MB_ICONEXCLAMATION);
        return false;
    }
    return true;
}

bool CFarreachVeltrix::IsPending(LPCTSTR pszPatientGUID)
{
    dbCRaskoTasksContainer pending;
    m_strOtherComputer.Empty();
    if (pending.LoadPending(pszPatientGUID) == 0)
        return false;
    if (pending[0].strQueueComputer.CompareNoCase(GetComputer()) != 0)
        m_strOtherComputer = pending[0].strQueueComputer;
    return true;
}

int CFarreachVeltrix::QueueUpload(const dbCPatient& patient, const velSUpload& upload, BOOL bShowMessages)
{
    const int nCheck = CheckRasko(bShowMessages);
    if (nCheck != velQueued)
        return nCheck;
    if (!IsSetUp(bShowMessages))
        return velQueueRefused;
    if (IsPending(patient.GetGUID()))
        return velQueueExists;
    if (!patient.GetBirthdate().IsValid())
    {
        CString strText, strCaption;
        strText.Format(IDS_CLD_NO_BIRTHDATE, patient.GetID().GetString());
        strCaption.LoadString(IDS_CLD_NO_BIRTHDATE_CAPTION);
        if (bShowMessages)
            ::MessageBox(::GetActiveWindow(), strText, strCaption, MB_OK | MB_ICONEXCLAMATION);
        return velQueueRefused;
    }
    const int nImages = CheckImages(patient);
    if (nImages != velQueued)
        return nImages;

    const CWaitCursor wait;
    dbSRaskoTask task;
    if (!m_xml.BuildPatientXml(patient, task.strData, upload.choice))
    {
        ShowText(bShowMessages, IDS_CLD_CHARACTERS, patient.GetID(), MB_OK | MB_ICONEXCLAMATION);
        return velQueueRefused;
    }
    task.nTotalBytes = m_xml.GetFileBytes();
    if (!Register(patient, upload, bShowMessages, task.strPatientID))
        return velQueueRefused;
    task.nType = dbSRaskoTask::UPLOAD;
    task.strPatientGUID = patient.GetGUID();
    task.strDescription = FullName(patient) + " - " + patient.GetID();
    const int nResult = Insert(task);
    if (nResult == velQueued)
        StartRasko();
    return nResult;
}

/// Sees to the patient's row of the service-patients table, and to who receives the record.
bool CFarreachVeltrix::Register(const dbCPatient& patient, const velSUpload& upload, BOOL bShowMessages,
                                CString& strServiceID)
{
    dbSServicePatient row;
    CString strReason;
    // A record that came from somebody else goes up as one of this practice's own.
    if (!dbCServicePatients::FindByGUID(patient.GetGUID(), row) || !row.strOwnerGUID.IsEmpty())
        strReason = m_program.RegisterPatient(patient.GetGUID(), m_xml.GetFileBytes());
    if (strReason.IsEmpty() && !(upload.strRecipients.IsEmpty() && upload.strNotes.IsEmpty()))
        strReason = m_program.SetRecipients(patient.GetGUID(), upload.strRecipients, upload.strNotes);
    const bool bKnown = dbCServicePatients::FindByGUID(patient.GetGUID(), row) && !row.strServiceID.IsEmpty();
    if (bKnown && strReason.IsEmpty())
    {
        strServiceID = row.strServiceID;
        return true;
    }
    CString strText;
    strText.Format(IDS_CLD_NOT_REGISTERED, patient.GetID().GetString());
    if (bShowMessages)
        AfxMessageBox(strReason.IsEmpty() ? strText : strReason, MB_OK | MB_ICONEXCLAMATION);
    return false;
}

/// Stores the task unless somebody else has queued the patient meanwhile.
int CFarreachVeltrix::Insert(dbSRaskoTask& task)
{
    dbCTransaction transaction;
    if (IsPending(task.strPatientGUID))
        return velQueueExists;
    task.nStatus = dbSRaskoTask::STATUS_QUEUED;
    task.strQueueComputer = GetComputer();
    dbCRaskoTasksContainer::InsertRow(task);
    transaction.Commit();
    if (m_nFirstTask == 0)
        m_nFirstTask = task.nTask;
    return velQueued;
}

int CFarreachVeltrix::QueueDownload(LPCTSTR pszManifest)
{
    dbSRaskoTask task;
    CString strName;
    if (!m_xml.LoadXml(pszManifest) || m_xml.SelectCount("//patient[@patID]") != 1)
        return velQueueLoadError;
    m_xml.GetAttribute(0, "patID", task.strPatientID);
    m_xml.GetAttribute(0, "patFullname", strName);
    m_xml.GetAttribute(0, "patGUID", task.strPatientGUID);
    task.nType = dbSRaskoTask::DOWNLOAD;
    task.strDescription = strName + " - " + task.strPatientID;
    task.strData = pszManifest;
    return Insert(task);
}

BOOL CFarreachVeltrix::StartRasko()
{
    return m_program.Wake();
}
