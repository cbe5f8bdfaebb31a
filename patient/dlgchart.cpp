#include "patient/dlgchart.h"

#include "app/velapp.h"
#include "patient/chartrules.h"
#include "patient/chartsheet.h"
#include "patient/daynumber.h"
#include "patient/patientres.h"
#include "suite/dialogs/teethcontrol.h"
#include "suite/patients/records/dbpatients.h"

namespace
{
constexpr patContactControls contactControls{IDC_CHART_ADDRESS_HOME,
                                             IDC_CHART_ADDRESS_OFFICE,
                                             IDC_CHART_COMPANY,
                                             IDC_CHART_STREET,
                                             IDC_CHART_CITY,
                                             IDC_CHART_STATE,
                                             IDC_CHART_POSTALCODE,
                                             IDC_CHART_COUNTRY,
                                             IDC_CHART_EMAIL,
                                             {IDC_CHART_PHONE1, IDC_CHART_PHONE2},
                                             {IDC_CHART_PHONETYPE1, IDC_CHART_PHONETYPE2}};

constexpr int genderFemale = 1;
constexpr int genderMale = 2;

template <std::size_t N> void FillList(CComboBox& list, const std::array<pat::Code, N>& codes)
{
    list.ResetContent();
    for (const pat::Code& code : codes)
        list.SetItemData(list.AddString(code.pszText), static_cast<DWORD_PTR>(code.nCode));
    list.SetCurSel(0);
}
} // namespace

patCDlgChart::patCDlgChart(patCChartSheet& sheet)
    : patCSheetPage(sheet, IDD_PATIENT_CHART, pat::ChartPage), m_contact(contactControls)
{
}

void patCDlgChart::DoDataExchange(CDataExchange* pDX)
{
    patCSheetPage::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_CHART_ID, m_editID);
    DDX_Control(pDX, IDC_CHART_GENDER_IDENTITY, m_listGenderIdentity);
    DDX_Control(pDX, IDC_CHART_RACE, m_listRace);
    DDX_Control(pDX, IDC_CHART_TEETH, m_wndTeeth);
    // No message for a long ID: the field does not take more, and the check of the ID refuses one all the
    // same.
    DDX_Text(pDX, IDC_CHART_ID, m_strID);
    DDX_Text(pDX, IDC_CHART_FIRSTNAME, m_strFirstname);
    DDV_MaxChars(pDX, m_strFirstname, pat::MaxName);
    DDX_Text(pDX, IDC_CHART_LASTNAME, m_strLastname);
    DDV_MaxChars(pDX, m_strLastname, pat::MaxName);
    DDX_Text(pDX, IDC_CHART_NICKNAME, m_strNickname);
    DDV_MaxChars(pDX, m_strNickname, pat::MaxNickname);
    DDX_DateTimeCtrl(pDX, IDC_CHART_BIRTHDATE, m_dateBirth);
    m_dateBirth = pat::WholeDay(m_dateBirth);
    DDX_Radio(pDX, IDC_CHART_GENDER_FIRST, m_nGenderButton);
    m_contact.DoDataExchange(pDX);
}

BOOL patCDlgChart::OnInitDialog()
{
    patCSheetPage::OnInitDialog();
    FillLists();
    m_contact.Initialise(m_sheet.GetDefaultCountry());
    if (m_sheet.IsNewPatient())
    {
        if (const dbCPatient* pData = m_sheet.GetInitialData())
            LoadRecord(*pData);
    }
    else if (m_sheet.LoadExistingPatient())
        LoadRecord(m_sheet.GetPatient());
    m_strLoadedID = m_strID;
    UpdateData(FALSE);
    ConnectTeeth();
    return TRUE;
}

void patCDlgChart::FillLists()
{
    FillList(m_listGenderIdentity, pat::GenderIdentities);
    FillList(m_listRace, pat::Races);
}

void patCDlgChart::LoadRecord(const dbCPatient& patient)
{
    m_strID = patient.GetID();
    m_strFirstname = patient.GetFirstname(patNameAsEntered);
    m_strLastname = patient.GetLastname(patNameAsEntered);
    m_strNickname = patient.GetNickname();
    m_dateBirth = patient.GetBirthdate();
    m_nGenderButton = patient.GetGender() == genderFemale ? 0 : 1;
    m_listGenderIdentity.SetCurSel(pat::FindCode(pat::GenderIdentities, patient.GetGenderIdentity()));
    m_listRace.SetCurSel(pat::FindCode(pat::Races, patient.GetRace()));
    m_contact.Load(patient.GetAddresses(), patient.GetPhones(), patient.GetEmail());
}

// The control edits the record's timepoints, so there is nothing for it to do without any.
void patCDlgChart::ConnectTeeth()
{
    dbCPatient& patient = m_sheet.GetPatient();
    m_wndTeeth.EnableWindow(!m_sheet.IsNewPatient() && !patient.GetTimepoints().IsEmpty());
    m_wndTeeth.SendMessage(WM_TEETH_SETPATIENT, 0, reinterpret_cast<LPARAM>(&patient));
}

bool patCDlgChart::Check()
{
    return Report(pat::CheckRequired(m_strID.GetString(), m_strFirstname.GetString(),
                                     m_strLastname.GetString())) &&
           Report(pat::CheckID(m_strID.GetString())) && CheckBirthdate() && Report(m_contact.CheckPhone(0)) &&
           Report(m_contact.CheckPhone(1));
}

bool patCDlgChart::CheckBirthdate()
{
    if (patCPatients::IsDOBValid(m_dateBirth, TRUE))
        return true;
    return Report(pat::Finding::Failed(0, IDC_CHART_BIRTHDATE)); // the library has told the user why
}

bool patCDlgChart::CheckUniqueID()
{
    if (pat::IsOwnID(m_sheet.IsNewPatient(), m_strID.GetString(), m_strLoadedID.GetString()) ||
        VelApp()->GetPatients()->IsIDFree(m_strID))
        return true;
    ReportTakenID();
    return false;
}

void patCDlgChart::ReportTakenID()
{
    Report(pat::Finding::Failed(IDS_PATIENT_ID_TAKEN, IDC_CHART_ID));
    m_editID.SetSel(0, -1);
}

void patCDlgChart::CopyTo(dbCPatient& patient)
{
    patient.SetID(m_strID, TRUE);
    patient.SetFirstname(m_strFirstname);
    patient.SetLastname(m_strLastname);
    patient.SetNickname(m_strNickname);
    patient.SetEmail(m_contact.m_strEmail);
    patient.SetBirthdate(m_dateBirth);
    patient.SetGender(m_nGenderButton == 0 ? genderFemale : genderMale);
    patient.SetGenderIdentity(m_listGenderIdentity.GetCurSel());
    patient.SetRace(static_cast<int>(m_listRace.GetItemData(m_listRace.GetCurSel())));
    m_contact.StoreAddress(patient.GetAddresses());
    m_contact.StorePhones(patient.GetPhones());
    if (m_wndTeeth.IsWindowEnabled())
        m_wndTeeth.SendMessage(WM_TEETH_STORE);
}
