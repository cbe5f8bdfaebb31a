#include "cloud/upload/uploaddlg.h"

#include "app/velapp.h"
#include "cloud/res/cloudres.h"
#include "suite/util/velini.h"

namespace
{
constexpr LPCSTR Section = "Defaults";
constexpr LPCSTR KeyUncropped = "UploadUncropped";
constexpr LPCSTR KeyOther = "UploadOther";
constexpr LPCSTR Key3D = "Upload3D";
constexpr int MaxText = 4000; // characters of recipients, and of notes
} // namespace

upldCUploadDlg::upldCUploadDlg(CWnd* pParent, const CString& strPatients)
    : mfcCDialog(IDD_CLD_UPLOAD, pParent), m_strPatients(strPatients),
      m_bUncropped(velGetIniInt(Section, KeyUncropped, 0) != 0),
      m_bOther(velGetIniInt(Section, KeyOther, 0) != 0), m_b3D(velGetIniInt(Section, Key3D, 0) != 0)
{
}

velSUpload upldCUploadDlg::GetUpload() const
{
    return {{m_bUncropped != FALSE, m_bOther != FALSE, m_b3D != FALSE}, m_strRecipients, m_strNotes};
}

void upldCUploadDlg::DoDataExchange(CDataExchange* pDX)
{
    mfcCDialog::DoDataExchange(pDX);
    DDX_Check(pDX, IDC_CLD_UNCROPPED, m_bUncropped);
    DDX_Check(pDX, IDC_CLD_OTHER, m_bOther);
    DDX_Check(pDX, IDC_CLD_3D, m_b3D);
    DDX_Text(pDX, IDC_CLD_RECIPIENTS, m_strRecipients);
    DDV_MaxChars(pDX, m_strRecipients, MaxText);
    DDX_Text(pDX, IDC_CLD_NOTES, m_strNotes);
    DDV_MaxChars(pDX, m_strNotes, MaxText);
}

BOOL upldCUploadDlg::OnInitDialog()
{
    mfcCDialog::OnInitDialog();
    SetDlgItemText(IDC_CLD_PATIENTS, m_strPatients);
    return TRUE;
}

BOOL upldCUploadDlg::OnHelpKey(UINT nHelpID)
{
    VelApp()->ShowHelp(nHelpID);
    return TRUE;
}

void upldCUploadDlg::OnOK()
{
    if (!UpdateData(TRUE))
        return;
    m_strRecipients.Trim();
    velSetIniInt(Section, KeyUncropped, m_bUncropped ? 1 : 0);
    velSetIniInt(Section, KeyOther, m_bOther ? 1 : 0);
    velSetIniInt(Section, Key3D, m_b3D ? 1 : 0);
    EndDialog(IDOK);
}
