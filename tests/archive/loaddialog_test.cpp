// Loading and merging through the archive dialog.
#include "tests/archive/archivefixture.h"
#include "tests/archive/rawzip.h"
#include "tests/support/steps.h"

#include <atomic>
#include <filesystem>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using veltest::Dialog;
using veltest::DialogScript;

namespace
{
const std::string LoadFailed = "Error has occured when loading the patient from Archive";
const std::string NoHeader =
    "Cannot read the patient header file. It could be corrupt or in the wrong format.";

std::string HeaderOf(const std::string& id)
{
    return "Lee\x01"
           "Ann\x01" +
           id + "\x01\n";
}

} // namespace

TEST_F(ArchiveDialogTest, LoadsWhatWasSavedWithEveryFileAndField)
{
    const dbCPatient patient = StorePatient("A1", 3);
    StorePatient("A12"); // shares the beginning of its file names
    const auto files = WorkingFiles();
    SaveAndChange("A1");
    Load(Archive("A1"),
         {"Some patient fields, such as location and orthodontist, may have been automatically assigned.  "
          "Please visit the Patient Details screen to confirm these settings."},
         1);
    dbCPatient loaded;
    ASSERT_TRUE(loaded.Load("A1"));
    EXPECT_EQ(Describe(loaded), Describe(patient));
    auto expected = files;
    std::erase_if(expected, [](const auto& file) {
        return file.first.starts_with("A12") && !file.first.ends_with(".2DMORPH");
    });
    EXPECT_EQ(WorkingFiles(), expected);
    EXPECT_THAT(
        NewEvents(),
        ElementsAre("3 The patient (A1) Lee A1, Zo\xc3\xab data have been loaded from a file (archive)"));
    const std::string guid = patient.GetGUID().GetString();
    EXPECT_THAT(m_host.m_told,
                ElementsAre(Pair(ARCHIVE_NOTIFY_LOADED, guid), Pair(ARCHIVE_NOTIFY_REFRESH, guid)));
    EXPECT_TRUE(std::filesystem::is_empty(m_practice.Path("temp")));

    // A second time there is nothing to load.
    Load(Archive("A1"), {"Patient Zo\xeb Lee A1 (ID:A1) already exists.", LoadFailed});
    EXPECT_EQ(WorkingFiles(), expected);
}

TEST_F(ArchiveDialogTest, LoadsAndSavesInTheOtherFormats)
{
    const dbCPatient patient = StorePatient("A1");
    const auto files = WorkingFiles();
    for (const int nFilter : {1, 2})
    {
        const auto answer = [&](DialogScript& script) {
            const Dialog box = script.WaitForBox(
                "Saving records to an earlier format: \"Veltrix Version 7 or earlier\".\nThe saved files may "
                "not contain all data or images.\nDo you still want to continue?");
            EXPECT_EQ(box.DefaultButton(), "No");
            box.Press(IDYES);
        };
        SaveWith(
            "A1", nFilter == 2 ? Script(answer) : [](DialogScript&) {}, nFilter);
        EXPECT_EQ(WorkingFiles(), files);
        EXPECT_EQ(NewEvents().size(), 1u);
        // These formats hold names, ID, timepoints and the files that the list names.
        UsePractice(2);
        Load(Archive("A1", nFilter));
        dbCPatient loaded;
        ASSERT_TRUE(loaded.Load("A1")) << nFilter;
        EXPECT_EQ(loaded.GetLastname(), patient.GetLastname());
        EXPECT_EQ(loaded.GetTimepoints().GetCount(), patient.GetTimepoints().GetCount());
        const auto now = WorkingFiles();
        for (const char* pszName :
             {"A1.PF", "A100.I2A", "A101.V2A", "A100.C01", "A101.DF0", "A100.DF3", "A101.M"})
        {
            ASSERT_TRUE(now.contains(pszName)) << nFilter << pszName;
            EXPECT_EQ(now.at(pszName), files.at(pszName)) << nFilter << pszName;
        }
        m_patients.DeletePatient("A1");
        UsePractice(1);
    }
}

TEST_F(ArchiveDialogTest, RefusesWhatIsNoPatientAndLeavesThePracticeAlone)
{
    // A record whose timepoint has another patient's files; of the format without a checksum.
    std::string record = Describe(StorePatient("C1"), 2);
    record.replace(record.find("C101"), 4, "D101");
    UsePractice(2);
    RawZip foreign, contradiction, unsound;
    unsound.entries = {{"C1.PF", HeaderOf("C1")}, {"C1.ACV", record}};
    foreign.entries = {{"C1.PF", HeaderOf("..\\C1")}};
    contradiction.entries = {{"C1.PF", HeaderOf("C1")}, {"D1.PF", HeaderOf("D1")}};
    struct Case
    {
        std::string name, contents;
        std::vector<std::string> boxes;
    };
    const std::string openError = "Error opening archive file.";
    const Case cases[] = {
        {"text.kaz", "this is no zip at all", {openError, LoadFailed}},
        {"empty.kaz", RawZip().Build(), {NoHeader, LoadFailed}},
        {"foreign.kaz", foreign.Build(), {NoHeader, LoadFailed}},
        {"two.kaz", contradiction.Build(), {NoHeader, LoadFailed}},
        {"unsound.kaz", unsound.Build(), {NoHeader, LoadFailed}},
        {"text.kar", "no header", {openError, LoadFailed}},
        {"gone.kar", HeaderOf("C1"), {openError, LoadFailed}},
        {"text.PF", "no header", {openError, LoadFailed}},
        {"text.doc", "no archive", {NoHeader, LoadFailed}},
    };
    for (const Case& refused : cases)
    {
        m_practice.WriteFile("archive\\" + refused.name, refused.contents);
        Load(m_practice.Path("archive\\" + refused.name), refused.boxes);
        EXPECT_THAT(WorkingFiles(), IsEmpty()) << refused.name;
        EXPECT_EQ(m_patients.GetCount(), 0) << refused.name;
    }
    EXPECT_THAT(NewEvents(), IsEmpty());
    EXPECT_THAT(m_host.m_told, IsEmpty());
    EXPECT_TRUE(std::filesystem::is_empty(m_practice.Path("temp")));
}

TEST_F(ArchiveDialogTest, LeavesNothingOfALoadWhenTheDiskIsFullAFileInTheWayOrItIsStopped)
{
    StorePatient("A1");
    SaveAndChange("A1");
    for (const char* pszStep : {"place.made", "place.copied"})
    {
        DWORD nThread = 0;
        const veltest::AtStep full(pszStep, [&] {
            nThread = ::GetCurrentThreadId();
            dbCException::Throw(dbErrDiskFull, "A100.I05");
        });
        Load(Archive("A1"), {"", LoadFailed});
        EXPECT_TRUE(nThread != 0 && nThread != ::GetCurrentThreadId());
        EXPECT_THAT(WorkingFiles(), IsEmpty());
        EXPECT_FALSE(IsStored("A1"));
    }
    // No file, but in the way all the same.
    std::filesystem::create_directory(m_practice.Path("working2\\A1.PF"));
    Load(Archive("A1"), {"", LoadFailed});
    EXPECT_FALSE(IsStored("A1"));
    std::filesystem::remove(m_practice.Path("working2\\A1.PF"));
    m_practice.WriteFile("working2\\A101.V2A", "somebody's");
    const auto before = WorkingFiles();
    Load(Archive("A1"), {"", LoadFailed});
    EXPECT_EQ(WorkingFiles(), before);
    EXPECT_FALSE(IsStored("A1"));
    std::filesystem::remove(m_practice.Path("working2\\A101.V2A"));

    // The worker waits at its first file until the status thread has been told to quit.
    std::atomic<bool> bReached = false, bTold = false;
    {
        const veltest::AtStep placing("place.made", [&] {
            bReached = true;
            for (int i = 0; i < 2000 && !bTold; ++i)
                ::Sleep(10);
        });
        Play(ARCHIVE_OP_LOAD, {}, {Archive("A1")}, [&](DialogScript& script) {
            script.WaitUntil("a file in its place", [&] { return bReached.load(); });
            const Dialog progress = script.WaitForDialogWith(IDC_ARC_PROGRESS_BAR);
            const DWORD nThread = ::GetWindowThreadProcessId(progress.Handle(), nullptr);
            ::PostThreadMessage(nThread, WM_QUIT, 0, 0);
            script.Settle(progress.Handle());
            bTold = true;
            script.AnswerBox("The archive process was cancelled", IDOK);
            script.AnswerBox(LoadFailed, IDOK);
        });
    }
    EXPECT_THAT(WorkingFiles(), IsEmpty());
    EXPECT_FALSE(IsStored("A1"));
    EXPECT_TRUE(std::filesystem::is_empty(m_practice.Path("temp")));
    Load(Archive("A1"));
}

TEST_F(ArchiveDialogTest, RefusesWhileTheScratchFolderOrTheIDIsTaken)
{
    StorePatient("A1");
    SaveAndChange("A1");
    const HANDLE hBusy = ::CreateFile(m_practice.Path("temp\\VELTMP.LCK").c_str(), GENERIC_WRITE, 0, nullptr,
                                      CREATE_NEW, FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    ASSERT_NE(hBusy, INVALID_HANDLE_VALUE);
    Load(Archive("A1"),
         {"Another program on this computer is reading an archive.  Please try again when it has "
          "finished.",
          LoadFailed});
    ::CloseHandle(hBusy);
    std::filesystem::create_directory(m_practice.Path("temp\\VELTMP"));
    const HANDLE hViewed = ::CreateFile(m_practice.Path("temp\\VELTMP\\A1.PF").c_str(), GENERIC_WRITE, 0,
                                        nullptr, CREATE_NEW, 0, nullptr);
    Load(Archive("A1"), {"The folder \"" + m_practice.Path("temp\\VELTMP") +
                             "\", into which archives are unpacked, cannot be made or emptied.  A file in it "
                             "may be in use.",
                         LoadFailed});
    ::CloseHandle(hViewed);
    EXPECT_FALSE(IsStored("A1"));

    // A patient marked as deleted, whose files are still in use.
    StorePatient("A1", 1, 10);
    const HANDLE hHeld = ::CreateFile(m_practice.Path("working2\\A100.I2A").c_str(), GENERIC_READ, 0, nullptr,
                                      OPEN_EXISTING, 0, nullptr);
    m_patients.DeletePatient("A1");
    Load(Archive("A1"), {"Patient Zo\xeb Lee A1 (ID:A1) is marked as deleted.", LoadFailed});
    ::CloseHandle(hHeld);
    UsePractice(2); // finishes the removal
    Load(Archive("A1"));
    EXPECT_TRUE(IsStored("A1"));
}

TEST_F(ArchiveDialogTest, LoadsSeveralAndDeletesTheirArchivesUnlessSomethingWasLeftBehind)
{
    for (const char* pszID : {"A1", "B1"})
        StorePatient(pszID);
    dbCPatient referred = StorePatient("C1");
    referred.GetReferrals().AddReferralDoc(referred.GetGUID(), velCDate(2020, 1, 2), "by nobody");
    {
        const veltest::AtStep refer("save.record",
                                    [&] { m_practice.WriteFile("temp\\C1.ACV", Describe(referred)); });
        Save("C1");
    }
    // Fits the longer ID too, which the second practice has.
    m_practice.WriteFile("working1\\B12.2dmorph", "B1's or B12's");
    Save("A1");
    SaveAndChange("B1");
    StorePatient("B12");
    m_practice.WriteFile("working2\\B12.2dmorph", "B12's");
    Play(ARCHIVE_OP_LOAD, {}, {Archive("A1"), Archive("X1"), Archive("B1"), Archive("C1")},
         [&](DialogScript& script) {
             const Dialog box = script.WaitForBox("You are about to load multiple patients from Archive, do "
                                                  "you want to delete the archive files "
                                                  "when the operation is finished?");
             EXPECT_EQ(box.DefaultButton(), "No");
             box.Press(IDYES);
             script.AnswerBox(
                 "The actual zip file of patient X1, ID:X1 is missing. Load process failed for this patient.",
                 IDOK);
             script.AnswerBox(
                 "Error has occured when loading the patient from Archive. Choose OK to continue on "
                 "loading the next patient or Cancel to exit archiving.",
                 IDOK);
             EXPECT_THAT(script.WaitForBox().BoxText(), testing::EndsWith(":\n\nB12.2dmorph\n"));
             script.AnswerBox("", IDOK);
             script.AnswerBox(
                 "Referrals in the archive that name no doctor could not be taken over.  They stay in "
                 "the archive.",
                 IDOK);
         });
    EXPECT_TRUE(IsStored("A1") && IsStored("B1") && IsStored("C1"));
    EXPECT_FALSE(std::filesystem::exists(Archive("A1")));
    EXPECT_TRUE(std::filesystem::exists(Archive("B1")) && std::filesystem::exists(Archive("C1")));
    EXPECT_EQ(m_practice.ReadFile("working2\\B12.2dmorph"), "B12's");

    const auto refused = [&](DialogScript& script) {
        WaitForChoice(script).Press(IDOK);
        script.AnswerBox(
            "Loading multiple non-Premium archive files is not supported. Please load one file at a time.",
            IDOK);
        WaitForChoice(script).Press(IDCANCEL);
    };
    EXPECT_EQ(Run(ARCHIVE_OP_LOAD, {}, {Archive("A1"), Archive("B1", 1)}, refused), IDCANCEL);
}

TEST_F(ArchiveDialogTest, MergesUnderNewNumbers)
{
    StorePatient("A1", 2);
    const auto archived = WorkingFiles();
    SaveAndChange("A1");
    StorePatient("A1", 3, 10);
    StorePatient("B1", 1, 10);
    const auto before = WorkingFiles();

    // The same patient: nothing is asked.
    Merge("A1", Archive("A1"), [](DialogScript&) {});
    dbCPatient merged;
    ASSERT_TRUE(merged.Load("A1"));
    ASSERT_EQ(merged.GetTimepoints().GetCount(), 5);
    EXPECT_EQ(merged.GetTimepoint(3).GetBaseFilename(), CString("A103"));
    EXPECT_EQ(merged.GetTimepoint(4).GetName(), CString("T1"));
    EXPECT_EQ(merged.GetTimepoint(4).GetImageInfo(2, 0).strTitle, CString("lateral"));
    const auto now = WorkingFiles();
    for (const char* pszRest : {".I2A", ".V2A", ".I2A.AVI", ".DF0", ".M", ".C01"})
        EXPECT_EQ(now.at(std::string("A104") + pszRest), archived.at(std::string("A101") + pszRest))
            << pszRest;
    EXPECT_EQ(now.at("A1$03$MOVIE.AVI"), Sum("extra"));
    for (const auto& [name, contents] : before)
        EXPECT_TRUE(name == "A1.PF" || now.at(name) == contents) << name;
    EXPECT_THAT(
        NewEvents(),
        ElementsAre("3 The patient (A1) Lee A1, Zo\xc3\xab data have been merged from a file (archive)"));
    EXPECT_THAT(m_host.m_told, ElementsAre(Pair(ARCHIVE_NOTIFY_MERGED, merged.GetGUID().GetString())));

    // Another patient: asked, and No leaves everything.
    const std::string mismatch =
        "The data being merged does not appear to be for the selected patient.\r\n\r\nThe SELECTED "
        "patient is:\r\n     B1: Zo\xeb Lee B1\r\n\r\nThe MERGE DATA appears to be for:\r\n     "
        "A1: Zo\xeb Lee A1\r\n\r\nWould you like to merge the data anyway?";
    const auto refuse = [&](DialogScript& script) {
        WaitForChoice(script).Press(IDOK);
        const Dialog box = script.WaitForBox();
        EXPECT_EQ(box.BoxText(), mismatch);
        EXPECT_EQ(box.Title(), "Mismatch");
        EXPECT_TRUE(box.HasIcon(IDI_EXCLAMATION));
        box.Press(IDNO);
        WaitForChoice(script).Press(IDCANCEL);
    };
    EXPECT_EQ(Run(ARCHIVE_OP_MERGE, {"B1"}, {Archive("A1")}, refuse), IDCANCEL);
    Merge("B1", Archive("A1"), [](DialogScript& script) { script.AnswerBox("", IDYES); });
    EXPECT_TRUE(WorkingFiles().contains("B101.I2A"));
}

TEST_F(ArchiveDialogTest, RefusesAMergeThatDoesNotFitAndOldArchives)
{
    StorePatient("A1", 2);
    SaveAndChange("A1");
    dbCPatient patient = StorePatient("A1", 1, 10);
    while (patient.GetTimepoints().GetCount() < 99)
        ASSERT_EQ(patient.GetTimepoints().Add(&patient, dbCTimepoint(), TRUE, FALSE), 0);
    patient.Save();
    const auto before = WorkingFiles();
    m_practice.WriteFile("archive\\A1.kar", HeaderOf("A1"));
    const std::pair<std::string, const char*> refusals[] = {
        {Archive("A1"), "The maximum number of timepoints (100) has already been reached for this patient."},
        {Archive("A1", 1),
         "Merging from the old archive file is not supported. Please use Get Patient From Archive to load "
         "the "
         "patient back to Veltrix first. Then use Copy / Paste timepoint to merge the timepoints."}};
    for (const auto& [path, pszText] : refusals)
    {
        Merge("A1", path, [text = pszText](DialogScript& script) { script.AnswerBox(text, IDOK); });
        EXPECT_EQ(WorkingFiles(), before);
    }
    ASSERT_TRUE(patient.Load("A1"));
    EXPECT_EQ(patient.GetTimepoints().GetCount(), 99);
}
