// The referral page: which doctors referred the patient, when, and why.
#pragma once

#include "patient/listpage.h"
#include "patient/rules/referralrules.h"

#include <afxdtctl.h>

#include <string>
#include <vector>

struct dbSDoctorRow;

/// Page 4 of the patient information sheet. The user picks a doctor, a date and a note and adds them to the
/// list. The rows are the sheet's (patCReferrals), which writes them on OK.
class patCDlgRefer : public patCListPage
{
public:
    explicit patCDlgRefer(patCChartSheet& sheet);

    /// No referral was begun and not added, none is there twice.
    bool Check() override;
    /// No referral has an impossible date. Depends on the birth date of the chart page too, and so is for the
    /// sheet's OK alone; it needs no window of this page.
    bool CheckDates();

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;
    BOOL OnSetActive() override;

    int GetRowCount() const override;
    std::vector<CString> GetRowTexts(int nRow) const override;
    void ShowEntry(int nRow) override;
    pat::Finding CheckEntry() const override;
    bool IsEntryComplete() const override;
    pat::Finding TakeEntry(int nRow) override;
    void EraseRow(int nRow) override;

private:
    struct DOCTOR
    {
        std::string strID;
        std::string strName;
    };

    static BOOL AppendDoctor(const dbSDoctorRow& row, LPVOID pDoctors);

    void FillDoctors();
    void SelectDoctor(const std::string& strDoctorID);
    pat::Referral GetEntry() const;
    pat::Finding CheckDatesOf(const std::vector<pat::Referral>& referrals) const;

    std::vector<DOCTOR> m_doctors; ///< behind the entries of the drop-down list, without its first
    __int64 m_nDoctorsRead = -1;   ///< state of the database when they were read
    pat::Referral m_entry;         ///< what the fields held when they were filled last
    CComboBox m_listDoctor;
    CDateTimeCtrl m_dateEntry;
    CString m_strNote;
};
