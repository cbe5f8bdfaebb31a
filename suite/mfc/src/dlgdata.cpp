// Dialog data exchange and validation.
#include "suite/mfc/afxwin.h"
#include "suite/mfc/afxdtctl.h"

#include <climits>
#include <cstdlib>

// ---------------------------------------------------------------------------------------------------------
// CDataExchange

CDataExchange::CDataExchange(CWnd* pDlgWnd, BOOL bSaveAndValidate)
    : m_bSaveAndValidate(bSaveAndValidate), m_pDlgWnd(pDlgWnd)
{
}

HWND CDataExchange::PrepareCtrl(int nIDC)
{
    const HWND hWndCtrl = ::GetDlgItem(m_pDlgWnd->GetSafeHwnd(), nIDC);
    if (hWndCtrl == nullptr)
    {
        TRACE("No control with id %d in the dialog.\n", nIDC);
        AfxThrowNotSupportedException();
    }
    m_idLastControl = nIDC;
    m_hWndLastControl = hWndCtrl;
    m_bEditLastControl = FALSE;
    return hWndCtrl;
}

HWND CDataExchange::PrepareEditCtrl(int nIDC)
{
    const HWND hWndCtrl = PrepareCtrl(nIDC);
    m_bEditLastControl = TRUE;
    return hWndCtrl;
}

void CDataExchange::Fail()
{
    // Only the user's input can be wrong; what the program puts in is its own.
    if (m_bSaveAndValidate && m_idLastControl != 0)
    {
        ::SetFocus(m_hWndLastControl);
        if (m_bEditLastControl)
            ::SendMessage(m_hWndLastControl, EM_SETSEL, 0, -1);
    }
    AfxThrowUserException();
}

// ---------------------------------------------------------------------------------------------------------
// Text

namespace
{

CString WindowText(HWND hWnd)
{
    CString strText;
    const int nLength = ::GetWindowTextLength(hWnd);
    ::GetWindowText(hWnd, strText.GetBuffer(nLength), nLength + 1);
    strText.ReleaseBuffer();
    return strText;
}

// Leaves a text that is already shown alone, which keeps the caret.
void ShowText(HWND hWnd, const CString& strText)
{
    if (WindowText(hWnd) != strText)
        ::SetWindowText(hWnd, strText);
}

// The whole text as a number from nMin to nMax, blanks around it allowed.
bool ParseNumber(const CString& strText, long long nMin, long long nMax, long long& nValue)
{
    CString strNumber = strText;
    strNumber.Trim();
    if (strNumber.IsEmpty())
        return false;
    char* pszEnd = nullptr;
    errno = 0;
    nValue = std::strtoll(strNumber, &pszEnd, 10);
    return errno == 0 && *pszEnd == '\0' && nValue >= nMin && nValue <= nMax;
}

template <class Number>
void ExchangeNumber(CDataExchange* pDX, int nIDC, Number& value, long long nMin, long long nMax, UINT nPrompt)
{
    const HWND hWndCtrl = pDX->PrepareEditCtrl(nIDC);
    if (!pDX->m_bSaveAndValidate)
    {
        CString strText;
        strText.Format("%lld", static_cast<long long>(value));
        ShowText(hWndCtrl, strText);
        return;
    }
    long long nValue = 0;
    if (!ParseNumber(WindowText(hWndCtrl), nMin, nMax, nValue))
    {
        AfxMessageBox(nPrompt);
        pDX->Fail();
    }
    value = static_cast<Number>(nValue);
}

} // namespace

void DDX_Text(CDataExchange* pDX, int nIDC, CString& value)
{
    const HWND hWndCtrl = pDX->PrepareEditCtrl(nIDC);
    if (pDX->m_bSaveAndValidate)
        value = WindowText(hWndCtrl);
    else
        ShowText(hWndCtrl, value);
}

void DDX_Text(CDataExchange* pDX, int nIDC, int& value)
{
    ExchangeNumber(pDX, nIDC, value, INT_MIN, INT_MAX, AFX_IDP_PARSE_INT);
}

void DDX_Text(CDataExchange* pDX, int nIDC, UINT& value)
{
    ExchangeNumber(pDX, nIDC, value, 0, UINT_MAX, AFX_IDP_PARSE_UINT);
}

void DDV_MaxChars(CDataExchange* pDX, const CString& value, int nChars)
{
    if (pDX->m_bSaveAndValidate && value.GetLength() > nChars)
    {
        CString strLimit, strPrompt;
        strLimit.Format("%d", nChars);
        AfxFormatString1(strPrompt, AFX_IDP_PARSE_STRING_SIZE, strLimit);
        AfxMessageBox(strPrompt, MB_ICONEXCLAMATION, AFX_IDP_PARSE_STRING_SIZE);
        pDX->Fail();
    }
    else if (!pDX->m_bSaveAndValidate && pDX->m_idLastControl != 0 && pDX->m_bEditLastControl)
    {
        ::SendMessage(::GetDlgItem(pDX->m_pDlgWnd->GetSafeHwnd(), pDX->m_idLastControl), EM_LIMITTEXT,
                      static_cast<WPARAM>(nChars), 0);
    }
}

void DDV_MinMaxInt(CDataExchange* pDX, int value, int minVal, int maxVal)
{
    if (!pDX->m_bSaveAndValidate || (value >= minVal && value <= maxVal))
        return;
    CString strMin, strMax, strPrompt;
    strMin.Format("%d", minVal);
    strMax.Format("%d", maxVal);
    AfxFormatString2(strPrompt, AFX_IDP_PARSE_INT_RANGE, strMin, strMax);
    AfxMessageBox(strPrompt, MB_ICONEXCLAMATION, AFX_IDP_PARSE_INT_RANGE);
    pDX->Fail();
}

// ---------------------------------------------------------------------------------------------------------
// Buttons

void DDX_Check(CDataExchange* pDX, int nIDC, int& value)
{
    const HWND hWndCtrl = pDX->PrepareCtrl(nIDC);
    if (pDX->m_bSaveAndValidate)
        value = static_cast<int>(::SendMessage(hWndCtrl, BM_GETCHECK, 0, 0));
    else
        ::SendMessage(hWndCtrl, BM_SETCHECK, value >= 0 && value <= 2 ? static_cast<WPARAM>(value) : 0, 0);
}

void DDX_Radio(CDataExchange* pDX, int nIDC, int& value)
{
    HWND hWndCtrl = pDX->PrepareCtrl(nIDC);
    if (pDX->m_bSaveAndValidate)
        value = -1;
    int nButton = 0;
    do
    {
        if ((::SendMessage(hWndCtrl, WM_GETDLGCODE, 0, 0) & DLGC_RADIOBUTTON) != 0)
        {
            if (!pDX->m_bSaveAndValidate)
                ::SendMessage(hWndCtrl, BM_SETCHECK, nButton == value, 0);
            else if (::SendMessage(hWndCtrl, BM_GETCHECK, 0, 0) != 0)
                value = nButton;
            ++nButton;
        }
        hWndCtrl = ::GetWindow(hWndCtrl, GW_HWNDNEXT);
    } while (hWndCtrl != nullptr && (::GetWindowLong(hWndCtrl, GWL_STYLE) & WS_GROUP) == 0);
}

// ---------------------------------------------------------------------------------------------------------
// Lists

void DDX_CBIndex(CDataExchange* pDX, int nIDC, int& index)
{
    const HWND hWndCtrl = pDX->PrepareCtrl(nIDC);
    if (pDX->m_bSaveAndValidate)
        index = static_cast<int>(::SendMessage(hWndCtrl, CB_GETCURSEL, 0, 0));
    else
        ::SendMessage(hWndCtrl, CB_SETCURSEL, static_cast<WPARAM>(index), 0);
}

void DDX_CBString(CDataExchange* pDX, int nIDC, CString& value)
{
    const HWND hWndCtrl = pDX->PrepareCtrl(nIDC);
    if (pDX->m_bSaveAndValidate)
    {
        value = WindowText(hWndCtrl);
        return;
    }
    const auto lpText = reinterpret_cast<LPARAM>(value.GetString());
    if (::SendMessage(hWndCtrl, CB_SELECTSTRING, static_cast<WPARAM>(-1), lpText) == CB_ERR)
        ShowText(hWndCtrl, value);
}

void DDX_CBStringExact(CDataExchange* pDX, int nIDC, CString& value)
{
    if (pDX->m_bSaveAndValidate)
    {
        DDX_CBString(pDX, nIDC, value);
        return;
    }
    const HWND hWndCtrl = pDX->PrepareCtrl(nIDC);
    const LRESULT nIndex = ::SendMessage(hWndCtrl, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1),
                                         reinterpret_cast<LPARAM>(value.GetString()));
    ::SendMessage(hWndCtrl, CB_SETCURSEL, static_cast<WPARAM>(nIndex), 0);
    if (nIndex < 0)
        ShowText(hWndCtrl, value);
}

void DDX_LBString(CDataExchange* pDX, int nIDC, CString& value)
{
    const HWND hWndCtrl = pDX->PrepareCtrl(nIDC);
    if (!pDX->m_bSaveAndValidate)
    {
        ::SendMessage(hWndCtrl, LB_SELECTSTRING, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(value.GetString()));
        return;
    }
    value.Empty();
    const auto nIndex = static_cast<WPARAM>(::SendMessage(hWndCtrl, LB_GETCURSEL, 0, 0));
    const auto nLength = static_cast<int>(::SendMessage(hWndCtrl, LB_GETTEXTLEN, nIndex, 0));
    if (nLength >= 0)
    {
        ::SendMessage(hWndCtrl, LB_GETTEXT, nIndex, reinterpret_cast<LPARAM>(value.GetBuffer(nLength)));
        value.ReleaseBuffer();
    }
}

void DDX_LBIndex(CDataExchange* pDX, int nIDC, int& index)
{
    const HWND hWndCtrl = pDX->PrepareCtrl(nIDC);
    if (pDX->m_bSaveAndValidate)
        index = static_cast<int>(::SendMessage(hWndCtrl, LB_GETCURSEL, 0, 0));
    else
        ::SendMessage(hWndCtrl, LB_SETCURSEL, static_cast<WPARAM>(index), 0);
}

// ---------------------------------------------------------------------------------------------------------
// Controls and dates

void DDX_Control(CDataExchange* pDX, int nIDC, CWnd& rControl)
{
    if (rControl.m_hWnd != nullptr)
        return;
    const HWND hWndCtrl = pDX->PrepareCtrl(nIDC);
    if (!rControl.SubclassWindow(hWndCtrl))
    {
        ASSERT(FALSE); // two variables for one control
        AfxThrowNotSupportedException();
    }
}

void DDX_DateTimeCtrl(CDataExchange* pDX, int nIDC, COleDateTime& value)
{
    const HWND hWndCtrl = pDX->PrepareCtrl(nIDC);
    SYSTEMTIME time = {};
    if (pDX->m_bSaveAndValidate)
    {
        if (::SendMessage(hWndCtrl, DTM_GETSYSTEMTIME, 0, reinterpret_cast<LPARAM>(&time)) == GDT_VALID)
            value = COleDateTime(time);
        else
            value.SetStatus(COleDateTime::null);
        return;
    }
    const bool bSet = value.GetStatus() == COleDateTime::valid && value.GetAsSystemTime(time);
    ::SendMessage(hWndCtrl, DTM_SETSYSTEMTIME, bSet ? GDT_VALID : GDT_NONE, reinterpret_cast<LPARAM>(&time));
}
