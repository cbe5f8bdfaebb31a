#include "host/splitbar.h"

#include "host/columns.h"

BEGIN_MESSAGE_MAP(hostCSplitBar, CWnd)
    ON_WM_LBUTTONDOWN()
    ON_WM_MOUSEMOVE()
    ON_WM_LBUTTONUP()
END_MESSAGE_MAP()

int hostCSplitBar::GetThickness()
{
    return hostScale(6);
}

BOOL hostCSplitBar::CreateIn(CWnd* parent, UINT id, BOOL vertical)
{
    m_vertical = vertical;
    const LPCTSTR name = AfxRegisterWndClass(0, ::LoadCursor(nullptr, vertical ? IDC_SIZEWE : IDC_SIZENS),
                                             reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1), nullptr);
    return CWnd::Create(name, "", WS_CHILD | WS_VISIBLE, CRect(0, 0, 0, 0), parent, id);
}

void hostCSplitBar::OnLButtonDown(UINT, CPoint point)
{
    m_grip = point;
    SetCapture();
}

void hostCSplitBar::OnMouseMove(UINT, CPoint point)
{
    if (GetCapture() == this)
    {
        MapWindowPoints(GetParent(), &point, 1);
        const int position = m_vertical ? point.x - m_grip.x : point.y - m_grip.y;
        GetParent()->PostMessage(HOST_WM_SPLIT, static_cast<WPARAM>(GetDlgCtrlID()), position);
    }
}

void hostCSplitBar::OnLButtonUp(UINT, CPoint)
{
    if (GetCapture() == this)
    {
        ::ReleaseCapture();
    }
}
