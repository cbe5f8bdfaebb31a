// The transfer program: start, single instance, database.
#include "suite/patients/velpat.h"
#include "suite/rasko/program/automation.h"
#include "suite/rasko/program/raskowindow.h"
#include "suite/rasko/raskoapi.h"
#include "suite/util/velini.h"
#include "suite/util/velpath.h"

#include <objbase.h>

#include <cstdlib>
#include <memory>

namespace
{
constexpr char DatabaseName[] = "Veltrix.db";
constexpr char MutexName[] = "VelRasko64";

bool HasSwitch(LPCTSTR name)
{
    for (int i = 1; i < __argc; ++i)
        if ((__argv[i][0] == '/' || __argv[i][0] == '-') &&
            _stricmp(__argv[i] + 1, name + (name[0] == '/')) == 0)
            return true;
    return false;
}

/// The program. Main thread; owns the window and what COM sees of it.
class CRaskoApp : public CWinApp
{
public:
    BOOL InitInstance() override;
    int ExitInstance() override;

private:
    bool OpenDatabase() const;
    bool LeaveToRunningOne();

    HANDLE m_mutex = nullptr;
    std::unique_ptr<CRaskoWindow> m_window;
    std::unique_ptr<rasko::AutomationServer> m_automation;
};

// A second start wakes the program that runs already and shows what it was asked for.
bool CRaskoApp::LeaveToRunningOne()
{
    m_mutex = CreateMutexA(nullptr, TRUE, MutexName);
    if (m_mutex && GetLastError() != ERROR_ALREADY_EXISTS)
        return false;
    const HWND window = FindWindowA(rasko::WindowClass, nullptr);
    if (window)
    {
        DWORD process = 0;
        GetWindowThreadProcessId(window, &process);
        AllowSetForegroundWindow(process);
        ::PostMessage(window, RegisterWindowMessageA(rasko::WakeMessage), 0, 0);
        if (HasSwitch(rasko::OptionsSwitch))
            ::PostMessage(window, RaskoMessageOptions, 0, 0);
        else if (!HasSwitch(rasko::HiddenSwitch))
            ::PostMessage(window, RaskoMessageShow, 0, 0);
    }
    return true;
}

bool CRaskoApp::OpenDatabase() const
{
    strFilename settings(velGetIniFile());
    const CString path = velenv("DATABASE", settings.GetPath() + DatabaseName);
    try
    {
        dbCPatients::Open(path);
        return true;
    }
    catch (CException* thrown)
    {
        char reason[400] = "";
        thrown->GetErrorMessage(reason, sizeof reason);
        thrown->Delete();
        CString message;
        message.Format(IDS_NO_DATABASE, reason);
        AfxMessageBox(message, MB_OK | MB_ICONSTOP);
        return false;
    }
}

BOOL CRaskoApp::InitInstance()
{
    CWinApp::InitInstance();
    if (HasSwitch("RegServer") || HasSwitch("UnregServer"))
    {
        if (!(HasSwitch("RegServer") ? rasko::RegisterServer() : rasko::UnregisterServer()))
            AfxMessageBox(IDS_NO_REGISTRY, MB_OK | MB_ICONSTOP);
        return FALSE;
    }
    const INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_WIN95_CLASSES};
    InitCommonControlsEx(&controls);
    if (FAILED(CoInitialize(nullptr)) || !InitVelPatDLL(1) || LeaveToRunningOne() || !OpenDatabase())
        return FALSE;
    CRaskoWindow::RegisterWindowClass();
    m_window = std::make_unique<CRaskoWindow>();
    // First: who finds the window may ask for the object.
    m_automation = std::make_unique<rasko::AutomationServer>(*m_window);
    if (!m_window->Open())
        return FALSE;
    m_pMainWnd = m_window.get();
    const bool hidden = HasSwitch(rasko::HiddenSwitch) || HasSwitch("Embedding") || HasSwitch("Automation") ||
                        rasko::Settings::Load().hidden;
    m_window->ShowWindow(hidden ? SW_HIDE : SW_SHOWNORMAL);
    m_window->PostMessage(RegisterWindowMessageA(rasko::WakeMessage));
    if (HasSwitch(rasko::OptionsSwitch))
        m_window->OpenOptions();
    return TRUE;
}

int CRaskoApp::ExitInstance()
{
    m_automation.reset();
    m_window.reset();
    dbCPatients::Close();
    if (m_mutex)
        CloseHandle(m_mutex);
    CoUninitialize();
    return CWinApp::ExitInstance();
}

CRaskoApp theApp;
} // namespace
