// The referral page: which doctors referred the patient, when, and why.
#pragma once

#include "patient/referralrules.h"
#include "patient/sheetpage.h"

#include <afxcmn.h>
#include <afxdtctl.h>
#include <afxwin.h>

#include <string>
#include <vector>

class dbCPatientReferralsContainer;
struct dbSDoctorRow;

/// Page 4 of the patient information sheet. The user picks a doctor, a date and a note and adds them to the
/// list; a row that is selected comes back into the fields to be changed or removed. The page owns the list
/// until the sheet's OK, when what the user changed in it goes into the record.
class patCDlgRefer : public patCSheetPage
{
public:
    explicit patCDlgRefer(patCChartSheet& sheet);

    /// Three checks: no referral was begun and not added, none has an impossible date, none is there twice.
    bool Check() override;
    void CopyTo(dbCPatient& patient) override;

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;
    BOOL OnSetActive() override;

    afx_msg void OnRowChanged(NMHDR* pNMHDR, LRESULT* pResult);
    afx_msg void OnAdd();
    afx_msg void OnChange();
    afx_msg void OnRemove();
    afx_msg void OnClear();
    afx_msg void OnUpdateAdd(CCmdUI* pCmdUI);
    afx_msg void OnUpdateChange(CCmdUI* pCmdUI);
    afx_msg void OnUpdateRemove(CCmdUI* pCmdUI);
    DECLARE_MESSAGE_MAP()

private:
    struct DOCTOR
    {
        std::string strID;
        std::string strName;
    };

    static BOOL AppendDoctor(const dbSDoctorRow& row, LPVOID pDoctors);

    void FillDoctors();
    void SelectDoctor(const std::string& strDoctorID);
    void LoadReferrals(dbCPatientReferralsContainer& referrals);
    pat::Referral GetEntry() const;
    void ShowEntry(const pat::Referral& entry);
    void ShowEmptyEntry();
    int GetSelectedRow() const;
    const pat::Referral* GetSelected() const;
    pat::Finding CheckDates(const std::vector<pat::Referral>& referrals) const;
    /// Checks the fields and makes them row nRow, behind the last row a new one.
    void TakeEntry(int nRow);
    void ShowRow(int nRow);

    std::vector<DOCTOR> m_doctors; ///< behind the entries of the drop-down list, without its first
    __int64 m_nDoctorsRead = -1;   ///< state of the database when they were read
    std::vector<pat::Referral> m_referrals;
    std::vector<pat::Referral> m_loaded; ///< the list as it was in the record
    CComboBox m_listDoctor;
    CDateTimeCtrl m_dateEntry;
    CString m_strNote;
    CListCtrl m_listReferrals;
};
