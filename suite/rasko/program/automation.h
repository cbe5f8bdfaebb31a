// The program's automation object, its class object and its registration.
#pragma once

#include <afxwin.h>

class CRaskoWindow;

namespace rasko
{
/// Answers COM while it lives; on the main thread, which has to be an apartment.
class AutomationServer
{
public:
    explicit AutomationServer(CRaskoWindow& window);
    ~AutomationServer();
    AutomationServer(const AutomationServer&) = delete;
    AutomationServer& operator=(const AutomationServer&) = delete;

private:
    DWORD m_cookie = 0;
};

/// Below HKEY_LOCAL_MACHINE, for all users. False without the right to.
bool RegisterServer();
bool UnregisterServer();
} // namespace rasko
