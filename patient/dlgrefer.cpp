#include "patient/dlgrefer.h"

#include "app/modalrun.h"
#include "patient/chartsheet.h"
#include "patient/daynumber.h"
#include "patient/rules/detailrules.h"
#include "patient/patientres.h"
#include "suite/patients/records/dbdoctors.h"
#include "suite/patients/records/dbpatients.h"

#include <algorithm>
#include <array>

patCDlgRefer::patCDlgRefer(patCChartSheet& sheet)
    : patCListPage(sheet, IDD_PATIENT_REFERRAL, pat::ReferralPage, IDC_REFER_DOCTOR)
{
}

void patCDlgRefer::DoDataExchange(CDataExchange* pDX)
{
    patCListPage::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_REFER_DOCTOR, m_listDoctor);
    DDX_Control(pDX, IDC_REFER_DATE, m_dateEntry);
    DDX_Text(pDX, IDC_REFER_NOTE, m_strNote);
    ValidateText(pDX, m_strNote, pat::MaxReferralNote, m_entry.strNote);
}

BOOL patCDlgRefer::OnInitDialog()
{
    patCListPage::OnInitDialog();
    constexpr std::array<COLUMN, 3> columns{
        {{IDS_REFER_COLUMN_DOCTOR, 40}, {IDS_REFER_COLUMN_DATE, 20}, {IDS_REFER_COLUMN_NOTE, 40}}};
    SetUpList(columns);
    return TRUE;
}

// The doctors are read when the page is first shown, and again when the doctor editor of the details page, or
// another user, may have changed them. The details page may also have given the first row another doctor.
BOOL patCDlgRefer::OnSetActive()
{
    const BOOL bActive = patCListPage::OnSetActive();
    velGuard(0, IDS_PATIENT_LIST_FAILED, [&]() -> INT_PTR {
        m_sheet.LoadReferrals();
        ShowRows();
        if (dbCPatients::GetChangeCounter() != m_nDoctorsRead)
            FillDoctors();
        if (GetShownRow() >= 0 && CheckEntry().bPassed)
            ShowEntry(GetShownRow());
        return 0;
    });
    return bActive;
}

BOOL patCDlgRefer::AppendDoctor(const dbSDoctorRow& row, LPVOID pDoctors)
{
    static_cast<std::vector<DOCTOR>*>(pDoctors)->push_back({row.guid, pat::DoctorName(row.last, row.first)});
    return TRUE;
}

void patCDlgRefer::FillDoctors()
{
    const __int64 nState = dbCPatients::GetChangeCounter();
    std::vector<DOCTOR> rows;
    dbCDoctors doctors;
    doctors.RegisterEnumCallback(&patCDlgRefer::AppendDoctor, &rows);
    doctors.Enum(dbDoctorsByName);

    const std::string strSelectedID = GetEntry().strDoctorID;
    m_doctors = std::move(rows);
    m_nDoctorsRead = nState;
    CString strPlaceholder;
    strPlaceholder.LoadString(IDS_REFER_SELECT_DOCTOR);
    m_listDoctor.SetRedraw(FALSE);
    m_listDoctor.ResetContent();
    m_listDoctor.AddString(strPlaceholder);
    for (const DOCTOR& doctor : m_doctors)
        m_listDoctor.AddString(doctor.strName.c_str());
    SelectDoctor(strSelectedID);
    m_listDoctor.SetRedraw(TRUE);
    m_listDoctor.Invalidate();
}

void patCDlgRefer::SelectDoctor(const std::string& strDoctorID)
{
    const auto found = std::find_if(m_doctors.begin(), m_doctors.end(),
                                    [&](const DOCTOR& doctor) { return doctor.strID == strDoctorID; });
    m_listDoctor.SetCurSel(found == m_doctors.end() ? 0 : static_cast<int>(found - m_doctors.begin()) + 1);
}

pat::Referral patCDlgRefer::GetEntry() const
{
    pat::Referral entry;
    const int nDoctor = m_listDoctor.GetCurSel();
    if (nDoctor > 0)
    {
        entry.strDoctorID = m_doctors[static_cast<std::size_t>(nDoctor - 1)].strID;
        entry.strDoctor = m_doctors[static_cast<std::size_t>(nDoctor - 1)].strName;
    }
    velCDate date;
    m_dateEntry.GetTime(date);
    entry.nDay = pat::DayNumber(date);
    CString strNote;
    GetDlgItem(IDC_REFER_NOTE)->GetWindowText(strNote);
    entry.strNote = strNote.GetString();
    return entry;
}

int patCDlgRefer::GetRowCount() const
{
    return static_cast<int>(m_sheet.GetReferrals().GetRows().size());
}

std::vector<CString> patCDlgRefer::GetRowTexts(int nRow) const
{
    const pat::Referral& referral = m_sheet.GetReferrals().GetRows()[static_cast<std::size_t>(nRow)];
    return {referral.strDoctor.c_str(), pat::DayDate(referral.nDay).FormatDate(), referral.strNote.c_str()};
}

// An empty entry starts with today.
void patCDlgRefer::ShowEntry(int nRow)
{
    pat::Referral referral;
    if (nRow >= 0)
        referral = m_sheet.GetReferrals().GetRows()[static_cast<std::size_t>(nRow)];
    else
        referral.nDay = pat::DayNumber(velCDate::Today());
    SelectDoctor(referral.strDoctorID);
    m_dateEntry.SetTime(pat::DayDate(referral.nDay));
    m_strNote = referral.strNote.c_str();
    UpdateData(FALSE);
    m_entry = GetEntry();
}

pat::Finding patCDlgRefer::CheckEntry() const
{
    return pat::CheckReferralEntry(GetEntry(), GetShownRow() < 0 ? nullptr : &m_entry);
}

bool patCDlgRefer::IsEntryComplete() const
{
    return m_sheet.GetReferrals().IsLoaded() && m_listDoctor.GetCurSel() > 0;
}

pat::Finding patCDlgRefer::TakeEntry(int nRow)
{
    const pat::Referral entry = GetEntry();
    pat::Finding finding = CheckDatesOf({entry});
    if (!finding.bPassed)
    {
        finding.nControl = IDC_REFER_DATE;
        return finding;
    }
    patCReferrals after = m_sheet.GetReferrals();
    after.Set(nRow, entry);
    finding = pat::CheckReferralsTwice(after.GetRows());
    if (finding.bPassed)
        m_sheet.GetReferrals() = std::move(after);
    else
        finding.nControl = IDC_REFER_DOCTOR;
    return finding;
}

void patCDlgRefer::EraseRow(int nRow)
{
    m_sheet.GetReferrals().Erase(nRow);
}

pat::Finding patCDlgRefer::CheckDatesOf(const std::vector<pat::Referral>& referrals) const
{
    const long nToday = pat::DayNumber(velCDate::Today());
    return pat::CheckReferralDates(referrals, nToday, pat::DayNumber(m_sheet.GetBirthdate()));
}

bool patCDlgRefer::CheckDates()
{
    return Report(CheckDatesOf(m_sheet.GetReferrals().GetRows()));
}

bool patCDlgRefer::Check()
{
    return Report(CheckEntry()) && Report(pat::CheckReferralsTwice(m_sheet.GetReferrals().GetRows()));
}
