#include "tests/maintenance/fakenames.h"
#include "tests/maintenance/patientpractice.h"

namespace
{

using testing::ElementsAre;

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

    // Adds a treatment to the patient's history; answers its id.
    CString Treat(const char* description, BOOL active = -1, int month = 1) const
    {
        dbCPatientTreatmentStatusHistoryRow row;
        row.SetpatID(m_patient.GetGUID());
        row.SetDescription(description);
        row.SetNewCode("X");
        row.SetActive(active);
        row.SetDateTime(velCDate(2024, month, 1));
        dbCPatientTreatmentStatusHistoryTable().InsertRow(row);
        return row.GetptshID();
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
        const auto last = dialog.Item(IDC_RENAME_NAME);
        const auto first = dialog.Item(IDC_RENAME_FIRSTNAME);
        EXPECT_EQ(NamesOf(dialog).Text(), "Start");
        EXPECT_EQ(Visible(dialog), "02567");
        dialog.PressAccessKey('P');
        EXPECT_EQ(Visible(dialog), "0134");
        EXPECT_TRUE(last.HasFocus());
        EXPECT_EQ(dialog.Item(IDC_RENAME_NAME_CAPTION).Text(), "Last &Name:");
        EXPECT_EQ(first.Text() + last.Text(), "AnnLee");
        EXPECT_FALSE(IsEnabled(dialog, IDOK));
        // A capital appears where the caret is, and the caret stays behind it.
        first.Replace(" o\xEB");
        EXPECT_EQ(first.Text(), "O\xEB");
        first.Send(EM_SETSEL, 0, 0);
        first.Send(EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>("z"));
        EXPECT_EQ(first.Text(), "ZO\xEB");
        EXPECT_EQ(first.Send(EM_GETSEL, 0, 0), MAKELONG(1, 1));
        EXPECT_EQ(Description(dialog),
                  "You are about to rename patient from Ann Lee to ZO\xEB Lee.  Select Ok now to "
                  "proceed, or Cancel to leave this operation.");
        veltest::ExpectWellMade(dialog, "rename-patient", {.grows = true});
        last.SetText(std::string(10000, 'n'));
        EXPECT_EQ(last.Text(), "N" + std::string(258, 'n'));
        last.Replace("Lee & Co");
        EXPECT_EQ(Description(dialog), idle);
        EXPECT_FALSE(IsEnabled(dialog, IDOK));
        last.Replace("O'Hara-Lo");
        const char* const question =
            "Are you sure you want to rename patient from Ann Lee to ZO\xEB O'Hara-Lo?";
        EXPECT_EQ(Ask(script, dialog, IDNO), question);
        EXPECT_EQ(Ask(script, dialog, IDYES), question);
    });
    EXPECT_EQ(outcome.result, IDOK);
    EXPECT_EQ(outcome.operation, RENAME_PATIENT);
    EXPECT_THAT(outcome.Texts(), ElementsAre("O'Hara-Lo", "ZO\xEB", "passed", "Start"));
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
    EXPECT_EQ(velCDate(outcome.date).ToISO(), "2025-05-07");
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
        AllowPatientChanges(c.patientChanges);
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
    dbCPatient undated = Store("U1", " una ", "van Dated", {{"Start", velCDate()}});
    const Outcome dated = Run(&undated, 0, 0, [&](DialogScript& script, const Dialog& dialog) {
        EXPECT_THAT(Ask(script, dialog, IDYES), testing::HasSubstr("from \"Start\" () to \"Start\" ("));
    });
    EXPECT_TRUE(velCDate(dated.date).IsSameDate(velCDate::Today()));
    EXPECT_THAT(dated.Texts(), ElementsAre("van Dated", "una", "passed", "Start")) << "as nobody typed them";
    const Outcome outcome = Run(&m_patient, 5, 0, [&](DialogScript& script, const Dialog& dialog) {
        dialog.Item(IDC_RENAME_NAME).Replace("Lo");
        Ask(script, dialog, IDYES);
    });
    EXPECT_THAT(outcome.Texts(), ElementsAre("Lo", "Ann", "", ""));
}

TEST_F(RenameDialog, AssignsATreatmentOfTheHistory)
{
    Treat("Retainer", 0); // has ended: not offered
    m_patient.GetTimepoints()[0].SetptshID(Treat("Braces", -1, 3));
    m_patient.Save();
    Treat("Aligner", -1, 2);
    const Outcome outcome = Run(&m_patient, 0, 1, [&](DialogScript& script, const Dialog& dialog) {
        const auto list = dialog.Item(IDC_RENAME_TREATMENT);
        EXPECT_THAT(list.Items(), ElementsAre("Aligner (2/1/2024)", "Braces (3/1/2024)", testing::_));
        EXPECT_EQ(list.Selection(), 1);
        Type(dialog, "Begin");
        list.Send(CB_SETCURSEL, static_cast<WPARAM>(-1));
        dialog.Press(IDOK);
        EXPECT_FALSE(script.FindBox());
        list.Choose(0);
        EXPECT_EQ(Description(dialog),
                  "Change timepoint from \"Start\" (3/4/2024) to \"Begin\" (3/4/2024) and assign new "
                  "treatment?  Select Ok now to proceed, or Cancel to leave this operation.");
        veltest::ExpectWellMade(dialog, "rename-timepoint", {.grows = true});
        Type(dialog, "Start");
        EXPECT_EQ(Description(dialog), "You are about to assign a new treatment.  Select Ok now to proceed, "
                                       "or Cancel to leave this operation.");
        EXPECT_EQ(Ask(script, dialog, IDYES), "Are you sure you want to assign a new treatment?");
    });
    EXPECT_EQ(outcome.result, IDOK);
    EXPECT_EQ(Stored(), StoredWith({"X Retainer 0", "X Aligner -1", "X Braces -1"}, "Aligner"));
}

TEST_F(RenameDialog, ANewTreatmentIsChosenAndKeptEvenAfterNo)
{
    dbCTreatmentStatusContainer::AddTreatment("A", "Braces"); // the list sorts them the other way round
    dbCTreatmentStatusContainer::AddTreatment("Z", "Aligner");
    const Outcome outcome = Run(&m_patient, 0, 1, [&](DialogScript& script, const Dialog& dialog) {
        Type(dialog, "Begin");
        // Nothing chosen: the dialog stays, and nothing is stored.
        dialog.Press(IDOK);
        const Dialog none = script.WaitForDialog("Choose a Treatment");
        EXPECT_FALSE(none.Item(IDOK).IsEnabled());
        none.Item(IDC_TREATMENT_LIST).Notify(LBN_DBLCLK); // beside the entries
        veltest::ExpectWellMade(none, "choose-treatment", {.grows = true});
        none.Press(IDCANCEL);
        none.WaitForClosed();
        EXPECT_THAT(Sql("SELECT description FROM treatmentHistory UNION ALL SELECT name FROM timepoints"),
                    testing::ElementsAre("Start", "Recall"));
        for (const int answer : {IDNO, IDYES})
        {
            dialog.Press(IDOK);
            const Dialog chooser = script.WaitForDialog("Choose a Treatment");
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
    EXPECT_LT(COleDateTime::GetCurrentTime(), history[1].GetDateTime() + COleDateTimeSpan(0, 0, 1, 0));
}

TEST_F(RenameDialog, NothingIsOverwrittenThatAnotherSeatHasChanged)
{
    Treat("Braces");
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
    FakeNames fake({"Phase 1", "Recall"});
    for (const auto failing : {FakeNames::add, FakeNames::none})
    {
        fake.failing = failing;
        const Outcome outcome = Run(&m_patient, 0, 0, [&](DialogScript& s, const Dialog& dialog) {
            EXPECT_THAT(NamesOf(dialog).Items(), ElementsAre("Phase 1", "Recall"));
            NamesOf(dialog).Choose("Phase 1");
            EXPECT_FALSE(IsEnabled(dialog, IDC_RENAME_ADD_NAME));
            Type(dialog, "Phase");
            EXPECT_TRUE(IsEnabled(dialog, IDC_RENAME_ADD_NAME));
            dialog.Press(IDC_RENAME_ADD_NAME);
            Ask(s, dialog, IDYES);
            if (failing == FakeNames::add)
                s.AnswerBox(namesFailed, IDOK);
        });
        EXPECT_EQ(outcome.result, IDOK);
        EXPECT_EQ(outcome.Texts().back(), "Phase");
    }
    EXPECT_THAT(fake.names, ElementsAre("Phase 1", "Recall", "Phase"));
}

TEST_F(RenameDialog, WorksWithoutThePredefinedNames)
{
    FakeNames fake({"Phase 1"});
    for (const auto failing : {FakeNames::none, FakeNames::create, FakeNames::run, FakeNames::count,
                               FakeNames::item, FakeNames::listAvailable})
    {
        fake.failing = failing;
        fake.available = failing != FakeNames::none;
        const auto rename = [&](DialogScript& s, const Dialog& dialog) {
            EXPECT_TRUE(NamesOf(dialog).Items().empty());
            Type(dialog, "Phase");
            Ask(s, dialog, IDYES);
        };
        const std::string told = failing <= FakeNames::run ? "" : namesFailed;
        EXPECT_EQ(Run(&m_patient, 0, 0, rename, told).operation, RENAME_TIMEPOINT) << failing;
    }
    EXPECT_THAT(fake.names, ElementsAre("Phase 1")) << "nothing was added unasked";
}

} // namespace
