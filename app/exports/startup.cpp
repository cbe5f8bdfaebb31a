// What happens when the module is loaded and unloaded: the one place that knows the frame and the rooms above
// it.

#include "app/settingscontainer.h"
#include "app/velapp.h"
#include "maintenance/keywordedit.h"
#include "suite/dialogs/ctlregister.h"
#include "suite/patients/store/patdefs.h"

namespace
{

// Tells others on this computer that the module is loaded. The system closes it with the process if nobody
// does.
HANDLE hLoaded = nullptr;

} // namespace

BOOL CVelDlgsApp::InitInstance()
{
    CWinApp::InitInstance();
    hLoaded = ::CreateMutex(nullptr, FALSE, "VelMultiThreadMutex");
    InitVelPatDLL(1);
    HINSTANCE hInstance = AfxGetInstanceHandle();
    cttRegisterClass(hInstance);
    cedCEdit::RegisterControlClass(hInstance);
    cedCKeywords::RegisterControlClass(hInstance);
    velFillSettingsContainer();
    return TRUE;
}

int CVelDlgsApp::ExitInstance()
{
    // A window class that outlives the module would call into memory that is gone.
    HINSTANCE hInstance = AfxGetInstanceHandle();
    cedCKeywords::UnregisterControlClass(hInstance);
    cedCEdit::UnregisterControlClass(hInstance);
    cttUnregisterClass(hInstance);
    if (hLoaded != nullptr)
        ::CloseHandle(hLoaded);
    return CWinApp::ExitInstance();
}
