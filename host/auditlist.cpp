#include "host/auditlist.h"

#include "host/columns.h"
#include "host/hostres.h"
#include "suite/patients/records/dbpatients.h"
#include "suite/patients/records/veltrixlogin.h"

namespace
{

constexpr hostSColumn kColumns[] = {{IDS_COLUMN_TIME, 130, LVCFMT_LEFT},
                                    {IDS_COLUMN_EVENT, 120, LVCFMT_LEFT},
                                    {IDS_COLUMN_TEXT, 480, LVCFMT_LEFT},
                                    {IDS_COLUMN_USER, 90, LVCFMT_LEFT},
                                    {IDS_COLUMN_COMPUTER, 100, LVCFMT_LEFT}};

} // namespace

BOOL hostCAuditList::CreateIn(CWnd* parent, UINT id)
{
    const DWORD style = WS_CHILD | WS_VISIBLE | WS_BORDER | WS_TABSTOP | LVS_REPORT | LVS_SHOWSELALWAYS | LVS_SINGLESEL;
    if (!CListCtrl::Create(style, CRect(0, 0, 0, 0), parent, id))
    {
        return FALSE;
    }
    hostPrepareList(*this, kColumns);
    return TRUE;
}

void hostCAuditList::Refresh()
{
    dbTList<dbSAuditEvent> events;
    if (dbCPatients::IsOpen())
    {
        CVeltrixLogin::LoadEvents(events, kMostEvents);
    }
    SetRedraw(FALSE);
    DeleteAllItems();
    for (int row = 0; row < events.GetCount(); ++row)
    {
        const dbSAuditEvent& event = events[row];
        InsertItem(row, event.dateTime.Format());
        SetItemText(row, 1, hostText(IDS_EVENT_FIRST + static_cast<UINT>(event.nKind)));
        SetItemText(row, 2, event.strText);
        SetItemText(row, 3, event.strUser);
        SetItemText(row, 4, event.strComputer);
    }
    SetRedraw(TRUE);
}
