#include "maintenance/timepointnamelist.h"

#include "maintenance/namerules.h"
#include "maintenance/systemchars.h"

IMPLEMENT_DYNAMIC(CTimepointNameList, CComboBox)

void CTimepointNameList::Fill()
{
    if (!m_names.IsCreated())
        return;
    const std::vector<CString> names = m_names.Load();
    SetRedraw(FALSE);
    ResetContent();
    for (const CString& strName : names)
        AddString(strName);
    SetRedraw(TRUE);
    Invalidate();
}

CString CTimepointNameList::GetTyped()
{
    CString strTyped;
    GetWindowText(strTyped);
    CString strName = maint::CutName(strTyped.GetString(), maint::maxTimepointName, velSystemChars()).c_str();
    if (strName != strTyped)
    {
        SetWindowText(strName);
        SetEditSel(strName.GetLength(), -1);
    }
    return strName;
}

void CTimepointNameList::GetChosen(CString& strName) const
{
    if (const int nChosen = GetCurSel(); nChosen != CB_ERR)
        GetLBText(nChosen, strName);
}

bool CTimepointNameList::IsListed(LPCTSTR pszName) const
{
    return FindStringExact(-1, pszName) != CB_ERR;
}

void CTimepointNameList::AddToNames(LPCTSTR pszName)
{
    if (m_names.IsCreated() && !IsListed(pszName))
        m_names.Add(pszName);
}
