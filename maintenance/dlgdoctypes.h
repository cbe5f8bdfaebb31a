#pragma once

#include <afxwin.h>

/// "Edit Doctor Types": adds, renames and deletes the doctor types of the practice. Every change is stored at
/// once. Owns its controls; belongs to its caller's stack, on the user interface thread. The result means
/// nothing.
class CChangeDocType : public CDialog
{
public:
    explicit CChangeDocType(CWnd* pParent);

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;
    BOOL PreTranslateMessage(MSG* pMsg) override;

    afx_msg void OnAdd();
    afx_msg void OnModify();
    afx_msg void OnDelete();
    afx_msg void OnRefresh();
    DECLARE_MESSAGE_MAP()

private:
    void FillList();
    CString GetSelected() const;

    CEdit m_editName;
    CListBox m_list;
};

/// "Modify Doctor Type": renames one. It always ends with IDCANCEL; whether the type was renamed, IsRenamed
/// says. Owns its controls; belongs to its caller's stack, on the user interface thread.
class CRenameDocType : public CDialog
{
public:
    CRenameDocType(CWnd* pParent, const CString& strOldName);

    bool IsRenamed() const
    {
        return m_bRenamed;
    }

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;
    BOOL PreTranslateMessage(MSG* pMsg) override;
    void OnOK() override;

private:
    CString m_strOldName;
    CString m_strNewName;
    bool m_bRenamed = false;
};
