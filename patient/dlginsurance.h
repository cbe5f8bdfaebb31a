// The insurance page: the companies that insure the patient.
#pragma once

#include "patient/rules/insurancerules.h"
#include "patient/listpage.h"
#include "suite/patients/records/dbinsurance.h"

#include <vector>

/// Page 5 of the patient information sheet. The user picks or types a company, names the policy holder and
/// the policy number and adds them to the list, whose first row is the primary insurance. The page owns the
/// rows until the sheet's OK, when they go into the record; companies that the practice does not have yet are
/// then added to its list.
class patCDlgInsurance : public patCListPage
{
public:
    explicit patCDlgInsurance(patCChartSheet& sheet);

    /// No insurance was begun and not added.
    bool Check() override;
    void CopyTo(dbCPatient& patient) override;

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;

    int GetRowCount() const override;
    std::vector<CString> GetRowTexts(int nRow) const override;
    void ShowEntry(int nRow) override;
    pat::Finding CheckEntry() const override;
    bool IsEntryComplete() const override;
    pat::Finding TakeEntry(int nRow) override;
    void EraseRow(int nRow) override;

    afx_msg void OnMakePrimary();
    afx_msg void OnUpdatePrimary(CCmdUI* pCmdUI);
    DECLARE_MESSAGE_MAP()

private:
    void FillCompanies();
    void LoadInsurances(const dbCInsurances& insurances);
    pat::Insurance GetEntry() const;

    dbCInsuranceCompanies m_companies;
    std::vector<pat::Insurance> m_insurances;
    std::vector<pat::Insurance> m_loaded; ///< the rows as they were in the record
    pat::Insurance m_entry;               ///< what the fields held when they were filled last
    CString m_strCompany;
    CString m_strHolder;
    CString m_strNumber;
    CString m_strGroup;
    CComboBox m_listCompany;
};
