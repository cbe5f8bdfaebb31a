#pragma once

#include "controls/bitmapbutton.h"
#include "maintenance/maintenanceres.h"
#include "maintenance/message.h"
#include "suite/dialogs/mfcdialog.h"

#include <functional>

/// The message's text from the string table with its arguments in place.
CString velFormatMessage(const maint::Message& message);

/// What the dialogs about a patient's records share: the buttons OK, Cancel and "?" with their images, help,
/// and how a failure is told. Owns its buttons; belongs to its caller's stack, on the user
/// interface thread.
class CRecordDialog : public mfcCDialog
{
protected:
    CRecordDialog(UINT nIDTemplate, CWnd* pParent);

    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnHelpKey(UINT nHelpID) override;

    /// Does something that may fail. A failure is told to the user once, at the marker of the message, the
    /// dialog stays as it is, and the answer is false.
    static bool Attempt(const std::function<void()>& work, UINT nMessage = IDS_RECORD_FAILED);

    /// Sets a control's text without touching one that shows it already.
    void ShowText(int nID, const CString& strText);

private:
    CVeltrixBitmapButton m_btnOK;
    CVeltrixBitmapButton m_btnCancel;
    CVeltrixBitmapButton m_btnHelp;
};
