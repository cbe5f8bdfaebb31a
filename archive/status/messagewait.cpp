#include "archive/status/messagewait.h"

#include <afxpriv.h>

arcWoken arcPumpOrWait(HANDLE hObject)
{
    // Not GetMessage: it would go on waiting when the message it was called for is a sent one.
    MSG* const pMessage = AfxGetCurrentMessage();
    const DWORD nObjects = hObject != nullptr ? 1 : 0;
    const DWORD nWoken =
        ::MsgWaitForMultipleObjectsEx(nObjects, &hObject, INFINITE, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    // The wait prefers the object.
    if (!::PeekMessage(pMessage, nullptr, 0, 0, PM_REMOVE))
        return nObjects != 0 && nWoken == WAIT_OBJECT_0 ? arcWoken::Object : arcWoken::Message;
    if (pMessage->message == WM_QUIT)
        return arcWoken::Quit;
    BOOL bTranslated = TRUE;
    try
    {
        bTranslated = AfxPreTranslateMessage(pMessage);
    }
    catch (...)
    {
        AfxProcessCurrentException(pMessage);
    }
    if (!bTranslated)
    {
        ::TranslateMessage(pMessage);
        ::DispatchMessage(pMessage);
    }
    return arcWoken::Message;
}

bool arcPumpUntil(HANDLE hObject)
{
    bool bQuits = false;
    int nExitCode = 0;
    for (;;)
    {
        const arcWoken woken = arcPumpOrWait(hObject);
        if (woken == arcWoken::Object)
            break;
        if (woken == arcWoken::Quit)
        {
            bQuits = true;
            nExitCode = static_cast<int>(AfxGetCurrentMessage()->wParam);
        }
    }
    if (bQuits)
        ::PostQuitMessage(nExitCode);
    return bQuits;
}

void arcWaitAnswering(HANDLE hObject)
{
    while (::MsgWaitForMultipleObjectsEx(1, &hObject, INFINITE, QS_SENDMESSAGE, 0) == WAIT_OBJECT_0 + 1)
    {
        MSG message;
        ::PeekMessage(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
    }
}

void arcJoinDesktop(DWORD nThread)
{
    ::SetThreadDesktop(::GetThreadDesktop(nThread));
}
