// Command routing through message maps, command user interface, the wait cursor.
#include "threadstate.h"
#include "msgmap.h"

IMPLEMENT_DYNAMIC(CCmdTarget, CObject)

const AFX_MSGMAP* CCmdTarget::GetMessageMap() const
{
    return GetThisMessageMap();
}

const AFX_MSGMAP* CCmdTarget::GetThisMessageMap()
{
    static const AFX_MSGMAP_ENTRY entries[] = {{0, 0, 0, 0, nullptr, nullptr}};
    static const AFX_MSGMAP messageMap = {nullptr, entries};
    return &messageMap;
}

CCmdTarget::CCmdTarget() = default;
CCmdTarget::~CCmdTarget() = default;

const AFX_MSGMAP_ENTRY* AfxFindEntry(const AFX_MSGMAP* map, UINT message, UINT code, UINT id)
{
    for (; map != nullptr; map = map->pfnGetBaseMap != nullptr ? map->pfnGetBaseMap() : nullptr)
    {
        for (const AFX_MSGMAP_ENTRY* entry = map->lpEntries; entry->pfnHandler != nullptr; ++entry)
        {
            const UINT wanted = entry->pnRegistered != nullptr ? *entry->pnRegistered : entry->nMessage;
            if (wanted == message && entry->nCode == code && id >= entry->nID && id <= entry->nLastID)
            {
                return entry;
            }
        }
    }
    return nullptr;
}

BOOL CCmdTarget::OnCmdMsg(UINT nID, int nCode, void* pExtra, AFX_CMDHANDLERINFO* pHandlerInfo)
{
    // The message that a notification came with stands in the high half of its code.
    UINT message = WM_COMMAND;
    auto code = static_cast<UINT>(nCode);
    if (code != CN_UPDATE_COMMAND_UI)
    {
        message = HIWORD(code) != 0 ? HIWORD(code) : WM_COMMAND;
        code = LOWORD(code);
    }
    const AFX_MSGMAP_ENTRY* entry = AfxFindEntry(GetMessageMap(), message, code, nID);
    if (entry == nullptr)
    {
        return FALSE;
    }
    if (pHandlerInfo != nullptr)
    {
        pHandlerInfo->pTarget = this;
        return TRUE;
    }
    AFX_MSGARGS args{message, 0, 0, 0, nID, pExtra};
    return entry->pfnHandler(this, args);
}

// ---------------------------------------------------------------------------------------------------------
// Wait cursor

CWaitCursor::CWaitCursor()
{
    if (CWinApp* app = AfxGetApp())
    {
        app->DoWaitCursor(1);
    }
}

CWaitCursor::~CWaitCursor()
{
    if (CWinApp* app = AfxGetApp())
    {
        app->DoWaitCursor(-1);
    }
}

// ---------------------------------------------------------------------------------------------------------
// CCmdUI

CCmdUI::CCmdUI() = default;
CCmdUI::~CCmdUI() = default;

void CCmdUI::Enable(BOOL bOn)
{
    m_bEnableChanged = TRUE;
    if (m_pMenu != nullptr)
    {
        if (m_pSubMenu == nullptr)
        {
            m_pMenu->EnableMenuItem(m_nIndex, MF_BYPOSITION | (bOn ? MF_ENABLED : MF_DISABLED | MF_GRAYED));
        }
        return;
    }
    if (m_pOther == nullptr || (m_pOther->IsWindowEnabled() != FALSE) == (bOn != FALSE))
    {
        return;
    }
    // A disabled control must not keep the focus: keys would go nowhere.
    if (!bOn && ::GetFocus() == m_pOther->m_hWnd)
    {
        ::SendMessage(::GetParent(m_pOther->m_hWnd), WM_NEXTDLGCTL, 0, FALSE);
    }
    m_pOther->EnableWindow(bOn);
}

void CCmdUI::SetCheck(int nCheck)
{
    if (m_pMenu != nullptr)
    {
        if (m_pSubMenu == nullptr)
        {
            m_pMenu->CheckMenuItem(m_nIndex, MF_BYPOSITION | (nCheck != 0 ? MF_CHECKED : MF_UNCHECKED));
        }
    }
    else if (m_pOther != nullptr && (m_pOther->Ask<UINT>(WM_GETDLGCODE) & DLGC_BUTTON) != 0)
    {
        m_pOther->Ask(BM_SETCHECK, nCheck);
    }
}

void CCmdUI::SetText(LPCTSTR lpszText)
{
    if (m_pMenu != nullptr)
    {
        if (m_pSubMenu == nullptr)
        {
            const UINT state = m_pMenu->GetMenuState(m_nIndex, MF_BYPOSITION) &
                               ~static_cast<UINT>(MF_BITMAP | MF_OWNERDRAW | MF_SEPARATOR);
            m_pMenu->ModifyMenu(m_nIndex, MF_BYPOSITION | MF_STRING | state, m_nID, lpszText);
        }
        return;
    }
    if (m_pOther != nullptr)
    {
        CString current;
        m_pOther->GetWindowText(current);
        if (current != lpszText)
        {
            m_pOther->SetWindowText(lpszText);
        }
    }
}

BOOL CCmdUI::DoUpdate(CCmdTarget* pTarget, BOOL bDisableIfNoHndler)
{
    if (m_nID == 0 || LOWORD(m_nID) == 0xFFFF)
    {
        return TRUE; // a separator or a static text: nothing to ask
    }
    m_bEnableChanged = FALSE;
    const BOOL handled = pTarget->OnCmdMsg(m_nID, static_cast<int>(CN_UPDATE_COMMAND_UI), this, nullptr);
    if (bDisableIfNoHndler && !m_bEnableChanged)
    {
        AFX_CMDHANDLERINFO info{};
        Enable(pTarget->OnCmdMsg(m_nID, CN_COMMAND, this, &info));
    }
    return handled;
}
