// The host's main window.
#pragma once

#include "host/auditlist.h"
#include "host/hostcommands.h"
#include "host/hostsession.h"
#include "host/imagelist.h"
#include "host/patientlist.h"
#include "host/splitbar.h"

#include <afxext.h>


/// Shows the practice: patients with incremental search on the left, the selected patient's timepoints and images on
/// the right, the audit log below. Every menu command goes through Run, by the table of commands. Owns its child
/// windows; the session is the application's.
class hostCFrame : public CFrameWnd
{
public:
    explicit hostCFrame(hostCSession& session);
    ~hostCFrame() override;

    /// Opens a practice and shows it, telling the user what went wrong. An empty folder means the user's own sample
    /// practice, which is made without asking.
    BOOL OpenPractice(LPCTSTR folder);

    /// Work for the time when no message waits. TRUE while there is more.
    BOOL DoIdle();

protected:
    BOOL PreCreateWindow(CREATESTRUCT& create) override;
    BOOL PreTranslateMessage(MSG* msg) override;
    BOOL OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* result) override;

    afx_msg int OnCreate(LPCREATESTRUCT create);
    afx_msg void OnDestroy();
    afx_msg void OnSize(UINT type, int width, int height);
    afx_msg void OnGetMinMaxInfo(MINMAXINFO* info);
    afx_msg void OnActivate(UINT state, CWnd* other, BOOL minimized);
    afx_msg void OnSetFocus(CWnd* before);
    afx_msg void OnTimer(UINT_PTR id);
    afx_msg void OnUpdateCommand(CCmdUI* ui);
    afx_msg void OnMenuSelect(UINT item, UINT flags, HMENU menu);
    afx_msg void OnContextMenu(CWnd* window, CPoint point);
    afx_msg void OnSearchChanged();
    afx_msg void OnEnterKey();
    afx_msg void OnEscapeKey();
    afx_msg void OnNextPane();
    afx_msg void OnExit();
    afx_msg void OnCommandRange(UINT id);
    afx_msg LRESULT OnNextDlgCtl(WPARAM control, LPARAM isHandle);
    afx_msg LRESULT OnSplit(WPARAM id, LPARAM position);
    afx_msg LRESULT OnSelectionChanged(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnPatientChanged(WPARAM what, LPARAM guid);
    DECLARE_MESSAGE_MAP()

private:
    BOOL CreatePanes();
    BOOL CreateTools();
    void SetFonts();
    void Layout();
    void Run(UINT id);
    void RunCommand(const hostSCommand& command);
    void RunPatientCommand(UINT id);
    void RunArchive(ARCHIVE_OP operation);
    void RunView(UINT id);
    void RunNewPatient(BOOL withStudy);
    void RunChangePatient();
    void RunNewTimepoint();
    void RunRename();
    void RunDelete();
    void RunImport();
    void ChoosePractice();
    void Refresh();
    void ShowSelected();
    void ShowTimepoint();
    void ShowTitle();
    void ShowStatus();
    void ShowResult(const char* exportName, __int64 result);
    void ShowRecorded(const char* exportName, __int64 result, __int64 lastEvent);
    void TakeNotices();
    void UpdateTools();
    BOOL LoadSelected(dbCPatient& patient);
    BOOL LoadSelectedOrTell(dbCPatient& patient); // that another computer may have removed it
    int GetSelectedTimepoint() const;
    BOOL IsOffered(const hostSCommand& command);
    BOOL IsChecked(int id) const;
    CString FullName(const patCPatient& patient) const;

    hostCSession& m_session;

    CWnd m_tools;
    CWnd m_status;
    CStatic m_searchLabel;
    CEdit m_search;
    CComboBox m_searchBy;
    hostCPatientList m_patients;
    hostCSplitBar m_listBar;
    CStatic m_name;
    CStatic m_timepointsLabel;
    CListCtrl m_timepoints;
    CStatic m_imagesLabel;
    hostCImageList m_images;
    hostCSplitBar m_auditBar;
    CStatic m_auditLabel;
    hostCAuditList m_audit;

    HIMAGELIST m_icons = nullptr;
    HFONT m_font = nullptr;
    HFONT m_titleFont = nullptr;
    HWND m_lastFocus = nullptr;
    int m_listWidth;
    int m_auditHeight;
    BOOL m_showAudit = TRUE;
    BOOL m_showTools = TRUE;
    BOOL m_showStatus = TRUE;
    BOOL m_selectionPosted = FALSE;
    __int64 m_changeCounter = 0;
    int m_studies = 0;
    CString m_message;
    dbCPatient m_shown; // the patient on the right; not valid when none or several are selected
};
