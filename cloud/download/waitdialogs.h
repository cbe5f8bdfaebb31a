// What is shown while the module waits: for the transfer program's credentials, and for the service's answer
// to them.
#pragma once

#include "app/credentials.h"
#include "suite/dialogs/mfcdialog.h"

class velCTransferProgram;

/// The notice that stands over the download dialog while it signs in. Modeless, in its creator's hands; taken
/// down by its destructor.
class CFRVLogin : public CDialog
{
public:
    explicit CFRVLogin(CWnd* pParent);
    ~CFRVLogin() override;

protected:
    void OnOK() override;
    void OnCancel() override;
};

/// Waits until the transfer program has user name and password, and takes them over; ends with OK then. The
/// user can enter them here instead.
class CRaskoWaitDlg : public mfcCDialog
{
public:
    CRaskoWaitDlg(CWnd* pParent, velCTransferProgram& program, velCCredentials& credentials);

protected:
    BOOL OnInitDialog() override;
    BOOL OnHelpKey(UINT nHelpID) override;
    afx_msg void OnTimer(UINT_PTR nIDEvent);
    afx_msg void OnSignInHere();
    DECLARE_MESSAGE_MAP()

private:
    velCTransferProgram& m_program;
    velCCredentials& m_credentials;
};

/// Asks for user name and password; ends with OK only with a user name.
class CSignInDlg : public mfcCDialog
{
public:
    CSignInDlg(CWnd* pParent, velCCredentials& credentials);

protected:
    BOOL OnInitDialog() override;
    BOOL OnHelpKey(UINT nHelpID) override;
    void OnOK() override;
    afx_msg void OnUpdateOK(CCmdUI* pCmdUI);
    DECLARE_MESSAGE_MAP()

private:
    velCCredentials& m_credentials;
};
