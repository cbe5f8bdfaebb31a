#include "maintenance/maintenanceres.h"
#include "tests/maintenance/patientpractice.h"

namespace
{

using testing::ElementsAre;
using veltest::Dialog;
using veltest::DialogScript;

class DeleteDialog : public PatientPractice
{
protected:
    struct Answer
    {
        __int64 result;
        unsigned operation;
        bool operator==(const Answer&) const = default;
    };

    static Answer Run(dbCPatient* pPatient, int timepoint, int practiceManagement,
                      const std::function<void(DialogScript&, const Dialog&)>& script)
    {
        Answer answer = {-1, 99};
        veltest::RunModal(
            [&] {
                DeleteDlg(nullptr, practiceManagement, pPatient, timepoint, 0, 0, "", answer.result,
                          answer.operation);
                return 0;
            },
            [&](DialogScript& s) { script(s, s.WaitForDialog("Delete")); });
        return answer;
    }

    static std::string Description(const Dialog& dialog)
    {
        return dialog.Item(IDC_DELETE_DESCRIPTION).Text();
    }

    // The radio buttons that can be chosen, the checked one in brackets.
    static std::string Radios(const Dialog& dialog)
    {
        std::string text;
        for (int id = IDC_DELETE_IMAGES; id <= IDC_DELETE_PATIENT; ++id)
        {
            const auto radio = dialog.Item(id);
            const std::string name = radio.IsEnabled() ? std::string(1, "ITP"[id - IDC_DELETE_IMAGES]) : "-";
            text += radio.IsChecked() ? "[" + name + "]" : name;
        }
        return text;
    }

    // Presses OK, answers the question and returns it.
    static std::string AskAndAnswer(DialogScript& script, const Dialog& dialog, int answer)
    {
        dialog.Press(IDOK);
        const Dialog box = script.WaitForBox();
        EXPECT_EQ(box.Title(), "Patient Delete Warning!");
        EXPECT_THAT(box.Buttons(), ElementsAre("Yes", "No"));
        EXPECT_EQ(box.DefaultButton(), "No");
        const std::string question = box.BoxText();
        box.Press(answer);
        box.WaitForClosed();
        return question;
    }
};

TEST_F(DeleteDialog, EachOperationIsDescribedAskedAndHandedBack)
{
    m_patient = Store("X1", " Ann  %2 ", "O'Hara & <1>", {{"100% \"%2\" &x", velCDate(2024, 1, 2)}});
    const struct
    {
        int radio;
        const char* description;
        const char* question;
    } cases[] = {
        {IDC_DELETE_IMAGES,
         "You are about to delete the images for timepoint \"100% \"%2\" &x.\"  Select Ok to proceed, or "
         "Cancel to "
         "leave this operation.",
         "Are you sure you want to delete the images for timepoint \"100% \"%2\" &x?\"  All images will be "
         "deleted."},
        {IDC_DELETE_TIMEPOINT,
         "You are about to delete timepoint \"100% \"%2\" &x.\"  Select Ok now to proceed, or Cancel to "
         "leave this "
         "operation.",
         "Are you sure you want to delete timepoint \"100% \"%2\" &x?\"  All images and "
         "questionnaire/diagnostic "
         "data in this timepoint will be deleted."},
        {IDC_DELETE_PATIENT,
         "You are about to delete Ann %2 O'Hara & <1>, ID=X1 from the patient list.  Select Ok now to "
         "proceed, or "
         "Cancel to leave this operation.",
         "Are you sure you want to delete patient Ann %2 O'Hara & <1>, ID=X1?  All data will be deleted."},
    };
    for (const auto& c : cases)
    {
        const Answer answer = Run(&m_patient, 0, 0, [&](DialogScript& script, const Dialog& dialog) {
            EXPECT_EQ(Radios(dialog), "I[T]P");
            dialog.Press(c.radio);
            EXPECT_EQ(Description(dialog), c.description);
            EXPECT_EQ(AskAndAnswer(script, dialog, IDNO), c.question);
            EXPECT_TRUE(dialog.IsOpen());
            EXPECT_EQ(AskAndAnswer(script, dialog, IDYES), c.question);
        });
        EXPECT_EQ(answer, (Answer{IDOK, static_cast<unsigned>(c.radio - IDC_DELETE_IMAGES)}));
    }
    // The dialog has deleted nothing.
    dbCPatient stored;
    ASSERT_TRUE(stored.Load("X1"));
    EXPECT_EQ(stored.GetTimepoints().GetCount(), 1);
}

TEST_F(DeleteDialog, StartsOnWhatThereIs)
{
    dbCPatient unsaved;
    unsaved.SetID("N1");
    const char* const nothing = "\n\nSelect \"Delete\" operation.";
    const struct
    {
        dbCPatient* patient;
        int timepoint;
        int patientChanges;
        const char* radios;
        bool ok;
        unsigned operation;
    } cases[] = {
        {&m_patient, -1, 1, "--[P]", true, DELETE_PATIENT},
        {&m_patient, -1, 0, "--[-]", false, DELETE_PATIENT},
        {&m_patient, 1, 1, "I[T]P", true, DELETE_TIMEPOINT},
        {&m_patient, 1, 2, "I[T]-", true, DELETE_TIMEPOINT},
        {&m_patient, 2, 1, "-[-]P", false, DELETE_TIMEPOINT},
        {&unsaved, -5, 1, "--[-]", false, DELETE_PATIENT},
        {nullptr, 0, 1, "-[-]-", false, DELETE_TIMEPOINT},
    };
    for (const auto& c : cases)
    {
        const PatientChanges changes(c.patientChanges);
        const Answer answer = Run(c.patient, c.timepoint, 1, [&](DialogScript&, const Dialog& dialog) {
            EXPECT_EQ(Radios(dialog), c.radios);
            EXPECT_EQ(dialog.Item(IDOK).IsEnabled(), c.ok);
            EXPECT_EQ(Description(dialog) == nothing, !c.ok) << Description(dialog);
            dialog.Press(IDCANCEL);
        });
        EXPECT_EQ(answer, (Answer{IDCANCEL, c.operation}));
    }
}

TEST_F(DeleteDialog, CancelHandsTheSelectionBack)
{
    EXPECT_EQ(Run(&m_patient, 0, 0,
                  [](DialogScript&, const Dialog& dialog) {
                      dialog.Press(IDC_DELETE_IMAGES);
                      dialog.Close();
                  }),
              (Answer{IDCANCEL, DELETE_TIMEPOINT_IMAGES}));
}

TEST_F(DeleteDialog, WarnsOfDiagnosticsOfThisTimepointOnly)
{
    const CString dtID = dbCDiagnosticGroup::DefineItem("Profile", "Clinical", "P1", "Profile");
    dbCDiagnosticInfo info;
    info.SetTP(1);
    dbCPatientDiagnostics(m_patient.GetGUID(), 0, "Clinical")
        .AddDiagnosticRecord(dtID, 1, info, 0, COleDateTime::GetCurrentTime());
    for (const bool diagnosed : {false, true})
        Run(&m_patient, diagnosed ? 1 : 0, 0, [&](DialogScript& script, const Dialog& dialog) {
            const std::string warning = "WARNING! There is questionnaire/diagnostic information in the "
                                        "database for this timepoint!\n ";
            const std::string question =
                std::string("Are you sure you want to delete timepoint \"") +
                (diagnosed ? "Recall" : "Start") +
                "?\"  All images and questionnaire/diagnostic data in this timepoint will be deleted.";
            EXPECT_EQ(AskAndAnswer(script, dialog, IDNO), diagnosed ? warning + question : question);
            dialog.Press(IDC_DELETE_IMAGES);
            EXPECT_EQ(AskAndAnswer(script, dialog, IDNO).find("WARNING"), std::string::npos);
            dialog.Press(IDCANCEL);
        });
}

TEST_F(DeleteDialog, AnOpenBalanceKeepsThePatientUnderPracticeManagementOnly)
{
    m_patient.SetBalance(-1);
    const Answer refused = Run(&m_patient, -1, 1, [](DialogScript& script, const Dialog& dialog) {
        dialog.Press(IDOK);
        const Dialog box = script.WaitForBox("You cannot delete this patient until their balance is zero.");
        EXPECT_EQ(box.Title(), "Veltrix");
        EXPECT_THAT(box.Buttons(), ElementsAre("OK"));
        box.Press(IDOK);
        box.WaitForClosed();
        EXPECT_TRUE(dialog.IsOpen());
        dialog.Press(IDCANCEL);
    });
    EXPECT_EQ(refused, (Answer{IDCANCEL, DELETE_PATIENT}));
    const auto agree = [](DialogScript& script, const Dialog& dialog) {
        AskAndAnswer(script, dialog, IDYES);
    };
    EXPECT_EQ(Run(&m_patient, -1, 0, agree), (Answer{IDOK, DELETE_PATIENT}));
    m_patient.SetBalance(0);
    EXPECT_EQ(Run(&m_patient, -1, 1, agree), (Answer{IDOK, DELETE_PATIENT}));
}

TEST_F(DeleteDialog, AVanishedDatabaseIsToldAndNothingIsAgreedTo)
{
    const Answer answer = Run(&m_patient, 0, 1, [](DialogScript& script, const Dialog& dialog) {
        dbCPatients::Close();
        // A timepoint that cannot be looked up is asked for without a warning.
        EXPECT_THAT(AskAndAnswer(script, dialog, IDNO), testing::StartsWith("Are you sure"));
        dialog.Press(IDC_DELETE_PATIENT);
        dialog.Press(IDOK);
        const Dialog box = script.WaitForBox();
        EXPECT_THAT(box.BoxText(), testing::StartsWith("The patient's records could not be read"));
        box.Press(IDOK);
        box.WaitForClosed();
        EXPECT_TRUE(dialog.IsOpen());
        dialog.Press(IDCANCEL);
    });
    EXPECT_EQ(answer, (Answer{IDCANCEL, DELETE_PATIENT}));
}

TEST_F(DeleteDialog, IsUsedByKeyboardAndLooksAsItShould)
{
    const Answer answer = Run(&m_patient, 1, 0, [](DialogScript& script, const Dialog& dialog) {
        EXPECT_TRUE(dialog.Item(IDC_DELETE_TIMEPOINT).HasFocus());
        EXPECT_EQ(dialog.DefaultButton(), "OK");
        EXPECT_EQ(veltest::DialogFindings(dialog.Handle()), "");
        EXPECT_TRUE(veltest::SavePicture(dialog.Handle(), "delete"));
        dialog.PressAccessKey('P');
        EXPECT_TRUE(dialog.Item(IDC_DELETE_PATIENT).IsChecked());
        dialog.PressKey(VK_UP);
        EXPECT_TRUE(dialog.Item(IDC_DELETE_TIMEPOINT).IsChecked());
        dialog.PressKey(VK_RETURN);
        script.AnswerBox("", IDNO);
        dialog.PressKey(VK_ESCAPE);
    });
    EXPECT_EQ(answer, (Answer{IDCANCEL, DELETE_TIMEPOINT}));
}

} // namespace
