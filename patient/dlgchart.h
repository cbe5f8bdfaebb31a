// The chart page: the patient's identity and contact data.
#pragma once

#include "patient/fieldbinding.h"
#include "patient/sheetpage.h"
#include "suite/dialogs/cededit.h"
#include "suite/patients/records/dbpatient.h"

/// Page 1 of the patient information sheet. It is filled when it is first shown, checked whenever the user
/// leaves it, and copied into the record on the sheet's OK. It owns its controls and the values of its
/// fields, and a copy of the record for the teeth-information control, which writes its edits there, so that
/// they survive an OK that fails.
class patCDlgChart : public patCSheetPage
{
public:
    explicit patCDlgChart(patCChartSheet& sheet);

    /// Required fields, ID, birth date and the two phones; never the uniqueness of the ID.
    bool Check() override;
    void CopyTo(dbCPatient& patient) override;

    /// True when the ID may be given to the record; otherwise shows the message and selects the text of the
    /// ID. Throws dbCException* when the patient list cannot be asked.
    bool CheckUniqueID();
    /// Tells what is wrong with the ID: message, focus on the ID field, its text selected.
    void ReportID(UINT nMessage);

    const CString& GetID() const;
    const CString& GetFirstname() const;
    const CString& GetLastname() const;
    const velCDate& GetBirthdate() const;
    bool IsBirthdateChanged() const;

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;

    afx_msg void OnGender();
    DECLARE_MESSAGE_MAP()

private:
    bool CheckBirthdate();
    void ConnectTeeth();

    patTFields<dbCPatient> m_fields;
    CString m_strLoadedID;
    cedCEditID m_editID;
    dbCPatient m_teeth;
    CWnd m_wndTeeth;
};
