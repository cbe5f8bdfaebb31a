// What the library shows: entries in the dialogs' lists, and the message about a birth date.

#include "suite/patients/store/dbcore.h"
#include "suite/patients/records/dbdoctorrows.h"
#include "suite/patients/records/dbpatients.h"
#include "suite/patients/records/dbtreatment.h"
#include "suite/patients/store/patmodule.h"
#include "suite/patients/store/patres.h"

#include <afxwin.h>

namespace
{
constexpr int FIRST_BIRTH_YEAR = 1850;

/// Keeps a list from drawing itself again and again while it is filled.
class RedrawPause
{
public:
    explicit RedrawPause(CComboBox& combo) : m_combo(combo)
    {
        ::SendMessageA(m_combo, WM_SETREDRAW, FALSE, 0);
    }
    ~RedrawPause()
    {
        ::SendMessageA(m_combo, WM_SETREDRAW, TRUE, 0);
        ::InvalidateRect(m_combo, nullptr, TRUE);
    }
    RedrawPause(const RedrawPause&) = delete;
    RedrawPause& operator=(const RedrawPause&) = delete;

private:
    CComboBox& m_combo;
};
} // namespace

BOOL patCPatients::IsDOBValid(const velCDate& date, BOOL bShowMessage)
{
    UINT nMessage = 0;
    if (date.IsNull())
        return TRUE;
    if (!date.IsValid())
        nMessage = IDS_DOB_INVALID;
    else if (date.GetYear() < FIRST_BIRTH_YEAR)
        nMessage = IDS_DOB_TOO_EARLY;
    else if (date.CompareDate(velCDate::Today()) > 0)
        nMessage = IDS_DOB_FUTURE;
    if (nMessage != 0 && bShowMessage)
        AfxMessageBox(patLoadString(nMessage), MB_OK | MB_ICONEXCLAMATION);
    return nMessage == 0;
}

int patCPatient::FillTreatmentList(CComboBox& combo, CStringArray& ptshIDs, BOOL bActiveOnly,
                                   BOOL bWithNew) const
{
    combo.ResetContent();
    ptshIDs.RemoveAll();
    const auto add = [&](const CString& strText, const CString& strPtshID) {
        const int nItem = combo.AddString(strText);
        combo.SetItemData(nItem, static_cast<DWORD_PTR>(ptshIDs.Add(strPtshID)));
    };
    dbCPatientTreatmentStatusHistoryTable history;
    if (!m_f.strGUID.IsEmpty())
        history.LoadByPatID(m_f.strGUID);
    for (const auto& row : history)
        if (!bActiveOnly || row.GetActive() != 0)
            add(row.GetDescription() + " (" + row.GetDateTime().FormatDate() + ")", row.GetptshID());
    if (bWithNew)
        add(patLoadString(IDS_NEW_TREATMENT), "");
    return static_cast<int>(ptshIDs.GetSize());
}

int dbCTreatingDoctors::EnumTreatingDoctors(CComboBox& combo)
{
    m_rows = dbReadDoctors(dbDoctorsByName);
    std::erase_if(m_rows, [](const dbSDoctorRow& row) { return !row.treating; });
    const RedrawPause pause(combo);
    for (const dbSDoctorRow& row : m_rows)
    {
        const std::string text = row.first.empty() ? row.last : row.last + ", " + row.first;
        const int nItem = combo.AddString(text.c_str());
        combo.SetItemData(nItem, reinterpret_cast<DWORD_PTR>(row.guid.c_str()));
    }
    return static_cast<int>(m_rows.size());
}
