// The list of patients in the main window.
#pragma once

#include "suite/patients/records/dbpatients.h"

#include <afxcmn.h>
#include <afxwin.h>

#include <vector>

/// A list view that holds no rows of its own: rows are read from the database page by page as they are shown, the
/// rest while the program is idle, so that 100,000 patients come up as quickly as sixty. Selection of several rows.
class hostCPatientList : public CListCtrl
{
public:
    BOOL CreateIn(CWnd* parent, UINT id);

    /// Shows the patients whose name or ID begins with the text; all of them for an empty text.
    void Search(dbPatientSearch by, LPCTSTR text);

    /// Reads again what is shown; the selection stays with the patients that had it.
    void Refresh();
    /// Shows nothing: no practice is open.
    void Clear();

    /// Reads some more rows. TRUE while there are any left.
    BOOL LoadMore();

    /// Number of patients that fit the search.
    int GetPatientCount() const
    {
        return m_count;
    }
    std::vector<CString> GetSelectedGUIDs();
    void GetSelectedIDs(CStringArray& ids);
    /// Selects one patient alone and scrolls to it. FALSE when it is not in the list.
    BOOL SelectGUID(LPCTSTR guid);
    void SelectFirst();

    /// Answers the list view's own requests, which reach the parent as notifications.
    void OnGetDispInfo(NMLVDISPINFO* info);
    int OnFindItem(const NMLVFINDITEM* find);

private:
    BOOL EnsureLoaded(int row);
    BOOL LoadPage(int rows);
    void Select(int row, BOOL selected);
    void Restart(int rows);

    dbCPatients m_patients;
    dbPatientSearch m_by = dbSearchName;
    CString m_text;
    int m_count = 0;
    dbTList<dbSPatientListRow> m_rows;
};
