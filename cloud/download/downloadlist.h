// The dialog in which a shared record is chosen and downloaded.
#pragma once

#include "app/credentials.h"
#include "cloud/download/receiver.h"
#include "cloud/exchange/filechoice.h"
#include "cloud/net/velinet.h"
#include "cloud/queue/farreachveltrix.h"
#include "suite/dialogs/mfcdialog.h"

#include <memory>
#include <optional>
#include <vector>

/// Signs in to the service, lists the records of the user and those shared with the user, and brings the
/// chosen one into the practice. Ends with IDOK when a record was taken. Owns its session, which is closed
/// with the dialog; the transfer program stays the caller's.
class CDownLoadPatientList : public mfcCDialog
{
public:
    enum
    {
        NO_SESSION = 16 ///< result when no session could be opened
    };

    /// remembered: taken when it is known, and set by a sign-in that the service lets be remembered.
    CDownLoadPatientList(CWnd* pParent, velCTransferProgram& program, velCCredentials& remembered);
    ~CDownLoadPatientList() override;

    /// After IDOK.
    const std::optional<velSReceived>& GetReceived() const
    {
        return m_received;
    }

    /// 0, -1 when there is a session already, -2 when none can be opened.
    int OpenSession();

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;
    BOOL OnHelpKey(UINT nHelpID) override;
    void OnOK() override;
    void OnCancel() override;
    afx_msg void OnUpdateOK(CCmdUI* pCmdUI);
    afx_msg void OnDoubleClick(NMHDR* pNotify, LRESULT* pResult);
    DECLARE_MESSAGE_MAP()

    /// Virtual so that a test can bring its own network.
    virtual std::unique_ptr<CVelInet> MakeSession(LPCTSTR pszAgent);

private:
    /// A result for EndDialog, or nothing when the dialog is to stay.
    std::optional<int> Open();
    bool CheckQueue();
    bool RequireCredentials();
    cloud::LoginReply TryLogin();
    void EndSession();
    void MakeColumns();
    void FillList();
    void OfferToSaveChoice();

    struct Record
    {
        CString strID;    ///< the service's
        velCDate updated; ///< local time; invalid when the service's cannot be read
    };

    velCTransferProgram& m_program;
    velCCredentials& m_remembered; ///< for the rest of the program's run
    velCCredentials m_credentials; ///< of this session
    CFarreachVeltrix m_queue;
    CVelXML m_xml;
    CString m_strCommandPath;
    std::unique_ptr<CVelInet> m_pSession;
    CListCtrl m_list;
    std::vector<Record> m_records; ///< those of the rows
    BOOL m_bUncropped = FALSE;
    BOOL m_bOther = FALSE;
    BOOL m_b3D = FALSE;
    std::optional<velSReceived> m_received;
};
