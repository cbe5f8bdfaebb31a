#include "patient/sheetpage.h"

#include "app/velapp.h"
#include "patient/chartsheet.h"
#include "patient/rules/finding.h"
#include "suite/util/velstring.h"

patCSheetPage::patCSheetPage(patCChartSheet& sheet, UINT nIDTemplate, pat::Page nPage)
    : mfcCPropertyPage(nIDTemplate), m_sheet(sheet), m_nPage(nPage)
{
}

bool patCSheetPage::Check()
{
    return true;
}

void patCSheetPage::CopyTo(dbCPatient&)
{
}

bool patCSheetPage::CheckOnLeaving()
{
    return Check();
}

bool patCSheetPage::Report(const pat::Finding& finding)
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

// What the user entered lives in the controls. The framework's own OnSetActive would put the members' values
// of the last exchange back over it.
BOOL patCSheetPage::OnSetActive()
{
    m_sheet.SetPageInitialised(m_nPage);
    UpdateControls(); // so that no button shows enabled until the sheet is idle
    return TRUE;
}

BOOL patCSheetPage::OnKillActive()
{
    if (m_sheet.IsShowingPage())
        return TRUE;
    return mfcCPropertyPage::OnKillActive() && CheckOnLeaving();
}

BOOL patCSheetPage::OnHelpKey(UINT nHelpID)
{
    VelApp()->ShowHelp(nHelpID);
    return TRUE;
}
