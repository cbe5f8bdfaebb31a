// How the patient database's look-ups grow: ID uniqueness and similar patient at 100,000 patients against
// 1,000. Prints times per look-up and their ratios; the aim is a ratio of at most 3. Arguments: small and
// large count.

#include "suite/patients/velpat.h"
#include "suite/util/velini.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace
{
constexpr int LOOKUPS = 20000;
constexpr int FAMILY_NAMES = 1000, GIVEN_NAMES = 200;

struct Times
{
    double idMicroseconds = 0, similarMicroseconds = 0;
};

/// Patient n of the practice; the same for every size.
dbCPatient MakePatient(int n)
{
    CString strID, strLast, strFirst;
    strID.Format("P%07d", n);
    strLast.Format("Family%d", (n * 7919) % FAMILY_NAMES);
    strFirst.Format("Given%d", (n * 104729) % GIVEN_NAMES);
    dbCPatient patient;
    patient.SetID(strID);
    patient.SetLastname(strLast);
    patient.SetFirstname(strFirst);
    patient.SetBirthdate(velCDate(1990 + n % 30, 1 + n % 12, 1 + n % 28));
    return patient;
}

void Fill(int nPatients)
{
    dbCTransaction transaction;
    for (int n = 0; n < nPatients; ++n)
        MakePatient(n).Save(dbSaveWithoutFile);
    transaction.Commit();
}

/// Microseconds per look-up; half of those asked for exist.
template <typename Lookup> double Measure(int nPatients, Lookup lookup)
{
    int nFound = 0;
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < LOOKUPS; ++i)
        nFound += lookup(static_cast<int>((i * 7919LL) % (2LL * nPatients))) ? 1 : 0;
    const std::chrono::duration<double, std::micro> spent = std::chrono::steady_clock::now() - start;
    if (nFound == 0)
    {
        puts("nothing was found: the measurement is void");
        exit(2);
    }
    return spent.count() / LOOKUPS;
}

Times MeasureAt(const std::filesystem::path& folder, int nPatients)
{
    const std::string path = (folder / (std::to_string(nPatients) + ".db")).string();
    dbCPatients::Create(path.c_str());
    const auto start = std::chrono::steady_clock::now();
    Fill(nPatients);
    const std::chrono::duration<double> filled = std::chrono::steady_clock::now() - start;

    dbCPatients patients;
    Times times;
    CString strID;
    times.idMicroseconds = Measure(nPatients, [&](int n) {
        strID.Format("P%07d", n);
        return !patients.IsIDFree(strID);
    });
    times.similarMicroseconds = Measure(nPatients, [&](int n) {
        const dbCPatient patient = MakePatient(n);
        return patients.FindSimilar(patient.GetFirstname(), patient.GetLastname(), patient.GetBirthdate());
    });
    printf("%7d patients: stored in %.1f s, ID %.1f us, similar patient %.1f us\n", nPatients, filled.count(),
           times.idMicroseconds, times.similarMicroseconds);
    dbCPatients::Close();
    return times;
}
} // namespace

int main(int argc, char** argv)
{
    const int nSmall = argc > 1 ? atoi(argv[1]) : 1000, nLarge = argc > 2 ? atoi(argv[2]) : 100000;
    const auto folder =
        std::filesystem::temp_directory_path() / ("lookup" + std::to_string(GetCurrentProcessId()));
    std::filesystem::create_directories(folder);
    velSetIniFile((folder / "veltrix.ini").string().c_str());
    int nResult = 0;
    try
    {
        const Times small = MeasureAt(folder, nSmall), large = MeasureAt(folder, nLarge);
        printf("ratio ID %.2f, similar patient %.2f (aim: at most 3)\n",
               large.idMicroseconds / small.idMicroseconds,
               large.similarMicroseconds / small.similarMicroseconds);
    }
    catch (CException* e)
    {
        char sz[500] = "";
        e->GetErrorMessage(sz, sizeof(sz));
        e->Delete();
        printf("failed: %s\n", sz);
        nResult = 1;
    }
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
    return nResult;
}
