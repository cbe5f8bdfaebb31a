#include "app/velapp.h"

#include "app/appres.h"
#include "app/htmlhelp.h"
#include "app/modalrun.h"
#include "suite/util/velini.h"
#include "suite/util/velpath.h"

#include <htmlhelp.h>

#include <utility>

namespace
{

CVelDlgsApp theApp;

constexpr UINT helpIdOffset = 0x20000;

void ShowHelpDebug(UINT helpId)
{
    CString strFormat;
    CString strKind;
    CString strCommand;
    CString strText;
    strFormat.LoadString(IDS_HELP_DEBUG);
    strKind.LoadString(IDS_HELP_DEBUG_KIND);
    strCommand.LoadString(IDS_HELP_DEBUG_COMMAND);
    const UINT nClipped = LOWORD(helpId);
    strText.Format(strFormat, strKind.GetString(), helpId, static_cast<int>(helpId), nClipped, nClipped,
                   HELP_CONTEXT, strCommand.GetString());
    AfxMessageBox(strText);
}

} // namespace

CVelDlgsApp* VelApp()
{
    return &theApp;
}

CVelDlgsApp::CVelDlgsApp() = default;

dbCPatients* CVelDlgsApp::GetPatients() const
{
    return m_pPatients;
}

void CVelDlgsApp::SetPatients(dbCPatients* pPatients)
{
    m_pPatients = pPatients;
}

int CVelDlgsApp::GetPracticeManagement() const
{
    return m_nPracticeManagement;
}

int CVelDlgsApp::SetPracticeManagement(int nPracticeManagement)
{
    return std::exchange(m_nPracticeManagement, nPracticeManagement);
}

bool CVelDlgsApp::IsArchivingAllowed() const
{
    return m_bArchivingAllowed;
}

bool CVelDlgsApp::SetArchivingAllowed(bool bAllowed)
{
    return std::exchange(m_bArchivingAllowed, bAllowed);
}

int CVelDlgsApp::GetArchiveOption1() const
{
    return m_nArchiveOption1;
}

int CVelDlgsApp::GetArchiveOption2() const
{
    return m_nArchiveOption2;
}

void CVelDlgsApp::SetArchiveOptions(int nOption1, int nOption2)
{
    m_nArchiveOption1 = nOption1;
    m_nArchiveOption2 = nOption2;
}

void CVelDlgsApp::ShowHelp(UINT helpId)
{
    if (velGetIniInt("defaults", "DebugHelp", 0) != 0)
        ShowHelpDebug(helpId);

    m_strHelpFile = make_filename("Veltrix", "chm", "sys");
    m_strHelpWindow.LoadString(IDS_HELP_WINDOW);
    const CWnd* const pOwner = AfxGetMainWnd();
    HWND hOwner = pOwner != nullptr ? pOwner->GetSafeHwnd() : nullptr;
    velHelpViewer& viewer = m_pHelpViewer != nullptr ? *m_pHelpViewer : velHtmlHelp();
    viewer.Call(hOwner, m_strHelpFile, HH_HELP_CONTEXT, helpId + helpIdOffset);

    const auto windowName = reinterpret_cast<DWORD_PTR>(m_strHelpWindow.GetString());
    if (!::IsWindow(viewer.Call(hOwner, m_strHelpFile, HH_GET_WIN_HANDLE, windowName)))
        viewer.Call(hOwner, m_strHelpFile, HH_HELP_CONTEXT, helpId);
}

void CVelDlgsApp::SetHelpViewer(velHelpViewer* pViewer)
{
    m_pHelpViewer = pViewer;
}

LRESULT CVelDlgsApp::ProcessWndProcException(CException* e, const MSG* pMsg)
{
    // What the user has been told already ends no dialog, and painting must come to an end in any case.
    if (e->IsKindOf(RUNTIME_CLASS(CUserException)) || !velEndModalRun(e))
        return CWinApp::ProcessWndProcException(e, pMsg);
    if (pMsg != nullptr && pMsg->message == WM_PAINT)
        ::ValidateRect(pMsg->hwnd, nullptr);
    return pMsg != nullptr && pMsg->message == WM_CREATE ? -1 : 0;
}
