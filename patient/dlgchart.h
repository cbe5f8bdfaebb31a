// The chart page: the patient's identity and contact data.
#pragma once

#include <afxwin.h>
#include <afxcmn.h>
#include <afxdisp.h>

#include "patient/sheetpage.h"

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
    /// ID.
    bool CheckUniqueID();
    /// Tells that the ID is taken: message, focus on the ID field, its text selected.
    void ReportTakenID();

    /// True when company, street, city, state or postal code is filled in.
    bool HasAddress() const;

    /// Whether the teeth-information control has to write its edits into the record on the sheet's OK.
    bool HasTeethControl() const
    {
        return m_wndTeeth.m_hWnd != nullptr && m_wndTeeth.IsWindowEnabled();
    }

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
    const COleDateTime& GetBirthdate() const
    {
        return m_dateBirth;
    }

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;

private:
    void FillLists();
    void LoadRecord(dbCPatient& patient);

    CString m_strID;
    CString m_strFirstname;
    CString m_strLastname;
    CString m_strNickname;
    CString m_strPhone1;
    CString m_strPhone2;
    CString m_strCompany;
    CString m_strStreet;
    CString m_strCity;
    CString m_strState;
    CString m_strPostalCode;
    CString m_strCountry;
    CString m_strEmail;
    COleDateTime m_dateBirth;
    int m_nGenderButton;
    int m_nAddressButton;
    CString m_strLoadedID;
    CComboBox m_listPhoneType1;
    CComboBox m_listPhoneType2;
    CComboBox m_listGenderIdentity;
    CComboBox m_listRace;
    CWnd m_wndTeeth;
};
