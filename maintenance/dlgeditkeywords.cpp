#include "maintenance/dlgeditkeywords.h"

#include "app/appres.h"
#include "app/modalrun.h"
#include "app/velapp.h"
#include "maintenance/keywordrules.h"

#include <algorithm>
#include <string>
#include <vector>

namespace
{

constexpr mfcAnchor anchors[] = {
    {IDC_KEYWORD_TEXT, mfcStretchTop}, {IDC_KEYWORD_ADD, mfcTopRight}, {IDC_KEYWORD_LIST, mfcStretchAll},
    {IDC_KEYWORD_REMOVE, mfcTopRight}, {IDOK, mfcBottomRight},         {IDCANCEL, mfcBottomRight},
};

/// Does something with the keywords; a failure is told to the user, and the dialog stays open.
template <class Work> bool Attempt(const Work& work)
{
    try
    {
        work();
        return true;
    }
    catch (CException* e)
    {
        e->ReportError(MB_OK | MB_ICONSTOP, IDS_UNKNOWN_ERROR);
        e->Delete();
        return false;
    }
}

} // namespace

BEGIN_MESSAGE_MAP(CDlgEditKeywords, mfcCDialog)
ON_BN_CLICKED(IDC_KEYWORD_ADD, &CDlgEditKeywords::OnAdd)
ON_BN_CLICKED(IDC_KEYWORD_REMOVE, &CDlgEditKeywords::OnRemove)
ON_EN_CHANGE(IDC_KEYWORD_TEXT, &CDlgEditKeywords::OnRefresh)
ON_LBN_SELCHANGE(IDC_KEYWORD_LIST, &CDlgEditKeywords::OnRefresh)
ON_UPDATE_COMMAND_UI(IDC_KEYWORD_ADD, &CDlgEditKeywords::OnUpdateAdd)
ON_UPDATE_COMMAND_UI(IDC_KEYWORD_REMOVE, &CDlgEditKeywords::OnUpdateRemove)
END_MESSAGE_MAP()

CDlgEditKeywords::CDlgEditKeywords(CWnd* pParent, INI_LIST /*nList*/) : mfcCDialog(IDD_EDIT_KEYWORDS, pParent)
{
    SetAnchors(anchors);
}

void CDlgEditKeywords::DoDataExchange(CDataExchange* pDX)
{
    mfcCDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_KEYWORD_TEXT, m_editText);
    DDX_Control(pDX, IDC_KEYWORD_LIST, m_list);
    DDX_Control(pDX, IDC_KEYWORD_ADD, m_btnAdd);
    DDX_Control(pDX, IDC_KEYWORD_REMOVE, m_btnRemove);
}

BOOL CDlgEditKeywords::OnInitDialog()
{
    mfcCDialog::OnInitDialog();
    m_editText.SetLimitText(maint::longestKeyword);
    if (!m_keywords.Load(m_nList))
    {
        AfxMessageBox(IDS_KEYWORDS_NOT_LOADED, MB_OK | MB_ICONSTOP);
        EndDialog(IDCANCEL);
        return FALSE;
    }
    FillList();
    OnRefresh();
    return TRUE;
}

void CDlgEditKeywords::FillList()
{
    CString strKeyword;
    for (m_keywords.MoveFirst(); m_keywords.GetNext(strKeyword);)
    {
        if (!strKeyword.IsEmpty())
            AddToList(strKeyword);
    }
}

BOOL CDlgEditKeywords::PreTranslateMessage(MSG* pMsg)
{
    const HWND hPressed = pMsg->message == WM_KEYDOWN ? pMsg->hwnd : nullptr;
    if (hPressed == m_editText.m_hWnd && pMsg->wParam == VK_RETURN && m_editText.GetWindowTextLength() > 0)
        OnAdd();
    else if (hPressed == m_list.m_hWnd && pMsg->wParam == VK_DELETE)
        OnRemove();
    else
        return mfcCDialog::PreTranslateMessage(pMsg);
    return TRUE;
}

BOOL CDlgEditKeywords::OnHelpKey(UINT nHelpID)
{
    VelApp()->ShowHelp(nHelpID);
    return TRUE;
}

void CDlgEditKeywords::OnOK()
{
    if (UpdateData(TRUE) && Attempt([&] { m_keywords.Save(); }))
        EndDialog(IDOK);
}

void CDlgEditKeywords::OnAdd()
{
    CString strKeyword;
    m_editText.GetWindowText(strKeyword);
    if (AddKeyword(strKeyword))
        m_editText.SetWindowText("");
    RefreshAndFocusText();
}

bool CDlgEditKeywords::AddKeyword(const CString& strKeyword)
{
    const bool bListed = m_list.FindStringExact(-1, strKeyword) != LB_ERR;
    switch (maint::CheckKeyword(strKeyword.GetString(), bListed))
    {
    case maint::KeywordCheck::Empty:
        return false;
    case maint::KeywordCheck::TooLong: {
        CString strText;
        AfxFormatString1(strText, IDS_KEYWORD_TOO_LONG, std::to_string(maint::longestKeyword).c_str());
        ShowRefusal(strText, IDS_KEYWORD_TOO_LONG_CAPTION);
        return false;
    }
    case maint::KeywordCheck::Duplicate:
        break;
    case maint::KeywordCheck::Accepted: {
        BOOL bAdded = FALSE;
        if (!Attempt([&] { bAdded = m_keywords.Add(strKeyword); }))
            return false;
        if (bAdded)
        {
            AddToList(strKeyword);
            return true;
        }
        break; // the same but for what the list box does not compare, as blanks at the ends
    }
    }
    CString strText;
    strText.LoadString(IDS_KEYWORD_DUPLICATE);
    ShowRefusal(strText, IDS_KEYWORD_DUPLICATE_CAPTION);
    return true; // it is in the list, so the field is free for the next
}

void CDlgEditKeywords::ShowRefusal(const CString& strText, UINT nCaptionID)
{
    CString strCaption;
    strCaption.LoadString(nCaptionID);
    MessageBox(strText, strCaption, MB_OK | MB_ICONEXCLAMATION);
}

void CDlgEditKeywords::OnRemove()
{
    std::vector<int> selected(static_cast<std::size_t>(m_list.GetSelCount()));
    m_list.GetSelItems(static_cast<int>(selected.size()), selected.data());
    std::sort(selected.rbegin(), selected.rend());
    CString strKeyword;
    for (const int nItem : selected)
    {
        m_list.GetText(nItem, strKeyword);
        BOOL bRemoved = FALSE;
        if (Attempt([&] { bRemoved = m_keywords.Remove(strKeyword); }) && bRemoved)
            m_list.DeleteString(static_cast<UINT>(nItem));
    }
    RefreshAndFocusText();
}

void CDlgEditKeywords::OnRefresh()
{
    UpdateControls();
}

void CDlgEditKeywords::OnUpdateAdd(CCmdUI* pCmdUI)
{
    pCmdUI->Enable(m_editText.GetWindowTextLength() > 0);
}

void CDlgEditKeywords::OnUpdateRemove(CCmdUI* pCmdUI)
{
    pCmdUI->Enable(m_list.GetSelCount() > 0);
}

void CDlgEditKeywords::AddToList(LPCTSTR pszKeyword)
{
    m_list.AddString(pszKeyword);
    // A list box does not scroll sideways by itself.
    CClientDC dc(&m_list);
    CFont* const pOldFont = dc.SelectObject(m_list.GetFont());
    const int nWidth = dc.GetTextExtent(pszKeyword).cx + ::GetSystemMetrics(SM_CXVSCROLL);
    dc.SelectObject(pOldFont);
    if (nWidth > m_nListExtent)
    {
        m_nListExtent = nWidth;
        m_list.SetHorizontalExtent(nWidth);
    }
}

void CDlgEditKeywords::RefreshAndFocusText()
{
    OnRefresh();
    m_editText.SetFocus();
}

INT_PTR velEditKeywords(CWnd* pParent, INI_LIST nList)
{
    return velGuard(IDCANCEL, IDS_CALL_FAILED, [&] {
        CDlgEditKeywords dialog(pParent, nList);
        return velRunModal(dialog);
    });
}
