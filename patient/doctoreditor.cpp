#include "patient/doctoreditor.h"

#include "app/modalrun.h"
#include "app/velapp.h"
#include "patient/chartrules.h"
#include "patient/detailrules.h"
#include "patient/guardianrules.h"
#include "suite/util/velstring.h"

namespace
{

constexpr patContactControls contactControls{IDC_DOCTOR_ADDRESS_HOME,
                                             IDC_DOCTOR_ADDRESS_OFFICE,
                                             IDC_DOCTOR_COMPANY,
                                             IDC_DOCTOR_STREET,
                                             IDC_DOCTOR_CITY,
                                             IDC_DOCTOR_STATE,
                                             IDC_DOCTOR_POSTALCODE,
                                             IDC_DOCTOR_COUNTRY,
                                             IDC_DOCTOR_EMAIL,
                                             {IDC_DOCTOR_PHONE1, IDC_DOCTOR_PHONE2},
                                             {IDC_DOCTOR_PHONETYPE1, IDC_DOCTOR_PHONETYPE2}};

constexpr int officeButton = 1;

} // namespace

velCDlgEditDoctor::velCDlgEditDoctor(LPCTSTR doctorGUID, CWnd* pParent)
    : mfcCDialog(IDD_EDIT_DOCTOR, pParent), m_strGUID(doctorGUID), m_contact(contactControls)
{
}

void velCDlgEditDoctor::SetTreating()
{
    m_doctor.SetTreating(TRUE);
}

const CString& velCDlgEditDoctor::GetDoctorGUID() const
{
    return m_doctor.GetGUID();
}

void velCDlgEditDoctor::DoDataExchange(CDataExchange* pDX)
{
    mfcCDialog::DoDataExchange(pDX);
    DDX_Text(pDX, IDC_DOCTOR_TITLE, m_strTitle);
    DDV_MaxChars(pDX, m_strTitle, pat::MaxTitle);
    DDX_Text(pDX, IDC_DOCTOR_FIRSTNAME, m_strFirstname);
    DDV_MaxChars(pDX, m_strFirstname, pat::MaxName);
    DDX_Text(pDX, IDC_DOCTOR_LASTNAME, m_strLastname);
    DDV_MaxChars(pDX, m_strLastname, pat::MaxName);
    DDX_Control(pDX, IDC_DOCTOR_TYPE, m_listType);
    DDX_Check(pDX, IDC_DOCTOR_TREATING, m_bTreating);
    DDX_Text(pDX, IDC_DOCTOR_NOTES, m_strNotes);
    DDV_MaxChars(pDX, m_strNotes, pat::MaxDoctorNotes);
    m_contact.DoDataExchange(pDX);
}

BOOL velCDlgEditDoctor::OnInitDialog()
{
    mfcCDialog::OnInitDialog();
    if (!m_strGUID.IsEmpty() && !m_doctor.Load(m_strGUID))
    {
        AfxMessageBox(IDS_DOCTOR_LOAD_FAILED);
        EndDialog(IDCANCEL);
        return FALSE;
    }
    FillTypes();
    LoadFields();
    UpdateData(FALSE);
    return TRUE;
}

BOOL velCDlgEditDoctor::OnHelpKey(UINT nHelpID)
{
    VelApp()->ShowHelp(nHelpID);
    return TRUE;
}

void velCDlgEditDoctor::OnOK()
{
    if (!UpdateData(TRUE) || !Report(pat::CheckDoctorName(m_strLastname.GetString(), IDC_DOCTOR_LASTNAME)) ||
        !Report(m_contact.CheckPhone(0)) || !Report(m_contact.CheckPhone(1)) ||
        !Report(pat::CheckEmail(m_contact.m_strEmail.GetString(), IDC_DOCTOR_EMAIL)))
        return;
    StoreFields();
    if (velGuard(IDCANCEL, IDS_DOCTOR_SAVE_FAILED, [&]() -> INT_PTR {
            m_doctor.Save();
            return IDOK;
        }) == IDOK)
        EndDialog(IDOK);
}

void velCDlgEditDoctor::FillTypes()
{
    CString strNone;
    strNone.LoadString(IDS_DETAIL_NONE);
    m_listType.AddString(strNone);
    dbCDoctorTypes types;
    types.Load();
    for (const CString& strType : types)
        m_listType.AddString(strType);

    const CString& strType = m_doctor.GetType();
    int nEntry = strType.IsEmpty() ? 0 : m_listType.FindStringExact(0, strType);
    if (nEntry == CB_ERR)
        nEntry = m_listType.AddString(strType); // a type that was deleted meanwhile is kept as it is
    m_listType.SetCurSel(nEntry);
}

void velCDlgEditDoctor::LoadFields()
{
    const dbCPerson& person = m_doctor.GetPerson();
    m_strTitle = person.GetTitle();
    m_strFirstname = person.GetFirstname();
    m_strLastname = person.GetLastname();
    m_strNotes = person.GetNotes();
    m_bTreating = m_doctor.IsTreating();
    m_contact.Initialise(CString());
    m_contact.m_nAddressButton = officeButton;
    m_contact.Load(person.GetAddresses(), person.GetPhones(), person.GetEmail());
}

void velCDlgEditDoctor::StoreFields()
{
    dbCPerson& person = m_doctor.GetPerson();
    person.SetTitle(m_strTitle);
    person.SetFirstname(m_strFirstname);
    person.SetLastname(m_strLastname);
    person.SetNotes(m_strNotes);
    person.SetEmail(m_contact.m_strEmail);
    m_contact.StoreAddress(person.GetAddresses());
    m_contact.StorePhones(person.GetPhones());
    m_doctor.SetTreating(m_bTreating);
    CString strType;
    if (m_listType.GetCurSel() > 0)
        m_listType.GetLBText(m_listType.GetCurSel(), strType);
    m_doctor.SetType(strType);
}

bool velCDlgEditDoctor::Report(const pat::Finding& finding)
{
    if (finding.bPassed)
        return true;
    AfxMessageBox(velFormatTemplate(finding.nMessage, finding.strArgument.c_str()));
    if (CWnd* const pControl = GetDlgItem(static_cast<int>(finding.nControl)))
        GotoDlgCtrl(pControl);
    return false;
}
