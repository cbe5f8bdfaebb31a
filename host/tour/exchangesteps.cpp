#include "host/tour/exchangesteps.h"

#include "archive/res/archivedlgres.h"
#include "cloud/res/cloudres.h"
#include "host/hostframe.h"
#include "host/hostpractice.h"
#include "host/hostres.h"
#include "host/tour/archiveuser.h"
#include "patient/patientres.h"
#include "suite/patients/velpat.h"
#include "suite/rasko/raskoapi.h"
#include "suite/util/velini.h"
#include "suite/util/velpath.h"
#include "tests/support/exchangeuser.h"
#include "tests/support/recordservice.h"

#include <filesystem>

using veltest::Dialog;

namespace
{

constexpr DWORD kPatience = 60'000; // milliseconds that a transfer may take
constexpr const char* kSender = "Second Practice";
constexpr const char* kReceiver = "Exchange Practice";
constexpr const char* kNote = "Please have a look at the second timepoint.";
const std::string kNoteShown = std::string("The owner of the record writes:\n\n") + kNote;

/// What the steps know of each other.
struct Exchange
{
    veltest::RecordService service;
    std::string id;
    std::string fields;
    std::map<std::string, std::string> files;
};

Exchange& TheExchange()
{
    static Exchange exchange;
    return exchange;
}

std::filesystem::path Folder(const tourCGuide& guide, const std::string& practice)
{
    return guide.m_archives.parent_path().parent_path() / practice;
}

/// Practices of the exchange are on computers of their own; here they share a Windows user, who signs in
/// anew.
void OpenPractice(tourCGuide& guide, const std::string& practice)
{
    guide.OnUi([&] {
        ::RegDeleteTree(HKEY_CURRENT_USER, "Software\\Veltrix\\Rasko\\Credentials");
        const std::string folder = Folder(guide, practice).string();
        CString error;
        if (!std::filesystem::exists(folder))
        {
            guide.Expect(hostCPractice::Create(folder.c_str(), 0, error) != FALSE,
                         "an empty practice: " + practice);
        }
        auto* const frame = static_cast<hostCFrame*>(CWnd::FromHandlePermanent(guide.GetFrame()));
        guide.Expect(frame->OpenPractice(folder.c_str()) != FALSE, practice + " opens");
    });
    guide.PracticeChanged();
}

void SetUp(tourCGuide& guide, const std::string& practice, const char* user, const char* password)
{
    const std::filesystem::path folder = Folder(guide, practice) / "Rasko";
    std::filesystem::create_directory(folder);
    veltest::EnterTransferOptions(guide.GetScript(), user, password, TheExchange().service.Host(),
                                  folder.string());
    guide.Print(std::string("   user     signs in to Rasko as ") + user);
}

/// Starts the transfer program at its options, as from the system's menu of programs.
void OpenOptions(tourCGuide& guide)
{
    guide.OnUi([] {
        const CString program = velWithBackslash(velenv("SYS")) + rasko::ProgramFile;
        std::string line = "\"" + std::string(program) + "\" " + rasko::OptionsSwitch;
        STARTUPINFO start = {};
        start.cb = sizeof start;
        PROCESS_INFORMATION process = {};
        if (::CreateProcess(program, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                            &process))
        {
            ::CloseHandle(process.hThread);
            ::CloseHandle(process.hProcess);
        }
    });
}

/// The patient with the most images.
std::string FindWithImages(tourCGuide& guide)
{
    std::string found;
    guide.OnUi([&] {
        dbTList<dbSPatientListRow> rows;
        dbCPatients().GetPage(dbSearchName, "", nullptr, hostCPractice::kSamplePatients, rows);
        std::size_t most = 0;
        for (const dbSPatientListRow& row : rows)
        {
            const std::size_t files = veltest::CarriedFiles(row.strID.GetString()).size();
            if (files > most)
            {
                found = row.strID;
                most = files;
            }
        }
    });
    return found;
}

void Remember(tourCGuide& guide)
{
    Exchange& exchange = TheExchange();
    guide.OnUi([&] {
        dbCPatient patient;
        guide.Expect(patient.Load(exchange.id.c_str()) != FALSE, exchange.id + " is in the database");
        exchange.fields = veltest::CarriedFields(patient);
        exchange.files = veltest::CarriedFiles(exchange.id);
    });
    guide.Expect(!exchange.files.empty(),
                 exchange.id + " has " + std::to_string(exchange.files.size()) + " files");
}

void ExpectAsSent(tourCGuide& guide, const std::string& id)
{
    const Exchange& exchange = TheExchange();
    std::string fields;
    std::map<std::string, std::string> files;
    guide.OnUi([&] {
        dbCPatient patient;
        patient.Load(id.c_str());
        fields = veltest::CarriedFields(patient);
        files = veltest::CarriedFiles(id);
    });
    guide.Expect(fields == exchange.fields,
                 fields == exchange.fields ? id + " as sent: every field and timepoint"
                                           : "fields\nexpected:\n" + exchange.fields + "found:\n" + fields);
    std::size_t bytes = 0;
    for (const auto& [name, contents] : files)
    {
        bytes += contents.size();
    }
    guide.Expect(files == exchange.files, id + " as sent: " + std::to_string(files.size()) + " files, " +
                                              std::to_string(bytes) + " bytes");
}

void AwaitTransfer(tourCGuide& guide)
{
    dbSRaskoTask last;
    const DWORD start = ::GetTickCount();
    while (last.nStatus < dbSRaskoTask::STATUS_FINISHED && ::GetTickCount() - start < kPatience)
    {
        guide.OnUi([&] {
            dbCRaskoTasksContainer tasks;
            tasks.LoadQueuedBy(dbGetComputerName(), 0);
            last = tasks.IsEmpty() ? last : tasks[tasks.GetCount() - 1];
        });
        ::Sleep(50);
    }
    guide.ExpectText("transfer", "100 ", std::to_string(last.nStatus) + " " + last.strReason.GetString());
}

/// What was received is as it was sent, was noted, and is shown.
void ExpectReceived(tourCGuide& guide, dbAuditKind event, const std::string& id, const char* picture)
{
    guide.ExpectEvents(
        {{event, tourReadPatient(guide, id).auditName + " data have been downloaded from FarreachVeltrix"}});
    AwaitTransfer(guide);
    ExpectAsSent(guide, id);
    tourShowPatient(guide, id);
    guide.WaitForThumbnails();
    guide.Picture(guide.GetFrame(), picture);
}

/// Opens the archive dialog with one of the internet operations chosen and confirmed.
Dialog Choose(tourCGuide& guide, int command, int operation)
{
    const Dialog dialog = tourOpenArchiveDialog(guide, command);
    dialog.Press(operation);
    dialog.SettleIdle();
    dialog.Press(IDOK);
    return dialog;
}

/// Takes the record that the list shows.
void TakeRecord(tourCGuide& guide, const char* picture)
{
    const Dialog list = guide.GetScript().WaitForDialog("Get Patient From Internet");
    const auto rows = list.Item(IDC_CLD_LIST).Rows();
    guide.Expect(rows.size() == 1 && rows[0].at(2) == "Ames,  Anna" && rows[0].at(4) == TheExchange().id,
                 "the list has the record of " + TheExchange().id + ", shared by its owner");
    for (const int option : {IDC_CLD_UNCROPPED, IDC_CLD_OTHER, IDC_CLD_3D})
    {
        if (!list.Item(option).IsChecked())
        {
            list.Press(option);
        }
    }
    list.Item(IDC_CLD_LIST).SelectRow(0);
    guide.GetScript().WaitUntil("OK can be pressed", [&] { return list.Item(IDOK).IsEnabled(); });
    guide.Picture(list.Handle(), picture);
    list.Press(IDOK);
}

} // namespace

void tourPlayExchangeUnavailable(tourCGuide& guide)
{
    CString programs;
    guide.OnUi([&] {
        programs = velenv("SYS");
        velSetIniString("Environment", "SYS", guide.m_archives.string().c_str());
    });
    const Dialog dialog = tourOpenArchiveDialog(guide, ID_ARCHIVE_DOWNLOAD);
    int checked = 0;
    for (int radio = IDC_ARC_GET_ARCHIVE; radio <= IDC_ARC_SAVE_INTERNET; ++radio)
    {
        checked += dialog.Item(radio).IsChecked();
    }
    guide.Expect(checked == 0, "nothing is preselected");
    const std::pair<int, const char*> refusals[] = {
        {IDC_ARC_GET_INTERNET, "Rasko Upload/Download program not available."},
        {IDC_ARC_SAVE_INTERNET, "There is no Rasko program installed on your computer."}};
    for (const auto& [radio, text] : refusals)
    {
        dialog.Press(radio);
        dialog.SettleIdle();
        dialog.Press(IDOK);
        tourAnswerBox(guide, text, IDOK, "internet");
        guide.Expect(dialog.IsOpen(), "the dialog stays open");
    }
    dialog.Press(IDCANCEL);
    dialog.WaitForClosed();
    guide.ExpectResult("ArchiveDlg: cancelled");
    guide.ExpectNoEvent();
    guide.OnUi([&] { velSetIniString("Environment", "SYS", programs); });
}

void tourPlayExchangeSend(tourCGuide& guide)
{
    guide.GetScript().SetPatience(kPatience);
    OpenPractice(guide, kSender);
    Exchange& exchange = TheExchange();
    exchange.id = FindWithImages(guide);
    tourShowPatient(guide, exchange.id);
    Remember(guide);

    const Dialog dialog = Choose(guide, ID_ARCHIVE_SAVE, IDC_ARC_SAVE_INTERNET);
    guide.GetScript().WaitForDialog("Save Patient To Internet").Press(IDOK);
    tourAnswerBox(
        guide,
        "Veltrix Rasko, the module that handles uploading records to FarreachVeltrix needs to be set up "
        "before you can upload patient records.  Would you like to setup Rasko now?",
        IDYES, "set-up");
    SetUp(guide, kSender, "anna", "first secret");
    tourAnswerBox(guide, "Patient ID: " + exchange.id + " was not queued.", IDOK, "not-queued");
    guide.GetScript().WaitUntil("the dialog again", [&] { return dialog.IsEnabled(); });
    dialog.Press(IDOK);
    const Dialog upload = guide.GetScript().WaitForDialog("Save Patient To Internet");
    for (const int option : {IDC_CLD_UNCROPPED, IDC_CLD_OTHER, IDC_CLD_3D})
    {
        upload.Press(option);
    }
    upload.Item(IDC_CLD_RECIPIENTS).Replace("bert@two.example");
    upload.Item(IDC_CLD_NOTES).Replace(kNote);
    guide.Picture(upload.Handle(), "upload");
    upload.Press(IDOK);
    const Dialog transfers = guide.GetScript().WaitForDialog("Transfers");
    guide.GetScript().WaitUntil("the transfer is done", [&] {
        const auto rows = transfers.Item(IDC_CLD_LIST).Rows();
        return rows.size() == 1 && rows[0].at(1) == "Done";
    });
    guide.Picture(transfers.Handle(), "transfers");
    transfers.Press(IDOK);
    dialog.WaitForClosed();
    AwaitTransfer(guide);
    guide.ExpectNoEvent();
    tourShowPatient(guide, "");
}

void tourPlayExchangeReceive(tourCGuide& guide)
{
    OpenPractice(guide, kReceiver);
    // Somebody else has the ID here.
    Exchange& exchange = TheExchange();
    guide.OnUi([&] {
        dbCPatient other;
        other.SetID(exchange.id.c_str());
        other.SetLastname("Other");
        other.SetFirstname("Person");
        other.SetBirthdate(velCDate(1999, 1, 2));
        other.Save();
        dbCApplicationOptionsContainer::SetApplicationOption("RASKOTARGET", exchange.service.Host().c_str());
    });
    const std::string before = tourReadPatient(guide, exchange.id).details;

    const Dialog dialog = Choose(guide, ID_ARCHIVE_LOAD, IDC_ARC_GET_INTERNET);
    const Dialog wait = guide.GetScript().WaitForDialog("Waiting for Rasko");
    guide.Picture(wait.Handle(), "waiting");
    SetUp(guide, kReceiver, "bert", "second secret");
    TakeRecord(guide, "download-list");
    guide.GetScript().AnswerBox("Do you want to save download options setting for future downloads?", IDYES);
    const Dialog conflict = guide.GetScript().WaitForDialogWith(IDC_IDCONFLICT_ID);
    conflict.Item(IDC_IDCONFLICT_ID).Replace("X-" + exchange.id);
    guide.Picture(conflict.Handle(), "id-conflict");
    conflict.Press(IDOK);
    tourAnswerBox(guide, kNoteShown, IDOK, "note");
    dialog.WaitForClosed();
    const std::string id = "X-" + exchange.id;
    ExpectReceived(guide, dbAuditNewPatient, id, "received");
    guide.Expect(tourReadPatient(guide, exchange.id).details == before, "the other patient is unchanged");
    tourShowPatient(guide, "");
}

void tourPlayExchangeAgain(tourCGuide& guide)
{
    OpenPractice(guide, kSender);
    Exchange& exchange = TheExchange();
    guide.OnUi([&] {
        dbCPatient patient;
        patient.Load(exchange.id.c_str());
        dbCTimepoint timepoint;
        timepoint.SetName("Retention");
        timepoint.SetDate(velCDate::Today());
        timepoint.SetNumber(exchange.id.c_str(), patient.GetTimepoints().GetFreeNumber());
        timepoint.SetImage(2, 0);
        patient.GetTimepoints().Add(&patient, timepoint, FALSE, FALSE);
        patient.Save();
        // The picture of the first timepoint serves once more.
        const patCTimepoint first = patient.GetTimepoint(0);
        const CString folder = velGetDataPath();
        for (int group = 0; group < patCImageTypes::GROUP_COUNT; ++group)
        {
            for (int type = 0; type < patCImageTypes::GetTypeCount(group); ++type)
            {
                if (first.HasImage(group, type))
                {
                    ::CopyFile(folder + first.GetImageFilename(group, type),
                               folder + timepoint.GetImageFilename(2, 0), FALSE);
                }
            }
        }
    });
    Remember(guide);
    tourShowPatient(guide, exchange.id);
    Dialog dialog = Choose(guide, ID_ARCHIVE_SAVE, IDC_ARC_SAVE_INTERNET);
    guide.GetScript().WaitForDialog("Save Patient To Internet").Press(IDOK);
    tourAnswerBox(guide, "You must setup Rasko before you can upload records\nUnable to continue.", IDOK,
                  "not-configured");
    tourAnswerBox(guide, "Patient ID: " + exchange.id + " was not queued.", IDOK, "not-queued");
    OpenOptions(guide);
    SetUp(guide, kSender, "anna", "first secret");
    guide.GetScript().WaitUntil("the dialog again", [&] { return dialog.IsEnabled(); });
    dialog.Press(IDOK);
    guide.GetScript().WaitForDialog("Save Patient To Internet").Press(IDOK);
    guide.GetScript().WaitForDialog("Transfers").Press(IDOK);
    dialog.WaitForClosed();
    AwaitTransfer(guide);

    OpenPractice(guide, kReceiver);
    OpenOptions(guide);
    SetUp(guide, kReceiver, "bert", "second secret");
    const std::string id = "X-" + exchange.id;
    dialog = Choose(guide, ID_ARCHIVE_LOAD, IDC_ARC_GET_INTERNET);
    TakeRecord(guide, "download-list");
    tourAnswerBox(
        guide,
        "Patient ID of the downloaded patient does not match with existing Veltrix patient.\nDownloaded "
        "patient will be merged to the existing patient.",
        IDOK, "merged");
    guide.GetScript().AnswerBox(kNoteShown, IDOK);
    dialog.WaitForClosed();
    ExpectReceived(guide, dbAuditPatientModified, id, "received-again");
    guide.OnUi([] { veltest::EndTransferProgram(); });
}
