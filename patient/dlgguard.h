// The guardian page: the patient's guardian, who is also the billing party.
#pragma once

#include "patient/fieldbinding.h"
#include "patient/rules/guardianrules.h"
#include "patient/sheetpage.h"
#include "suite/patients/records/dbperson.h"

/// Page 3 of the patient information sheet: one person record of the database, attached to the patient. The
/// page owns its controls and the values of its fields.
class patCDlgGuard : public patCSheetPage
{
public:
    explicit patCDlgGuard(patCChartSheet& sheet);

    /// The guardian check and the two phone checks.
    bool Check() override;
    /// Writes the guardian with address and phones. An emptied page removes the guardian it was filled from.
    void CopyTo(dbCPatient& patient) override;

    const CString& GetLastname() const;

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;

    afx_msg void OnGender();
    DECLARE_MESSAGE_MAP()

private:
    pat::GuardianTexts GetTexts() const;

    patTFields<dbCPerson> m_fields;
};
