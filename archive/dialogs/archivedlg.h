// The dialog in which an archive operation is chosen.
#pragma once

#include "archive/dialogs/archivechoices.h"
#include "archive/operations/archivemanager.h"
#include "suite/dialogs/mfcdialog.h"

#include <array>
#include <vector>

/// What ArchiveDlg was called with; everything stays the caller's.
struct arcSArchiveCall
{
    ARCHIVE_OP nOperation;
    dbCPatient* pPatient; ///< may be null
    const CStringArray* pSelectedIDs;
    const CStringArray* pGivenArchives; ///< archive files to take without asking
    std::array<CStringArray*, 3> more;  ///< handed through
};

/// Lets the user choose an operation and drives the archive manager through it, one patient after another.
/// From OK until that is over it takes no other OK, no Cancel and no key. On its caller's stack, on the user
/// interface thread; owns nothing but its controls.
class CDlgArchive : public mfcCDialog
{
public:
    CDlgArchive(CWnd* pParent, const arcSArchiveCall& call, arcCArchiveManager& manager);

    /// After OK: the operation, the archive that was written or read last, and the result code of that.
    ARCHIVE_OP GetOperation() const
    {
        return m_nOperation;
    }
    const CString& GetResultText() const
    {
        return m_strResult;
    }
    int GetResultCode() const
    {
        return m_nResultCode;
    }

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;
    BOOL OnHelpKey(UINT nHelpID) override;
    void OnOK() override;
    void OnCancel() override;
    BOOL PreTranslateMessage(MSG* pMsg) override;
    afx_msg void OnUpdateOK(CCmdUI* pCmdUI);
    afx_msg void OnUpdateSaveOption(CCmdUI* pCmdUI);
    DECLARE_MESSAGE_MAP()

private:
    /// Each answers whether the dialog is to close; it stays open when nothing was begun.
    bool Run(ARCHIVE_OP nOperation);
    bool RunSave();
    bool RunLoad();
    bool RunMerge();

    bool SaveOne(const arcSSave& save, bool bSeveral, bool& bAbort);
    void MakeDisc(const arcSSave& save);
    bool LoadOne(const CString& strPath, bool bSeveral, bool& bStop);
    bool ConfirmMerge(const CString& strPath);
    void RunChosen();
    std::vector<CString> SelectedIDs() const;
    std::vector<CString> GivenArchives() const;

    const arcSArchiveCall m_call;
    arcCArchiveManager& m_manager;
    arc::ArchiveOffer m_offer;
    ARCHIVE_OP m_nOperation;
    int m_nRadio = -1;
    bool m_bRuns = false; ///< an operation is under way
    BOOL m_bKeepOthersOut = TRUE;
    BOOL m_bIncludeViewer = FALSE;
    CString m_strResult;
    int m_nResultCode = 0;
};

/// Ends a modal dialog, also one whose window was destroyed with that of the host.
void arcEndDialog(CDialog& dialog, int nResult);
