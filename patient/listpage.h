// A page that is a list editor: fields above a list of rows.
#pragma once

#include "patient/rules/finding.h"
#include "patient/sheetpage.h"

#include <afxcmn.h>

#include <span>
#include <string>
#include <vector>

/// What the referral and the insurance page are: the user fills the fields and adds them to the list; a row
/// that is selected comes into the fields to be changed or removed. The derived page owns the rows and knows
/// the fields; this class owns the list and the buttons, which have the same ids on every such page. What
/// stands in the fields and not in the list is never dropped without asking, and keeps nobody on the page: it
/// is checked on the sheet's OK.
class patCListPage : public patCSheetPage
{
public:
    /// nFirstField: the control that takes the focus when the fields have been emptied.
    patCListPage(patCChartSheet& sheet, UINT nIDTemplate, pat::Page nPage, int nFirstField);

protected:
    /// A column: the string of its title, and its share of the list's width in hundredths.
    struct COLUMN
    {
        UINT nTitle;
        int nShare;
    };

    virtual int GetRowCount() const = 0;
    /// The texts of a row in the order of the columns.
    virtual std::vector<CString> GetRowTexts(int nRow) const = 0;
    /// Fills the fields from a row, -1: empties them, and remembers what they then hold.
    virtual void ShowEntry(int nRow) = 0;
    /// Fails when the fields hold something else than ShowEntry put there.
    virtual pat::Finding CheckEntry() const = 0;
    /// Whether the fields hold enough for a row.
    virtual bool IsEntryComplete() const = 0;
    /// Checks the fields and makes them this row, GetRowCount() for a new one.
    virtual pat::Finding TakeEntry(int nRow) = 0;
    virtual void EraseRow(int nRow) = 0;

    /// For the page's initialisation, with the rows loaded.
    void SetUpList(std::span<const COLUMN> columns);
    void ShowRows();
    int GetSelectedRow() const;
    /// The row that the fields were filled from; -1 when they were emptied.
    int GetShownRow() const
    {
        return m_nShownRow;
    }
    /// Selects a row that the fields hold already.
    void SelectShownRow(int nRow);

    void DoDataExchange(CDataExchange* pDX) override;
    /// DDV_MaxChars, but a text that the fields were filled with may be longer.
    static void ValidateText(CDataExchange* pDX, const CString& strText, int nLimit,
                             const std::string& strFilled);
    bool CheckOnLeaving() override
    {
        return true;
    }

    afx_msg void OnRowChanged(NMHDR* pNMHDR, LRESULT* pResult);
    afx_msg LRESULT OnRowChosen(WPARAM wParam, LPARAM lParam);
    afx_msg void OnAdd();
    afx_msg void OnChange();
    afx_msg void OnRemove();
    afx_msg void OnClear();
    afx_msg void OnUpdateAdd(CCmdUI* pCmdUI);
    afx_msg void OnUpdateChange(CCmdUI* pCmdUI);
    afx_msg void OnUpdateRemove(CCmdUI* pCmdUI);
    DECLARE_MESSAGE_MAP()

private:
    void Take(int nRow);
    void ShowRow(int nRow);
    void Show(int nRow);

    CListCtrl m_listRows;
    const int m_nFirstField;
    int m_nShownRow = -1;
};
