#include "maintenance/recorddialog.h"

#include "app/modalrun.h"
#include "app/velapp.h"
#include "maintenance/maintenanceres.h"

CString velFormatMessage(const maint::Message& message)
{
    CString strTemplate;
    CString strText;
    strTemplate.LoadString(message.id);
    std::vector<LPCTSTR> arguments;
    for (const std::string& argument : message.arguments)
        arguments.push_back(argument.c_str());
    AfxFormatStrings(strText, strTemplate, arguments.data(), static_cast<int>(arguments.size()));
    return strText;
}

CRecordDialog::CRecordDialog(UINT nIDTemplate, CWnd* pParent)
    : mfcCDialog(nIDTemplate, pParent), m_btnOK(IDR_IMAGE_OK, IDR_IMAGE_DISABLED, velButtonImageText),
      m_btnCancel(IDR_IMAGE_CANCEL, IDR_IMAGE_DISABLED, velButtonImageText),
      m_btnHelp(IDR_IMAGE_HELP, IDR_IMAGE_DISABLED, velButtonImage)
{
}

void CRecordDialog::DoDataExchange(CDataExchange* pDX)
{
    mfcCDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDOK, m_btnOK);
    DDX_Control(pDX, IDCANCEL, m_btnCancel);
    DDX_Control(pDX, IDHELP, m_btnHelp);
}

BOOL CRecordDialog::OnHelpKey(UINT nHelpID)
{
    VelApp()->ShowHelp(nHelpID);
    return TRUE;
}

bool CRecordDialog::Attempt(const std::function<void()>& work, UINT nMessage)
{
    return velGuard(IDCANCEL, nMessage, [&]() -> INT_PTR {
               work();
               return IDOK;
           }) == IDOK;
}

void CRecordDialog::ShowText(int nID, const CString& strText)
{
    CString strShown;
    GetDlgItemText(nID, strShown);
    if (strShown != strText)
        SetDlgItemText(nID, strText);
}
