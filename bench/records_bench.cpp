// How long the dialogs about a patient's records take to open with 100 timepoints, 500 predefined names and
// 1,000 entries of treatment history, against 2 of each; and what the import of diagnostics takes an entry,
// in long files against a short one.

#include "app/exports/veldlgs.h"
#include "maintenance/maintenanceres.h"
#include "suite/patients/velpat.h"
#include "tests/maintenance/fakenames.h"
#include "tests/support/dialogscript.h"
#include "tests/support/temporarypractice.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace
{

constexpr int repetitions = 9;
constexpr int diagnosticItems = 20; // of the practice's group

using Clock = std::chrono::steady_clock;

struct Times
{
    double rename;
    double newTimepoint;
    double remove;
};

dbCPatient StorePatient(int nTimepoints, int nTreatments)
{
    dbCTransaction transaction;
    dbCPatient patient;
    patient.SetID("A1");
    patient.SetLastname("Lee");
    for (int i = 0; i < nTimepoints; ++i)
    {
        dbCTimepoint timepoint;
        timepoint.SetName(("Timepoint " + std::to_string(i)).c_str());
        timepoint.SetDate(velCDate(2020, 1 + i % 12, 1));
        patient.GetTimepoints().Add(&patient, timepoint, TRUE, TRUE);
    }
    patient.Save();
    dbCPatientTreatmentStatusHistoryTable history;
    for (int i = 0; i < nTreatments; ++i)
    {
        dbCPatientTreatmentStatusHistoryRow row;
        row.SetpatID(patient.GetGUID());
        row.SetDescription("Braces");
        row.SetNewCode("B");
        row.SetDateTime(velCDate(2020, 1 + i % 12, 1));
        history.InsertRow(row);
    }
    transaction.Commit();
    return patient;
}

std::vector<std::string> MakeNames(int nNames)
{
    std::vector<std::string> names;
    names.reserve(static_cast<std::size_t>(nNames));
    for (int i = 0; i < nNames; ++i)
        names.push_back("Name " + std::to_string(i));
    return names;
}

// The median of the milliseconds from the call to the idle dialog.
template <class Call> double OpenToReady(const Call& call, int nControl)
{
    std::vector<double> times;
    for (int i = 0; i < repetitions; ++i)
    {
        const auto opened = Clock::now();
        veltest::RunModal(
            [&] {
                call();
                return 0;
            },
            [&](veltest::DialogScript& script) {
                const veltest::Dialog dialog = script.WaitForDialogWith(nControl);
                dialog.SettleIdle();
                times.push_back(std::chrono::duration<double, std::milli>(Clock::now() - opened).count());
                dialog.Press(IDCANCEL);
            });
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

Times Measure(int nTimepoints, int nNames, int nTreatments)
{
    const veltest::TemporaryPractice practice;
    const FakeNames names(MakeNames(nNames));
    dbCPatients::Create(practice.Path("patients.db").c_str());
    dbCPatient patient = StorePatient(nTimepoints, nTreatments);
    CString text;
    COleDateTime date;
    RENAME_OP renamed = RENAME_TIMEPOINT;
    __int64 result = 0;
    unsigned removed = 0;
    const Times times = {
        OpenToReady(
            [&] {
                return RenameDlg(nullptr, 1, &patient, nTimepoints - 1, "", &renamed, text, text, text, text,
                                 date);
            },
            IDC_RENAME_NAMES),
        OpenToReady([&] { NewTimepointDlg(nullptr, 1, &patient, result); }, IDC_NEWTP_NAMES),
        OpenToReady([&] { DeleteDlg(nullptr, 1, &patient, nTimepoints - 1, 0, 0, "", result, removed); },
                    IDC_DELETE_PATIENT),
    };
    dbCPatients::Close();
    return times;
}

/// A patient file with this many diagnostic entries, which all have their item in the practice.
void WriteDiagnostics(const std::string& path, int nEntries)
{
    dbCPatient archived;
    archived.SetID("Z9");
    archived.SetGUID(dbNewGUID());
    dbCDiagnosticInfo info;
    info.SetGroupTitle("Airway");
    info.SetTP(0);
    info.SetValue("value");
    info.SetNote("note");
    for (int i = 0; i < nEntries; ++i)
    {
        info.SetItemCode(("C" + std::to_string(i % diagnosticItems)).c_str());
        archived.GetArchiveDiagnostics().Add(info);
    }
    CFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite);
    CArchive archive(&file, CArchive::store);
    archived.Serialize(archive, 1);
}

/// The milliseconds of an import into a patient without diagnostics; what it adds is checked.
double Import(int nEntries)
{
    const veltest::TemporaryPractice practice;
    dbCPatients::Create(practice.Path("patients.db").c_str());
    const CString strGUID = StorePatient(1, 0).GetGUID();
    for (int i = 0; i < diagnosticItems; ++i)
        dbCDiagnosticGroup::DefineItem("Airway", "Clinical", ("C" + std::to_string(i)).c_str(), "title");
    const std::string path = practice.Path("archived.pf");
    WriteDiagnostics(path, nEntries);
    const auto started = Clock::now();
    EXPECT_TRUE(ImportPatientDiagnostics(path.c_str(), strGUID));
    const double time = std::chrono::duration<double, std::milli>(Clock::now() - started).count();
    EXPECT_EQ(dbCPatientDiagnostics(strGUID, 0, "Clinical").GetCount(), nEntries);
    dbCPatients::Close();
    return time;
}

double MedianImport(int nEntries)
{
    std::vector<double> times;
    times.reserve(repetitions);
    for (int i = 0; i < repetitions; ++i)
        times.push_back(Import(nEntries));
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

void Print(const char* what, double few, double many)
{
    std::printf("%-28s 2 of each %7.1f ms, 100/500/1,000 %7.1f ms, ratio %.2f\n", what, few, many,
                many / few);
}

TEST(RecordsBench, OpenToReadyWithManyRecords)
{
    Measure(2, 2, 2); // warms the libraries up
    const Times few = Measure(2, 2, 2);
    const Times many = Measure(100, 500, 1'000);
    Print("rename open to ready:", few.rename, many.rename);
    Print("new timepoint open to ready:", few.newTimepoint, many.newTimepoint);
    Print("delete open to ready:", few.remove, many.remove);
}

// The shortest file is the price of the transaction. Were each record one of its own, a long file would take
// as many times longer as it has entries; were the others searched for each, an entry would take the longer
// the more there are.
TEST(RecordsBench, DiagnosticsOfLongFiles)
{
    Import(10); // warms the libraries up
    const double few = MedianImport(10);
    const double many = MedianImport(1'000);
    const double most = MedianImport(10'000);
    std::printf("import of 10 diagnostic entries %7.1f ms, 1,000 %7.1f ms, 10,000 %7.1f ms\n", few, many,
                most);
    std::printf("import 1,000 / 10: %.1f; 10,000 / 10: %.1f; an entry of 10,000 / of 1,000: %.2f\n",
                many / few, most / few, most / 10 / many);
}

} // namespace
