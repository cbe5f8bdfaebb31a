#include "cloud/download/downloadlist.h"

#include "app/appres.h"
#include "app/modalrun.h"
#include "app/velapp.h"
#include "cloud/download/waitdialogs.h"
#include "cloud/net/serviceoptions.h"
#include "cloud/protocol/servicetime.h"
#include "cloud/res/cloudres.h"
#include "suite/util/velini.h"

#include <array>

namespace
{
constexpr mfcAnchor Anchors[] = {{IDC_CLD_LIST_LABEL, mfcStretchTop}, {IDC_CLD_LIST, mfcStretchAll},
                                 {IDC_CLD_GROUP, mfcStretchBottom},   {IDC_CLD_UNCROPPED, mfcBottomLeft},
                                 {IDC_CLD_OTHER, mfcBottomLeft},      {IDC_CLD_3D, mfcBottomLeft},
                                 {IDC_CLD_HINT, mfcStretchBottom},    {IDOK, mfcBottomRight},
                                 {IDCANCEL, mfcBottomRight},          {IDHELP, mfcBottomRight}};

/// Columns of the list in their order, with their widths in dialog units.
enum Column
{
    ColumnRecord,
    ColumnName,
    ColumnOwner,
    ColumnTime,
    ColumnID,
    ColumnGUID
};
constexpr std::array<int, 6> Widths = {40, 100, 90, 76, 60, 130};

constexpr std::array<LPCSTR, 3> ChoiceKeys = {"DownloadUncropped", "DownloadOther", "Download3D"};
} // namespace

BEGIN_MESSAGE_MAP(CDownLoadPatientList, mfcCDialog)
ON_UPDATE_COMMAND_UI(IDOK, &CDownLoadPatientList::OnUpdateOK)
ON_NOTIFY(NM_DBLCLK, IDC_CLD_LIST, &CDownLoadPatientList::OnDoubleClick)
END_MESSAGE_MAP()

CDownLoadPatientList::CDownLoadPatientList(CWnd* pParent, velCTransferProgram& program,
                                           velCCredentials& remembered)
    : mfcCDialog(IDD_CLD_DOWNLOAD_LIST, pParent), m_program(program), m_remembered(remembered),
      m_queue(program)
{
    m_credentials.Set(remembered.GetUser(), remembered.GetPassword());
    SetAnchors(Anchors);
    RememberSize("DownloadList");
}

CDownLoadPatientList::~CDownLoadPatientList() = default;

void CDownLoadPatientList::DoDataExchange(CDataExchange* pDX)
{
    mfcCDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_CLD_LIST, m_list);
    DDX_Check(pDX, IDC_CLD_UNCROPPED, m_bUncropped);
    DDX_Check(pDX, IDC_CLD_OTHER, m_bOther);
    DDX_Check(pDX, IDC_CLD_3D, m_b3D);
}

BOOL CDownLoadPatientList::OnInitDialog()
{
    m_bUncropped = velGetIniInt("Defaults", ChoiceKeys[0], 0) != 0;
    m_bOther = velGetIniInt("Defaults", ChoiceKeys[1], 0) != 0;
    m_b3D = velGetIniInt("Defaults", ChoiceKeys[2], 0) != 0;
    mfcCDialog::OnInitDialog();
    MakeColumns();
    if (const auto end = Open())
        EndDialog(*end);
    UpdateControls();
    GotoDlgCtrl(&m_list);
    return FALSE;
}

BOOL CDownLoadPatientList::OnHelpKey(UINT nHelpID)
{
    VelApp()->ShowHelp(nHelpID);
    return TRUE;
}

std::optional<int> CDownLoadPatientList::Open()
{
    if (!CheckQueue())
        return IDCANCEL;
    for (;;)
    {
        if (!m_credentials.IsKnown() && !RequireCredentials())
            return IDCANCEL;
        if (OpenSession() == -2)
            return NO_SESSION;
        switch (TryLogin())
        {
        case cloud::LoginReply::LoggedIn:
            m_remembered.Set(m_credentials.GetUser(), m_credentials.GetPassword());
            FillList();
            return std::nullopt;
        case cloud::LoginReply::LoggedInOnce:
            FillList();
            return std::nullopt;
        case cloud::LoginReply::Message: // the user has to act first
            EndSession();
            break;
        case cloud::LoginReply::Refused:
            break;
        }
        // Signing in again is the user's to ask for: what is remembered was refused, or would be stopped once
        // more.
        m_remembered.Clear();
        CSignInDlg dialog(this, m_credentials);
        if (velRunModal(dialog) == IDOK)
            continue;
        m_credentials.Clear();
        EndSession();
        return std::nullopt;
    }
}

bool CDownLoadPatientList::CheckQueue()
{
    switch (m_queue.CheckRasko(FALSE))
    {
    case velQueued:
        return true;
    case velQueueNoXml:
        AfxMessageBox(IDS_CLD_NO_XML);
        return false;
    case velQueueNoTable:
        AfxMessageBox(IDS_CLD_NO_TABLE, MB_OK | MB_ICONSTOP);
        return false;
    default:
        AfxMessageBox(IDS_CLD_NO_DOWNLOAD_PROGRAM, MB_OK | MB_ICONSTOP);
        return false;
    }
}

bool CDownLoadPatientList::RequireCredentials()
{
    if (m_program.GetCredentials(m_credentials))
        return true;
    CRaskoWaitDlg dialog(this, m_program, m_credentials);
    return velRunModal(dialog) == IDOK;
}

int CDownLoadPatientList::OpenSession()
{
    if (m_pSession)
        return -1;
    m_strCommandPath = velCommandScript();
    const CString strTarget = velServiceHost();
    try
    {
        m_pSession = MakeSession(cloud::AgentName().c_str());
        m_pSession->SetServerUrl("https://" + strTarget);
        m_pSession->SetCommandPath(m_strCommandPath);
        m_pSession->EnableStatusCallback();
        return 0;
    }
    catch (CInternetException* e)
    {
        e->Delete();
        m_pSession.reset();
        return -2;
    }
}

std::unique_ptr<CVelInet> CDownLoadPatientList::MakeSession(LPCTSTR pszAgent)
{
    return std::make_unique<CVelInet>(pszAgent, 1, INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr,
                                      INTERNET_FLAG_DONT_CACHE);
}

/// Signs in once. Message: the service's messages forbid to go on.
cloud::LoginReply CDownLoadPatientList::TryLogin()
{
    int nResult = 0;
    {
        const CFRVLogin notice(this);
        nResult = m_pSession->Login(m_credentials.GetUser(), m_credentials.GetPassword());
    }
    cloud::LoginReply reply = cloud::JudgeLogin(nResult == 0, m_pSession->GetResponse().GetString());
    if (reply == cloud::LoginReply::Refused)
        AfxMessageBox(IDS_CLD_INVALID_LOGIN, MB_OK | MB_ICONEXCLAMATION);
    if (reply == cloud::LoginReply::Message && m_xml.ShowServerMessage(m_pSession->GetResponse()) == 0)
        reply = cloud::LoginReply::LoggedIn;
    return reply;
}

/// Signs out and closes the session, if there is one.
void CDownLoadPatientList::EndSession()
{
    if (m_pSession)
        m_pSession->Logout();
    m_pSession.reset();
}

void CDownLoadPatientList::MakeColumns()
{
    m_list.SetExtendedStyle(LVS_EX_FULLROWSELECT | LVS_EX_LABELTIP);
    CString strTitles;
    strTitles.LoadString(IDS_CLD_COLUMNS);
    int nStart = 0;
    for (std::size_t i = 0; i < Widths.size(); ++i)
    {
        CRect rect(0, 0, Widths.at(i), 8);
        MapDialogRect(&rect);
        m_list.InsertColumn(static_cast<int>(i), strTitles.Tokenize("|", nStart), LVCFMT_LEFT, rect.Width());
    }
}

void CDownLoadPatientList::FillList()
{
    CString strHint;
    if (m_pSession->GetDownloadable() != 0)
    {
        strHint.LoadString(IDS_CLD_NO_LIST);
        SetDlgItemText(IDC_CLD_HINT, strHint);
        return;
    }
    const CWaitCursor wait;
    m_xml.LoadXml(m_pSession->GetResponse());
    CString strUser, strOwner;
    strOwner.LoadString(IDS_CLD_OWNER);
    m_xml.SelectCount("//record");
    m_xml.GetAttribute(0, "userGUID", strUser);

    m_list.SetRedraw(FALSE);
    const int nCount = m_xml.SelectCount("//record/patinfo");
    for (int i = 0; i < nCount; ++i)
    {
        const auto attribute = [&](LPCTSTR pszName) {
            CString strValue;
            m_xml.GetAttribute(i, pszName, strValue);
            return strValue;
        };
        const auto time = [&](LPCTSTR pszName) {
            return CString(cloud::ShownTime(attribute(pszName).GetString()).c_str());
        };
        const bool bOwn = attribute("patOwnerGUID") == strUser;
        // Sharing a record does not make its files newer.
        m_records.push_back({attribute("patVeltrixID"), velCDate::FromISO(time("lastUpdate"))});
        const int nItem = m_list.InsertItem(i, m_records.back().strID);
        m_list.SetItemData(nItem, static_cast<DWORD_PTR>(i));
        m_list.SetItemText(nItem, ColumnName, attribute("patlastName") + ",  " + attribute("patfirstName"));
        m_list.SetItemText(nItem, ColumnOwner,
                           bOwn ? strOwner : attribute("patOwnerLast") + ",  " + attribute("patOwnerFirst"));
        m_list.SetItemText(nItem, ColumnTime, time(bOwn ? "lastUpdate" : "LastShared"));
        m_list.SetItemText(nItem, ColumnID, attribute("patID"));
        m_list.SetItemText(nItem, ColumnGUID, attribute("patGUID"));
    }
    m_list.SetRedraw(TRUE);
    if (nCount == 0)
        strHint.LoadString(IDS_CLD_NO_RECORDS);
    else
        strHint.Format(IDS_CLD_RECORDS, nCount);
    SetDlgItemText(IDC_CLD_HINT, strHint);
}

void CDownLoadPatientList::OnUpdateOK(CCmdUI* pCmdUI)
{
    pCmdUI->Enable(m_list.GetNextItem(-1, LVNI_SELECTED) >= 0);
}

void CDownLoadPatientList::OnDoubleClick(NMHDR*, LRESULT* pResult)
{
    *pResult = 0;
    if (m_list.GetNextItem(-1, LVNI_SELECTED) >= 0)
        OnOK();
}

void CDownLoadPatientList::OfferToSaveChoice()
{
    const std::array<BOOL, 3> values = {m_bUncropped, m_bOther, m_b3D};
    bool bChanged = false;
    for (std::size_t i = 0; i < values.size(); ++i)
        bChanged =
            bChanged || (velGetIniInt("Defaults", ChoiceKeys.at(i), 0) != 0) != (values.at(i) != FALSE);
    if (!bChanged || AfxMessageBox(IDS_CLD_SAVE_OPTIONS, MB_YESNO | MB_ICONQUESTION) != IDYES)
        return;
    for (std::size_t i = 0; i < values.size(); ++i)
        velSetIniInt("Defaults", ChoiceKeys.at(i), values.at(i) ? 1 : 0);
}

void CDownLoadPatientList::OnOK()
{
    if (!UpdateData(TRUE))
        return;
    OfferToSaveChoice();
    const int nItem = m_list.GetNextItem(-1, LVNI_SELECTED);
    if (nItem < 0 || !m_pSession)
    {
        AfxMessageBox(IDS_CLD_NO_ITEM, MB_OK | MB_ICONINFORMATION);
        return;
    }
    const Record& record = m_records.at(m_list.GetItemData(nItem));
    if (m_pSession->GetDownloadPatient(record.strID) == 0)
    {
        m_xml.LoadXml(m_pSession->GetResponse());
        const cloud::FileChoice choice{m_bUncropped != FALSE, m_bOther != FALSE, m_b3D != FALSE};
        // What fails leaves the list as it was.
        velGuard(0, IDS_CLD_UNEXPECTED, [&]() -> INT_PTR {
            m_received = velCReceiver(m_queue, choice, record.updated).Receive(m_xml);
            return 0;
        });
    }
    else
        AfxMessageBox(IDS_CLD_RECORD_UNUSABLE, MB_OK | MB_ICONEXCLAMATION);
    if (!m_received)
        return;
    EndSession();
    mfcCDialog::OnOK();
}

void CDownLoadPatientList::OnCancel()
{
    if (m_pSession && m_pSession->IsLoggedIn())
        EndSession();
    m_pSession.reset();
    mfcCDialog::OnCancel();
}
