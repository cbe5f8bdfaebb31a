#include "patient/dlgdtail.h"

#include "app/modalrun.h"
#include "maintenance/dlgeditkeywords.h"
#include "patient/chartsheet.h"
#include "patient/rules/detailrules.h"
#include "patient/doctoreditor.h"
#include "patient/rules/guardianrules.h"
#include "patient/patientres.h"
#include "suite/patients/records/dboffices.h"

#include <algorithm>
#include <cstring>

namespace
{

/// Room to set aside before doctors come in; more than this many still fit.
constexpr int expectedDoctors = 1000;

CString LoadText(UINT nID)
{
    CString strText;
    strText.LoadString(nID);
    return strText;
}

/// While a list is being filled it does not draw and has its room set aside: filling takes time in proportion
/// to the number of entries.
class CFilling
{
public:
    CFilling(CComboBox& list, int nExpected) : m_list(list)
    {
        constexpr UINT textPerEntry = 32;
        m_list.SetRedraw(FALSE);
        m_list.InitStorage(nExpected, static_cast<UINT>(nExpected) * textPerEntry);
    }
    ~CFilling()
    {
        m_list.SetRedraw(TRUE);
        m_list.Invalidate();
    }
    CFilling(const CFilling&) = delete;
    CFilling& operator=(const CFilling&) = delete;

private:
    CComboBox& m_list;
};

CString GetLinkedDoctor(const dbCPatient& patient, dbPersonKind nKind)
{
    dbCPerson person;
    return patient.GetPersonInfo(nKind, person) ? person.GetPersonGUID() : CString();
}

void LinkDoctor(dbCPatient& patient, dbPersonKind nKind, LPCTSTR pszGUID)
{
    if (*pszGUID == '\0')
    {
        patient.RemovePersonInfo(nKind);
        return;
    }
    dbCPerson doctor;
    doctor.SetPersonGUID(pszGUID);
    patient.SetPersonInfo(nKind, doctor);
}

patTFieldTable<dbCPatient> MakeTable()
{
    return {
        patTextField<dbCPatient>(IDC_DETAIL_TITLE, pat::MaxTitle, &dbCPatient::GetTitle,
                                 &dbCPatient::SetTitle),
        patTextField<dbCPatient>(IDC_DETAIL_MODEL, pat::MaxModelNumber, &dbCPatient::GetModelNumber,
                                 &dbCPatient::SetModelNumber),
        patTextField<dbCPatient>(IDC_DETAIL_SALUTATION, pat::MaxSalutation, &dbCPatient::GetSalutation,
                                 &dbCPatient::SetSalutation),
        patTextField<dbCPatient>(IDC_DETAIL_KEYWORDS, pat::MaxKeywords, &dbCPatient::GetKeywords,
                                 &dbCPatient::SetKeywords),
        patTextField<dbCPatient>(IDC_DETAIL_NOTES, pat::MaxNotes, &dbCPatient::GetNotes,
                                 &dbCPatient::SetNotes, patFieldKind::LongText),
        patTextField<dbCPatient>(IDC_DETAIL_OFFICE, 0, &dbCPatient::GetOfficeID, &dbCPatient::SetOfficeID,
                                 patFieldKind::ListedID),
        patTextField<dbCPatient>(IDC_DETAIL_STATUS, 0, &dbCPatient::GetStatusID, &dbCPatient::SetStatusID,
                                 patFieldKind::ListedID),
        patTextField<dbCPatient>(
            IDC_DETAIL_TREATING, 0,
            [](const dbCPatient& patient) { return GetLinkedDoctor(patient, dbPersonTreatingDoctor); },
            [](dbCPatient& patient, LPCTSTR pszGUID) {
                LinkDoctor(patient, dbPersonTreatingDoctor, pszGUID);
            },
            patFieldKind::ListedID),
    };
}

} // namespace

BEGIN_MESSAGE_MAP(patCDlgDtail, patCSheetPage)
ON_BN_CLICKED(IDC_DETAIL_EDIT_KEYWORDS, &patCDlgDtail::OnEditKeywords)
ON_BN_CLICKED(IDC_DETAIL_EDIT_TREATING, &patCDlgDtail::OnEditTreatingDoctor)
ON_BN_CLICKED(IDC_DETAIL_EDIT_REFERRING, &patCDlgDtail::OnEditReferringDoctor)
ON_CBN_SELCHANGE(IDC_DETAIL_TREATING, &patCDlgDtail::OnSelectTreatingDoctor)
ON_CBN_SELCHANGE(IDC_DETAIL_REFERRING, &patCDlgDtail::OnChooseReferringDoctor)
END_MESSAGE_MAP()

void patCDlgDtail::List::Begin(const CString& strPlaceholder)
{
    ResetContent();
    Append(strPlaceholder, "");
    SetCurSel(0);
}

void patCDlgDtail::List::Append(LPCTSTR pszText, const char* pszID)
{
    SetItemData(AddString(pszText), reinterpret_cast<DWORD_PTR>(pszID));
}

void patCDlgDtail::List::RemoveUpTo(int nEntry)
{
    for (int i = nEntry - 1; i > 0; --i)
        DeleteString(static_cast<UINT>(i));
}

void patCDlgDtail::List::Select(const char* pszID)
{
    const int nLast = *pszID != '\0' ? GetCount() - 1 : 0; // nothing to look for selects the placeholder
    for (int i = nLast; i > 0; --i)
    {
        if (std::strcmp(reinterpret_cast<const char*>(GetItemData(i)), pszID) == 0)
        {
            SetCurSel(i);
            return;
        }
    }
    SetCurSel(0);
}

CString patCDlgDtail::List::GetSelectedID() const
{
    const int nSelected = GetCurSel();
    return nSelected > 0 ? reinterpret_cast<const char*>(GetItemData(nSelected)) : "";
}

patCDlgDtail::patCDlgDtail(patCChartSheet& sheet)
    : patCSheetPage(sheet, IDD_PATIENT_DETAIL, pat::DetailPage), m_fields(MakeTable())
{
}

void patCDlgDtail::DoDataExchange(CDataExchange* pDX)
{
    patCSheetPage::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_DETAIL_STATUS, m_listStatus);
    DDX_Control(pDX, IDC_DETAIL_OFFICE, m_listOffice);
    DDX_Control(pDX, IDC_DETAIL_REFERRING, m_listReferringDoctor);
    DDX_Control(pDX, IDC_DETAIL_TREATING, m_listTreatingDoctor);
    m_fields.DoDataExchange(pDX);
}

BOOL patCDlgDtail::OnInitDialog()
{
    patCSheetPage::OnInitDialog();
    m_pDoctors = std::make_unique<dbCDoctors>();
    m_pTreatingDoctors = std::make_unique<dbCTreatingDoctors>();

    m_listTreatingDoctor.Begin(LoadText(IDS_DETAIL_SELECT_TREATING));
    m_listReferringDoctor.Begin(LoadText(IDS_REFER_SELECT_DOCTOR));
    m_listOffice.Begin(LoadText(IDS_DETAIL_NONE));
    m_listStatus.Begin(LoadText(IDS_DETAIL_NONE));

    // The texts need no database: what the user sees of them is what OK writes, whatever happens to the
    // lists.
    m_sheet.LoadPatient();
    const dbCPatient& patient = m_sheet.GetPatient();
    m_fields.Load(patient);
    UpdateData(FALSE);
    m_strReferringLink = m_strLoadedLink = GetLinkedDoctor(patient, dbPersonReferringDoctor);
    velGuard(0, IDS_DETAIL_FAILED, [&]() -> INT_PTR { return LoadLists(patient), 0; });
    m_fields.TakeAsLoaded(*this);
    return TRUE;
}

// The referral page may have changed the first referral meanwhile.
BOOL patCDlgDtail::OnSetActive()
{
    const BOOL bActive = patCSheetPage::OnSetActive();
    if (m_listReferringDoctor.GetSelectedID() != GetReferringDoctor())
    {
        m_listReferringDoctor.Select(GetReferringDoctor());
        OnSelectReferringDoctor();
    }
    return bActive;
}

void patCDlgDtail::LoadLists(const dbCPatient& patient)
{
    m_sheet.LoadReferrals();
    FillTreatingDoctors(GetLinkedDoctor(patient, dbPersonTreatingDoctor));
    FillReferringDoctors(GetReferringDoctor());
    FillOffices(patient.GetOfficeID());
    FillStatuses(patient.GetStatusID());
}

// The first referral stands for the referring doctor; a patient without referrals has only the link.
CString patCDlgDtail::GetReferringDoctor() const
{
    const std::vector<pat::Referral>& rows = m_sheet.GetReferrals().GetRows();
    return rows.empty() || rows.front().strDoctorID.empty() ? m_strReferringLink
                                                            : CString(rows.front().strDoctorID.c_str());
}

// When the doctors cannot be read, both lists keep what they show, so that OK changes nothing by itself.
void patCDlgDtail::FillTreatingDoctors(const CString& strSelectedGUID)
{
    const CFilling filling(m_listTreatingDoctor, expectedDoctors);
    const int nBefore = m_listTreatingDoctor.GetCount();
    m_pTreatingDoctors->EnumTreatingDoctors(m_listTreatingDoctor);
    m_listTreatingDoctor.RemoveUpTo(nBefore);
    m_listTreatingDoctor.Select(strSelectedGUID);
    ShowSummary(m_listTreatingDoctor, IDC_DETAIL_TREATING_SUMMARY);
}

void patCDlgDtail::FillReferringDoctors(const CString& strSelectedGUID)
{
    const CFilling filling(m_listReferringDoctor, expectedDoctors);
    const int nBefore = m_listReferringDoctor.GetCount();
    m_pDoctors->RegisterEnumCallback(&patCDlgDtail::AppendDoctor, &m_listReferringDoctor);
    m_pDoctors->Enum(dbDoctorsByName);
    m_listReferringDoctor.RemoveUpTo(nBefore);
    m_listReferringDoctor.Select(strSelectedGUID);
    ShowSummary(m_listReferringDoctor, IDC_DETAIL_REFERRING_SUMMARY);
}

BOOL patCDlgDtail::AppendDoctor(const dbSDoctorRow& row, LPVOID pList)
{
    static_cast<List*>(pList)->Append(pat::DoctorName(row.last, row.first).c_str(), row.guid.c_str());
    return TRUE;
}

void patCDlgDtail::FillOffices(const CString& strOfficeID)
{
    dbCOfficeLocations offices;
    offices.Load();
    const CFilling filling(m_listOffice, offices.GetCount());
    for (const dbCOfficeLocation& office : offices)
        AppendNamed(m_listOffice, office.GetOffice(), office.GetOfficeID());
    if (!strOfficeID.IsEmpty())
        SelectNamed(m_listOffice, dbCOfficeLocations::GetOffice(strOfficeID));
}

void patCDlgDtail::FillStatuses(const CString& strStatusID)
{
    dbCPatientStatusList statuses;
    statuses.Load();
    const CFilling filling(m_listStatus, statuses.GetCount());
    for (const dbCPatientStatus& status : statuses)
        AppendNamed(m_listStatus, status.GetStatus(), status.GetStatusID());
    if (!strStatusID.IsEmpty())
        SelectNamed(m_listStatus, dbCPatientStatusList::GetStatus(strStatusID));
}

void patCDlgDtail::AppendNamed(List& list, const CString& strName, const CString& strID)
{
    m_ids.push_back(std::make_unique<CString>(strID));
    list.Append(strName, m_ids.back()->GetString());
}

void patCDlgDtail::SelectNamed(List& list, const CString& strName)
{
    list.SetCurSel(std::max(strName.IsEmpty() ? 0 : list.FindStringExact(0, strName), 0));
}

void patCDlgDtail::ShowSummary(const List& list, int nControl)
{
    CString strSummary;
    dbCDoctor doctor;
    const CString strGUID = list.GetSelectedID();
    if (!strGUID.IsEmpty() && doctor.Load(strGUID))
    {
        if (doctor.GetPerson().GetAddresses().IsEmpty())
        {
            strSummary = LoadText(IDS_DETAIL_NO_ADDRESS);
        }
        else
        {
            const dbCAddress address = doctor.GetPerson().GetAddress(0);
            strSummary.Format(LoadText(IDS_DETAIL_SUMMARY), address.GetCompany().GetString(),
                              address.GetStreet().GetString(), address.GetCity().GetString(),
                              address.GetState().GetString(), address.GetPostalCode().GetString());
        }
    }
    SetDlgItemText(nControl, strSummary);
}

void patCDlgDtail::OnSelectTreatingDoctor()
{
    velGuard(0, IDS_DETAIL_FAILED,
             [&]() -> INT_PTR { return ShowSummary(m_listTreatingDoctor, IDC_DETAIL_TREATING_SUMMARY), 0; });
}

// A doctor takes the place of the first referral's. The placeholder means that none is chosen here; a
// referral with its date and note is the referral page's to remove.
void patCDlgDtail::OnChooseReferringDoctor()
{
    const CString strGUID = m_listReferringDoctor.GetSelectedID();
    CString strName;
    m_listReferringDoctor.GetWindowText(strName);
    if (m_sheet.GetReferrals().GetRows().empty() || strGUID.IsEmpty())
        m_strReferringLink = strGUID;
    m_sheet.GetReferrals().SetFirstDoctor(strGUID.GetString(), strName.GetString());
    OnSelectReferringDoctor();
}

void patCDlgDtail::OnSelectReferringDoctor()
{
    velGuard(0, IDS_DETAIL_FAILED, [&]() -> INT_PTR {
        return ShowSummary(m_listReferringDoctor, IDC_DETAIL_REFERRING_SUMMARY), 0;
    });
}

void patCDlgDtail::OnEditTreatingDoctor()
{
    EditDoctor(m_listTreatingDoctor, true);
}

void patCDlgDtail::OnEditReferringDoctor()
{
    EditDoctor(m_listReferringDoctor, false);
}

void patCDlgDtail::EditDoctor(List& list, bool bTreating)
{
    velGuard(0, IDS_DETAIL_FAILED, [&]() -> INT_PTR {
        const CString strSelected = list.GetSelectedID();
        velCDlgEditDoctor editor(strSelected, this);
        if (bTreating && strSelected.IsEmpty())
            editor.SetTreating();
        if (velRunModal(editor) != IDOK)
            return 0;
        const CString& strEdited = editor.GetDoctorGUID();
        FillTreatingDoctors(bTreating ? strEdited : m_listTreatingDoctor.GetSelectedID());
        FillReferringDoctors(bTreating ? m_listReferringDoctor.GetSelectedID() : strEdited);
        if (!bTreating)
            OnChooseReferringDoctor();
        return 0;
    });
}

void patCDlgDtail::OnEditKeywords()
{
    velEditKeywords(this, INI_LIST_PATIENT);
}

void patCDlgDtail::CopyTo(dbCPatient& patient)
{
    m_fields.Store(patient);
    if (m_strReferringLink != m_strLoadedLink)
        LinkDoctor(patient, dbPersonReferringDoctor, m_strReferringLink);
}
