// The referral page: which doctors referred the patient, when, and why.
#pragma once

#include <afxwin.h>
#include <afxcmn.h>
#include <afxdisp.h>

#include "patient/referralrules.h"
#include "patient/sheetpage.h"

#include <vector>

/// Page 4 of the patient information sheet. The user picks a doctor, a date and a note and adds them to the
/// list; selecting a row brings it back into the fields to be changed or removed. The list reaches the record
/// on the sheet's OK.
class patCDlgRefer : public patCSheetPage
{
public:
    explicit patCDlgRefer(patCChartSheet& sheet);

    bool Check() override;
    void CopyTo(dbCPatient& patient) override;

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;

private:
    std::vector<patReferral> m_referrals;
};
