#include "suite/dialogs/teethchart.h"
#include "suite/dialogs/teethcontrol.h"
#include "suite/patients/records/dbpatient.h"
#include "tests/support/dialogscript.h"
#include "tests/support/picture.h"

#include <gtest/gtest.h>

namespace
{

TEST(TeethChartTest, NumbersFollowTheFdiScheme)
{
    const int first[] = {18, 21, 48, 31}; // of each quadrant: the number falls in those on the left
    for (int place = 0; place < cttChart::toothCount; ++place)
    {
        const int quadrant = place / 8;
        EXPECT_EQ(cttChart::Number(place), first[quadrant] + (quadrant % 2 == 0 ? -(place % 8) : place % 8));
    }
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
        EXPECT_EQ(cttMove(test.from, test.step), test.to) << test.from;
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
            ::EndDialog(dialog, changes);
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
    static INT_PTR Run(const std::function<void(const veltest::Dialog&, const veltest::Control&)>& script)
    {
        alignas(4) static const struct
        {
            DLGTEMPLATE dialog;
            WORD menuClassTitle[3];
        } empty = {{WS_POPUP | WS_CAPTION | WS_SYSMENU, 0, 0, 0, 0, 200, 80}, {0, 0, 0}};
        const auto call = [] {
            return ::DialogBoxIndirectParam(::GetModuleHandle(nullptr), &empty.dialog, nullptr,
                                            TeethDialogProc, 0);
        };
        return veltest::RunDialog(call, "Teeth", [&](veltest::DialogScript&, const veltest::Dialog& dialog) {
            script(dialog, dialog.Item(teethId));
            dialog.Close();
        });
    }
};

TEST_F(TeethControlTest, KeysAndClicksChangeTheRecordOnlyWhenStored)
{
    dbCPatient patient;
    const INT_PTR changes = Run([&](const veltest::Dialog& dialog, const veltest::Control& teeth) {
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
    });
    EXPECT_EQ(changes, 5);
    EXPECT_STREQ(patient.GetTeeth(), ("MX" + std::string(29, 'P') + "M").c_str());
}

TEST_F(TeethControlTest, StoringWithoutAChangeKeepsWhatCannotBeRead)
{
    dbCPatient patient;
    patient.SetTeeth("written by a later version");
    Run([&](const veltest::Dialog& dialog, const veltest::Control& teeth) {
        teeth.Send(WM_TEETH_SETPATIENT, 0, reinterpret_cast<LPARAM>(&patient));
        EXPECT_TRUE(teeth.Send(WM_TEETH_STORE));
        EXPECT_STREQ(patient.GetTeeth(), "written by a later version");
        ::EnableWindow(teeth.Handle(), FALSE);
        veltest::SavePicture(dialog.Handle(), "teeth-disabled");
    });
}

} // namespace
