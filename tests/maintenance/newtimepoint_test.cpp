#include "tests/maintenance/fakenames.h"
#include "tests/maintenance/patientpractice.h"

namespace
{

using testing::ElementsAre;

class NewTimepointDialog : public PatientPractice
{
protected:
    static __int64 Run(dbCPatient* pPatient, int practiceManagement, const Script& script)
    {
        __int64 result = -1;
        veltest::RunDialog([&] { NewTimepointDlg(nullptr, practiceManagement, pPatient, result); },
                           "New Timepoint", script);
        return result;
    }

    static void Confirm(const Dialog& dialog, const std::string& name, WORD day)
    {
        dialog.Item(IDC_NEWTP_DATE).SetDate(2026, 1, day);
        Type(dialog, name);
        EXPECT_TRUE(dialog.Item(IDOK).IsEnabled()) << name;
        dialog.Press(IDOK);
    }
    static Script Confirmed(const std::string& name, WORD day)
    {
        return [=](DialogScript&, const Dialog& dialog) { Confirm(dialog, name, day); };
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
    const auto first = [](DialogScript&, const Dialog& dialog) {
        EXPECT_EQ(DayShown(dialog), "2023-1-2"); // the patient's own
        EXPECT_FALSE(dialog.Item(IDC_NEWTP_TREATMENT).IsVisible());
        Confirm(dialog, "  Phase 1 \"%1\" & \xC4  ", 15);
    };
    EXPECT_EQ(Run(&m_patient, 0, first), IDOK);
    const auto stored = Stored();
    EXPECT_THAT(stored, ElementsAre("0 Start|2024-03-04|", "1 Recall|2025-05-06|",
                                    "2   Phase 1 \"%1\" & \xC4|2026-01-15|"));
    const auto cancelled = [](DialogScript&, const Dialog& dialog) {
        EXPECT_EQ(DayShown(dialog), "2026-1-15");
        dialog.Item(IDC_NEWTP_DATE).SetDate(2026, 1, 20);
        dialog.Press(IDCANCEL);
    };
    EXPECT_EQ(Run(&m_patient, 0, cancelled), IDCANCEL);
    // Without a patient nothing is added or remembered, and the answer is OK.
    EXPECT_EQ(Run(nullptr, 1, Confirmed("Phase 2", 22)), IDOK);
    EXPECT_EQ(Run(&m_patient, 0, cancelled), IDCANCEL);
    EXPECT_EQ(Stored(), stored);
}

TEST_F(NewTimepointDialog, OKFollowsNameAndDate)
{
    m_patient.GetTimepoints()[0].SetDate(velCDate(COleDateTime(2026, 1, 15, 10, 30, 0)));
    const auto type = [](DialogScript& script, const Dialog& dialog) {
        dialog.Item(IDC_NEWTP_DATE).SetDate(2026, 1, 15);
        const std::tuple<std::string, bool, bool> cases[] = {
            {"a\tb", false, false},
            {"Start ", false, true},
            {" Start", true, true},
            {"start", true, true},
            {std::string(60, 'n'), true, true},
        };
        for (const auto& [name, ok, add] : cases)
        {
            Type(dialog, name);
            EXPECT_EQ(dialog.Item(IDOK).IsEnabled(), ok) << name;
            EXPECT_EQ(dialog.Item(IDC_NEWTP_ADD_NAME).IsEnabled(), add) << name;
        }
        EXPECT_EQ(NamesOf(dialog).Text(), std::string(50, 'n'));
        Type(dialog, "Start");
        dialog.Item(IDC_NEWTP_DATE).SetDate(2026, 1, 16);
        EXPECT_TRUE(IsEnabled(dialog, IDOK));
        // Neither what cannot be a name is added nor a second one.
        Type(dialog, "a\tb");
        PostOK(script, dialog);
        dialog.Item(IDC_NEWTP_DATE).SetDate(2026, 1, 15);
        Type(dialog, "Start");
        PostOK(script, dialog);
    };
    EXPECT_EQ(Run(&m_patient, 0, type), IDOK);
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

    EXPECT_EQ(Run(&patient, 0, Confirmed("Hundredth", 1)), IDOK);
    const auto stored = Stored("F1");
    EXPECT_EQ(stored.size(), 100U);
    EXPECT_EQ(stored.back(), "99 Hundredth|2026-01-01|");
    const auto oneMore = [](DialogScript& script, const Dialog& dialog) {
        Confirm(dialog, "One more", 2);
        const Dialog box = script.WaitForBox();
        EXPECT_EQ(box.Title(), "Add Timepoint Failed");
        EXPECT_TRUE(box.HasIcon(IDI_HAND));
        script.AnswerBox("The maximum number of timepoints (100) has already been reached for this patient.",
                         IDOK);
    };
    EXPECT_EQ(Run(&patient, 0, oneMore), IDOK);
    // A seat that has read the patient before is told, and its patient stays as it was.
    const auto theirs = [](DialogScript& script, const Dialog& dialog) {
        EXPECT_EQ(DayShown(dialog), "2026-1-2"); // remembered although nothing was added
        Confirm(dialog, "Theirs", 3);
        ExpectRecordFailure(script, dialog);
        EXPECT_EQ(NamesOf(dialog).Text(), "Theirs");
        dialog.Press(IDCANCEL);
    };
    EXPECT_EQ(Run(&other, 0, theirs), IDCANCEL);
    EXPECT_EQ(other.GetTimepoints().GetCount(), 99);
    EXPECT_EQ(Stored("F1"), stored);
}

TEST_F(NewTimepointDialog, BelongsToATreatment)
{
    dbCTreatmentStatusContainer::AddTreatment("B", "Braces");
    FakeNames fake({"Phase 1", "Phase 2"});
    const auto first = [&](DialogScript& script, const Dialog& dialog) {
        EXPECT_EQ(NamesOf(dialog).Handle(), GetParent(dialog.Focused().Handle()));
        NamesOf(dialog).Choose(1);
        dialog.SettleIdle();
        EXPECT_EQ(dialog.Item(IDC_NEWTP_UP).Text(), "Move &up");
        veltest::ExpectWellMade(dialog, "new-timepoint",
                                {.grows = true, .ignoredIds = {IDC_NEWTP_UP, IDC_NEWTP_DOWN}});
        EXPECT_EQ(dialog.Item(IDC_NEWTP_TREATMENT).Selection(), 0);
        Confirm(dialog, "Bonding", 4);
        for (const int end : {IDCANCEL, IDOK})
        {
            const Dialog chooser = script.WaitForDialog("Choose a Treatment");
            chooser.Item(IDC_TREATMENT_LIST).Choose("Braces");
            chooser.Press(end);
            chooser.WaitForClosed();
            if (end == IDCANCEL)
                dialog.Press(IDOK);
        }
    };
    EXPECT_EQ(Run(&m_patient, 1, first), IDOK);
    const auto second = [&](DialogScript&, const Dialog& dialog) {
        const auto list = dialog.Item(IDC_NEWTP_TREATMENT);
        EXPECT_EQ(list.Items().size(), 2U);
        EXPECT_EQ(list.Selection(), 1);
        list.Send(CB_SETCURSEL, static_cast<WPARAM>(-1));
        Confirm(dialog, "Debonding", 5); // not without a choice
        list.Choose(0);
        dialog.Press(IDOK);
    };
    EXPECT_EQ(Run(&m_patient, 1, second), IDOK);
    Run(&m_patient, 0, Confirmed("Recall 2", 6)); // off, it belongs to none
    EXPECT_THAT(Stored(), ElementsAre("B Braces -1", "0 Start|2024-03-04|", "1 Recall|2025-05-06|",
                                      "2 Bonding|2026-01-04|Braces", "3 Debonding|2026-01-05|Braces",
                                      "4 Recall 2|2026-01-06|"));
}

TEST_F(NewTimepointDialog, KeepsTheListOfNames)
{
    FakeNames fake({"One", "Two", "Three"});
    const auto keep = [&](DialogScript& script, const Dialog& dialog) {
        const auto names = NamesOf(dialog);
        const auto press = [&](int button, int selected, const std::vector<std::string>& order) {
            dialog.Press(button);
            EXPECT_EQ(names.Selection(), selected);
            EXPECT_EQ(names.Items(), order);
            EXPECT_EQ(fake.names, order);
        };
        EXPECT_FALSE(IsEnabled(dialog, IDC_NEWTP_DELETE));
        dialog.Press(IDC_NEWTP_UP);
        script.AnswerBox("Select a timepoint name to move up in the list.", IDOK);
        dialog.Press(IDC_NEWTP_DOWN);
        script.AnswerBox("Select a timepoint name to move down in the list.", IDOK);
        names.Choose(2);
        press(IDC_NEWTP_DOWN, 2, {"One", "Two", "Three"});
        // Two quick clicks move twice.
        const HWND up = dialog.Item(IDC_NEWTP_UP).Handle();
        for (const UINT message : {WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_LBUTTONUP})
            PostMessageA(up, message, 0, MAKELPARAM(5, 5));
        press(IDC_NEWTP_UP, 0, {"Three", "One", "Two"});
        EXPECT_EQ(names.Text(), "Three");
        press(IDC_NEWTP_DOWN, 1, {"One", "Three", "Two"});

        dialog.SettleIdle();
        dialog.Press(IDC_NEWTP_DELETE);
        EXPECT_THAT(script.WaitForBox().Buttons(), ElementsAre("OK", "Cancel"));
        script.AnswerBox("Delete the predefined name, \"Three\", from the list?", IDCANCEL);
        EXPECT_EQ(fake.names.size(), 3U);
        dialog.Press(IDC_NEWTP_DELETE);
        script.AnswerBox("Delete the predefined name, \"Three\", from the list?", IDOK);
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
    };
    EXPECT_EQ(Run(&m_patient, 0, keep), IDOK);
    Run(&m_patient, 0, Confirmed("Not kept", 7));
    EXPECT_THAT(fake.names, ElementsAre("One", "Two", "Tw"));
}

TEST_F(NewTimepointDialog, StaysUsableWhenTheListFails)
{
    FakeNames fake({"One", "Two", "Three"});
    const auto fails = [&](DialogScript& script, const Dialog& dialog) {
        NamesOf(dialog).Choose(1);
        dialog.SettleIdle();
        const std::pair<FakeNames::Method, int> cases[] = {{FakeNames::moveUp, IDC_NEWTP_UP},
                                                           {FakeNames::moveDown, IDC_NEWTP_DOWN},
                                                           {FakeNames::removeAt, IDC_NEWTP_DELETE}};
        for (const auto& [failing, button] : cases)
        {
            fake.failing = failing;
            dialog.Press(button);
            if (failing == FakeNames::removeAt)
                script.AnswerBox("Delete the predefined name, \"Two\", from the list?", IDOK);
            script.AnswerBox(namesFailed, IDOK);
            script.Settle(dialog.Handle());
            EXPECT_FALSE(script.FindBox());
            EXPECT_THAT(NamesOf(dialog).Items(), ElementsAre("One", "Two", "Three"));
            EXPECT_EQ(NamesOf(dialog).Text(), "Two");
        }
        fake.failing = FakeNames::add;
        Type(dialog, "Four");
        dialog.Press(IDC_NEWTP_ADD_NAME);
        Confirm(dialog, "Four", 8);
        script.AnswerBox(namesFailed, IDOK);
    };
    EXPECT_EQ(Run(&m_patient, 0, fails), IDOK);

    const auto without = [&](DialogScript& script, const Dialog& dialog) {
        dialog.Press(IDC_NEWTP_UP);
        dialog.Press(IDC_NEWTP_DOWN);
        EXPECT_FALSE(script.FindBox());
        Type(dialog, "Five");
        dialog.Press(IDC_NEWTP_ADD_NAME);
        Confirm(dialog, "Five", 9);
    };
    fake.failing = FakeNames::create;
    Run(&m_patient, 0, without);
    EXPECT_THAT(Stored(), testing::IsSupersetOf({"2 Four|2026-01-08|", "3 Five|2026-01-09|"}));

    fake.failing = FakeNames::createAtAll; // throws out of the dialog's constructor
    __int64 result = IDOK;
    const auto told = [](DialogScript& script) {
        script.AnswerBox("An error occurred, and what was asked for was not done.\n\nno memory", IDOK);
    };
    veltest::RunModal([&] { NewTimepointDlg(nullptr, 0, &m_patient, result); }, told);
    EXPECT_EQ(result, IDCANCEL);
}

} // namespace
