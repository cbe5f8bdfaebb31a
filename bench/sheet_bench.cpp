// How long the patient sheet takes to open with 5,000 doctors against 50: filling its lists has to stay
// linear, and the first page must not depend on them at all. A thread of this program turns the pages, and
// not the driver of the tests: that one watches every message that is sent, which costs Wine more than the
// lists do.

#include "app/exports/veldlgs.h"
#include "patient/patientres.h"
#include "patient/detailsres.h"
#include "patient/rules/sheetrules.h"
#include "suite/patients/velpat.h"
#include "tests/support/temporarypractice.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <prsht.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

namespace
{

constexpr int repetitions = 9;

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

// The control of this number below any window of the thread; null when there is none to be seen.
HWND FindControl(DWORD nThread, int nControl)
{
    struct Search
    {
        int nControl;
        HWND hFound;
    } search = {nControl, nullptr};
    ::EnumThreadWindows(
        nThread,
        [](HWND hTop, LPARAM lParam) {
            ::EnumChildWindows(
                hTop,
                [](HWND hChild, LPARAM lChild) {
                    Search& looked = *reinterpret_cast<Search*>(lChild);
                    if (::GetDlgCtrlID(hChild) == looked.nControl && ::IsWindowVisible(hChild))
                        looked.hFound = hChild;
                    return static_cast<BOOL>(looked.hFound == nullptr);
                },
                lParam);
            return static_cast<BOOL>(reinterpret_cast<Search*>(lParam)->hFound == nullptr);
        },
        reinterpret_cast<LPARAM>(&search));
    return search.hFound;
}

// Nothing is waited for longer than this.
constexpr UINT patience = 30'000; // milliseconds

LRESULT Ask(HWND hWnd, UINT message, WPARAM wParam = 0, LPARAM lParam = 0)
{
    DWORD_PTR nResult = 0;
    EXPECT_TRUE(::SendMessageTimeout(hWnd, message, wParam, lParam, SMTO_NORMAL, patience, &nResult))
        << message;
    return static_cast<LRESULT>(nResult);
}

HWND WaitForControl(DWORD nThread, int nControl)
{
    HWND hFound = nullptr;
    for (const auto start = Clock::now(); !hFound && Milliseconds(start) < patience;)
    {
        hFound = FindControl(nThread, nControl);
        if (!hFound)
            ::Sleep(1);
    }
    if (!hFound)
        ::EnumThreadWindows(
            nThread,
            [](HWND hTop, LPARAM) {
                char title[200] = "", text[500] = "";
                ::GetWindowText(hTop, title, sizeof title);
                ::GetDlgItemText(hTop, 0xFFFF, text, sizeof text);
                std::printf("in the way: \"%s\" %s\n", title, text);
                return TRUE;
            },
            0);
    return hFound;
}

struct Times
{
    double chart;   // from the call to the sheet on its first page, which answers
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
        const DWORD nThread = ::GetCurrentThreadId();
        std::atomic<bool> over = false;
        const auto opened = Clock::now();
        std::thread user([&] {
            const HWND hID = WaitForControl(nThread, IDC_CHART_ID);
            Ask(hID, WM_NULL);
            chart.push_back(Milliseconds(opened));
            for (const int nControl : {IDC_CHART_ID, IDC_CHART_FIRSTNAME, IDC_CHART_LASTNAME})
                Ask(FindControl(nThread, nControl), WM_SETTEXT, 0, reinterpret_cast<LPARAM>("A"));
            const HWND hSheet = ::GetAncestor(hID, GA_ROOT);
            const auto turned = Clock::now();
            // Posted, since leaving the first page may ask something first.
            ::PostMessage(hSheet, PSM_SETCURSEL, pat::DetailPage, 0);
            EXPECT_TRUE(WaitForControl(nThread, IDC_DETAIL_TREATING));
            ::PostMessage(hSheet, PSM_SETCURSEL, pat::ReferralPage, 0);
            const HWND hDoctors = WaitForControl(nThread, IDC_REFER_DOCTOR);
            EXPECT_EQ(Ask(hDoctors, CB_GETCOUNT), nDoctors + 1);
            doctors.push_back(Milliseconds(turned));
            // Whatever else is open is closed as well, so that the sheet returns.
            for (; !over; ::Sleep(5))
                ::EnumThreadWindows(
                    nThread, [](HWND hWnd, LPARAM) { return ::PostMessage(hWnd, WM_COMMAND, IDCANCEL, 0); },
                    0);
        });
        NewPatientDlg(nullptr, &patients, strGUID);
        over = true;
        user.join();
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
