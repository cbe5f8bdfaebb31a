#include "patient/dlgchart.h"

#include "app/velapp.h"
#include "patient/rules/chartrules.h"
#include "patient/chartsheet.h"
#include "patient/contactfields.h"
#include "patient/patientres.h"
#include "suite/dialogs/teethcontrol.h"
#include "suite/patients/records/dbpatients.h"

namespace
{

constexpr patContactControls contactControls{IDC_CHART_ADDRESS_HOME,
                                             IDC_CHART_COMPANY,
                                             IDC_CHART_STREET,
                                             IDC_CHART_CITY,
                                             IDC_CHART_STATE,
                                             IDC_CHART_POSTALCODE,
                                             IDC_CHART_COUNTRY,
                                             IDC_CHART_EMAIL,
                                             {IDC_CHART_PHONE1, IDC_CHART_PHONE2},
                                             {IDC_CHART_PHONETYPE1, IDC_CHART_PHONETYPE2}};

// No limit for the ID: the field does not take more, and the check of the ID refuses a long one without a
// message.
patTFieldTable<dbCPatient> MakeTable()
{
    patTFieldTable<dbCPatient> table{
        patTextField<dbCPatient>(IDC_CHART_ID, 0, &dbCPatient::GetID,
                                 [](dbCPatient& patient, LPCTSTR pszID) { patient.SetID(pszID, TRUE); }),
        patTextField<dbCPatient>(
            IDC_CHART_FIRSTNAME, pat::MaxName,
            [](const dbCPatient& patient) { return patient.GetFirstname(patNameAsEntered); },
            &dbCPatient::SetFirstname),
        patTextField<dbCPatient>(
            IDC_CHART_LASTNAME, pat::MaxName,
            [](const dbCPatient& patient) { return patient.GetLastname(patNameAsEntered); },
            &dbCPatient::SetLastname),
        patTextField<dbCPatient>(IDC_CHART_NICKNAME, pat::MaxNickname, &dbCPatient::GetNickname,
                                 &dbCPatient::SetNickname),
        patDateField<dbCPatient>(IDC_CHART_BIRTHDATE, &dbCPatient::GetBirthdate, &dbCPatient::SetBirthdate),
        patGenderField<dbCPatient>(IDC_CHART_GENDER_FIRST),
        patCodeField<dbCPatient>(patFieldKind::Code, IDC_CHART_GENDER_IDENTITY,
                                 &dbCPatient::GetGenderIdentity, &dbCPatient::SetGenderIdentity),
        patCodeField<dbCPatient>(patFieldKind::Code, IDC_CHART_RACE, &dbCPatient::GetRace,
                                 &dbCPatient::SetRace),
    };
    for (patTField<dbCPatient>& row : patContactTable<dbCPatient>(contactControls))
        table.push_back(std::move(row));
    return table;
}

template <std::size_t N> void FillList(CWnd& page, int nControl, const std::array<pat::Code, N>& codes)
{
    CComboBox& list = *static_cast<CComboBox*>(page.GetDlgItem(nControl));
    list.ResetContent();
    for (const pat::Code& code : codes)
        list.SetItemData(list.AddString(code.pszText), static_cast<DWORD_PTR>(code.nCode));
}

} // namespace

BEGIN_MESSAGE_MAP(patCDlgChart, patCSheetPage)
ON_BN_CLICKED(IDC_CHART_GENDER_FIRST, &patCDlgChart::OnGender)
ON_BN_CLICKED(IDC_CHART_GENDER_SECOND, &patCDlgChart::OnGender)
END_MESSAGE_MAP()

patCDlgChart::patCDlgChart(patCChartSheet& sheet)
    : patCSheetPage(sheet, IDD_PATIENT_CHART, pat::ChartPage), m_fields(MakeTable())
{
}

void patCDlgChart::DoDataExchange(CDataExchange* pDX)
{
    patCSheetPage::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_CHART_ID, m_editID);
    DDX_Control(pDX, IDC_CHART_TEETH, m_wndTeeth);
    m_fields.DoDataExchange(pDX);
}

BOOL patCDlgChart::OnInitDialog()
{
    patCSheetPage::OnInitDialog();
    FillList(*this, IDC_CHART_GENDER_IDENTITY, pat::GenderIdentities);
    FillList(*this, IDC_CHART_RACE, pat::Races);
    patFillPhoneTypes(*this, contactControls);
    m_sheet.LoadPatient();
    const dbCPatient& patient = m_sheet.GetPatient();
    m_fields.Load(patient);
    UpdateData(FALSE);
    m_fields.TakeAsLoaded(*this);
    if (m_sheet.IsNewPatient())
        m_fields.SetChosen(IDC_CHART_GENDER_FIRST); // of a stored patient, "not known" stays what it is
    if (patient.GetAddresses().IsEmpty())
        m_fields[IDC_CHART_COUNTRY].strText = m_sheet.GetDefaultCountry();
    UpdateData(FALSE);
    m_strLoadedID = GetID();
    ConnectTeeth();
    return TRUE;
}

void patCDlgChart::OnGender()
{
    m_fields.SetChosen(IDC_CHART_GENDER_FIRST);
}

// The control edits the record's timepoints, so there is nothing for it to do without any.
void patCDlgChart::ConnectTeeth()
{
    m_teeth = m_sheet.GetPatient();
    m_wndTeeth.EnableWindow(!m_sheet.IsNewPatient() && !m_teeth.GetTimepoints().IsEmpty());
    m_wndTeeth.SendMessage(WM_TEETH_SETPATIENT, 0, reinterpret_cast<LPARAM>(&m_teeth));
}

const CString& patCDlgChart::GetID() const
{
    return m_fields.GetText(IDC_CHART_ID);
}

const CString& patCDlgChart::GetFirstname() const
{
    return m_fields.GetText(IDC_CHART_FIRSTNAME);
}

const CString& patCDlgChart::GetLastname() const
{
    return m_fields.GetText(IDC_CHART_LASTNAME);
}

const velCDate& patCDlgChart::GetBirthdate() const
{
    return m_fields[IDC_CHART_BIRTHDATE].date;
}

bool patCDlgChart::IsBirthdateChanged() const
{
    return m_fields.IsChanged(IDC_CHART_BIRTHDATE);
}

bool patCDlgChart::Check()
{
    return Report(pat::CheckRequired(GetID().GetString(), GetFirstname().GetString(),
                                     GetLastname().GetString())) &&
           Report(pat::CheckID(GetID().GetString())) && CheckBirthdate() &&
           Report(patCheckPhones(m_fields, contactControls));
}

bool patCDlgChart::CheckBirthdate()
{
    if (patCPatients::IsDOBValid(GetBirthdate(), TRUE))
        return true;
    return Report(pat::Finding::Failed(0, IDC_CHART_BIRTHDATE)); // the library has told the user why
}

bool patCDlgChart::CheckUniqueID()
{
    if (pat::IsOwnID(m_sheet.IsNewPatient(), GetID().GetString(), m_strLoadedID.GetString()) ||
        VelApp()->GetPatients()->IsIDFree(GetID()))
        return true;
    ReportID(IDS_PATIENT_ID_TAKEN);
    return false;
}

void patCDlgChart::ReportID(UINT nMessage)
{
    Report(pat::Finding::Failed(nMessage, IDC_CHART_ID, GetID().GetString()));
    m_editID.SetSel(0, -1);
}

void patCDlgChart::CopyTo(dbCPatient& patient)
{
    const bool bHadAddress = !patient.GetAddresses().IsEmpty();
    if (m_fields.Store(patient))
        patDropEmptyAddress(patient.GetAddresses(), bHadAddress);
    if (!m_wndTeeth.IsWindowEnabled())
        return;
    m_wndTeeth.SendMessage(WM_TEETH_STORE);
    patient.SetTeeth(m_teeth.GetTeeth());
}
