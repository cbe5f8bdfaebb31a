#include "host/tour/archivesteps.h"

#include "archive/archivedlgres.h"
#include "host/hostframe.h"
#include "host/hostpractice.h"
#include "host/hostres.h"
#include "suite/patients/dbpatients.h"
#include "suite/util/velini.h"

#include <filesystem>

using veltest::Dialog;
using veltest::DialogScript;

namespace
{

constexpr int kFileName = 0x47C; // the name field of the system's file dialogs

Dialog OpenArchiveDialog(tourCGuide& guide, int command)
{
    guide.Choose(command);
    return guide.GetScript().WaitForDialog("Archive Patient Files");
}

// Takes the name that is offered, or enters names.
void AnswerFileDialog(tourCGuide& guide, const std::string& title, const std::string& button,
                      const std::string& names = {})
{
    DialogScript& script = guide.GetScript();
    const Dialog dialog = script.WaitForDialog(title);
    if (names.empty())
    {
        script.WaitUntil("a name is offered",
                         [&] { return dialog.Has(kFileName) && !dialog.Item(kFileName).Text().empty(); });
    }
    else
    {
        dialog.Item(kFileName).SetText(names);
    }
    guide.Picture(dialog.Handle(), "archive-file");
    dialog.Press(button);
    dialog.WaitForClosed();
}

std::string SavedText(tourCGuide& guide, const std::string& id)
{
    std::string text;
    guide.OnUi(
        [&]
        {
            dbCPatient patient;
            patient.Load(id.c_str());
            text = "The patient (" + id + ") " + patient.GetLastname().GetString() + ", " +
                   patient.GetFirstname().GetString() + " data has been saved into a file (archive)";
        });
    return text;
}

std::filesystem::path ArchiveFolder(tourCGuide& guide)
{
    std::string folder;
    guide.OnUi([&] { folder = velGetIniString("Defaults", "ArchiveFilePath").GetString(); });
    return folder;
}

std::vector<std::filesystem::path> Archives(tourCGuide& guide)
{
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(ArchiveFolder(guide)))
    {
        if (entry.path().extension() == ".kaz")
        {
            paths.push_back(entry.path());
        }
    }
    return paths;
}

int CountRows(tourCGuide& guide, int list)
{
    return static_cast<int>(guide.Child(list).Send(LVM_GETITEMCOUNT));
}

} // namespace

void tourPlayArchiveOne(tourCGuide& guide)
{
    DialogScript& script = guide.GetScript();
    guide.Child(IDC_SEARCH_BY).Choose(1);
    guide.Child(IDC_SEARCH).Replace(guide.m_patientID);
    script.WaitUntil("the patient in the list", [&] { return CountRows(guide, IDC_PATIENTS) == 1; });
    script.Settle(guide.GetFrame());

    const Dialog dialog = OpenArchiveDialog(guide, ID_ARCHIVE_SAVE);
    guide.Picture(dialog.Handle(), "archive");
    dialog.Press(IDOK);
    AnswerFileDialog(guide, "Save archive file...", "Save");
    script.AnswerBox("", IDNO);
    dialog.WaitForClosed();
    guide.ExpectResult("ArchiveDlg: OK");
    guide.ExpectEvent(dbAuditArchivedPatient, SavedText(guide, guide.m_patientID));
    guide.Expect(Archives(guide).size() == 4, "4 archives");

    guide.Child(IDC_SEARCH).Replace("");
    guide.Child(IDC_SEARCH_BY).Choose(0);
    script.Settle(guide.GetFrame());
}

void tourPlayArchiveSeveral(tourCGuide& guide)
{
    const Dialog dialog = OpenArchiveDialog(guide, ID_ARCHIVE_SAVE);
    guide.Expect(!dialog.Item(IDC_ARC_MERGE).IsEnabled(), "several patients cannot be merged into");
    dialog.Press(IDOK);
    guide.GetScript().AnswerBox("You are about to save multiple patients to Archive, do you want to delete the patients "
                                "from the patient list when the operation is finished?",
                                IDNO);
    AnswerFileDialog(guide, "Save archive file...", "Save");
    dialog.WaitForClosed();
    guide.ExpectResult("ArchiveDlg: OK");
    guide.ExpectEvents(dbAuditArchivedPatient, 3);
    guide.Expect(Archives(guide).size() == 3, std::to_string(Archives(guide).size()) + " archives");
}

void tourPlayArchiveLoad(tourCGuide& guide)
{
    DialogScript& script = guide.GetScript();
    const auto archives = Archives(guide);
    guide.OnUi(
        [&]
        {
            const std::filesystem::path folder =
                std::filesystem::path(dbCPatients::GetPath().GetString()).parent_path().parent_path() / "Second Practice";
            const CString archiveFolder = velGetIniString("Defaults", "ArchiveFilePath");
            CString error;
            guide.Expect(hostCPractice::Create(folder.string().c_str(), 0, error) != FALSE, "an empty second practice");
            auto* const frame = static_cast<hostCFrame*>(CWnd::FromHandlePermanent(guide.GetFrame()));
            guide.Expect(frame->OpenPractice(folder.string().c_str()) != FALSE, "it opens");
            velSetIniString("Defaults", "ArchiveFilePath", archiveFolder);
        });
    guide.Expect(CountRows(guide, IDC_PATIENTS) == 0, "no patient in the list");
    guide.ExpectNoEvent();

    const Dialog dialog = OpenArchiveDialog(guide, ID_ARCHIVE_LOAD);
    guide.Expect(!dialog.Item(IDC_ARC_SAVE_ARCHIVE).IsEnabled(), "without a patient nothing can be saved");
    dialog.Press(IDOK);
    std::string names;
    for (const auto& path : archives)
    {
        names += (names.empty() ? "\"" : " \"") + path.filename().string() + "\"";
    }
    AnswerFileDialog(guide, "Choose archive file...", "Open", names);
    script.AnswerBox("You are about to load multiple patients from Archive, do you want to delete the archive files when "
                     "the operation is finished?",
                     IDNO);
    for (std::size_t i = 0; i < archives.size(); ++i)
    {
        script.AnswerBox("Some patient fields, such as location and orthodontist, may have been automatically assigned.  "
                         "Please visit the Patient Details screen to confirm these settings.",
                         IDOK);
    }
    dialog.WaitForClosed();
    guide.ExpectResult("ArchiveDlg: OK");
    guide.Expect(CountRows(guide, IDC_PATIENTS) == static_cast<int>(archives.size()),
                 std::to_string(CountRows(guide, IDC_PATIENTS)) + " patients in the list");
    guide.Expect(CountRows(guide, IDC_AUDIT) == static_cast<int>(archives.size()), "the loads are in the audit log");
    guide.Picture(guide.GetFrame(), "second-practice");
}

void tourPlayArchiveMerge(tourCGuide& guide)
{
    DialogScript& script = guide.GetScript();
    // The first that has timepoints.
    int timepoints = 0;
    for (int row = 0; row < CountRows(guide, IDC_PATIENTS) && timepoints == 0; ++row)
    {
        guide.Child(IDC_PATIENTS).SelectRow(row);
        script.Settle(guide.GetFrame());
        timepoints = CountRows(guide, IDC_TIMEPOINTS);
    }
    std::string archive;
    guide.OnUi(
        [&]
        {
            dbTList<dbSPatientListRow> rows;
            dbCPatients().GetPage(dbSearchName, "", nullptr, 100, rows);
            for (const dbSPatientListRow& row : rows)
            {
                dbCPatient patient;
                if (archive.empty() && patient.Load(row.strGUID) && patient.GetTimepoints().GetCount() > 0)
                {
                    archive = std::string(row.strID.GetString()) + ".kaz";
                }
            }
        });
    const Dialog dialog = OpenArchiveDialog(guide, ID_ARCHIVE_MERGE);
    dialog.Press(IDOK);
    AnswerFileDialog(guide, "Choose archive file...", "Open", archive);
    dialog.WaitForClosed();
    script.Settle(guide.GetFrame());
    guide.ExpectResult("Timepoints merged into the patient");
    guide.Expect(timepoints > 0 && CountRows(guide, IDC_TIMEPOINTS) == 2 * timepoints,
                 std::to_string(CountRows(guide, IDC_TIMEPOINTS)) + " timepoints after merging " +
                     std::to_string(timepoints));
    guide.Picture(guide.GetFrame(), "merged");
}
