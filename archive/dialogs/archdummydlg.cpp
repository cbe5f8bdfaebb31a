#include "archive/dialogs/archdummydlg.h"

#include "app/modalrun.h"
#include "archive/res/archivedlgres.h"
#include "archive/status/statusthread.h"

BEGIN_MESSAGE_MAP(CDlgArchDummy, CDialog)
ON_MESSAGE(arcMsgSaveEnded, &CDlgArchDummy::OnSaveEnded)
ON_MESSAGE(arcMsgLoadEnded, &CDlgArchDummy::OnLoadEnded)
END_MESSAGE_MAP()

CDlgArchDummy::CDlgArchDummy(CWnd* pParent, ARCHIVE_OP nOperation, dbCPatient* pPatient,
                             CStringArray& selectedIDs, CStringArray& givenArchives, CStringArray& strings2,
                             CStringArray& strings3, CStringArray& strings4)
    : CDialog(IDD_ARC_DUMMY, pParent), m_pHost(pParent), m_call{nOperation,
                                                                pPatient,
                                                                &selectedIDs,
                                                                &givenArchives,
                                                                {&strings2, &strings3, &strings4}},
      m_nOperation(nOperation)
{
}

CDlgArchDummy::~CDlgArchDummy() = default;

BOOL CDlgArchDummy::OnInitDialog()
{
    CDialog::OnInitDialog();
    m_pManager = std::make_unique<arcCArchiveManager>(this, m_pHost);

    CDlgArchive choice(m_pHost != nullptr ? m_pHost : this, m_call, *m_pManager);
    const INT_PTR nResult = velRunModal(choice);
    m_nOperation = choice.GetOperation();
    m_strResult = choice.GetResultText();
    m_nResultCode = choice.GetResultCode();

    // Whatever closed the choice, the operation goes on to its end.
    m_pManager->WaitUntilIdle();
    arcEndDialog(*this, nResult == IDOK ? IDOK : IDCANCEL);
    return TRUE;
}

LRESULT CDlgArchDummy::OnSaveEnded(WPARAM, LPARAM lParam)
{
    m_pManager->FinishSave(static_cast<int>(lParam));
    return 0;
}

LRESULT CDlgArchDummy::OnLoadEnded(WPARAM, LPARAM lParam)
{
    m_pManager->FinishLoad(static_cast<int>(lParam));
    return 0;
}
