// The hidden dialog behind the archive dialog.
#pragma once

#include "archive/dialogs/archivedlg.h"

#include <memory>

/// Lives for the length of ArchiveDlg: runs the choice dialog, then waits, pumping messages, until the
/// archive manager is idle. The status thread reports to its window.
/// On its caller's stack, on the user interface thread; owns the archive manager. The patient, the arrays and
/// the parent stay the caller's.
class CDlgArchDummy : public CDialog
{
public:
    /// givenArchives: archive files to load or merge without asking for them; may be empty. The other arrays
    /// are handed through unchanged.
    CDlgArchDummy(CWnd* pParent, ARCHIVE_OP nOperation, dbCPatient* pPatient, CStringArray& selectedIDs,
                  CStringArray& givenArchives, CStringArray& strings2, CStringArray& strings3,
                  CStringArray& strings4);
    ~CDlgArchDummy() override;

    /// What the choice dialog left to report; see there.
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
    BOOL OnInitDialog() override;
    afx_msg LRESULT OnSaveEnded(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnLoadEnded(WPARAM wParam, LPARAM lParam);
    DECLARE_MESSAGE_MAP()

private:
    CWnd* m_pHost;
    arcSArchiveCall m_call;
    std::unique_ptr<arcCArchiveManager> m_pManager;
    ARCHIVE_OP m_nOperation;
    CString m_strResult;
    int m_nResultCode = 0;
};
