#include "suite/dialogs/mfcanchor.h"

namespace
{

// Moves one pair of opposite edges: bound to the far edge they follow it, bound to both they part, bound to
// neither they stay in the middle.
void MovePair(LONG& nNear, LONG& nFar, bool bNear, bool bFar, int nGrowth)
{
    if (!bNear)
    {
        nNear += bFar ? nGrowth : nGrowth / 2;
        nFar += bFar ? nGrowth : nGrowth / 2;
    }
    else if (bFar)
    {
        nFar += nGrowth;
    }
}

} // namespace

CRect mfcMovePlace(const CRect& rectPlace, mfcEdges nEdges, CSize sizeGrowth)
{
    CRect rect = rectPlace;
    MovePair(rect.left, rect.right, (nEdges & mfcLeft) != 0, (nEdges & mfcRight) != 0, sizeGrowth.cx);
    MovePair(rect.top, rect.bottom, (nEdges & mfcTop) != 0, (nEdges & mfcBottom) != 0, sizeGrowth.cy);
    return rect;
}

void mfcAnchorLayout::Start(CWnd& wnd, std::span<const mfcAnchor> anchors)
{
    CRect rectClient;
    wnd.GetClientRect(&rectClient);
    m_sizeStart = rectClient.Size();
    m_placed.clear();
    m_placed.reserve(anchors.size());
    for (const mfcAnchor& anchor : anchors)
    {
        const HWND hControl = ::GetDlgItem(wnd.m_hWnd, anchor.nID);
        if (hControl == nullptr)
        {
            continue;
        }
        CRect rect;
        ::GetWindowRect(hControl, &rect);
        wnd.ScreenToClient(&rect);
        m_placed.push_back({hControl, anchor.nEdges, rect});
    }
}

void mfcAnchorLayout::Arrange(CWnd& wnd) const
{
    if (m_placed.empty())
    {
        return;
    }
    CRect rectClient;
    wnd.GetClientRect(&rectClient);
    const CSize sizeGrowth(rectClient.Width() - m_sizeStart.cx, rectClient.Height() - m_sizeStart.cy);
    HDWP hMoves = ::BeginDeferWindowPos(static_cast<int>(m_placed.size()));
    for (const Placed& placed : m_placed)
    {
        if (!::IsWindow(placed.hWnd))
        {
            continue;
        }
        const CRect rect = mfcMovePlace(placed.rectStart, placed.nEdges, sizeGrowth);
        // Controls that are redrawn from their middle or right must not keep their old pixels.
        const UINT nFlags = SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS;
        if (hMoves != nullptr)
        {
            hMoves = ::DeferWindowPos(hMoves, placed.hWnd, nullptr, rect.left, rect.top, rect.Width(),
                                      rect.Height(), nFlags);
        }
        else
        {
            ::SetWindowPos(placed.hWnd, nullptr, rect.left, rect.top, rect.Width(), rect.Height(), nFlags);
        }
    }
    if (hMoves != nullptr)
    {
        ::EndDeferWindowPos(hMoves);
    }
}
