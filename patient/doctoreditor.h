#pragma once

#include "patient/detailsres.h"
#include "patient/fieldbinding.h"
#include "patient/rules/finding.h"
#include "suite/dialogs/mfcdialog.h"
#include "suite/patients/records/dbdoctors.h"

#include <optional>
#include <string>
#include <vector>

/// Edits one doctor: person, doctor type, first address, two phones and e-mail addresses; further addresses
/// and phones of the record stay as they are. OK checks the fields, writes the doctor with the e-mail
/// addresses in one transaction and closes; a failed check or write is reported and leaves the dialog open
/// with everything in it. Run it with velRunModal. Belongs to its caller's stack, on the user interface
/// thread.
class velCDlgEditDoctor : public mfcCDialog
{
public:
    /// Opens the doctor with this GUID; a null or empty one enters a new doctor.
    velCDlgEditDoctor(LPCTSTR doctorGUID, CWnd* pParent);

    /// Starts a new doctor as one of this practice, so that it is offered as treating doctor.
    void SetTreating();

    /// After IDOK the GUID of the doctor as written, new ones included.
    const CString& GetDoctorGUID() const;

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    /// Ends the dialog with IDCANCEL, after a message, when the doctor is gone.
    BOOL OnInitDialog() override;
    BOOL OnHelpKey(UINT nHelpID) override;
    void OnOK() override;

    afx_msg void OnEditTypes();
    afx_msg void OnEditEmails();
    DECLARE_MESSAGE_MAP()

private:
    /// Fills the list of types anew and selects one, none when there is no such type.
    void FillTypes(const CString& strSelected);
    std::vector<std::string> LoadFurtherEmails() const;
    void Save();
    bool Report(const pat::Finding& finding);

    dbCDoctor m_doctor;
    CString m_strGUID;
    patTFields<dbCDoctor> m_fields;
    /// The addresses behind the one in the field, none until they have been edited.
    std::optional<std::vector<std::string>> m_furtherEmails;
};
