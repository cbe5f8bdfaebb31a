#pragma once

// The exported functions and data of VelDlgs.dll, for hosts. Every function runs on the caller's user
// interface thread and returns when its dialog is closed; they are not re-entrant with each other. No
// exception leaves them. Results are IDOK (1) or IDCANCEL (2) unless said otherwise. A null parent means the
// thread's active window.
//
// All names but ImportPatientDiagnostics are exported decorated, as the compiler makes them from these
// declarations; g_VelIniSettingContainer, declared in app/settingscontainer.h, is exported as data.

#include "app/settingscontainer.h"
#include "app/velenums.h"
#include "app/velexport.h"
#include "suite/patients/records/dbpatients.h"

#include <afxcoll.h>
#include <afxdisp.h>
#include <afxwin.h>

/// Enters a new patient. strPatientGUID is emptied first and receives the GUID of the patient that was saved.
/// Answers 2 at once, showing nothing, for a null patient list. Records the event that the patient was
/// created.
VELDLGS_API __int64 NewPatientDlg(CWnd* pParent, dbCPatients* pPatients, CString& strPatientGUID);

/// The same, with the fields filled from a record of the caller's that stays the caller's.
VELDLGS_API __int64 NewPatientDlgWithData(CWnd* pParent, dbCPatients* pPatients, CString& strPatientGUID,
                                          dbCPatient* pInitialData);

/// Changes a stored patient and records the event. Answers 2 at once, showing nothing, for a null patient
/// list, a null patient, and a patient without an ID.
VELDLGS_API __int64 ChangePatientDlg(CWnd* pParent, dbCPatients* pPatients, dbCPatient* pPatient);

/// Adds a timepoint to the patient; nResult receives the dialog's result.
VELDLGS_API void NewTimepointDlg(CWnd* pParent, int practiceManagement, dbCPatient* pPatient,
                                 __int64& nResult);

/// Asks what to delete; the host deletes. nResult receives the dialog's result, nOperation a DELETE_OP
/// whatever the result. nTimepoint is negative when there is no current timepoint.
VELDLGS_API void DeleteDlg(CWnd* pParent, int practiceManagement, dbCPatient* pPatient, int nTimepoint,
                           int nOption2, int nOption3, CString strOption, __int64& nResult,
                           unsigned int& nOperation);

/// Saves, loads or merges archives. Answers 2 at once, changing nothing, for a null patient list.
VELDLGS_API __int64 ArchiveDlg(CWnd* pParent, int practiceManagement, dbCPatient* pPatient,
                               ARCHIVE_OP nOperation, CStringArray& selectedIDs, dbCPatients* pPatients,
                               CStringArray& strings1, CStringArray& strings2, CStringArray& strings3,
                               CStringArray& strings4, int nOption1, int nOption2);

/// Asks for a patient's new names or a timepoint's new name and date; the host renames. On any result but 1
/// the four strings are emptied and the date is marked invalid; *pOperation is then left alone.
VELDLGS_API __int64 RenameDlg(CWnd* pParent, int practiceManagement, dbCPatient* pPatient, int nTimepoint,
                              CString strPassThrough, RENAME_OP* pOperation, CString& strLastname,
                              CString& strFirstname, CString& strPassThroughOut, CString& strTimepointName,
                              COleDateTime& dateTimepoint);

/// Edits the stored patient keywords, whichever list is asked for.
VELDLGS_API __int64 EditKeywords(CWnd* pParent, INI_LIST nList);

/// Copies the diagnostic records of a serialised patient file to a stored patient. Nonzero unless the patient
/// is unknown. Has no window.
extern "C" VELDLGS_API BOOL ImportPatientDiagnostics(const char* pszPatientFile, const char* pszPatientGUID);

/// Allows or forbids saving to archives (forbidden at first) and returns the previous value.
VELDLGS_API bool SetArchivingAllowed(bool bAllowed);

/// Joins a full name by the user's order and separator, which are read once per process.
/// Null names count as empty; a null result is left alone.
VELDLGS_API void nameMakeFullname(const char* pszGiven, const char* pszFamily, CString* pResult,
                                  NAMEORDER nOrder);

/// Output procedure for GrayString: draws nLength characters (-1: up to the terminator) of the text that
/// lpText points to, and returns the text's height.
VELDLGS_API int CALLBACK GrayStringProc(HDC hDC, LPARAM lpText, int nLength);
