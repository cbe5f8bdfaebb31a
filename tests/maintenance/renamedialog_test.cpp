#include "tests/maintenance/fakenames.h"
#include "tests/maintenance/patientpractice.h"

namespace
{

using testing::ElementsAre;

constexpr char outOfOrder[] = "The list of predefined timepoint names could not be used.\n\nOut of order";

class RenameDialog : public PatientPractice
{
protected:
    struct Outcome
    {
        __int64 result = 0;
        RENAME_OP operation = static_cast<RENAME_OP>(7);
        CString last = "1";
        CString first = "2";
        CString passed = "3";
        CString name = "4";
        COleDateTime date;

        std::vector<std::string> Texts() const
        {
            return {last.GetString(), first.GetString(), passed.GetString(), name.GetString()};
        }
    };

    static Outcome Run(dbCPatient* pPatient, int timepoint, int practiceManagement, const Script& script,
                       const std::string& boxBefore = "")
    {
        Outcome out;
        out.result = veltest::RunModal(
            [&] {
                return RenameDlg(nullptr, practiceManagement, pPatient, timepoint, "passed", &out.operation,
                                 out.last, out.first, out.passed, out.name, out.date);
            },
            [&](DialogScript& s) {
                if (!boxBefore.empty())
                    s.AnswerBox(boxBefore, IDOK);
                script(s, s.WaitForDialog("Rename"));
            });
        return out;
    }

    static std::string Description(const Dialog& dialog)
    {
        dialog.SettleIdle();
        return dialog.Item(IDC_RENAME_DESCRIPTION).Text();
    }

    static std::string Visible(const Dialog& dialog)
    {
        std::string text;
        for (int id = IDC_RENAME_NAME_CAPTION; id <= IDC_RENAME_TREATMENT; ++id)
            if (dialog.Item(id).IsVisible())
                text += std::to_string(id - IDC_RENAME_NAME_CAPTION);
        return text;
    }

    // Adds a treatment to the patient's history and links a timepoint to it.
    void Treat(const char* description, int timepoint)
    {
        dbCPatientTreatmentStatusHistoryRow row;
        row.SetpatID(m_patient.GetGUID());
        row.SetDescription(description);
        row.SetNewCode("X");
        row.SetDateTime(velCDate(2024, 1, 1));
        dbCPatientTreatmentStatusHistoryTable().InsertRow(row);
        if (timepoint < 0)
            return;
        m_patient.GetTimepoints()[timepoint].SetptshID(row.GetptshID());
        m_patient.Save();
    }

    // The stored state of the timepoints when only the first one's treatment differs.
    static std::vector<std::string> StoredWith(std::vector<std::string> history, const char* treatment)
    {
        history.push_back("0 Start|2024-03-04|" + std::string(treatment));
        history.emplace_back("1 Recall|2025-05-06|");
        return history;
    }
};

TEST_F(RenameDialog, RenamesThePatient)
{
    const Outcome outcome = Run(&m_patient, 0, 0, [&](DialogScript& script, const Dialog& dialog) {
        const std::string idle = Description(dialog);
        EXPECT_EQ(NamesOf(dialog).Text(), "Start");
        EXPECT_TRUE(dialog.Item(IDC_RENAME_TIMEPOINT).IsChecked());
        EXPECT_EQ(Visible(dialog), "02567");
        dialog.PressAccessKey('P');
        EXPECT_EQ(Visible(dialog), "0134");
        EXPECT_TRUE(dialog.Item(IDC_RENAME_NAME).HasFocus());
        EXPECT_EQ(dialog.Item(IDC_RENAME_NAME_CAPTION).Text(), "Last &Name:");
        EXPECT_EQ(dialog.Item(IDC_RENAME_NAME).Text(), "Lee");
        const auto first = dialog.Item(IDC_RENAME_FIRSTNAME);
        EXPECT_EQ(first.Text(), "Ann");
        EXPECT_FALSE(IsEnabled(dialog, IDOK));
        for (const int id : {IDC_RENAME_NAME, IDC_RENAME_FIRSTNAME})
        {
            const std::string before = dialog.Item(id).Text();
            dialog.Item(id).SetText(std::string(10000, 'n'));
            EXPECT_EQ(dialog.Item(id).Text(), "N" + std::string(258, 'n'));
            dialog.Item(id).SetText(before);
        }
        first.Replace(" zo\xEB");
        EXPECT_EQ(first.Text(), "Zo\xEB");
        // A capital appears where the caret is, and the caret stays behind it.
        first.Send(EM_SETSEL, 0, 0);
        first.Send(EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>("x"));
        EXPECT_EQ(first.Text(), "XZo\xEB");
        EXPECT_EQ(first.Send(EM_GETSEL, 0, 0), MAKELONG(1, 1));
        first.Replace("Zo\xEB");
        EXPECT_EQ(Description(dialog),
                  "You are about to rename patient from Ann Lee to Zo\xEB Lee.  Select Ok now to "
                  "proceed, or Cancel to leave this operation.");
        veltest::ExpectWellMade(dialog, "rename-patient", {.grows = true});
        dialog.Item(IDC_RENAME_NAME).Replace("Lee & Co");
        EXPECT_EQ(Description(dialog), idle);
        EXPECT_FALSE(IsEnabled(dialog, IDOK));
        dialog.Item(IDC_RENAME_NAME).Replace("O'Hara-Lo");
        const char* const question =
            "Are you sure you want to rename patient from Ann Lee to Zo\xEB O'Hara-Lo?";
        EXPECT_EQ(Ask(script, dialog, IDNO), question);
        EXPECT_TRUE(dialog.IsOpen());
        EXPECT_EQ(Ask(script, dialog, IDYES), question);
    });
    EXPECT_EQ(outcome.result, IDOK);
    EXPECT_EQ(outcome.operation, RENAME_PATIENT);
    EXPECT_THAT(outcome.Texts(), ElementsAre("O'Hara-Lo", "Zo\xEB", "passed", "Start"));
    dbCPatient stored;
    ASSERT_TRUE(stored.Load("A1"));
    EXPECT_EQ(stored.GetFirstname(), "Ann") << "renaming is the host's";
    EXPECT_EQ(Stored(), StoredWith({}, ""));
}

TEST_F(RenameDialog, ChangesNameAndDateOfTheTimepoint)
{
    m_patient.GetTimepoints()[1].SetDate(velCDate(COleDateTime(2025, 5, 6, 10, 30, 0)));
    const Outcome outcome = Run(&m_patient, 1, 0, [&](DialogScript& script, const Dialog& dialog) {
        const std::string idle = Description(dialog);
        dialog.Item(IDC_RENAME_DATE).SetDate(2025, 5, 6);
        EXPECT_FALSE(IsEnabled(dialog, IDOK)) << "the time of day is no change";
        Type(dialog, std::string(10000, 'n'));
        EXPECT_EQ(NamesOf(dialog).Text(), std::string(50, 'n'));
        EXPECT_TRUE(IsEnabled(dialog, IDOK));
        Type(dialog, "a\x01z");
        PostOK(script, dialog);
        EXPECT_FALSE(script.FindBox());
        Type(dialog, "100% %2 &x \"<1>\"");
        EXPECT_EQ(Description(dialog), "You are about to change timepoint from \"Recall\" (5/6/2025) to "
                                       "\"100% %2 &x \"<1>\"\" (5/6/2025).  "
                                       "Select Ok now to proceed, or Cancel to leave this operation.");
        Type(dialog, "Recall");
        EXPECT_EQ(Description(dialog), idle);
        dialog.Item(IDC_RENAME_DATE).SetDate(2025, 5, 7);
        EXPECT_EQ(Ask(script, dialog, IDYES), "Are you sure you want to change timepoint from \"Recall\" "
                                              "(5/6/2025) to \"Recall\" (5/7/2025)?");
    });
    EXPECT_EQ(outcome.result, IDOK);
    EXPECT_EQ(outcome.operation, RENAME_TIMEPOINT);
    EXPECT_THAT(outcome.Texts(), ElementsAre("Lee", "Ann", "passed", "Recall"));
    EXPECT_EQ(outcome.date.Format("%Y-%m-%d"), "2025-05-07");
}

TEST_F(RenameDialog, StartsOnWhatThereIs)
{
    dbCPatient none = Store("N1", "Bo", "Lo", {});
    constexpr int P = IDC_RENAME_PATIENT;
    constexpr int T = IDC_RENAME_TIMEPOINT;
    const struct
    {
        dbCPatient* patient;
        int timepoint;
        int practiceManagement;
        int patientChanges;
        bool patientEnabled;
        bool timepointEnabled;
        int checked;
    } cases[] = {
        {&m_patient, 1, 0, 1, true, true, T},    {&m_patient, 1, 0, 0, false, true, T},
        {&m_patient, 1, 1, 1, false, true, T},   {&m_patient, -1, 0, 1, true, false, P},
        {&m_patient, -1, 0, 2, false, false, T}, {&m_patient, 2, 0, 1, true, false, P},
        {&none, 0, 1, 1, false, false, T},       {nullptr, 0, 0, 1, false, false, T},
    };
    for (const auto& c : cases)
    {
        const PatientChanges changes(c.patientChanges);
        const auto look = [&](DialogScript&, const Dialog& dialog) {
            EXPECT_EQ(IsEnabled(dialog, P), c.patientEnabled);
            EXPECT_EQ(IsEnabled(dialog, T), c.timepointEnabled);
            EXPECT_TRUE(dialog.Item(c.checked).IsChecked());
            EXPECT_FALSE(IsEnabled(dialog, IDOK));
            dialog.Press(IDCANCEL);
        };
        const Outcome outcome = Run(c.patient, c.timepoint, c.practiceManagement, look);
        EXPECT_EQ(outcome.result, IDCANCEL);
        EXPECT_EQ(outcome.operation, 7);
        EXPECT_THAT(outcome.Texts(), ElementsAre("", "", "", ""));
        EXPECT_EQ(outcome.date.GetStatus(), COleDateTime::invalid);
    }
}

TEST_F(RenameDialog, StartsOnTodayWithoutADateAndPassesNothingThroughWithoutATimepoint)
{
    dbCPatient undated = Store("U1", "Una", "Dated", {{"Start", velCDate()}});
    const Outcome dated = Run(&undated, 0, 0, [&](DialogScript& script, const Dialog& dialog) {
        EXPECT_THAT(Ask(script, dialog, IDYES), testing::HasSubstr("from \"Start\" () to \"Start\" ("));
    });
    EXPECT_TRUE(velCDate(dated.date).IsSameDate(velCDate::Today()));
    const Outcome outcome = Run(&m_patient, 5, 0, [&](DialogScript& script, const Dialog& dialog) {
        dialog.Item(IDC_RENAME_NAME).Replace("Lo");
        Ask(script, dialog, IDYES);
    });
    EXPECT_THAT(outcome.Texts(), ElementsAre("Lo", "Ann", "", ""));
}

TEST_F(RenameDialog, AssignsATreatmentOfTheHistory)
{
    Treat("Braces", 0);
    Treat("Aligner", -1);
    const Outcome outcome = Run(&m_patient, 0, 1, [&](DialogScript& script, const Dialog& dialog) {
        const auto list = dialog.Item(IDC_RENAME_TREATMENT);
        EXPECT_EQ(list.Items().size(), 3U);
        EXPECT_EQ(list.Selection(), 0);
        list.Choose(1);
        // Enough by itself, whatever the name.
        Type(dialog, "");
        EXPECT_TRUE(IsEnabled(dialog, IDOK));
        list.Send(CB_SETCURSEL, static_cast<WPARAM>(-1));
        dialog.Press(IDOK);
        script.Settle(dialog.Handle());
        EXPECT_TRUE(dialog.IsOpen());
        EXPECT_FALSE(script.FindBox());
        Type(dialog, "Start");
        list.Choose(1);
        EXPECT_EQ(Description(dialog),
                  "You are about to assign a new treatment.  Select Ok now to proceed, or Cancel "
                  "to leave this operation.");
        Type(dialog, "Begin");
        EXPECT_EQ(Description(dialog),
                  "Change timepoint from \"Start\" (3/4/2024) to \"Begin\" (3/4/2024) and assign new "
                  "treatment?  Select Ok now to proceed, or Cancel to leave this operation.");
        veltest::ExpectWellMade(dialog, "rename-timepoint", {.grows = true});
        Type(dialog, "Start");
        EXPECT_EQ(Ask(script, dialog, IDYES), "Are you sure you want to assign a new treatment?");
    });
    EXPECT_EQ(outcome.result, IDOK);
    EXPECT_EQ(Stored(), StoredWith({"X Braces -1", "X Aligner -1"}, "Aligner"));
}

TEST_F(RenameDialog, ANewTreatmentIsChosenAndKeptEvenAfterNo)
{
    dbCTreatmentStatusContainer::AddTreatment("A", "Braces"); // the list sorts them the other way round
    dbCTreatmentStatusContainer::AddTreatment("Z", "Aligner");
    const Outcome outcome = Run(&m_patient, 0, 1, [&](DialogScript& script, const Dialog& dialog) {
        Type(dialog, "Begin");
        const auto choose = [&] {
            dialog.Press(IDOK);
            return script.WaitForDialog("Choose a Treatment");
        };
        // Nothing chosen: the dialog stays, and nothing is stored.
        Dialog chooser = choose();
        EXPECT_FALSE(chooser.Item(IDOK).IsEnabled());
        chooser.Item(IDC_TREATMENT_LIST).Notify(LBN_DBLCLK); // beside the entries
        EXPECT_TRUE(chooser.IsOpen());
        veltest::ExpectWellMade(chooser, "choose-treatment", {.grows = true});
        chooser.Press(IDCANCEL);
        chooser.WaitForClosed();
        EXPECT_TRUE(dialog.IsOpen());
        EXPECT_EQ(Stored(), StoredWith({}, ""));

        for (const int answer : {IDNO, IDYES})
        {
            chooser = choose();
            chooser.Item(IDC_TREATMENT_LIST).Choose("Aligner");
            answer == IDNO ? chooser.Press(IDOK) : chooser.Item(IDC_TREATMENT_LIST).Notify(LBN_DBLCLK);
            script.AnswerBox("Are you sure you want to change timepoint from \"Start\" (3/4/2024) "
                             "to \"Begin\" (3/4/2024) and assign a new treatment?",
                             answer);
        }
    });
    EXPECT_EQ(outcome.result, IDOK);
    EXPECT_EQ(Stored(), StoredWith({"Z Aligner -1", "Z Aligner -1"}, "Aligner")) << "the name is the host's";
    dbCPatientTreatmentStatusHistoryTable history;
    history.LoadByPatID(m_patient.GetGUID());
    const COleDateTimeSpan age = COleDateTime::GetCurrentTime() - history[1].GetDateTime();
    EXPECT_LT(age.GetTotalSeconds(), 60);
}

TEST_F(RenameDialog, NothingIsOverwrittenThatAnotherSeatHasChanged)
{
    Treat("Braces", -1);
    dbCPatient other;
    ASSERT_TRUE(other.Load("A1"));
    other.GetTimepoints()[1].SetName("Theirs");
    Run(&m_patient, 0, 1, [&](DialogScript& script, const Dialog& dialog) {
        other.Save();
        dialog.Item(IDC_RENAME_TREATMENT).Choose(0);
        Ask(script, dialog, IDYES);
        ExpectRecordFailure(script, dialog);
        dialog.Press(IDCANCEL);
    });
    EXPECT_TRUE(m_patient.GetTimepoints()[0].GetptshID().IsEmpty());
    EXPECT_THAT(Stored(), ElementsAre("X Braces -1", "0 Start|2024-03-04|", "1 Theirs|2025-05-06|"));
}

TEST_F(RenameDialog, OffersPredefinedNamesAndAddsNewOnes)
{
    FakeNames fake({"Phase 1", "Recall", "Recall 2"});
    const auto rename = [&](bool wanted) {
        const Outcome outcome = Run(&m_patient, 0, 0, [&](DialogScript& s, const Dialog& dialog) {
            EXPECT_THAT(NamesOf(dialog).Items(), ElementsAre("Phase 1", "Recall", "Recall 2"));
            NamesOf(dialog).Choose("Phase 1");
            EXPECT_FALSE(IsEnabled(dialog, IDC_RENAME_ADD_NAME));
            Type(dialog, "pHASE 1");
            EXPECT_FALSE(IsEnabled(dialog, IDC_RENAME_ADD_NAME));
            Type(dialog, "Phase");
            EXPECT_TRUE(IsEnabled(dialog, IDC_RENAME_ADD_NAME));
            if (wanted)
                dialog.Press(IDC_RENAME_ADD_NAME);
            Ask(s, dialog, IDYES);
            if (fake.failing == FakeNames::add)
                s.AnswerBox(outOfOrder, IDOK);
        });
        EXPECT_EQ(outcome.result, IDOK);
        EXPECT_EQ(outcome.Texts().back(), "Phase");
    };
    rename(false);
    EXPECT_EQ(fake.names.size(), 3U);
    fake.failing = FakeNames::add;
    rename(true);
    fake.failing = FakeNames::none;
    rename(true);
    EXPECT_THAT(fake.names, ElementsAre("Phase 1", "Recall", "Recall 2", "Phase"));
}

TEST_F(RenameDialog, WorksWithoutThePredefinedNames)
{
    FakeNames fake({"Phase 1"});
    const std::pair<FakeNames::Method, const char*> cases[] = {
        {FakeNames::none, ""},          {FakeNames::create, ""},       {FakeNames::run, ""},
        {FakeNames::count, outOfOrder}, {FakeNames::item, outOfOrder}, {FakeNames::listAvailable, outOfOrder},
    };
    for (const auto& [failing, told] : cases)
    {
        fake.failing = failing;
        fake.available = failing != FakeNames::none;
        const auto script = [&](DialogScript& s, const Dialog& dialog) {
            EXPECT_TRUE(NamesOf(dialog).Items().empty());
            Type(dialog, "Phase");
            Ask(s, dialog, IDYES);
        };
        EXPECT_EQ(Run(&m_patient, 0, 0, script, told).operation, RENAME_TIMEPOINT) << failing;
    }
}

} // namespace
