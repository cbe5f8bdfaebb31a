// Dialog data exchange and validation.
#include "wndaccess.h"

#include "suite/mfc/afxdtctl.h"

#include <climits>
#include <cerrno>
#include <cstdlib>

CDataExchange::CDataExchange(CWnd* pDlgWnd, BOOL bSaveAndValidate)
    : m_bSaveAndValidate(bSaveAndValidate), m_pDlgWnd(pDlgWnd)
{
}

HWND CDataExchange::PrepareCtrl(int nIDC)
{
    const HWND control = ::GetDlgItem(m_pDlgWnd->m_hWnd, nIDC);
    if (control == nullptr)
    {
        TRACE("no control %d for data exchange\n", nIDC);
        AfxThrowNotSupportedException();
    }
    m_hWndLastControl = control;
    m_idLastControl = nIDC;
    m_bEditLastControl = FALSE;
    return control;
}

HWND CDataExchange::PrepareEditCtrl(int nIDC)
{
    const HWND control = PrepareCtrl(nIDC);
    m_bEditLastControl = TRUE;
    return control;
}

void CDataExchange::Fail()
{
    if (m_bSaveAndValidate && m_hWndLastControl != nullptr)
    {
        ::SetFocus(m_hWndLastControl);
        if (m_bEditLastControl)
        {
            ::SendMessage(m_hWndLastControl, EM_SETSEL, 0, -1);
        }
    }
    AfxThrowUserException();
}

namespace
{
CString TextOf(HWND window)
{
    CString text;
    const int length = ::GetWindowTextLength(window);
    if (length > 0)
    {
        ::GetWindowText(window, text.GetBuffer(length), length + 1);
        text.ReleaseBuffer();
    }
    return text;
}

// Only when it differs, so that the control does not flicker and its selection stays.
void SetTextOf(HWND window, const CString& text)
{
    if (TextOf(window) != text)
    {
        ::SetWindowText(window, text);
    }
}
} // namespace

void DDX_Control(CDataExchange* pDX, int nIDC, CWnd& rControl)
{
    if (rControl.m_hWnd != nullptr || pDX->m_bSaveAndValidate)
    {
        return; // attached before
    }
    const HWND control = pDX->PrepareCtrl(nIDC);
    if (!rControl.SubclassWindow(control))
    {
        ASSERT(FALSE); // two objects for one control?
        AfxThrowNotSupportedException();
    }
}

void DDX_Text(CDataExchange* pDX, int nIDC, CString& value)
{
    const HWND control = pDX->PrepareEditCtrl(nIDC);
    if (pDX->m_bSaveAndValidate)
    {
        value = TextOf(control);
    }
    else
    {
        SetTextOf(control, value);
    }
}

void DDX_Check(CDataExchange* pDX, int nIDC, int& value)
{
    const HWND control = pDX->PrepareCtrl(nIDC);
    if (pDX->m_bSaveAndValidate)
    {
        value = static_cast<int>(::SendMessage(control, BM_GETCHECK, 0, 0));
    }
    else
    {
        ::SendMessage(control, BM_SETCHECK, value < 0 || value > 2 ? 0 : static_cast<WPARAM>(value), 0);
    }
}

void DDX_Radio(CDataExchange* pDX, int nIDC, int& value)
{
    HWND control = pDX->PrepareCtrl(nIDC);
    ASSERT((::GetWindowLongPtr(control, GWL_STYLE) & WS_GROUP) != 0); // the first of its group
    if (pDX->m_bSaveAndValidate)
    {
        value = -1;
    }
    int button = 0;
    do
    {
        if ((::SendMessage(control, WM_GETDLGCODE, 0, 0) & DLGC_RADIOBUTTON) != 0)
        {
            if (!pDX->m_bSaveAndValidate)
            {
                ::SendMessage(control, BM_SETCHECK, button == value, 0);
            }
            else if (::SendMessage(control, BM_GETCHECK, 0, 0) != 0)
            {
                value = button;
            }
            ++button;
        }
        control = ::GetWindow(control, GW_HWNDNEXT);
    } while (control != nullptr && (::GetWindowLongPtr(control, GWL_STYLE) & WS_GROUP) == 0);
}

void DDX_DateTimeCtrl(CDataExchange* pDX, int nIDC, COleDateTime& value)
{
    CDateTimeCtrl control;
    control.m_hWnd = pDX->PrepareCtrl(nIDC); // lent, not attached
    if (pDX->m_bSaveAndValidate)
    {
        control.GetTime(value);
    }
    else
    {
        control.SetTime(value);
    }
    control.m_hWnd = nullptr;
}

void DDV_MaxChars(CDataExchange* pDX, const CString& value, int nChars)
{
    ASSERT(nChars >= 1);
    if (pDX->m_bSaveAndValidate)
    {
        if (value.GetLength() > nChars)
        {
            CString limit;
            limit.Format("%d", nChars);
            CString prompt;
            AfxFormatString1(prompt, AFX_IDP_PARSE_STRING_SIZE, limit);
            AfxMessageBox(prompt, MB_ICONEXCLAMATION, AFX_IDP_PARSE_STRING_SIZE);
            pDX->Fail();
        }
        return;
    }
    const HWND control = ::GetDlgItem(pDX->m_pDlgWnd->m_hWnd, pDX->m_idLastControl);
    if (control != nullptr && pDX->m_bEditLastControl)
    {
        // A combo box takes its limit by another message.
        char name[16] = "";
        ::GetClassName(control, name, sizeof(name));
        ::SendMessage(control, lstrcmpiA(name, "ComboBox") == 0 ? CB_LIMITTEXT : EM_LIMITTEXT,
                      static_cast<WPARAM>(nChars), 0);
    }
}
