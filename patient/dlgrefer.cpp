#include "patient/dlgrefer.h"

#include "app/modalrun.h"
#include "patient/chartsheet.h"
#include "patient/daynumber.h"
#include "patient/detailrules.h"
#include "patient/patientres.h"
#include "suite/patients/records/dbdoctors.h"
#include "suite/patients/records/dbpatients.h"
#include "suite/patients/records/dbreferrals.h"

#include <algorithm>

BEGIN_MESSAGE_MAP(patCDlgRefer, patCSheetPage)
ON_NOTIFY(LVN_ITEMCHANGED, IDC_REFER_LIST, &patCDlgRefer::OnRowChanged)
ON_BN_CLICKED(IDC_REFER_ADD, &patCDlgRefer::OnAdd)
ON_BN_CLICKED(IDC_REFER_CHANGE, &patCDlgRefer::OnChange)
ON_BN_CLICKED(IDC_REFER_REMOVE, &patCDlgRefer::OnRemove)
ON_BN_CLICKED(IDC_REFER_CLEAR, &patCDlgRefer::OnClear)
ON_UPDATE_COMMAND_UI(IDC_REFER_ADD, &patCDlgRefer::OnUpdateAdd)
ON_UPDATE_COMMAND_UI(IDC_REFER_CHANGE, &patCDlgRefer::OnUpdateChange)
ON_UPDATE_COMMAND_UI(IDC_REFER_REMOVE, &patCDlgRefer::OnUpdateRemove)
END_MESSAGE_MAP()

patCDlgRefer::patCDlgRefer(patCChartSheet& sheet)
    : patCSheetPage(sheet, IDD_PATIENT_REFERRAL, pat::ReferralPage)
{
}

void patCDlgRefer::DoDataExchange(CDataExchange* pDX)
{
    patCSheetPage::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_REFER_DOCTOR, m_listDoctor);
    DDX_Control(pDX, IDC_REFER_DATE, m_dateEntry);
    DDX_Control(pDX, IDC_REFER_LIST, m_listReferrals);
    DDX_Text(pDX, IDC_REFER_NOTE, m_strNote);
    DDV_MaxChars(pDX, m_strNote, pat::MaxReferralNote);
}

BOOL patCDlgRefer::OnInitDialog()
{
    patCSheetPage::OnInitDialog();
    m_listReferrals.SetExtendedStyle(LVS_EX_FULLROWSELECT);
    CRect rectList;
    m_listReferrals.GetClientRect(rectList);
    const int nDateWidth = rectList.Width() / 5;
    const int nDoctorWidth = rectList.Width() * 2 / 5;
    const int nNoteWidth = rectList.Width() - nDateWidth - nDoctorWidth - GetSystemMetrics(SM_CXVSCROLL);
    AddColumn(m_listReferrals, IDS_REFER_COLUMN_DOCTOR, nDoctorWidth);
    AddColumn(m_listReferrals, IDS_REFER_COLUMN_DATE, nDateWidth);
    AddColumn(m_listReferrals, IDS_REFER_COLUMN_NOTE, nNoteWidth);

    if (m_sheet.IsNewPatient() || m_sheet.LoadExistingPatient())
        LoadReferrals(m_sheet.GetPatient().GetReferrals());
    ShowEmptyEntry();
    return TRUE;
}

// The doctors are read when the page is first shown, and again when the doctor editor of the details page, or
// another user, may have changed them.
BOOL patCDlgRefer::OnSetActive()
{
    const BOOL bActive = patCSheetPage::OnSetActive();
    velGuard(0, IDS_PATIENT_LIST_FAILED, [&]() -> INT_PTR {
        if (dbCPatients::GetChangeCounter() != m_nDoctorsRead)
            FillDoctors();
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

// Every row gets an id, by which it is found again even if another page has changed the order meanwhile.
void patCDlgRefer::LoadReferrals(dbCPatientReferralsContainer& referrals)
{
    for (dbCPatientReferralsRow& row : referrals)
    {
        if (row.Get_refID().IsEmpty())
            row.Set_refID(dbNewGUID());
        m_referrals.push_back(
            {row.Get_refID().GetString(), row.Get_docID().GetString(),
             pat::DoctorName(row.Get_docLastname().GetString(), row.Get_docFirstname().GetString()),
             pat::DayNumber(row.Get_date()), row.Get_note().GetString()});
    }
    m_loaded = m_referrals;
    for (int nRow = 0; nRow < static_cast<int>(m_referrals.size()); ++nRow)
        ShowRow(nRow);
}

void patCDlgRefer::ShowRow(int nRow)
{
    const pat::Referral& referral = m_referrals[static_cast<std::size_t>(nRow)];
    if (nRow == m_listReferrals.GetItemCount())
        m_listReferrals.InsertItem(nRow, referral.strDoctor.c_str());
    else
        m_listReferrals.SetItemText(nRow, 0, referral.strDoctor.c_str());
    m_listReferrals.SetItemText(nRow, 1, pat::DayDate(referral.nDay).FormatDate());
    m_listReferrals.SetItemText(nRow, 2, referral.strNote.c_str());
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

void patCDlgRefer::ShowEntry(const pat::Referral& entry)
{
    SelectDoctor(entry.strDoctorID);
    m_dateEntry.SetTime(pat::DayDate(entry.nDay));
    m_strNote = entry.strNote.c_str();
    UpdateData(FALSE);
}

void patCDlgRefer::ShowEmptyEntry()
{
    pat::Referral entry;
    entry.nDay = pat::DayNumber(velCDate::Today());
    ShowEntry(entry);
}

int patCDlgRefer::GetSelectedRow() const
{
    return m_listReferrals.GetNextItem(-1, LVNI_SELECTED);
}

const pat::Referral* patCDlgRefer::GetSelected() const
{
    const int nRow = GetSelectedRow();
    return nRow < 0 ? nullptr : &m_referrals[static_cast<std::size_t>(nRow)];
}

void patCDlgRefer::OnUpdateAdd(CCmdUI* pCmdUI)
{
    pCmdUI->Enable(m_listDoctor.GetCurSel() > 0);
}

void patCDlgRefer::OnUpdateChange(CCmdUI* pCmdUI)
{
    pCmdUI->Enable(m_listDoctor.GetCurSel() > 0 && GetSelectedRow() >= 0);
}

void patCDlgRefer::OnUpdateRemove(CCmdUI* pCmdUI)
{
    pCmdUI->Enable(GetSelectedRow() >= 0);
}

void patCDlgRefer::OnRowChanged(NMHDR* pNMHDR, LRESULT* pResult)
{
    const auto& change = *reinterpret_cast<const NMLISTVIEW*>(pNMHDR);
    if ((change.uChanged & LVIF_STATE) != 0 && (change.uNewState & LVIS_SELECTED) != 0)
        ShowEntry(m_referrals[static_cast<std::size_t>(change.iItem)]);
    *pResult = 0;
}

void patCDlgRefer::TakeEntry(int nRow)
{
    if (!UpdateData(TRUE))
        return;
    pat::Referral entry = GetEntry();
    pat::Finding finding = CheckDates({entry});
    if (!finding.bPassed)
        finding.nControl = IDC_REFER_DATE;
    if (!Report(finding))
        return;
    std::vector<pat::Referral> referrals = m_referrals;
    if (nRow == static_cast<int>(referrals.size()))
        referrals.emplace_back();
    entry.strRowID = referrals[static_cast<std::size_t>(nRow)].strRowID;
    referrals[static_cast<std::size_t>(nRow)] = std::move(entry);
    finding = pat::CheckReferralsTwice(referrals);
    if (!finding.bPassed)
        finding.nControl = IDC_REFER_DOCTOR;
    if (!Report(finding))
        return;
    m_referrals = std::move(referrals);
    ShowRow(nRow);
    OnClear();
}

pat::Finding patCDlgRefer::CheckDates(const std::vector<pat::Referral>& referrals) const
{
    const long nToday = pat::DayNumber(velCDate::Today());
    return pat::CheckReferralDates(referrals, nToday, pat::DayNumber(m_sheet.GetBirthdate()));
}

void patCDlgRefer::OnAdd()
{
    TakeEntry(static_cast<int>(m_referrals.size()));
}

void patCDlgRefer::OnChange()
{
    if (const int nRow = GetSelectedRow(); nRow >= 0)
        TakeEntry(nRow);
}

void patCDlgRefer::OnRemove()
{
    const int nRow = GetSelectedRow();
    if (nRow < 0)
        return;
    m_referrals.erase(m_referrals.begin() + nRow);
    m_listReferrals.DeleteItem(nRow);
    OnClear();
}

void patCDlgRefer::OnClear()
{
    m_listReferrals.SetItemState(-1, 0, LVIS_SELECTED | LVIS_FOCUSED);
    ShowEmptyEntry();
    GotoDlgCtrl(&m_listDoctor);
    UpdateControls();
}

bool patCDlgRefer::Check()
{
    return Report(pat::CheckReferralEntry(GetEntry(), GetSelected())) && Report(CheckDates(m_referrals)) &&
           Report(pat::CheckReferralsTwice(m_referrals));
}

// Only what the user changed here: the details page writes its referring doctor into the same rows.
void patCDlgRefer::CopyTo(dbCPatient& patient)
{
    dbCPatientReferralsContainer& rows = patient.GetReferrals();
    const auto findRow = [&rows](const std::string& strRowID) {
        int nRow = rows.GetCount() - 1;
        while (nRow >= 0 && rows[nRow].Get_refID() != strRowID.c_str())
            --nRow;
        return nRow;
    };
    const auto findReferral = [](const std::vector<pat::Referral>& referrals, const std::string& strRowID) {
        return std::find_if(referrals.begin(), referrals.end(),
                            [&](const pat::Referral& referral) { return referral.strRowID == strRowID; });
    };
    for (const pat::Referral& before : m_loaded)
    {
        const int nRow = findRow(before.strRowID);
        if (nRow < 0)
            continue;
        const auto now = findReferral(m_referrals, before.strRowID);
        if (now == m_referrals.end())
        {
            rows.RemoveAt(nRow);
            continue;
        }
        if (now->strDoctorID != before.strDoctorID)
            rows.UpdateDocID(nRow, now->strDoctorID.c_str());
        if (now->nDay != before.nDay)
            rows[nRow].Set_date(pat::DayDate(now->nDay));
        if (now->strNote != before.strNote)
            rows[nRow].Set_note(now->strNote.c_str());
    }
    for (const pat::Referral& referral : m_referrals)
    {
        if (referral.strRowID.empty())
            rows.AddReferralDoc(referral.strDoctorID.c_str(), pat::DayDate(referral.nDay),
                                referral.strNote.c_str());
    }
}
