#include "patient/chartsheet.h"

#include "app/modalrun.h"
#include "app/velapp.h"
#include "patient/rules/chartrules.h"
#include "patient/patientres.h"
#include "suite/patients/store/dbexception.h"
#include "suite/patients/records/dbpatients.h"
#include "suite/patients/store/dbtransaction.h"
#include "suite/util/velini.h"

namespace
{

/// A new patient with everything about the person that a stored one has. What is the stored patient's alone
/// stays behind: identity, timepoints, and the guardian's and the policies' own ids.
std::unique_ptr<dbCPatient> CopyAsNew(const dbCPatient& stored)
{
    auto pNew = std::make_unique<dbCPatient>();
    dbCPatient& patient = *pNew;
    patient.SetID(stored.GetID());
    patient.SetFirstname(stored.GetFirstname(patNameAsEntered));
    patient.SetLastname(stored.GetLastname(patNameAsEntered));
    patient.SetNickname(stored.GetNickname());
    patient.SetBirthdate(stored.GetBirthdate());
    patient.SetGender(stored.GetGender());
    patient.SetGenderIdentity(stored.GetGenderIdentity());
    patient.SetRace(stored.GetRace());
    patient.SetEmail(stored.GetEmail());
    patient.SetTitle(stored.GetTitle());
    patient.SetSalutation(stored.GetSalutation());
    patient.SetModelNumber(stored.GetModelNumber());
    patient.SetKeywords(stored.GetKeywords());
    patient.SetNotes(stored.GetNotes());
    patient.SetOfficeID(stored.GetOfficeID());
    patient.SetStatusID(stored.GetStatusID());
    patient.SetNorm(stored.GetNorm());
    patient.GetAddresses() = stored.GetAddresses();
    patient.GetPhones() = stored.GetPhones();
    for (const int nKind : {dbPersonGuardian, dbPersonTreatingDoctor, dbPersonReferringDoctor})
    {
        dbCPerson person;
        if (!stored.GetPersonInfo(nKind, person))
            continue;
        if (nKind == dbPersonGuardian)
            person.SetPersonGUID("");
        patient.AddPersonInfo(nKind, person);
    }
    for (dbCInsurance insurance : stored.GetInsurances())
    {
        insurance.SetInsuranceGUID(dbCInsurance().GetInsuranceGUID());
        patient.AssignInsurance(insurance);
    }
    for (dbCPatientReferralsRow row : stored.GetReferrals())
    {
        row.Set_refID("");
        patient.GetReferrals().Add(row);
    }
    return pNew;
}

} // namespace

IMPLEMENT_DYNAMIC(patCChartSheet, CPropertySheet)

BEGIN_MESSAGE_MAP(patCChartSheet, CPropertySheet)
ON_COMMAND(IDOK, &patCChartSheet::OnOK)
ON_COMMAND(IDC_SHEET_HELP, &patCChartSheet::OnHelpButton)
END_MESSAGE_MAP()

patCChartSheet::patCChartSheet(CString& resultId, LPCTSTR caption, CWnd* parent, UINT startPage,
                               LPCTSTR existingId, dbCPatient* initialData)
    : CPropertySheet(caption, parent, startPage), m_pageChart(*this), m_pageDetail(*this), m_pageGuard(*this),
      m_pageRefer(*this), m_pageInsurance(*this), m_pPatient(initialData), m_strExistingID(existingId),
      m_pResultID(&resultId), m_strDefaultCountry(velGetIniString("Defaults", "Country", ""))
{
    // A record that is in the database would be changed by saving it, not entered as a new patient.
    if (initialData == nullptr)
        m_pOwnPatient = std::make_unique<dbCPatient>();
    else if (initialData->IsValid())
        m_pOwnPatient = CopyAsNew(*initialData);
    if (m_pOwnPatient)
        m_pPatient = m_pOwnPatient.get();
    AddPages();
}

patCSheetPage& patCChartSheet::GetPage(int nPage)
{
    patCSheetPage* const pages[] = {&m_pageChart, &m_pageDetail, &m_pageGuard, &m_pageRefer,
                                    &m_pageInsurance};
    return *pages[nPage];
}

void patCChartSheet::AddPages()
{
    for (int nPage = 0; nPage < pat::PageCount; ++nPage)
    {
        patCSheetPage& page = GetPage(nPage);
        page.m_psp.dwFlags &= ~static_cast<DWORD>(PSP_HASHELP);
        AddPage(&page);
    }
}

BOOL patCChartSheet::OnInitDialog()
{
    const BOOL bFocus = CPropertySheet::OnInitDialog();
    DressFrame();
    if (m_nLoaded == LOADED::Failed)
        m_btnOK.EnableWindow(FALSE);
    return bFocus;
}

// The frame's own buttons and tabs, and a button for help at the left end of the row of buttons.
void patCChartSheet::DressFrame()
{
    m_btnOK.SubclassDlgItem(IDOK, this);
    m_btnCancel.SubclassDlgItem(IDCANCEL, this);
    m_tabs.SubclassWindow(GetTabControl()->GetSafeHwnd());

    CRect rectTabs;
    m_tabs.GetWindowRect(rectTabs);
    ScreenToClient(rectTabs);
    CRect rectHelp;
    m_btnOK.GetWindowRect(rectHelp);
    ScreenToClient(rectHelp);
    rectHelp.OffsetRect(rectTabs.left - rectHelp.left, 0);
    rectHelp.right = rectHelp.left + rectHelp.Height();
    CString strHelp;
    strHelp.LoadString(IDS_SHEET_HELP);
    m_btnHelp.Create(strHelp, WS_CHILD | WS_VISIBLE | WS_TABSTOP | BS_PUSHBUTTON, rectHelp, this,
                     IDC_SHEET_HELP);
    m_btnHelp.SetFont(GetFont());
}

BOOL patCChartSheet::PreTranslateMessage(MSG* pMsg)
{
    if (pMsg->message == WM_KEYDOWN && pMsg->wParam == VK_F1)
    {
        OnHelpButton(); // the focus is on the frame; the pages take their own
        return TRUE;
    }
    return CPropertySheet::PreTranslateMessage(pMsg);
}

void patCChartSheet::OnHelpButton()
{
    VelApp()->ShowHelp(GetPage(GetActiveIndex()).GetHelpID());
}

bool patCChartSheet::LoadPatient()
{
    if (IsNewPatient())
        return true;
    if (m_nLoaded != LOADED::NotYet)
        return m_nLoaded == LOADED::Yes;
    m_nLoaded = LOADED::Failed;
    try
    {
        const BOOL bIsGUID = dbCPatients::IsGUID(m_strExistingID);
        if (m_pPatient->Load(m_strExistingID, !bIsGUID, bIsGUID))
            m_nLoaded = LOADED::Yes;
    }
    catch (dbCException* e)
    {
        e->Delete();
    }
    if (m_nLoaded == LOADED::Failed)
    {
        if (m_btnOK.GetSafeHwnd() != nullptr)
            m_btnOK.EnableWindow(FALSE);
        AfxMessageBox(IDS_PATIENT_LOAD_FAILED);
    }
    return m_nLoaded == LOADED::Yes;
}

void patCChartSheet::LoadReferrals()
{
    if (LoadPatient())
        m_referrals.Load(*m_pPatient);
}

void patCChartSheet::ShowPage(int nPage)
{
    if (GetActiveIndex() == nPage)
        return;
    m_bShowingPage = true;
    SetActivePage(nPage);
    m_bShowingPage = false;
}

// Whatever goes wrong is told, and the sheet stays open with what the user entered.
void patCChartSheet::OnOK()
{
    if (m_nLoaded == LOADED::Failed)
        return;
    velGuard(0, IDS_PATIENT_SAVE_FAILED, [&]() -> INT_PTR {
        if (TransferPages() && RunSteps() && SavePatient())
        {
            *m_pResultID = m_pageChart.GetID();
            EndDialog(IDOK);
        }
        return 0;
    });
}

bool patCChartSheet::TransferPages()
{
    const CWaitCursor wait;
    for (int nPage = 0; nPage < pat::PageCount; ++nPage)
    {
        if (m_bPageInitialised[nPage] && !GetPage(nPage).UpdateData(TRUE))
        {
            ShowPage(nPage);
            return false;
        }
    }
    return true;
}

bool patCChartSheet::RunSteps()
{
    pat::SheetState state;
    state.bNewPatient = IsNewPatient();
    for (int nPage = 0; nPage < pat::PageCount; ++nPage)
        state.opened[static_cast<std::size_t>(nPage)] = m_bPageInitialised[nPage] != FALSE;
    state.nPracticeManagement = VelApp()->GetPracticeManagement();
    state.guardianLastname = m_pageGuard.GetLastname().GetString();
    state.bDatesChanged = m_pageChart.IsBirthdateChanged() || m_referrals.IsChanged();
    for (const pat::Step nStep : pat::StepsOfOK(state))
    {
        const CWaitCursor wait; // once more: a message of the step before has put the arrow back
        if (!RunStep(nStep))
            return false;
    }
    return true;
}

bool patCChartSheet::RunStep(pat::Step nStep)
{
    switch (nStep)
    {
    case pat::Step::ChartFields:
        return m_pageChart.Check();
    case pat::Step::UniqueID:
        return m_pageChart.CheckUniqueID();
    case pat::Step::GuardianFields:
        return m_pageGuard.Check();
    case pat::Step::ReferralFields:
        return m_pageRefer.Check();
    case pat::Step::ReferralDates:
        LoadReferrals();
        return m_pageRefer.CheckDates();
    case pat::Step::InsuranceFields:
        return m_pageInsurance.Check();
    case pat::Step::SimilarPatient:
        return ConfirmSimilarPatient();
    case pat::Step::BillingParty:
        return ConfirmBillingParty();
    }
    return false;
}

bool patCChartSheet::ConfirmSimilarPatient()
{
    const CString& strFirstname = m_pageChart.GetFirstname();
    const CString& strLastname = m_pageChart.GetLastname();
    const velCDate& dateBirth = m_pageChart.GetBirthdate();
    if (!VelApp()->GetPatients()->FindSimilar(strFirstname, strLastname, dateBirth))
        return true;
    CString strQuestion;
    strQuestion.Format(IDS_PATIENT_SIMILAR, strFirstname.GetString(), strLastname.GetString(),
                       dateBirth.FormatDate().GetString());
    CString strCaption;
    strCaption.LoadString(IDS_PATIENT_SIMILAR_CAPTION);
    return MessageBox(strQuestion, strCaption, MB_YESNO) == IDYES;
}

bool patCChartSheet::ConfirmBillingParty()
{
    if (AfxMessageBox(IDS_PATIENT_BILLING_PARTY, MB_YESNO | MB_ICONQUESTION) == IDYES)
        return true;
    ShowPage(pat::GuardianPage);
    return false;
}

bool patCChartSheet::SavePatient()
{
    if (pat::IsDeviceID(m_pageChart.GetID().GetString()))
    {
        m_pageChart.ReportID(IDS_PATIENT_ID_DEVICE);
        return false;
    }
    dbCPatient scratch(*m_pPatient);
    try
    {
        const CWaitCursor wait;
        dbCTransaction transaction;
        CopyPages(scratch);
        scratch.Save();
        transaction.Commit();
    }
    catch (dbCException* e)
    {
        const dbError nError = e->GetError();
        if (nError != dbErrDuplicateID && nError != dbErrDuplicateGUID)
            throw;
        e->Delete();
        if (nError == dbErrDuplicateID)
            m_pageChart.ReportID(IDS_PATIENT_ID_TAKEN); // another process took it after it was checked
        else
            AfxMessageBox(IDS_PATIENT_GUID_TAKEN); // the record came with its own
        return false;
    }
    *m_pPatient = std::move(scratch);
    return true;
}

void patCChartSheet::CopyPages(dbCPatient& patient)
{
    for (const pat::Page nPage : pat::CopyOrder)
    {
        if (m_bPageInitialised[nPage])
            GetPage(nPage).CopyTo(patient);
    }
    m_referrals.Store(patient);
}
