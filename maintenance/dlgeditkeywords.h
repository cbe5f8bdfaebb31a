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
    /// Ends the dialog at once with IDCANCEL when the list cannot be loaded, so that nothing comes up.
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
    void AddToList(LPCTSTR pszKeyword);
    void RefreshAndFocusText();

    CString m_strText;
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
