#include "maintenance/dlgtreatmentstatus.h"

#include "maintenance/maintenanceres.h"
#include "suite/patients/records/dbtreatment.h"

namespace
{

constexpr mfcAnchor anchors[] = {
    {IDC_TREATMENT_LIST, mfcStretchAll},
    {IDOK, mfcBottomRight},
    {IDCANCEL, mfcBottomRight},
    {IDHELP, mfcBottomRight},
};

} // namespace

BEGIN_MESSAGE_MAP(CDlgTreatmentStatus, CRecordDialog)
ON_LBN_SELCHANGE(IDC_TREATMENT_LIST, &CDlgTreatmentStatus::OnSelectionChange)
ON_LBN_DBLCLK(IDC_TREATMENT_LIST, &CDlgTreatmentStatus::OnDoubleClick)
END_MESSAGE_MAP()

CDlgTreatmentStatus::CDlgTreatmentStatus(CWnd* pParent) : CRecordDialog(IDD_TREATMENT_STATUS, pParent)
{
    SetAnchors(anchors);
}

void CDlgTreatmentStatus::DoDataExchange(CDataExchange* pDX)
{
    CRecordDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_TREATMENT_LIST, m_list);
}

BOOL CDlgTreatmentStatus::OnInitDialog()
{
    CRecordDialog::OnInitDialog();
    for (const dbCTreatmentStatusRow& row : dbCTreatmentStatusContainer(TRUE))
    {
        const INT_PTR nCode = m_codes.Add(row.GetCode());
        m_list.SetItemData(m_list.AddString(row.GetDescription()), static_cast<DWORD_PTR>(nCode));
    }
    OnSelectionChange();
    return TRUE;
}

void CDlgTreatmentStatus::OnSelectionChange()
{
    const int nSelected = m_list.GetCurSel();
    m_strDescription.Empty();
    m_strCode.Empty();
    if (nSelected != LB_ERR)
    {
        m_list.GetText(nSelected, m_strDescription);
        m_strCode = m_codes[static_cast<INT_PTR>(m_list.GetItemData(nSelected))];
    }
    GetDlgItem(IDOK)->EnableWindow(nSelected != LB_ERR);
}

void CDlgTreatmentStatus::OnDoubleClick()
{
    OnSelectionChange();
    OnOK();
}

void CDlgTreatmentStatus::OnOK()
{
    if (m_list.GetCurSel() != LB_ERR)
        CRecordDialog::OnOK();
}
