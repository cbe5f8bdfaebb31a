// CMenu. Included through afxwin.h.
#pragma once

// Owns its menu unless it came from FromHandle. Used by the thread that made it.
class AFX_DLL_CLASS CMenu : public CObject
{
    DECLARE_DYNAMIC(CMenu)
public:
    CMenu() = default;
    ~CMenu() override;

    HMENU m_hMenu = nullptr;
    operator HMENU() const
    {
        return m_hMenu;
    }

    BOOL Attach(HMENU hMenu);
    HMENU Detach();
    static CMenu* FromHandle(HMENU hMenu);

    BOOL CreatePopupMenu()
    {
        return Attach(::CreatePopupMenu());
    }
    BOOL DestroyMenu();

    BOOL AppendMenu(UINT nFlags, UINT_PTR nIDNewItem = 0, LPCTSTR lpszNewItem = nullptr)
    {
        return ::AppendMenu(m_hMenu, nFlags, nIDNewItem, lpszNewItem);
    }
    BOOL InsertMenu(UINT nPosition, UINT nFlags, UINT_PTR nIDNewItem = 0, LPCTSTR lpszNewItem = nullptr)
    {
        return ::InsertMenu(m_hMenu, nPosition, nFlags, nIDNewItem, lpszNewItem);
    }
    BOOL ModifyMenu(UINT nPosition, UINT nFlags, UINT_PTR nIDNewItem = 0, LPCTSTR lpszNewItem = nullptr)
    {
        return ::ModifyMenu(m_hMenu, nPosition, nFlags, nIDNewItem, lpszNewItem);
    }
    UINT CheckMenuItem(UINT nIDCheckItem, UINT nCheck)
    {
        return ::CheckMenuItem(m_hMenu, nIDCheckItem, nCheck);
    }
    BOOL EnableMenuItem(UINT nIDEnableItem, UINT nEnable)
    {
        return ::EnableMenuItem(m_hMenu, nIDEnableItem, nEnable);
    }
    int GetMenuItemCount() const
    {
        return ::GetMenuItemCount(m_hMenu);
    }
    UINT GetMenuItemID(int nPos) const
    {
        return ::GetMenuItemID(m_hMenu, nPos);
    }
    UINT GetMenuState(UINT nID, UINT nFlags) const
    {
        return ::GetMenuState(m_hMenu, nID, nFlags);
    }
    // The whole text, of any length; answers its length.
    int GetMenuString(UINT nIDItem, CString& rString, UINT nFlags) const;
    CMenu* GetSubMenu(int nPos) const
    {
        return FromHandle(::GetSubMenu(m_hMenu, nPos));
    }
    // With TPM_RETURNCMD the chosen id, else nonzero on success.
    BOOL TrackPopupMenu(UINT nFlags, int x, int y, CWnd* pWnd, LPCRECT lpRect = nullptr);
};
