// A regular DLL for the tests of module state; built twice, under two names.
#include <afxwin.h>

#include "mfctestres.h"

namespace
{
class CTestModuleApp : public CWinApp
{
public:
    BOOL InitInstance() override
    {
        CWinApp::InitInstance();
        char refuse[4] = "";
        return ::GetEnvironmentVariable("MFCTEST_REFUSE", refuse, sizeof(refuse)) == 0;
    }
    int ExitInstance() override
    {
        char log[MAX_PATH] = "";
        if (::GetEnvironmentVariable("MFCTEST_LOG", log, sizeof(log)) != 0)
        {
            ::CloseHandle(::CreateFile(log, GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
        }
        return CWinApp::ExitInstance();
    }
};

CTestModuleApp theApp;

class CTestWindow : public CWnd
{
protected:
    LRESULT OnAsk(WPARAM, LPARAM)
    {
        return AfxGetApp() == &theApp && AfxGetInstanceHandle() == theApp.m_hInstance;
    }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(CTestWindow, CWnd)
ON_MESSAGE(WM_APP, &CTestWindow::OnAsk)
END_MESSAGE_MAP()

CTestWindow window;
} // namespace

// The module's own string, and whether windows made in its state get the controls of version 6.
extern "C" __declspec(dllexport) int TestModuleDescribe(char* text, int size)
{
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    CString name;
    name.LoadString(IDS_WHO);
    lstrcpyn(text, name, size);
    ACTCTX_SECTION_KEYED_DATA data{};
    data.cbSize = sizeof(data);
    return ::FindActCtxSectionString(0, nullptr, ACTIVATION_CONTEXT_SECTION_WINDOW_CLASS_REDIRECTION,
                                     "Button", &data);
}

// A window whose handlers must run in this module's state, whoever sends.
extern "C" __declspec(dllexport) HWND TestModuleOpenWindow()
{
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    window.CreateEx(0, AfxRegisterWndClass(0), "", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr);
    return window.m_hWnd;
}

extern "C" __declspec(dllexport) void TestModuleCloseWindow()
{
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    window.DestroyWindow();
}
