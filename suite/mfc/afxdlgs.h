// Property sheets and the common dialogs.
#pragma once

#include "suite/mfc/afxcmn.h"
#include "suite/mfc/afxcoll.h"

#include <prsht.h>

class CPropertySheet;

// A page of a sheet; the sheet does not own it. Its window is made when it is first shown and lives as long
// as the sheet's.
class AFX_DLL_CLASS CPropertyPage : public CDialog
{
    DECLARE_DYNAMIC(CPropertyPage)
public:
    explicit CPropertyPage(UINT nIDTemplate, UINT nIDCaption = 0, DWORD dwSize = sizeof(PROPSHEETPAGE));
    ~CPropertyPage() override;

    // For comctl32; flags such as PSP_HASHELP may be changed until the sheet runs.
    PROPSHEETPAGE m_psp;

    CPropertySheet* GetParentSheet() const;
    // Ends the whole sheet.
    void EndDialog(int nEndID);

    virtual BOOL OnSetActive();  // FALSE: the page is skipped
    virtual BOOL OnKillActive(); // FALSE: the page stays; the default validates with UpdateData
    virtual BOOL OnApply();      // FALSE: the sheet stays open; the default calls OnOK
    virtual void OnReset();      // the default calls OnCancel
    void OnOK() override;
    void OnCancel() override;
    virtual BOOL OnQueryCancel(); // FALSE: cancelling is refused

    BOOL PreTranslateMessage(MSG* pMsg) override;

protected:
    BOOL OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* pResult) override;
    void PreInitDialog() override;
    void OnInitDialogFailed() override;
    DECLARE_MESSAGE_MAP()

    CString m_strCaption;
    bool m_bFirstSetActive = true;

private:
    friend class CPropertySheet;
    static UINT CALLBACK PageCallback(HWND hWnd, UINT message, LPPROPSHEETPAGE pPropPage);
};

// A sheet of pages. DoModal runs it modeless inside a modal loop, so that messages pass PreTranslateMessage
// and the sheet's message map: ON_COMMAND(IDOK, ...) of the sheet is asked before the standard OK.
class AFX_DLL_CLASS CPropertySheet : public CWnd
{
    DECLARE_DYNAMIC(CPropertySheet)
public:
    explicit CPropertySheet(LPCTSTR pszCaption, CWnd* pParentWnd = nullptr, UINT iSelectPage = 0);
    ~CPropertySheet() override;
    void Construct(LPCTSTR pszCaption, CWnd* pParentWnd = nullptr, UINT iSelectPage = 0);

    // For comctl32; flags such as PSH_NOAPPLYNOW may be changed until the sheet runs.
    PROPSHEETHEADER m_psh;

    void AddPage(CPropertyPage* pPage);
    CPropertyPage* GetPage(int nPage) const;
    int GetActiveIndex() const;
    CPropertyPage* GetActivePage() const;
    BOOL SetActivePage(int nPage);
    CTabCtrl* GetTabControl() const;

    // Modeless.
    virtual BOOL Create(CWnd* pParentWnd = nullptr, DWORD dwStyle = static_cast<DWORD>(-1),
                        DWORD dwExStyle = 0);
    // Answers the id of the button that ended the sheet, what EndDialog was given, or -1 when it failed.
    virtual INT_PTR DoModal();
    // Ends the sheet at once, without asking or applying the pages.
    void EndDialog(int nEndID);

    virtual BOOL OnInitDialog();
    virtual void BuildPropPageArray();

    BOOL PreTranslateMessage(MSG* pMsg) override;
    BOOL OnCmdMsg(UINT nID, int nCode, void* pExtra, AFX_CMDHANDLERINFO* pHandlerInfo) override;
    BOOL ContinueModal() override;
    BOOL DestroyWindow() override;

protected:
    BOOL OnCommand(WPARAM wParam, LPARAM lParam) override;
    LRESULT DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    using CWnd::Create;
    afx_msg LRESULT HandleInitDialog(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnKickIdle(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnCommandHelp(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnPressButton(WPARAM wParam, LPARAM lParam);
    afx_msg void OnClose();
    afx_msg void OnSysCommand(UINT nID, LPARAM lParam);
    DECLARE_MESSAGE_MAP()

    CArray<CPropertyPage*, CPropertyPage*> m_pages;
    CString m_strCaption;
    CWnd* m_pParentWnd = nullptr;
    BOOL m_bModeless = FALSE;

private:
    friend class CPropertyPage;
    HWND CreateSheet(HWND hWndOwner);
    void KeepFocusVisible();
    static int CALLBACK SheetCallback(HWND hWnd, UINT message, LPARAM lParam);
    static PROPSHEETPAGE Describe(const CPropertyPage& page);
    std::vector<PROPSHEETPAGE> m_pspages;
};

// ---------------------------------------------------------------------------------------------------------
// Common dialogs

class AFX_DLL_CLASS CCommonDialog : public CDialog
{
    DECLARE_DYNAMIC(CCommonDialog)
public:
    explicit CCommonDialog(CWnd* pParentWnd);
};

// The system's open and save dialogs. m_ofn may be changed until DoModal.
class AFX_DLL_CLASS CFileDialog : public CCommonDialog
{
    DECLARE_DYNAMIC(CFileDialog)
public:
    // lpszFilter: "Text|*.a;*.b|Text|*.*||".
    explicit CFileDialog(BOOL bOpenFileDialog, LPCTSTR lpszDefExt = nullptr, LPCTSTR lpszFileName = nullptr,
                         DWORD dwFlags = OFN_HIDEREADONLY | OFN_OVERWRITEPROMPT, LPCTSTR lpszFilter = nullptr,
                         CWnd* pParentWnd = nullptr, DWORD dwSize = 0, BOOL bVistaStyle = TRUE);

    OPENFILENAME m_ofn;

    INT_PTR DoModal() override; // IDOK or IDCANCEL
    CString GetPathName() const;
    // With OFN_ALLOWMULTISELECT: while (pos != nullptr) path = GetNextPathName(pos).
    POSITION GetStartPosition() const;
    CString GetNextPathName(POSITION& pos) const;

private:
    BOOL m_bOpenFileDialog;
    CString m_strFilter;
    std::vector<TCHAR> m_fileName; // m_ofn.lpstrFile unless the caller sets its own
};
