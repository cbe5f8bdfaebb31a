// The archive dialog's two internet operations.
#pragma once

#include <afxwin.h>

#include <vector>

/// Queues the patients (by ID) for upload. Answers whether anything was queued. Throws dbCException*.
bool velSavePatientsToInternet(CWnd* pParent, const std::vector<CString>& ids);

/// Runs the download list and tells the host's window, which may be null, of the patient that came. Answers
/// whether one came.
bool velGetPatientFromInternet(CWnd* pParent, HWND hHost);
