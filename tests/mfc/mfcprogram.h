// The test program's application object: it notes what message handlers throw instead of showing it.
#pragma once

#include <afxwin.h>

#include <string>
#include <vector>

class CTestApp : public CWinApp
{
public:
    LRESULT ProcessWndProcException(CException* e, const MSG* pMsg) override
    {
        char text[256] = "";
        e->GetErrorMessage(text, sizeof(text));
        m_thrown.emplace_back(text);
        return pMsg != nullptr && pMsg->message == WM_CREATE ? -1 : 0;
    }

    std::vector<std::string> m_thrown;
};

CTestApp& TestApp();

// An exception with a text of its own.
class CTextException : public CException
{
public:
    explicit CTextException(const char* text) : m_text(text)
    {
    }
    BOOL GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT) const override
    {
        lstrcpyn(lpszError, m_text, static_cast<int>(nMaxError));
        return TRUE;
    }

private:
    CString m_text;
};

// A plain top-level window to own dialogs.
class COwner : public CWnd
{
public:
    COwner()
    {
        CreateEx(0, AfxRegisterWndClass(0), "Owner", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 300, 200,
                 nullptr, nullptr);
    }
    ~COwner() override
    {
        DestroyWindow();
    }
};
