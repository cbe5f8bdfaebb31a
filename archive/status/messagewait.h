// Waiting on a thread that has windows.
#pragma once

#include <afxwin.h>

enum class arcWoken
{
    Object,  ///< the object is signalled and no message waits
    Message, ///< messages have been dispatched
    Quit     ///< WM_QUIT was taken; its exit code is the wParam of AfxGetCurrentMessage
};

/// Dispatches a message of the calling thread; with none there, waits for one or for the object. The object
/// may be null. Never waits while a message is there, so that what was posted before the object was signalled
/// comes first.
arcWoken arcPumpOrWait(HANDLE hObject);

/// Dispatches the calling thread's messages until the object is signalled and none is left. True when WM_QUIT
/// was among them; it is posted again at the end.
bool arcPumpUntil(HANDLE hObject);

/// Waits until the object is signalled. What other threads send to this thread's windows is answered
/// meanwhile, what they post stays.
void arcWaitAnswering(HANDLE hObject);

/// Puts the calling thread, which has no window yet, on the desktop of another thread: a new one may begin on
/// the process's first desktop, and windows of different desktops cannot talk to each other. 0: stays.
void arcJoinDesktop(DWORD nThread);
