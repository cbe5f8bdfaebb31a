#include "app/exports/veldlgs.h"

#include "app/appres.h"
#include "app/callscopes.h"
#include "app/eventtext.h"
#include "app/fullname.h"
#include "app/modalrun.h"
#include "app/velapp.h"
#include "archive/dialogs/archdummydlg.h"
#include "maintenance/diagnosticsimport.h"
#include "maintenance/dlgdelete.h"
#include "maintenance/dlgeditkeywords.h"
#include "maintenance/dlgnewtimepoint.h"
#include "maintenance/dlgrename.h"
#include "patient/chartsheet.h"
#include "suite/patients/records/veltrixlogin.h"
#include "suite/util/velstring.h"

#include <stdexcept>

namespace
{

CVeltrixLogin auditLog;

CString MakeSheetCaption(const dbCPatient* pExisting)
{
    CString strCaption;
    if (pExisting == nullptr)
    {
        strCaption.LoadString(IDS_NEW_PATIENT_CAPTION);
        return strCaption;
    }
    const CString strFullname =
        velMakeFullname(pExisting->GetFirstname(0), pExisting->GetLastname(0), NAMEORDER_DEFAULT);
    return velFormatTemplate(IDS_CHANGE_PATIENT_CAPTION, strFullname, pExisting->GetID());
}

/// Enters a new patient, or changes an existing one. Receives the ID of what was saved, if anything was.
INT_PTR RunPatientSheet(CWnd* pParent, const dbCPatient* pExisting, dbCPatient* pInitialData,
                        CString& strSavedID)
{
    return velGuard(IDCANCEL, IDS_CALL_FAILED, [&] {
        const CString strExistingID = pExisting != nullptr ? pExisting->GetID() : CString();
        patCChartSheet sheet(strSavedID, MakeSheetCaption(pExisting), pParent, 0,
                             pExisting != nullptr ? strExistingID.GetString() : nullptr, pInitialData);
        sheet.m_psh.dwFlags &= ~static_cast<DWORD>(PSH_HASHELP);
        sheet.m_psh.dwFlags |= PSH_NOAPPLYNOW;
        return velRunModal(sheet, [&] { return !strSavedID.IsEmpty(); });
    });
}

/// Records what happened to a patient that has been saved. The patient is in the database whatever happens
/// here, so a failure is told to the user and changes no result. Returns the patient's GUID.
CString RecordEvent(const CString& strSavedID, app::PatientChange nChange)
{
    CString strGUID;
    velGuard(0, IDS_EVENT_FAILED, [&]() -> INT_PTR {
        dbCPatient patient;
        if (!patient.Load(strSavedID, TRUE, TRUE))
            throw std::runtime_error(velFormatTemplate(IDS_EVENT_NO_PATIENT, strSavedID).GetString());
        strGUID = patient.GetGUID();
        const std::string text =
            app::PatientEventText(nChange, patient.GetID().GetString(), patient.GetLastname(1).GetString(),
                                  patient.GetFirstname(1).GetString());
        if (nChange == app::PatientChange::Modified)
            auditLog.AddPatientModifiedEvent(strGUID, text.c_str());
        else
            auditLog.AddNewPatientEvent(strGUID, text.c_str());
        return 0;
    });
    return strGUID;
}

INT_PTR EnterNewPatient(CWnd* pParent, dbCPatients* pPatients, CString& strPatientGUID,
                        dbCPatient* pInitialData, app::PatientChange nChange)
{
    strPatientGUID.Empty();
    if (pPatients == nullptr)
        return IDCANCEL;

    const CPatientsScope patients(pPatients);
    const CPracticeManagementScope practiceManagement(0);
    const CNewPatientScope newPatient;
    CString strSavedID;
    const INT_PTR nResult = RunPatientSheet(pParent, nullptr, pInitialData, strSavedID);
    if (nResult == IDOK && !strSavedID.IsEmpty())
        strPatientGUID = RecordEvent(strSavedID, nChange);
    return nResult;
}

} // namespace

__int64 NewPatientDlg(CWnd* pParent, dbCPatients* pPatients, CString& strPatientGUID)
{
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    return EnterNewPatient(pParent, pPatients, strPatientGUID, nullptr, app::PatientChange::Created);
}

__int64 NewPatientDlgWithData(CWnd* pParent, dbCPatients* pPatients, CString& strPatientGUID,
                              dbCPatient* pInitialData)
{
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    return EnterNewPatient(pParent, pPatients, strPatientGUID, pInitialData,
                           app::PatientChange::CreatedFromDicom);
}

__int64 ChangePatientDlg(CWnd* pParent, dbCPatients* pPatients, dbCPatient* pPatient)
{
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    // Without an ID the sheet would enter a new patient.
    if (pPatients == nullptr || pPatient == nullptr || pPatient->GetID().IsEmpty())
        return IDCANCEL;

    const CPatientsScope patients(pPatients);
    const CPracticeManagementScope practiceManagement(0);
    CString strSavedID;
    const INT_PTR nResult = RunPatientSheet(pParent, pPatient, nullptr, strSavedID);
    if (nResult == IDOK && !strSavedID.IsEmpty())
        RecordEvent(strSavedID, app::PatientChange::Modified);
    return nResult;
}

void NewTimepointDlg(CWnd* pParent, int practiceManagement, dbCPatient* pPatient, __int64& nResult)
{
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    const CPracticeManagementScope scope(practiceManagement);
    nResult = velGuard(IDCANCEL, IDS_CALL_FAILED, [&] { return velRunNewTimepoint(pParent, pPatient); });
}

void DeleteDlg(CWnd* pParent, int practiceManagement, dbCPatient* pPatient, int nTimepoint, int /*nOption2*/,
               // NOLINTNEXTLINE(performance-unnecessary-value-param): hosts hand a copy over
               int /*nOption3*/, CString /*strOption*/, __int64& nResult, unsigned int& nOperation)
{
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    const CPracticeManagementScope scope(practiceManagement);
    nOperation = nTimepoint < 0 ? DELETE_PATIENT : DELETE_TIMEPOINT; // what the dialog starts on
    nResult = velGuard(IDCANCEL, IDS_CALL_FAILED,
                       [&] { return velRunDelete(pParent, pPatient, nTimepoint, nOperation); });
}

__int64 ArchiveDlg(CWnd* pParent, int practiceManagement, dbCPatient* pPatient, ARCHIVE_OP nOperation,
                   CStringArray& selectedIDs, dbCPatients* pPatients, CStringArray& strings1,
                   CStringArray& strings2, CStringArray& strings3, CStringArray& strings4, int nOption1,
                   int nOption2)
{
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    if (pPatients == nullptr)
        return IDCANCEL;

    const CPatientsScope patients(pPatients);
    const CPracticeManagementScope scope(practiceManagement);
    VelApp()->SetArchiveOptions(nOption1, nOption2);
    return velGuard(IDCANCEL, IDS_CALL_FAILED, [&] {
        CDlgArchDummy dialog(pParent, nOperation, pPatient, selectedIDs, strings1, strings2, strings3,
                             strings4);
        return velRunModal(dialog);
    });
}

__int64 RenameDlg(
    CWnd* pParent, int practiceManagement, dbCPatient* pPatient, int nTimepoint,
    CString strPassThrough, // NOLINT(performance-unnecessary-value-param): hosts pass it by value
    RENAME_OP* pOperation, CString& strLastname, CString& strFirstname, CString& strPassThroughOut,
    CString& strTimepointName, COleDateTime& dateTimepoint)
{
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    const CPracticeManagementScope scope(practiceManagement);
    velRenameResult renamed;
    const INT_PTR nResult = velGuard(IDCANCEL, IDS_CALL_FAILED, [&] {
        return velRunRename(pParent, pPatient, nTimepoint, strPassThrough, pOperation, renamed);
    });
    if (nResult != IDOK)
    {
        renamed = velRenameResult();
        renamed.dateTimepoint.SetStatus(COleDateTime::invalid);
    }
    strLastname = renamed.strLastname;
    strFirstname = renamed.strFirstname;
    strPassThroughOut = renamed.strPassThrough;
    strTimepointName = renamed.strTimepointName;
    dateTimepoint = renamed.dateTimepoint;
    return nResult;
}

__int64 EditKeywords(CWnd* pParent, INI_LIST nList)
{
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    return velEditKeywords(pParent, nList);
}

BOOL ImportPatientDiagnostics(const char* pszPatientFile, const char* pszPatientGUID)
{
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    return velImportDiagnostics(pszPatientFile, pszPatientGUID);
}

bool SetArchivingAllowed(bool bAllowed)
{
    return VelApp()->SetArchivingAllowed(bAllowed);
}

void nameMakeFullname(const char* pszGiven, const char* pszFamily, CString* pResult, NAMEORDER nOrder)
{
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    if (pResult == nullptr)
        return;
    velGuard(0, IDS_CALL_FAILED, [&]() -> INT_PTR {
        *pResult = velMakeFullname(pszGiven, pszFamily, nOrder);
        return 0;
    });
}

int CALLBACK GrayStringProc(HDC hDC, LPARAM lpText, int nLength)
{
    if (lpText == 0)
        return 0;
    RECT rect = {0, 0, 10000, 10000};
    return ::DrawTextA(hDC, reinterpret_cast<LPCSTR>(lpText), nLength, &rect, 0);
}
