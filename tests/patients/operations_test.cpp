// Operations on records and files together: ended at any step, and seen by another seat while under way, they
// leave the whole practice as it was before or as it is afterwards.

#include "suite/patients/files/dbplacement.h"
#include "tests/patients/practicestate.h"
#include "tests/support/childprocess.h"

#include <span>

namespace
{
/// The operations under test, on a practice with the patients A1 and A12.
const std::map<std::string, void (*)()> OPERATIONS = {
    {"create", [] { FullPatient("B2").Save(); }},
    {"save",
     [] {
         dbCPatient patient = Loaded("A1");
         patient.SetLastname("Changed");
         patient.GetTimepoints()[0].SetName("Changed");
         patient.Save();
     }},
    {"rename",
     [] {
         dbCPatient patient = Loaded("A1");
         patient.SetID("Z9");
         patient.Save();
     }},
    {"removePatient", [] { dbCPatients().DeletePatient("A1"); }},
    {"removeTimepoint", [] { Loaded("A1").DeleteTimepoint(1); }},
    {"removeImages", [] { Loaded("A1").DeleteTimepointImages(1); }},
};

const char* const OWN_FILES[] = {"A100.I0A",   "A100.V0A",    "A101.I0B",   "A101.I0B.AVI",
                                 "a101.c01",   "A101.D0.I2A", "A101.M",     "A101.DF3",
                                 "A1$00$scan", "A1$01$scan",  "A1x.2dmorph"};
/// None of A1's, though their names begin so.
const char* const OTHER_FILES[] = {"A101.PF", "A1200.I0A", "A12$00$scan", "A12x.2dmorph",
                                   "A1B.PF",  "A1.TXT",    "B100.I0A",    "A10101.I0A"};

/// A practice with A1, A12 and their files, and with others' files.
struct FilledPractice : TestDatabase
{
    explicit FilledPractice(size_t nOwnFiles = std::size(OWN_FILES))
    {
        FullPatient("A1").Save();
        FullPatient("A12", "other").Save();
        for (const char* psz : std::span(OWN_FILES).first(nOwnFiles))
            practice.WriteFile(std::string("working/") + psz, psz);
        for (const char* psz : OTHER_FILES)
            practice.WriteFile(std::string("working/") + psz, psz);
        SetFileAttributesA((practice.Working() + "A100.I0A").c_str(), FILE_ATTRIBUTE_READONLY);
    }
};

/// Copies a practice as it is on the disk at every step: what a process that ends there leaves behind. The
/// hidden files by which a process shows that it lives go with it, and cannot be copied.
class Snapshots
{
public:
    explicit Snapshots(const veltest::TemporaryPractice& practice) : m_practice(practice)
    {
        s_pCurrent = this;
        dbObserveSteps([](const char* pszStep) { s_pCurrent->Take(pszStep); });
    }
    ~Snapshots()
    {
        dbObserveSteps(nullptr);
    }
    Snapshots(const Snapshots&) = delete;
    Snapshots& operator=(const Snapshots&) = delete;

    /// The step's name and the folder of the copy.
    std::vector<std::pair<std::string, std::string>> steps;

private:
    void Take(const char* pszStep)
    {
        const std::string folder = m_practice.Path("step" + std::to_string(steps.size())) + "\\";
        std::filesystem::create_directories(folder + "working");
        for (const auto& entry : std::filesystem::directory_iterator(m_practice.Working()))
            CopyFileA(entry.path().string().c_str(),
                      (folder + "working\\" + entry.path().filename().string()).c_str(), TRUE);
        for (const char* pszName : {"patients.db", "patients.db-wal"})
            EXPECT_TRUE(CopyFileA(m_practice.Path(pszName).c_str(), (folder + pszName).c_str(), TRUE))
                << pszName;
        steps.emplace_back(pszStep, folder);
    }

    static inline Snapshots* s_pCurrent = nullptr;
    const veltest::TemporaryPractice& m_practice;
};

class Operation : public testing::TestWithParam<std::string>
{
};

TEST_P(Operation, EndedAtAnyStepLeavesBeforeOrAfter)
{
    const FilledPractice database(4);
    const PracticeState before = StateOf(database.practice.Working());
    Snapshots snapshots(database.practice);
    OPERATIONS.at(GetParam())();
    dbObserveSteps(nullptr);
    const PracticeState after = StateOf(database.practice.Working());
    ASSERT_NE(after, before);
    int nBefore = 0, nAfter = 0;
    for (const auto& [step, folder] : snapshots.steps)
    {
        database.practice.Set("Environment", "WORKING", folder + "working\\");
        dbCPatients::Open((folder + "patients.db").c_str());
        const PracticeState state = StateOf(folder + "working");
        EXPECT_EQ(veltest::RunSql(folder + "patients.db", "SELECT count(*) FROM fileWork UNION ALL"
                                                          " SELECT count(*) FROM patientFileWork"),
                  (std::vector<std::string>{"0", "0"}))
            << step << ": nothing is left to do";
        nBefore += state == before;
        nAfter += state == after;
        EXPECT_TRUE(state == before || state == after) << step << ":\n"
                                                       << testing::PrintToString(state) << "before:\n"
                                                       << testing::PrintToString(before) << "after:\n"
                                                       << testing::PrintToString(after);
    }
    EXPECT_GT(nBefore, 0);
    EXPECT_GT(nAfter, 1);
}

INSTANTIATE_TEST_SUITE_P(All, Operation,
                         testing::Values("create", "save", "rename", "removePatient", "removeTimepoint",
                                         "removeImages"),
                         [](const auto& test) { return test.param; });

TEST(Operations, TakeWhatBelongsToThemAndNothingElse)
{
    const struct
    {
        const char* pszOperation;
        std::set<std::string> gone;
    } CASES[] = {
        {"removePatient", {std::begin(OWN_FILES), std::end(OWN_FILES)}},
        {"removeTimepoint",
         {"A101.I0B", "A101.I0B.AVI", "a101.c01", "A101.D0.I2A", "A101.M", "A101.DF3", "A1$01$scan"}},
        {"removeImages", {"A101.I0B", "A101.I0B.AVI", "a101.c01", "A101.D0.I2A"}},
        {"rename", {std::begin(OWN_FILES), std::end(OWN_FILES)}},
    };
    for (const auto& test : CASES)
    {
        SCOPED_TRACE(test.pszOperation);
        const FilledPractice database;
        auto expected = FilesOf(database.practice.Working());
        for (const std::string& name : test.gone)
        {
            if (std::string(test.pszOperation) == "rename")
                expected["Z9" + name.substr(2)] = expected.at(name);
            expected.erase(name);
        }
        PatientImage image = database.ImageOf("A1");
        OPERATIONS.at(test.pszOperation)();
        auto files = FilesOf(database.practice.Working());
        const PatientImage after = database.ImageOf("A1");
        EXPECT_EQ(files.erase("A1.PF"), after.empty() ? 0U : 1U);
        EXPECT_EQ(files.erase("Z9.PF"), database.ImageOf("Z9").empty() ? 0U : 1U);
        expected.erase("A1.PF");
        EXPECT_EQ(files, expected);
        if (std::string(test.pszOperation) == "removeImages")
        {
            std::erase_if(image, [](const auto& entry) { return entry.first.starts_with("image.1."); });
            image["timepoint.1.bits0"] = image["timepoint.1.bits4"] = "0";
            EXPECT_EQ(Differences(image, after), std::vector<std::string>());
        }
        if (std::string(test.pszOperation) == "removeTimepoint")
        {
            EXPECT_EQ(after.at("timepoint.1.number"), "2");
            EXPECT_FALSE(after.contains("timepoint.2.number"));
        }
    }
}

TEST(Operations, ARefusedOneChangesNeitherObjectNorPractice)
{
    const FilledPractice database;
    dbCPatient stale = Loaded("A1"), other = Loaded("A1");
    other.SetNotes("by another seat");
    other.Save();
    const PracticeState before = StateOf(database.practice.Working());
    const std::string image = Image(stale);
    EXPECT_EQ(ErrorOf([&] { stale.DeleteTimepoint(1); }), dbErrChangedElsewhere);
    EXPECT_EQ(ErrorOf([&] { stale.DeleteTimepointImages(1); }), dbErrChangedElsewhere);
    EXPECT_EQ(Image(stale), image);
    {
        dbCTransaction outer;
        dbCPatients().DeletePatient("A1");
        other.Load("A12");
        other.DeleteTimepoint(0);
    }
    EXPECT_EQ(other.GetTimepoints().GetCount(), 3);
    EXPECT_EQ(StateOf(database.practice.Working()), before);
}

TEST(Operations, ARemovalByListTakesOnlyWhatIsAsItWasListed)
{
    const FilledPractice database;
    patFileStates files = patListFiles("A1");
    std::erase_if(files, [](const patSFileState& file) { return file.name == "A101.M"; });
    database.practice.WriteFile("working/A101.DF3", "written since it was archived");
    database.practice.WriteFile("working/A102.I0A", "arrived since");
    dbCPatients().DeletePatient("A1", &files);
    auto left = FilesOf(database.practice.Working());
    for (const char* psz : OTHER_FILES)
        left.erase(psz);
    left.erase("A12.PF");
    EXPECT_EQ(left, (std::map<std::string, std::string>{{"A101.M", "A101.M"},
                                                        {"A101.DF3", "written since it was archived"},
                                                        {"A102.I0A", "arrived since"}}));
}

// Another seat while an operation stands between its commit and its files.

std::string g_signal;

VEL_CHILD_PROCESS(pause)
{
    dbCPatients::Open(arguments[0].c_str());
    g_signal = arguments[2];
    dbObserveSteps([](const char* pszStep) {
        if (std::string(pszStep).find(".committed") == std::string::npos || g_signal.empty())
            return;
        const std::string signal = std::exchange(g_signal, "");
        std::ofstream(signal + ".reached") << '.';
        WaitFor(signal + ".go");
    });
    const dbError nError = ErrorOf(OPERATIONS.at(arguments[1]));
    dbCPatients::Close();
    return nError;
}

/// A practice in which another seat stands there.
struct PausedSeat
{
    explicit PausedSeat(const char* pszOperation) : child("pause", {database.Path(), pszOperation, signal})
    {
        EXPECT_TRUE(WaitFor(signal + ".reached"));
    }
    void Go()
    {
        std::ofstream(signal + ".go") << '.';
        EXPECT_EQ(child.Wait(), dbErrNone);
    }

    const FilledPractice database;
    const std::string signal = database.practice.Path("signal");
    veltest::ChildProcess child;
};

TEST(Operations, AnotherSeatLeavesAloneWhatALivingOneIsAt)
{
    PausedSeat seat("rename");
    const FilledPractice& database = seat.database;
    dbCPatients::Open(database.Path().c_str());
    EXPECT_EQ(FilesOf(database.practice.Working()).count("A100.I0A"), 1U) << "the other seat's to rename";
    EXPECT_FALSE(dbCPatients().IsIDFree("A1"));
    EXPECT_EQ(ErrorOf([] { FullPatient("A1").Save(); }), dbErrFilesPending);
    dbCPatient renamed = Loaded("Z9"), other = Loaded("A12");
    renamed.SetID("Y8");
    EXPECT_EQ(ErrorOf([&] { renamed.Save(); }), dbErrFilesPending);
    other.SetID("A1");
    EXPECT_EQ(ErrorOf([&] { other.Save(); }), dbErrFilesPending);
    EXPECT_EQ(ErrorOf([] { dbCPatients().DeletePatient("Z9"); }), dbErrFilesPending);
    for (const char* pszName : {"Z900.I0A", "A100.I0A"})
    {
        dbCFilePlacement placement;
        placement.Add(database.Path().c_str(), pszName, false);
        EXPECT_EQ(ErrorOf([&] { placement.Note(); }), dbErrExists) << pszName;
    }
    seat.Go();
    FullPatient("A1").Save();
    EXPECT_EQ(FilesOf(database.practice.Working()).count("Z900.I0A"), 1U);
    EXPECT_EQ(FilesOf(database.practice.Working()).count("A100.I0A"), 0U);
}

TEST(Operations, LeaveAloneWhatSomebodyIsPlacing)
{
    const FilledPractice database;
    for (const char* pszName : {"Y800.I0A", "A100.I0A"})
    {
        dbCFilePlacement placement;
        placement.Add(database.Path().c_str(), pszName, false);
        placement.Note();
        dbCPatient patient = Loaded("A1");
        patient.SetID("Y8");
        EXPECT_EQ(ErrorOf([&] { patient.Save(); }), dbErrFilesPending) << pszName;
    }
    // Who died at it is not waited for.
    const auto die = [&](const char* pszName) {
        database.practice.WriteFile("working/" + std::string(pszName), "half an image");
        database.Execute(
            ("INSERT INTO placedFiles (token, name) VALUES ('dead', '" + std::string(pszName) + "')")
                .c_str());
    };
    die("Y800.I0A");
    dbCPatient patient = Loaded("A1");
    patient.SetID("Y8");
    EXPECT_EQ(ErrorOf([&] { patient.Save(); }), dbErrNone);
    EXPECT_EQ(database.practice.ReadFile("working/Y800.I0A"), "A100.I0A");
    die("Y807.M");
    EXPECT_EQ(ErrorOf([] { dbCPatients().DeletePatient("Y8"); }), dbErrNone);
    EXPECT_EQ(database.Execute("SELECT name FROM placedFiles"), std::vector<std::string>());
}

TEST(Operations, APatientFileWrittenLateIsNotTheOlderOne)
{
    PausedSeat seat("save");
    dbCPatient patient = Loaded("A1");
    patient.SetLastname("Newest");
    patient.Save();
    seat.Go();
    EXPECT_EQ(seat.database.practice.ReadFile("working/A1.PF").find("Newest\x01"), 0U);
}
} // namespace
