#pragma once

#include "patient/detailsres.h"
#include "suite/dialogs/mfcdialog.h"

/// Edits one doctor: the person, the doctor type, two addresses, phones and e-mail. OK checks the fields,
/// writes the doctor to the database and closes; a failed check or write is reported and leaves the dialog
/// open. Run it with velRunModal. Belongs to its caller's stack, on the user interface thread.
class velCDlgEditDoctor : public mfcCDialog
{
public:
    /// Opens the doctor with this GUID; a null or empty one enters a new doctor.
    velCDlgEditDoctor(LPCTSTR doctorGUID, CWnd* pParent);

    /// After IDOK the GUID of the doctor as written, new ones included.
    const CString& GetDoctorGUID() const;
};
