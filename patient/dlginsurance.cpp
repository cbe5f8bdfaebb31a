#include "patient/dlginsurance.h"

#include "app/modalrun.h"
#include "patient/chartsheet.h"
#include "patient/patientres.h"
#include "patient/rules/textrules.h"

#include <algorithm>
#include <array>

BEGIN_MESSAGE_MAP(patCDlgInsurance, patCListPage)
ON_BN_CLICKED(IDC_INSURE_PRIMARY, &patCDlgInsurance::OnMakePrimary)
ON_UPDATE_COMMAND_UI(IDC_INSURE_PRIMARY, &patCDlgInsurance::OnUpdatePrimary)
END_MESSAGE_MAP()

patCDlgInsurance::patCDlgInsurance(patCChartSheet& sheet)
    : patCListPage(sheet, IDD_PATIENT_INSURANCE, pat::InsurancePage, IDC_INSURE_COMPANY)
{
}

void patCDlgInsurance::DoDataExchange(CDataExchange* pDX)
{
    patCListPage::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_INSURE_COMPANY, m_listCompany);
    DDX_Text(pDX, IDC_INSURE_COMPANY, m_strCompany);
    ValidateText(pDX, m_strCompany, pat::MaxInsuranceCompany, m_entry.strCompany);
    DDX_Text(pDX, IDC_INSURE_HOLDER, m_strHolder);
    ValidateText(pDX, m_strHolder, pat::MaxPolicyHolder, m_entry.strHolder);
    DDX_Text(pDX, IDC_INSURE_NUMBER, m_strNumber);
    ValidateText(pDX, m_strNumber, pat::MaxPolicyNumber, m_entry.strNumber);
    DDX_Text(pDX, IDC_INSURE_GROUP, m_strGroup);
    ValidateText(pDX, m_strGroup, pat::MaxPolicyGroup, m_entry.strGroup);
}

BOOL patCDlgInsurance::OnInitDialog()
{
    patCListPage::OnInitDialog();
    velGuard(0, IDS_PATIENT_LIST_FAILED, [&]() -> INT_PTR { return FillCompanies(), 0; });
    if (m_sheet.LoadPatient())
        LoadInsurances(m_sheet.GetPatient().GetInsurances());
    constexpr std::array<COLUMN, 4> columns{{{IDS_INSURE_COLUMN_COMPANY, 30},
                                             {IDS_INSURE_COLUMN_HOLDER, 30},
                                             {IDS_INSURE_COLUMN_NUMBER, 20},
                                             {IDS_INSURE_COLUMN_GROUP, 20}}};
    SetUpList(columns);
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
        shown.nOrigin = GetRowCount();
        const int nCompany = m_companies.Find(insurance.GetCompanyGUID());
        const CString& strName = nCompany >= 0 ? m_companies[nCompany].GetName() : insurance.GetCompanyName();
        shown.strCompany = strName.GetString();
        shown.strHolder = insurance.GetHolder().GetString();
        shown.strNumber = insurance.GetNumber().GetString();
        shown.strGroup = insurance.GetGroup().GetString();
        m_insurances.push_back(std::move(shown));
    }
    m_loaded = m_insurances;
}

int patCDlgInsurance::GetRowCount() const
{
    return static_cast<int>(m_insurances.size());
}

std::vector<CString> patCDlgInsurance::GetRowTexts(int nRow) const
{
    const pat::Insurance& insurance = m_insurances[static_cast<std::size_t>(nRow)];
    return {insurance.strCompany.c_str(), insurance.strHolder.c_str(), insurance.strNumber.c_str(),
            insurance.strGroup.c_str()};
}

pat::Insurance patCDlgInsurance::GetEntry() const
{
    const auto textOf = [this](int nControl) {
        CString strText;
        GetDlgItem(nControl)->GetWindowText(strText);
        return std::string(strText.GetString());
    };
    return {-1, textOf(IDC_INSURE_COMPANY), textOf(IDC_INSURE_HOLDER), textOf(IDC_INSURE_NUMBER),
            textOf(IDC_INSURE_GROUP)};
}

void patCDlgInsurance::ShowEntry(int nRow)
{
    pat::Insurance insurance;
    if (nRow >= 0)
        insurance = m_insurances[static_cast<std::size_t>(nRow)];
    m_strCompany = insurance.strCompany.c_str();
    m_strHolder = insurance.strHolder.c_str();
    m_strNumber = insurance.strNumber.c_str();
    m_strGroup = insurance.strGroup.c_str();
    UpdateData(FALSE);
    m_entry = GetEntry();
}

pat::Finding patCDlgInsurance::CheckEntry() const
{
    return pat::CheckInsuranceEntry(GetEntry(), m_entry);
}

bool patCDlgInsurance::IsEntryComplete() const
{
    return !pat::IsBlank(GetEntry().strCompany);
}

pat::Finding patCDlgInsurance::TakeEntry(int nRow)
{
    const bool bNew = nRow == GetRowCount();
    pat::Insurance entry = GetEntry();
    pat::Finding finding = pat::CheckInsurance(entry, m_insurances, bNew ? -1 : nRow);
    if (!finding.bPassed)
        return finding;
    if (bNew)
        m_insurances.emplace_back();
    pat::Insurance& row = m_insurances[static_cast<std::size_t>(nRow)];
    entry.nOrigin = row.nOrigin;
    row = std::move(entry);
    return finding;
}

void patCDlgInsurance::EraseRow(int nRow)
{
    m_insurances.erase(m_insurances.begin() + nRow);
}

void patCDlgInsurance::OnUpdatePrimary(CCmdUI* pCmdUI)
{
    pCmdUI->Enable(GetSelectedRow() > 0);
}

// The fields stay as they are; if they hold the row that moves, they go on holding it.
void patCDlgInsurance::OnMakePrimary()
{
    const int nRow = GetSelectedRow();
    if (nRow <= 0)
        return;
    std::rotate(m_insurances.begin(), m_insurances.begin() + nRow, m_insurances.begin() + nRow + 1);
    ShowRows();
    SelectShownRow(0);
}

bool patCDlgInsurance::Check()
{
    return Report(CheckEntry());
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
        if (shown.nOrigin >= 0)
            insurance = before[shown.nOrigin];
        if (shown.nOrigin < 0 ||
            shown.strCompany != m_loaded[static_cast<std::size_t>(shown.nOrigin)].strCompany)
            insurance.SetCompanyGUID(dbCInsuranceCompanies::FindOrAdd(shown.strCompany.c_str()));
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
