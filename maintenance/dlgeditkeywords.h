#pragma once

#include "app/velenums.h"
#include "maintenance/maintenanceres.h"
#include "suite/dialogs/mfcdialog.h"
#include "suite/dialogs/unicodebutton.h"
#include "suite/patients/records/dbkeywords.h"

/// Adds and removes keywords of the patient list. Nothing is stored before OK. Owns its controls and its copy
/// of the list; belongs to its caller's stack, on the user interface thread.
class CDlgEditKeywords : public mfcCDialog
{
public:
    /// The dialog edits the patient keywords whichever list is asked for.
    CDlgEditKeywords(CWnd* pParent, INI_LIST nList);

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    /// When the list cannot be loaded, says so and ends the dialog with IDCANCEL: it does not come up.
    BOOL OnInitDialog() override;
    BOOL PreTranslateMessage(MSG* pMsg) override;
    BOOL OnHelpKey(UINT nHelpID) override;
    /// Stores the list and closes; when it cannot be stored, says why and stays open.
    void OnOK() override;

    afx_msg void OnAdd();
    afx_msg void OnRemove();
    afx_msg void OnRefresh();
    afx_msg void OnUpdateAdd(CCmdUI* pCmdUI);
    afx_msg void OnUpdateRemove(CCmdUI* pCmdUI);
    DECLARE_MESSAGE_MAP()

private:
    void FillList();
    /// Whether the text was taken; when it was not, the user knows why and the text stays to be mended.
    bool AddKeyword(const CString& strKeyword);
    void ShowRefusal(const CString& strText, UINT nCaptionID);
    void AddToList(LPCTSTR pszKeyword);
    void RefreshAndFocusText();

    CKeywords m_keywords;
    INI_LIST m_nList = INI_LIST_PATIENT;
    CEdit m_editText;
    CListBox m_list;
    CUnicodeButton m_btnAdd;
    CUnicodeButton m_btnRemove;
    int m_nListExtent = 0; // width in pixels of the widest keyword
};

/// Runs the editor over a window; both results and failures as velRunModal gives them.
INT_PTR velEditKeywords(CWnd* pParent, INI_LIST nList);
