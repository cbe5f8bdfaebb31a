#include "patient/idconflict.h"

#include "app/velapp.h"
#include "patient/patientres.h"

namespace
{

/// What the user entered. That it is empty is told, and is the caller's to judge.
CString TakeID(const CEdit& edit)
{
    CString strID;
    edit.GetWindowText(strID);
    if (strID.IsEmpty())
        AfxMessageBox(IDS_IDCONFLICT_EMPTY);
    return strID;
}

} // namespace

BEGIN_MESSAGE_MAP(CChangePatientID, mfcCDialog)
ON_BN_CLICKED(IDC_IDCONFLICT_CREATE, &CChangePatientID::OnCreateNew)
ON_BN_CLICKED(IDC_IDCONFLICT_MERGE, &CChangePatientID::OnMerge)
END_MESSAGE_MAP()

CChangePatientID::CChangePatientID() : mfcCDialog(IDD_CHANGE_PATIENT_ID)
{
}

void CChangePatientID::DoDataExchange(CDataExchange* pDX)
{
    mfcCDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_IDCONFLICT_ID, m_editID);
}

BOOL CChangePatientID::OnInitDialog()
{
    mfcCDialog::OnInitDialog();
    CString strMessage;
    strMessage.Format(IDS_IDCONFLICT_SAME_PERSON, m_strExistingPatient.GetString());
    SetDlgItemText(IDC_IDCONFLICT_MESSAGE, strMessage);
    Choose(CreateNew);
    return FALSE; // the focus is on the field
}

BOOL CChangePatientID::OnHelpKey(UINT nHelpID)
{
    VelApp()->ShowHelp(nHelpID);
    return TRUE;
}

void CChangePatientID::OnCreateNew()
{
    Choose(CreateNew);
}

void CChangePatientID::OnMerge()
{
    Choose(Merge);
}

void CChangePatientID::Choose(MODE nMode)
{
    m_nMode = nMode;
    CheckRadioButton(IDC_IDCONFLICT_CREATE, IDC_IDCONFLICT_MERGE,
                     nMode == CreateNew ? IDC_IDCONFLICT_CREATE : IDC_IDCONFLICT_MERGE);
    m_editID.EnableWindow(nMode == CreateNew);
    CString strButton;
    strButton.LoadString(nMode == CreateNew ? IDS_IDCONFLICT_CREATE : IDS_IDCONFLICT_MERGE);
    SetDlgItemText(IDOK, strButton);
    if (nMode != CreateNew)
        return;
    if (m_strProposedID != m_strExistingID)
        m_editID.SetWindowText(m_strProposedID);
    GotoDlgCtrl(&m_editID);
}

void CChangePatientID::OnOK()
{
    m_strResultID = m_nMode == CreateNew ? TakeID(m_editID) : m_strExistingID;
    EndDialog(IDOK);
}

CGetUniquePatID::CGetUniquePatID() : mfcCDialog(IDD_UNIQUE_PATIENT_ID)
{
}

void CGetUniquePatID::DoDataExchange(CDataExchange* pDX)
{
    mfcCDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_IDCONFLICT_ID, m_editID);
}

BOOL CGetUniquePatID::OnInitDialog()
{
    mfcCDialog::OnInitDialog();
    CString strMessage;
    strMessage.Format(IDS_IDCONFLICT_TAKEN, m_strTakenID.GetString(), m_strPatientName.GetString());
    SetDlgItemText(IDC_IDCONFLICT_MESSAGE, strMessage);
    GotoDlgCtrl(&m_editID);
    return FALSE;
}

BOOL CGetUniquePatID::OnHelpKey(UINT nHelpID)
{
    VelApp()->ShowHelp(nHelpID);
    return TRUE;
}

void CGetUniquePatID::OnOK()
{
    m_strResultID = TakeID(m_editID);
    EndDialog(IDOK);
}
