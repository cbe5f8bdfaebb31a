#pragma once

#include "suite/dialogs/ctlapi.h"

/// The suite's property page: command-update handlers (ON_UPDATE_COMMAND_UI with control ids) run whenever
/// the sheet is idle while the page is shown, and F1 in any of its controls and a help button with the id
/// IDHELP are answered. Lives on the thread of its sheet.
class VELCTL_API mfcCPropertyPage : public CPropertyPage
{
    DECLARE_DYNAMIC(mfcCPropertyPage)

public:
    explicit mfcCPropertyPage(UINT nIDTemplate, UINT nIDCaption = 0);

    /// The page's help id: 0x20000 plus the id of its template.
    UINT GetHelpID() const
    {
        return m_nHelpID;
    }

    /// Runs the command-update handlers of the page's controls now.
    void UpdateControls();

    BOOL PreTranslateMessage(MSG* pMsg) override;

protected:
    /// Answers F1 in any control of the page, and the help button. TRUE ends the key here; the default
    /// answers nothing and returns FALSE.
    virtual BOOL OnHelpKey(UINT nHelpID);

    afx_msg void OnKickIdle();
    afx_msg void OnHelpButton();
    DECLARE_MESSAGE_MAP()

private:
    UINT m_nHelpID;
};
