#include "suite/dialogs/ctlhelp.h"

#include <uxtheme.h>
#include <vssym32.h>

void ctlDrawGrip(HWND hWnd, HDC hDC, const RECT& rect)
{
    if (const HTHEME hTheme = ::OpenThemeData(hWnd, L"STATUS"); hTheme != nullptr)
    {
        const bool bDrawn = SUCCEEDED(::DrawThemeBackground(hTheme, hDC, SP_GRIPPER, 0, &rect, nullptr));
        ::CloseThemeData(hTheme);
        if (bDrawn)
        {
            return;
        }
    }
    RECT rectGrip = rect;
    ::DrawFrameControl(hDC, &rectGrip, DFC_SCROLL, DFCS_SCROLLSIZEGRIP);
}

bool ctlIsHighContrast()
{
    HIGHCONTRAST contrast = {};
    contrast.cbSize = sizeof contrast;
    return ::SystemParametersInfo(SPI_GETHIGHCONTRAST, sizeof contrast, &contrast, 0) &&
           (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
}
