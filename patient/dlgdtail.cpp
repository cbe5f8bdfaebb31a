#include "patient/dlgdtail.h"

#include "app/modalrun.h"
#include "maintenance/dlgeditkeywords.h"
#include "patient/chartsheet.h"
#include "patient/detailrules.h"
#include "patient/doctoreditor.h"
#include "patient/guardianrules.h"
#include "patient/patientres.h"
#include "suite/patients/records/dboffices.h"
#include "suite/patients/records/dbpatient.h"

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

/// The doctor of the patient's first referral, else the doctor linked to the patient.
CString GetReferringDoctor(const dbCPatient& patient)
{
    CString strGUID;
    dbCPatientReferralsContainer referrals;
    if (!patient.GetGUID().IsEmpty() && referrals.LoadWithDoctor(patient.GetGUID()))
        strGUID = referrals[0].Get_docID();
    return strGUID.IsEmpty() ? GetLinkedDoctor(patient, dbPersonReferringDoctor) : strGUID;
}

void LinkDoctor(dbCPatient& patient, dbPersonKind nKind, const CString& strGUID)
{
    if (strGUID.IsEmpty())
    {
        patient.RemovePersonInfo(nKind);
        return;
    }
    dbCPerson doctor;
    doctor.SetPersonGUID(strGUID);
    patient.SetPersonInfo(nKind, doctor);
}

/// The first referral stands for the referring doctor; a patient without referrals has only the link.
void SetReferringDoctor(dbCPatient& patient, const CString& strGUID)
{
    dbCPatientReferralsContainer& referrals = patient.GetReferrals();
    if (referrals.IsEmpty() || strGUID.IsEmpty())
        LinkDoctor(patient, dbPersonReferringDoctor, strGUID);
    if (referrals.IsEmpty())
        return;
    if (strGUID.IsEmpty())
        referrals.RemoveAt(0);
    else
        referrals.UpdateDocID(0, strGUID);
}

} // namespace

BEGIN_MESSAGE_MAP(patCDlgDtail, patCSheetPage)
ON_BN_CLICKED(IDC_DETAIL_EDIT_KEYWORDS, &patCDlgDtail::OnEditKeywords)
ON_BN_CLICKED(IDC_DETAIL_EDIT_TREATING, &patCDlgDtail::OnEditTreatingDoctor)
ON_BN_CLICKED(IDC_DETAIL_EDIT_REFERRING, &patCDlgDtail::OnEditReferringDoctor)
ON_CBN_SELCHANGE(IDC_DETAIL_TREATING, &patCDlgDtail::OnSelectTreatingDoctor)
ON_CBN_SELCHANGE(IDC_DETAIL_REFERRING, &patCDlgDtail::OnSelectReferringDoctor)
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

bool patCDlgDtail::List::IsChanged() const
{
    return GetSelectedID() != strLoaded;
}

patCDlgDtail::patCDlgDtail(patCChartSheet& sheet) : patCSheetPage(sheet, IDD_PATIENT_DETAIL, pat::DetailPage)
{
}

void patCDlgDtail::DoDataExchange(CDataExchange* pDX)
{
    patCSheetPage::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_DETAIL_STATUS, m_listStatus);
    DDX_Control(pDX, IDC_DETAIL_OFFICE, m_listOffice);
    DDX_Control(pDX, IDC_DETAIL_REFERRING, m_listReferringDoctor);
    DDX_Control(pDX, IDC_DETAIL_TREATING, m_listTreatingDoctor);
    DDX_Text(pDX, IDC_DETAIL_MODEL, m_strModelNumber);
    DDV_MaxChars(pDX, m_strModelNumber, pat::MaxModelNumber);
    DDX_Text(pDX, IDC_DETAIL_KEYWORDS, m_strKeywords);
    DDV_MaxChars(pDX, m_strKeywords, pat::MaxKeywords);
    DDX_Text(pDX, IDC_DETAIL_TITLE, m_strTitle);
    DDV_MaxChars(pDX, m_strTitle, pat::MaxTitle);
    DDX_Text(pDX, IDC_DETAIL_SALUTATION, m_strSalutation);
    DDV_MaxChars(pDX, m_strSalutation, pat::MaxSalutation);
    DDX_Text(pDX, IDC_DETAIL_NOTES, m_strNotes);
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
    if (!m_sheet.IsNewPatient())
        m_sheet.LoadExistingPatient();
    const dbCPatient& patient = m_sheet.GetPatient();
    if (patient.IsValid())
        LoadTexts(patient);
    velGuard(0, IDS_DETAIL_FAILED, [&]() -> INT_PTR { return LoadLists(patient), 0; });
    static_cast<CEdit*>(GetDlgItem(IDC_DETAIL_NOTES))->SetLimitText(pat::MaxNotes);
    return TRUE;
}

void patCDlgDtail::LoadTexts(const dbCPatient& patient)
{
    m_strModelNumber = patient.GetModelNumber();
    m_strKeywords = patient.GetKeywords();
    m_strTitle = patient.GetTitle();
    m_strSalutation = patient.GetSalutation();
    m_strNotes = patient.GetNotes();
    UpdateData(FALSE);
}

void patCDlgDtail::LoadLists(const dbCPatient& patient)
{
    FillTreatingDoctors(GetLinkedDoctor(patient, dbPersonTreatingDoctor));
    FillReferringDoctors(GetReferringDoctor(patient));
    FillOffices(patient.GetOfficeID());
    FillStatuses(patient.GetStatusID());
    for (List* const pList : {&m_listTreatingDoctor, &m_listReferringDoctor, &m_listOffice, &m_listStatus})
        pList->strLoaded = pList->GetSelectedID();
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
        return 0;
    });
}

void patCDlgDtail::OnEditKeywords()
{
    velEditKeywords(this, INI_LIST_PATIENT);
}

void patCDlgDtail::CopyTo(dbCPatient& patient)
{
    patient.SetModelNumber(m_strModelNumber);
    patient.SetKeywords(m_strKeywords);
    patient.SetTitle(m_strTitle);
    patient.SetSalutation(m_strSalutation);
    patient.SetNotes(m_strNotes);
    if (m_listOffice.IsChanged())
        patient.SetOfficeID(m_listOffice.GetSelectedID());
    if (m_listStatus.IsChanged())
        patient.SetStatusID(m_listStatus.GetSelectedID());
    if (m_listTreatingDoctor.IsChanged())
        LinkDoctor(patient, dbPersonTreatingDoctor, m_listTreatingDoctor.GetSelectedID());
    if (m_listReferringDoctor.IsChanged())
        SetReferringDoctor(patient, m_listReferringDoctor.GetSelectedID());
}
