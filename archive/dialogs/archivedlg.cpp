#include "archive/dialogs/archivedlg.h"

#include "app/appres.h"
#include "app/modalrun.h"
#include "app/settingscontainer.h"
#include "app/velapp.h"
#include "archive/res/archiveres.h"
#include "archive/res/archivedlgres.h"
#include "cloud/upload/internetoperations.h"
#include "suite/util/velini.h"
#include "suite/util/velpath.h"

BEGIN_MESSAGE_MAP(CDlgArchive, mfcCDialog)
ON_UPDATE_COMMAND_UI(IDOK, &CDlgArchive::OnUpdateOK)
ON_UPDATE_COMMAND_UI(IDC_ARC_INCLUDE_VIEWER, &CDlgArchive::OnUpdateSaveOption)
ON_UPDATE_COMMAND_UI(IDC_ARC_KEEP_OTHERS_OUT, &CDlgArchive::OnUpdateSaveOption)
END_MESSAGE_MAP()

CDlgArchive::CDlgArchive(CWnd* pParent, const arcSArchiveCall& call, arcCArchiveManager& manager)
    : mfcCDialog(IDD_ARC_CHOICE, pParent), m_call(call), m_manager(manager), m_nOperation(call.nOperation)
{
    arc::ArchiveSituation situation;
    situation.operation = call.nOperation;
    situation.patientValid = call.pPatient != nullptr && call.pPatient->IsValid();
    situation.selectedPatients = static_cast<int>(call.pSelectedIDs->GetSize());
    situation.allowPatientChanges = g_VelIniSettingContainer.GetAllowPatientChanges();
    situation.practiceManagement = VelApp()->GetPracticeManagement() != 0;
    situation.viewerEdition = IsViewingSoftware() != FALSE;
    m_offer = arc::OfferFor(situation);
    m_nRadio = static_cast<int>(m_offer.selected);
}

void CDlgArchive::DoDataExchange(CDataExchange* pDX)
{
    mfcCDialog::DoDataExchange(pDX);
    DDX_Radio(pDX, IDC_ARC_GET_ARCHIVE, m_nRadio);
    DDX_Check(pDX, IDC_ARC_KEEP_OTHERS_OUT, m_bKeepOthersOut);
    DDX_Check(pDX, IDC_ARC_INCLUDE_VIEWER, m_bIncludeViewer);
}

BOOL CDlgArchive::OnInitDialog()
{
    mfcCDialog::OnInitDialog();
    GetDlgItem(IDC_ARC_GET_ARCHIVE)->EnableWindow(m_offer.getFromArchive);
    GetDlgItem(IDC_ARC_SAVE_ARCHIVE)->EnableWindow(m_offer.saveToArchive);
    GetDlgItem(IDC_ARC_MERGE)->EnableWindow(m_offer.mergeTimepoints);
    GetDlgItem(IDC_ARC_GET_INTERNET)->EnableWindow(m_offer.getFromInternet);
    GetDlgItem(IDC_ARC_SAVE_INTERNET)->EnableWindow(m_offer.saveToInternet);
    UpdateControls();
    return TRUE;
}

BOOL CDlgArchive::OnHelpKey(UINT nHelpID)
{
    VelApp()->ShowHelp(nHelpID);
    return TRUE;
}

void CDlgArchive::OnUpdateOK(CCmdUI* pCmdUI)
{
    const int nRadio = GetCheckedRadioButton(IDC_ARC_GET_ARCHIVE, IDC_ARC_SAVE_INTERNET);
    pCmdUI->Enable(nRadio != 0 && GetDlgItem(nRadio)->IsWindowEnabled());
}

void CDlgArchive::OnUpdateSaveOption(CCmdUI* pCmdUI)
{
    const bool bSaving = IsDlgButtonChecked(IDC_ARC_SAVE_ARCHIVE) == BST_CHECKED;
    pCmdUI->Enable(m_offer.includeViewer && (bSaving || pCmdUI->m_nID == IDC_ARC_INCLUDE_VIEWER));
}

void CDlgArchive::OnOK()
{
    if (m_bRuns)
        return;
    struct Running
    {
        bool& bFlag;
        ~Running()
        {
            bFlag = false;
        }
    };
    const Running running{m_bRuns = true};
    RunChosen();
}

void CDlgArchive::OnCancel()
{
    if (!m_bRuns)
        mfcCDialog::OnCancel();
}

BOOL CDlgArchive::PreTranslateMessage(MSG* pMsg)
{
    // The control that has the focus keeps it while the dialog is disabled.
    const bool bOwnKey = pMsg->message >= WM_KEYFIRST && pMsg->message <= WM_KEYLAST &&
                         ::GetAncestor(pMsg->hwnd, GA_ROOT) == m_hWnd;
    return (m_bRuns && bOwnKey) || mfcCDialog::PreTranslateMessage(pMsg);
}

void CDlgArchive::RunChosen()
{
    if (!UpdateData(TRUE))
        return;
    const auto operation = arc::OperationOfRadio(static_cast<arc::ArchiveRadio>(m_nRadio));
    if (!operation || !m_offer.IsEnabled(static_cast<arc::ArchiveRadio>(m_nRadio)))
        return;

    const bool bSaves = *operation == ARCHIVE_OP_SAVE || *operation == ARCHIVE_OP_UPLOAD;
    if (bSaves && !VelApp()->IsArchivingAllowed())
    {
        CString strText, strCaption;
        strText.LoadString(IDS_ARC_SAVE_DISABLED);
        strCaption.LoadString(IDS_ARC_SAVE_DISABLED_CAPTION);
        MessageBox(strText, strCaption, MB_OK | MB_ICONINFORMATION);
        return;
    }

    const bool bClose = Run(*operation);
    // Wherever the file dialogs and the work have left it, and whatever came out.
    ::SetCurrentDirectory(velWithBackslash(velGetIniString(IDS_SECTION_ENVIRONMENT, "archive", "C:")));
    if (!bClose)
        return;
    m_nOperation = *operation;
    arcEndDialog(*this, IDOK);
}

bool CDlgArchive::Run(ARCHIVE_OP nOperation)
{
    bool bClose = false;
    velGuard(0, IDS_ARC_UNEXPECTED, [&]() -> INT_PTR {
        switch (nOperation)
        {
        case ARCHIVE_OP_SAVE:
            bClose = RunSave();
            break;
        case ARCHIVE_OP_LOAD:
            bClose = RunLoad();
            break;
        case ARCHIVE_OP_MERGE:
            bClose = RunMerge();
            break;
        case ARCHIVE_OP_UPLOAD:
            bClose = velSavePatientsToInternet(this, SelectedIDs());
            break;
        case ARCHIVE_OP_DOWNLOAD:
            bClose = velGetPatientFromInternet(this, GetParent()->GetSafeHwnd());
            break;
        }
        return 0;
    });
    return bClose;
}

std::vector<CString> CDlgArchive::SelectedIDs() const
{
    std::vector<CString> ids;
    for (INT_PTR i = 0; i < m_call.pSelectedIDs->GetSize(); ++i)
        ids.push_back(m_call.pSelectedIDs->GetAt(i));
    if (ids.empty() && m_call.pPatient != nullptr)
        ids.push_back(m_call.pPatient->GetID());
    return ids;
}

void arcEndDialog(CDialog& dialog, int nResult)
{
    if (dialog.GetSafeHwnd() != nullptr)
        dialog.EndDialog(nResult);
    else
        dialog.EndModalLoop(nResult);
}
