#include "suite/dialogs/mfcpropertypage.h"

#include "suite/dialogs/ctlhelp.h"

#include <afxpriv.h>

IMPLEMENT_DYNAMIC(mfcCPropertyPage, CPropertyPage)

BEGIN_MESSAGE_MAP(mfcCPropertyPage, CPropertyPage)
ON_MESSAGE_VOID(WM_KICKIDLE, &mfcCPropertyPage::OnKickIdle)
ON_BN_CLICKED(IDHELP, &mfcCPropertyPage::OnHelpButton)
END_MESSAGE_MAP()

mfcCPropertyPage::mfcCPropertyPage(UINT nIDTemplate, UINT nIDCaption)
    : CPropertyPage(nIDTemplate, nIDCaption), m_nHelpID(ctlHelpID(nIDTemplate))
{
}

BOOL mfcCPropertyPage::PreTranslateMessage(MSG* pMsg)
{
    if (ctlIsHelpKey(*pMsg) && OnHelpKey(m_nHelpID))
    {
        return TRUE;
    }
    return CPropertyPage::PreTranslateMessage(pMsg);
}

BOOL mfcCPropertyPage::OnHelpKey(UINT)
{
    return FALSE;
}

void mfcCPropertyPage::OnHelpButton()
{
    OnHelpKey(m_nHelpID);
}

void mfcCPropertyPage::UpdateControls()
{
    UpdateDialogControls(this, FALSE);
}

void mfcCPropertyPage::OnKickIdle()
{
    UpdateControls();
}
