#pragma once

#include "suite/dialogs/mfcanchor.h"

/// A dialog that can be resized. A derived class gives its anchor table in its constructor; without one the
/// dialog keeps its size. The size of the template is the smallest. Nothing is remembered between two runs
/// unless RememberSize is called. Lives on the thread that shows it; the table must outlive it.
class VELCTL_API CNSFlexDialog : public CDialog
{
    DECLARE_DYNAMIC(CNSFlexDialog)

public:
    CNSFlexDialog();
    explicit CNSFlexDialog(UINT nIDTemplate, CWnd* pParentWnd = nullptr);

protected:
    /// Makes the dialog resizable; to be called in the constructor, with a table that lives forever.
    void SetAnchors(std::span<const mfcAnchor> anchors)
    {
        m_anchors = anchors;
    }

    /// Keeps the size under this name in the settings, section "Dialogs", from one run to the next; to be
    /// called in the constructor, for dialogs with an anchor table.
    void RememberSize(LPCTSTR pszEntry)
    {
        m_strSizeEntry = pszEntry;
    }

    BOOL OnInitDialog() override;

    afx_msg void OnSize(UINT nType, int cx, int cy);
    afx_msg void OnGetMinMaxInfo(MINMAXINFO* pInfo);
    afx_msg LRESULT OnNcHitTest(CPoint point);
    afx_msg BOOL OnEraseBkgnd(CDC* pDC);
    afx_msg void OnDestroy();
    DECLARE_MESSAGE_MAP()

private:
    void MakeResizable();
    void RestoreSize();
    CRect GripPlace() const;

    std::span<const mfcAnchor> m_anchors;
    mfcAnchorLayout m_layout;
    CSize m_sizeSmallest; ///< of the whole window; 0 until the dialog has been made resizable
    CRect m_rectGrip;     ///< where the grip is for the size that OnSize saw last
    CString m_strSizeEntry;
};

/// The suite's dialog: resizable on request, keeps its controls' states through command-update handlers
/// (ON_UPDATE_COMMAND_UI with control ids) that run whenever the dialog is idle, and answers F1 and a help
/// button with the id IDHELP.
class VELCTL_API mfcCDialog : public CNSFlexDialog
{
    DECLARE_DYNAMIC(mfcCDialog)

public:
    mfcCDialog();
    explicit mfcCDialog(UINT nIDTemplate, CWnd* pParentWnd = nullptr);

    /// The dialog's help id: 0x20000 plus the id of its template; 0 without a template id.
    UINT GetHelpID() const
    {
        return m_nHelpID;
    }

    /// Runs the command-update handlers of the dialog's controls now.
    void UpdateControls();

    BOOL PreTranslateMessage(MSG* pMsg) override;

protected:
    /// Answers F1 in any control of the dialog, and the help button. TRUE ends the key here; the default
    /// answers nothing and returns FALSE.
    virtual BOOL OnHelpKey(UINT nHelpID);

    afx_msg void OnKickIdle();
    afx_msg void OnHelpButton();
    DECLARE_MESSAGE_MAP()

private:
    UINT m_nHelpID;
};
