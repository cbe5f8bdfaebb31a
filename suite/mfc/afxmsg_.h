// Message maps: which member function answers a message, command or notification.
//
// An entry holds a small function that takes the handler's arguments out of the message and calls it, so the
// compiler checks every handler's signature against its macro.
#pragma once

// One message or command on its way through a message map.
struct AFX_MSGARGS
{
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    LRESULT lResult; // the handler's answer
    UINT nID;        // commands and notifications: the id it is about
    void* pExtra;    // update: CCmdUI*; notification: AFX_NOTIFY*
};

struct AFX_NOTIFY
{
    LRESULT* pResult;
    NMHDR* pNMHDR;
};

// Calls the handler; false lets the search for a handler go on.
using AFX_MSGHANDLER = bool (*)(CCmdTarget* pTarget, AFX_MSGARGS& args);

struct AFX_MSGMAP_ENTRY
{
    UINT nMessage;
    UINT nCode;
    UINT nID;
    UINT nLastID;
    AFX_MSGHANDLER pfnHandler;
    const UINT* pnRegistered; // ON_REGISTERED_MESSAGE: the number is known at run time only
};

struct AFX_MSGMAP
{
    const AFX_MSGMAP* (*pfnGetBaseMap)();
    const AFX_MSGMAP_ENTRY* lpEntries; // ends with an entry without a handler
};

// Picks the member function of this signature, should the name be overloaded.
template <class Signature, class Class> constexpr auto AfxHandler(Signature Class::*pfn)
{
    return pfn;
}

// A mouse message's position: two signed halves.
inline CPoint AfxPointOf(LPARAM lParam)
{
    return CPoint(lParam);
}

#define DECLARE_MESSAGE_MAP()                                                                                \
protected:                                                                                                   \
    static const AFX_MSGMAP* GetThisMessageMap();                                                            \
    const AFX_MSGMAP* GetMessageMap() const override;

#define BEGIN_MESSAGE_MAP(theClass, baseClass)                                                               \
    const AFX_MSGMAP* theClass::GetMessageMap() const                                                        \
    {                                                                                                        \
        return GetThisMessageMap();                                                                          \
    }                                                                                                        \
    const AFX_MSGMAP* theClass::GetThisMessageMap()                                                          \
    {                                                                                                        \
        using ThisClass = theClass;                                                                          \
        using TheBaseClass = baseClass;                                                                      \
        static const AFX_MSGMAP_ENTRY entries[] = {
// The alias is used here so that an empty map compiles without a warning.
#define END_MESSAGE_MAP()                                                                                    \
        {0, 0, 0, 0, nullptr, nullptr}                                                                       \
        }                                                                                                    \
        ;                                                                                                    \
        static const AFX_MSGMAP messageMap = {&TheBaseClass::GetThisMessageMap, entries};                    \
        static_assert(sizeof(ThisClass) > 0);                                                                \
        return &messageMap;                                                                                  \
    }

// The parts an entry is made of. `target` and `args` are in scope in the expressions handed in.
#define AFX_ENTRY(message, code, id, lastId, ...)                                                            \
    {message, code, id, lastId,                                                                              \
     []([[maybe_unused]] CCmdTarget* target, [[maybe_unused]] AFX_MSGARGS& args) -> bool { __VA_ARGS__ },    \
     nullptr},
#define AFX_CALL(signature, memberFxn)                                                                       \
    (static_cast<ThisClass*>(target)->*AfxHandler<signature>(memberFxn))
#define AFX_WM_VOID(message, call)                                                                           \
    AFX_ENTRY(message, 0, 0, 0, static_cast<ThisClass*>(target)->call; args.lResult = 0; return true;)
#define AFX_WM_RESULT(message, call)                                                                         \
    AFX_ENTRY(message, 0, 0, 0,                                                                              \
              args.lResult = static_cast<LRESULT>(static_cast<ThisClass*>(target)->call); return true;)

// ---------------------------------------------------------------------------------------------------------
// Commands, notifications and messages by number

#define ON_COMMAND(id, memberFxn)                                                                            \
    AFX_ENTRY(WM_COMMAND, CN_COMMAND, id, id, AFX_CALL(void(), memberFxn)(); return true;)
#define ON_COMMAND_RANGE(id, idLast, memberFxn)                                                              \
    AFX_ENTRY(WM_COMMAND, CN_COMMAND, id, idLast, AFX_CALL(void(UINT), memberFxn)(args.nID); return true;)
#define AFX_UPDATE_UI(id, idLast, memberFxn)                                                                 \
    AFX_ENTRY(WM_COMMAND, CN_UPDATE_COMMAND_UI, id, idLast,                                                  \
              return AfxUpdateUI(args, [&](CCmdUI* ui) { AFX_CALL(void(CCmdUI*), memberFxn)(ui); });)
#define ON_UPDATE_COMMAND_UI(id, memberFxn) AFX_UPDATE_UI(id, id, memberFxn)
#define ON_UPDATE_COMMAND_UI_RANGE(id, idLast, memberFxn) AFX_UPDATE_UI(id, idLast, memberFxn)

#define ON_CONTROL(wNotifyCode, id, memberFxn)                                                               \
    AFX_ENTRY(WM_COMMAND, LOWORD(wNotifyCode), id, id, AFX_CALL(void(), memberFxn)(); return true;)
#define ON_CONTROL_RANGE(wNotifyCode, id, idLast, memberFxn)                                                 \
    AFX_ENTRY(WM_COMMAND, LOWORD(wNotifyCode), id, idLast,                                                   \
              AFX_CALL(void(UINT), memberFxn)(args.nID); return true;)

// Notification codes are negative numbers of which a map compares the low half.
#define AFX_NOTIFY_CODE(wNotifyCode) static_cast<WORD>(static_cast<int>(wNotifyCode))
#define ON_NOTIFY(wNotifyCode, id, memberFxn)                                                                \
    AFX_ENTRY(WM_NOTIFY, AFX_NOTIFY_CODE(wNotifyCode), id, id,                                               \
              auto* notify = static_cast<AFX_NOTIFY*>(args.pExtra);                                          \
              AFX_CALL(void(NMHDR*, LRESULT*), memberFxn)(notify->pNMHDR, notify->pResult); return true;)

#define ON_MESSAGE(message, memberFxn)                                                                       \
    AFX_ENTRY(message, 0, 0, 0,                                                                              \
              args.lResult = AFX_CALL(LRESULT(WPARAM, LPARAM), memberFxn)(args.wParam, args.lParam);         \
              return true;)
#define ON_MESSAGE_VOID(message, memberFxn)                                                                  \
    AFX_ENTRY(message, 0, 0, 0, AFX_CALL(void(), memberFxn)(); args.lResult = 0; return true;)
#define AFX_REGISTERED_MESSAGE 0xC000
#define ON_REGISTERED_MESSAGE(nMessageVariable, memberFxn)                                                   \
    {AFX_REGISTERED_MESSAGE, 0, 0, 0,                                                                        \
     [](CCmdTarget* target, AFX_MSGARGS& args) -> bool {                                                     \
         args.lResult = AFX_CALL(LRESULT(WPARAM, LPARAM), memberFxn)(args.wParam, args.lParam);              \
         return true;                                                                                        \
     },                                                                                                      \
     &nMessageVariable},

// ---------------------------------------------------------------------------------------------------------
// Notifications of the standard controls

#define ON_BN_CLICKED(id, memberFxn) ON_CONTROL(BN_CLICKED, id, memberFxn)
#define ON_CBN_SELCHANGE(id, memberFxn) ON_CONTROL(CBN_SELCHANGE, id, memberFxn)
#define ON_CBN_EDITCHANGE(id, memberFxn) ON_CONTROL(CBN_EDITCHANGE, id, memberFxn)
#define ON_EN_CHANGE(id, memberFxn) ON_CONTROL(EN_CHANGE, id, memberFxn)
#define ON_LBN_SELCHANGE(id, memberFxn) ON_CONTROL(LBN_SELCHANGE, id, memberFxn)
#define ON_LBN_DBLCLK(id, memberFxn) ON_CONTROL(LBN_DBLCLK, id, memberFxn)

// ---------------------------------------------------------------------------------------------------------
// Window messages: ON_WM_X calls OnX

#define ON_WM_DESTROY() AFX_WM_VOID(WM_DESTROY, OnDestroy())
#define ON_WM_SIZE()                                                                                         \
    AFX_WM_VOID(WM_SIZE,                                                                                     \
                OnSize(static_cast<UINT>(args.wParam), LOWORD(args.lParam), HIWORD(args.lParam)))
#define ON_WM_ACTIVATE()                                                                                     \
    AFX_WM_VOID(WM_ACTIVATE,                                                                                 \
                OnActivate(LOWORD(args.wParam), CWnd::FromHandle(reinterpret_cast<HWND>(args.lParam)),       \
                           HIWORD(args.wParam)))
#define ON_WM_SETFOCUS()                                                                                     \
    AFX_WM_VOID(WM_SETFOCUS,                                                                                 \
                OnSetFocus(CWnd::FromHandle(reinterpret_cast<HWND>(args.wParam))))
#define ON_WM_KILLFOCUS()                                                                                    \
    AFX_WM_VOID(WM_KILLFOCUS,                                                                                \
                OnKillFocus(CWnd::FromHandle(reinterpret_cast<HWND>(args.wParam))))
#define ON_WM_PAINT() AFX_WM_VOID(WM_PAINT, OnPaint())
#define ON_WM_CLOSE() AFX_WM_VOID(WM_CLOSE, OnClose())
#define ON_WM_SYSCOLORCHANGE() AFX_WM_VOID(WM_SYSCOLORCHANGE, OnSysColorChange())
#define ON_WM_GETMINMAXINFO()                                                                                \
    AFX_WM_VOID(WM_GETMINMAXINFO,                                                                            \
                OnGetMinMaxInfo(reinterpret_cast<MINMAXINFO*>(args.lParam)))
#define ON_WM_DRAWITEM()                                                                                     \
    AFX_WM_VOID(WM_DRAWITEM,                                                                                 \
                OnDrawItem(static_cast<int>(args.wParam), reinterpret_cast<LPDRAWITEMSTRUCT>(args.lParam)))
#define ON_WM_CONTEXTMENU()                                                                                  \
    AFX_WM_VOID(WM_CONTEXTMENU,                                                                              \
                OnContextMenu(CWnd::FromHandle(reinterpret_cast<HWND>(args.wParam)),                         \
                              AfxPointOf(args.lParam)))
#define ON_WM_NCDESTROY() AFX_WM_VOID(WM_NCDESTROY, OnNcDestroy())
#define ON_WM_SYSCOMMAND()                                                                                   \
    AFX_WM_VOID(WM_SYSCOMMAND,                                                                               \
                OnSysCommand(static_cast<UINT>(args.wParam), args.lParam))
#define ON_WM_TIMER() AFX_WM_VOID(WM_TIMER, OnTimer(static_cast<UINT_PTR>(args.wParam)))
#define ON_WM_INITMENUPOPUP()                                                                                \
    AFX_WM_VOID(WM_INITMENUPOPUP,                                                                            \
                OnInitMenuPopup(CMenu::FromHandle(reinterpret_cast<HMENU>(args.wParam)),                     \
                                LOWORD(args.lParam), HIWORD(args.lParam)))
#define ON_WM_MENUSELECT()                                                                                   \
    AFX_WM_VOID(WM_MENUSELECT, OnMenuSelect(LOWORD(args.wParam), HIWORD(args.wParam),                        \
                                            reinterpret_cast<HMENU>(args.lParam)))
#define ON_WM_MOUSELEAVE() AFX_WM_VOID(WM_MOUSELEAVE, OnMouseLeave())
#define ON_WM_LBUTTONDOWN()                                                                                  \
    AFX_WM_VOID(WM_LBUTTONDOWN,                                                                              \
                OnLButtonDown(static_cast<UINT>(args.wParam), AfxPointOf(args.lParam)))
#define ON_WM_LBUTTONUP()                                                                                    \
    AFX_WM_VOID(WM_LBUTTONUP,                                                                                \
                OnLButtonUp(static_cast<UINT>(args.wParam), AfxPointOf(args.lParam)))
#define ON_WM_MOUSEMOVE()                                                                                    \
    AFX_WM_VOID(WM_MOUSEMOVE,                                                                                \
                OnMouseMove(static_cast<UINT>(args.wParam), AfxPointOf(args.lParam)))

// The handler's result is the message's.
#define ON_WM_CREATE() AFX_WM_RESULT(WM_CREATE, OnCreate(reinterpret_cast<LPCREATESTRUCT>(args.lParam)))
#define ON_WM_QUERYENDSESSION() AFX_WM_RESULT(WM_QUERYENDSESSION, OnQueryEndSession())
#define ON_WM_ERASEBKGND()                                                                                   \
    AFX_WM_RESULT(WM_ERASEBKGND,                                                                             \
                  OnEraseBkgnd(CDC::FromHandle(reinterpret_cast<HDC>(args.wParam))))
#define ON_WM_NCHITTEST() AFX_WM_RESULT(WM_NCHITTEST, OnNcHitTest(AfxPointOf(args.lParam)))
#define ON_WM_GETDLGCODE() AFX_WM_RESULT(WM_GETDLGCODE, OnGetDlgCode())
