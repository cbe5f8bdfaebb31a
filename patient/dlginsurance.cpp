#include "patient/dlginsurance.h"

#include "app/modalrun.h"
#include "patient/chartsheet.h"
#include "patient/patientres.h"
#include "patient/textrules.h"
#include "suite/patients/files/filefamily.h"

#include <algorithm>

BEGIN_MESSAGE_MAP(patCDlgInsurance, patCSheetPage)
ON_NOTIFY(LVN_ITEMCHANGED, IDC_INSURE_LIST, &patCDlgInsurance::OnRowChanged)
ON_BN_CLICKED(IDC_INSURE_ADD, &patCDlgInsurance::OnAdd)
ON_BN_CLICKED(IDC_INSURE_CHANGE, &patCDlgInsurance::OnChange)
ON_BN_CLICKED(IDC_INSURE_REMOVE, &patCDlgInsurance::OnRemove)
ON_BN_CLICKED(IDC_INSURE_CLEAR, &patCDlgInsurance::OnClear)
ON_BN_CLICKED(IDC_INSURE_PRIMARY, &patCDlgInsurance::OnMakePrimary)
ON_UPDATE_COMMAND_UI(IDC_INSURE_ADD, &patCDlgInsurance::OnUpdateAdd)
ON_UPDATE_COMMAND_UI(IDC_INSURE_CHANGE, &patCDlgInsurance::OnUpdateChange)
ON_UPDATE_COMMAND_UI(IDC_INSURE_REMOVE, &patCDlgInsurance::OnUpdateRemove)
ON_UPDATE_COMMAND_UI(IDC_INSURE_PRIMARY, &patCDlgInsurance::OnUpdatePrimary)
END_MESSAGE_MAP()

namespace
{

/// The GUID of the company with this name; a new company of that name is added to the practice's list.
CString FindOrAddCompany(const std::string& strName)
{
    dbCInsuranceCompanies companies;
    companies.Load();
    for (const dbCInsuranceCompany& company : companies)
    {
        if (pat::EqualNoCase(company.GetName().GetString(), strName))
            return company.GetCompanyGUID();
    }
    dbCInsuranceCompany company;
    company.SetName(strName.c_str());
    company.Save();
    return company.GetCompanyGUID();
}

} // namespace

patCDlgInsurance::patCDlgInsurance(patCChartSheet& sheet)
    : patCSheetPage(sheet, IDD_PATIENT_INSURANCE, pat::InsurancePage)
{
}

void patCDlgInsurance::DoDataExchange(CDataExchange* pDX)
{
    patCSheetPage::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_INSURE_COMPANY, m_listCompany);
    DDX_Control(pDX, IDC_INSURE_LIST, m_listInsurances);
    DDX_CBString(pDX, IDC_INSURE_COMPANY, m_strCompany);
    DDV_MaxChars(pDX, m_strCompany, pat::MaxInsuranceCompany);
    DDX_Text(pDX, IDC_INSURE_HOLDER, m_strHolder);
    DDV_MaxChars(pDX, m_strHolder, pat::MaxPolicyHolder);
    DDX_Text(pDX, IDC_INSURE_NUMBER, m_strNumber);
    DDV_MaxChars(pDX, m_strNumber, pat::MaxPolicyNumber);
    DDX_Text(pDX, IDC_INSURE_GROUP, m_strGroup);
    DDV_MaxChars(pDX, m_strGroup, pat::MaxPolicyGroup);
}

BOOL patCDlgInsurance::OnInitDialog()
{
    patCSheetPage::OnInitDialog();
    m_listCompany.LimitText(pat::MaxInsuranceCompany);
    m_listInsurances.SetExtendedStyle(LVS_EX_FULLROWSELECT);
    CRect rectList;
    m_listInsurances.GetClientRect(rectList);
    const int nWidth = (rectList.Width() - GetSystemMetrics(SM_CXVSCROLL)) / 10;
    AddColumn(m_listInsurances, IDS_INSURE_COLUMN_COMPANY, nWidth * 3);
    AddColumn(m_listInsurances, IDS_INSURE_COLUMN_HOLDER, nWidth * 3);
    AddColumn(m_listInsurances, IDS_INSURE_COLUMN_NUMBER, nWidth * 2);
    AddColumn(m_listInsurances, IDS_INSURE_COLUMN_GROUP, nWidth * 2);

    velGuard(0, IDS_PATIENT_LIST_FAILED, [&]() -> INT_PTR { return FillCompanies(), 0; });
    if (m_sheet.IsNewPatient() || m_sheet.LoadExistingPatient())
        LoadInsurances(m_sheet.GetPatient().GetInsurances());
    ShowEntry({});
    return TRUE;
}

void patCDlgInsurance::FillCompanies()
{
    m_companies.Load();
    m_listCompany.ResetContent();
    for (const dbCInsuranceCompany& company : m_companies)
        m_listCompany.AddString(company.GetName());
}

void patCDlgInsurance::LoadInsurances(const dbCInsurances& insurances)
{
    for (const dbCInsurance& insurance : insurances)
    {
        pat::Insurance shown;
        shown.strPolicyID = insurance.GetInsuranceGUID().GetString();
        const int nCompany = m_companies.Find(insurance.GetCompanyGUID());
        if (nCompany >= 0)
            shown.strCompany = m_companies[nCompany].GetName().GetString();
        shown.strHolder = insurance.GetHolder().GetString();
        shown.strNumber = insurance.GetNumber().GetString();
        shown.strGroup = insurance.GetGroup().GetString();
        m_insurances.push_back(std::move(shown));
    }
    m_loaded = m_insurances;
    for (int nRow = 0; nRow < static_cast<int>(m_insurances.size()); ++nRow)
        ShowRow(nRow);
}

void patCDlgInsurance::ShowRow(int nRow)
{
    const pat::Insurance& insurance = m_insurances[static_cast<std::size_t>(nRow)];
    if (nRow == m_listInsurances.GetItemCount())
        m_listInsurances.InsertItem(nRow, insurance.strCompany.c_str());
    else
        m_listInsurances.SetItemText(nRow, 0, insurance.strCompany.c_str());
    m_listInsurances.SetItemText(nRow, 1, insurance.strHolder.c_str());
    m_listInsurances.SetItemText(nRow, 2, insurance.strNumber.c_str());
    m_listInsurances.SetItemText(nRow, 3, insurance.strGroup.c_str());
}

pat::Insurance patCDlgInsurance::GetEntry() const
{
    const auto textOf = [this](int nControl) {
        CString strText;
        GetDlgItem(nControl)->GetWindowText(strText);
        return std::string(strText.GetString());
    };
    return {"", textOf(IDC_INSURE_COMPANY), textOf(IDC_INSURE_HOLDER), textOf(IDC_INSURE_NUMBER),
            textOf(IDC_INSURE_GROUP)};
}

void patCDlgInsurance::ShowEntry(const pat::Insurance& entry)
{
    m_strCompany = entry.strCompany.c_str();
    m_strHolder = entry.strHolder.c_str();
    m_strNumber = entry.strNumber.c_str();
    m_strGroup = entry.strGroup.c_str();
    m_listCompany.SetCurSel(-1); // else the exchange would complete the text from a longer entry
    UpdateData(FALSE);
}

int patCDlgInsurance::GetSelectedRow() const
{
    return m_listInsurances.GetNextItem(-1, LVNI_SELECTED);
}

const pat::Insurance* patCDlgInsurance::GetSelected() const
{
    const int nRow = GetSelectedRow();
    return nRow < 0 ? nullptr : &m_insurances[static_cast<std::size_t>(nRow)];
}

void patCDlgInsurance::OnUpdateAdd(CCmdUI* pCmdUI)
{
    pCmdUI->Enable(!pat::IsBlank(GetEntry().strCompany));
}

void patCDlgInsurance::OnUpdateChange(CCmdUI* pCmdUI)
{
    pCmdUI->Enable(!pat::IsBlank(GetEntry().strCompany) && GetSelectedRow() >= 0);
}

void patCDlgInsurance::OnUpdateRemove(CCmdUI* pCmdUI)
{
    pCmdUI->Enable(GetSelectedRow() >= 0);
}

void patCDlgInsurance::OnUpdatePrimary(CCmdUI* pCmdUI)
{
    pCmdUI->Enable(GetSelectedRow() > 0);
}

void patCDlgInsurance::OnRowChanged(NMHDR* pNMHDR, LRESULT* pResult)
{
    const auto& change = *reinterpret_cast<const NMLISTVIEW*>(pNMHDR);
    if ((change.uChanged & LVIF_STATE) != 0 && (change.uNewState & LVIS_SELECTED) != 0)
        ShowEntry(m_insurances[static_cast<std::size_t>(change.iItem)]);
    *pResult = 0;
}

void patCDlgInsurance::TakeEntry(int nRow)
{
    if (!UpdateData(TRUE))
        return;
    const bool bNew = nRow == static_cast<int>(m_insurances.size());
    pat::Insurance entry = GetEntry();
    if (!Report(pat::CheckInsurance(entry, m_insurances, bNew ? -1 : nRow)))
        return;
    if (bNew)
        m_insurances.emplace_back();
    pat::Insurance& row = m_insurances[static_cast<std::size_t>(nRow)];
    entry.strPolicyID = row.strPolicyID;
    row = std::move(entry);
    ShowRow(nRow);
    OnClear();
}

void patCDlgInsurance::OnAdd()
{
    TakeEntry(static_cast<int>(m_insurances.size()));
}

void patCDlgInsurance::OnChange()
{
    if (const int nRow = GetSelectedRow(); nRow >= 0)
        TakeEntry(nRow);
}

void patCDlgInsurance::OnRemove()
{
    const int nRow = GetSelectedRow();
    if (nRow < 0)
        return;
    m_insurances.erase(m_insurances.begin() + nRow);
    m_listInsurances.DeleteItem(nRow);
    OnClear();
}

void patCDlgInsurance::OnClear()
{
    m_listInsurances.SetItemState(-1, 0, LVIS_SELECTED | LVIS_FOCUSED);
    ShowEntry({});
    GotoDlgCtrl(&m_listCompany);
    UpdateControls();
}

void patCDlgInsurance::OnMakePrimary()
{
    const int nRow = GetSelectedRow();
    if (nRow <= 0)
        return;
    std::rotate(m_insurances.begin(), m_insurances.begin() + nRow, m_insurances.begin() + nRow + 1);
    for (int nMoved = 0; nMoved <= nRow; ++nMoved)
        ShowRow(nMoved);
    m_listInsurances.SetItemState(0, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    m_listInsurances.EnsureVisible(0, FALSE);
}

bool patCDlgInsurance::Check()
{
    return Report(pat::CheckInsuranceEntry(GetEntry(), GetSelected()));
}

void patCDlgInsurance::CopyTo(dbCPatient& patient)
{
    if (m_insurances == m_loaded)
        return;
    const dbCInsurances before = patient.GetInsurances();
    for (const dbCInsurance& insurance : before)
        patient.RemoveInsurance(insurance.GetInsuranceGUID());
    CString strPrimary;
    for (const pat::Insurance& shown : m_insurances)
    {
        dbCInsurance insurance; // a policy that was there keeps what this page does not show
        const auto wasThere = std::find_if(before.begin(), before.end(), [&](const dbCInsurance& candidate) {
            return candidate.GetInsuranceGUID() == shown.strPolicyID.c_str();
        });
        if (wasThere != before.end())
            insurance = *wasThere;
        const auto wasShown =
            std::find_if(m_loaded.begin(), m_loaded.end(), [&](const pat::Insurance& loaded) {
                return !shown.strPolicyID.empty() && loaded.strPolicyID == shown.strPolicyID;
            });
        if (wasShown == m_loaded.end() || wasShown->strCompany != shown.strCompany)
            insurance.SetCompanyGUID(FindOrAddCompany(shown.strCompany));
        insurance.SetHolder(shown.strHolder.c_str());
        insurance.SetNumber(shown.strNumber.c_str());
        insurance.SetGroup(shown.strGroup.c_str());
        patient.AssignInsurance(insurance);
        if (strPrimary.IsEmpty())
            strPrimary = insurance.GetInsuranceGUID();
    }
    if (!strPrimary.IsEmpty())
        patient.SetInsuranceGUID(strPrimary);
}
