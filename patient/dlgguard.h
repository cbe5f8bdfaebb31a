// The guardian page: the patient's guardian, who is also the billing party.
#pragma once

#include <afxwin.h>
#include <afxcmn.h>
#include <afxdisp.h>

#include "patient/sheetpage.h"

/// Page 3 of the patient information sheet: one person record of the database, attached to the patient. The
/// page owns its controls and the text of its fields.
class patCDlgGuard : public patCSheetPage
{
public:
    explicit patCDlgGuard(patCChartSheet& sheet);

    /// The guardian check and the two phone checks.
    bool Check() override;
    /// Writes the guardian with address and phones. An empty page writes no guardian and removes none.
    void CopyTo(dbCPatient& patient) override;

    const CString& GetLastname() const
    {
        return m_strLastname;
    }

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;

private:
    void LoadGuardian(dbCPatient& patient);

    CString m_strTitle;
    CString m_strFirstname;
    CString m_strLastname;
    CString m_strNickname;
    CString m_strNotes;
    CString m_strCompany;
    CString m_strStreet;
    CString m_strCity;
    CString m_strState;
    CString m_strPostalCode;
    CString m_strCountry;
    CString m_strEmail;
    CString m_strPhone1;
    CString m_strPhone2;
    COleDateTime m_dateBirth;
    int m_nGenderButton;
    int m_nAddressButton;
    CComboBox m_listPhoneType1;
    CComboBox m_listPhoneType2;
};
