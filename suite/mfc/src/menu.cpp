// CMenu.
#include "handlemap.h"

IMPLEMENT_DYNAMIC(CMenu, CObject)

CMenu::~CMenu()
{
    DestroyMenu();
}

CMenu* CMenu::FromHandle(HMENU hMenu)
{
    if (hMenu == nullptr)
    {
        return nullptr;
    }
    CHandleMaps& maps = AfxMaps();
    return maps.menus.Find(hMenu, maps.NextSerial(), [] { return std::make_unique<CMenu>(); });
}

BOOL CMenu::Attach(HMENU hMenu)
{
    ASSERT(m_hMenu == nullptr);
    if (hMenu == nullptr)
    {
        return FALSE;
    }
    AfxMaps().menus.SetPermanent(hMenu, this);
    m_hMenu = hMenu;
    return TRUE;
}

HMENU CMenu::Detach()
{
    const HMENU handle = m_hMenu;
    if (handle != nullptr)
    {
        auto& map = AfxMaps().menus;
        if (map.FindPermanent(handle) == this)
        {
            map.Remove(handle);
        }
        m_hMenu = nullptr;
    }
    return handle;
}

BOOL CMenu::DestroyMenu()
{
    return m_hMenu != nullptr && ::DestroyMenu(Detach());
}

int CMenu::GetMenuString(UINT nIDItem, CString& rString, UINT nFlags) const
{
    const int length = ::GetMenuString(m_hMenu, nIDItem, nullptr, 0, nFlags);
    rString.Empty();
    if (length > 0)
    {
        ::GetMenuString(m_hMenu, nIDItem, rString.GetBuffer(length), length + 1, nFlags);
        rString.ReleaseBuffer();
    }
    return rString.GetLength();
}

BOOL CMenu::TrackPopupMenu(UINT nFlags, int x, int y, CWnd* pWnd, LPCRECT lpRect)
{
    return ::TrackPopupMenu(m_hMenu, nFlags, x, y, 0, pWnd != nullptr ? pWnd->m_hWnd : nullptr, lpRect);
}
