#include "maintenance/keywordedit.h"

#include "maintenance/dlgeditkeywords.h"
#include "maintenance/maintenanceres.h"
#include "suite/patients/records/dbkeywords.h"

#include <exception>

namespace
{

constexpr char className[] = "VELEDKEYW";

WNDPROC pfnEdit = nullptr; // the "EDIT" class's procedure

} // namespace

BEGIN_MESSAGE_MAP(cedCKeywords, CEdit)
ON_WM_CREATE()
ON_WM_CONTEXTMENU()
ON_COMMAND(maint::keywordCommandEdit, &cedCKeywords::OnEditKeywords)
ON_COMMAND_RANGE(maint::keywordCommandBase + 1, maint::keywordCommandLast, &cedCKeywords::OnKeyword)
END_MESSAGE_MAP()

void cedCKeywords::RegisterControlClass(HINSTANCE hInstance)
{
    WNDCLASS wc = {};
    ::GetClassInfo(nullptr, "EDIT", &wc); // a class of the system's, which is always there
    pfnEdit = wc.lpfnWndProc;
    wc.lpfnWndProc = FirstWindowProc;
    wc.hInstance = hInstance;
    wc.lpszClassName = className;
    ::RegisterClass(&wc);
}

void cedCKeywords::UnregisterControlClass(HINSTANCE hInstance)
{
    ::UnregisterClass(className, hInstance);
}

LRESULT CALLBACK cedCKeywords::FirstWindowProc(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    try
    {
        auto* const pField = new cedCKeywords;
        pField->Attach(hWnd);
        pField->m_pfnSuper = pfnEdit;
    }
    catch (CException* e)
    {
        e->Delete();
        return 0;
    }
    catch (const std::exception&) // out of memory: the window is not created
    {
        return 0;
    }
    const WNDPROC pfnAfx = AfxGetAfxWndProc();
    ::SetWindowLongPtr(hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(pfnAfx));
    return ::CallWindowProc(pfnAfx, hWnd, nMessage, wParam, lParam);
}

void cedCKeywords::PostNcDestroy()
{
    delete this;
}

int cedCKeywords::OnCreate(LPCREATESTRUCT pCreate)
{
    const int nResult = CEdit::OnCreate(pCreate);
    CString strList;
    GetWindowText(strList);
    m_nList = maint::KeywordListFromText(strList.GetString());
    SetWindowText("");
    return nResult;
}

void cedCKeywords::OnContextMenu(CWnd* /*pWnd*/, CPoint point)
{
    if (point.x == -1 && point.y == -1) // opened by the keyboard: next to the field's corner
    {
        point = CPoint(0, 0);
        ClientToScreen(&point);
    }
    FillMenu();
    m_menu.TrackPopupMenu(TPM_LEFTALIGN | TPM_RIGHTBUTTON, point.x, point.y, this);
}

void cedCKeywords::FillMenu()
{
    m_menu.DestroyMenu();
    m_menu.CreatePopupMenu();

    CKeywords keywords;
    if (m_nList != maint::KeywordList::None && keywords.Load(static_cast<int>(m_nList)))
    {
        std::vector<std::string> words;
        words.reserve(keywords.GetCount());
        CString strKeyword;
        for (keywords.MoveFirst(); keywords.GetNext(strKeyword);)
            words.emplace_back(strKeyword.GetString());
        for (const maint::KeywordMenuItem& item : maint::KeywordMenu(words))
            m_menu.AppendMenu(MF_STRING, item.command, item.text.c_str());
    }

    CString strEditThese;
    strEditThese.LoadString(IDS_KEYWORD_EDIT_THESE);
    m_menu.AppendMenu(MF_SEPARATOR);
    m_menu.AppendMenu(MF_STRING, maint::keywordCommandEdit, strEditThese);
}

void cedCKeywords::OnKeyword(UINT nCommand)
{
    CString strMenuText;
    m_menu.GetMenuString(maint::KeywordMenuPosition(nCommand), strMenuText, MF_BYPOSITION);
    CString strText;
    GetWindowText(strText);
    const std::string text =
        maint::AppendKeyword(strText.GetString(), maint::FromMenuText(strMenuText.GetString()));
    SetWindowText(text.c_str());
    SetFocus();
    const int nEnd = static_cast<int>(text.size());
    SetSel(nEnd, nEnd);
}

void cedCKeywords::OnEditKeywords()
{
    velEditKeywords(GetParent(), m_nList == maint::KeywordList::Patient ? INI_LIST_PATIENT : INI_LIST_IMAGE);
}
