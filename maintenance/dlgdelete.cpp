#include "maintenance/dlgdelete.h"

#include "app/modalrun.h"
#include "app/settingscontainer.h"
#include "app/velapp.h"
#include "app/velenums.h"
#include "maintenance/maintenanceres.h"
#include "suite/patients/records/dbpatients.h"

namespace
{

constexpr mfcAnchor anchors[] = {
    {IDC_DELETE_GROUP, mfcStretchTop},
    {IDC_DELETE_IMAGES, mfcStretchTop},
    {IDC_DELETE_TIMEPOINT, mfcStretchTop},
    {IDC_DELETE_PATIENT, mfcStretchTop},
    {IDC_DELETE_DESCRIPTION, mfcStretchAll},
    {IDOK, mfcBottomRight},
    {IDCANCEL, mfcBottomRight},
    {IDHELP, mfcBottomRight},
};

maint::DeleteSubject SubjectOf(const dbCPatient* pPatient, int nTimepoint)
{
    maint::DeleteSubject subject;
    subject.timepoint = nTimepoint;
    subject.patientAllowed = g_VelIniSettingContainer.GetAllowPatientChanges() == 1;
    if (pPatient == nullptr)
        return subject;
    subject.timepointCount = pPatient->GetTimepoints().GetCount();
    if (nTimepoint >= 0 && nTimepoint < subject.timepointCount)
        subject.timepointName = pPatient->GetTimepoints().GetAt(nTimepoint).GetName().GetString();
    subject.patientStored = pPatient->IsValid() != FALSE;
    subject.patientName = pPatient->GetFirstname(1) + " " + pPatient->GetLastname(1);
    subject.patientID = pPatient->GetID().GetString();
    return subject;
}

} // namespace

CDlgDelete::CDlgDelete(CWnd* pParent, dbCPatient* pPatient, int nTimepoint)
    : CRecordDialog(IDD_DELETE, pParent), m_pPatient(pPatient), m_subject(SubjectOf(pPatient, nTimepoint)),
      m_nOperation(static_cast<int>(maint::FirstDeletion(nTimepoint))),
      m_nOperationLeft(maint::FirstDeletion(nTimepoint))
{
    SetAnchors(anchors);
}

void CDlgDelete::DoDataExchange(CDataExchange* pDX)
{
    CRecordDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_DELETE_IMAGES, m_radioImages);
    DDX_Control(pDX, IDC_DELETE_TIMEPOINT, m_radioTimepoint);
    DDX_Control(pDX, IDC_DELETE_PATIENT, m_radioPatient);
    DDX_Radio(pDX, IDC_DELETE_IMAGES, m_nOperation);
}

BOOL CDlgDelete::OnInitDialog()
{
    CRecordDialog::OnInitDialog();
    GetDlgItemText(IDC_DELETE_DESCRIPTION, m_strTemplateDescription);
    m_radioImages.EnableWindow(maint::CanChooseDeletion(DELETE_TIMEPOINT_IMAGES, m_subject));
    m_radioTimepoint.EnableWindow(maint::CanChooseDeletion(DELETE_TIMEPOINT, m_subject));
    m_radioPatient.EnableWindow(maint::CanChooseDeletion(DELETE_PATIENT, m_subject));
    Refresh();
    // The focus checks a radio button, so it must go to the one that is checked.
    CWnd* const pChosen = GetDlgItem(IDC_DELETE_IMAGES + m_nOperation);
    (pChosen->IsWindowEnabled() ? pChosen : GetDlgItem(IDCANCEL))->SetFocus();
    return FALSE;
}

BOOL CDlgDelete::OnCommand(WPARAM wParam, LPARAM lParam)
{
    const BOOL bHandled = CRecordDialog::OnCommand(wParam, lParam);
    if (::IsWindow(m_hWnd))
        Refresh();
    return bHandled;
}

void CDlgDelete::Refresh()
{
    UpdateData(TRUE);
    const auto nOperation = static_cast<unsigned>(m_nOperation);
    const maint::Message message = maint::DescribeDeletion(nOperation, m_subject);
    ShowText(IDC_DELETE_DESCRIPTION, message.id != 0 ? velFormatMessage(message) : m_strTemplateDescription);
    GetDlgItem(IDOK)->EnableWindow(message.id != 0);
}

void CDlgDelete::OnOK()
{
    if (!UpdateData(TRUE) || !maint::CanChooseDeletion(static_cast<unsigned>(m_nOperation), m_subject))
        return;

    bool bRefused = false;
    CString strQuestion;
    if (!Attempt([&] {
            bRefused = m_nOperation == DELETE_PATIENT && IsBalanceOpen();
            strQuestion = MakeQuestion();
        }))
        return;
    if (bRefused)
    {
        AfxMessageBox(IDS_DELETE_BALANCE);
        return;
    }
    CString strCaption;
    strCaption.LoadString(IDS_DELETE_CAPTION);
    if (MessageBox(strQuestion, strCaption, MB_YESNO | MB_DEFBUTTON2) != IDYES)
        return;
    m_nOperationLeft = static_cast<unsigned>(m_nOperation);
    CRecordDialog::OnOK();
}

void CDlgDelete::OnCancel()
{
    if (UpdateData(TRUE))
        m_nOperationLeft = static_cast<unsigned>(m_nOperation);
    CRecordDialog::OnCancel();
}

CString CDlgDelete::MakeQuestion() const
{
    const auto nOperation = static_cast<unsigned>(m_nOperation);
    CString strQuestion = velFormatMessage(maint::AskForDeletion(nOperation, m_subject));
    if (nOperation == DELETE_TIMEPOINT && IsTimepointDiagnosed())
    {
        CString strWarning;
        strWarning.LoadString(IDS_DELETE_DIAGNOSED);
        strQuestion = strWarning + "\n " + strQuestion;
    }
    return strQuestion;
}

bool CDlgDelete::IsTimepointDiagnosed() const
{
    CString strTpID;
    return dbCPatients::Get_tpID(m_pPatient->GetID(), m_subject.timepoint, strTpID) == 0 &&
           !strTpID.IsEmpty() && dbCPatientDiagnosisTreatmentsContainer::HasDiagnostics(strTpID);
}

bool CDlgDelete::IsBalanceOpen() const
{
    return VelApp()->GetPracticeManagement() != 0 && !m_pPatient->CanDeletePatient();
}

INT_PTR velRunDelete(CWnd* pParent, dbCPatient* pPatient, int nTimepoint, unsigned& nOperation)
{
    CDlgDelete dialog(pParent, pPatient, nTimepoint);
    const INT_PTR nResult = velRunModal(dialog);
    nOperation = dialog.GetOperation();
    return nResult;
}
