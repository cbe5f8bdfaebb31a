#include "maintenance/dlgrename.h"

#include "app/fullname.h"
#include "app/modalrun.h"
#include "app/settingscontainer.h"
#include "app/velapp.h"
#include "maintenance/maintenanceres.h"
#include "maintenance/systemchars.h"

namespace
{

constexpr mfcAnchor anchors[] = {
    {IDC_RENAME_GROUP, mfcStretchTop},
    {IDC_RENAME_DESCRIPTION, mfcStretchAll},
    {IDC_RENAME_NAME_CAPTION, mfcBottomLeft},
    {IDC_RENAME_NAME, mfcStretchBottom},
    {IDC_RENAME_NAMES, mfcStretchBottom},
    {IDC_RENAME_FIRSTNAME_CAPTION, mfcBottomLeft},
    {IDC_RENAME_FIRSTNAME, mfcStretchBottom},
    {IDC_RENAME_ADD_NAME, mfcStretchBottom},
    {IDC_RENAME_DATE_CAPTION, mfcBottomLeft},
    {IDC_RENAME_DATE, mfcBottomLeft},
    {IDC_RENAME_TREATMENT_CAPTION, mfcBottomLeft},
    {IDC_RENAME_TREATMENT, mfcStretchBottom},
    {IDOK, mfcBottomRight},
    {IDCANCEL, mfcBottomRight},
    {IDHELP, mfcBottomRight},
};

/// The day as timepoints are compared by it.
std::string DayOf(const COleDateTime& date)
{
    return date.GetStatus() == COleDateTime::valid ? date.Format(VAR_DATEVALUEONLY).GetString()
                                                   : std::string();
}

} // namespace

BEGIN_MESSAGE_MAP(CRenameDlg, CRecordDialog)
ON_BN_CLICKED(IDC_RENAME_PATIENT, &CRenameDlg::OnOperation)
ON_BN_CLICKED(IDC_RENAME_TIMEPOINT, &CRenameDlg::OnOperation)
ON_EN_CHANGE(IDC_RENAME_NAME, &CRenameDlg::OnChangeName)
ON_EN_CHANGE(IDC_RENAME_FIRSTNAME, &CRenameDlg::OnChangeFirstname)
ON_CBN_EDITCHANGE(IDC_RENAME_NAMES, &CRenameDlg::OnEditTimepointName)
ON_CBN_SELCHANGE(IDC_RENAME_NAMES, &CRenameDlg::OnChooseTimepointName)
ON_CBN_SELCHANGE(IDC_RENAME_TREATMENT, &CRenameDlg::OnChangeTreatment)
ON_NOTIFY(DTN_DATETIMECHANGE, IDC_RENAME_DATE, &CRenameDlg::OnChangeDate)
ON_UPDATE_COMMAND_UI(IDC_RENAME_PATIENT, &CRenameDlg::OnUpdateRadio)
ON_UPDATE_COMMAND_UI(IDC_RENAME_TIMEPOINT, &CRenameDlg::OnUpdateRadio)
ON_UPDATE_COMMAND_UI(IDC_RENAME_ADD_NAME, &CRenameDlg::OnUpdateAddName)
ON_UPDATE_COMMAND_UI(IDOK, &CRenameDlg::OnUpdateOK)
END_MESSAGE_MAP()

CRenameDlg::CRenameDlg(CWnd* pParent, dbCPatient* pPatient, int nTimepoint, const CString& strPassThrough,
                       RENAME_OP* pOperation)
    : CRecordDialog(IDD_RENAME, pParent), m_pPatient(pPatient), m_nTimepoint(nTimepoint),
      m_pOperation(pOperation)
{
    SetAnchors(anchors);
    m_result.strPassThrough = strPassThrough;
    m_result.dateTimepoint.SetStatus(COleDateTime::null);
}

void CRenameDlg::DoDataExchange(CDataExchange* pDX)
{
    CRecordDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_RENAME_PATIENT, m_radioPatient);
    DDX_Control(pDX, IDC_RENAME_TIMEPOINT, m_radioTimepoint);
    DDX_Control(pDX, IDC_RENAME_NAME, m_editName);
    DDX_Control(pDX, IDC_RENAME_FIRSTNAME, m_editFirstname);
    DDX_Control(pDX, IDC_RENAME_NAMES, m_comboNames);
    DDX_Control(pDX, IDC_RENAME_DATE, m_date);
    DDX_Control(pDX, IDC_RENAME_TREATMENT, m_treatments);
    DDX_Radio(pDX, IDC_RENAME_PATIENT, m_nOperation);
    DDX_Text(pDX, IDC_RENAME_NAME, m_result.strLastname);
    DDV_MaxChars(pDX, m_result.strLastname, static_cast<int>(maint::maxPatientName));
    DDX_Text(pDX, IDC_RENAME_FIRSTNAME, m_result.strFirstname);
    DDV_MaxChars(pDX, m_result.strFirstname, static_cast<int>(maint::maxPatientName));
    DDX_Text(pDX, IDC_RENAME_NAMES, m_result.strTimepointName);
    DDV_MaxChars(pDX, m_result.strTimepointName, static_cast<int>(maint::maxTimepointName));
}

BOOL CRenameDlg::OnInitDialog()
{
    CRecordDialog::OnInitDialog();
    LoadPatient();
    Attempt([this] { m_comboNames.Fill(); }, IDS_NAMES_FAILED);
    GetDlgItemText(IDC_RENAME_DESCRIPTION, m_strIdleDescription);
    if (UsesTreatments())
    {
        m_treatments.Fill(*m_pPatient);
        m_treatments.SetCurSel(maint::FindTreatment(m_treatments.GetIDs(), m_strCurrentPtshID.GetString()));
    }
    UpdateData(FALSE);
    // A timepoint without a day starts on the one that the picker shows.
    if (!m_date.SetTime(m_result.dateTimepoint))
        m_date.GetTime(m_result.dateTimepoint);
    ShowOperation();
    m_bInitialised = true;
    UpdateControls();
    return FALSE; // ShowOperation has set the focus
}

void CRenameDlg::LoadPatient()
{
    dbCTimepointsContainer rows;
    if (m_pPatient != nullptr)
    {
        m_result.strLastname = m_pPatient->GetLastname(1);
        m_result.strFirstname = m_pPatient->GetFirstname(1);
        m_strOldFullName = velMakeFullname(m_result.strFirstname, m_result.strLastname, NAMEORDER_DEFAULT);
        rows.LoadByPatID(m_pPatient->GetGUID(), 0);
    }
    if (m_nTimepoint < 0 || m_nTimepoint >= rows.GetCount())
    {
        m_result.strPassThrough.Empty();
        return;
    }
    const dbCTimepointsRow& row = rows[m_nTimepoint];
    m_result.strTimepointName = row.GetDescription();
    m_result.dateTimepoint = row.GetDateTime();
    m_strCurrentPtshID = row.GetptshID();
}

// Shows the controls of the operation and hides those of the other one.
void CRenameDlg::ShowOperation()
{
    const bool bPatient = m_nOperation == RENAME_PATIENT;
    CString strCaption;
    strCaption.LoadString(bPatient ? IDS_RENAME_LASTNAME_CAPTION : IDS_RENAME_TIMEPOINT_CAPTION);
    SetDlgItemText(IDC_RENAME_NAME_CAPTION, strCaption);
    for (const int nID : {IDC_RENAME_NAME, IDC_RENAME_FIRSTNAME_CAPTION, IDC_RENAME_FIRSTNAME})
        ShowControl(nID, bPatient);
    for (const int nID : {IDC_RENAME_NAMES, IDC_RENAME_ADD_NAME, IDC_RENAME_DATE_CAPTION, IDC_RENAME_DATE})
        ShowControl(nID, !bPatient);
    for (const int nID : {IDC_RENAME_TREATMENT_CAPTION, IDC_RENAME_TREATMENT})
        ShowControl(nID, !bPatient && UsesTreatments());
    GotoDlgCtrl(bPatient ? static_cast<CWnd*>(&m_editName) : &m_comboNames);
}

void CRenameDlg::ShowControl(int nID, bool bShow)
{
    CWnd* const pControl = GetDlgItem(nID);
    pControl->ShowWindow(bShow ? SW_SHOW : SW_HIDE);
    pControl->EnableWindow(bShow);
}

bool CRenameDlg::HasTimepoint() const
{
    return m_pPatient != nullptr && m_nTimepoint >= 0 &&
           m_nTimepoint < m_pPatient->GetTimepoints().GetCount();
}

bool CRenameDlg::UsesTreatments() const
{
    return m_pPatient != nullptr && VelApp()->GetPracticeManagement() != 0;
}

maint::RenameState CRenameDlg::GetState() const
{
    maint::RenameState state;
    state.operation = m_nOperation;
    state.newNames = {m_result.strLastname.GetString(), m_result.strFirstname.GetString()};
    state.oldFullName = m_strOldFullName;
    state.newFullName = velMakeFullname(m_result.strFirstname, m_result.strLastname, NAMEORDER_DEFAULT);
    if (m_pPatient != nullptr)
        state.oldNames = {m_pPatient->GetLastname(1).GetString(), m_pPatient->GetFirstname(1).GetString()};
    state.hasTimepoint = HasTimepoint();
    if (state.hasTimepoint)
    {
        const patCTimepoint& timepoint = m_pPatient->GetTimepoints()[m_nTimepoint];
        state.oldTimepoint = {timepoint.GetName().GetString(), DayOf(timepoint.GetDate())};
    }
    state.newTimepoint = {m_result.strTimepointName.GetString(), DayOf(m_result.dateTimepoint)};
    state.treatmentsUsed = UsesTreatments();
    state.treatments = {m_treatments.GetIDs(), m_treatments.GetCurSel()};
    state.currentTreatment = m_strCurrentPtshID;
    return state;
}

void CRenameDlg::OnOperation()
{
    m_nOperation = m_radioPatient.GetCheck() != 0 ? RENAME_PATIENT : RENAME_TIMEPOINT;
    ShowOperation();
    UpdateControls();
}

void CRenameDlg::OnChangeName()
{
    ShapeName(m_editName, m_result.strLastname);
}

void CRenameDlg::OnChangeFirstname()
{
    ShapeName(m_editFirstname, m_result.strFirstname);
}

void CRenameDlg::ShapeName(CEdit& edit, CString& strName)
{
    if (!m_bInitialised)
        return;
    CString strTyped;
    edit.GetWindowText(strTyped);
    strName = maint::ShapePatientName(strTyped.GetString(), velSystemChars()).c_str();
    if (strName != strTyped)
    {
        int nCaret = 0;
        int nEnd = 0;
        edit.GetSel(nEnd, nCaret);
        edit.SetWindowText(strName);
        nCaret = static_cast<int>(maint::CaretAfterShaping(static_cast<std::size_t>(nCaret),
                                                           static_cast<std::size_t>(strName.GetLength())));
        edit.SetSel(nCaret, nCaret);
    }
    UpdateControls();
}

void CRenameDlg::OnEditTimepointName()
{
    if (!m_bInitialised)
        return;
    m_result.strTimepointName = m_comboNames.GetTyped();
    UpdateControls();
}

void CRenameDlg::OnChooseTimepointName()
{
    m_comboNames.GetChosen(m_result.strTimepointName);
    UpdateControls();
}

void CRenameDlg::OnChangeTreatment()
{
    UpdateControls();
}

void CRenameDlg::OnChangeDate(NMHDR* /*pHeader*/, LRESULT* pResult)
{
    m_date.GetTime(m_result.dateTimepoint);
    UpdateControls();
    *pResult = 0;
}

void CRenameDlg::OnUpdateRadio(CCmdUI* pCmdUI)
{
    const bool bAllowed = m_pPatient != nullptr && g_VelIniSettingContainer.GetAllowPatientChanges() == 1;
    const maint::RenameRadios radios =
        maint::RadiosOf(m_nOperation, bAllowed, VelApp()->GetPracticeManagement() != 0, HasTimepoint());
    pCmdUI->Enable(pCmdUI->m_nID == IDC_RENAME_PATIENT ? radios.patientEnabled : radios.timepointEnabled);
    if (radios.operation != m_nOperation)
    {
        m_nOperation = radios.operation;
        CheckRadioButton(IDC_RENAME_PATIENT, IDC_RENAME_TIMEPOINT, IDC_RENAME_PATIENT + m_nOperation);
        ShowOperation();
    }
}

void CRenameDlg::OnUpdateAddName(CCmdUI* pCmdUI)
{
    pCmdUI->Enable(m_nOperation == RENAME_TIMEPOINT && !m_comboNames.IsListed(m_result.strTimepointName));
}

void CRenameDlg::OnUpdateOK(CCmdUI* pCmdUI)
{
    const maint::RenameState state = GetState();
    const bool bCanApply = maint::CanApply(state, velSystemChars());
    pCmdUI->Enable(bCanApply);
    ShowText(IDC_RENAME_DESCRIPTION,
             bCanApply ? velFormatMessage(maint::PreviewRename(state)) : m_strIdleDescription);
}

void CRenameDlg::OnOK()
{
    if (!UpdateData(TRUE))
        return;
    const maint::RenameState state = GetState();
    if (!maint::CanApply(state, velSystemChars()))
        return;

    const bool bTreatment = m_nOperation == RENAME_TIMEPOINT && state.treatmentsUsed;
    std::optional<CString> strPtshID = m_strCurrentPtshID;
    if (bTreatment && (!Attempt([&] { strPtshID = m_treatments.Take(this, *m_pPatient); }) || !strPtshID))
        return;
    const bool bTreatmentChanged = *strPtshID != m_strCurrentPtshID;
    if (AfxMessageBox(velFormatMessage(maint::AskForRename(state, bTreatmentChanged)), MB_YESNO) != IDYES)
        return;

    if (m_nOperation == RENAME_TIMEPOINT)
        Attempt([this] { AddPredefinedName(); }, IDS_NAMES_FAILED);
    if (bTreatmentChanged && !Attempt([&] { StoreTreatment(*strPtshID); }))
        return;
    if (m_pOperation != nullptr)
        *m_pOperation = static_cast<RENAME_OP>(m_nOperation);
    CRecordDialog::OnOK();
}

void CRenameDlg::AddPredefinedName()
{
    if (IsDlgButtonChecked(IDC_RENAME_ADD_NAME) != 0 &&
        maint::IsTimepointName(m_result.strTimepointName.GetString()))
        m_comboNames.AddToNames(m_result.strTimepointName);
}

// What the caller's patient holds changes only together with the database.
void CRenameDlg::StoreTreatment(const CString& strPtshID)
{
    const patCTimepoint before = m_pPatient->GetTimepoint(m_nTimepoint);
    patCTimepoint changed = before;
    changed.SetptshID(strPtshID);
    m_pPatient->SetTimepoint(m_nTimepoint, changed);
    try
    {
        m_pPatient->Save();
    }
    catch (CException*)
    {
        m_pPatient->SetTimepoint(m_nTimepoint, before);
        throw;
    }
}

INT_PTR velRunRename(CWnd* pParent, dbCPatient* pPatient, int nTimepoint, const CString& strPassThrough,
                     RENAME_OP* pOperation, velRenameResult& result)
{
    CRenameDlg dialog(pParent, pPatient, nTimepoint, strPassThrough, pOperation);
    const INT_PTR nResult = velRunModal(dialog);
    if (nResult == IDOK)
        result = dialog.GetResult();
    return nResult;
}
