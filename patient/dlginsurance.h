// The insurance page: the companies that insure the patient.
#pragma once

#include <afxwin.h>
#include <afxcmn.h>

#include "patient/insurancerules.h"
#include "patient/sheetpage.h"

#include <vector>

/// Page 5 of the patient information sheet. The user picks or types a company, names the policy holder and
/// the policy number and adds them to the list. The list reaches the record on the sheet's OK.
class patCDlgInsurance : public patCSheetPage
{
public:
    explicit patCDlgInsurance(patCChartSheet& sheet);

    bool Check() override;
    void CopyTo(dbCPatient& patient) override;

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;

private:
    std::vector<patInsurance> m_insurances;
};
