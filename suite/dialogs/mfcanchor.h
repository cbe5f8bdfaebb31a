#pragma once

#include "suite/dialogs/ctlapi.h"

#include <span>
#include <vector>

/// Edges of the dialog that a control keeps its distance to when the dialog is resized. A control bound to
/// two opposite edges stretches, one bound to neither stays in the middle.
enum mfcEdges : unsigned
{
    mfcLeft = 1,
    mfcTop = 2,
    mfcRight = 4,
    mfcBottom = 8,

    mfcTopRight = mfcTop | mfcRight,
    mfcBottomLeft = mfcBottom | mfcLeft,
    mfcBottomRight = mfcBottom | mfcRight,
    mfcStretchTop = mfcLeft | mfcTop | mfcRight,       ///< grows in width, stays at the top
    mfcStretchBottom = mfcLeft | mfcBottom | mfcRight, ///< grows in width, stays at the bottom
    mfcStretchLeft = mfcLeft | mfcTop | mfcBottom,     ///< grows in height, stays at the left
    mfcStretchRight = mfcRight | mfcTop | mfcBottom,   ///< grows in height, stays at the right
    mfcStretchAll = mfcLeft | mfcTop | mfcRight | mfcBottom
};

/// One line of a dialog's anchor table. Controls without a line stay at the top left.
struct mfcAnchor
{
    int nID;
    mfcEdges nEdges;
};

/// Where a place in a window goes when the window's client area grows (or shrinks) by the given pixels.
VELCTL_API CRect mfcMovePlace(const CRect& rectPlace, mfcEdges nEdges, CSize sizeGrowth);

/// Keeps the anchored controls of one window in place. Owned by the window's object, on its thread.
class mfcAnchorLayout
{
public:
    /// Remembers the present places of the controls in the table; controls that do not exist are left out.
    VELCTL_API void Start(CWnd& wnd, std::span<const mfcAnchor> anchors);

    /// Moves the controls for the window's present client size, in one step without flicker.
    VELCTL_API void Arrange(CWnd& wnd) const;

private:
    struct Placed
    {
        HWND hWnd;
        mfcEdges nEdges;
        CRect rectStart;
    };

    CSize m_sizeStart;
    std::vector<Placed> m_placed;
};
