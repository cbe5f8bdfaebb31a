// The framework's own way into what a window or thread object keeps protected. Private to the framework.
#pragma once

#include "threadstate.h"

struct AfxWndAccess
{
    static LRESULT WindowProc(CWnd& wnd, UINT message, WPARAM wParam, LPARAM lParam)
    {
        return wnd.WindowProc(message, wParam, lParam);
    }
    static WNDPROC* SuperWndProcAddr(CWnd& wnd)
    {
        return wnd.GetSuperWndProcAddr();
    }
    static void DoDataExchange(CWnd& wnd, CDataExchange& dx)
    {
        wnd.DoDataExchange(&dx);
    }
};

struct AfxAppAccess
{
    static void InitNames(CWinApp& app)
    {
        app.InitNames();
    }
};

struct AfxDialogAccess
{
    static void InitFailed(CDialog& dialog)
    {
        dialog.OnInitDialogFailed();
    }
};

// Calls the object's WindowProc; nothing that is thrown leaves it.
LRESULT AfxCallWndProc(CWnd* pWnd, HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam);
// Hooks a window that exists to its object.
void AfxSubclassTo(CWnd& wnd, HWND hWnd);
// True for Esc in an edit field of several lines, which takes every key and would keep it from its dialog.
bool AfxIsSwallowedEscape(const MSG& message);
