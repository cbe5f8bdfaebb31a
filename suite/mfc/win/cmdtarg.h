// Command targets and the state of user interface elements. Included through afxwin.h.
#pragma once

class CCmdTarget;
class CCmdUI;
class CMenu;
class CWnd;

#define CN_COMMAND 0
#define CN_UPDATE_COMMAND_UI (static_cast<UINT>(-1))

struct AFX_MSGMAP;

// Filled by OnCmdMsg instead of calling the handler: tells whether there is one.
struct AFX_CMDHANDLERINFO
{
    CCmdTarget* pTarget;
};

// An object that commands can be routed to. Lives on the thread of the windows that route to it.
class AFX_DLL_CLASS CCmdTarget : public CObject
{
    DECLARE_DYNAMIC(CCmdTarget)
public:
    CCmdTarget();
    ~CCmdTarget() override;

    // Finds and calls the handler of a command, notification or update; TRUE when there was one.
    virtual BOOL OnCmdMsg(UINT nID, int nCode, void* pExtra, AFX_CMDHANDLERINFO* pHandlerInfo);

protected:
    static const AFX_MSGMAP* GetThisMessageMap();
    virtual const AFX_MSGMAP* GetMessageMap() const;
};

// Handed to ON_UPDATE_COMMAND_UI handlers: one menu item or control whose state is being asked.
class AFX_DLL_CLASS CCmdUI
{
public:
    CCmdUI();
    virtual ~CCmdUI();
    CCmdUI(const CCmdUI&) = delete;
    CCmdUI& operator=(const CCmdUI&) = delete;

    UINT m_nID = 0;
    UINT m_nIndex = 0;           // menu item or other position
    CMenu* m_pMenu = nullptr;    // set for a menu item
    CMenu* m_pSubMenu = nullptr; // set when the item is a submenu
    CWnd* m_pOther = nullptr;    // set for a control
    UINT m_nIndexMax = 0;
    BOOL m_bContinueRouting = FALSE;
    BOOL m_bEnableChanged = FALSE;

    virtual void Enable(BOOL bOn = TRUE);
    virtual void SetCheck(int nCheck = 1); // 0, 1 or 2 (indeterminate)
    virtual void SetText(LPCTSTR lpszText);
    // Asks the target; with bDisableIfNoHndler, what nobody handles is disabled. TRUE when it was handled.
    BOOL DoUpdate(CCmdTarget* pTarget, BOOL bDisableIfNoHndler);
};

// The hourglass from construction to destruction, also through nested loops that call Restore.
class AFX_DLL_CLASS CWaitCursor
{
public:
    CWaitCursor();
    ~CWaitCursor();
    CWaitCursor(const CWaitCursor&) = delete;
    CWaitCursor& operator=(const CWaitCursor&) = delete;
};
