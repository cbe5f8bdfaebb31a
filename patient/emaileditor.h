#pragma once

#include "suite/dialogs/mfcdialog.h"

#include <string>
#include <vector>

namespace pat
{
struct Finding;
}

/// Edits the e-mail addresses of one person, the first of which is the one that is used: add, change, remove,
/// make first. It works on a copy; after IDOK GetEmails has the result, which is the caller's to store. An
/// address that was typed and not added is never dropped by OK. Run it with velRunModal. Belongs to its
/// caller's stack, on the user interface thread.
class velCDlgEditEmails : public mfcCDialog
{
public:
    velCDlgEditEmails(std::vector<std::string> emails, CWnd* pParent);

    const std::vector<std::string>& GetEmails() const
    {
        return m_emails;
    }

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;
    BOOL OnHelpKey(UINT nHelpID) override;
    void OnOK() override;

    afx_msg void OnSelect();
    afx_msg void OnAdd();
    afx_msg void OnChange();
    afx_msg void OnRemove();
    afx_msg void OnMakeFirst();
    afx_msg void OnUpdateAdd(CCmdUI* pCmdUI);
    afx_msg void OnUpdateChange(CCmdUI* pCmdUI);
    afx_msg void OnUpdateRemove(CCmdUI* pCmdUI);
    afx_msg void OnUpdateMakeFirst(CCmdUI* pCmdUI);
    DECLARE_MESSAGE_MAP()

private:
    std::string GetEntry() const;
    /// Shows the list anew with this entry selected and in the field; -1: none, and an empty field.
    void Show(int nEntry);
    /// Checks the field and makes it this address, behind the last one a new one.
    void Take(int nEntry);
    bool Report(const pat::Finding& finding);

    std::vector<std::string> m_emails;
    int m_nShown = -1; ///< the address that the field was filled with, -1 for none
    CEdit m_editAddress;
    CListBox m_list;
};
