#include "controls/bitmapbutton.h"

#include <uxtheme.h>
#include <vssym32.h>

#include <algorithm>

IMPLEMENT_DYNAMIC(CVeltrixBitmapButton, CButton)

BEGIN_MESSAGE_MAP(CVeltrixBitmapButton, CButton)
ON_WM_GETDLGCODE()
ON_WM_MOUSEMOVE()
ON_WM_MOUSELEAVE()
ON_MESSAGE(BM_SETSTYLE, &CVeltrixBitmapButton::OnSetStyle)
END_MESSAGE_MAP()

namespace
{

constexpr int imageSize = 16; // at 96 dpi
constexpr int imageGap = 4;   // between image and caption, at 96 dpi

bool IsHighContrast()
{
    HIGHCONTRAST contrast = {};
    contrast.cbSize = sizeof contrast;
    return ::SystemParametersInfo(SPI_GETHIGHCONTRAST, sizeof contrast, &contrast, 0) &&
           (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

bool IsDefaultStyle(DWORD dwStyle)
{
    return (dwStyle & BS_TYPEMASK) == BS_DEFPUSHBUTTON;
}

/// The theme of push buttons; null where windows are not themed.
class ButtonTheme
{
public:
    explicit ButtonTheme(HWND hWnd) : m_hTheme(::OpenThemeData(hWnd, L"BUTTON"))
    {
    }
    ~ButtonTheme()
    {
        if (m_hTheme != nullptr)
            ::CloseThemeData(m_hTheme);
    }
    ButtonTheme(const ButtonTheme&) = delete;
    ButtonTheme& operator=(const ButtonTheme&) = delete;
    operator HTHEME() const
    {
        return m_hTheme;
    }

private:
    HTHEME m_hTheme;
};

} // namespace

CVeltrixBitmapButton::CVeltrixBitmapButton(UINT nImage, UINT nDisabledImage, velButtonStyle nStyle)
    : m_nImage(nImage), m_nDisabledImage(nDisabledImage), m_nStyle(nStyle)
{
}

void CVeltrixBitmapButton::PreSubclassWindow()
{
    CButton::PreSubclassWindow();
    m_bDefault = IsDefaultStyle(GetStyle());
    SetButtonStyle(BS_OWNERDRAW, FALSE);
}

LRESULT CVeltrixBitmapButton::WindowProc(UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    // An owner-drawn button tells of the second click of two quick ones as a double click; here it is a
    // click.
    return CButton::WindowProc(nMessage == WM_LBUTTONDBLCLK ? WM_LBUTTONDOWN : nMessage, wParam, lParam);
}

// The style of an owner-drawn button has no room for the default state, so it is kept here, where the dialog
// manager asks for it and sets it.
UINT CVeltrixBitmapButton::OnGetDlgCode()
{
    return DLGC_BUTTON | (m_bDefault ? DLGC_DEFPUSHBUTTON : DLGC_UNDEFPUSHBUTTON);
}

LRESULT CVeltrixBitmapButton::OnSetStyle(WPARAM nStyle, LPARAM /*bRedraw*/)
{
    m_bDefault = IsDefaultStyle(static_cast<DWORD>(nStyle));
    Invalidate();
    return 0;
}

void CVeltrixBitmapButton::OnMouseMove(UINT nFlags, CPoint point)
{
    if (!m_bHot)
    {
        TRACKMOUSEEVENT track = {sizeof track, TME_LEAVE, m_hWnd, 0};
        m_bHot = ::TrackMouseEvent(&track) != FALSE;
        Invalidate(FALSE);
    }
    CButton::OnMouseMove(nFlags, point);
}

void CVeltrixBitmapButton::OnMouseLeave()
{
    m_bHot = false;
    Invalidate(FALSE);
    CButton::OnMouseLeave();
}

void CVeltrixBitmapButton::DrawItem(LPDRAWITEMSTRUCT pDraw)
{
    CRect rect(pDraw->rcItem);
    const int nSaved = ::SaveDC(pDraw->hDC);
    const COLORREF crText = DrawFace(pDraw->hDC, rect, pDraw->itemState);
    DrawContent(pDraw->hDC, rect, pDraw->itemState, crText);
    if ((pDraw->itemState & ODS_FOCUS) != 0 && (pDraw->itemState & ODS_NOFOCUSRECT) == 0)
    {
        ::SetTextColor(pDraw->hDC, ::GetSysColor(COLOR_BTNTEXT));
        ::SetBkColor(pDraw->hDC, ::GetSysColor(COLOR_BTNFACE));
        ::DrawFocusRect(pDraw->hDC, &rect);
    }
    ::RestoreDC(pDraw->hDC, nSaved);
}

// Draws the button without what stands on it, leaves the room for that in the rectangle and returns the
// colour of the caption.
COLORREF CVeltrixBitmapButton::DrawFace(HDC hDC, CRect& rect, UINT nState) const
{
    const bool bDisabled = (nState & ODS_DISABLED) != 0;
    const bool bPressed = (nState & ODS_SELECTED) != 0;
    if (const ButtonTheme theme(m_hWnd); theme != nullptr)
    {
        const int nFace = bDisabled    ? PBS_DISABLED
                          : bPressed   ? PBS_PRESSED
                          : m_bHot     ? PBS_HOT
                          : m_bDefault ? PBS_DEFAULTED
                                       : PBS_NORMAL;
        ::DrawThemeParentBackground(m_hWnd, hDC, &rect);
        ::DrawThemeBackground(theme, hDC, BP_PUSHBUTTON, nFace, &rect, nullptr);
        COLORREF crText = ::GetSysColor(bDisabled ? COLOR_GRAYTEXT : COLOR_BTNTEXT);
        ::GetThemeColor(theme, BP_PUSHBUTTON, nFace, TMT_TEXTCOLOR, &crText);
        ::GetThemeBackgroundContentRect(theme, hDC, BP_PUSHBUTTON, nFace, &rect, &rect);
        return crText;
    }

    ::FillRect(hDC, &rect, ::GetSysColorBrush(COLOR_BTNFACE));
    if (m_bDefault)
    {
        ::FrameRect(hDC, &rect, ::GetSysColorBrush(COLOR_WINDOWFRAME));
        rect.DeflateRect(1, 1);
    }
    ::DrawFrameControl(hDC, &rect, DFC_BUTTON, DFCS_BUTTONPUSH | (bPressed ? DFCS_PUSHED : 0));
    rect.DeflateRect(3, 3);
    if (bPressed)
        rect.OffsetRect(1, 1);
    return ::GetSysColor(bDisabled ? COLOR_GRAYTEXT : COLOR_BTNTEXT);
}

void CVeltrixBitmapButton::DrawContent(HDC hDC, const CRect& rect, UINT nState, COLORREF crText)
{
    const int nDpi = ::GetDeviceCaps(hDC, LOGPIXELSX);
    const int nSize = std::min(::MulDiv(imageSize, nDpi, 96), std::min(rect.Width(), rect.Height()));
    const UINT nFormat = DT_SINGLELINE | DT_VCENTER | ((nState & ODS_NOACCEL) != 0 ? DT_HIDEPREFIX : 0U);

    CString strCaption;
    CRect rectText(rect);
    int nContent = nSize;
    if (m_nStyle == velButtonImageText)
    {
        GetWindowText(strCaption);
        ::SelectObject(hDC, *GetFont());
        CRect rectNeeded;
        ::DrawText(hDC, strCaption, -1, &rectNeeded, nFormat | DT_CALCRECT);
        const int nGap = ::MulDiv(imageGap, nDpi, 96);
        nContent = std::min(nSize + nGap + rectNeeded.Width(), rect.Width());
        rectText.left = rect.left + (rect.Width() - nContent) / 2 + nSize + nGap;
    }

    const bool bDisabled = (nState & ODS_DISABLED) != 0;
    const CPoint point(rect.left + (rect.Width() - nContent) / 2, rect.top + (rect.Height() - nSize) / 2);
    m_image.Draw(hDC, point, bDisabled ? m_nDisabledImage : m_nImage, nSize,
                 IsHighContrast() ? crText : CLR_NONE, ::GetSysColor(COLOR_BTNFACE));
    if (!strCaption.IsEmpty())
    {
        ::SetBkMode(hDC, TRANSPARENT);
        ::SetTextColor(hDC, crText);
        ::DrawText(hDC, strCaption, -1, &rectText, nFormat | DT_END_ELLIPSIS);
    }
}
