// The insurance page: the companies that insure the patient.
#pragma once

#include "patient/insurancerules.h"
#include "patient/sheetpage.h"
#include "suite/patients/records/dbinsurance.h"

#include <afxcmn.h>
#include <afxwin.h>

#include <vector>

/// Page 5 of the patient information sheet. The user picks or types a company, names the policy holder and
/// the policy number and adds them to the list, whose first row is the primary insurance; a row that is
/// selected comes back into the fields to be changed or removed. The page owns the list until the sheet's OK,
/// when it goes into the record; companies that the practice does not have yet are then added to its list.
class patCDlgInsurance : public patCSheetPage
{
public:
    explicit patCDlgInsurance(patCChartSheet& sheet);

    /// No insurance was begun and not added.
    bool Check() override;
    void CopyTo(dbCPatient& patient) override;

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;

    afx_msg void OnRowChanged(NMHDR* pNMHDR, LRESULT* pResult);
    afx_msg void OnAdd();
    afx_msg void OnChange();
    afx_msg void OnRemove();
    afx_msg void OnClear();
    afx_msg void OnMakePrimary();
    afx_msg void OnUpdateAdd(CCmdUI* pCmdUI);
    afx_msg void OnUpdateChange(CCmdUI* pCmdUI);
    afx_msg void OnUpdateRemove(CCmdUI* pCmdUI);
    afx_msg void OnUpdatePrimary(CCmdUI* pCmdUI);
    DECLARE_MESSAGE_MAP()

private:
    void FillCompanies();
    void LoadInsurances(const dbCInsurances& insurances);
    pat::Insurance GetEntry() const;
    void ShowEntry(const pat::Insurance& entry);
    int GetSelectedRow() const;
    const pat::Insurance* GetSelected() const;
    /// Checks the fields and makes them row nRow, behind the last row a new one.
    void TakeEntry(int nRow);
    void ShowRow(int nRow);

    dbCInsuranceCompanies m_companies;
    std::vector<pat::Insurance> m_insurances;
    std::vector<pat::Insurance> m_loaded; ///< the list as it was in the record
    CString m_strCompany;
    CString m_strHolder;
    CString m_strNumber;
    CString m_strGroup;
    CComboBox m_listCompany;
    CListCtrl m_listInsurances;
};
