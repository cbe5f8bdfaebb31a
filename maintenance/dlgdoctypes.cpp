#include "maintenance/dlgdoctypes.h"

#include "app/modalrun.h"
#include "app/velapp.h"
#include "maintenance/maintenanceres.h"
#include "suite/patients/records/dbdoctors.h"

namespace
{

constexpr UINT helpOffset = 0x20000;

/// Shows the help of a dialog for F1.
bool AnswerHelpKey(const MSG& msg, UINT nTemplate)
{
    if (msg.message != WM_KEYDOWN || msg.wParam != VK_F1)
        return false;
    VelApp()->ShowHelp(helpOffset + nTemplate);
    return true;
}

/// Makes a change that the library may refuse. A failure of the database is told to the user.
bool Change(const std::function<BOOL()>& change)
{
    return velGuard(FALSE, IDS_DOCTYPE_FAILED, [&]() -> INT_PTR { return change(); }) != FALSE;
}

} // namespace

BEGIN_MESSAGE_MAP(CChangeDocType, CDialog)
ON_BN_CLICKED(IDC_DOCTYPE_ADD, &CChangeDocType::OnAdd)
ON_BN_CLICKED(IDC_DOCTYPE_MODIFY, &CChangeDocType::OnModify)
ON_BN_CLICKED(IDC_DOCTYPE_DELETE, &CChangeDocType::OnDelete)
ON_EN_CHANGE(IDC_DOCTYPE_NAME, &CChangeDocType::OnRefresh)
ON_LBN_SELCHANGE(IDC_DOCTYPE_LIST, &CChangeDocType::OnRefresh)
ON_LBN_DBLCLK(IDC_DOCTYPE_LIST, &CChangeDocType::OnModify)
END_MESSAGE_MAP()

CChangeDocType::CChangeDocType(CWnd* pParent) : CDialog(IDD_DOCTOR_TYPES, pParent)
{
}

void CChangeDocType::DoDataExchange(CDataExchange* pDX)
{
    CDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_DOCTYPE_NAME, m_editName);
    DDX_Control(pDX, IDC_DOCTYPE_LIST, m_list);
}

BOOL CChangeDocType::OnInitDialog()
{
    CDialog::OnInitDialog();
    FillList();
    OnRefresh();
    return TRUE;
}

BOOL CChangeDocType::PreTranslateMessage(MSG* pMsg)
{
    return AnswerHelpKey(*pMsg, IDD_DOCTOR_TYPES) || CDialog::PreTranslateMessage(pMsg);
}

void CChangeDocType::FillList()
{
    dbCDoctorTypes types;
    types.Load();
    m_list.SetRedraw(FALSE);
    m_list.ResetContent();
    for (const CString& strType : types)
        m_list.AddString(strType);
    m_list.SetRedraw(TRUE);
    m_list.Invalidate();
}

CString CChangeDocType::GetSelected() const
{
    CString strType;
    if (const int nSelected = m_list.GetCurSel(); nSelected != LB_ERR)
        m_list.GetText(nSelected, strType);
    return strType;
}

void CChangeDocType::OnAdd()
{
    CString strName;
    m_editName.GetWindowText(strName);
    if (Change([&] { return dbCDoctorTypes().AddDoctorType(strName); }))
        FillList();
    m_editName.SetWindowText("");
    GotoDlgCtrl(&m_editName);
    OnRefresh();
}

void CChangeDocType::OnModify()
{
    const CString strType = GetSelected();
    if (strType.IsEmpty())
        return;
    CRenameDocType dialog(this, strType);
    velRunModal(dialog);
    if (!dialog.IsRenamed())
        return;
    FillList();
    OnRefresh();
}

void CChangeDocType::OnDelete()
{
    const CString strType = GetSelected();
    if (strType.IsEmpty() || !Change([&] { return dbCDoctorTypes().DeleteDoctorType(strType); }))
        return;
    FillList();
    OnRefresh();
}

void CChangeDocType::OnRefresh()
{
    const bool bSelected = m_list.GetCurSel() != LB_ERR;
    const HWND hFocus = ::GetFocus();
    GetDlgItem(IDC_DOCTYPE_ADD)->EnableWindow(m_editName.GetWindowTextLength() > 0);
    GetDlgItem(IDC_DOCTYPE_MODIFY)->EnableWindow(bSelected);
    GetDlgItem(IDC_DOCTYPE_DELETE)->EnableWindow(bSelected);
    // The keyboard must not stay on a button that has just been disabled.
    if (hFocus != nullptr && ::IsChild(m_hWnd, hFocus) && !::IsWindowEnabled(hFocus))
        GotoDlgCtrl(&m_list);
}

CRenameDocType::CRenameDocType(CWnd* pParent, const CString& strOldName)
    : CDialog(IDD_MODIFY_DOCTOR_TYPE, pParent), m_strOldName(strOldName)
{
}

void CRenameDocType::DoDataExchange(CDataExchange* pDX)
{
    CDialog::DoDataExchange(pDX);
    DDX_Text(pDX, IDC_DOCTYPE_NEW, m_strNewName);
}

BOOL CRenameDocType::OnInitDialog()
{
    CDialog::OnInitDialog();
    SetDlgItemText(IDC_DOCTYPE_CURRENT, m_strOldName);
    return TRUE;
}

BOOL CRenameDocType::PreTranslateMessage(MSG* pMsg)
{
    return AnswerHelpKey(*pMsg, IDD_MODIFY_DOCTOR_TYPE) || CDialog::PreTranslateMessage(pMsg);
}

void CRenameDocType::OnOK()
{
    if (!UpdateData(TRUE))
        return;
    m_bRenamed = Change([this] { return dbCDoctorTypes().ModifyDoctorType(m_strOldName, m_strNewName); });
    OnCancel();
}
