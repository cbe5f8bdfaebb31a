// The chart page: the patient's identity and contact data.
#pragma once

#include "patient/contactfields.h"
#include "patient/sheetpage.h"
#include "suite/dialogs/cededit.h"
#include "suite/util/veldate.h"

#include <afxcmn.h>
#include <afxwin.h>

/// Page 1 of the patient information sheet. It is filled when it is first shown, checked whenever the user
/// leaves it, and copied into the record on the sheet's OK. It owns its controls and the text of its fields;
/// the teeth-information control works on the sheet's record.
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
    /// Tells that the ID is taken: message, focus on the ID field, its text selected.
    void ReportTakenID();

    const CString& GetID() const
    {
        return m_strID;
    }
    const CString& GetFirstname() const
    {
        return m_strFirstname;
    }
    const CString& GetLastname() const
    {
        return m_strLastname;
    }
    const velCDate& GetBirthdate() const
    {
        return m_dateBirth;
    }

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;

private:
    bool CheckBirthdate();
    void FillLists();
    void LoadRecord(const dbCPatient& patient);
    void ConnectTeeth();

    CString m_strID;
    CString m_strFirstname;
    CString m_strLastname;
    CString m_strNickname;
    patCContactFields m_contact;
    velCDate m_dateBirth;
    int m_nGenderButton = 1; ///< 0 for gender 1, 1 for every other
    CString m_strLoadedID;
    cedCEditID m_editID;
    CComboBox m_listGenderIdentity;
    CComboBox m_listRace;
    CWnd m_wndTeeth;
};
