// The live patient files: the ".PF" file, renaming with the ID, removal with the patient.

#include "suite/patients/files/dbplacement.h"
#include "suite/patients/files/flusher.h"
#include "suite/patients/records/patientfile.h"
#include "suite/patients/store/dbsteps.h"
#include "tests/patients/testdatabase.h"

#include <aclapi.h>
#include <sddl.h>

#include <filesystem>
#include <optional>

namespace
{
using PatientFiles = DatabaseTest;

struct OpenFile
{
    explicit OpenFile(const std::string& path)
        : hFile(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr))
    {
        EXPECT_NE(hFile, INVALID_HANDLE_VALUE);
    }
    ~OpenFile()
    {
        CloseHandle(hFile);
    }
    HANDLE hFile;
};

TEST_F(PatientFiles, HeaderLineAndTimepoints)
{
    dbCPatient patient = NewPatient("A1", "A name of more than twenty-five characters", "Ann\x01\nX");
    dbCTimepoint timepoint;
    timepoint.SetName("Initial");
    timepoint.SetDate(velCDate(2024, 2, 29));
    timepoint.SetImage(7, 1);
    patient.GetTimepoints().Add(&patient, timepoint, TRUE, FALSE);
    patient.Save(dbSaveWithoutFile);
    EXPECT_TRUE(FilesIn(database.practice.Working()).empty());
    patient.Save();
    EXPECT_EQ(database.practice.ReadFile("working/A1.PF"),
              "A name of more than twent\x01"
              "Ann  X\x01"
              "A1\x01\n"
              "0 00000000 00000000 00000000 00000000 00000000 00000000 00000000 00000002\x01"
              "2024-02-29 00:00:00\x01"
              "Initial\x01\n");
    EXPECT_EQ(FilesIn(database.practice.Working()).size(), 1U) << "no scratch file stays behind";
    patient.WritePatientFile(database.practice.Path("temp").c_str());
    EXPECT_EQ(FilesIn(database.practice.Path("temp")).count("A1.PF"), 1U);
}

TEST_F(PatientFiles, OnlyAWholeTextIsRead)
{
    const std::string end = "\x01";
    const std::string head = "Lee" + end + "Ann" + end + "A1" + end;
    const auto row = [&](const std::string& number, const std::string& date = "") {
        return number + " 00000000 00000000 00000000 00000000 00000000 00000000 00000000 ffffffff" + end +
               date + end + "Initial" + end;
    };
    const std::string good = row("99", "2024-02-29 00:00:00");
    std::string many;
    for (int i = 0; i < 100; ++i)
        many += row(std::to_string(i)) + "\n";
    // What stands behind the three texts of the head, and how many timepoints it has; -1: it is no patient's.
    const std::pair<std::string, int> CASES[] = {{"\n", 0},
                                                 {"\r\n" + good + "\r\n", 1},
                                                 {"\n" + many, 100},
                                                 {"\n" + many + good + "\n", -1},
                                                 {"", -1},
                                                 {"x\n", -1},
                                                 {"more" + end + "\n", -1},
                                                 {"\n" + good, -1},
                                                 {"\n\n", -1},
                                                 {"\n" + good + "more" + end + "\n", -1},
                                                 {"\n" + row("100") + "\n", -1},
                                                 {"\n" + row("-1") + "\n", -1},
                                                 {"\n" + row("x") + "\n", -1},
                                                 {"\n" + row("1 00000000") + "\n", -1},
                                                 {"\n" + row("1", "2024-02-30 00:00:00") + "\n", -1},
                                                 {"\n" + std::string(1 << 20, '\n'), -1}};
    const auto read = [&](const std::string& text, dbCPatient& patient) {
        database.practice.WriteFile("A1.PF", text);
        return patReadPatientFile(database.practice.Path("A1.PF").c_str(), patient);
    };
    for (const auto& [text, nTimepoints] : CASES)
    {
        SCOPED_TRACE(text.substr(0, 200));
        dbCPatient patient = NewPatient("KEPT");
        EXPECT_EQ(read(head + text, patient), nTimepoints >= 0);
        EXPECT_EQ(patient.GetID(), nTimepoints >= 0 ? "A1" : "KEPT");
        EXPECT_EQ(patient.GetTimepoints().GetCount(), std::max(nTimepoints, 0));
        if (nTimepoints != 1)
            continue;
        const patCTimepoint& timepoint = patient.GetTimepoints()[0];
        EXPECT_EQ(timepoint.GetBaseFilename() + timepoint.GetName() + timepoint.GetDate().ToISO(),
                  "A199Initial2024-02-29");
        EXPECT_EQ(timepoint.GetImageBits(6), 0U);
        EXPECT_EQ(timepoint.GetImageBits(7), 0xFFFFFFFF);
    }
    dbCPatient patient;
    EXPECT_FALSE(patReadPatientFile(database.practice.Path("none.PF").c_str(), patient));
    for (const std::string& text :
         {std::string(), "Lee" + end + "Ann" + end + "\n", std::string(23, 'L') + head + "\n"})
        EXPECT_FALSE(read(text, patient)) << text;
    EXPECT_TRUE(read(std::string(22, 'L') + head + "\n", patient)) << "25 characters";
}

TEST_F(PatientFiles, OneOfTheEarlierFormatHasThePlaceForATime)
{
    const auto names = [&] { return FilesIn(database.practice.Working()); };
    dbCPatient patient = Saved(NewPatient("A1"));
    database.practice.WriteFile("working/A1.PF", "its own");
    for (const bool bOwn : {true, false})
    {
        if (!bOwn)
            std::filesystem::remove(database.practice.Path("working/A1.PF"));
        const auto before = names();
        {
            const patCEarlierFile earlier(patient);
            EXPECT_EQ(database.practice.ReadFile("working/A1.PF").find("Lee\x01"), 0U);
            patCEarlierFile::RestoreAbandoned();
            EXPECT_EQ(database.practice.ReadFile("working/A1.PF").find("Lee\x01"), 0U) << "it is wanted";
            EXPECT_EQ(names().count("A1.ORIGINALPF"), bOwn ? 1U : 0U);
        }
        EXPECT_EQ(names(), before);
        EXPECT_TRUE(!bOwn || database.practice.ReadFile("working/A1.PF") == "its own");
    }
    database.practice.WriteFile("working/A1.PF", "of the earlier format");
    database.practice.WriteFile("working/A1.ORIGINALPF", "left by a process that ended");
    dbCPatients::Open(database.Path().c_str());
    EXPECT_EQ(names(), std::set<std::string>{"A1.PF"});
    EXPECT_EQ(database.practice.ReadFile("working/A1.PF").find("Lee\x01"), 0U) << "of what is stored now";
    const std::string stored = database.practice.ReadFile("working/A1.PF");
    {
        const OpenFile viewer(database.practice.Working() + "A1.PF");
        EXPECT_EQ(ErrorOf([&] { const patCEarlierFile earlier(patient); }), dbErrIO);
    }
    EXPECT_EQ(database.practice.ReadFile("working/A1.PF"), stored);
}

TEST_F(PatientFiles, AVanishedWorkingFolderRefusesTheSaveAsAWhole)
{
    std::filesystem::remove_all(database.practice.Working());
    dbCPatient patient = NewPatient("A1");
    EXPECT_EQ(ErrorOf([&] { patient.Save(); }), dbErrIO);
    EXPECT_FALSE(patient.IsValid());
    EXPECT_TRUE(dbCPatients().IsIDFree("A1"));
}

TEST_F(PatientFiles, WhatADeadProcessWasWritingGoesWithTheNextOpening)
{
    NewPatient("A1").Save();
    char szComputer[MAX_COMPUTERNAME_LENGTH + 1];
    DWORD dwLength = sizeof(szComputer);
    ASSERT_TRUE(GetComputerNameA(szComputer, &dwLength));
    // Process numbers are multiples of four: this one cannot run.
    const std::string dead = std::string("A1.PF~7ffffff1@") + szComputer;
    database.practice.WriteFile("working/" + dead, "half a fi");
    database.practice.WriteFile("working/A1.PF~7ffffff1@ELSEWHERE", "another computer's");
    // What the system refuses to look for may be there.
    database.Execute("INSERT INTO placedFiles (token, name) VALUES ('dead', 'A1?.I0A')");
    const CString strPath = dbCPatients::GetPath();
    dbCPatients::Close();
    dbCPatients::Open(strPath);
    EXPECT_EQ(FilesIn(database.practice.Working()),
              (std::set<std::string>{"A1.PF", "A1.PF~7ffffff1@ELSEWHERE"}));
    EXPECT_EQ(database.Execute("SELECT count(*) FROM placedFiles"), std::vector<std::string>{"1"});
}

TEST_F(PatientFiles, AFileInUseIsRemovedWithTheNextOpening)
{
    NewPatient("A1").Save();
    database.practice.WriteFile("working/A100.I0A", "image");
    {
        const OpenFile viewer(database.practice.Working() + "A100.I0A");
        dbCPatients().DeletePatient("A1");
        EXPECT_EQ(dbCPatients().GetCount(), 0);
        EXPECT_FALSE(dbCPatients().IsIDFree("A1")) << "its files are still there";
        EXPECT_FALSE(dbCPatient().Load("A1"));
    }
    dbCPatients::Open(database.Path().c_str());
    EXPECT_TRUE(dbCPatients().IsIDFree("A1"));
    EXPECT_TRUE(FilesIn(database.practice.Working()).empty());
}

TEST_F(PatientFiles, APatientFileInUseIsWrittenWithTheNextOpening)
{
    dbCPatient patient = Saved(NewPatient("A1"));
    {
        const OpenFile viewer(database.practice.Working() + "A1.PF");
        patient.SetLastname("Newest");
        patient.Save();
    }
    dbCPatients::Open(database.Path().c_str());
    EXPECT_EQ(database.practice.ReadFile("working/A1.PF").find("Newest\x01"), 0U);
}

TEST_F(PatientFiles, AnIDIsNotChangedWhileAFileIsInUseOrItsNameTaken)
{
    dbCPatient patient = Saved(NewPatient("A1"));
    database.practice.WriteFile("working/A100.I0A", "mine");
    {
        const OpenFile viewer(database.practice.Working() + "A100.I0A");
        patient.SetID("Z9");
        EXPECT_EQ(ErrorOf([&] { patient.Save(); }), dbErrIO);
    }
    database.practice.WriteFile("working/Z900.I0A", "not mine");
    EXPECT_EQ(ErrorOf([&] { patient.Save(); }), dbErrIO);
    EXPECT_EQ(database.practice.ReadFile("working/Z900.I0A"), "not mine");
    EXPECT_TRUE(dbCPatients().IsIDFree("Z9"));
    EXPECT_EQ(FilesIn(database.practice.Working()), (std::set<std::string>{"A1.PF", "A100.I0A", "Z900.I0A"}));
}

TEST_F(PatientFiles, ChangingOnlyTheLetterCaseOfAnID)
{
    dbCPatient patient = Saved(NewPatient("ab1"));
    database.practice.WriteFile("working/ab100.I0A", "image");
    patient.SetID("AB1");
    patient.Save();
    // Whether the folder shows the new case is the file system's affair.
    EXPECT_EQ(FilesIn(database.practice.Working()).size(), 2U);
    EXPECT_EQ(database.practice.ReadFile("working/AB100.I0A"), "image");
    EXPECT_EQ(database.practice.ReadFile("working/AB1.PF")
                  .find("Lee\x01"
                        "Ann\x01"
                        "AB1\x01"),
              0U);
}
// The last is copied in several pieces.
constexpr size_t PLACED = 66;

std::string PlacedName(size_t n)
{
    char sz[20];
    std::snprintf(sz, sizeof sz, "A1%02u.I05", static_cast<unsigned>(n));
    return sz;
}

std::string PlacedContents(size_t n)
{
    return std::string(n + 1 < PLACED ? n * 10 : 1'000'000, static_cast<char>('A' + n % 26));
}

constexpr const char* EVERYBODY = ";WD)"; // the end of an entry that concerns all users

std::string AccessRights(const std::string& path)
{
    PSECURITY_DESCRIPTOR pRights = nullptr;
    char* pszText = nullptr;
    EXPECT_EQ(GetNamedSecurityInfoA(path.c_str(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr,
                                    nullptr, nullptr, &pRights),
              DWORD{ERROR_SUCCESS});
    EXPECT_TRUE(ConvertSecurityDescriptorToStringSecurityDescriptorA(
        pRights, SDDL_REVISION_1, DACL_SECURITY_INFORMATION, &pszText, nullptr));
    const std::string text = pszText;
    LocalFree(pszText);
    LocalFree(pRights);
    return text;
}

class Placement : public testing::Test
{
protected:
    // Carries all files, which may be taken or are to be copied. What Carry answers is in m_bCarried.
    dbError PlaceAll(bool bTake, const dbCFilePlacement::Progress& progress, bool bKeep = false)
    {
        for (size_t n = 0; n < PLACED; ++n)
            if (!std::filesystem::exists(Source(n)))
                m_database.practice.WriteFile("temp/" + std::to_string(n), PlacedContents(n));
        dbCFilePlacement placement;
        for (size_t n = 0; n < PLACED; ++n)
            placement.Add(Source(n).c_str(), PlacedName(n).c_str(), bTake);
        return ErrorOf([&] {
            placement.Check();
            placement.Note();
            EXPECT_EQ(ErrorOf([&] { // whoever else begins neither takes the names nor removes the files
                          dbCFilePlacement other;
                          other.Add(Source(0).c_str(), PlacedName(PLACED - 1).c_str());
                          other.Place();
                      }),
                      dbErrExists);
            m_bCarried = placement.Carry(progress);
            EXPECT_NE(m_bCarried, FilesIn(m_database.practice.Working()).size() <= 1); // the token
            if (!bKeep)
                return;
            dbCTransaction transaction;
            placement.Keep();
            transaction.Commit();
        });
    }

    std::string Source(size_t n) const
    {
        return m_database.practice.Path("temp\\" + std::to_string(n));
    }

    static bool GoOn(int, const std::string&)
    {
        return true;
    }

    TestDatabase m_database;
    bool m_bCarried = true;
};

TEST_F(Placement, ThatFailsOrIsStoppedAnywhereLeavesNothingAndTouchesNothing)
{
    const std::string working = m_database.practice.Working();
    static int s_nLeft;
    for (const bool bTake : {false, true})
    {
        for (const size_t nAt : {size_t{0}, size_t{64}, PLACED - 1})
        {
            const auto isAt = [&](const std::string& name) { return name == PlacedName(nAt); };
            EXPECT_EQ(PlaceAll(bTake, [&](int, const std::string& name) { return !isAt(name); }), dbErrNone);
            EXPECT_FALSE(m_bCarried) << nAt;
            EXPECT_TRUE(FilesIn(working).empty()) << nAt;

            const auto getInTheWay = [&](int, const std::string& name) {
                if (isAt(name))
                    m_database.practice.WriteFile("working/" + name, "foreign");
                return true;
            };
            EXPECT_EQ(PlaceAll(bTake, getInTheWay), dbErrExists);
            EXPECT_EQ(FilesIn(working), std::set<std::string>{PlacedName(nAt)});
            EXPECT_EQ(m_database.practice.ReadFile("working/" + PlacedName(nAt)), "foreign");
            EXPECT_EQ(PlaceAll(bTake, GoOn), dbErrExists);
            std::filesystem::remove(working + PlacedName(nAt));

            // A file that is open and written in part.
            s_nLeft = static_cast<int>(nAt) + 1;
            dbObserveSteps([](const char* pszStep) {
                if (std::string(pszStep) == "place.made" && --s_nLeft == 0)
                    dbCException::Throw(dbErrDiskFull, "copy");
            });
            EXPECT_EQ(PlaceAll(bTake, GoOn), dbErrDiskFull);
            dbObserveSteps(nullptr);
            EXPECT_TRUE(FilesIn(working).empty()) << nAt;
        }
    }
    // In the middle of a file.
    int nBefore = 0, nTold = 0;
    EXPECT_EQ(PlaceAll(false,
                       [&](int nPercent, const std::string& name) {
                           EXPECT_GE(nPercent, nBefore);
                           nBefore = nPercent;
                           return name != PlacedName(PLACED - 1) || ++nTold < 4;
                       }),
              dbErrNone);
    EXPECT_FALSE(m_bCarried);
    EXPECT_EQ(nBefore, (65 * 64 / 2 * 10 + 3 * 128 * 1024) * 100 / (65 * 64 / 2 * 10 + 1'000'000));
    EXPECT_TRUE(FilesIn(working).empty());
}

TEST_F(Placement, MovesWhatItMayTakeAndCopiesTheRest)
{
    const std::string working = m_database.practice.Working();
    // Only whom the folder lets in gets at its files.
    std::string rights = AccessRights(working);
    const size_t nEverybody = rights.rfind('(', rights.find(EVERYBODY));
    ASSERT_NE(nEverybody, std::string::npos);
    rights.erase(nEverybody, rights.find(')', nEverybody) + 1 - nEverybody);
    PSECURITY_DESCRIPTOR pRights = nullptr;
    ASSERT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorA(rights.c_str(), SDDL_REVISION_1,
                                                                     &pRights, nullptr));
    ASSERT_TRUE(SetFileSecurityA(working.c_str(), DACL_SECURITY_INFORMATION, pRights));
    LocalFree(pRights);
    for (const bool bTake : {false, true})
    {
        std::optional<OpenFile> viewer;
        EXPECT_EQ(PlaceAll(
                      bTake,
                      [&](int, const std::string& name) {
                          if (name == PlacedName(0))
                              viewer.emplace(Source(5)); // is not to be had
                          return true;
                      },
                      true),
                  dbErrNone);
        EXPECT_TRUE(m_bCarried);
        EXPECT_EQ(FilesIn(m_database.practice.Path("temp")).size(), bTake ? 1U : PLACED);
        for (size_t n = 0; n < PLACED; ++n)
        {
            EXPECT_EQ(m_database.practice.ReadFile("working/" + PlacedName(n)), PlacedContents(n)) << n;
            if (bTake && n != 5)
            {
                EXPECT_EQ(AccessRights(working + PlacedName(n)).find(EVERYBODY), std::string::npos) << n;
            }
            std::filesystem::remove(working + PlacedName(n));
        }
        EXPECT_TRUE(FilesIn(working).empty());
    }
}

TEST_F(Placement, TellsWhatCannotBeBroughtToTheDiskAndLeavesNothingOpen)
{
    for (const int nBad : {-1, 0, 150, 199}) // of 200, which are more than wait at once
    {
        std::optional<patCFlusher> flusher(std::in_place);
        m_database.practice.WriteFile("temp/x", "x");
        const int nError = ErrorOf([&] {
            for (int n = 0; n < 200; ++n)
            {
                const DWORD dwAccess =
                    n == nBad ? GENERIC_READ : GENERIC_WRITE; // without it nothing is flushed
                flusher->Add(patOpenFile(m_database.practice.Path("temp\\x").c_str(), dwAccess,
                                         FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING),
                             "x");
            }
            flusher->Finish();
        });
        EXPECT_EQ(nError, nBad < 0 ? dbErrNone : dbErrIO) << nBad;
        if (nBad >= 0)
            flusher.reset();
        EXPECT_TRUE(DeleteFileA(m_database.practice.Path("temp\\x").c_str())) << nBad;
    }
}

} // namespace
