#pragma once

#include "maintenance/recorddialog.h"

/// Chooses one of the practice's treatments. Owns its controls; belongs to its caller's stack, on the user
/// interface thread.
class CDlgTreatmentStatus : public CRecordDialog
{
public:
    explicit CDlgTreatmentStatus(CWnd* pParent);

    /// After IDOK the treatment that was chosen.
    const CString& GetDescription() const
    {
        return m_strDescription;
    }
    const CString& GetCode() const
    {
        return m_strCode;
    }

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;
    void OnOK() override;

    afx_msg void OnSelectionChange();
    afx_msg void OnDoubleClick();
    DECLARE_MESSAGE_MAP()

private:
    CListBox m_list;
    CStringArray m_codes; // in table order; an entry's item data is its index here
    CString m_strDescription;
    CString m_strCode;
};
