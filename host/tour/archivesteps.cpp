#include "host/tour/archivesteps.h"

#include "archive/res/archivedlgres.h"
#include "host/hostframe.h"
#include "host/hostpractice.h"
#include "host/hostres.h"
#include "host/tour/archiveuser.h"
#include "suite/patients/records/dbpatients.h"
#include "suite/util/velini.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <utility>

using veltest::Dialog;

namespace
{

constexpr int kFileTypeVolumes = 1;
constexpr int kFileTypeEarlier = 2;

std::string LowerExtension(const std::filesystem::path& path)
{
    std::string extension = path.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return extension;
}

std::vector<std::filesystem::path> FilesIn(const std::filesystem::path& folder, const std::string& extension)
{
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
    {
        if (LowerExtension(entry.path()) == extension)
        {
            paths.push_back(entry.path());
        }
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

std::string ReadText(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void WriteText(const std::filesystem::path& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary) << text;
}

std::string RemoveQuestion(const tourSPatient& patient, const std::string& id)
{
    return "\"" + patient.name + "\" (ID:" + id +
           ") successfully archived.  Remove this patient from the patient list?";
}

// One that has images, is not saved yet and stands in a row from this one on.
std::string FindUnsaved(tourCGuide& guide)
{
    std::string found;
    guide.OnUi([&] {
        dbTList<dbSPatientListRow> rows;
        dbCPatients().GetPage(dbSearchName, "", nullptr, hostCPractice::kSamplePatients, rows);
        for (int row = 0; row < rows.GetCount() && found.empty(); ++row)
        {
            const std::string id(rows[row].strID);
            dbCPatient patient;
            if (guide.m_saved.count(id) == 0 && patient.Load(id.c_str()) &&
                patient.GetTimepoints().GetCount() > 1)
            {
                found = id;
            }
        }
    });
    return found;
}

// Of the patients with a zipped archive the one with the most timepoints.
std::string FindArchivedWithTimepoints(tourCGuide& guide)
{
    std::string found;
    int most = 0;
    for (const auto& path : FilesIn(guide.m_archives, ".kaz"))
    {
        const std::string id = path.stem().string();
        if (guide.m_saved.at(id).timepoints > most)
        {
            found = id;
            most = guide.m_saved.at(id).timepoints;
        }
    }
    if (found.empty())
    {
        throw veltest::ScriptFailure("no archived patient has timepoints");
    }
    return found;
}

std::filesystem::path OtherFormatFolder(tourCGuide& guide, int fileType)
{
    return guide.m_archives / (fileType == kFileTypeVolumes ? "Volumes" : "Earlier");
}

void SaveOtherFormat(tourCGuide& guide, int fileType)
{
    const std::string id = FindUnsaved(guide);
    const std::filesystem::path folder = OtherFormatFolder(guide, fileType);
    std::filesystem::create_directory(folder);
    tourRemember(guide, id);
    tourShowPatient(guide, id);
    const Dialog dialog = tourOpenArchiveDialog(guide, ID_ARCHIVE_SAVE);
    dialog.Press(IDOK);
    tourAnswerSave(guide, (folder / id).string(), fileType);
    if (fileType == kFileTypeEarlier)
    {
        tourAnswerBox(
            guide,
            "Saving records to an earlier format: \"Veltrix Version 7 or earlier\".\nThe saved files may not "
            "contain all data or images.\nDo you still want to continue?",
            IDYES, "earlier-format");
    }
    // Formats that leave something out never offer to remove the patient.
    dialog.WaitForClosed();
    const auto event = tourSavedEvent(guide.m_saved.at(id));
    guide.ExpectResult("ArchiveDlg: " + event.text);
    guide.ExpectEvents({event});
    guide.Expect(FilesIn(folder, fileType == kFileTypeVolumes ? ".kar" : ".pf").size() == 1,
                 "one archive of " + id);
    tourShowPatient(guide, "");
}

void LoadOtherFormat(tourCGuide& guide, int fileType)
{
    const auto archives =
        FilesIn(OtherFormatFolder(guide, fileType), fileType == kFileTypeVolumes ? ".kar" : ".pf");
    if (archives.empty())
    {
        throw veltest::ScriptFailure("there is no archive to load");
    }
    const std::string id = archives.front().stem().string();
    const Dialog dialog = tourOpenArchiveDialog(guide, ID_ARCHIVE_LOAD);
    dialog.Press(IDOK);
    tourAnswerOpen(guide, archives.front().string());
    dialog.WaitForClosed();
    const auto event = tourLoadedEvent(guide.m_saved.at(id));
    guide.ExpectResult("ArchiveDlg: " + event.text);
    guide.ExpectEvents({event});
    tourExpectAsSaved(guide, id, false);
    guide.Expect(tourCountRows(guide, IDC_IMAGES) > 0, "the loaded patient is shown with its images");
    guide.WaitForThumbnails();
    guide.Picture(guide.GetFrame(), fileType == kFileTypeVolumes ? "volumes-loaded" : "earlier-loaded");
}

// The contents of all image files, whatever their names are.
std::vector<std::string> SortedContents(const tourSPatient& patient)
{
    std::vector<std::string> contents;
    for (const auto& [name, content] : patient.files)
    {
        contents.push_back(content);
    }
    std::sort(contents.begin(), contents.end());
    return contents;
}

} // namespace

void tourPlayArchiveForbidden(tourCGuide& guide)
{
    guide.Choose(ID_ARCHIVE_ALLOW);
    const Dialog dialog = tourOpenArchiveDialog(guide, ID_ARCHIVE_SAVE);
    dialog.Press(IDOK);
    tourAnswerBox(guide, "Archive Save is disabled", IDOK, "save-disabled");
    guide.Expect(dialog.IsOpen(), "the dialog stays open");
    dialog.Press(IDCANCEL);
    dialog.WaitForClosed();
    guide.ExpectResult("ArchiveDlg: cancelled");
    guide.ExpectNoEvent();
    guide.Choose(ID_ARCHIVE_ALLOW);
}

void tourPlayArchiveSeveral(tourCGuide& guide)
{
    std::string folder;
    guide.OnUi([&] { folder = velGetIniString("Defaults", "ArchiveFilePath").GetString(); });
    guide.m_archives = folder;
    const Dialog dialog = tourOpenArchiveDialog(guide, ID_ARCHIVE_SAVE);
    guide.Expect(!dialog.Item(IDC_ARC_MERGE).IsEnabled(), "several patients cannot be merged into");
    dialog.Press(IDOK);
    tourAnswerBox(guide,
                  "You are about to save multiple patients to Archive, do you want to delete the patients "
                  "from the patient "
                  "list when the operation is finished?",
                  IDNO, "save-several", "No");
    tourAnswerSave(guide);
    dialog.WaitForClosed();
    guide.ExpectResult("ArchiveDlg: 3 events recorded in the audit log");
    const auto archives = FilesIn(guide.m_archives, ".kaz");
    guide.Expect(archives.size() == 3, std::to_string(archives.size()) + " archives");
    std::vector<tourCGuide::Event> events;
    for (const auto& path : archives)
    {
        tourRemember(guide, path.stem().string());
    }
    // In the order of the list, by names.
    for (const auto& row : guide.Child(IDC_PATIENTS).Rows())
    {
        const auto saved = guide.m_saved.find(row.at(2));
        if (saved != guide.m_saved.end())
        {
            events.push_back(tourSavedEvent(saved->second));
        }
    }
    guide.ExpectEvents(events);
}

void tourPlayArchiveOne(tourCGuide& guide)
{
    tourShowPatient(guide, guide.m_patientID);
    tourRemember(guide, guide.m_patientID);
    const tourSPatient& saved = guide.m_saved.at(guide.m_patientID);
    const Dialog dialog = tourOpenArchiveDialog(guide, ID_ARCHIVE_SAVE);
    guide.Expect(dialog.Item(IDC_ARC_SAVE_ARCHIVE).IsChecked(), "saving is preselected");
    guide.Picture(dialog.Handle(), "archive");
    dialog.Press(IDOK);
    tourAnswerSave(guide);
    tourAnswerBox(guide, RemoveQuestion(saved, guide.m_patientID), IDNO, "remove", "No");
    dialog.WaitForClosed();
    guide.ExpectResult("ArchiveDlg: " + tourSavedEvent(saved).text);
    guide.ExpectEvents({tourSavedEvent(saved)});
    guide.Expect(tourIsStored(guide, guide.m_patientID), "the patient is kept");
    guide.Expect(FilesIn(guide.m_archives, ".kaz").size() == 4, "4 archives");
}

void tourPlayArchiveDisc(tourCGuide& guide)
{
    const std::filesystem::path programs = guide.m_archives.parent_path() / "Programs";
    std::filesystem::create_directory(programs);
    WriteText(programs / "VeltrixViewerSetup.exe", "viewer");
    WriteText(programs / "LaunchKaz.exe", "launcher");
    WriteText(programs / "LaunchKazReadme.txt", "read me");
    const std::string tail = "\r\nICON=LaunchKaz.exe";
    const std::string start = "[autorun]\r\nOPEN=LaunchKaz.exe " + guide.m_patientID + ".KAZ";
    WriteText(programs / "autorunLaunchKaz.inf", std::string(start.size(), ' ') + tail);
    guide.OnUi([&] { velSetIniString("Environment", "SYS", programs.string().c_str()); });

    const tourSPatient& saved = guide.m_saved.at(guide.m_patientID);
    const Dialog dialog = tourOpenArchiveDialog(guide, ID_ARCHIVE_SAVE);
    dialog.Press(IDC_ARC_INCLUDE_VIEWER);
    dialog.Press(IDOK);
    tourAnswerSave(guide);
    const Dialog overwrite = guide.GetScript().WaitForDialogWith(IDC_ARC_OVERWRITE_TEXT);
    guide.ExpectText("question", "Do you want to replace existing file?\n " + guide.m_patientID + ".kaz",
                     overwrite.Item(IDC_ARC_OVERWRITE_TEXT).Text());
    guide.Picture(overwrite.Handle(), "overwrite");
    overwrite.Press(IDYES);
    guide.GetScript().AnswerBox(RemoveQuestion(saved, guide.m_patientID), IDNO);
    dialog.WaitForClosed();
    guide.ExpectEvents({tourSavedEvent(saved)});
    guide.ExpectText("zzz.exe", "viewer", ReadText(guide.m_archives / "zzz.exe"));
    guide.ExpectText("LaunchKaz.exe", "launcher", ReadText(guide.m_archives / "LaunchKaz.exe"));
    guide.ExpectText("readme.txt", "read me", ReadText(guide.m_archives / "readme.txt"));
    guide.Expect(ReadText(guide.m_archives / "autorun.inf") == start + tail, "autorun.inf opens the archive");
    tourShowPatient(guide, "");
}

void tourPlayArchiveVolumes(tourCGuide& guide)
{
    SaveOtherFormat(guide, kFileTypeVolumes);
}

void tourPlayArchiveEarlier(tourCGuide& guide)
{
    SaveOtherFormat(guide, kFileTypeEarlier);
}

void tourPlayArchiveLoad(tourCGuide& guide)
{
    const auto archives = FilesIn(guide.m_archives, ".kaz");
    guide.OnUi([&] {
        const std::string folder =
            (guide.m_archives.parent_path().parent_path() / "Second Practice").string();
        CString error;
        guide.Expect(hostCPractice::Create(folder.c_str(), 0, error) != FALSE, "an empty second practice");
        auto* const frame = static_cast<hostCFrame*>(CWnd::FromHandlePermanent(guide.GetFrame()));
        guide.Expect(frame->OpenPractice(folder.c_str()) != FALSE, "it opens");
        velSetIniString("Defaults", "ArchiveFilePath", guide.m_archives.string().c_str());
    });
    guide.PracticeChanged();
    guide.Expect(tourCountRows(guide, IDC_PATIENTS) == 0, "no patient in the list");
    guide.Expect(tourCountRows(guide, IDC_AUDIT) == 0, "no event in the audit log");

    const Dialog dialog = tourOpenArchiveDialog(guide, ID_ARCHIVE_LOAD);
    guide.Expect(!dialog.Item(IDC_ARC_SAVE_ARCHIVE).IsEnabled(), "without a patient nothing can be saved");
    guide.Picture(dialog.Handle(), "archive-load");
    dialog.Press(IDOK);
    std::string names;
    for (const auto& path : archives)
    {
        names += (names.empty() ? "\"" : " \"") + path.filename().string() + "\"";
    }
    tourAnswerOpen(guide, names);
    tourAnswerBox(guide,
                  "You are about to load multiple patients from Archive, do you want to delete the archive "
                  "files when the "
                  "operation is finished?",
                  IDNO, "load-several", "No");
    dialog.WaitForClosed();
    guide.ExpectResult("ArchiveDlg: " + std::to_string(archives.size()) +
                       " events recorded in the audit log");
    std::vector<tourCGuide::Event> events;
    events.reserve(archives.size());
    for (const auto& path : archives)
    {
        events.push_back(tourLoadedEvent(guide.m_saved.at(path.stem().string())));
    }
    guide.ExpectEvents(events);
    for (const auto& path : archives)
    {
        tourExpectAsSaved(guide, path.stem().string(), true);
    }
    guide.Expect(tourCountRows(guide, IDC_PATIENTS) == static_cast<int>(archives.size()),
                 "all of them are in the list");
    guide.Expect(FilesIn(guide.m_archives, ".kaz").size() == archives.size(), "the archives are kept");
    guide.Picture(guide.GetFrame(), "second-practice");
}

void tourPlayLoadVolumes(tourCGuide& guide)
{
    LoadOtherFormat(guide, kFileTypeVolumes);
}

void tourPlayLoadEarlier(tourCGuide& guide)
{
    LoadOtherFormat(guide, kFileTypeEarlier);
}

void tourPlayLoadExisting(tourCGuide& guide)
{
    const std::string id = FindArchivedWithTimepoints(guide);
    const Dialog dialog = tourOpenArchiveDialog(guide, ID_ARCHIVE_LOAD);
    dialog.Press(IDOK);
    tourAnswerOpen(guide, (guide.m_archives / (id + ".kaz")).string());
    tourAnswerBox(guide, "Patient " + guide.m_saved.at(id).name + " (ID:" + id + ") already exists.", IDOK,
                  "exists");
    tourAnswerBox(guide, "Error has occured when loading the patient from Archive", IDOK, "load-failed");
    dialog.WaitForClosed();
    guide.ExpectResult("ArchiveDlg: finished, nothing recorded in the audit log");
    guide.ExpectNoEvent();
    tourExpectAsSaved(guide, id, true);
}

void tourPlayArchiveMerge(tourCGuide& guide)
{
    const std::string& target = guide.m_patientID;
    const std::string source = FindArchivedWithTimepoints(guide);
    const std::string path = (guide.m_archives / (source + ".kaz")).string();
    const tourSPatient& archived = guide.m_saved.at(source);
    const tourSPatient before = tourReadPatient(guide, target);
    const std::string question =
        "The data being merged does not appear to be for the selected patient.\r\n\r\nThe "
        "SELECTED patient is:\r\n     " +
        target + ": " + before.name + "\r\n\r\nThe MERGE DATA appears to be for:\r\n     " + source + ": " +
        archived.name + "\r\n\r\nWould you like to merge the data anyway?";
    tourShowPatient(guide, target);
    const Dialog dialog = tourOpenArchiveDialog(guide, ID_ARCHIVE_MERGE);
    dialog.Press(IDOK);
    tourAnswerOpen(guide, path);
    tourAnswerBox(guide, question, IDNO, "mismatch");
    guide.GetScript().WaitUntil("the dialog again", [&] { return dialog.IsEnabled(); });
    guide.ExpectNoEvent();
    dialog.Press(IDOK);
    tourAnswerOpen(guide, path);
    tourAnswerBox(guide, question, IDYES, "mismatch");
    dialog.WaitForClosed();
    const std::string text = before.auditName + " data have been merged from a file (archive)";
    guide.ExpectResult("ArchiveDlg: " + text);
    guide.ExpectEvents({{dbAuditArchivedPatient, text}});

    const tourSPatient after = tourReadPatient(guide, target);
    guide.Expect(after.timepoints == before.timepoints + archived.timepoints,
                 std::to_string(after.timepoints) + " timepoints after merging " +
                     std::to_string(archived.timepoints) + " into " + std::to_string(before.timepoints));
    guide.Expect(after.details == before.details, "every other field is unchanged");
    guide.Expect(before.files.empty() && SortedContents(after) == SortedContents(archived),
                 std::to_string(after.files.size()) + " images came with them");
    tourExpectAsSaved(guide, source, true);
    guide.Expect(tourCountRows(guide, IDC_TIMEPOINTS) == after.timepoints, "the main window shows them");
    guide.WaitForThumbnails();
    guide.Picture(guide.GetFrame(), "merged");
    tourShowPatient(guide, "");
}

void tourPlayArchiveRemove(tourCGuide& guide)
{
    const std::string id = FindArchivedWithTimepoints(guide);
    const tourSPatient& saved = guide.m_saved.at(id);
    const int before = tourCountRows(guide, IDC_PATIENTS);
    tourShowPatient(guide, id);
    const Dialog saving = tourOpenArchiveDialog(guide, ID_ARCHIVE_SAVE);
    saving.Press(IDOK);
    tourAnswerSave(guide);
    guide.GetScript().WaitForDialogWith(IDC_ARC_OVERWRITE_TEXT).Press(IDYES);
    guide.GetScript().AnswerBox(RemoveQuestion(saved, id), IDYES);
    saving.WaitForClosed();
    guide.ExpectResult("ArchiveDlg: 2 events recorded in the audit log");
    guide.ExpectEvents({tourSavedEvent(saved),
                        {dbAuditPatientDeleted, saved.auditName + " has been deleted after archiving"}});
    guide.Expect(!tourIsStored(guide, id), "the patient is not in the database");
    tourShowPatient(guide, "");
    guide.Expect(tourCountRows(guide, IDC_PATIENTS) == before - 1, "one patient less in the list");

    const Dialog loading = tourOpenArchiveDialog(guide, ID_ARCHIVE_LOAD);
    loading.Press(IDOK);
    tourAnswerOpen(guide, (guide.m_archives / (id + ".kaz")).string());
    loading.WaitForClosed();
    guide.ExpectResult("ArchiveDlg: " + tourLoadedEvent(saved).text);
    guide.ExpectEvents({tourLoadedEvent(saved)});
    tourExpectAsSaved(guide, id, true);
    guide.Expect(tourCountRows(guide, IDC_PATIENTS) == before, "the patient is in the list again");
    guide.WaitForThumbnails();
    guide.Picture(guide.GetFrame(), "loaded-again");
}
