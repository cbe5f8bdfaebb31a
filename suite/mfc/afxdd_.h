// Dialog data exchange and validation. Included through afxwin.h.
//
// Called from DoDataExchange. A DDV_ call stands right after the DDX_ call of its control. When saving fails,
// the user is told, the control gets the focus and UpdateData answers FALSE.
#pragma once

class CDataExchange;
class CListBox;
class CComboBox;

class AFX_DLL_CLASS CDataExchange
{
public:
    CDataExchange(CWnd* pDlgWnd, BOOL bSaveAndValidate);

    BOOL m_bSaveAndValidate; // TRUE: from the controls to the members
    CWnd* m_pDlgWnd;

    // Both throw CNotSupportedException when the dialog has no such control.
    HWND PrepareCtrl(int nIDC);
    HWND PrepareEditCtrl(int nIDC);
    // Focus to the control prepared last, its text selected when it is an edit; throws CUserException.
    [[noreturn]] void Fail();

    int m_idLastControl = 0;
    BOOL m_bEditLastControl = FALSE;

private:
    HWND m_hWndLastControl = nullptr;
};

AFX_DLL_API void DDX_Control(CDataExchange* pDX, int nIDC, CWnd& rControl);
AFX_DLL_API void DDX_Text(CDataExchange* pDX, int nIDC, CString& value);
AFX_DLL_API void DDX_Check(CDataExchange* pDX, int nIDC, int& value);
// nIDC is the group's first button (WS_GROUP); -1 stands for none.
AFX_DLL_API void DDX_Radio(CDataExchange* pDX, int nIDC, int& value);

// Limits what can be typed; a longer text in the control fails when saved.
AFX_DLL_API void DDV_MaxChars(CDataExchange* pDX, const CString& value, int nChars);
