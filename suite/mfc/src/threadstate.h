// What the framework keeps for one thread, whatever module it runs. Private to the framework.
#pragma once

#include "suite/mfc/afxwin.h"

struct AfxThreadState
{
    AFX_MODULE_STATE* m_pModuleState = nullptr; // null: the program's
    MSG m_lastSentMsg{};                        // being handled; for Default
    MSG m_msgCur{};                             // taken from the queue last
    POINT m_ptCursorLast{-1, -1};
    UINT m_nMsgLast = 0;
    CWnd* m_pWndInit = nullptr; // waits for the next window to be created
    HHOOK m_hHookCbt = nullptr;
    HWND m_hLockoutNotifyWindow = nullptr; // exchanges data: its controls' notifications are not handled
    int m_nWaitCursorCount = 0;
    HCURSOR m_hcurWaitCursorRestore = nullptr;
    int m_nModalDepth = 0;
    CString m_strClassName; // answer of AfxRegisterWndClass

    struct Module
    {
        AFX_MODULE_STATE* state;
        std::unique_ptr<AFX_MODULE_THREAD_STATE> data;
    };
    std::vector<Module> m_modules; // a thread meets very few

    AFX_MODULE_THREAD_STATE* Of(AFX_MODULE_STATE* state);
    void Forget(const AFX_MODULE_STATE* state);
};

// The calling thread's, made on first use and freed when the thread ends.
AfxThreadState* AfxGetThreadState();
void AfxDetachThread();

AFX_MODULE_STATE* AfxBaseModuleState();
HINSTANCE AfxFrameworkInstance();
// Removes a module's state and what all threads hold for it.
void AfxRemoveModuleState(HINSTANCE hInstance);

// Puts a value in place and the previous one back, also when something is thrown.
template <class Value> class AfxRestored
{
public:
    AfxRestored(Value& place, Value value) : m_place(place), m_previous(place)
    {
        place = value;
    }
    ~AfxRestored()
    {
        m_place = m_previous;
    }
    AfxRestored(const AfxRestored&) = delete;
    AfxRestored& operator=(const AfxRestored&) = delete;

private:
    Value& m_place;
    Value m_previous;
};
