#pragma once

// What the library's own sources share.

#include "suite/dialogs/ctlapi.h"
#include "suite/dialogs/velctlres.h"

/// The instance of this library, for its own strings.
HINSTANCE ctlInstance();

/// The help id that belongs to a dialog template.
inline UINT ctlHelpID(UINT nIDTemplate)
{
    return nIDTemplate != 0 ? 0x20000U + nIDTemplate : 0U;
}

inline bool ctlIsHelpKey(const MSG& msg)
{
    return msg.message == WM_KEYDOWN && msg.wParam == VK_F1;
}

/// Draws the size grip of a window in the current theme.
void ctlDrawGrip(HWND hWnd, HDC hDC, const RECT& rect);

/// A mixture of two colours; nPart of 100 parts come from the second.
constexpr COLORREF ctlMixColors(COLORREF first, COLORREF second, int nPart)
{
    const auto mix = [nPart](int a, int b) {
        return static_cast<BYTE>((a * (100 - nPart) + b * nPart) / 100);
    };
    return RGB(mix(GetRValue(first), GetRValue(second)), mix(GetGValue(first), GetGValue(second)),
               mix(GetBValue(first), GetBValue(second)));
}

/// True while the user has chosen a high-contrast scheme: only its own colours may then be drawn with.
bool ctlIsHighContrast();
