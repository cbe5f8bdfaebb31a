#include "suite/dialogs/teethchart.h"
#include "suite/dialogs/teethcontrol.h"
#include "suite/patients/records/dbpatient.h"
#include "tests/support/dialogscript.h"
#include "tests/support/picture.h"

#include <gtest/gtest.h>

#include <set>

namespace
{

TEST(TeethChartTest, NumbersFollowTheFdiScheme)
{
    const struct
    {
        int place;
        int number;
    } cases[] = {{0, 18}, {7, 11}, {8, 21}, {15, 28}, {16, 48}, {23, 41}, {24, 31}, {31, 38}};
    for (const auto& test : cases)
    {
        EXPECT_EQ(cttChart::Number(test.place), test.number);
    }
    std::set<int> numbers;
    for (int place = 0; place < cttChart::toothCount; ++place)
    {
        numbers.insert(cttChart::Number(place));
    }
    EXPECT_EQ(numbers.size(), 32U);
}

TEST(TeethChartTest, TextsAreReadBackAndDamagedOnesRefused)
{
    cttChart chart;
    EXPECT_EQ(chart.ToText(), "");
    chart.Toggle(0);
    chart.Toggle(31);
    chart.Toggle(31);
    const std::string text = chart.ToText();
    EXPECT_EQ(text, "M" + std::string(30, 'P') + "X");
    cttChart read;
    EXPECT_TRUE(read.FromText(text));
    EXPECT_EQ(read, chart);

    for (const std::string& damaged :
         {text.substr(1), text + "P", std::string(32, 'p'), std::string("\0M", 2)})
    {
        EXPECT_FALSE(read.FromText(damaged));
        EXPECT_EQ(read, cttChart()) << "a damaged text leaves nothing behind";
        read = chart;
    }
    EXPECT_TRUE(read.FromText(""));
    EXPECT_EQ(read, cttChart());
}

TEST(TeethChartTest, CursorStaysWithinTheArches)
{
    const struct
    {
        int from;
        cttStep step;
        int to;
    } cases[] = {{0, cttStep::left, 0},    {15, cttStep::right, 15}, {16, cttStep::left, 16},
                 {31, cttStep::right, 31}, {5, cttStep::down, 21},   {21, cttStep::down, 21},
                 {21, cttStep::up, 5},     {5, cttStep::up, 5},      {20, cttStep::first, 16},
                 {20, cttStep::last, 31},  {3, cttStep::right, 4},   {3, cttStep::last, 15}};
    for (const auto& test : cases)
    {
        EXPECT_EQ(cttMove(test.from, test.step), test.to) << test.from;
    }
}

constexpr int teethId = 77;

// A plain dialog around the control.
INT_PTR CALLBACK TeethDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM)
{
    static int changes = 0;
    switch (message)
    {
    case WM_INITDIALOG:
        changes = 0;
        ::SetWindowText(dialog, "Teeth");
        ::SetWindowPos(dialog, nullptr, 0, 0, 560, 140, SWP_NOMOVE | SWP_NOZORDER);
        ::CreateWindow("VELTEETH", "", WS_CHILD | WS_VISIBLE | WS_TABSTOP, 10, 10, 520, 80, dialog,
                       reinterpret_cast<HMENU>(static_cast<INT_PTR>(teethId)), ::GetModuleHandle(nullptr),
                       nullptr);
        return FALSE;
    case WM_COMMAND:
        changes += wParam == MAKEWPARAM(teethId, TEETHN_CHANGE) ? 1 : 0;
        if (LOWORD(wParam) == IDCANCEL)
        {
            ::EndDialog(dialog, changes);
        }
        return TRUE;
    default:
        return FALSE;
    }
}

class TeethControlTest : public testing::Test
{
protected:
    TeethControlTest()
    {
        EXPECT_TRUE(cttRegisterClass(::GetModuleHandle(nullptr)));
    }
    ~TeethControlTest() override
    {
        EXPECT_TRUE(cttUnregisterClass(::GetModuleHandle(nullptr)));
    }

    // Returns the number of changes that the control told its dialog.
    static INT_PTR Run(veltest::DialogScript::Script script)
    {
        alignas(4) static const struct
        {
            DLGTEMPLATE dialog;
            WORD menuClassTitle[3];
        } empty = {{WS_POPUP | WS_CAPTION | WS_SYSMENU, 0, 0, 0, 0, 200, 80}, {0, 0, 0}};
        return veltest::RunModal(
            [] {
                return ::DialogBoxIndirectParam(::GetModuleHandle(nullptr), &empty.dialog, nullptr,
                                                TeethDialogProc, 0);
            },
            std::move(script));
    }
};

TEST_F(TeethControlTest, KeysAndClicksChangeTheRecordOnlyWhenStored)
{
    dbCPatient patient;
    const INT_PTR changes = Run([&](veltest::DialogScript& script) {
        const veltest::Dialog dialog = script.WaitForDialog("Teeth");
        const veltest::Control teeth = dialog.Item(teethId);
        EXPECT_FALSE(teeth.Send(WM_TEETH_STORE)) << "without a record there is nothing to store";
        EXPECT_TRUE(teeth.Send(WM_TEETH_SETPATIENT, 0, reinterpret_cast<LPARAM>(&patient)));
        teeth.Focus();
        teeth.PressKey(VK_SPACE);
        EXPECT_EQ(teeth.Text(), "Tooth 18: missing");
        teeth.PressKey(VK_RIGHT);
        teeth.PressKey(VK_SPACE);
        teeth.PressKey(VK_SPACE);
        EXPECT_EQ(teeth.Text(), "Tooth 17: extracted");
        // A click into the lower arch, last column.
        teeth.Post(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(515, 60));
        EXPECT_EQ(teeth.Text(), "Tooth 38: missing");
        EXPECT_STREQ(patient.GetTeeth(), "");
        veltest::SavePicture(dialog.Handle(), "teeth");
        EXPECT_TRUE(teeth.Send(WM_TEETH_STORE));
        EXPECT_STREQ(patient.GetTeeth(), ("MX" + std::string(29, 'P') + "M").c_str());
        teeth.Post(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(515, 60));
        dialog.Close();
    });
    EXPECT_EQ(changes, 5);
    EXPECT_STREQ(patient.GetTeeth(), ("MX" + std::string(29, 'P') + "M").c_str());
}

TEST_F(TeethControlTest, StoringWithoutAChangeKeepsWhatCannotBeRead)
{
    dbCPatient patient;
    patient.SetTeeth("written by a later version");
    Run([&](veltest::DialogScript& script) {
        const veltest::Dialog dialog = script.WaitForDialog("Teeth");
        const veltest::Control teeth = dialog.Item(teethId);
        teeth.Send(WM_TEETH_SETPATIENT, 0, reinterpret_cast<LPARAM>(&patient));
        EXPECT_TRUE(teeth.Send(WM_TEETH_STORE));
        EXPECT_STREQ(patient.GetTeeth(), "written by a later version");
        ::EnableWindow(teeth.Handle(), FALSE);
        veltest::SavePicture(dialog.Handle(), "teeth-disabled");
        dialog.Close();
    });
}

} // namespace
