#pragma once

#include "app/credentials.h"

#include <afxwin.h>

class dbCPatients;
class velHelpViewer;

/// The module's application object: one per loaded module. It holds what the exported functions set for the
/// length of a dialog and what dialogs then read, and it shows help. Everything here is for the host's user
/// interface thread; nothing is locked. Owns nothing that it points to.
class CVelDlgsApp : public CWinApp
{
public:
    CVelDlgsApp();

    /// Runs while the library loads, so it starts no threads, opens no database and shows nothing.
    BOOL InitInstance() override;
    /// Unregisters the module's window classes, so that the host can load the module again.
    int ExitInstance() override;
    /// Ends the running dialog with Cancel after an exception in one of its window procedures.
    LRESULT ProcessWndProcException(CException* e, const MSG* pMsg) override;

    /// The caller's patient list; null except while a patient sheet or the archive dialog runs.
    dbCPatients* GetPatients() const;
    void SetPatients(dbCPatients* pPatients);

    /// Nonzero while practice-management data are in use. The setter returns the previous value.
    int GetPracticeManagement() const;
    int SetPracticeManagement(int nPracticeManagement);

    /// Whether patients may be saved to archives. The setter returns the previous value.
    bool IsArchivingAllowed() const;
    bool SetArchivingAllowed(bool bAllowed);

    /// The two options of the last ArchiveDlg call.
    int GetArchiveOption1() const;
    int GetArchiveOption2() const;
    void SetArchiveOptions(int nOption1, int nOption2);

    /// Who is signed in to the record-sharing service; remembered for the program's run.
    velCCredentials& GetCredentials()
    {
        return m_credentials;
    }

    /// Shows help for a dialog: helpId is 0x20000 plus the dialog's template id. Where the help file has no
    /// topic under the id shifted once more, the id itself is tried. Does nothing where HTML Help is missing.
    void ShowHelp(UINT helpId);

    /// Lets another viewer show help, null for HTML Help. The viewer stays the caller's. Virtual, so that a
    /// program that has loaded the module can call it: see AfxGetModuleStateOf.
    virtual void SetHelpViewer(velHelpViewer* pViewer);

private:
    CString m_strHelpFile;   // both empty until help is first shown
    CString m_strHelpWindow; // window type of the help file
    velHelpViewer* m_pHelpViewer = nullptr;
    int m_nArchiveOption1 = 0;
    int m_nArchiveOption2 = 0;
    dbCPatients* m_pPatients = nullptr;
    int m_nPracticeManagement = 0;
    bool m_bArchivingAllowed = false;
    velCCredentials m_credentials;
};

/// The module's application object; never null while the module is loaded.
CVelDlgsApp* VelApp();
