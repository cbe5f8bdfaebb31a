// How long the patient sheet takes to open with 5,000 doctors against 50: filling its lists has to stay
// linear, and the first page must not depend on them at all. The driver of the tests, which turns the pages,
// watches every message that is sent, which takes Wine a multiple of what the lists take: only the ratios are
// worth reading.

#include "app/exports/veldlgs.h"
#include "patient/patientres.h"
#include "patient/rules/sheetrules.h"
#include "suite/patients/velpat.h"
#include "tests/support/dialogscript.h"
#include "tests/support/temporarypractice.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

namespace
{

constexpr int repetitions = 3;
constexpr DWORD patience = 120'000; // milliseconds; a busy machine needs half a minute for 5,000 doctors

using Clock = std::chrono::steady_clock;

double Milliseconds(Clock::time_point from)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - from).count();
}

double Median(std::vector<double> times)
{
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

struct Times
{
    double chart;   // from the call to the idle sheet on its first page
    double doctors; // from there through the two pages that list the doctors
};

Times Measure(int nDoctors)
{
    const veltest::TemporaryPractice practice;
    dbCPatients::Create(practice.Path("patients.db").c_str());
    {
        dbCTransaction transaction;
        for (int i = 0; i < nDoctors; ++i)
        {
            dbCDoctor doctor;
            doctor.GetPerson().SetFirstname("Ida");
            doctor.GetPerson().SetLastname(("Sorel" + std::to_string(i * 7919 % nDoctors)).c_str());
            doctor.SetTreating(TRUE);
            doctor.Save();
        }
        transaction.Commit();
    }
    std::vector<double> chart;
    std::vector<double> doctors;
    for (int i = 0; i < repetitions; ++i)
    {
        dbCPatients patients;
        CString strGUID;
        const auto opened = Clock::now();
        veltest::RunModal(
            [&] { return NewPatientDlg(nullptr, &patients, strGUID); },
            [&](veltest::DialogScript& script) {
                script.SetPatience(patience);
                const veltest::Dialog sheet = script.WaitForDialogWith(IDC_CHART_ID);
                sheet.SettleIdle();
                chart.push_back(Milliseconds(opened));
                for (const int nControl : {IDC_CHART_ID, IDC_CHART_FIRSTNAME, IDC_CHART_LASTNAME})
                    sheet.Item(nControl).SetText("A");
                const auto turned = Clock::now();
                sheet.SelectPage(pat::DetailPage);
                sheet.SelectPage(pat::ReferralPage);
                sheet.SettleIdle();
                doctors.push_back(Milliseconds(turned));
                EXPECT_EQ(sheet.Item(IDC_REFER_DOCTOR).Send(CB_GETCOUNT), nDoctors + 1);
                sheet.Press(IDCANCEL);
            });
    }
    dbCPatients::Close();
    return {Median(chart), Median(doctors)};
}

TEST(SheetBench, OpenToReadyWithManyDoctors)
{
    Measure(50); // warms the libraries up
    const Times few = Measure(50);
    const Times many = Measure(5'000);
    std::printf("sheet open to ready:     50 doctors %7.1f ms, 5,000 doctors %7.1f ms, ratio %.2f\n",
                few.chart, many.chart, many.chart / few.chart);
    std::printf("pages with the doctors:  50 doctors %7.1f ms, 5,000 doctors %7.1f ms, ratio %.2f\n",
                few.doctors, many.doctors, many.doctors / few.doctors);
}

} // namespace
