// CWinThread and CWinApp. Included through afxwin.h.
#pragma once

using AFX_THREADPROC = UINT (*)(LPVOID);

// A thread of the framework: runs InitInstance, then a message loop, then ExitInstance, all on the new
// thread. The object is deleted by its thread when m_bAutoDelete is set.
class AFX_DLL_CLASS CWinThread : public CCmdTarget
{
    DECLARE_DYNAMIC(CWinThread)
public:
    CWinThread();
    // A thread that runs the function alone, without a message loop; its result is the exit code.
    CWinThread(AFX_THREADPROC pfnThreadProc, LPVOID pParam);
    ~CWinThread() override;

    CWnd* m_pMainWnd = nullptr; // not owned; closing it ends the thread
    BOOL m_bAutoDelete = TRUE;
    HANDLE m_hThread = nullptr; // owned
    DWORD m_nThreadID = 0;
    operator HANDLE() const
    {
        return m_hThread;
    }

    // Starts the thread; returns when it has begun to run. It runs in the caller's module state.
    BOOL CreateThread(DWORD dwCreateFlags = 0, UINT nStackSize = 0,
                      LPSECURITY_ATTRIBUTES lpSecurityAttrs = nullptr);
    BOOL SetThreadPriority(int nPriority);
    DWORD ResumeThread();

    virtual BOOL InitInstance(); // FALSE: the thread ends
    virtual int Run();
    virtual BOOL PreTranslateMessage(MSG* pMsg);
    virtual BOOL PumpMessage(); // FALSE on WM_QUIT
    virtual BOOL OnIdle(LONG lCount);
    virtual BOOL IsIdleMessage(MSG* pMsg);
    virtual int ExitInstance(); // the exit code
    // What a message handler threw. Anything thrown that is not a CException comes as one that carries its
    // text. The default reports it; the answer becomes the message's result. The caller deletes e.
    virtual LRESULT ProcessWndProcException(CException* e, const MSG* pMsg);
    virtual CWnd* GetMainWnd();
    virtual void Delete();

protected:
    DECLARE_MESSAGE_MAP()

private:
    friend struct AfxThreadAccess;
    AFX_THREADPROC m_pfnThreadProc = nullptr;
    LPVOID m_pThreadParams = nullptr;
};

// The application object: one static object per program and per regular DLL. It finds the module it belongs
// to by its own address.
class AFX_DLL_CLASS CWinApp : public CWinThread
{
    DECLARE_DYNAMIC(CWinApp)
public:
    explicit CWinApp(LPCTSTR lpszAppName = nullptr);
    ~CWinApp() override;

    HINSTANCE m_hInstance = nullptr;
    LPTSTR m_lpCmdLine = nullptr;
    int m_nCmdShow = SW_SHOWNORMAL;
    LPCTSTR m_pszAppName = nullptr; // the caption of message boxes: AFX_IDS_APP_TITLE or the file's name
    LPCTSTR m_pszExeName = nullptr;

    // In a regular DLL InitInstance runs while the library loads: no windows, threads, COM or message boxes.
    BOOL InitInstance() override;
    int Run() override;
    int ExitInstance() override;
    BOOL OnIdle(LONG lCount) override;

    HICON LoadIcon(LPCTSTR lpszResourceName) const;
    HICON LoadIcon(UINT nIDResource) const;

    // What AfxMessageBox shows.
    virtual int DoMessageBox(LPCTSTR lpszPrompt, UINT nType, UINT nIDPrompt);
    // nCode 1 begins, -1 ends, 0 restores the hourglass.
    virtual void DoWaitCursor(int nCode);
    virtual void WinHelp(DWORD_PTR dwData, UINT nCmd = HELP_CONTEXT);

protected:
    afx_msg void OnAppExit();
    DECLARE_MESSAGE_MAP()

private:
    friend struct AfxAppAccess;
    void InitNames(); // once the module's resources can be read
    CString m_strAppName;
    CString m_strExeName;
};

AFX_DLL_API CWinThread* AfxGetThread();
AFX_DLL_API CWinApp* AfxGetApp();
AFX_DLL_API CWnd* AfxGetMainWnd();
AFX_DLL_API MSG* AfxGetCurrentMessage();
// One message through the current thread object: FALSE on WM_QUIT.
AFX_DLL_API BOOL AfxPumpMessage();
AFX_DLL_API BOOL AfxIsIdleMessage(MSG* pMsg);
AFX_DLL_API BOOL AfxPreTranslateMessage(MSG* pMsg);
AFX_DLL_API void AfxPostQuitMessage(int nExitCode);
AFX_DLL_API LRESULT AfxProcessWndProcException(CException* e, const MSG* pMsg);
// Hands what is being handled (`catch (...)`) to ProcessWndProcException, as a CException, and deletes it.
AFX_DLL_API LRESULT AfxProcessCurrentException(const MSG* pMsg) noexcept;
