#include "patient/sheetpage.h"

#include "app/velapp.h"
#include "patient/chartsheet.h"
#include "patient/finding.h"
#include "suite/util/velstring.h"

#include <afxcmn.h>

namespace
{
constexpr UINT helpIdBase = 0x20000;
}

patCSheetPage::patCSheetPage(patCChartSheet& sheet, UINT nIDTemplate, patPAGE nPage)
    : mfcCPropertyPage(nIDTemplate), m_sheet(sheet), m_nTemplate(nIDTemplate), m_nPage(nPage)
{
}

bool patCSheetPage::Check()
{
    return true;
}

bool patCSheetPage::Report(const patFinding& finding)
{
    if (finding.bPassed)
        return true;
    m_sheet.ShowPage(m_nPage);
    if (finding.nMessage != 0)
        AfxMessageBox(velFormatTemplate(finding.nMessage, finding.strArgument.c_str()));
    if (CWnd* pControl = finding.nControl != 0 ? GetDlgItem(static_cast<int>(finding.nControl)) : nullptr)
        GotoDlgCtrl(pControl);
    return false;
}

UINT patCSheetPage::GetHelpId() const
{
    return helpIdBase + m_nTemplate;
}

// What the user entered lives in the controls. The framework's own OnSetActive would put the members' values
// of the last exchange back over it.
BOOL patCSheetPage::OnSetActive()
{
    m_sheet.SetPageInitialised(m_nPage);
    return TRUE;
}

BOOL patCSheetPage::OnKillActive()
{
    if (m_sheet.IsShowingPage())
        return TRUE;
    return mfcCPropertyPage::OnKillActive() && Check();
}

BOOL patCSheetPage::PreTranslateMessage(MSG* pMsg)
{
    if (pMsg->message == WM_KEYDOWN && pMsg->wParam == VK_F1)
    {
        VelApp()->ShowHelp(GetHelpId());
        return TRUE;
    }
    return mfcCPropertyPage::PreTranslateMessage(pMsg);
}

void patCSheetPage::AddColumn(CListCtrl& list, UINT nTitle, int nWidth)
{
    CString strTitle;
    strTitle.LoadString(nTitle);
    list.InsertColumn(list.GetHeaderCtrl()->GetItemCount(), strTitle, LVCFMT_LEFT, nWidth);
}
