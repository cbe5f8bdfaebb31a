// Several seats work on one practice with few patient IDs, and are killed at random: what each was told is
// compared with what is there. VEL_SEATS_SECONDS and VEL_SEATS_SEED make a longer or another run of it.

#include "suite/patients/files/dbplacement.h"
#include "tests/patients/practicestate.h"
#include "tests/support/childprocess.h"

#include <chrono>
#include <random>
#include <sstream>

namespace
{
constexpr int SEATS = 4;
constexpr int IDS = 6;

/// A seat's patient as it has to be; no ID for one that must not be there.
struct Expected
{
    std::string id, nickname;
    bool image = false;

    bool operator==(const Expected&) const = default;
};

/// What a seat has begun and been told, one line each: the operation, then "told" or "refused".
struct Operation
{
    std::string name, guid, argument;

    Expected AppliedTo(Expected patient) const
    {
        if (name == "create")
            return {argument, "", true};
        if (name == "change")
            patient.nickname = argument;
        if (name == "rename")
            patient.id = argument;
        if (name == "images")
            patient.image = false;
        if (name == "remove")
            return {};
        return patient;
    }
};

struct Log
{
    std::map<std::string, Expected> patients; ///< by GUID
    std::optional<Operation> open;            ///< begun, and nothing heard of it

    explicit Log(const std::string& path)
    {
        std::ifstream file(path);
        std::string line;
        while (std::getline(file, line))
        {
            std::istringstream words(line);
            Operation operation;
            words >> operation.name >> operation.guid >> operation.argument;
            if (operation.name == "told" && open)
                patients[open->guid] = open->AppliedTo(patients[open->guid]);
            if (operation.name == "told" || operation.name == "refused")
                open.reset();
            else
                open = operation;
        }
    }
};

std::string ImageName(const std::string& id)
{
    return id + "00.I0A";
}

/// The patient as it is stored, with its image file; an error where record and file do not fit together.
Expected Actual(const std::string& folder, const std::string& guid)
{
    dbCPatient patient;
    if (!patient.Load(guid.c_str()))
        return {};
    Expected actual{patient.GetID().GetString(), patient.GetNickname().GetString(),
                    patient.GetTimepoints().GetCount() == 1 && patient.GetTimepoints()[0].HasImage(0, 0)};
    std::ifstream file(folder + ImageName(actual.id), std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(file), {}};
    if (actual.image && content != guid)
        actual.nickname += " (its image is \"" + content + "\")";
    return actual;
}

class Seat
{
public:
    Seat(const std::string& folder, const std::string& log, unsigned nSeed)
        : m_folder(folder), m_random(nSeed), m_known(log), m_log(log, std::ios::app)
    {
    }

    /// 0 as long as everything is as this seat was told.
    int Run()
    {
        if (m_known.open)
        {
            const Operation& open = *m_known.open;
            const Expected before = m_known.patients[open.guid];
            Expected actual = Actual(m_folder, open.guid);
            // Another seat may be finishing the files of what this one was killed at.
            for (int i = 0; i < 200 && actual != before && actual != open.AppliedTo(before); ++i)
            {
                Sleep(50);
                actual = Actual(m_folder, open.guid);
            }
            if (actual != before && actual != open.AppliedTo(before))
                return 10;
            m_log << (actual == before ? "refused" : "told") << std::endl;
            m_known.patients[open.guid] = actual;
        }
        for (;;)
        {
            std::vector<std::string> own;
            for (const auto& [guid, patient] : m_known.patients)
                if (!patient.id.empty())
                    own.push_back(guid);
            if (own.empty() || Random(4) == 0)
            {
                Try({"create", dbNewGUID().GetString(), NewID()});
                continue;
            }
            const std::string guid = own[Random(own.size())];
            const char* const NAMES[] = {"change", "rename", "rename", "images", "remove"};
            const std::string name = NAMES[Random(std::size(NAMES))];
            if (name == "images" && !m_known.patients[guid].image)
                continue;
            if (!Try({name, guid, name == "change" ? std::to_string(++m_nChanges) : NewID()}))
                return 11;
        }
    }

private:
    size_t Random(size_t nBelow)
    {
        return m_random() % nBelow;
    }
    std::string NewID()
    {
        return "P" + std::to_string(Random(IDS));
    }

    /// False when the seat's own patient is not what it was told.
    bool Try(const Operation& operation)
    {
        m_log << operation.name << ' ' << operation.guid << ' ' << operation.argument << std::endl;
        const dbError nError = ErrorOf([&] { Do(operation); });
        m_log << (nError == dbErrNone ? "told" : "refused") << std::endl;
        Expected& patient = m_known.patients[operation.guid];
        if (nError == dbErrNone)
            patient = operation.AppliedTo(patient);
        // Nobody else changes this seat's patients.
        return nError != dbErrNotFound && nError != dbErrChangedElsewhere;
    }

    void Do(const Operation& operation) const
    {
        if (operation.name == "create")
            return Create(operation);
        if (operation.name == "remove")
            return dbCPatients().DeletePatient(operation.guid.c_str());
        dbCPatient patient;
        if (!patient.Load(operation.guid.c_str()))
            dbCException::Throw(dbErrNotFound, operation.guid.c_str());
        if (operation.name == "images")
            return patient.DeleteTimepointImages(0);
        if (operation.name == "rename")
            patient.SetID(operation.argument.c_str());
        else
            patient.SetNickname(operation.argument.c_str());
        patient.Save();
    }

    void Create(const Operation& operation) const
    {
        const std::string source = m_folder + "..\\temp\\" + operation.guid;
        std::ofstream(source, std::ios::binary) << operation.guid;
        dbCPatient patient = NewPatient(operation.argument.c_str());
        patient.SetGUID(operation.guid.c_str());
        dbCTimepoint timepoint;
        timepoint.SetImage(0, 0);
        patient.GetTimepoints().Add(&patient, timepoint, TRUE, FALSE);
        dbCFilePlacement placement;
        placement.Add(source.c_str(), ImageName(operation.argument).c_str());
        placement.Place();
        dbCTransaction transaction;
        patient.Save();
        placement.Keep();
        transaction.Commit();
    }

    std::string m_folder;
    std::mt19937 m_random;
    Log m_known;
    std::ofstream m_log;
    int m_nChanges = 0;
};

VEL_CHILD_PROCESS(seat)
{
    dbCPatients::Open(arguments[0].c_str());
    return Seat(arguments[1], arguments[2], static_cast<unsigned>(atoi(arguments[3].c_str()))).Run();
}

int Number(const char* pszVariable, int nDefault)
{
    char sz[20] = "";
    return GetEnvironmentVariableA(pszVariable, sz, sizeof(sz)) ? atoi(sz) : nDefault;
}

TEST(Seats, FindWhatTheyWereToldWhoeverIsKilled)
{
    TestDatabase database;
    database.practice.Set("Environment", "DatabaseTimeout", "20000");
    dbCPatients::Close();
    const unsigned nSeed = static_cast<unsigned>(Number("VEL_SEATS_SEED", 1));
    std::mt19937 random(nSeed);
    const auto logOf = [&](int nSeat) { return database.practice.Path("seat" + std::to_string(nSeat)); };
    const auto start = [&](int nSeat) {
        return std::make_unique<veltest::ChildProcess>(
            "seat", std::vector<std::string>{database.Path(), database.practice.Working(), logOf(nSeat),
                                             std::to_string(random() % 100'000)});
    };
    std::vector<std::unique_ptr<veltest::ChildProcess>> seats;
    for (int i = 0; i < SEATS; ++i)
        seats.push_back(start(i));
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(Number("VEL_SEATS_SECONDS", 5));
    while (std::chrono::steady_clock::now() < end)
    {
        Sleep(20 + random() % 300);
        const int nSeat = static_cast<int>(random() % SEATS);
        auto& seat = seats[static_cast<size_t>(nSeat)];
        ASSERT_TRUE(seat->IsRunning()) << "seat " << nSeat << " ended with " << seat->Wait();
        seat->Kill();
        seat->Wait();
        seat = start(nSeat);
    }
    for (const auto& seat : seats)
    {
        seat->Kill();
        seat->Wait();
    }

    // The system may take a killed process for living a moment longer: its work is done by a later opening then.
    std::vector<std::string> left;
    for (int i = 0; i < 100 && left != std::vector<std::string>{"0"}; ++i)
    {
        Sleep(i == 0 ? 0 : 100);
        dbCPatients::Close();
        dbCPatients::Open(database.Path().c_str());
        left = database.Execute("SELECT (SELECT COUNT(*) FROM fileWork) + (SELECT COUNT(*) FROM placedFiles)"
                                " + (SELECT COUNT(*) FROM patientFileWork)");
    }
    EXPECT_EQ(left.at(0), "0");
    std::set<std::string> files;
    int nPatients = 0, nTold = 0;
    for (int i = 0; i < SEATS; ++i)
    {
        const Log log(logOf(i));
        nTold += static_cast<int>(log.patients.size());
        for (const auto& [guid, told] : log.patients)
        {
            const Expected actual = Actual(database.practice.Working(), guid);
            const bool bOpen = log.open && log.open->guid == guid;
            EXPECT_TRUE(actual == told || (bOpen && actual == log.open->AppliedTo(told)))
                << "seat " << i << ", " << guid << ": told " << told.id << " " << told.nickname << " "
                << told.image << ", found " << actual.id << " " << actual.nickname << " " << actual.image;
        }
    }
    dbTList<dbSPatientListRow> rows;
    dbCPatients().GetPage(dbSearchName, "", nullptr, 1000, rows);
    for (const dbSPatientListRow& row : rows)
    {
        ++nPatients;
        files.insert((row.strID + ".PF").GetString());
        if (Actual(database.practice.Working(), row.strGUID.GetString()).image)
            files.insert(ImageName(row.strID.GetString()));
        EXPECT_NE(database.practice.ReadFile(("working/" + row.strID + ".PF").GetString())
                      .find(("\x01" + row.strID + "\x01").GetString()),
                  std::string::npos);
    }
    EXPECT_EQ(FilesIn(database.practice.Working()), files) << "seed " << nSeed;
    EXPECT_LE(nPatients, IDS);
    EXPECT_GT(nTold, SEATS);
    printf("%d patients acknowledged, %d there at the end\n", nTold, nPatients);
}
} // namespace
