// What the host does with the answers of the module's maintenance dialogs: they ask and check, the host
// renames, deletes and imports. Each change is one operation of the patient database, with its audit event in
// it.
#include "host/columns.h"
#include "host/hostframe.h"
#include "host/hostres.h"
#include "suite/patients/records/dbdiagnostics.h"
#include "suite/patients/records/veltrixlogin.h"
#include "suite/patients/store/dbtransaction.h"

#include <afxdlgs.h>

#include <optional>

namespace
{

CString FormatText(UINT id, LPCTSTR first, LPCTSTR second = "", LPCTSTR third = "")
{
    CString text;
    text.FormatMessage(id, first, second, third);
    return text;
}

CString EventText(UINT id, const patCPatient& patient)
{
    return FormatText(id, patient.GetID(), patient.GetLastname(1), patient.GetFirstname(1));
}

/// Holds a patient for a change; locks nothing when somebody else has it, and tells the user who.
class PatientLock
{
public:
    PatientLock(dbCPatients& patients, const CString& id) : m_patients(patients), m_id(id)
    {
        CString holder;
        m_locked = m_patients.LockPatient(m_id, patLockExclusive, &holder) == patLockFree;
        if (!m_locked)
        {
            AfxMessageBox(FormatText(IDS_ERR_PATIENT_IN_USE, m_id, holder), MB_OK | MB_ICONWARNING);
        }
    }
    ~PatientLock()
    {
        if (m_locked)
        {
            m_patients.Unlock(m_id);
        }
    }
    PatientLock(const PatientLock&) = delete;
    PatientLock& operator=(const PatientLock&) = delete;

    BOOL IsLocked() const
    {
        return m_locked;
    }

private:
    dbCPatients& m_patients;
    const CString m_id;
    BOOL m_locked = FALSE;
};

/// Changes a stored patient together with the event that tells of it: both or neither.
template <typename Change> void ChangePatient(const dbCPatient& patient, Change change)
{
    dbCTransaction transaction;
    change();
    CVeltrixLogin().AddPatientModifiedEvent(patient.GetGUID(), EventText(IDS_TEXT_MODIFIED, patient));
    transaction.Commit();
}

void DeleteWhole(dbCPatients& patients, const dbCPatient& patient)
{
    dbCTransaction transaction;
    patients.DeletePatient(patient.GetGUID());
    CVeltrixLogin().AddPatientDeletedEvent(patient.GetGUID(), EventText(IDS_TEXT_DELETED, patient));
    transaction.Commit();
}

} // namespace

int hostCFrame::GetSelectedTimepoint() const
{
    return m_timepoints.GetNextItem(-1, LVNI_SELECTED);
}

BOOL hostCFrame::LoadSelectedOrTell(dbCPatient& patient)
{
    const BOOL loaded = LoadSelected(patient);
    if (!loaded)
    {
        AfxMessageBox(hostText(IDS_ERR_NO_PATIENT), MB_OK | MB_ICONINFORMATION);
    }
    return loaded;
}

void hostCFrame::RunNewTimepoint()
{
    dbCPatient patient;
    if (!LoadSelectedOrTell(patient))
    {
        return;
    }
    const int before = patient.GetTimepoints().GetCount();
    __int64 result = IDCANCEL;
    m_session.GetModule()->NewTimepointDlg(this, m_session.UsesPracticeManagement(), &patient, result);
    ShowResult("NewTimepointDlg", result);
    Refresh();
    if (patient.GetTimepoints().GetCount() > before)
    {
        // The new one is what the user wants to see.
        const int added = m_timepoints.GetItemCount() - 1;
        m_timepoints.SetItemState(added, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
        m_timepoints.EnsureVisible(added, FALSE);
    }
}

void hostCFrame::RunRename()
{
    dbCPatient patient;
    std::optional<PatientLock> lock;
    if (!LoadSelectedOrTell(patient) || !lock.emplace(m_session.GetPatients(), patient.GetID()).IsLocked())
    {
        return;
    }
    const int timepoint = GetSelectedTimepoint();
    RENAME_OP operation = RENAME_TIMEPOINT;
    CString lastname;
    CString firstname;
    CString passed;
    CString name;
    COleDateTime date;
    const __int64 result =
        m_session.GetModule()->RenameDlg(this, m_session.UsesPracticeManagement(), &patient, timepoint, "",
                                         &operation, lastname, firstname, passed, name, date);
    ShowResult("RenameDlg", result);
    if (result != IDOK)
    {
        return;
    }
    ChangePatient(patient, [&] {
        if (operation == RENAME_PATIENT)
        {
            patient.SetLastname(lastname);
            patient.SetFirstname(firstname);
        }
        else
        {
            patCTimepoint& changed = patient.GetTimepoints()[timepoint];
            // A new treatment alone is taken with any name: one that was emptied stays what it was.
            if (!name.IsEmpty())
            {
                changed.SetName(name);
            }
            changed.SetDate(velCDate(date));
        }
        patient.Save();
    });
    Refresh();
}

void hostCFrame::RunDelete()
{
    dbCPatient patient;
    std::optional<PatientLock> lock;
    if (!LoadSelectedOrTell(patient) || !lock.emplace(m_session.GetPatients(), patient.GetID()).IsLocked())
    {
        return;
    }
    const int timepoint = GetSelectedTimepoint();
    __int64 result = IDCANCEL;
    unsigned int operation = 0;
    m_session.GetModule()->DeleteDlg(this, m_session.UsesPracticeManagement(), &patient, timepoint, 0, 0, "",
                                     result, operation);
    ShowResult("DeleteDlg", result);
    if (result != IDOK)
    {
        return;
    }
    // The pictures on show must not hold the files that are about to go.
    m_images.Clear();
    if (operation == DELETE_PATIENT)
    {
        DeleteWhole(m_session.GetPatients(), patient);
    }
    else
    {
        ChangePatient(patient, [&] {
            operation == DELETE_TIMEPOINT ? patient.DeleteTimepoint(timepoint)
                                          : patient.DeleteTimepointImages(timepoint);
        });
    }
    Refresh();
}

void hostCFrame::RunImport()
{
    CString filter;
    filter.LoadString(IDS_PATIENT_FILES);
    CFileDialog dialog(TRUE, "acv", nullptr, OFN_FILEMUSTEXIST | OFN_HIDEREADONLY, filter, this);
    if (dialog.DoModal() != IDOK)
    {
        return;
    }
    const std::vector<CString> selected = m_patients.GetSelectedGUIDs();
    const auto count = [&] { return dbCPatientDiagnostics(selected.front(), 0, "Clinical").GetCount(); };
    const int before = count();
    if (!m_session.GetModule()->ImportPatientDiagnostics(dialog.GetPathName(), selected.front()))
    {
        AfxMessageBox(hostText(IDS_ERR_NO_PATIENT), MB_OK | MB_ICONINFORMATION);
        return;
    }
    CString imported;
    imported.Format("%d", count() - before);
    m_message = FormatText(IDS_RESULT_IMPORTED, "ImportPatientDiagnostics", imported);
    m_audit.Refresh();
}
