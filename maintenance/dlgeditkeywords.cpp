#include "maintenance/dlgeditkeywords.h"

#include "app/appres.h"
#include "app/modalrun.h"
#include "app/velapp.h"

#include <algorithm>
#include <vector>

namespace
{

/// The longest keyword that can be typed.
constexpr int maxKeyword = 500;

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
    DDX_Text(pDX, IDC_KEYWORD_TEXT, m_strText);
    DDV_MaxChars(pDX, m_strText, maxKeyword);
}

BOOL CDlgEditKeywords::OnInitDialog()
{
    mfcCDialog::OnInitDialog();
    if (!m_keywords.Load(m_nList))
    {
        EndDialog(IDCANCEL);
        return FALSE;
    }

    m_list.SetRedraw(FALSE);
    const int nCount = m_keywords.GetCount();
    m_list.InitStorage(nCount, nCount * 32);
    CString strKeyword;
    m_keywords.MoveFirst();
    for (int i = 0; i < nCount; ++i)
    {
        if (m_keywords.GetNext(strKeyword) && !strKeyword.IsEmpty())
            AddToList(strKeyword);
    }
    m_list.SetRedraw(TRUE);
    OnRefresh();
    return TRUE;
}

BOOL CDlgEditKeywords::PreTranslateMessage(MSG* pMsg)
{
    if (pMsg->message == WM_KEYDOWN)
    {
        if (pMsg->wParam == VK_RETURN && pMsg->hwnd == m_editText.m_hWnd &&
            m_editText.GetWindowTextLength() > 0)
        {
            OnAdd();
            return TRUE;
        }
        if (pMsg->wParam == VK_DELETE && pMsg->hwnd == m_list.m_hWnd)
        {
            OnRemove();
            return TRUE;
        }
    }
    return mfcCDialog::PreTranslateMessage(pMsg);
}

BOOL CDlgEditKeywords::OnHelpKey(UINT nHelpID)
{
    VelApp()->ShowHelp(nHelpID);
    return TRUE;
}

void CDlgEditKeywords::OnOK()
{
    if (Attempt([&] { m_keywords.Save(); }))
        mfcCDialog::OnOK();
}

void CDlgEditKeywords::OnAdd()
{
    m_editText.GetWindowText(m_strText);
    if (m_strText.IsEmpty())
        return;

    if (m_list.FindStringExact(-1, m_strText) != LB_ERR)
    {
        CString strText;
        CString strCaption;
        strText.LoadString(IDS_KEYWORD_DUPLICATE);
        strCaption.LoadString(IDS_KEYWORD_DUPLICATE_CAPTION);
        MessageBox(strText, strCaption, MB_OK | MB_ICONEXCLAMATION);
    }
    else
    {
        BOOL bAdded = FALSE;
        // Text that cannot be stored stays in the field to be mended.
        if (!Attempt([&] { bAdded = m_keywords.Add(m_strText); }))
            return;
        if (bAdded)
            AddToList(m_strText);
    }
    m_strText.Empty();
    m_editText.SetWindowText("");
    RefreshAndFocusText();
}

void CDlgEditKeywords::OnRemove()
{
    std::vector<int> selected(static_cast<std::size_t>(m_list.GetSelCount()));
    m_list.GetSelItems(static_cast<int>(selected.size()), selected.data());
    std::sort(selected.rbegin(), selected.rend());
    m_list.SetRedraw(FALSE);
    CString strKeyword;
    for (const int nItem : selected)
    {
        m_list.GetText(nItem, strKeyword);
        if (m_keywords.Remove(strKeyword))
            m_list.DeleteString(static_cast<UINT>(nItem));
    }
    m_list.SetRedraw(TRUE);
    m_list.Invalidate();
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
    const int nItem = m_list.AddString(pszKeyword);
    if (nItem < 0)
        return;
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
