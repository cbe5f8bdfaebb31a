// The dialogs that settle an ID that is in use, run as their caller runs them.

#include "patient/idconflict.h"

#include "app/modalrun.h"
#include "app/velapp.h"
#include "patient/patientres.h"
#include "tests/support/dialogquality.h"
#include "tests/support/dialogscript.h"
#include "tests/support/mfctestprogram.h"
#include "tests/support/picture.h"
#include "tests/support/temporarypractice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// The module's application object is this program's.
[[maybe_unused]] static const auto* const environment =
    testing::AddGlobalTestEnvironment(new veltest::MfcEnvironment);

BOOL CVelDlgsApp::InitInstance()
{
    return CWinApp::InitInstance();
}

int CVelDlgsApp::ExitInstance()
{
    return CWinApp::ExitInstance();
}

namespace
{

using veltest::Dialog;
using veltest::DialogScript;

void RunDialog(CDialog& dialog, INT_PTR nExpected,
               const std::function<void(DialogScript&, const Dialog&)>& script)
{
    EXPECT_EQ(veltest::RunModal([&] { return velRunModal(dialog); },
                                [&](DialogScript& s) { script(s, s.WaitForDialogWith(IDC_IDCONFLICT_ID)); }),
              nExpected);
}

/// A record from outside that brings this ID, and the patient A1 that has its name and birth date.
struct SamePerson : CChangePatientID
{
    explicit SamePerson(const char* pszProposedID)
    {
        m_strProposedID = pszProposedID;
        m_strExistingID = "A1";
        m_strExistingPatient = "O'Lee, Ann & %s <1> ID:A1";
    }
};

void ExpectChoice(const Dialog& dialog, bool bCreateNew, const std::string& id)
{
    EXPECT_EQ(dialog.Item(IDC_IDCONFLICT_CREATE).IsChecked(), bCreateNew);
    EXPECT_EQ(dialog.Item(IDC_IDCONFLICT_MERGE).IsChecked(), !bCreateNew);
    EXPECT_EQ(dialog.Item(IDC_IDCONFLICT_ID).IsEnabled(), bCreateNew);
    EXPECT_EQ(dialog.Item(IDC_IDCONFLICT_ID).Text(), id);
    EXPECT_EQ(dialog.Item(IDOK).Text(), bCreateNew ? "Create New" : "Merge");
    EXPECT_TRUE(!bCreateNew || dialog.Item(IDC_IDCONFLICT_ID).HasFocus());
}

TEST(ChangePatientID, OffersTheRecordsOwnIDAndTakesWhatIsEntered)
{
    for (const std::string proposed : {"B7", "A1", "a1", ""})
    {
        SCOPED_TRACE(proposed);
        SamePerson dialog(proposed.c_str());
        RunDialog(dialog, IDOK, [&](DialogScript&, const Dialog& window) {
            EXPECT_EQ(window.Item(IDC_IDCONFLICT_MESSAGE).Text(),
                      "An existing patient (O'Lee, Ann & %s <1> ID:A1) in veltrix has same name and birth "
                      "date. Please select the following action.");
            ExpectChoice(window, true, proposed == "A1" ? "" : proposed); // exactly the same
            window.Item(IDC_IDCONFLICT_ID).Replace("C9");
            window.Press(IDC_IDCONFLICT_MERGE);
            ExpectChoice(window, false, "C9");
            window.Press(IDC_IDCONFLICT_CREATE);
            // What was typed gives way to the record's own ID; where there is none to offer, it stays.
            ExpectChoice(window, true, proposed == "A1" ? "C9" : proposed);
            window.Item(IDC_IDCONFLICT_ID).Replace(" d4 ");
            window.Press(IDOK);
        });
        EXPECT_STREQ(dialog.m_strResultID, " d4 ");
        EXPECT_EQ(dialog.m_nMode, CChangePatientID::CreateNew);
        RunDialog(dialog, IDOK, [](DialogScript&, const Dialog& window) {
            window.Press(IDC_IDCONFLICT_MERGE);
            window.Press(IDOK);
        });
        EXPECT_STREQ(dialog.m_strResultID, "A1");
        EXPECT_EQ(dialog.m_nMode, CChangePatientID::Merge);
    }
}

TEST(IDConflict, CancelGivesNothingEnterTakesTheIDAndAnEmptyOneIsLeftToTheCaller)
{
    const veltest::TemporaryPractice practice;
    practice.Set("defaults", "DebugHelp", "1");
    const CString strLong = "Wilhelmina Josephine van der Westhuizen-Montgomery";
    SamePerson same("A1");
    same.m_strExistingPatient = strLong + " & Sons, " + strLong + " ID:A1";
    CGetUniquePatID taken;
    taken.m_strTakenID = "WESTHUIZEN-MONTGOMERY-199";
    taken.m_strPatientName = strLong + " & Sons, " + strLong;
    const auto look = [](CDialog& dialog, const CString& strResultID, const char* pszPicture, int nTopic) {
        RunDialog(dialog, IDCANCEL, [=](DialogScript& script, const Dialog& window) {
            veltest::ExpectWellMade(window, pszPicture);
            EXPECT_THAT(window.Item(IDC_IDCONFLICT_MESSAGE).Text(), testing::HasSubstr("& Sons, Wilhelmina"));
            window.PressF1();
            EXPECT_THAT(script.AnswerBox("", IDOK), testing::HasSubstr(std::to_string(nTopic)));
            window.Item(IDC_IDCONFLICT_ID).Replace("C9");
            window.Press(IDCANCEL);
        });
        EXPECT_STREQ(strResultID, "");
        RunDialog(dialog, IDOK, [](DialogScript& script, const Dialog& window) {
            window.Item(IDC_IDCONFLICT_ID).Replace("");
            window.Press(IDOK);
            script.AnswerBox("You must enter a new patient ID", IDOK);
            window.WaitForClosed();
        });
        EXPECT_STREQ(strResultID, "");
        RunDialog(dialog, IDOK, [](DialogScript&, const Dialog& window) {
            EXPECT_EQ(window.Item(IDOK).Text(), "Create New");
            EXPECT_TRUE(window.Item(IDC_IDCONFLICT_ID).HasFocus());
            window.Item(IDC_IDCONFLICT_ID).Replace(std::string(26, 'B'));
            window.Item(IDC_IDCONFLICT_ID).PressKey(VK_RETURN);
        });
        EXPECT_STREQ(strResultID, std::string(25, 'B').c_str());
    };
    look(same, same.m_strResultID, "change-patient-id", 140435);
    look(taken, taken.m_strResultID, "unique-patient-id", 140436);
}

} // namespace
