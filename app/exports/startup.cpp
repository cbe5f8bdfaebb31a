// What happens when the module is loaded and unloaded: the one place that knows the frame and the rooms above
// it.

#include "app/settingscontainer.h"
#include "app/velapp.h"
#include "maintenance/keywordedit.h"
#include "suite/dialogs/ctlregister.h"
#include "suite/patients/store/patdefs.h"

BOOL CVelDlgsApp::InitInstance()
{
    CWinApp::InitInstance();
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
    return CWinApp::ExitInstance();
}
