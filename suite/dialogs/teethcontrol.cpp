#include "suite/dialogs/teethcontrol.h"

#include "suite/dialogs/ctlhelp.h"
#include "suite/dialogs/teethchart.h"
#include "suite/patients/records/dbpatient.h"

#include <windowsx.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <new>

namespace
{

constexpr char className[] = "VELTEETH";

// Width of a tooth in percent of its column, from the middle incisor (1) to the wisdom tooth (8).
constexpr int toothWidths[] = {62, 54, 62, 66, 68, 88, 84, 78};

class TeethWindow
{
public:
    explicit TeethWindow(HWND hWnd) : m_hWnd(hWnd)
    {
    }

    LRESULT Handle(UINT nMessage, WPARAM wParam, LPARAM lParam);

private:
    struct Geometry
    {
        RECT rectClient;
        int nNumberHeight;
        int nLine; // width of a line: 1 at 96 dpi

        RECT Cell(int nPlace) const;
        RECT Tooth(int nPlace) const;
        RECT NumberArea(int nPlace) const;
        int PlaceAt(POINT point) const;
    };

    Geometry Measure() const;
    void SetPatient(dbCPatient* pPatient);
    BOOL Store();
    void Select(int nPlace);
    void ToggleTooth(int nPlace);
    void TellCurrent() const;
    bool OnKey(WPARAM nKey);
    void Paint();
    void Draw(HDC hDC, const Geometry& geometry) const;
    void DrawTooth(HDC hDC, const Geometry& geometry, int nPlace) const;
    void Redraw() const
    {
        ::InvalidateRect(m_hWnd, nullptr, FALSE);
    }

    HWND m_hWnd;
    HFONT m_hFont = nullptr;          // the dialog's
    dbCPatient* m_pPatient = nullptr; // the caller's
    cttChart m_chart;
    cttChart m_stored; // as the record has it
    int m_nCurrent = 0;
};

RECT TeethWindow::Geometry::Cell(int nPlace) const
{
    const int nColumn = nPlace % cttChart::archLength;
    const int nWidth = rectClient.right - rectClient.left;
    const int nMiddle = (rectClient.top + rectClient.bottom) / 2;
    const bool bLower = nPlace >= cttChart::archLength;
    return {nColumn * nWidth / cttChart::archLength, bLower ? nMiddle : rectClient.top,
            (nColumn + 1) * nWidth / cttChart::archLength, bLower ? rectClient.bottom : nMiddle};
}

RECT TeethWindow::Geometry::Tooth(int nPlace) const
{
    RECT rect = Cell(nPlace);
    const int nWidth = (rect.right - rect.left) * toothWidths[cttChart::Number(nPlace) % 10 - 1] / 100;
    rect.left += (rect.right - rect.left - nWidth) / 2;
    rect.right = rect.left + nWidth;
    const bool bLower = nPlace >= cttChart::archLength;
    rect.top += bLower ? 2 * nLine : nNumberHeight + nLine;
    rect.bottom -= bLower ? nNumberHeight + nLine : 2 * nLine;
    return rect;
}

RECT TeethWindow::Geometry::NumberArea(int nPlace) const
{
    RECT rect = Cell(nPlace);
    if (nPlace >= cttChart::archLength)
    {
        rect.top = rect.bottom - nNumberHeight;
    }
    else
    {
        rect.bottom = rect.top + nNumberHeight;
    }
    return rect;
}

int TeethWindow::Geometry::PlaceAt(POINT point) const
{
    for (int nPlace = 0; nPlace < cttChart::toothCount; ++nPlace)
    {
        const RECT rect = Cell(nPlace);
        if (::PtInRect(&rect, point))
        {
            return nPlace;
        }
    }
    return -1;
}

TeethWindow::Geometry TeethWindow::Measure() const
{
    Geometry geometry = {};
    ::GetClientRect(m_hWnd, &geometry.rectClient);
    const HDC hDC = ::GetDC(m_hWnd);
    const HGDIOBJ hPrevious =
        ::SelectObject(hDC, m_hFont != nullptr ? m_hFont : ::GetStockObject(DEFAULT_GUI_FONT));
    TEXTMETRIC metric = {};
    ::GetTextMetrics(hDC, &metric);
    const int nDpi = ::GetDeviceCaps(hDC, LOGPIXELSY);
    ::SelectObject(hDC, hPrevious);
    ::ReleaseDC(m_hWnd, hDC);
    geometry.nNumberHeight = metric.tmHeight;
    geometry.nLine = std::max(1, nDpi / 96);
    return geometry;
}

void TeethWindow::SetPatient(dbCPatient* pPatient)
{
    m_pPatient = pPatient;
    // What cannot be read as teeth is shown as a complete set, and stays stored until a tooth is changed.
    m_chart.FromText(pPatient != nullptr ? pPatient->GetTeeth().GetString() : "");
    m_stored = m_chart;
    TellCurrent();
    Redraw();
}

BOOL TeethWindow::Store()
{
    if (m_pPatient == nullptr)
    {
        return FALSE;
    }
    if (m_chart != m_stored)
    {
        m_pPatient->SetTeeth(m_chart.ToText().c_str());
        m_stored = m_chart;
    }
    return TRUE;
}

void TeethWindow::Select(int nPlace)
{
    if (nPlace != m_nCurrent)
    {
        m_nCurrent = nPlace;
        TellCurrent();
        Redraw();
    }
}

void TeethWindow::ToggleTooth(int nPlace)
{
    m_chart.Toggle(nPlace);
    TellCurrent();
    Redraw();
    ::SendMessage(::GetParent(m_hWnd), WM_COMMAND, MAKEWPARAM(::GetDlgCtrlID(m_hWnd), TEETHN_CHANGE),
                  reinterpret_cast<LPARAM>(m_hWnd));
}

// The window's text says what the focus is on; screen readers speak it.
void TeethWindow::TellCurrent() const
{
    UINT nID = IDS_CTL_TOOTH_PRESENT;
    if (m_chart.Tooth(m_nCurrent) != cttTooth::present)
    {
        nID =
            m_chart.Tooth(m_nCurrent) == cttTooth::missing ? IDS_CTL_TOOTH_MISSING : IDS_CTL_TOOTH_EXTRACTED;
    }
    char format[100] = {};
    char text[120] = {};
    ::LoadString(ctlInstance(), nID, format, sizeof format);
    std::snprintf(text, sizeof text, format, cttChart::Number(m_nCurrent));
    ::SetWindowText(m_hWnd, text);
}

bool TeethWindow::OnKey(WPARAM nKey)
{
    switch (nKey)
    {
    case VK_LEFT:
        Select(cttMove(m_nCurrent, cttStep::left));
        return true;
    case VK_RIGHT:
        Select(cttMove(m_nCurrent, cttStep::right));
        return true;
    case VK_UP:
        Select(cttMove(m_nCurrent, cttStep::up));
        return true;
    case VK_DOWN:
        Select(cttMove(m_nCurrent, cttStep::down));
        return true;
    case VK_HOME:
        Select(cttMove(m_nCurrent, cttStep::first));
        return true;
    case VK_END:
        Select(cttMove(m_nCurrent, cttStep::last));
        return true;
    case VK_SPACE:
        ToggleTooth(m_nCurrent);
        return true;
    default:
        return false;
    }
}

void TeethWindow::DrawTooth(HDC hDC, const Geometry& geometry, int nPlace) const
{
    const bool bEnabled = ::IsWindowEnabled(m_hWnd) != FALSE;
    const cttTooth state = m_chart.Tooth(nPlace);
    const COLORREF colorText = ::GetSysColor(bEnabled ? COLOR_WINDOWTEXT : COLOR_GRAYTEXT);
    const COLORREF colorLine = ::GetSysColor(bEnabled ? COLOR_WINDOWTEXT : COLOR_GRAYTEXT);

    RECT rectNumber = geometry.NumberArea(nPlace);
    char number[4] = {};
    std::snprintf(number, sizeof number, "%d", cttChart::Number(nPlace));
    ::SetTextColor(hDC, state == cttTooth::present ? colorText : ::GetSysColor(COLOR_GRAYTEXT));
    ::DrawText(hDC, number, -1, &rectNumber, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);

    const RECT rect = geometry.Tooth(nPlace);
    const int nRound = std::min<int>(rect.right - rect.left, rect.bottom - rect.top) / 2;
    const bool bGone = state == cttTooth::missing;
    const COLORREF colorOutline = ctlIsHighContrast()
                                      ? colorLine
                                      : ctlMixColors(::GetSysColor(COLOR_WINDOW), colorLine, bGone ? 35 : 55);
    const HPEN hPen = ::CreatePen(bGone ? PS_DOT : PS_SOLID, bGone ? 1 : geometry.nLine, colorOutline);
    const HGDIOBJ hPreviousPen = ::SelectObject(hDC, hPen);
    const HGDIOBJ hPreviousBrush =
        ::SelectObject(hDC, bGone || !bEnabled ? ::GetStockObject(NULL_BRUSH)
                                               : static_cast<HGDIOBJ>(::GetSysColorBrush(COLOR_WINDOW)));
    ::RoundRect(hDC, rect.left, rect.top, rect.right, rect.bottom, nRound, nRound);
    if (state == cttTooth::extracted)
    {
        const HPEN hCross = ::CreatePen(PS_SOLID, 2 * geometry.nLine, colorLine);
        const int nMargin = 3 * geometry.nLine;
        ::SelectObject(hDC, hCross);
        ::MoveToEx(hDC, rect.left + nMargin, rect.top + nMargin, nullptr);
        ::LineTo(hDC, rect.right - nMargin - 1, rect.bottom - nMargin - 1);
        ::MoveToEx(hDC, rect.right - nMargin - 1, rect.top + nMargin, nullptr);
        ::LineTo(hDC, rect.left + nMargin, rect.bottom - nMargin - 1);
        ::SelectObject(hDC, hPen);
        ::DeleteObject(hCross);
    }
    ::SelectObject(hDC, hPreviousBrush);
    ::SelectObject(hDC, hPreviousPen);
    ::DeleteObject(hPen);
}

void TeethWindow::Draw(HDC hDC, const Geometry& geometry) const
{
    const int nSaved = ::SaveDC(hDC);
    // The dialog's own background, whatever its theme.
    const auto hBackground = reinterpret_cast<HBRUSH>(::SendMessage(::GetParent(m_hWnd), WM_CTLCOLORSTATIC,
                                                                    reinterpret_cast<WPARAM>(hDC),
                                                                    reinterpret_cast<LPARAM>(m_hWnd)));
    ::FillRect(hDC, &geometry.rectClient,
               hBackground != nullptr ? hBackground : ::GetSysColorBrush(COLOR_BTNFACE));
    ::SelectObject(hDC, m_hFont != nullptr ? m_hFont : ::GetStockObject(DEFAULT_GUI_FONT));
    ::SetBkMode(hDC, TRANSPARENT);
    for (int nPlace = 0; nPlace < cttChart::toothCount; ++nPlace)
    {
        DrawTooth(hDC, geometry, nPlace);
    }

    // The lines between the quadrants.
    const RECT& rect = geometry.rectClient;
    const HGDIOBJ hPrevious = ::SelectObject(hDC, ::GetStockObject(DC_PEN));
    ::SetDCPenColor(hDC, ::GetSysColor(COLOR_BTNSHADOW));
    ::MoveToEx(hDC, rect.left, (rect.top + rect.bottom) / 2, nullptr);
    ::LineTo(hDC, rect.right, (rect.top + rect.bottom) / 2);
    ::MoveToEx(hDC, (rect.left + rect.right) / 2, rect.top, nullptr);
    ::LineTo(hDC, (rect.left + rect.right) / 2, rect.bottom);
    ::SelectObject(hDC, hPrevious);

    if (::GetFocus() == m_hWnd)
    {
        RECT rectFocus = geometry.Cell(m_nCurrent);
        ::InflateRect(&rectFocus, -1, -1);
        ::SetTextColor(hDC, ::GetSysColor(COLOR_WINDOWTEXT));
        ::SetBkColor(hDC, ::GetSysColor(COLOR_WINDOW));
        ::DrawFocusRect(hDC, &rectFocus);
    }
    ::RestoreDC(hDC, nSaved);
}

void TeethWindow::Paint()
{
    PAINTSTRUCT paint;
    const HDC hDC = ::BeginPaint(m_hWnd, &paint);
    const Geometry geometry = Measure();
    const int nWidth = geometry.rectClient.right;
    const int nHeight = geometry.rectClient.bottom;
    const HDC hMemory = ::CreateCompatibleDC(hDC);
    const HBITMAP hBitmap = ::CreateCompatibleBitmap(hDC, std::max(nWidth, 1), std::max(nHeight, 1));
    const HGDIOBJ hPrevious = ::SelectObject(hMemory, hBitmap);
    Draw(hMemory, geometry);
    ::BitBlt(hDC, 0, 0, nWidth, nHeight, hMemory, 0, 0, SRCCOPY);
    ::SelectObject(hMemory, hPrevious);
    ::DeleteObject(hBitmap);
    ::DeleteDC(hMemory);
    ::EndPaint(m_hWnd, &paint);
}

LRESULT TeethWindow::Handle(UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    switch (nMessage)
    {
    case WM_TEETH_SETPATIENT:
        SetPatient(reinterpret_cast<dbCPatient*>(lParam));
        return TRUE;
    case WM_TEETH_STORE:
        return Store();
    case WM_GETDLGCODE:
        return DLGC_WANTARROWS;
    case WM_KEYDOWN:
        if (OnKey(wParam))
        {
            return 0;
        }
        break;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
        ::SetFocus(m_hWnd);
        if (const int nPlace = Measure().PlaceAt({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}); nPlace >= 0)
        {
            Select(nPlace);
            ToggleTooth(nPlace);
        }
        return 0;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
    case WM_ENABLE:
    case WM_SYSCOLORCHANGE:
    case WM_THEMECHANGED:
        Redraw();
        break;
    case WM_SETFONT:
        m_hFont = reinterpret_cast<HFONT>(wParam);
        Redraw();
        return 0;
    case WM_GETFONT:
        return reinterpret_cast<LRESULT>(m_hFont);
    case WM_ERASEBKGND:
        return TRUE;
    case WM_PAINT:
        Paint();
        return 0;
    case WM_PRINTCLIENT:
        Draw(reinterpret_cast<HDC>(wParam), Measure());
        return 0;
    default:
        break;
    }
    return ::DefWindowProc(m_hWnd, nMessage, wParam, lParam);
}

LRESULT CALLBACK TeethProc(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) noexcept
{
    auto* pWindow = reinterpret_cast<TeethWindow*>(::GetWindowLongPtr(hWnd, 0));
    if (nMessage == WM_NCCREATE)
    {
        pWindow = new (std::nothrow) TeethWindow(hWnd);
        ::SetWindowLongPtr(hWnd, 0, reinterpret_cast<LONG_PTR>(pWindow)); // deleted by WM_NCDESTROY
        // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDeleteLeaks)
        return pWindow != nullptr && ::DefWindowProc(hWnd, nMessage, wParam, lParam);
    }
    if (nMessage == WM_NCDESTROY)
    {
        const std::unique_ptr<TeethWindow> ended(pWindow);
        ::SetWindowLongPtr(hWnd, 0, 0);
        return ::DefWindowProc(hWnd, nMessage, wParam, lParam);
    }
    if (pWindow == nullptr)
    {
        return ::DefWindowProc(hWnd, nMessage, wParam, lParam);
    }
    try
    {
        return pWindow->Handle(nMessage, wParam, lParam);
    }
    catch (CException* e)
    {
        e->Delete();
    }
    catch (const std::exception&)
    {
        // Out of memory: nothing has been changed, and no exception may pass the system's code.
    }
    return 0;
}

} // namespace

BOOL cttRegisterClass(HINSTANCE hInstance)
{
    WNDCLASSEX wc = {};
    wc.cbSize = sizeof wc;
    wc.style = CS_HREDRAW | CS_VREDRAW | CS_DBLCLKS;
    wc.lpfnWndProc = TeethProc;
    wc.cbWndExtra = sizeof(LONG_PTR);
    wc.hInstance = hInstance;
    wc.hCursor = ::LoadCursor(nullptr, IDC_ARROW);
    wc.lpszClassName = className;
    return ::RegisterClassEx(&wc) != 0 || ::GetLastError() == ERROR_CLASS_ALREADY_EXISTS;
}

BOOL cttUnregisterClass(HINSTANCE hInstance)
{
    return ::UnregisterClass(className, hInstance);
}
