#include "maintenance/maintenanceres.h"
#include "tests/maintenance/fakenames.h"
#include "tests/maintenance/patientpractice.h"

namespace
{

using testing::ElementsAre;
using testing::StartsWith;
using veltest::Dialog;
using veltest::DialogScript;

class RenameDialog : public PatientPractice
{
protected:
    struct Outcome
    {
        __int64 result = 0;
        RENAME_OP operation = static_cast<RENAME_OP>(7);
        std::vector<std::string> texts; // last name, first name, pass-through, timepoint
        COleDateTime date;
    };

    using Script = std::function<void(DialogScript&, const Dialog&)>;

    static Outcome Run(dbCPatient* pPatient, int timepoint, int practiceManagement, const Script& script)
    {
        Outcome outcome;
        CString last = "1";
        CString first = "2";
        CString passed = "3";
        CString name = "4";
        outcome.result = veltest::RunModal(
            [&] {
                return RenameDlg(nullptr, practiceManagement, pPatient, timepoint, "passed",
                                 &outcome.operation, last, first, passed, name, outcome.date);
            },
            [&](DialogScript& s) { script(s, s.WaitForDialog("Rename")); });
        outcome.texts = {last.GetString(), first.GetString(), passed.GetString(), name.GetString()};
        return outcome;
    }

    static std::string Description(const Dialog& dialog)
    {
        dialog.SettleIdle();
        return dialog.Item(IDC_RENAME_DESCRIPTION).Text();
    }

    static bool IsOKEnabled(const Dialog& dialog)
    {
        dialog.SettleIdle();
        return dialog.Item(IDOK).IsEnabled();
    }

    static std::string Visible(const Dialog& dialog)
    {
        std::string text;
        for (int id = IDC_RENAME_NAME_CAPTION; id <= IDC_RENAME_TREATMENT; ++id)
            if (dialog.Item(id).IsVisible())
                text += std::to_string(id - IDC_RENAME_NAME_CAPTION);
        return text;
    }

    static void Type(const Dialog& dialog, const std::string& name)
    {
        dialog.Item(IDC_RENAME_NAMES).SetText(name);
        dialog.Item(IDC_RENAME_NAMES).Notify(CBN_EDITCHANGE);
        dialog.SettleIdle();
    }

    static std::string AskAndAnswer(DialogScript& script, const Dialog& dialog, int answer)
    {
        dialog.SettleIdle();
        dialog.Press(IDOK);
        const Dialog box = script.WaitForBox();
        EXPECT_THAT(box.Buttons(), ElementsAre("Yes", "No"));
        const std::string question = box.BoxText();
        box.Press(answer);
        box.WaitForClosed();
        return question;
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

    // "code description active" of the history, and the description that each stored timepoint is linked to.
    std::vector<std::string> History() const
    {
        dbCPatientTreatmentStatusHistoryTable history;
        history.LoadByPatID(m_patient.GetGUID());
        dbCTimepointsContainer timepoints;
        timepoints.LoadByPatID(m_patient.GetGUID(), 0);
        std::vector<std::string> lines;
        for (const auto& row : history)
            lines.push_back((row.GetNewCode() + " " + row.GetDescription()).GetString() +
                            (" " + std::to_string(row.GetActive())));
        for (const auto& timepoint : timepoints)
        {
            std::string line = timepoint.GetDescription().GetString() + std::string(":");
            for (const auto& row : history)
                if (!timepoint.GetptshID().IsEmpty() && row.GetptshID() == timepoint.GetptshID())
                    line += row.GetDescription().GetString();
            lines.push_back(line);
        }
        return lines;
    }
};

TEST_F(RenameDialog, RenamesThePatient)
{
    const Outcome outcome = Run(&m_patient, 0, 0, [](DialogScript& script, const Dialog& dialog) {
        const std::string idle = Description(dialog);
        EXPECT_EQ(dialog.Item(IDC_RENAME_NAMES).Text(), "Start");
        EXPECT_TRUE(dialog.Item(IDC_RENAME_TIMEPOINT).IsChecked());
        EXPECT_EQ(Visible(dialog), "02567");
        dialog.Press(IDC_RENAME_PATIENT);
        EXPECT_EQ(Visible(dialog), "0134");
        EXPECT_TRUE(dialog.Item(IDC_RENAME_NAME).HasFocus());
        EXPECT_EQ(dialog.Item(IDC_RENAME_NAME_CAPTION).Text(), "Last &Name:");
        EXPECT_EQ(dialog.Item(IDC_RENAME_NAME).Text(), "Lee");
        EXPECT_EQ(dialog.Item(IDC_RENAME_FIRSTNAME).Text(), "Ann");
        EXPECT_FALSE(IsOKEnabled(dialog));
        const auto first = dialog.Item(IDC_RENAME_FIRSTNAME);
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
        dialog.Item(IDC_RENAME_NAME).Replace("Lee & Co");
        EXPECT_EQ(Description(dialog), idle);
        EXPECT_FALSE(IsOKEnabled(dialog));
        dialog.Item(IDC_RENAME_NAME).Replace("O'Hara-Lo");
        const char* const question =
            "Are you sure you want to rename patient from Ann Lee to Zo\xEB O'Hara-Lo?";
        EXPECT_EQ(AskAndAnswer(script, dialog, IDNO), question);
        EXPECT_TRUE(dialog.IsOpen());
        EXPECT_EQ(AskAndAnswer(script, dialog, IDYES), question);
    });
    EXPECT_EQ(outcome.result, IDOK);
    EXPECT_EQ(outcome.operation, RENAME_PATIENT);
    EXPECT_THAT(outcome.texts, ElementsAre("O'Hara-Lo", "Zo\xEB", "passed", "Start"));
    dbCPatient stored;
    ASSERT_TRUE(stored.Load("A1"));
    EXPECT_EQ(stored.GetFirstname(), "Ann"); // renaming is the host's
}

TEST_F(RenameDialog, ChangesNameAndDateOfTheTimepoint)
{
    m_patient.GetTimepoints()[1].SetDate(velCDate(COleDateTime(2025, 5, 6, 10, 30, 0)));
    const Outcome outcome = Run(&m_patient, 1, 0, [](DialogScript& script, const Dialog& dialog) {
        const std::string idle = Description(dialog);
        dialog.Item(IDC_RENAME_DATE).SetDate(2025, 5, 6);
        EXPECT_FALSE(IsOKEnabled(dialog)); // the time of day is no change
        Type(dialog, "100% %2 &x \"<1>\"");
        EXPECT_EQ(Description(dialog), "You are about to change timepoint from \"Recall\" (5/6/2025) to "
                                       "\"100% %2 &x \"<1>\"\" (5/6/2025).  "
                                       "Select Ok now to proceed, or Cancel to leave this operation.");
        Type(dialog, "Recall");
        EXPECT_EQ(Description(dialog), idle);
        dialog.Item(IDC_RENAME_DATE).SetDate(2025, 5, 7);
        EXPECT_EQ(AskAndAnswer(script, dialog, IDYES),
                  "Are you sure you want to change timepoint from \"Recall\" "
                  "(5/6/2025) to \"Recall\" (5/7/2025)?");
    });
    EXPECT_EQ(outcome.result, IDOK);
    EXPECT_EQ(outcome.operation, RENAME_TIMEPOINT);
    EXPECT_THAT(outcome.texts, ElementsAre("Lee", "Ann", "passed", "Recall"));
    EXPECT_EQ(outcome.date.Format("%Y-%m-%d"), "2025-05-07");
}

TEST_F(RenameDialog, TypingIsCutToItsLimit)
{
    Run(&m_patient, 0, 0, [](DialogScript& script, const Dialog& dialog) {
        const auto names = dialog.Item(IDC_RENAME_NAMES);
        Type(dialog, std::string(10000, 'n'));
        EXPECT_EQ(names.Text(), std::string(50, 'n'));
        EXPECT_TRUE(IsOKEnabled(dialog));
        Type(dialog, "a\x01z");
        EXPECT_FALSE(IsOKEnabled(dialog));
        // Quicker than the button was disabled.
        PostMessageA(dialog.Handle(), WM_COMMAND, IDOK, reinterpret_cast<LPARAM>(dialog.Item(IDOK).Handle()));
        script.Settle(dialog.Handle());
        EXPECT_FALSE(script.FindBox());
        dialog.Press(IDC_RENAME_PATIENT);
        for (const int id : {IDC_RENAME_NAME, IDC_RENAME_FIRSTNAME})
        {
            dialog.Item(id).SetText(std::string(10000, 'n'));
            EXPECT_EQ(dialog.Item(id).Text(), "N" + std::string(258, 'n'));
        }
        dialog.Press(IDCANCEL);
    });
}

TEST_F(RenameDialog, StartsOnWhatThereIs)
{
    dbCPatient none = Store("N1", "Bo", "Lo", {});
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
        {&m_patient, 1, 0, 1, true, true, IDC_RENAME_TIMEPOINT},
        {&m_patient, 1, 0, 0, false, true, IDC_RENAME_TIMEPOINT},
        {&m_patient, 1, 1, 1, false, true, IDC_RENAME_TIMEPOINT},
        {&m_patient, -1, 0, 1, true, false, IDC_RENAME_PATIENT},
        {&m_patient, -1, 0, 2, false, false, IDC_RENAME_TIMEPOINT},
        {&m_patient, 2, 0, 1, true, false, IDC_RENAME_PATIENT},
        {&none, 0, 1, 1, false, false, IDC_RENAME_TIMEPOINT},
        {nullptr, 0, 0, 1, false, false, IDC_RENAME_TIMEPOINT},
    };
    for (const auto& c : cases)
    {
        const PatientChanges changes(c.patientChanges);
        const Outcome outcome =
            Run(c.patient, c.timepoint, c.practiceManagement, [&](DialogScript&, const Dialog& dialog) {
                dialog.SettleIdle();
                EXPECT_EQ(dialog.Item(IDC_RENAME_PATIENT).IsEnabled(), c.patientEnabled);
                EXPECT_EQ(dialog.Item(IDC_RENAME_TIMEPOINT).IsEnabled(), c.timepointEnabled);
                EXPECT_TRUE(dialog.Item(c.checked).IsChecked());
                EXPECT_FALSE(IsOKEnabled(dialog));
                dialog.Press(IDCANCEL);
            });
        EXPECT_EQ(outcome.result, IDCANCEL);
        EXPECT_EQ(outcome.operation, 7);
        EXPECT_THAT(outcome.texts, ElementsAre("", "", "", ""));
        EXPECT_EQ(outcome.date.GetStatus(), COleDateTime::invalid);
    }
}

TEST_F(RenameDialog, ATimepointWithoutADateStartsOnToday)
{
    dbCPatient undated = Store("U1", "Una", "Dated", {{"Start", velCDate()}});
    const Outcome outcome = Run(&undated, 0, 0, [](DialogScript& script, const Dialog& dialog) {
        EXPECT_THAT(AskAndAnswer(script, dialog, IDYES),
                    testing::HasSubstr("from \"Start\" () to \"Start\" ("));
    });
    EXPECT_TRUE(velCDate(outcome.date).IsSameDate(velCDate::Today()));
}

TEST_F(RenameDialog, WithoutATimepointNothingIsPassedThrough)
{
    const Outcome outcome = Run(&m_patient, 5, 0, [](DialogScript& script, const Dialog& dialog) {
        dialog.Item(IDC_RENAME_NAME).Replace("Lo");
        AskAndAnswer(script, dialog, IDYES);
    });
    EXPECT_THAT(outcome.texts, ElementsAre("Lo", "Ann", "", ""));
}

TEST_F(RenameDialog, AssignsATreatmentOfTheHistory)
{
    Treat("Braces", 0);
    Treat("Aligner", -1);
    const Outcome outcome = Run(&m_patient, 0, 1, [](DialogScript& script, const Dialog& dialog) {
        const auto list = dialog.Item(IDC_RENAME_TREATMENT);
        EXPECT_EQ(list.Items().size(), 3U);
        EXPECT_EQ(list.Selection(), 0);
        list.Choose(1);
        // Enough by itself, whatever the name.
        Type(dialog, "");
        EXPECT_TRUE(IsOKEnabled(dialog));
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
        EXPECT_EQ(AskAndAnswer(script, dialog, IDYES), "Are you sure you want to assign a new treatment?");
    });
    EXPECT_EQ(outcome.result, IDOK);
    EXPECT_THAT(History(), ElementsAre("X Braces -1", "X Aligner -1", "Start:Aligner", "Recall:"));
}

TEST_F(RenameDialog, ANewTreatmentIsChosenAndKeptEvenAfterNo)
{
    dbCTreatmentStatusContainer::AddTreatment("A", "Braces"); // the list sorts them the other way round
    dbCTreatmentStatusContainer::AddTreatment("Z", "Aligner");
    const Outcome outcome = Run(&m_patient, 0, 1, [&](DialogScript& script, const Dialog& dialog) {
        Type(dialog, "Begin");
        // Nothing chosen: the dialog stays, and nothing is stored.
        dialog.Press(IDOK);
        Dialog chooser = script.WaitForDialog("Choose a Treatment");
        EXPECT_FALSE(chooser.Item(IDOK).IsEnabled());
        chooser.Item(IDC_TREATMENT_LIST).Notify(LBN_DBLCLK); // beside the entries
        EXPECT_TRUE(chooser.IsOpen());
        EXPECT_EQ(veltest::DialogFindings(chooser.Handle()), "");
        EXPECT_TRUE(veltest::SavePicture(chooser.Handle(), "choose-treatment"));
        chooser.Press(IDCANCEL);
        chooser.WaitForClosed();
        EXPECT_TRUE(dialog.IsOpen());
        EXPECT_THAT(History(), ElementsAre("Start:", "Recall:"));

        for (const int answer : {IDNO, IDYES})
        {
            dialog.Press(IDOK);
            chooser = script.WaitForDialog("Choose a Treatment");
            chooser.Item(IDC_TREATMENT_LIST).Choose("Aligner");
            chooser.Press(IDOK);
            const Dialog box =
                script.WaitForBox("Are you sure you want to change timepoint from \"Start\" (3/4/2024) "
                                  "to \"Begin\" (3/4/2024) and assign a new treatment?");
            box.Press(answer);
            box.WaitForClosed();
        }
    });
    EXPECT_EQ(outcome.result, IDOK);
    // The name is the host's to change.
    EXPECT_THAT(History(), ElementsAre("Z Aligner -1", "Z Aligner -1", "Start:Aligner", "Recall:"));
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
        AskAndAnswer(script, dialog, IDYES);
        const Dialog box = script.WaitForBox();
        EXPECT_THAT(box.BoxText(), StartsWith("The patient's records could not be read or written."));
        box.Press(IDOK);
        box.WaitForClosed();
        EXPECT_TRUE(dialog.IsOpen());
        dialog.Press(IDCANCEL);
    });
    EXPECT_TRUE(m_patient.GetTimepoints()[0].GetptshID().IsEmpty());
    EXPECT_THAT(History(), ElementsAre("X Braces -1", "Start:", "Theirs:"));
}

TEST_F(RenameDialog, OffersPredefinedNamesAndAddsNewOnes)
{
    FakeNames fake({"Phase 1", "Recall", "Recall 2"});
    bool wanted = false;
    const auto script = [&](DialogScript& s, const Dialog& dialog) {
        const auto names = dialog.Item(IDC_RENAME_NAMES);
        const auto check = dialog.Item(IDC_RENAME_ADD_NAME);
        EXPECT_THAT(names.Items(), ElementsAre("Phase 1", "Recall", "Recall 2"));
        names.Choose("Phase 1");
        dialog.SettleIdle();
        EXPECT_FALSE(check.IsEnabled());
        Type(dialog, "pHASE 1");
        EXPECT_FALSE(check.IsEnabled());
        Type(dialog, "Phase");
        EXPECT_TRUE(check.IsEnabled());
        if (wanted)
            check.Click();
        AskAndAnswer(s, dialog, IDYES);
        if (fake.failing == FakeNames::add)
            s.AnswerBox("The list of predefined timepoint names could not be used.\n\nOut of order", IDOK);
    };
    Run(&m_patient, 0, 0, script);
    EXPECT_EQ(fake.names.size(), 3U);
    wanted = true;
    Outcome outcome = Run(&m_patient, 0, 0, script);
    EXPECT_EQ(outcome.texts.back(), "Phase");
    EXPECT_THAT(fake.names, ElementsAre("Phase 1", "Recall", "Recall 2", "Phase"));

    fake.names.pop_back();
    fake.failing = FakeNames::add;
    outcome = Run(&m_patient, 0, 0, script);
    EXPECT_EQ(outcome.result, IDOK);
    EXPECT_EQ(outcome.texts.back(), "Phase");
}

TEST_F(RenameDialog, WorksWithoutThePredefinedNames)
{
    FakeNames fake({"Phase 1"});
    for (const auto failing :
         {FakeNames::none, FakeNames::create, FakeNames::listAvailable, FakeNames::count, FakeNames::item})
    {
        fake.failing = failing;
        fake.available = failing != FakeNames::none;
        Outcome outcome;
        // The box comes before the dialog is shown.
        veltest::RunModal(
            [&] {
                CString text;
                return RenameDlg(nullptr, 0, &m_patient, 0, "", &outcome.operation, text, text, text, text,
                                 outcome.date);
            },
            [&](DialogScript& script) {
                if (failing != FakeNames::none && failing != FakeNames::create)
                    script.AnswerBox(
                        "The list of predefined timepoint names could not be used.\n\nOut of order", IDOK);
                const Dialog dialog = script.WaitForDialog("Rename");
                EXPECT_TRUE(dialog.Item(IDC_RENAME_NAMES).Items().empty());
                Type(dialog, "Phase");
                AskAndAnswer(script, dialog, IDYES);
            });
        EXPECT_EQ(outcome.operation, RENAME_TIMEPOINT);
    }
}

TEST_F(RenameDialog, LooksAsItShould)
{
    Treat("Braces", 0);
    Run(&m_patient, 0, 1, [](DialogScript&, const Dialog& dialog) {
        Type(dialog, "Phase 1");
        EXPECT_EQ(veltest::DialogFindings(dialog.Handle()), "");
        EXPECT_TRUE(veltest::SavePicture(dialog.Handle(), "rename-timepoint"));
        dialog.Press(IDCANCEL);
    });
    Run(&m_patient, 0, 0, [](DialogScript&, const Dialog& dialog) {
        dialog.PressAccessKey('P');
        dialog.Item(IDC_RENAME_NAME).Replace("Miller");
        dialog.SettleIdle();
        EXPECT_EQ(veltest::DialogFindings(dialog.Handle()), "");
        EXPECT_TRUE(veltest::SavePicture(dialog.Handle(), "rename-patient"));
        dialog.Press(IDCANCEL);
    });
}

} // namespace
