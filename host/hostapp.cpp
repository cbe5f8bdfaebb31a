#include "host/hostapp.h"

#include "host/columns.h"
#include "host/hostframe.h"
#include "host/hostres.h"
#include "suite/patients/store/patdefs.h"

#include <objbase.h>

#include <cstdlib>

std::vector<std::string> hostCApp::GetArguments()
{
    return __argc > 1 ? std::vector<std::string>(__argv + 1, __argv + __argc) : std::vector<std::string>();
}

BOOL hostCApp::ReadOptions(hostSOptions& options)
{
    std::string wrong;
    if (hostParseCommandLine(GetArguments(), options, wrong))
    {
        return TRUE;
    }
    CString message;
    message.FormatMessage(IDS_ERR_COMMAND_LINE, wrong.c_str());
    AfxMessageBox(message + "\n\n" + hostText(IDS_USAGE), MB_OK | MB_ICONERROR);
    return FALSE;
}

BOOL hostCApp::MakePractice(const hostSOptions& options)
{
    const CWaitCursor wait;
    const CString folder =
        options.practice.empty() ? hostCPractice::GetSampleFolder() : CString(options.practice.c_str());
    CString error;
    if (hostCPractice::Create(folder, options.patients, error))
    {
        return TRUE;
    }
    AfxMessageBox(error, MB_OK | MB_ICONERROR);
    return FALSE;
}

BOOL hostCApp::InitInstance()
{
    CWinApp::InitInstance();
    const INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_WIN95_CLASSES | ICC_DATE_CLASSES};
    ::InitCommonControlsEx(&controls);
    ::OleInitialize(nullptr);
    m_drawing = std::make_unique<picCSession>();
    if (!m_drawing->IsStarted() || !InitVelPatDLL(1))
    {
        AfxMessageBox(hostText(IDS_ERR_DRAWING), MB_OK | MB_ICONERROR);
        return FALSE;
    }
    hostSOptions options;
    if (!ReadOptions(options) || (options.patients > 0 && !MakePractice(options)))
    {
        return FALSE;
    }
    m_frame = new hostCFrame(m_session);
    if (!m_frame->LoadFrame(IDR_HOST))
    {
        return FALSE;
    }
    m_pMainWnd = m_frame;
    m_frame->ShowWindow(m_nCmdShow);
    m_frame->UpdateWindow();
    m_frame->OpenPractice(options.practice.c_str());
    return TRUE;
}

int hostCApp::ExitInstance()
{
    m_session.Close();
    m_drawing.reset();
    ::OleUninitialize();
    return CWinApp::ExitInstance();
}

BOOL hostCApp::OnIdle(LONG count)
{
    const BOOL more = CWinApp::OnIdle(count);
    const BOOL loading = m_pMainWnd != nullptr && m_frame->DoIdle();
    return more || loading;
}
