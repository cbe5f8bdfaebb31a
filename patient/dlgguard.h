// The guardian page: the patient's guardian, who is also the billing party.
#pragma once

#include "patient/contactfields.h"
#include "patient/guardianrules.h"
#include "patient/sheetpage.h"
#include "suite/util/veldate.h"

#include <afxcmn.h>
#include <afxwin.h>

/// Page 3 of the patient information sheet: one person record of the database, attached to the patient. The
/// page owns its controls and the text of its fields.
class patCDlgGuard : public patCSheetPage
{
public:
    explicit patCDlgGuard(patCChartSheet& sheet);

    /// The guardian check and the two phone checks.
    bool Check() override;
    /// Writes the guardian with address and phones. An emptied page removes the guardian it was filled from.
    void CopyTo(dbCPatient& patient) override;

    const CString& GetLastname() const
    {
        return m_strLastname;
    }

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;

private:
    void LoadGuardian(const dbCPerson& guardian);
    pat::GuardianTexts GetTexts() const;

    CString m_strTitle;
    CString m_strFirstname;
    CString m_strLastname;
    CString m_strNickname;
    CString m_strNotes;
    patCContactFields m_contact;
    velCDate m_dateBirth;
    int m_nGenderButton = 1; ///< 0 for gender 1, 1 for every other
};
