#pragma once

#include "controls/controlsres.h"
#include "controls/drawnimage.h"

/// How a button with an image is laid out.
enum velButtonStyle : UINT
{
    velButtonImage = 0,         ///< the image alone, in the middle; the caption is the button's name
    velButtonImageText = 0x100, ///< the image, and the caption on its right
};

/// A push button that shows an image from the module's resources, drawn for the resolution and the colours of
/// the screen. To keyboard, dialog manager and screen readers it is a push button like any other: its caption
/// is its name, and it can be the default button. Made from a PUSHBUTTON or DEFPUSHBUTTON of a dialog
/// template by DDX_Control or SubclassDlgItem. Owns its image; lives on the thread of its dialog.
class CVeltrixBitmapButton : public CButton
{
    DECLARE_DYNAMIC(CVeltrixBitmapButton)

public:
    /// The images (resources of the type VELIMAGE) of the enabled and the disabled button.
    CVeltrixBitmapButton(UINT nImage, UINT nDisabledImage, velButtonStyle nStyle);

    void PreSubclassWindow() override;
    void DrawItem(LPDRAWITEMSTRUCT pDraw) override;

protected:
    LRESULT WindowProc(UINT nMessage, WPARAM wParam, LPARAM lParam) override;

    afx_msg UINT OnGetDlgCode();
    afx_msg LRESULT OnSetStyle(WPARAM nStyle, LPARAM bRedraw);
    afx_msg void OnMouseMove(UINT nFlags, CPoint point);
    afx_msg void OnMouseLeave();
    DECLARE_MESSAGE_MAP()

private:
    COLORREF DrawFace(HDC hDC, CRect& rect, UINT nState) const;
    void DrawContent(HDC hDC, const CRect& rect, UINT nState, COLORREF crText);

    CDrawnImage m_image;
    UINT m_nImage;
    UINT m_nDisabledImage;
    velButtonStyle m_nStyle;
    bool m_bDefault = false;
    bool m_bHot = false;
};
