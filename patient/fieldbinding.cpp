#include "patient/fieldbinding.h"

#include "patient/daynumber.h"
#include "patient/patientres.h"
#include "suite/util/velstring.h"

#include <afxdtctl.h>

#include <algorithm>
#include <cstdlib>

namespace
{

void ShowCode(CComboBox& list, int nCode)
{
    if (list.GetCount() == 0)
        return; // not filled yet
    int nEntry = 0;
    while (nEntry < list.GetCount() && static_cast<int>(list.GetItemData(nEntry)) != nCode)
        ++nEntry;
    if (nEntry == list.GetCount()) // a code of another system is kept as it is
    {
        list.AddString(velFormatTemplate(IDS_CHART_OTHER_CODE, std::to_string(nCode).c_str()));
        list.SetItemData(nEntry, static_cast<DWORD_PTR>(nCode));
    }
    list.SetCurSel(nEntry);
}

void ShowChoice(CComboBox& list, const CString& strText)
{
    if (list.GetCount() == 0)
        return;
    int nEntry = strText.IsEmpty() ? 0 : list.FindStringExact(0, strText);
    if (nEntry == CB_ERR)
        nEntry = list.AddString(strText); // what has been deleted meanwhile, or is another system's
    list.SetCurSel(nEntry);
}

CString GetChoice(const CComboBox& list)
{
    CString strText;
    if (const int nEntry = list.GetCurSel(); nEntry > 0)
        list.GetLBText(nEntry, strText);
    return strText;
}

CString GetListedID(const CComboBox& list)
{
    const int nEntry = list.GetCurSel();
    return nEntry > 0 ? reinterpret_cast<const char*>(list.GetItemData(nEntry)) : "";
}

} // namespace

void patCFieldValues::DoDataExchange(CDataExchange* pDX)
{
    for (Field& field : m_fields)
    {
        Exchange(pDX, field);
        const bool bOwn = pDX->m_bSaveAndValidate && field.now == field.loaded;
        if (field.nKind == patFieldKind::Text && field.nLimit != 0 && !bOwn)
            DDV_MaxChars(pDX, field.now.strText, field.nLimit);
    }
}

void patCFieldValues::TakeAsLoaded(CWnd& page)
{
    CDataExchange exchange(&page, TRUE);
    for (Field& field : m_fields)
    {
        Exchange(&exchange, field);
        field.loaded = field.now;
    }
}

patCFieldValues::Field& patCFieldValues::Find(int nControl)
{
    const auto found = std::find_if(m_fields.begin(), m_fields.end(),
                                    [nControl](const Field& field) { return field.nControl == nControl; });
    ASSERT(found != m_fields.end());
    return *found;
}

void patCFieldValues::Exchange(CDataExchange* pDX, Field& field)
{
    const bool bSave = pDX->m_bSaveAndValidate != FALSE;
    CWnd* const pControl = pDX->m_pDlgWnd->GetDlgItem(field.nControl);
    CComboBox& list = *static_cast<CComboBox*>(pControl);
    switch (field.nKind)
    {
    case patFieldKind::Text:
        DDX_Text(pDX, field.nControl, field.now.strText);
        break;
    case patFieldKind::LongText:
        if (!bSave)
            static_cast<CEdit*>(pControl)->SetLimitText(static_cast<UINT>(field.nLimit));
        DDX_Text(pDX, field.nControl, field.now.strText);
        break;
    case patFieldKind::Date:
        DDX_DateTimeCtrl(pDX, field.nControl, field.now.date);
        field.now.date = pat::WholeDay(field.now.date);
        break;
    case patFieldKind::Radio:
        DDX_Radio(pDX, field.nControl, field.now.nCode);
        break;
    case patFieldKind::Check:
        DDX_Check(pDX, field.nControl, field.now.nCode);
        break;
    case patFieldKind::Code:
        if (!bSave)
            ShowCode(list, field.now.nCode);
        else if (list.GetCurSel() >= 0)
            field.now.nCode = static_cast<int>(list.GetItemData(list.GetCurSel()));
        break;
    case patFieldKind::Choice:
        if (!bSave)
            ShowChoice(list, field.now.strText);
        else
            field.now.strText = GetChoice(list);
        break;
    case patFieldKind::ListedID:
        if (bSave)
            field.now.strText = GetListedID(list);
        break;
    }
}
