#include "patient/listpage.h"

#include "patient/patientres.h"

namespace
{

/// Posted to the page when a row has been selected while the fields hold something that is not in the list:
/// the question has to wait until the list has finished with the mouse.
constexpr UINT msgRowChosen = WM_APP + 1;

} // namespace

BEGIN_MESSAGE_MAP(patCListPage, patCSheetPage)
ON_NOTIFY(LVN_ITEMCHANGED, IDC_ROWS_LIST, &patCListPage::OnRowChanged)
ON_MESSAGE(msgRowChosen, &patCListPage::OnRowChosen)
ON_BN_CLICKED(IDC_ROWS_ADD, &patCListPage::OnAdd)
ON_BN_CLICKED(IDC_ROWS_CHANGE, &patCListPage::OnChange)
ON_BN_CLICKED(IDC_ROWS_REMOVE, &patCListPage::OnRemove)
ON_BN_CLICKED(IDC_ROWS_CLEAR, &patCListPage::OnClear)
ON_UPDATE_COMMAND_UI(IDC_ROWS_ADD, &patCListPage::OnUpdateAdd)
ON_UPDATE_COMMAND_UI(IDC_ROWS_CHANGE, &patCListPage::OnUpdateChange)
ON_UPDATE_COMMAND_UI(IDC_ROWS_REMOVE, &patCListPage::OnUpdateRemove)
END_MESSAGE_MAP()

patCListPage::patCListPage(patCChartSheet& sheet, UINT nIDTemplate, pat::Page nPage, int nFirstField)
    : patCSheetPage(sheet, nIDTemplate, nPage), m_nFirstField(nFirstField)
{
}

void patCListPage::DoDataExchange(CDataExchange* pDX)
{
    patCSheetPage::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_ROWS_LIST, m_listRows);
}

void patCListPage::ValidateText(CDataExchange* pDX, const CString& strText, int nLimit,
                                const std::string& strFilled)
{
    if (!pDX->m_bSaveAndValidate || strText != strFilled.c_str())
        DDV_MaxChars(pDX, strText, nLimit);
}

void patCListPage::SetUpList(std::span<const COLUMN> columns)
{
    m_listRows.SetExtendedStyle(LVS_EX_FULLROWSELECT);
    CRect rectList;
    m_listRows.GetClientRect(rectList);
    const int nWidth = rectList.Width() - GetSystemMetrics(SM_CXVSCROLL);
    for (int nColumn = 0; const COLUMN& column : columns)
    {
        CString strTitle;
        strTitle.LoadString(column.nTitle);
        m_listRows.InsertColumn(nColumn++, strTitle, LVCFMT_LEFT, nWidth * column.nShare / 100);
    }
    ShowRows();
    Show(-1);
}

void patCListPage::ShowRows()
{
    for (int nRow = 0; nRow < GetRowCount(); ++nRow)
        ShowRow(nRow);
}

void patCListPage::ShowRow(int nRow)
{
    int nColumn = 0;
    for (const CString& strText : GetRowTexts(nRow))
    {
        if (nRow == m_listRows.GetItemCount())
            m_listRows.InsertItem(nRow, strText);
        else
            m_listRows.SetItemText(nRow, nColumn, strText);
        ++nColumn;
    }
}

void patCListPage::Show(int nRow)
{
    m_nShownRow = nRow;
    ShowEntry(nRow);
}

int patCListPage::GetSelectedRow() const
{
    return m_listRows.GetNextItem(-1, LVNI_SELECTED);
}

void patCListPage::SelectShownRow(int nRow)
{
    m_nShownRow = nRow; // first, so that the fields are not filled anew
    m_listRows.SetItemState(nRow, nRow < 0 ? 0 : LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    if (nRow >= 0)
        m_listRows.EnsureVisible(nRow, FALSE);
}

void patCListPage::OnRowChanged(NMHDR* pNMHDR, LRESULT* pResult)
{
    const auto& change = *reinterpret_cast<const NMLISTVIEW*>(pNMHDR);
    *pResult = 0;
    if ((change.uChanged & LVIF_STATE) == 0 || (change.uNewState & LVIS_SELECTED) == 0 ||
        change.iItem == m_nShownRow)
        return;
    if (CheckEntry().bPassed)
        Show(change.iItem);
    else
        PostMessage(msgRowChosen);
}

LRESULT patCListPage::OnRowChosen(WPARAM, LPARAM)
{
    const int nRow = GetSelectedRow();
    if (nRow < 0 || nRow == m_nShownRow)
        return 0;
    if (CheckEntry().bPassed ||
        AfxMessageBox(IDS_ROWS_DROP, MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2) == IDYES)
        Show(nRow);
    else
        SelectShownRow(m_nShownRow);
    return 0;
}

void patCListPage::OnUpdateAdd(CCmdUI* pCmdUI)
{
    pCmdUI->Enable(IsEntryComplete());
}

void patCListPage::OnUpdateChange(CCmdUI* pCmdUI)
{
    pCmdUI->Enable(IsEntryComplete() && GetSelectedRow() >= 0);
}

void patCListPage::OnUpdateRemove(CCmdUI* pCmdUI)
{
    pCmdUI->Enable(GetSelectedRow() >= 0);
}

void patCListPage::OnAdd()
{
    Take(GetRowCount());
}

void patCListPage::OnChange()
{
    if (const int nRow = GetSelectedRow(); nRow >= 0)
        Take(nRow);
}

void patCListPage::Take(int nRow)
{
    if (!UpdateData(TRUE) || !Report(TakeEntry(nRow)))
        return;
    ShowRow(nRow);
    OnClear();
}

void patCListPage::OnRemove()
{
    const int nRow = GetSelectedRow();
    if (nRow < 0)
        return;
    EraseRow(nRow);
    m_listRows.DeleteItem(nRow);
    OnClear();
}

void patCListPage::OnClear()
{
    SelectShownRow(-1);
    Show(-1);
    GotoDlgCtrl(GetDlgItem(m_nFirstField));
    UpdateControls();
}
