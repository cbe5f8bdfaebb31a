// CWinApp, message boxes and window classes.
#include "wndaccess.h"
#include "handlemap.h"

#include <algorithm>
#include <mutex>

IMPLEMENT_DYNAMIC(CWinApp, CWinThread)

BEGIN_MESSAGE_MAP(CWinApp, CWinThread)
ON_COMMAND(ID_APP_EXIT, &CWinApp::OnAppExit)
END_MESSAGE_MAP()

CWinApp::CWinApp(LPCTSTR lpszAppName)
{
    // A static object lies in its module's image, so its address tells which module it serves.
    HMODULE module = nullptr;
    if (!::GetModuleHandleEx(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                                 GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                             reinterpret_cast<LPCTSTR>(this), &module))
    {
        module = ::GetModuleHandle(nullptr);
    }
    m_hInstance = module;
    m_strAppName = lpszAppName;
    m_bAutoDelete = FALSE;
    m_nThreadID = ::GetCurrentThreadId();
    AFX_MODULE_STATE* state = AfxGetModuleStateOf(module);
    ASSERT(state->m_pCurrentWinApp == nullptr); // one application object per module
    state->m_pCurrentWinApp = this;
    AfxGetThreadState()->Of(state)->m_pCurrentWinThread = this;
}

CWinApp::~CWinApp()
{
    AFX_MODULE_STATE* state = AfxGetModuleStateOf(m_hInstance);
    if (state->m_pCurrentWinApp == this)
    {
        state->m_pCurrentWinApp = nullptr;
        AFX_MODULE_THREAD_STATE* thread = AfxGetThreadState()->Of(state);
        if (thread->m_pCurrentWinThread == this)
        {
            thread->m_pCurrentWinThread = nullptr;
        }
        if (state->m_bDLL)
        {
            AfxRemoveModuleState(m_hInstance); // the library is being unloaded
        }
    }
}

void CWinApp::InitNames()
{
    char path[MAX_PATH + 1] = "";
    ::GetModuleFileName(m_hInstance, path, MAX_PATH);
    m_strExeName = path;
    m_strExeName = m_strExeName.Mid(m_strExeName.ReverseFind('\\') + 1);
    const int dot = m_strExeName.ReverseFind('.');
    if (dot > 0)
    {
        m_strExeName = m_strExeName.Left(dot);
    }
    if (m_strAppName.IsEmpty() && !m_strAppName.LoadString(AFX_IDS_APP_TITLE))
    {
        m_strAppName = m_strExeName;
    }
    m_pszExeName = m_strExeName;
    m_pszAppName = m_strAppName;
}

BOOL CWinApp::InitInstance()
{
    return TRUE;
}

int CWinApp::Run()
{
    if (m_pMainWnd == nullptr)
    {
        AfxPostQuitMessage(0); // nothing would ever end the loop
    }
    return CWinThread::Run();
}

int CWinApp::ExitInstance()
{
    return CWinThread::ExitInstance();
}

BOOL CWinApp::OnIdle(LONG lCount)
{
    return CWinThread::OnIdle(lCount);
}

void CWinApp::OnAppExit()
{
    if (m_pMainWnd != nullptr)
    {
        m_pMainWnd->SendMessage(WM_CLOSE);
    }
}

HICON CWinApp::LoadIcon(LPCTSTR lpszResourceName) const
{
    return ::LoadIcon(AfxFindResourceHandle(lpszResourceName, RT_GROUP_ICON), lpszResourceName);
}

HICON CWinApp::LoadIcon(UINT nIDResource) const
{
    return LoadIcon(MAKEINTRESOURCE(nIDResource));
}

void CWinApp::DoWaitCursor(int nCode)
{
    AfxThreadState* thread = AfxGetThreadState();
    static const HCURSOR hourglass = ::LoadCursor(nullptr, IDC_WAIT);
    const int before = thread->m_nWaitCursorCount;
    thread->m_nWaitCursorCount = (std::max)(0, before + nCode);
    if (thread->m_nWaitCursorCount > 0)
    {
        const HCURSOR previous = ::SetCursor(hourglass);
        if (nCode > 0 && before == 0)
        {
            thread->m_hcurWaitCursorRestore = previous;
        }
    }
    else if (before > 0)
    {
        ::SetCursor(thread->m_hcurWaitCursorRestore);
    }
}

void CWinApp::WinHelp(DWORD_PTR, UINT)
{
    // Programs route help themselves; there is no default help file.
}

// ---------------------------------------------------------------------------------------------------------
// Message boxes

int CWinApp::DoMessageBox(LPCTSTR lpszPrompt, UINT nType, UINT)
{
    HWND top = nullptr;
    const CWnd* owner = CWnd::GetSafeOwner(nullptr, &top);
    if ((nType & MB_ICONMASK) == 0)
    {
        const UINT buttons = nType & MB_TYPEMASK;
        nType |= buttons == MB_YESNO || buttons == MB_YESNOCANCEL ? MB_ICONQUESTION : MB_ICONEXCLAMATION;
    }
    const int result = ::MessageBox(owner != nullptr ? owner->m_hWnd : nullptr, lpszPrompt,
                                    m_pszAppName != nullptr ? m_pszAppName : "", nType);
    if (top != nullptr)
    {
        ::EnableWindow(top, TRUE);
    }
    return result;
}

int AfxMessageBox(LPCTSTR lpszText, UINT nType, UINT nIDHelp)
{
    if (CWinApp* app = AfxGetApp())
    {
        return app->DoMessageBox(lpszText, nType, nIDHelp);
    }
    return ::MessageBox(::GetActiveWindow(), lpszText, nullptr, nType);
}

int AfxMessageBox(UINT nIDPrompt, UINT nType, UINT nIDHelp)
{
    CString text;
    if (!text.LoadString(nIDPrompt))
    {
        TRACE("message text %u not found\n", nIDPrompt);
    }
    return AfxMessageBox(text, nType, nIDHelp == static_cast<UINT>(-1) ? nIDPrompt : nIDHelp);
}

CWinApp* AfxGetApp()
{
    return AfxGetModuleState()->m_pCurrentWinApp;
}

// ---------------------------------------------------------------------------------------------------------
// Window classes

namespace
{
std::mutex g_classes; // guards every module's list
}

BOOL AfxRegisterClass(WNDCLASS* lpWndClass)
{
    WNDCLASS known{};
    if (::GetClassInfo(lpWndClass->hInstance, lpWndClass->lpszClassName, &known))
    {
        return TRUE;
    }
    if (::RegisterClass(lpWndClass) == 0)
    {
        return FALSE;
    }
    AFX_MODULE_STATE* state = AfxGetModuleState();
    if (state->m_bDLL)
    {
        const std::lock_guard lock(g_classes);
        state->m_registeredClasses.emplace_back(lpWndClass->lpszClassName);
    }
    return TRUE;
}

LPCTSTR AfxRegisterWndClass(UINT nClassStyle, HCURSOR hCursor, HBRUSH hbrBackground, HICON hIcon)
{
    CString& name = AfxGetThreadState()->m_strClassName;
    const HINSTANCE module = AfxGetInstanceHandle();
    name.Format("Vel:%p:%x:%p:%p:%p", static_cast<void*>(module), nClassStyle, static_cast<void*>(hCursor),
                static_cast<void*>(hbrBackground), static_cast<void*>(hIcon));
    WNDCLASS wndClass{};
    wndClass.style = nClassStyle;
    wndClass.lpfnWndProc = &::DefWindowProc;
    wndClass.hInstance = module;
    wndClass.hIcon = hIcon;
    wndClass.hCursor = hCursor;
    wndClass.hbrBackground = hbrBackground;
    wndClass.lpszClassName = name;
    if (!AfxRegisterClass(&wndClass))
    {
        AfxThrowResourceException();
    }
    return name;
}
