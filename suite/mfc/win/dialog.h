// CDialog. Included through afxwin.h.
#pragma once

// A dialog from a template. Modal objects live on the stack around DoModal; a modeless one is usually made
// with new and deletes itself in PostNcDestroy.
class AFX_DLL_CLASS CDialog : public CWnd
{
    DECLARE_DYNAMIC(CDialog)
public:
    CDialog();
    explicit CDialog(UINT nIDTemplate, CWnd* pParentWnd = nullptr);
    ~CDialog() override;

    using CWnd::Create;
    // Modeless.
    BOOL Create(UINT nIDTemplate, CWnd* pParentWnd = nullptr);
    virtual BOOL Create(LPCTSTR lpszTemplateName, CWnd* pParentWnd = nullptr);

    // Answers what EndDialog was given, or -1 when the dialog could not be made or initialised.
    virtual INT_PTR DoModal();
    void EndDialog(int nResult);

    void GotoDlgCtrl(CWnd* pWndCtrl);
    // From dialog units to pixels.
    void MapDialogRect(LPRECT lpRect) const;

    // FALSE when the handler set the focus itself. An exception ends the dialog with -1.
    virtual BOOL OnInitDialog();
    virtual void OnSetFont(CFont* pFont);

    BOOL PreTranslateMessage(MSG* pMsg) override;
    BOOL OnCmdMsg(UINT nID, int nCode, void* pExtra, AFX_CMDHANDLERINFO* pHandlerInfo) override;

protected:
    virtual void OnOK();
    virtual void OnCancel();
    virtual void PreInitDialog();
    // Ends the dialog after its initialisation threw.
    virtual void OnInitDialogFailed();
    // The HWND that owns the modal dialog, disabled by the caller; PostModal undoes it.
    HWND PreModal();
    void PostModal();
    BOOL CreateIndirect(LPCDLGTEMPLATE lpDialogTemplate, CWnd* pParentWnd, HINSTANCE hInst);

    afx_msg LRESULT HandleInitDialog(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT HandleSetFont(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnCommandHelp(WPARAM wParam, LPARAM lParam);
    DECLARE_MESSAGE_MAP()

    UINT m_nIDHelp = 0;
    LPCTSTR m_lpszTemplateName = nullptr;        // not copied: a resource name or MAKEINTRESOURCE
    LPCDLGTEMPLATE m_lpDialogTemplate = nullptr; // not owned
    CWnd* m_pParentWnd = nullptr;
    HWND m_hWndTop = nullptr; // top window disabled besides the parent
    bool m_bInitFailed = false;

private:
    friend struct AfxDialogAccess; // the dialog procedure
};

// The dialog procedure of every dialog: the work is done by the framework's window procedure.
INT_PTR CALLBACK AfxDlgProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam);
