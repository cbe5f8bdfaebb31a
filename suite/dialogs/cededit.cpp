#include "suite/dialogs/cededit.h"

#include "suite/dialogs/ctlhelp.h"

#include <memory>
#include <new>
#include <string>

IMPLEMENT_DYNAMIC(cedCEdit, CEdit)
IMPLEMENT_DYNAMIC(cedCEditID, CEdit)

BEGIN_MESSAGE_MAP(cedCEdit, CEdit)
END_MESSAGE_MAP()

BEGIN_MESSAGE_MAP(cedCEditID, CEdit)
END_MESSAGE_MAP()

namespace
{

constexpr char className[] = "VELEDIT";

// The system's edit class, read when the class is first registered. Written on the user interface thread
// only.
WNDPROC pfnEdit = nullptr;
int nLabelOffset = 0; // of the label in the window's extra bytes, behind the edit control's own

std::string* LabelOf(HWND hWnd)
{
    return reinterpret_cast<std::string*>(::GetWindowLongPtr(hWnd, nLabelOffset));
}

bool ShowsLabel(HWND hWnd)
{
    return ::GetFocus() != hWnd && ::CallWindowProc(pfnEdit, hWnd, WM_GETTEXTLENGTH, 0, 0) == 0;
}

void DrawLabel(HWND hWnd, HDC hDC)
{
    const std::string* pLabel = LabelOf(hWnd);
    if (pLabel == nullptr || pLabel->empty() || !ShowsLabel(hWnd))
    {
        return;
    }
    const auto nStyle = static_cast<DWORD>(::GetWindowLongPtr(hWnd, GWL_STYLE));
    UINT nFormat = DT_NOPREFIX | DT_END_ELLIPSIS;
    nFormat |= (nStyle & ES_MULTILINE) != 0 ? UINT{DT_WORDBREAK} : UINT{DT_SINGLELINE};
    nFormat |= (nStyle & ES_CENTER) != 0 ? UINT{DT_CENTER} : (nStyle & ES_RIGHT) != 0 ? UINT{DT_RIGHT} : 0U;
    RECT rect;
    ::CallWindowProc(pfnEdit, hWnd, EM_GETRECT, 0, reinterpret_cast<LPARAM>(&rect));
    const int nSaved = ::SaveDC(hDC);
    ::SelectObject(hDC, reinterpret_cast<HGDIOBJ>(::CallWindowProc(pfnEdit, hWnd, WM_GETFONT, 0, 0)));
    ::SetBkMode(hDC, TRANSPARENT);
    ::SetTextColor(hDC, ::GetSysColor(COLOR_GRAYTEXT));
    ::DrawText(hDC, pLabel->c_str(), static_cast<int>(pLabel->size()), &rect, nFormat);
    ::RestoreDC(hDC, nSaved);
}

// The edit control must not see the label as its text.
LRESULT PassCreation(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    CREATESTRUCT create = *reinterpret_cast<const CREATESTRUCT*>(lParam);
    create.lpszName = "";
    return ::CallWindowProc(pfnEdit, hWnd, nMessage, wParam, reinterpret_cast<LPARAM>(&create));
}

LRESULT CreateLabel(HWND hWnd, WPARAM wParam, LPARAM lParam)
{
    const char* pszText = reinterpret_cast<const CREATESTRUCT*>(lParam)->lpszName;
    std::unique_ptr<std::string> label;
    try
    {
        label = std::make_unique<std::string>(pszText != nullptr ? pszText : "");
    }
    catch (const std::bad_alloc&)
    {
        return FALSE;
    }
    const LRESULT nResult = PassCreation(hWnd, WM_NCCREATE, wParam, lParam);
    if (nResult)
    {
        ::SetWindowLongPtr(hWnd, nLabelOffset, reinterpret_cast<LONG_PTR>(label.release()));
    }
    return nResult; // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): the window owns it until WM_NCDESTROY
}

LRESULT CALLBACK EditProc(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) noexcept
{
    switch (nMessage)
    {
    case WM_NCCREATE:
        return CreateLabel(hWnd, wParam, lParam);

    case WM_CREATE:
        return PassCreation(hWnd, nMessage, wParam, lParam);

    case WM_NCDESTROY: {
        const std::unique_ptr<std::string> label(LabelOf(hWnd));
        ::SetWindowLongPtr(hWnd, nLabelOffset, 0);
        return ::CallWindowProc(pfnEdit, hWnd, nMessage, wParam, lParam);
    }

    case WM_PAINT: {
        // With a device context in wParam the control is asked to paint into that, else into its update
        // region.
        const LRESULT nResult = ::CallWindowProc(pfnEdit, hWnd, nMessage, wParam, lParam);
        const auto hGiven = reinterpret_cast<HDC>(wParam);
        const HDC hDC = hGiven != nullptr ? hGiven : ::GetDC(hWnd);
        DrawLabel(hWnd, hDC);
        if (hGiven == nullptr)
        {
            ::ReleaseDC(hWnd, hDC);
        }
        return nResult;
    }

    case WM_PRINTCLIENT: {
        const LRESULT nResult = ::CallWindowProc(pfnEdit, hWnd, nMessage, wParam, lParam);
        DrawLabel(hWnd, reinterpret_cast<HDC>(wParam));
        return nResult;
    }

    case WM_SETFOCUS:
    case WM_KILLFOCUS:
    case WM_ENABLE:
    case WM_SETTEXT:
    case WM_CLEAR:
    case WM_CUT:
    case WM_UNDO:
    case EM_UNDO:
    case EM_REPLACESEL: {
        // The label comes and goes with the focus and the text; the control repaints only what it draws
        // itself.
        const LRESULT nResult = ::CallWindowProc(pfnEdit, hWnd, nMessage, wParam, lParam);
        ::InvalidateRect(hWnd, nullptr, TRUE);
        return nResult;
    }

    default:
        return ::CallWindowProc(pfnEdit, hWnd, nMessage, wParam, lParam);
    }
}

} // namespace

BOOL cedCEdit::RegisterControlClass(HINSTANCE hInstance)
{
    WNDCLASSEX wc = {};
    wc.cbSize = sizeof wc;
    if (!::GetClassInfoEx(nullptr, "EDIT", &wc))
    {
        return FALSE;
    }
    if (pfnEdit == nullptr)
    {
        pfnEdit = wc.lpfnWndProc;
        nLabelOffset = wc.cbWndExtra;
    }
    wc.cbWndExtra = nLabelOffset + static_cast<int>(sizeof(std::string*));
    wc.style &= ~static_cast<UINT>(CS_GLOBALCLASS); // each module has the class for itself
    wc.lpfnWndProc = EditProc;
    wc.hInstance = hInstance;
    wc.lpszClassName = className;
    return ::RegisterClassEx(&wc) != 0 || ::GetLastError() == ERROR_CLASS_ALREADY_EXISTS;
}

BOOL cedCEdit::UnregisterControlClass(HINSTANCE hInstance)
{
    return ::UnregisterClass(className, hInstance);
}

void cedCEditID::PreSubclassWindow()
{
    CEdit::PreSubclassWindow();
    SetLimitText(maxCharacters);
}
