#include "maintenance/dlgnewtimepoint.h"

#include "app/modalrun.h"
#include "app/velapp.h"
#include "maintenance/maintenanceres.h"
#include "maintenance/namerules.h"
#include "maintenance/newtimepointrules.h"
#include "maintenance/systemchars.h"

namespace
{

constexpr std::size_t maxQuestion = 260; // bytes

constexpr mfcAnchor anchors[] = {
    {IDC_NEWTP_INSTRUCTION, mfcStretchTop},
    {IDC_NEWTP_NAMES, mfcStretchTop},
    {IDC_NEWTP_UP, mfcTopRight},
    {IDC_NEWTP_DOWN, mfcTopRight},
    {IDC_NEWTP_DELETE, mfcTopRight},
    {IDC_NEWTP_ADD_NAME, mfcStretchTop},
    {IDC_NEWTP_TREATMENT, mfcStretchTop},
    {IDOK, mfcBottomRight},
    {IDCANCEL, mfcBottomRight},
    {IDHELP, mfcBottomRight},
};

velCDate lastDate; // confirmed last in this process; user interface thread

} // namespace

BEGIN_MESSAGE_MAP(CDlgNewTimepoint, CRecordDialog)
ON_CBN_SELCHANGE(IDC_NEWTP_NAMES, &CDlgNewTimepoint::OnChooseName)
ON_CBN_EDITCHANGE(IDC_NEWTP_NAMES, &CDlgNewTimepoint::OnRefresh)
ON_CBN_SELCHANGE(IDC_NEWTP_TREATMENT, &CDlgNewTimepoint::OnRefresh)
ON_BN_CLICKED(IDC_NEWTP_ADD_NAME, &CDlgNewTimepoint::OnAddToList)
ON_BN_CLICKED(IDC_NEWTP_UP, &CDlgNewTimepoint::OnMoveUp)
ON_BN_CLICKED(IDC_NEWTP_DOWN, &CDlgNewTimepoint::OnMoveDown)
ON_BN_CLICKED(IDC_NEWTP_DELETE, &CDlgNewTimepoint::OnDelete)
ON_NOTIFY(DTN_DATETIMECHANGE, IDC_NEWTP_DATE, &CDlgNewTimepoint::OnChangeDate)
ON_UPDATE_COMMAND_UI(IDOK, &CDlgNewTimepoint::OnUpdateOK)
ON_UPDATE_COMMAND_UI(IDC_NEWTP_ADD_NAME, &CDlgNewTimepoint::OnUpdateAddToList)
ON_UPDATE_COMMAND_UI(IDC_NEWTP_DELETE, &CDlgNewTimepoint::OnUpdateDelete)
END_MESSAGE_MAP()

CDlgNewTimepoint::CDlgNewTimepoint(CWnd* pParent, dbCPatient* pPatient)
    : CRecordDialog(IDD_NEW_TIMEPOINT, pParent), m_pPatient(pPatient),
      m_btnUp(IDR_IMAGE_UP, IDR_IMAGE_DISABLED, velButtonImage),
      m_btnDown(IDR_IMAGE_DOWN, IDR_IMAGE_DISABLED, velButtonImage)
{
    SetAnchors(anchors);
    if (lastDate.IsValid())
        m_date = lastDate;
    else if (pPatient != nullptr)
        m_date = pPatient->GetDate();
}

void CDlgNewTimepoint::DoDataExchange(CDataExchange* pDX)
{
    CRecordDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_NEWTP_NAMES, m_comboNames);
    DDX_Control(pDX, IDC_NEWTP_DATE, m_picker);
    DDX_Control(pDX, IDC_NEWTP_TREATMENT, m_treatments);
    DDX_Control(pDX, IDC_NEWTP_DELETE, m_btnDelete);
    DDX_Control(pDX, IDC_NEWTP_UP, m_btnUp);
    DDX_Control(pDX, IDC_NEWTP_DOWN, m_btnDown);
    DDX_Text(pDX, IDC_NEWTP_NAMES, m_strName);
    DDV_MaxChars(pDX, m_strName, static_cast<int>(maint::maxTimepointName));
    DDX_Check(pDX, IDC_NEWTP_ADD_NAME, m_bAddToList);
}

BOOL CDlgNewTimepoint::OnInitDialog()
{
    CRecordDialog::OnInitDialog();
    // Without a date the dialog starts on the one that the picker shows, which is today.
    if (!m_picker.SetTime(m_date))
        m_picker.GetTime(m_date);
    ShowTreatments();
    Attempt([this] { m_comboNames.Fill(); }, IDS_NAMES_FAILED);
    UpdateControls();
    return TRUE;
}

void CDlgNewTimepoint::ShowTreatments()
{
    if (m_pPatient != nullptr && VelApp()->GetPracticeManagement() != 0)
    {
        m_treatments.Fill(*m_pPatient);
        m_treatments.SetCurSel(maint::FirstTreatment(m_treatments.GetCount()));
        return;
    }
    for (const int nID : {IDC_NEWTP_TREATMENT_CAPTION, IDC_NEWTP_TREATMENT})
    {
        GetDlgItem(nID)->EnableWindow(FALSE);
        GetDlgItem(nID)->ShowWindow(SW_HIDE);
    }
}

void CDlgNewTimepoint::OnChooseName()
{
    m_comboNames.GetChosen(m_strName);
    UpdateControls();
}

void CDlgNewTimepoint::OnRefresh()
{
    m_strName = m_comboNames.GetTyped();
    UpdateControls();
}

void CDlgNewTimepoint::OnAddToList()
{
    GotoDlgCtrl(&m_comboNames);
}

void CDlgNewTimepoint::OnChangeDate(NMHDR* /*pHeader*/, LRESULT* pResult)
{
    m_picker.GetTime(m_date);
    UpdateControls();
    *pResult = 0;
}

CString CDlgNewTimepoint::GetName() const
{
    return maint::TrimTimepointName(m_strName.GetString()).c_str();
}

bool CDlgNewTimepoint::IsNameValid() const
{
    return !GetName().IsEmpty() && maint::IsNewTimepointName(m_strName.GetString(), velSystemChars());
}

bool CDlgNewTimepoint::Exists(const CString& strName) const
{
    return m_pPatient != nullptr && m_pPatient->GetTimepoints().Find(strName, m_date.FormatDate()) >= 0;
}

void CDlgNewTimepoint::OnUpdateOK(CCmdUI* pCmdUI)
{
    pCmdUI->Enable(IsNameValid() && !Exists(GetName()));
}

void CDlgNewTimepoint::OnUpdateAddToList(CCmdUI* pCmdUI)
{
    pCmdUI->Enable(IsNameValid() && !m_comboNames.IsListed(GetName()));
}

void CDlgNewTimepoint::OnUpdateDelete(CCmdUI* pCmdUI)
{
    pCmdUI->Enable(m_comboNames.GetCurSel() != CB_ERR);
}

void CDlgNewTimepoint::OnOK()
{
    const CWaitCursor wait;
    if (!UpdateData(TRUE))
        return;
    const CString strName = GetName();
    if (m_pPatient != nullptr && !strName.IsEmpty())
    {
        if (!IsNameValid())
            return;
        std::optional<CString> strPtshID = CString();
        const bool bTreatment = VelApp()->GetPracticeManagement() != 0;
        if (bTreatment && (!Attempt([&] { strPtshID = m_treatments.Take(this, *m_pPatient); }) || !strPtshID))
            return;
        if (!Attempt([&] { AddTimepoint(strName, *strPtshID); }))
            return;
        lastDate = m_date;
        if (m_bAddToList)
            Attempt([&] { m_comboNames.AddToNames(strName); }, IDS_NAMES_FAILED);
    }
    CRecordDialog::OnOK();
}

// A timepoint that cannot be stored leaves the caller's patient as it was.
void CDlgNewTimepoint::AddTimepoint(const CString& strName, const CString& strPtshID)
{
    if (Exists(strName))
        return;
    dbCTimepoint timepoint;
    timepoint.SetName(strName);
    timepoint.SetDate(m_date);
    timepoint.SetptshID(strPtshID);
    patCTimepoints& timepoints = m_pPatient->GetTimepoints();
    if (timepoints.Add(m_pPatient, timepoint, TRUE, FALSE) == patCTimepoints::RESULT_FULL)
    {
        CString strText;
        CString strCaption;
        strText.LoadString(IDS_NEWTP_FULL);
        strCaption.LoadString(IDS_NEWTP_FULL_CAPTION);
        MessageBox(strText, strCaption, MB_ICONERROR);
        return;
    }
    try
    {
        m_pPatient->Save();
    }
    catch (CException*)
    {
        timepoints.RemoveAt(timepoints.GetCount() - 1);
        throw;
    }
}

void CDlgNewTimepoint::OnMoveUp()
{
    Move(-1, IDS_NEWTP_SELECT_UP);
}

void CDlgNewTimepoint::OnMoveDown()
{
    Move(+1, IDS_NEWTP_SELECT_DOWN);
}

void CDlgNewTimepoint::Move(int nStep, UINT nSelectFirst)
{
    CPredefinedNames& names = m_comboNames.GetNames();
    if (!names.IsCreated())
        return;
    const int nIndex = m_comboNames.GetCurSel();
    if (nIndex == CB_ERR)
    {
        AfxMessageBox(nSelectFirst);
        return;
    }
    const int nMoved = maint::MovedIndex(nIndex, nStep, m_comboNames.GetCount());
    if (nMoved == nIndex)
        return;
    Attempt(
        [&] {
            if (nStep < 0)
                names.MoveUp(nIndex);
            else
                names.MoveDown(nIndex);
            m_comboNames.Fill();
            m_comboNames.SetCurSel(nMoved);
            OnChooseName();
        },
        IDS_NAMES_FAILED);
}

void CDlgNewTimepoint::OnDelete()
{
    const int nIndex = m_comboNames.GetCurSel();
    if (nIndex == CB_ERR)
        return;
    CString strName;
    CString strFormat;
    CString strQuestion;
    m_comboNames.GetLBText(nIndex, strName);
    strFormat.LoadString(IDS_NEWTP_DELETE_ASK);
    strQuestion.Format(strFormat, strName.GetString());
    strQuestion = maint::CutName(strQuestion.GetString(), maxQuestion, velSystemChars()).c_str();
    if (AfxMessageBox(strQuestion, MB_OKCANCEL) != IDOK)
        return;
    Attempt(
        [&] {
            m_comboNames.GetNames().Remove(nIndex);
            m_comboNames.DeleteString(static_cast<UINT>(nIndex));
            OnRefresh();
        },
        IDS_NAMES_FAILED);
}

INT_PTR velRunNewTimepoint(CWnd* pParent, dbCPatient* pPatient)
{
    CDlgNewTimepoint dialog(pParent, pPatient);
    return velRunModal(dialog);
}
