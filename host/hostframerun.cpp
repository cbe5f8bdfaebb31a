// What the main window's commands do.
#include "host/columns.h"
#include "host/hostframe.h"
#include "host/hostres.h"
#include "host/moduledlg.h"
#include "host/samplepractice.h"
#include "suite/patients/store/dbexception.h"
#include "suite/patients/records/veltrixlogin.h"

#include <shlobj.h>

namespace
{

// More events of one call are counted up to here.
constexpr int kMaxRecorded = 1000;

CString FormatText(UINT id, LPCTSTR first, LPCTSTR second = "", LPCTSTR third = "")
{
    CString text;
    text.FormatMessage(id, first, second, third);
    return text;
}

CString FormatNumber(int number)
{
    CString text;
    text.Format("%d", number);
    return text;
}

} // namespace

BOOL hostCFrame::IsOffered(const hostSCommand& command)
{
    return hostIsOffered(command, m_session.IsReady() != FALSE, static_cast<std::size_t>(m_patients.GetSelectedCount()));
}

BOOL hostCFrame::IsChecked(int id) const
{
    switch (id)
    {
    case ID_ARCHIVE_ALLOW:
        return m_session.IsArchivingAllowed();
    case ID_PRACTICE_MANAGEMENT:
        return m_session.UsesPracticeManagement();
    case ID_VIEW_AUDITLOG:
        return m_showAudit;
    case ID_VIEW_TOOLS:
        return m_showTools;
    case ID_VIEW_STATUS:
        return m_showStatus;
    default:
        return FALSE;
    }
}

void hostCFrame::UpdateTools()
{
    for (const hostSCommand& command : hostGetCommands())
    {
        if (command.icon != hostIcon::none)
        {
            m_tools.SendMessage(TB_ENABLEBUTTON, static_cast<WPARAM>(command.id), MAKELPARAM(IsOffered(command), 0));
            m_tools.SendMessage(TB_CHECKBUTTON, static_cast<WPARAM>(command.id),
                                MAKELPARAM(IsChecked(command.id), 0));
        }
    }
}

CString hostCFrame::FullName(const patCPatient& patient) const
{
    CString name;
    if (m_session.GetModule().IsLoaded())
    {
        m_session.GetModule()->nameMakeFullname(patient.GetFirstname(), patient.GetLastname(), &name, NAMEORDER_DEFAULT);
    }
    return name;
}

void hostCFrame::ShowTitle()
{
    const hostCPractice& practice = m_session.GetPractice();
    SetWindowText(practice.IsOpen() ? FormatText(IDS_TITLE, practice.GetName()) : hostText(IDS_APP_TITLE));
}

void hostCFrame::ShowStatus()
{
    CString count;
    if (m_session.GetPractice().IsOpen())
    {
        const int selected = static_cast<int>(m_patients.GetSelectedCount());
        const CString patients = FormatNumber(m_patients.GetPatientCount());
        if (selected > 1)
        {
            count = FormatText(IDS_SELECTED_COUNT, patients, FormatNumber(selected));
        }
        else
        {
            count = m_patients.GetPatientCount() == 1 ? hostText(IDS_ONE_PATIENT)
                                                      : FormatText(IDS_PATIENT_COUNT, patients);
        }
    }
    const CString texts[] = {m_message, count, m_session.GetPractice().GetFolder()};
    for (std::size_t part = 0; part < std::size(texts); ++part)
    {
        m_status.SendMessage(SB_SETTEXT, part, reinterpret_cast<LPARAM>(texts[part].GetString()));
    }
    UpdateTools();
}

void hostCFrame::Refresh()
{
    if (!m_session.GetPractice().IsOpen())
    {
        m_patients.Clear();
    }
    else
    {
        m_changeCounter = dbCPatients::GetChangeCounter();
        m_patients.Refresh();
    }
    m_audit.Refresh();
    ShowSelected();
    ShowStatus();
}

BOOL hostCFrame::LoadSelected(dbCPatient& patient)
{
    const std::vector<CString> selected = m_patients.GetSelectedGUIDs();
    return selected.size() == 1 && patient.Load(selected.front(), FALSE, TRUE);
}

void hostCFrame::ShowSelected()
{
    const CString before = m_shown.GetGUID();
    const int timepoint = m_timepoints.GetNextItem(-1, LVNI_SELECTED);
    m_shown.Initialize();
    const int selected = static_cast<int>(m_patients.GetSelectedCount());
    const BOOL loaded = m_session.GetPractice().IsOpen() && selected == 1 && LoadSelected(m_shown);
    if (loaded)
    {
        const CString born = m_shown.GetBirthdate().FormatDate();
        m_name.SetWindowText(FormatText(born.IsEmpty() ? IDS_PATIENT_LINE : IDS_PATIENT_LINE_BORN, FullName(m_shown),
                                        m_shown.GetID(), born));
    }
    else
    {
        m_name.SetWindowText(selected > 1 ? FormatText(IDS_MANY_PATIENTS, FormatNumber(selected))
                                          : hostText(IDS_NO_PATIENT));
    }

    const patCTimepoints& timepoints = m_shown.GetTimepoints();
    m_timepoints.SetRedraw(FALSE);
    m_timepoints.DeleteAllItems();
    for (int row = 0; row < timepoints.GetCount(); ++row)
    {
        int images = 0;
        for (int group = 0; group < patCImageTypes::GROUP_COUNT; ++group)
        {
            images += __builtin_popcount(timepoints[row].GetImageBits(group));
        }
        m_timepoints.InsertItem(row, timepoints[row].GetName());
        m_timepoints.SetItemText(row, 1, timepoints[row].GetDate().FormatDate());
        m_timepoints.SetItemText(row, 2, FormatNumber(images));
    }
    m_timepoints.SetRedraw(TRUE);
    if (timepoints.IsEmpty())
    {
        m_images.Clear();
    }
    else
    {
        // The same timepoint stays in view when the same patient is read again.
        const BOOL same = loaded && before == m_shown.GetGUID() && timepoint >= 0 && timepoint < timepoints.GetCount();
        const int row = same ? timepoint : timepoints.GetCount() - 1;
        m_timepoints.SetItemState(row, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
        m_timepoints.EnsureVisible(row, FALSE);
    }
    UpdateTools();
}

void hostCFrame::ShowTimepoint()
{
    const int row = m_timepoints.GetNextItem(-1, LVNI_SELECTED);
    if (row >= 0 && row < m_shown.GetTimepoints().GetCount())
    {
        m_images.Show(m_shown.GetTimepoints()[row]);
    }
    else
    {
        m_images.Clear();
    }
}

void hostCFrame::ShowResult(const char* exportName, __int64 result)
{
    const UINT id = result == IDOK ? IDS_RESULT_OK : (result == IDCANCEL ? IDS_RESULT_CANCEL : IDS_RESULT_OTHER);
    m_message = FormatText(id, exportName, FormatNumber(static_cast<int>(result)));
}

BOOL hostCFrame::OpenPractice(LPCTSTR folder)
{
    const CWaitCursor wait;
    const CString sample = hostCPractice::GetSampleFolder();
    const CString wanted = folder != nullptr && *folder != '\0' ? CString(folder) : sample;
    const hostAsk ask = [&](hostQuestion question, const CString& where)
    {
        if (question == hostQuestion::createPractice && where.CompareNoCase(sample) == 0)
        {
            return true;
        }
        const UINT id = question == hostQuestion::createPractice ? IDS_ASK_CREATE : IDS_ASK_SETTINGS;
        return AfxMessageBox(FormatText(id, where), MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2) == IDYES;
    };
    // The module that draws it goes with the practice.
    m_images.SetEmptyText("", nullptr);
    CString error;
    const BOOL opened = m_session.Open(wanted, ask, error);
    if (m_session.GetModule().IsLoaded())
    {
        m_images.SetBackground(m_session.GetModule()->settings->GetBackgroundColor());
        m_images.SetEmptyText(hostText(IDS_NO_IMAGES), m_session.GetModule()->GrayStringProc);
    }
    m_message = hostText(opened ? IDS_READY : IDS_NO_PRACTICE);
    m_search.SetWindowText("");
    m_patients.Clear();
    ShowTitle();
    if (m_session.GetPractice().IsOpen())
    {
        m_patients.Search(dbSearchName, "");
    }
    Refresh();
    if (!opened && !error.IsEmpty())
    {
        AfxMessageBox(error, MB_OK | MB_ICONERROR);
    }
    return opened;
}

void hostCFrame::ChoosePractice()
{
    char name[MAX_PATH] = {};
    const CString title = hostText(IDS_CHOOSE_PRACTICE);
    BROWSEINFO browse = {};
    browse.hwndOwner = m_hWnd;
    browse.pszDisplayName = name;
    browse.lpszTitle = title;
    browse.ulFlags = BIF_RETURNONLYFSDIRS | BIF_NEWDIALOGSTYLE;
    if (LPITEMIDLIST item = ::SHBrowseForFolder(&browse))
    {
        char folder[MAX_PATH] = {};
        const BOOL isFolder = ::SHGetPathFromIDList(item, folder);
        ::CoTaskMemFree(item);
        if (isFolder)
        {
            OpenPractice(folder);
        }
    }
}

// No command leaves an exception to the framework: the user reads what happened and goes on.
void hostCFrame::Run(UINT id)
{
    const hostSCommand* command = hostFindCommand(static_cast<int>(id));
    if (command == nullptr || !IsOffered(*command))
    {
        return;
    }
    try
    {
        RunCommand(*command);
    }
    catch (CException* thrown)
    {
        thrown->ReportError(MB_OK | MB_ICONERROR);
        thrown->Delete();
    }
    ShowStatus();
}

void hostCFrame::RunCommand(const hostSCommand& command)
{
    const hostCModule& module = m_session.GetModule();
    switch (command.id)
    {
    case ID_PRACTICE_OPEN:
        ChoosePractice();
        break;
    case ID_PRACTICE_REFRESH:
        Refresh();
        break;
    case ID_ARCHIVE_SAVE:
        RunArchive(ARCHIVE_OP_SAVE);
        break;
    case ID_ARCHIVE_LOAD:
        RunArchive(ARCHIVE_OP_LOAD);
        break;
    case ID_ARCHIVE_MERGE:
        RunArchive(ARCHIVE_OP_MERGE);
        break;
    case ID_ARCHIVE_UPLOAD:
        RunArchive(ARCHIVE_OP_UPLOAD);
        break;
    case ID_ARCHIVE_DOWNLOAD:
        RunArchive(ARCHIVE_OP_DOWNLOAD);
        break;
    case ID_ARCHIVE_ALLOW:
        m_session.AllowArchiving(!m_session.IsArchivingAllowed());
        break;
    case ID_PRACTICE_MANAGEMENT:
        m_session.UsePracticeManagement(!m_session.UsesPracticeManagement());
        break;
    case ID_KEYWORDS_PATIENT:
        ShowResult(command.exportName, module->EditKeywords(this, INI_LIST_PATIENT));
        break;
    case ID_KEYWORDS_IMAGE:
        ShowResult(command.exportName, module->EditKeywords(this, INI_LIST_IMAGE));
        break;
    case ID_HELP_MODULE:
        hostCModuleDlg(module, this).DoModal();
        break;
    case ID_HELP_ABOUT:
        AfxMessageBox(hostText(IDS_ABOUT), MB_OK | MB_ICONINFORMATION);
        break;
    case ID_VIEW_AUDITLOG:
    case ID_VIEW_TOOLS:
    case ID_VIEW_STATUS:
        RunView(static_cast<UINT>(command.id));
        break;
    default:
        RunPatientCommand(static_cast<UINT>(command.id));
        break;
    }
}

void hostCFrame::RunView(UINT id)
{
    BOOL& shown = id == ID_VIEW_AUDITLOG ? m_showAudit : (id == ID_VIEW_TOOLS ? m_showTools : m_showStatus);
    shown = !shown;
    Layout();
}

void hostCFrame::RunPatientCommand(UINT id)
{
    switch (id)
    {
    case ID_PATIENT_NEW:
        RunNewPatient(FALSE);
        break;
    case ID_PATIENT_NEWFROM:
        RunNewPatient(TRUE);
        break;
    case ID_PATIENT_CHANGE:
        RunChangePatient();
        break;
    case ID_PATIENT_RENAME:
        RunRename();
        break;
    case ID_PATIENT_DELETE:
        RunDelete();
        break;
    case ID_PATIENT_IMPORT:
        RunImport();
        break;
    case ID_TIMEPOINT_NEW:
        RunNewTimepoint();
        break;
    default:
        break;
    }
}

void hostCFrame::RunNewPatient(BOOL withStudy)
{
    CString guid;
    __int64 result = IDCANCEL;
    if (withStudy)
    {
        dbCPatient study;
        samFillStudy(m_studies, study);
        result = m_session.GetModule()->NewPatientDlgWithData(this, &m_session.GetPatients(), guid, &study);
        m_studies += result == IDOK ? 1 : 0;
    }
    else
    {
        result = m_session.GetModule()->NewPatientDlg(this, &m_session.GetPatients(), guid);
    }
    ShowResult(withStudy ? "NewPatientDlgWithData" : "NewPatientDlg", result);
    if (!guid.IsEmpty())
    {
        m_search.SetWindowText("");
        Refresh();
        m_patients.SelectGUID(guid);
    }
}

void hostCFrame::RunChangePatient()
{
    dbCPatient patient;
    if (LoadSelected(patient))
    {
        const __int64 result = m_session.GetModule()->ChangePatientDlg(this, &m_session.GetPatients(), &patient);
        ShowResult("ChangePatientDlg", result);
        const CString guid = patient.GetGUID();
        Refresh();
        m_patients.SelectGUID(guid);
    }
}

// An operation may have failed for some patients and still answer OK: the audit log tells what was done.
void hostCFrame::ShowRecorded(const char* exportName, __int64 result, __int64 lastEvent)
{
    dbTList<dbSAuditEvent> events;
    CVeltrixLogin::LoadEvents(events, kMaxRecorded);
    int recorded = 0;
    while (recorded < events.GetCount() && events[recorded].nID > lastEvent)
    {
        ++recorded;
    }
    if (recorded == 1)
    {
        m_message = FormatText(IDS_RESULT_RECORDED, exportName, events[0].strText);
    }
    else if (recorded > 1)
    {
        m_message = FormatText(IDS_RESULT_EVENTS, exportName, FormatNumber(recorded));
    }
    else if (result == IDOK)
    {
        m_message = FormatText(IDS_RESULT_NOTHING, exportName);
    }
    else
    {
        ShowResult(exportName, result);
    }
}

// What the module has posted about patients is told before the result of the call.
void hostCFrame::TakeNotices()
{
    MSG message;
    while (::PeekMessage(&message, m_hWnd, VELDLGS_PATIENT_CHANGED, VELDLGS_PATIENT_CHANGED, PM_REMOVE))
    {
        ::DispatchMessage(&message);
    }
}

void hostCFrame::RunArchive(ARCHIVE_OP operation)
{
    dbCPatient patient;
    LoadSelected(patient);
    CStringArray selected;
    m_patients.GetSelectedIDs(selected);
    if (selected.GetSize() > 1)
    {
        // Of several patients the first stands for all where one is needed.
        patient.Load(selected.GetAt(0), TRUE, FALSE);
    }
    dbTList<dbSAuditEvent> before;
    CVeltrixLogin::LoadEvents(before, 1);
    CStringArray archives; // none: the user is asked
    CStringArray unused[3];
    const __int64 result =
        m_session.GetModule()->ArchiveDlg(this, m_session.UsesPracticeManagement(), &patient, operation, selected,
                                          &m_session.GetPatients(), archives, unused[0], unused[1], unused[2], 0, 0);
    TakeNotices();
    Refresh();
    ShowRecorded("ArchiveDlg", result, before.IsEmpty() ? 0 : before[0].nID);
}
