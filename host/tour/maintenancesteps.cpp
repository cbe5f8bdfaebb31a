#include "host/tour/maintenancesteps.h"

#include "host/hostres.h"
#include "host/tour/archiveuser.h"
#include "maintenance/maintenanceres.h"
#include "suite/patients/records/dbpatients.h"
#include "suite/patients/records/dbtimepointnames.h"
#include "suite/util/velpath.h"

using veltest::Dialog;

namespace
{

// The patient that the steps work on: one of the sample practice with images and something owed.
constexpr int kRow = 5;
constexpr __int64 kOwed = 12500;

std::string patientID;

dbCPatient ReadStored(tourCGuide& guide)
{
    dbCPatient patient;
    guide.OnUi([&] { patient.Load(patientID.c_str()); });
    return patient;
}

/// Name, date and number of images of every timepoint.
std::string Timepoints(const dbCPatient& patient)
{
    std::string text;
    for (const patCTimepoint& timepoint : patient.GetTimepoints())
    {
        int images = 0;
        for (int group = 0; group < patCImageTypes::GROUP_COUNT; ++group)
        {
            images += __builtin_popcount(timepoint.GetImageBits(group));
        }
        text += std::string(timepoint.GetName()) + " " + timepoint.GetDate().ToISO().GetString() + " " +
                std::to_string(images) + "; ";
    }
    return text;
}

int CountFiles(tourCGuide& guide, const patCTimepoint& timepoint)
{
    CStringArray names;
    guide.OnUi([&] { velFindFiles(velGetDataPath() + timepoint.GetBaseFilename() + ".*", names); });
    return static_cast<int>(names.GetSize());
}

bool IsPredefined(tourCGuide& guide, const std::string& name)
{
    bool found = false;
    guide.OnUi([&] {
        dbCTimepointNames names;
        names.Load();
        for (int i = 0; i < names.GetCount(); ++i)
        {
            found = found || names.GetAt(i) == name.c_str();
        }
    });
    return found;
}

Dialog Open(tourCGuide& guide, int command, const std::string& title)
{
    guide.Choose(command);
    return guide.GetScript().WaitForDialog(title);
}

void Press(const Dialog& dialog, int button)
{
    dialog.SettleIdle();
    dialog.Press(button);
}

void SelectTimepoint(tourCGuide& guide, int row)
{
    guide.Child(IDC_TIMEPOINTS).SelectRow(row);
    guide.GetScript().Settle(guide.GetFrame());
}

std::string EventText(const dbCPatient& patient, const char* what)
{
    return "The patient (" + patientID + ") " + patient.GetLastname(1).GetString() + ", " +
           patient.GetFirstname(1).GetString() + what;
}

} // namespace

void tourPlayNewTimepoint(tourCGuide& guide)
{
    tourShowPatient(guide, "");
    patientID = guide.Child(IDC_PATIENTS).Rows().at(kRow).at(2);
    tourShowPatient(guide, patientID);
    const std::string before = Timepoints(ReadStored(guide));

    const Dialog dialog = Open(guide, ID_TIMEPOINT_NEW, "New Timepoint");
    const auto offered = dialog.Item(IDC_NEWTP_NAMES).Items();
    guide.Expect(offered.size() == 7 && offered.front() == "Initial",
                 std::to_string(offered.size()) + " names are offered");
    guide.Expect(!dialog.Item(IDC_NEWTP_TREATMENT).IsVisible(), "no treatment is asked for");
    dialog.Item(IDC_NEWTP_NAMES).Replace("Debond check ");
    dialog.Item(IDC_NEWTP_DATE).SetDate(2026, 3, 5);
    dialog.SettleIdle();
    dialog.Item(IDC_NEWTP_ADD_NAME).Click();
    guide.Picture(dialog.Handle(), "new-timepoint");
    Press(dialog, IDOK);
    dialog.WaitForClosed();
    guide.ExpectResult("NewTimepointDlg: OK");
    guide.ExpectText("timepoints", before + "Debond check 2026-03-05 0; ", Timepoints(ReadStored(guide)));
    guide.Expect(IsPredefined(guide, "Debond check"), "the name is among the predefined ones");
    guide.Picture(guide.GetFrame(), "timepoint-added");
}

void tourPlayNewTreatment(tourCGuide& guide)
{
    guide.Choose(ID_PRACTICE_MANAGEMENT);
    const std::string before = Timepoints(ReadStored(guide));
    const Dialog dialog = Open(guide, ID_TIMEPOINT_NEW, "New Timepoint");
    dialog.Item(IDC_NEWTP_NAMES).Replace("Debond check");
    dialog.SettleIdle();
    guide.Expect(!dialog.Item(IDOK).IsEnabled(), "the same name on the same day is refused");
    dialog.Item(IDC_NEWTP_NAMES).Replace("Retention");
    const auto treatments = dialog.Item(IDC_NEWTP_TREATMENT).Items();
    dialog.Item(IDC_NEWTP_TREATMENT).Choose(static_cast<int>(treatments.size()) - 1);
    guide.Picture(dialog.Handle(), "new-timepoint-treatment");
    Press(dialog, IDOK);
    const Dialog chooser = guide.GetScript().WaitForDialog("Choose a Treatment");
    guide.Expect(!chooser.Item(IDOK).IsEnabled(), "OK waits for a treatment");
    chooser.Item(IDC_TREATMENT_LIST).Choose("Retention");
    guide.Picture(chooser.Handle(), "choose-treatment");
    Press(chooser, IDOK);
    dialog.WaitForClosed();
    guide.ExpectResult("NewTimepointDlg: OK");
    const dbCPatient patient = ReadStored(guide);
    guide.ExpectText("timepoints", before + "Retention 2026-03-05 0; ", Timepoints(patient));
    dbCPatientTreatmentStatusHistoryTable history;
    guide.OnUi([&] { history.LoadByPatID(patient.GetGUID()); });
    const dbCPatientTreatmentStatusHistoryRow& newest = history[history.GetCount() - 1];
    guide.ExpectText("newest treatment", "RET Retention",
                     (newest.GetNewCode() + " " + newest.GetDescription()).GetString());
    const patCTimepoint& added = patient.GetTimepoints()[patient.GetTimepoints().GetCount() - 1];
    guide.Expect(added.GetptshID() == newest.GetptshID(), "the timepoint belongs to it");
}

void tourPlayRenameTimepoint(tourCGuide& guide)
{
    SelectTimepoint(guide, 0);
    const dbCPatient before = ReadStored(guide);
    const Dialog dialog = Open(guide, ID_PATIENT_RENAME, "Rename");
    guide.Expect(!dialog.Item(IDC_RENAME_PATIENT).IsEnabled(),
                 "with practice management the patient keeps the name");
    dialog.Item(IDC_RENAME_NAMES).Replace("First records");
    dialog.SettleIdle();
    guide.Picture(dialog.Handle(), "rename-timepoint");
    Press(dialog, IDOK);
    const patCTimepoint& renamed = before.GetTimepoints()[0];
    const std::string day = " (" + std::string(renamed.GetDate().FormatDate()) + ")";
    tourAnswerBox(guide,
                  "Are you sure you want to change timepoint from \"" + std::string(renamed.GetName()) +
                      "\"" + day + " to \"First records\"" + day + "?",
                  IDYES, "rename-timepoint-question");
    dialog.WaitForClosed();
    guide.ExpectResult("RenameDlg: OK");
    guide.ExpectEvent(dbAuditPatientModified, EventText(before, " data, has been modified"));
    dbCPatient expected = before;
    expected.GetTimepoints()[0].SetName("First records");
    guide.ExpectText("timepoints", Timepoints(expected), Timepoints(ReadStored(guide)));
    guide.Choose(ID_PRACTICE_MANAGEMENT);
}

void tourPlayRenamePatient(tourCGuide& guide)
{
    const dbCPatient before = ReadStored(guide);
    const Dialog dialog = Open(guide, ID_PATIENT_RENAME, "Rename");
    dialog.Item(IDC_RENAME_PATIENT).Click();
    dialog.SettleIdle();
    guide.Expect(!dialog.Item(IDOK).IsEnabled(), "nothing is changed yet");
    dialog.Item(IDC_RENAME_NAME).Replace("o'Hara-Lee");
    guide.ExpectText("last name", "O'Hara-Lee", dialog.Item(IDC_RENAME_NAME).Text());
    dialog.SettleIdle();
    guide.Picture(dialog.Handle(), "rename-patient");
    Press(dialog, IDOK);
    const std::string given(before.GetFirstname());
    tourAnswerBox(guide,
                  "Are you sure you want to rename patient from " + given + " " +
                      before.GetLastname().GetString() + " to " + given + " O'Hara-Lee?",
                  IDYES, "rename-patient-question");
    dialog.WaitForClosed();
    guide.ExpectResult("RenameDlg: OK");
    const dbCPatient after = ReadStored(guide);
    guide.ExpectText("name", given + " O'Hara-Lee",
                     (after.GetFirstname() + " " + after.GetLastname()).GetString());
    guide.ExpectText("timepoints", Timepoints(before), Timepoints(after));
    guide.ExpectEvent(dbAuditPatientModified, EventText(after, " data, has been modified"));
    guide.Picture(guide.GetFrame(), "patient-renamed");
}

void tourPlayRenameCancelled(tourCGuide& guide)
{
    const std::string before = Timepoints(ReadStored(guide));
    const Dialog dialog = Open(guide, ID_PATIENT_RENAME, "Rename");
    dialog.Item(IDC_RENAME_NAMES).Replace("Never");
    Press(dialog, IDOK);
    guide.GetScript().AnswerBox("", IDNO);
    guide.Expect(dialog.IsOpen(), "No leaves the dialog open");
    dialog.Press(IDCANCEL);
    dialog.WaitForClosed();
    guide.ExpectResult("RenameDlg: cancelled");
    guide.ExpectNoEvent();
    guide.ExpectText("timepoints", before, Timepoints(ReadStored(guide)));
}

void tourPlayImportDiagnostics(tourCGuide& guide)
{
    CString file;
    guide.OnUi([&] {
        file = velGetDataPath() + "..\\RECEIVED.ACV";
        dbCDiagnosticGroup::DefineItem("Airway", "Clinical", "AW1", "Tonsils");
        dbCPatient archived;
        archived.SetID("RECEIVED");
        archived.SetGUID(dbNewGUID());
        for (const char* code : {"AW1", "unknown", "aw1"})
        {
            dbCDiagnosticInfo info;
            info.SetGroupTitle("Airway");
            info.SetItemCode(code);
            info.SetTP(0);
            info.SetValue("enlarged");
            archived.GetArchiveDiagnostics().Add(info);
        }
        CFile out(file, CFile::modeCreate | CFile::modeWrite);
        CArchive archive(&out, CArchive::store);
        archived.Serialize(archive);
    });
    guide.Choose(ID_PATIENT_IMPORT);
    const Dialog dialog = guide.GetScript().WaitForDialog("Open");
    tourAnswerFile(guide, dialog, file.GetString(), "Open");
    guide.ExpectResult("ImportPatientDiagnostics: 2 diagnostic records imported");
    guide.ExpectNoEvent();
}

void tourPlayDeleteImages(tourCGuide& guide)
{
    SelectTimepoint(guide, 1);
    const dbCPatient before = ReadStored(guide);
    const patCTimepoint& timepoint = before.GetTimepoints()[1];
    guide.Expect(CountFiles(guide, timepoint) > 0,
                 std::to_string(CountFiles(guide, timepoint)) + " image files");
    const Dialog dialog = Open(guide, ID_PATIENT_DELETE, "Delete");
    dialog.Item(IDC_DELETE_IMAGES).Click();
    guide.Picture(dialog.Handle(), "delete-images");
    Press(dialog, IDOK);
    tourAnswerBox(guide,
                  "Are you sure you want to delete the images for timepoint \"" +
                      std::string(timepoint.GetName()) + "?\"  All images will be deleted.",
                  IDYES, "delete-images-question", "No");
    dialog.WaitForClosed();
    guide.ExpectResult("DeleteDlg: OK");
    guide.ExpectEvent(dbAuditPatientModified, EventText(before, " data, has been modified"));
    guide.Expect(CountFiles(guide, timepoint) == 0, "the image files are gone");
    dbCPatient expected = before;
    for (int group = 0; group < patCImageTypes::GROUP_COUNT; ++group)
    {
        expected.GetTimepoints()[1].SetImageBits(group, 0);
    }
    guide.ExpectText("timepoints", Timepoints(expected), Timepoints(ReadStored(guide)));
}

void tourPlayDeleteTimepoint(tourCGuide& guide)
{
    SelectTimepoint(guide, 0);
    const dbCPatient before = ReadStored(guide);
    const patCTimepoint& timepoint = before.GetTimepoints()[0];
    const Dialog dialog = Open(guide, ID_PATIENT_DELETE, "Delete");
    guide.Picture(dialog.Handle(), "delete-timepoint");
    Press(dialog, IDOK);
    tourAnswerBox(
        guide,
        "WARNING! There is questionnaire/diagnostic information in the database for this timepoint!\n "
        "Are you sure you want to delete timepoint \"First records?\"  All images and "
        "questionnaire/diagnostic data in this timepoint will be deleted.",
        IDYES, "delete-timepoint-question", "No");
    dialog.WaitForClosed();
    guide.ExpectResult("DeleteDlg: OK");
    guide.ExpectEvent(dbAuditPatientModified, EventText(before, " data, has been modified"));
    dbCPatient expected = before;
    expected.GetTimepoints().RemoveAt(0);
    guide.ExpectText("timepoints", Timepoints(expected), Timepoints(ReadStored(guide)));
    guide.Expect(CountFiles(guide, timepoint) == 0, "its image files are gone");
}

void tourPlayDeletePatient(tourCGuide& guide)
{
    guide.OnUi([&] {
        dbCPatient patient;
        patient.Load(patientID.c_str());
        patient.SetBalance(kOwed);
    });
    const dbCPatient before = ReadStored(guide);
    guide.Choose(ID_PRACTICE_MANAGEMENT);
    {
        const Dialog dialog = Open(guide, ID_PATIENT_DELETE, "Delete");
        dialog.Item(IDC_DELETE_PATIENT).Click();
        guide.Picture(dialog.Handle(), "delete-patient");
        Press(dialog, IDOK);
        tourAnswerBox(guide, "You cannot delete this patient until their balance is zero.", IDOK,
                      "delete-refused");
        dialog.Press(IDCANCEL);
        dialog.WaitForClosed();
    }
    guide.ExpectResult("DeleteDlg: cancelled");
    guide.ExpectNoEvent();
    guide.Choose(ID_PRACTICE_MANAGEMENT);

    const Dialog dialog = Open(guide, ID_PATIENT_DELETE, "Delete");
    dialog.Item(IDC_DELETE_PATIENT).Click();
    Press(dialog, IDOK);
    tourAnswerBox(guide,
                  "Are you sure you want to delete patient " + std::string(before.GetFirstname(1)) + " " +
                      before.GetLastname(1).GetString() + ", ID=" + patientID +
                      "?  All data will be deleted.",
                  IDYES, "delete-patient-question", "No");
    dialog.WaitForClosed();
    guide.ExpectResult("DeleteDlg: OK");
    guide.ExpectEvent(dbAuditPatientDeleted, EventText(before, " has been deleted"));
    guide.Expect(!tourIsStored(guide, patientID), "the patient is gone");
    CStringArray names;
    guide.OnUi([&] { velFindFiles(velGetDataPath() + patientID.c_str() + "*", names); });
    guide.Expect(names.GetSize() == 0, "so are the files");
    tourShowPatient(guide, "");
}
