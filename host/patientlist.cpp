#include "host/patientlist.h"

#include "host/columns.h"
#include "host/hostres.h"

#include <algorithm>
#include <set>

namespace
{

constexpr int kFirstPage = 200;
constexpr int kIdlePage = 2000;
// A selection beyond this is not looked for again after a refresh.
constexpr std::size_t kMostKept = 1000;

constexpr hostSColumn kColumns[] = {{IDS_COLUMN_LASTNAME, 120, LVCFMT_LEFT},
                                    {IDS_COLUMN_FIRSTNAME, 100, LVCFMT_LEFT},
                                    {IDS_COLUMN_ID, 76, LVCFMT_LEFT},
                                    {IDS_COLUMN_BIRTHDATE, 82, LVCFMT_RIGHT}};

CString CellText(const dbSPatientListRow& row, int column)
{
    switch (column)
    {
    case 0:
        return row.strLastname;
    case 1:
        return row.strFirstname;
    case 2:
        return row.strID;
    default:
        return row.dateBirth.FormatDate();
    }
}

} // namespace

BOOL hostCPatientList::CreateIn(CWnd* parent, UINT id)
{
    const DWORD style = WS_CHILD | WS_VISIBLE | WS_BORDER | WS_TABSTOP | LVS_REPORT | LVS_OWNERDATA | LVS_SHOWSELALWAYS;
    if (!CListCtrl::Create(style, CRect(0, 0, 0, 0), parent, id))
    {
        return FALSE;
    }
    hostPrepareList(*this, kColumns);
    return TRUE;
}

void hostCPatientList::Search(dbPatientSearch by, LPCTSTR text)
{
    m_by = by;
    m_text = text;
    Restart(kFirstPage);
    SetItemState(-1, 0, LVIS_SELECTED | LVIS_FOCUSED);
}

void hostCPatientList::Clear()
{
    m_rows.RemoveAll();
    m_count = 0;
    SetItemCountEx(0);
}

void hostCPatientList::Restart(int rows)
{
    m_rows.RemoveAll();
    m_count = m_patients.GetCount(m_by, m_text);
    LoadPage(rows);
    SetItemCountEx(m_count, LVSICF_NOSCROLL);
    Invalidate();
}

void hostCPatientList::Refresh()
{
    std::vector<CString> selected = GetSelectedGUIDs();
    const int focused = GetNextItem(-1, LVNI_FOCUSED);
    const CString focusedGUID = focused >= 0 && focused < m_rows.GetCount() ? m_rows[focused].strGUID : CString();
    SetItemState(-1, 0, LVIS_SELECTED | LVIS_FOCUSED);
    Restart(std::max(kFirstPage, m_rows.GetCount()));
    if (selected.size() > kMostKept)
    {
        return;
    }
    const std::set<std::string> kept(selected.begin(), selected.end());
    for (int row = 0; row < m_rows.GetCount(); ++row)
    {
        if (kept.contains(m_rows[row].strGUID.GetString()))
        {
            Select(row, TRUE);
        }
        if (!focusedGUID.IsEmpty() && m_rows[row].strGUID == focusedGUID)
        {
            SetItemState(row, LVIS_FOCUSED, LVIS_FOCUSED);
        }
    }
}

BOOL hostCPatientList::LoadPage(int rows)
{
    const int loaded = m_rows.GetCount();
    if (loaded >= m_count)
    {
        return FALSE;
    }
    const dbSPatientListRow last = loaded > 0 ? m_rows[loaded - 1] : dbSPatientListRow();
    if (m_patients.GetPage(m_by, m_text, loaded > 0 ? &last : nullptr, rows, m_rows) == 0)
    {
        // Others have removed patients since they were counted.
        m_count = loaded;
        SetItemCountEx(m_count, LVSICF_NOSCROLL);
    }
    return m_rows.GetCount() < m_count;
}

BOOL hostCPatientList::LoadMore()
{
    return LoadPage(kIdlePage);
}

BOOL hostCPatientList::EnsureLoaded(int row)
{
    while (row >= m_rows.GetCount() && LoadPage(std::max(kIdlePage, row + kFirstPage - m_rows.GetCount())))
    {
    }
    return row >= 0 && row < m_rows.GetCount();
}

std::vector<CString> hostCPatientList::GetSelectedGUIDs()
{
    std::vector<CString> guids;
    for (int row = GetNextItem(-1, LVNI_SELECTED); row >= 0; row = GetNextItem(row, LVNI_SELECTED))
    {
        if (EnsureLoaded(row))
        {
            guids.push_back(m_rows[row].strGUID);
        }
    }
    return guids;
}

void hostCPatientList::GetSelectedIDs(CStringArray& ids)
{
    for (int row = GetNextItem(-1, LVNI_SELECTED); row >= 0; row = GetNextItem(row, LVNI_SELECTED))
    {
        if (EnsureLoaded(row))
        {
            ids.Add(m_rows[row].strID);
        }
    }
}

void hostCPatientList::Select(int row, BOOL selected)
{
    SetItemState(row, selected ? LVIS_SELECTED : 0, LVIS_SELECTED);
}

void hostCPatientList::SelectFirst()
{
    if (m_count > 0)
    {
        SetItemState(0, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
        EnsureVisible(0, FALSE);
    }
}

BOOL hostCPatientList::SelectGUID(LPCTSTR guid)
{
    for (int row = 0; EnsureLoaded(row); ++row)
    {
        if (m_rows[row].strGUID == guid)
        {
            SetItemState(-1, 0, LVIS_SELECTED);
            SetItemState(row, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
            EnsureVisible(row, FALSE);
            return TRUE;
        }
    }
    return FALSE;
}

void hostCPatientList::OnGetDispInfo(NMLVDISPINFO* info)
{
    if ((info->item.mask & LVIF_TEXT) != 0 && info->item.cchTextMax > 0)
    {
        const CString text = EnsureLoaded(info->item.iItem) ? CellText(m_rows[info->item.iItem], info->item.iSubItem)
                                                            : CString();
        ::lstrcpyn(info->item.pszText, text, info->item.cchTextMax);
    }
}

// Typing in the list goes to the next row whose first column begins with what was typed.
int hostCPatientList::OnFindItem(const NMLVFINDITEM* find)
{
    if ((find->lvfi.flags & LVFI_STRING) == 0)
    {
        return -1;
    }
    const CString wanted(find->lvfi.psz);
    for (int step = 0; step < m_rows.GetCount(); ++step)
    {
        const int row = (find->iStart + step) % m_rows.GetCount();
        if (m_rows[row].strLastname.Left(wanted.GetLength()).CompareNoCase(wanted) == 0)
        {
            return row;
        }
    }
    return -1;
}
