#include "maintenance/treatmentlist.h"

#include "app/modalrun.h"
#include "maintenance/dlgtreatmentstatus.h"

IMPLEMENT_DYNAMIC(CTreatmentList, CComboBox)

namespace
{

constexpr int activeTreatment = -1;

CString AddToHistory(const dbCPatient& patient, const CDlgTreatmentStatus& chosen)
{
    dbCPatientTreatmentStatusHistoryRow row;
    row.SetpatID(patient.GetGUID());
    row.SetDescription(chosen.GetDescription());
    row.SetNewCode(chosen.GetCode());
    row.SetActive(activeTreatment);
    row.SetDateTime(COleDateTime::GetCurrentTime());
    dbCPatientTreatmentStatusHistoryTable().InsertRow(row);
    return row.GetptshID();
}

} // namespace

void CTreatmentList::Fill(const dbCPatient& patient)
{
    SetRedraw(FALSE);
    CStringArray ptshIDs;
    const int nCount = patient.FillTreatmentList(*this, ptshIDs, TRUE, TRUE);
    SetRedraw(TRUE);
    m_ids.clear();
    m_ids.reserve(static_cast<std::size_t>(nCount));
    for (int i = 0; i < nCount; ++i)
        m_ids.emplace_back(ptshIDs[static_cast<INT_PTR>(GetItemData(i))].GetString());
}

std::optional<CString> CTreatmentList::Take(CWnd* pParent, const dbCPatient& patient)
{
    const int nSelected = GetCurSel();
    if (nSelected == CB_ERR)
        return std::nullopt;
    const std::string& id = m_ids.at(static_cast<std::size_t>(nSelected));
    if (!id.empty())
        return CString(id.c_str());
    CDlgTreatmentStatus chooser(pParent);
    if (velRunModal(chooser) != IDOK)
        return std::nullopt;
    return AddToHistory(patient, chooser);
}
