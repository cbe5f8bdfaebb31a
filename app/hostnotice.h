#pragma once

#include <afxwin.h>

/// Tells the host's window that something has happened to a patient: posts VELDLGS_PATIENT_CHANGED with the
/// event (ARCHIVE_NOTIFY_...) and a copy of the GUID, which the host frees with delete[]. Does nothing when
/// there is no such window. From any thread.
void velNotifyHost(HWND hHost, int nEvent, const CString& strGUID);
