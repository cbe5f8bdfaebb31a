#include "tests/maintenance/patientpractice.h"

namespace
{

const std::string operations = "ITP"; // images, timepoint, patient

class DeleteDialog : public PatientPractice
{
protected:
    using Answer = std::pair<__int64, unsigned>; // the result and the operation

    DeleteDialog()
    {
        m_caption = "Patient Delete Warning!";
        m_defaultAnswer = "No";
    }

    static Answer Run(dbCPatient* pPatient, int timepoint, int practiceManagement, const Script& script)
    {
        Answer answer = {-1, 99};
        veltest::RunDialog(
            [&] {
                DeleteDlg(nullptr, practiceManagement, pPatient, timepoint, 0, 0, "", answer.first,
                          answer.second);
            },
            "Delete", script);
        return answer;
    }

    // The radio buttons that can be chosen, the checked one in brackets.
    static std::string Radios(const Dialog& dialog)
    {
        std::string text;
        for (int i = 0; i < 3; ++i)
        {
            const auto radio = dialog.Item(IDC_DELETE_IMAGES + i);
            const std::string name = radio.IsEnabled() ? operations.substr(i, 1) : "-";
            text += radio.IsChecked() ? "[" + name + "]" : name;
        }
        return text;
    }
};

TEST_F(DeleteDialog, EachOperationIsDescribedAskedAndHandedBack)
{
    m_patient = Store("X1", " Ann  %2 ", "O'Hara & <1>", {{"100% \"%2\" &x", velCDate(2024, 1, 2)}});
    const std::vector<std::string> before = Stored("X1");
    const std::string timepoint = "timepoint \"100% \"%2\" &x";
    const std::string patient = "Ann %2 O'Hara & <1>, ID=X1";
    const std::string leave = "to proceed, or Cancel to leave this operation.";
    const std::string descriptions[] = {
        "You are about to delete the images for " + timepoint + ".\"  Select Ok " + leave,
        "You are about to delete " + timepoint + ".\"  Select Ok now " + leave,
        "You are about to delete " + patient + " from the patient list.  Select Ok now " + leave};
    const std::string sure = "Are you sure you want to delete ";
    const std::string questions[] = {
        sure + "the images for " + timepoint + "?\"  All images will be deleted.",
        sure + timepoint +
            "?\"  All images and questionnaire/diagnostic data in this timepoint will be deleted.",
        sure + "patient " + patient + "?  All data will be deleted."};
    for (unsigned i = 0; i < 3; ++i)
    {
        const int radio = IDC_DELETE_IMAGES + static_cast<int>(i);
        const auto cancel = [&](DialogScript&, const Dialog& dialog) {
            dialog.Press(radio);
            dialog.Close();
        };
        EXPECT_EQ(Run(&m_patient, 0, 0, cancel), Answer(IDCANCEL, i));
        const auto confirm = [&](DialogScript& script, const Dialog& dialog) {
            EXPECT_EQ(Radios(dialog), "I[T]P");
            EXPECT_TRUE(dialog.Item(IDC_DELETE_TIMEPOINT).HasFocus());
            EXPECT_EQ(dialog.DefaultButton(), "OK");
            veltest::ExpectWellMade(dialog, "delete", {.grows = true});
            dialog.Press(radio);
            EXPECT_EQ(dialog.Item(IDC_DELETE_DESCRIPTION).Text(), descriptions[i]);
            EXPECT_EQ(Ask(script, dialog, IDNO), questions[i]);
            EXPECT_EQ(Ask(script, dialog, IDYES), questions[i]);
        };
        EXPECT_EQ(Run(&m_patient, 0, 0, confirm), Answer(IDOK, i));
    }
    EXPECT_EQ(Stored("X1"), before) << "deleting is the host's";
}

TEST_F(DeleteDialog, StartsOnWhatThereIs)
{
    dbCPatient unsaved;
    dbCPatient unsavedWithTimepoint;
    dbCTimepoint timepoint;
    unsavedWithTimepoint.GetTimepoints().Add(&unsavedWithTimepoint, timepoint, TRUE, TRUE);
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
        {&m_patient, 0, 1, "I[T]P", true, DELETE_TIMEPOINT},
        {&m_patient, 1, 2, "I[T]-", true, DELETE_TIMEPOINT},
        {&m_patient, 2, 1, "-[-]P", false, DELETE_TIMEPOINT},
        {&unsaved, -5, 1, "--[-]", false, DELETE_PATIENT},
        {&unsavedWithTimepoint, 0, 1, "I[T]-", true, DELETE_TIMEPOINT},
        {nullptr, 0, 1, "-[-]-", false, DELETE_TIMEPOINT},
    };
    for (const auto& c : cases)
    {
        AllowPatientChanges(c.patientChanges);
        const auto look = [&](DialogScript& script, const Dialog& dialog) {
            EXPECT_EQ(Radios(dialog), c.radios);
            EXPECT_EQ(dialog.Item(IDOK).IsEnabled(), c.ok);
            EXPECT_EQ(dialog.Item(IDC_DELETE_DESCRIPTION).Text() == "\n\nSelect \"Delete\" operation.",
                      !c.ok);
            if (!c.ok)
            {
                PostOK(script, dialog);
                EXPECT_FALSE(script.FindBox());
            }
            dialog.Press(IDCANCEL);
        };
        EXPECT_EQ(Run(c.patient, c.timepoint, 1, look), Answer(IDCANCEL, c.operation)) << c.radios;
    }
}

TEST_F(DeleteDialog, WarnsOfDiagnosticsOfThisTimepointOnly)
{
    const CString dtID = dbCDiagnosticGroup::DefineItem("Profile", "Clinical", "P1", "Profile");
    dbCDiagnosticInfo info;
    info.SetTP(1);
    dbCPatientDiagnostics(m_patient.GetGUID(), 0, "Clinical")
        .AddDiagnosticRecord(dtID, 1, info, 0, COleDateTime::GetCurrentTime());
    const std::string warning = "WARNING! There is questionnaire/diagnostic information in the database for "
                                "this timepoint!\n Are you sure";
    for (const int diagnosed : {0, 1})
        Run(&m_patient, diagnosed, 0, [&](DialogScript& script, const Dialog& dialog) {
            EXPECT_THAT(Ask(script, dialog, IDNO),
                        testing::StartsWith(diagnosed == 1 ? warning : "Are you sure"));
            dialog.Press(IDC_DELETE_IMAGES);
            EXPECT_THAT(Ask(script, dialog, IDNO), testing::StartsWith("Are you sure"));
            dialog.Press(IDCANCEL);
        });
}

TEST_F(DeleteDialog, AnOpenBalanceKeepsThePatientUnderPracticeManagementOnly)
{
    m_patient.SetBalance(-1);
    const auto refused = [](DialogScript& script, const Dialog& dialog) {
        dialog.Press(IDOK);
        script.AnswerBox("You cannot delete this patient until their balance is zero.", IDOK);
        dialog.Press(IDCANCEL);
    };
    EXPECT_EQ(Run(&m_patient, -1, 1, refused), Answer(IDCANCEL, DELETE_PATIENT));
    const auto agree = [&](DialogScript& script, const Dialog& dialog) { Ask(script, dialog, IDYES); };
    EXPECT_EQ(Run(&m_patient, 1, 1, agree), Answer(IDOK, DELETE_TIMEPOINT));
    EXPECT_EQ(Run(&m_patient, -1, 0, agree), Answer(IDOK, DELETE_PATIENT));
    m_patient.SetBalance(0);
    EXPECT_EQ(Run(&m_patient, -1, 1, agree), Answer(IDOK, DELETE_PATIENT));
}

TEST_F(DeleteDialog, ADatabaseThatCannotBeReadIsToldAndNothingIsAgreedTo)
{
    const auto damage = [&](DialogScript& script, const Dialog& dialog) {
        Sql("DROP TABLE timepoints; DROP TABLE balances");
        // A timepoint that cannot be looked up is asked for without a warning.
        EXPECT_THAT(Ask(script, dialog, IDNO), testing::StartsWith("Are you sure"));
        dialog.Press(IDC_DELETE_PATIENT);
        dialog.Press(IDOK);
        ExpectRecordFailure(script, dialog);
        dialog.Press(IDCANCEL);
    };
    EXPECT_EQ(Run(&m_patient, 0, 1, damage), Answer(IDCANCEL, DELETE_PATIENT));
}

} // namespace
