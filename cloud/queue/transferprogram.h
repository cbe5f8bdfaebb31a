// The suite's transfer program as this module uses it.
#pragma once

#include "app/credentials.h"
#include "cloud/xml/comptr.h"

#include <afx.h>

/// What is asked of the transfer program. Virtual so that a test can stand in for it.
class velCTransferProgram
{
public:
    velCTransferProgram() = default;
    virtual ~velCTransferProgram();
    velCTransferProgram(const velCTransferProgram&) = delete;
    velCTransferProgram& operator=(const velCTransferProgram&) = delete;

    /// The program's file in the folder that the setting SYS names.
    static CString GetPath();
    virtual BOOL IsInstalled() const;

    /// Has it run and look into the task table. FALSE, with the user told, when it cannot be started.
    virtual BOOL Wake();
    /// Brings its window to the front.
    virtual void Show();
    /// Starts it at its options.
    virtual void ShowOptions();

    /// Whether its automation object answers; the rest needs it.
    virtual BOOL Connect();
    /// Whether it has user name and password of the service.
    virtual BOOL HasCredentials();
    /// Opens its sign-in window and returns at once.
    virtual void EnterCredentials();
    virtual BOOL GetCredentials(velCCredentials& credentials);
    /// Makes a patient known to the service, with room for so many bytes, and writes its row of the
    /// service-patients table. Empty, or a sentence that says why not. Takes up to a minute.
    virtual CString RegisterPatient(LPCTSTR pszGUID, __int64 nBytes);
    /// Who receives the record (separated by semicolons), and what is said to them. Answers as
    /// RegisterPatient.
    virtual CString SetRecipients(LPCTSTR pszGUID, LPCTSTR pszRecipients, LPCTSTR pszNotes);

private:
    BOOL Start(LPCTSTR pszSwitch) const;
    HRESULT Call(long nMember, WORD nKind, VARIANT* pArguments, UINT nArguments, VARIANT* pResult);
    CString Ask(long nMember, VARIANT* pArguments, UINT nArguments);

    bool m_bComInitialised = false;
    velComPtr<IDispatch> m_object; ///< once it has answered
};
