// Saving patients through the archive dialog.
#include "tests/archive/archivefixture.h"
#include "tests/support/sql.h"
#include "tests/support/steps.h"

#include <algorithm>
#include <filesystem>
#include <optional>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::StartsWith;
using veltest::Dialog;
using veltest::DialogScript;

namespace
{
const std::string NotCreated =
    "Couldn't create archive file. Please check if the drive or the existing archive file is read-only.";
const std::string RetryText =
    "Error has occured when saving the patient. Choose Retry to try again, Ignore to continue "
    "saving the next patient or Abort to exit archiving.";
// Holds a patient in this mode, or else everything.
VEL_CHILD_PROCESS(hold) // database, file to make when it is held, ID, mode
{
    dbCPatients::Open(arguments[0].c_str());
    std::optional<dbCTransaction> transaction;
    if (arguments.size() == 2)
        transaction.emplace();
    else
        dbCPatients().LockPatient(arguments[2].c_str(), std::stoi(arguments[3]));
    ::CloseHandle(::CreateFile(arguments[1].c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
    ::Sleep(60'000);
    return 0;
}

std::unique_ptr<veltest::ChildProcess> Hold(const std::vector<std::string>& arguments)
{
    auto pChild = std::make_unique<veltest::ChildProcess>("hold", arguments);
    for (int i = 0; i < 1000 && !std::filesystem::exists(arguments[1]); ++i)
        ::Sleep(20);
    EXPECT_TRUE(std::filesystem::exists(arguments[1]));
    return pChild;
}
} // namespace

TEST_F(ArchiveDialogTest, SavesOnePatientAndRemovesItWhenWanted)
{
    const dbCPatient patient = StorePatient("A1");
    const std::string guid = patient.GetGUID().GetString();
    const veltest::AtStep hide("save.worked",
                               [&] { ::SetFileAttributes(Archive("A1").c_str(), FILE_ATTRIBUTE_HIDDEN); });
    const auto isHidden = [&] {
        return (::GetFileAttributes(Archive("A1").c_str()) & FILE_ATTRIBUTE_HIDDEN) != 0;
    };
    for (const int nAnswer : {IDNO, IDYES})
    {
        SaveWith("A1", [&](DialogScript& script) {
            if (nAnswer == IDYES)
            {
                const Dialog overwrite = script.WaitForDialogWith(IDC_ARC_OVERWRITE_TEXT);
                EXPECT_EQ(overwrite.Item(IDC_ARC_OVERWRITE_TEXT).Text(),
                          "Do you want to replace existing file?\n A1.kaz");
                EXPECT_FALSE(overwrite.Item(IDC_ARC_OVERWRITE_ALL).IsVisible());
                veltest::ExpectWellMade(overwrite, "archive-overwrite");
                overwrite.Press(IDYES);
            }
            const Dialog box = script.WaitForBox("\"Zo\xeb Lee A1\" (ID:A1) successfully archived.  Remove "
                                                 "this patient from the patient list?");
            EXPECT_EQ(box.DefaultButton(), "No");
            box.Press(nAnswer);
        });
        EXPECT_EQ(IsStored("A1"), nAnswer == IDNO);
        for (int i = 0; i < 1000 && isHidden(); ++i)
            ::Sleep(20); // what shows it goes on by itself
        EXPECT_FALSE(isHidden());
    }
    EXPECT_THAT(NewEvents(),
                ElementsAre("3 The patient (A1) Lee A1, Zo\xc3\xab data has been saved into a file (archive)",
                            "3 The patient (A1) Lee A1, Zo\xc3\xab data has been saved into a file (archive)",
                            "4 The patient (A1) Lee A1, Zo\xc3\xab has been deleted after archiving"));
    EXPECT_THAT(m_host.m_told, ElementsAre(Pair(ARCHIVE_NOTIFY_REMOVED, guid)));
    EXPECT_THAT(WorkingFiles(), IsEmpty());
    // Neither the record nor the replaced archive is left.
    EXPECT_TRUE(std::filesystem::is_empty(m_practice.Path("temp")));
    EXPECT_EQ(FilesIn("archive").size(), 1u);
}

TEST_F(ArchiveDialogTest, RemovesExactlyWhatIsInTheArchive)
{
    StorePatient("A1");
    StorePatient("A12");
    // Nobody's, never archived, and of another patient.
    const char* const stay[] = {"A100.I2A.JPEG", "A101.M1", "A100.C01", "A101.KAZ", "A101.PF",
                                "A102.M2",       "A102.M3", "A102.M4",  "A102.M5"};
    for (const char* pszName : stay)
        m_practice.WriteFile(std::string("working1\\") + pszName, "mine");
    m_practice.WriteFile("working1\\A100.I40", "in its place"); // so that ".C01" is not archived
    auto expected = WorkingFiles();
    std::erase_if(expected, [&](const auto& file) {
        return !file.first.starts_with("A12") &&
               std::find(std::begin(stay), std::end(stay), file.first) == std::end(stay);
    });
    SaveWith("A1", [&](DialogScript& script) {
        const Dialog box = script.WaitForBox();
        m_practice.WriteFile("working1\\A100.I2B", "arrived");
        const std::string bytes = m_practice.ReadFile("working1\\A101.V2A");
        m_practice.WriteFile("working1\\A101.V2A", std::string(bytes.size(), 'z'));
        const std::string grown = m_practice.Path("working1\\A100.V2A"); // without a trace in its time
        const auto written = std::filesystem::last_write_time(grown);
        m_practice.WriteFile("working1\\A100.V2A", bytes + "more");
        std::filesystem::last_write_time(grown, written);
        box.Press(IDYES);
        EXPECT_EQ(
            script.WaitForBox().BoxText(),
            "These files are not in the archive, or were changed since it was written.  They stay in the "
            "folder " +
                m_practice.Path("working1\\") +
                ":\n\nA100.C01\nA100.I2B\nA100.V2A\nA101.V2A\nA100.I2A.JPEG\nA101.KAZ\nA101.M1\n"
                "A102.M2\nA102.M3\nA102.M4\nand 1 more");
        script.AnswerBox("", IDOK);
    });
    EXPECT_FALSE(IsStored("A1"));
    expected["A100.I2B"] = Sum("arrived");
    expected["A100.V2A"] = Sum(m_practice.ReadFile("working1\\A100.V2A"));
    expected["A101.V2A"] = Sum(std::string(m_practice.ReadFile("working1\\A101.V2A").size(), 'z'));
    EXPECT_EQ(WorkingFiles(), expected);
}

TEST_F(ArchiveDialogTest, KeepsAPatientThatWasChangedSinceItWasArchived)
{
    dbCPatient patient = StorePatient("A1");
    for (const char* pszStep : {"save.recorded", "save.listed"})
    {
        const veltest::AtStep change(pszStep, [&] {
            patient.SetNotes("changed elsewhere");
            patient.Save();
        });
        SaveWith("A1", [&](DialogScript& script) {
            script.AnswerBox("", IDYES);
            script.AnswerBox("The patient \"A1\" was changed by somebody after the archive was written and "
                             "stays in the patient list.",
                             IDOK);
        });
        EXPECT_TRUE(IsStored("A1"));
        std::filesystem::remove(Archive("A1"));
        patient.SetNotes("");
        patient.Save();
    }
}

// The other formats hold the timepoints in the patient file alone.
TEST_F(ArchiveDialogTest, ThePatientFileIsOfTheRecordAsItIs)
{
    dbCPatient patient = StorePatient("A1");
    const HANDLE hViewer = ::CreateFile(m_practice.Path("working1\\A1.PF").c_str(), GENERIC_READ,
                                        FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(hViewer, INVALID_HANDLE_VALUE);
    EXPECT_EQ(patient.GetTimepoints().Add(&patient, dbCTimepoint(), TRUE, FALSE), 0);
    patient.Save();
    ExpectRefused(1, "The patient file \"" + m_practice.Path("working1\\A1.PF") +
                         "\" cannot be written.  Another program may have it open.");
    ::CloseHandle(hViewer);
    Save("A1", 1);
    UsePractice(2);
    Load(Archive("A1", 1));
    ASSERT_TRUE(patient.Load("A1"));
    EXPECT_EQ(patient.GetTimepoints().GetCount(), 3);

    // Somebody writes it while the earlier format's is in its place.
    const veltest::AtStep rename("save.patientFile", [&] {
        patient.SetLastname("Elsewhere");
        patient.Save();
    });
    Save("A1", 2);
    EXPECT_THAT(m_practice.ReadFile("working2\\A1.PF"), StartsWith("Elsewhere\x01"));
}

// What a load would refuse is not reported as saved, and what it needs is written anew.
TEST_F(ArchiveDialogTest, ProvesTheArchiveAsALoadWouldReadIt)
{
    StorePatient("B1");
    StorePatient("A1");
    const auto files = WorkingFiles();
    for (const char* pszName : {"temp\\X9.ACV", "temp\\X9.ACV.LCK"})
        m_practice.WriteFile(pszName, "of a save that ended with its process");
    const std::string patientFile = m_practice.Path("working1\\A1.PF");
    const std::function<void()> spoils[] = {
        [&] { std::filesystem::remove(patientFile); },
        [&] { m_practice.WriteFile("working1\\A1.PF", m_practice.ReadFile("working1\\B1.PF")); }};
    for (const auto& spoil : spoils)
    {
        spoil();
        Save("A1");
        EXPECT_EQ(WorkingFiles(), files);
        std::filesystem::remove(Archive("A1"));
    }

    // Another record comes under the scratch file's name: of another patient, a torn one, of the same ID.
    std::string bytes;
    {
        const veltest::AtStep take("save.record", [&] { bytes = m_practice.ReadFile("temp\\B1.ACV"); });
        Save("B1");
    }
    ASSERT_GT(bytes.size(), 200u);
    dbCPatient other;
    other.SetID("A1");
    other.SetLastname("Lee");
    other.SetGUID("{0F0E0D0C-0B0A-0908-0706-050403020100}");
    for (const std::string& record : {bytes, bytes.substr(0, bytes.size() / 2), Describe(other)})
    {
        const veltest::AtStep replace("save.record", [&] { m_practice.WriteFile("temp\\A1.ACV", record); });
        SaveWith("A1", [](DialogScript& script) { script.AnswerBox(NotCreated, IDOK); });
        EXPECT_FALSE(std::filesystem::exists(Archive("A1")));
    }

    // The patient file goes, or becomes another's, when it has just been looked at; or it never is right.
    for (const int nFilter : {0, 1})
    {
        for (const auto& spoil : spoils)
        {
            const veltest::AtStep prepared("save.prepared", spoil);
            SaveWith(
                "A1", [](DialogScript& script) { script.AnswerBox(NotCreated, IDOK); }, nFilter);
            EXPECT_FALSE(std::filesystem::exists(Archive("A1", nFilter)));
        }
    }
    {
        const veltest::AtStep written("patientFile.written", spoils[1]);
        ExpectRefused(1, "The patient file \"" + patientFile +
                             "\" cannot be written.  Another program may have it open.");
    }
    EXPECT_EQ(NewEvents().size(), 3u);
    EXPECT_TRUE(std::filesystem::is_empty(m_practice.Path("temp")));
}

TEST_F(ArchiveDialogTest, KeepsWhoOwes)
{
    dbCPatient patient = StorePatient("A1");
    patient.SetBalance(100);
    const auto remove = [](DialogScript& script) {
        script.AnswerBox("", IDYES);
        script.AnswerBox("You cannot remove this patient from patient list until their balance is zero.",
                         IDOK);
    };
    SaveWith("A1", remove, 0, 1);
    EXPECT_TRUE(IsStored("A1"));
    EXPECT_EQ(NewEvents().size(), 1u);

    StorePatient("B1");
    const auto owing = [&](DialogScript& script) {
        script.WaitForDialogWith(IDC_ARC_OVERWRITE_TEXT).Press(IDC_ARC_OVERWRITE_ALL);
        script.AnswerBox("You cannot remove patient: \"Lee A1,  Zo\xeb\" (ID:A1) from patient list until "
                         "their balance is zero.",
                         IDOK);
    };
    SaveSeveral({"A1", "B1"}, IDYES, owing, 1);
    EXPECT_TRUE(IsStored("A1"));
    EXPECT_FALSE(IsStored("B1"));
}

TEST_F(ArchiveDialogTest, GoesOnAfterAFailureAsTheUserWants)
{
    for (const char* pszID : {"A1", "B1", "C1"})
        StorePatient(pszID);
    const std::pair<int, std::vector<std::string>> cases[] = {// the answer, the archives that are new
                                                              {IDABORT, {"A1"}},
                                                              {IDIGNORE, {"A1", "C1"}},
                                                              {IDRETRY, {"A1", "B1", "C1"}}};
    for (const auto& [nAnswer, archives] : cases)
    {
        for (const char* pszID : {"A1", "C1"})
            std::filesystem::remove(Archive(pszID));
        ChangeWorkers();
        m_practice.WriteFile("archive\\B1.kaz", "somebody's");
        ::SetFileAttributes(Archive("B1").c_str(), FILE_ATTRIBUTE_READONLY);
        const auto play = [&, nChosen = nAnswer](DialogScript& script) {
            script.WaitForDialogWith(IDC_ARC_OVERWRITE_TEXT).Press(IDYES);
            script.AnswerBox(NotCreated, IDOK);
            const Dialog box = script.WaitForBox(RetryText);
            EXPECT_EQ(m_practice.ReadFile("archive\\B1.kaz"), "somebody's");
            ::SetFileAttributes(Archive("B1").c_str(), FILE_ATTRIBUTE_NORMAL);
            box.Press(nChosen);
        };
        SaveSeveral({"A1", "B1", "C1"}, IDNO, play);
        EXPECT_EQ(NewEvents().size(), archives.size());
        for (const std::string& id : archives)
            EXPECT_GT(std::filesystem::file_size(Archive(id)), 100u);
    }
}

TEST_F(ArchiveDialogTest, LeavesALockedPatientAlone)
{
    StorePatient("A1");
    {
        const auto pHolder = Hold({m_database, m_practice.Path("ready1"), "A1", "0"});
        CString strUser;
        EXPECT_EQ(m_patients.IsLocked("A1", &strUser), patLockInUse);
        ExpectRefused(0, "Patient ID \"A1\" is currently in use by \"" + std::string(strUser.GetString()) +
                             "\".\nPlease try again later.");
        EXPECT_EQ(m_patients.IsLocked("A1"), patLockInUse);
        EXPECT_FALSE(std::filesystem::exists(Archive("A1")));
    }
    const auto pViewer = Hold({m_database, m_practice.Path("ready2"), "A1", "1"});
    // Saved, but neither recorded nor removed under the eyes of who looks at it.
    SaveWith("A1", [](DialogScript& script) {
        script.AnswerBox("", IDYES);
        EXPECT_THAT(script.WaitForBox().BoxText(), StartsWith("Patient ID \"A1\" is currently in use by"));
        script.AnswerBox("", IDOK);
    });
    EXPECT_EQ(m_patients.IsLocked("A1"), patLockPassable);
    EXPECT_TRUE(std::filesystem::exists(Archive("A1")));
    EXPECT_TRUE(IsStored("A1"));
    EXPECT_THAT(NewEvents(), IsEmpty());
}

TEST_F(ArchiveDialogTest, TellsOfALockThatItCannotGiveBackAndGivesItBackWithTheNextOperation)
{
    StorePatient("A1");
    StorePatient("B1");
    std::unique_ptr<veltest::ChildProcess> pHolder;
    m_bStaysLocked = true;
    SaveWith("A1", [&](DialogScript& script) {
        const Dialog box = script.WaitForBox();
        pHolder = Hold({m_database, m_practice.Path("ready")});
        box.Press(IDNO);
        script.AnswerBox("The patient \"A1\" could not be unlocked.  Others can open it again after the next "
                         "archive operation, or when this program has ended.",
                         IDOK);
    });
    pHolder.reset();
    m_bStaysLocked = false;
    Save("B1");
    EXPECT_FALSE(m_patients.Unlock("A1"));
}

TEST_F(ArchiveDialogTest, RefusesADevicesNameAHeldRecordTooMuchAndTheWorkingFolder)
{
    StorePatient("A1");
    SaveSeveral({"A1", "AUX"}, IDNO, [&](DialogScript& script) {
        script.AnswerBox("The patient ID \"AUX\" is a name that Windows keeps for a device.  Files of this "
                         "patient cannot be archived.  Please change the patient ID first.",
                         IDOK);
        script.AnswerBox(RetryText, IDIGNORE);
    });
    EXPECT_EQ(FilesIn("archive").size(), 1u);
    std::filesystem::remove(Archive("A1"));

    const HANDLE hHeld = ::CreateFile(m_practice.Path("temp\\A1.ACV.LCK").c_str(), GENERIC_WRITE, 0, nullptr,
                                      CREATE_NEW, FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    ExpectRefused(0, "The file \"" + m_practice.Path("temp\\A1.ACV") +
                         "\" cannot be written.  Another program on this computer may be archiving a patient "
                         "with this ID.");
    ::CloseHandle(hHeld);

    std::filesystem::resize_file(m_practice.Path("working1\\A100.I2A"), 0x1'0000'0000);
    SaveWith(
        "A1",
        [](DialogScript& script) {
            script.AnswerBox(
                "The files of this patient are too large for this archive format.  Please save to a "
                ".kaz archive.",
                IDOK);
        },
        1);
    EXPECT_THAT(FilesIn("archive"), IsEmpty());

    // The archives' folder by another path, which a comparison of names would not see through.
    const auto toUnix = reinterpret_cast<char*(CDECL*)(const WCHAR*)>(reinterpret_cast<void*>(
        ::GetProcAddress(::GetModuleHandle("kernel32.dll"), "wine_get_unix_file_name")));
    ASSERT_NE(toUnix, nullptr);
    char* const otherDrive = toUnix(std::filesystem::path(m_practice.Path("archive\\")).c_str());
    m_practice.Set("Environment", "WORKING", "Z:" + std::string(otherDrive));
    ::HeapFree(::GetProcessHeap(), 0, otherDrive);
    ExpectRefused(1, "This folder holds the live patient files.  Please save the archive in another folder.");
}

TEST_F(ArchiveDialogTest, LaysOutASelfStartingDiscAndLetsOthersInWhenWanted)
{
    StorePatient("A1");
    std::string modes; // of the locks that saves take
    const veltest::AtStep locked(
        "save.locked", [&] { modes += veltest::RunSql(m_database, "SELECT mode FROM locks").at(0); });
    Save("A1");
    std::filesystem::remove(Archive("A1"));
    m_practice.WriteFile("sys\\VeltrixViewerSetup.exe", "setup");
    m_practice.WriteFile("sys\\autorunLaunchKaz.inf", std::string(60, 'x'));
    const auto withViewer = [&](DialogScript& script) {
        const Dialog choice = WaitForChoice(script);
        choice.Press(IDC_ARC_INCLUDE_VIEWER);
        choice.Press(IDC_ARC_KEEP_OTHERS_OUT);
        choice.Press(IDOK);
        TakeOfferedName(script);
        script.AnswerBox("", IDNO);
    };
    EXPECT_EQ(Run(ARCHIVE_OP_SAVE, {"A1"}, {}, withViewer), IDOK);
    EXPECT_EQ(modes, "01");
    EXPECT_EQ(m_practice.ReadFile("archive\\zzz.exe"), "setup");
    EXPECT_THAT(m_practice.ReadFile("archive\\autorun.inf"),
                StartsWith("[autorun]\r\nOPEN=LaunchKaz.exe A1.KAZx"));
}
