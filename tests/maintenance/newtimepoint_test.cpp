#include "maintenance/maintenanceres.h"
#include "tests/maintenance/patientpractice.h"
#include "tests/maintenance/fakenames.h"

namespace
{

using testing::ElementsAre;
using testing::StartsWith;
using veltest::Dialog;
using veltest::DialogScript;

class NewTimepointDialog : public PatientPractice
{
protected:
    using Script = std::function<void(DialogScript&, const Dialog&)>;

    static __int64 Run(dbCPatient* pPatient, int practiceManagement, const Script& script)
    {
        __int64 result = -1;
        veltest::RunModal(
            [&] {
                NewTimepointDlg(nullptr, practiceManagement, pPatient, result);
                return 0;
            },
            [&](DialogScript& s) { script(s, s.WaitForDialog("New Timepoint")); });
        return result;
    }

    static void Type(const Dialog& dialog, const std::string& name)
    {
        dialog.Item(IDC_NEWTP_NAMES).SetText(name);
        dialog.Item(IDC_NEWTP_NAMES).Notify(CBN_EDITCHANGE);
        dialog.SettleIdle();
    }

    static void Confirm(const Dialog& dialog, const std::string& name, WORD day)
    {
        dialog.Item(IDC_NEWTP_DATE).SetDate(2026, 1, day);
        Type(dialog, name);
        EXPECT_TRUE(dialog.Item(IDOK).IsEnabled()) << name;
        dialog.Press(IDOK);
    }

    // "number name date treatment" of the stored timepoints.
    static std::vector<std::string> Stored(const char* id)
    {
        dbCPatient patient;
        EXPECT_TRUE(patient.Load(id));
        dbCPatientTreatmentStatusHistoryTable history;
        history.LoadByPatID(patient.GetGUID());
        dbCTimepointsContainer rows;
        rows.LoadByPatID(patient.GetGUID(), 0);
        std::vector<std::string> lines;
        for (const auto& row : rows)
        {
            std::string line = std::to_string(row.GetNumber()) + " " + row.GetDescription().GetString() +
                               "|" + row.GetDateTime().ToISO().GetString() + "|";
            for (const auto& treatment : history)
                if (treatment.GetptshID() == row.GetptshID())
                    line += treatment.GetDescription().GetString();
            lines.push_back(line);
        }
        return lines;
    }

    static std::string DayShown(const Dialog& dialog)
    {
        const SYSTEMTIME day = dialog.Item(IDC_NEWTP_DATE).Date();
        return std::to_string(day.wYear) + "-" + std::to_string(day.wMonth) + "-" + std::to_string(day.wDay);
    }
};

// The date is remembered by the process, so these stand in one test.
TEST_F(NewTimepointDialog, AddsATimepointAndRemembersItsDate)
{
    EXPECT_EQ(Run(&m_patient, 0,
                  [](DialogScript&, const Dialog& dialog) {
                      EXPECT_EQ(DayShown(dialog), "2023-1-2"); // the patient's own
                      EXPECT_FALSE(dialog.Item(IDC_NEWTP_TREATMENT).IsVisible());
                      Confirm(dialog, "  Phase 1 \"%1\" & \xC4  ", 15);
                  }),
              IDOK);
    EXPECT_THAT(Stored("A1"), ElementsAre("0 Start|2024-03-04|", "1 Recall|2025-05-06|",
                                          "2   Phase 1 \"%1\" & \xC4|2026-01-15|"));
    EXPECT_EQ(Run(&m_patient, 0,
                  [](DialogScript&, const Dialog& dialog) {
                      EXPECT_EQ(DayShown(dialog), "2026-1-15");
                      dialog.Item(IDC_NEWTP_DATE).SetDate(2026, 1, 20);
                      dialog.Press(IDCANCEL);
                  }),
              IDCANCEL);
    // Without a patient nothing is added or remembered, and the answer is OK.
    EXPECT_EQ(Run(nullptr, 1, [](DialogScript&, const Dialog& dialog) { Confirm(dialog, "Phase 2", 22); }),
              IDOK);
    Run(&m_patient, 0, [](DialogScript&, const Dialog& dialog) {
        EXPECT_EQ(DayShown(dialog), "2026-1-15");
        dialog.Press(IDCANCEL);
    });
    EXPECT_EQ(Stored("A1").size(), 3U);
}

TEST_F(NewTimepointDialog, OKFollowsNameAndDate)
{
    m_patient.GetTimepoints()[0].SetDate(velCDate(COleDateTime(2026, 1, 15, 10, 30, 0)));
    const auto result = Run(&m_patient, 0, [](DialogScript& script, const Dialog& dialog) {
        dialog.Item(IDC_NEWTP_DATE).SetDate(2026, 1, 15);
        const struct
        {
            std::string name;
            bool ok;
        } cases[] = {
            {"", false},        {"  ", false},    {"a\tb", false}, {"a\x01", false}, {"Start", false},
            {"Start  ", false}, {" Start", true}, {"start", true}, {"Recall", true}, {"\xC4", true},
        };
        for (const auto& c : cases)
        {
            Type(dialog, c.name);
            EXPECT_EQ(dialog.Item(IDOK).IsEnabled(), c.ok) << c.name;
            EXPECT_EQ(dialog.Item(IDC_NEWTP_ADD_NAME).IsEnabled(), c.ok || c.name.rfind("Start", 0) == 0)
                << c.name;
        }
        Type(dialog, "Start");
        dialog.Item(IDC_NEWTP_DATE).SetDate(2026, 1, 16);
        dialog.SettleIdle();
        EXPECT_TRUE(dialog.Item(IDOK).IsEnabled());
        Type(dialog, std::string(10000, 'n'));
        EXPECT_EQ(dialog.Item(IDC_NEWTP_NAMES).Text(), std::string(50, 'n'));
        // An OK quicker than the button was disabled adds neither what cannot be a name nor a second one.
        Type(dialog, "a\tb");
        PostMessageA(dialog.Handle(), WM_COMMAND, IDOK, reinterpret_cast<LPARAM>(dialog.Item(IDOK).Handle()));
        script.Settle(dialog.Handle());
        EXPECT_TRUE(dialog.IsOpen());
        dialog.Item(IDC_NEWTP_DATE).SetDate(2026, 1, 15);
        Type(dialog, "Start");
        PostMessageA(dialog.Handle(), WM_COMMAND, IDOK, reinterpret_cast<LPARAM>(dialog.Item(IDOK).Handle()));
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_EQ(m_patient.GetTimepoints().GetCount(), 2);
}

TEST_F(NewTimepointDialog, TheHundredthIsTheLast)
{
    std::vector<Timepoint> timepoints;
    for (int i = 0; i < 99; ++i)
        timepoints.push_back({"T" + std::to_string(i), velCDate(2020, 1, 1)});
    dbCPatient patient = Store("F1", "Flo", "Full", timepoints);
    dbCPatient other;
    ASSERT_TRUE(other.Load("F1"));

    EXPECT_EQ(Run(&patient, 0, [](DialogScript&, const Dialog& dialog) { Confirm(dialog, "Hundredth", 1); }),
              IDOK);
    EXPECT_EQ(Stored("F1").size(), 100U);
    EXPECT_EQ(
        Run(&patient, 0,
            [](DialogScript& script, const Dialog& dialog) {
                Confirm(dialog, "One more", 2);
                const Dialog box = script.WaitForBox(
                    "The maximum number of timepoints (100) has already been reached for this patient.");
                EXPECT_EQ(box.Title(), "Add Timepoint Failed");
                EXPECT_TRUE(box.HasIcon(IDI_HAND));
                box.Press(IDOK);
            }),
        IDOK);
    // A seat that has read the patient before is told, and its patient stays as it was.
    EXPECT_EQ(Run(&other, 0,
                  [](DialogScript& script, const Dialog& dialog) {
                      EXPECT_EQ(DayShown(dialog), "2026-1-2"); // remembered although nothing was added
                      Confirm(dialog, "Theirs", 3);
                      const Dialog box = script.WaitForBox();
                      EXPECT_THAT(box.BoxText(),
                                  StartsWith("The patient's records could not be read or written."));
                      box.Press(IDOK);
                      box.WaitForClosed();
                      EXPECT_TRUE(dialog.IsOpen());
                      EXPECT_EQ(dialog.Item(IDC_NEWTP_NAMES).Text(), "Theirs");
                      dialog.Press(IDCANCEL);
                  }),
              IDCANCEL);
    EXPECT_EQ(other.GetTimepoints().GetCount(), 99);
    EXPECT_EQ(Stored("F1").size(), 100U);
    EXPECT_EQ(Stored("F1").back(), "99 Hundredth|2026-01-01|");
}

TEST_F(NewTimepointDialog, BelongsToATreatment)
{
    dbCTreatmentStatusContainer::AddTreatment("B", "Braces");
    const auto list = [](const Dialog& dialog) { return dialog.Item(IDC_NEWTP_TREATMENT); };
    EXPECT_EQ(Run(&m_patient, 1,
                  [&](DialogScript& script, const Dialog& dialog) {
                      EXPECT_EQ(list(dialog).Items().size(), 1U);
                      EXPECT_EQ(list(dialog).Selection(), 0);
                      Confirm(dialog, "Bonding", 4);
                      Dialog chooser = script.WaitForDialog("Choose a Treatment");
                      chooser.Press(IDCANCEL);
                      chooser.WaitForClosed();
                      EXPECT_TRUE(dialog.IsOpen());
                      dialog.Press(IDOK);
                      chooser = script.WaitForDialog("Choose a Treatment");
                      chooser.Item(IDC_TREATMENT_LIST).Choose("Braces");
                      chooser.Press(IDOK);
                  }),
              IDOK);
    EXPECT_EQ(Stored("A1").back(), "2 Bonding|2026-01-04|Braces");
    EXPECT_EQ(Run(&m_patient, 1,
                  [&](DialogScript& script, const Dialog& dialog) {
                      EXPECT_EQ(list(dialog).Items().size(), 2U);
                      EXPECT_EQ(list(dialog).Selection(), 1);
                      list(dialog).Send(CB_SETCURSEL, static_cast<WPARAM>(-1));
                      Confirm(dialog, "Debonding", 5);
                      script.Settle(dialog.Handle());
                      EXPECT_TRUE(dialog.IsOpen());
                      list(dialog).Choose(0);
                      dialog.Press(IDOK);
                  }),
              IDOK);
    EXPECT_EQ(Stored("A1").back(), "3 Debonding|2026-01-05|Braces");
    // Off, it belongs to none.
    Run(&m_patient, 0, [&](DialogScript&, const Dialog& dialog) { Confirm(dialog, "Recall 2", 6); });
    EXPECT_EQ(Stored("A1").back(), "4 Recall 2|2026-01-06|");
}

TEST_F(NewTimepointDialog, KeepsTheListOfNames)
{
    FakeNames fake({"One", "Two", "Three"});
    EXPECT_EQ(
        Run(&m_patient, 0,
            [&](DialogScript& script, const Dialog& dialog) {
                const auto names = dialog.Item(IDC_NEWTP_NAMES);
                const auto remove = dialog.Item(IDC_NEWTP_DELETE);
                EXPECT_THAT(names.Items(), ElementsAre("One", "Two", "Three"));
                dialog.SettleIdle();
                EXPECT_FALSE(remove.IsEnabled());
                dialog.Press(IDC_NEWTP_UP);
                script.AnswerBox("Select a timepoint name to move up in the list.", IDOK);
                dialog.Press(IDC_NEWTP_DOWN);
                script.AnswerBox("Select a timepoint name to move down in the list.", IDOK);
                names.Choose(2);
                dialog.Press(IDC_NEWTP_DOWN);
                EXPECT_EQ(names.Selection(), 2);
                // Two quick clicks move twice.
                const HWND up = dialog.Item(IDC_NEWTP_UP).Handle();
                for (const UINT message : {WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_LBUTTONUP})
                    PostMessageA(up, message, 0, MAKELPARAM(5, 5));
                script.Settle(dialog.Handle());
                EXPECT_THAT(names.Items(), ElementsAre("Three", "One", "Two"));
                EXPECT_EQ(names.SelectedItem(), "Three");
                EXPECT_EQ(names.Text(), "Three");
                dialog.Press(IDC_NEWTP_UP);
                EXPECT_EQ(names.Selection(), 0);
                dialog.Press(IDC_NEWTP_DOWN);
                EXPECT_THAT(fake.names, ElementsAre("One", "Three", "Two"));
                EXPECT_EQ(names.Selection(), 1);

                dialog.SettleIdle();
                remove.Click();
                Dialog box = script.WaitForBox("Delete the predefined name, \"Three\", from the list?");
                EXPECT_THAT(box.Buttons(), ElementsAre("OK", "Cancel"));
                box.Press(IDCANCEL);
                box.WaitForClosed();
                EXPECT_EQ(fake.names.size(), 3U);
                remove.Click();
                script.AnswerBox("", IDOK);
                script.Settle(dialog.Handle());
                EXPECT_THAT(fake.names, ElementsAre("One", "Two"));
                EXPECT_THAT(names.Items(), ElementsAre("One", "Two"));

                // A prefix of an entry, or its end, is another name.
                Type(dialog, "tWO");
                EXPECT_FALSE(dialog.Item(IDC_NEWTP_ADD_NAME).IsEnabled());
                Type(dialog, "Tw ");
                dialog.Press(IDC_NEWTP_ADD_NAME);
                EXPECT_EQ(GetParent(script.FocusOf(dialog.Handle())), names.Handle());
                Confirm(dialog, "Tw ", 7);
            }),
        IDOK);
    Run(&m_patient, 0, [](DialogScript&, const Dialog& dialog) { Confirm(dialog, "Not kept", 7); });
    EXPECT_THAT(fake.names, ElementsAre("One", "Two", "Tw"));
}

TEST_F(NewTimepointDialog, StaysUsableWhenTheListFails)
{
    FakeNames fake({"One", "Two", "Three"});
    const char* const failure = "The list of predefined timepoint names could not be used.\n\nOut of order";
    const auto result = Run(&m_patient, 0, [&](DialogScript& script, const Dialog& dialog) {
        const auto names = dialog.Item(IDC_NEWTP_NAMES);
        names.Choose(1);
        dialog.SettleIdle();
        const struct
        {
            FakeNames::Method failing;
            int button;
        } cases[] = {{FakeNames::moveUp, IDC_NEWTP_UP},
                     {FakeNames::moveDown, IDC_NEWTP_DOWN},
                     {FakeNames::removeAt, IDC_NEWTP_DELETE}};
        for (const auto& c : cases)
        {
            fake.failing = c.failing;
            dialog.Press(c.button);
            if (c.failing == FakeNames::removeAt)
                script.AnswerBox("Delete the predefined name, \"Two\", from the list?", IDOK);
            script.AnswerBox(failure, IDOK);
            script.Settle(dialog.Handle());
            EXPECT_FALSE(script.FindBox());
            EXPECT_THAT(names.Items(), ElementsAre("One", "Two", "Three"));
            EXPECT_EQ(names.Text(), "Two");
        }
        fake.failing = FakeNames::add;
        Type(dialog, "Four");
        dialog.Press(IDC_NEWTP_ADD_NAME);
        Confirm(dialog, "Four", 8);
        script.AnswerBox(failure, IDOK);
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_EQ(Stored("A1").back(), "2 Four|2026-01-08|");

    fake.failing = FakeNames::create;
    Run(&m_patient, 0, [&](DialogScript& script, const Dialog& dialog) {
        dialog.Press(IDC_NEWTP_UP);
        dialog.Press(IDC_NEWTP_DOWN);
        script.Settle(dialog.Handle());
        EXPECT_FALSE(script.FindBox());
        Type(dialog, "Five");
        dialog.Press(IDC_NEWTP_ADD_NAME);
        Confirm(dialog, "Five", 9);
    });
    EXPECT_EQ(Stored("A1").back(), "3 Five|2026-01-09|");
}

TEST_F(NewTimepointDialog, AVanishedDatabaseIsTold)
{
    Run(&m_patient, 0, [](DialogScript& script, const Dialog& dialog) {
        dbCPatients::Close();
        Confirm(dialog, "Lost", 10);
        const Dialog box = script.WaitForBox();
        EXPECT_THAT(box.BoxText(), StartsWith("The patient's records could not be read or written."));
        box.Press(IDOK);
        box.WaitForClosed();
        EXPECT_EQ(dialog.Item(IDC_NEWTP_NAMES).Text(), "Lost");
        dialog.Press(IDCANCEL);
    });
    EXPECT_EQ(m_patient.GetTimepoints().GetCount(), 2);
}

TEST_F(NewTimepointDialog, LooksAsItShould)
{
    FakeNames fake({"Phase 1", "Phase 2", "Recall"});
    Run(&m_patient, 1, [](DialogScript&, const Dialog& dialog) {
        dialog.Item(IDC_NEWTP_NAMES).Choose(1);
        dialog.SettleIdle();
        EXPECT_TRUE(dialog.Item(IDC_NEWTP_NAMES).Handle() == GetParent(dialog.Focused().Handle()));
        EXPECT_EQ(veltest::DialogFindings(dialog.Handle(), {.ignoredIds = {IDC_NEWTP_UP, IDC_NEWTP_DOWN}}),
                  "");
        EXPECT_EQ(dialog.Item(IDC_NEWTP_UP).Text(), "Move &up");
        EXPECT_TRUE(veltest::SavePicture(dialog.Handle(), "new-timepoint"));
        dialog.Press(IDCANCEL);
    });
}

} // namespace
