// Downloading a shared record, from signing in to the patient in the practice.
#include "cloud/download/waitdialogs.h"
#include "cloud/res/cloudres.h"
#include "cloud/upload/transfersdlg.h"
#include "patient/patientres.h"
#include "suite/patients/records/dbcatalog.h"
#include "tests/cloud/exchangefixture.h"
#include "tests/support/dialogquality.h"
#include "tests/support/picture.h"

#include "app/modalrun.h"

#include <chrono>
#include <filesystem>
#include <regex>

using testing::ElementsAre;
using testing::HasSubstr;
using veltest::Dialog;
using veltest::DialogScript;

namespace
{
const std::string Merged =
    "Patient ID of the downloaded patient does not match with existing Veltrix patient.\n"
    "Downloaded patient will be merged to the existing patient.";
const std::string NewPatient =
    "A1 {0A000000-0000-0000-0000-000000000001} Lee Zo\xeb 1999-05-17 41 hello\n"
    "  Start 2009-03-05 A107 1 lateral n\n"
    "  task Lee, Zo\xeb - A1 of A1\n"
    "    A107.M exists: 0\n"
    "    A107.I2A exists: 0\n"
    "The patient (A1) Lee, Zo\xeb data have been downloaded from FarreachVeltrix\n";

const std::string Unusable =
    "The record that FarreachVeltrix sent is not complete or not readable.  Nothing was downloaded.";

std::string Without(std::string text, const std::string& part)
{
    return text.erase(text.find(part), part.size());
}

/// The texts of a list's row, without the last column.
std::string Row(const Dialog& list, std::size_t nRow)
{
    const std::vector<std::string> cells = list.Item(IDC_CLD_LIST).Rows().at(nRow);
    std::string text;
    for (std::size_t i = 0; i + 1 < cells.size(); ++i)
        text += cells[i] + "|";
    return text;
}
} // namespace

TEST_F(Exchange, ListsRecordsWithOwnerAndTime)
{
    m_practice.Set("Defaults", "Download3D", "1");
    EXPECT_EQ(RunList([&](DialogScript& script) {
                  const Dialog list = script.WaitForDialog("Get Patient From Internet");
                  EXPECT_EQ(Row(list, 0), "41|Lee,  Zo\xeb|Ames,  Anna|2021-01-02 03:04:05|A1|");
                  EXPECT_EQ(Row(list, 1), "42|,  |Owner|2020-01-02 03:04:00||");
                  EXPECT_EQ(Row(list, 2), "43|<&,  |,  |-||");
                  EXPECT_FALSE(list.Item(IDOK).IsEnabled());
                  EXPECT_EQ(veltest::DialogFindings(list.Handle()), "");
                  veltest::SavePicture(list.Handle(), "download-list");
                  // However the command comes in spite of the disabled button.
                  const auto confirm = [&] {
                      ::PostMessage(list.Handle(), WM_COMMAND, IDOK,
                                    reinterpret_cast<LPARAM>(list.Item(IDOK).Handle()));
                  };
                  confirm();
                  script.AnswerBox("No Item Selected", IDOK);
                  // A choice that changed is offered to be kept; one that did not is not spoken of.
                  list.Press(IDC_CLD_OTHER);
                  script.SettleIdle(list.Handle());
                  confirm();
                  script.AnswerBox("Do you want to save download options setting for future downloads?",
                                   IDYES);
                  script.AnswerBox("No Item Selected", IDOK);
                  list.Press(IDCANCEL);
              }),
              IDCANCEL);
    EXPECT_EQ(m_practice.Get("Defaults", "DownloadOther") + m_practice.Get("Defaults", "Download3D"), "11");
    EXPECT_THAT(Commands(), ElementsAre("login", "getdownloadable", "logout"));
    EXPECT_STREQ(m_credentials.GetUser(), "anna");
    const CFRVLogin notice(nullptr);
    EXPECT_EQ(veltest::DialogFindings(notice.m_hWnd), "");
    veltest::SavePicture(notice.m_hWnd, "signing-in");
}

TEST_F(Exchange, TakesANewPatientInOneStep)
{
    m_known = {"A1"};
    EXPECT_EQ(Download(), IDOK);
    EXPECT_EQ(State(), NewPatient);
    EXPECT_THAT(Commands(), ElementsAre("login", "getdownloadable", "getdownloadpatient", "logout"));
    EXPECT_THAT(m_program.m_calls, ElementsAre("wake"));
    dbCRaskoTasksContainer tasks;
    tasks.LoadPending("{0A000000-0000-0000-0000-000000000001}");
    for (const char* part : {R"(frvPatGUID="{F}" frvPatId="41"><images>)", R"(catalogGuid="{C}")"})
        EXPECT_THAT(std::string(tasks[0].strData), HasSubstr(part));
    dbSServicePatient row;
    ASSERT_TRUE(dbCServicePatients::FindByServiceID("41", row));
    EXPECT_STREQ(row.strPatientGUID + row.strServiceGUID + row.strOwnerGUID,
                 "{0A000000-0000-0000-0000-000000000001}{F}{O}");
    dbCCatalogFiles catalog;
    ASSERT_EQ(catalog.LoadByPatID(row.strPatientGUID), 1);
    EXPECT_STREQ(catalog[0].strName + catalog[0].strCatalogGUID + catalog[0].strHash,
                 "A107.M{C}900150983cd24fb0d6963f7d28e17f72");

    // Once more while its files are on their way: nothing changes.
    EXPECT_EQ(
        Download({"A transfer of this patient is already waiting or under way.  Please try again when it has "
                  "finished.  Nothing was changed."}),
        IDCANCEL);
    EXPECT_EQ(State(), NewPatient);
}

TEST_F(Exchange, StopsWithoutATraceOfWhatCannotBeTaken)
{
    m_known = {"A1"};
    const std::string lossy = "The record holds characters that this computer's language setting does not "
                              "have.  Nothing was downloaded.";
    const std::pair<std::string, std::string> cases[] = {
        {ServiceRecord().substr(0, 400), Unusable},
        {Without(ServiceRecord(), "patientID='A1'"), Unusable},
        {ServiceRecord("<Timepoint tpNumber='100'/>"),
         "The record's timepoints do not fit this patient (\"100\").  A patient has at most 100 timepoints "
         "with numbers "
         "of their own.  Nothing was downloaded."},
        {ServiceRecord("<Timepoint tpNumber='7'><Images><image file='..\\x.I2A'/></Images></Timepoint>"),
         "The record holds the name \"..\\x.I2A\", which cannot belong to this patient.  Nothing was "
         "downloaded."},
        {ServiceRecord("<Timepoint tpNumber='7' name='&#20013;'/>"), lossy},
        {Without(ServiceRecord(), "<note>hello</note></patient></record>") +
             "<emailAddresses><emailAddress firstName='&#20013;'/></emailAddresses></patient></record>",
         lossy},
    };
    for (const auto& [record, text] : cases)
    {
        m_replies["getdownloadpatient"] = record;
        EXPECT_EQ(Download({text}), IDCANCEL);
        EXPECT_EQ(State(), "") << text;
    }
    dbCPatient undated = StorePatient("B1");
    undated.SetBirthdate(velCDate());
    undated.Save();
    const std::string before = State();
    for (const std::string& record : {ServiceRecord(), Without(ServiceRecord(), "patBirthdate='1999-05-17'")})
    {
        m_replies["getdownloadpatient"] = record;
        EXPECT_EQ(Download({"A patient \"Lee,  Zo\xeb (B1) exists in VELTRIX with no date of birth. Please "
                            "provide the DOB for this patient and try again."}),
                  IDCANCEL);
        EXPECT_EQ(State(), before);
    }
    EXPECT_TRUE(m_program.m_calls.empty());
}

TEST_F(Exchange, MergesIntoThePatientThatItIs)
{
    dbCPatient local = StorePatient("B1");
    local.SetVeltrixID("41");
    local.GetTimepoints()[0].SetActive(FALSE); // the record's by name and date
    local.Save();
    m_replies["getdownloadpatient"] = ServiceRecord(
        "<Timepoint name='Start' tpDate='2009-03-05' tpNumber='7' tpGUID='x'><Images><image file='A107.I2A' "
        "signature='900150983CD24FB0D6963F7D28E17F72' title='theirs'/></Images></Timepoint><Timepoint "
        "name='End' "
        "tpDate='broken' tpNumber='0'><Images><image file='A100.I2A' title='new' "
        "signature='900150983cd24fb0d6963f7d28e17f72'/><image file='A100.I2B'/></Images></Timepoint>");
    EXPECT_EQ(
        Download(
            {"You are downloading records for patient \"Lee,  Zo\xeb (A1) \".\nNOTE This record has been "
             "marked as inactive and will not appear in the patient lookup. To view this record, click the "
             "option to \"include patients in the status to not show in lookup\" on the lookup screen.",
             Merged, "1 of the record's files cannot be checked and will not be downloaded:\n\n  A100.I2B"}),
        IDOK);
    EXPECT_EQ(State(),
              "B1 " + std::string(local.GetGUID()) +
                  " Lee Zo\xeb 1999-05-17 41 \n  Start 2009-03-05 B100 1  \n  End  B101 1 new \n  task Lee, "
                  "Zo\xeb - B1 of B1\n    B100.I2A exists: 1\n    B101.I2A exists: 0\nThe patient (B1) Lee, "
                  "Zo\xeb data have been downloaded from FarreachVeltrix\n");
}

TEST_F(Exchange, ReplacesOnlyWhatIsOlderThanTheRecord)
{
    const dbCPatient local = StorePatient("B1");
    dbCServicePatients::Store({local.GetGUID(), "41", "{F}"}); // it was uploaded from here
    // The record was updated in January 2020, and shared a year later.
    for (const auto& [year, exists] : {std::pair(2019, "0"), std::pair(2020, "1")})
    {
        m_practice.WriteFile("working\\B100.I2A", "changed");
        const std::chrono::sys_seconds june(std::chrono::sys_days(std::chrono::year(year) / 6 / 1));
        std::filesystem::last_write_time(m_practice.Path("working\\B100.I2A"),
                                         std::chrono::file_clock::from_sys(june));
        EXPECT_EQ(Download({Merged}), IDOK);
        EXPECT_THAT(State(), HasSubstr(std::string("    B100.I2A exists: ") + exists));
        dbCRaskoTasksContainer tasks;
        ASSERT_EQ(tasks.LoadPending(local.GetGUID()), 1);
        tasks[0].nStatus = dbSRaskoTask::STATUS_FINISHED;
        dbCRaskoTasksContainer::UpdateRow(tasks[0]);
    }
}

TEST_F(Exchange, LetsTheUserSettleWhoItIs)
{
    StorePatient("B1");
    m_known = {"A1"};
    const auto conflict = [](DialogScript& script, const std::string& message, const char* id) {
        const Dialog dialog = script.WaitForDialogWith(IDC_IDCONFLICT_ID);
        EXPECT_EQ(dialog.Item(IDC_IDCONFLICT_MESSAGE).Text(), message);
        dialog.Item(IDC_IDCONFLICT_ID).SetText(id);
        return dialog;
    };
    const auto changeRecord = [&](const std::string& lastName, const std::string& serviceId) {
        std::string& record = m_replies["getdownloadpatient"];
        record =
            std::regex_replace(record, std::regex("patlastName='\\w+'"), "patlastName='" + lastName + "'");
        record =
            std::regex_replace(record, std::regex("patVeltrixID='\\w+'"), "patVeltrixID='" + serviceId + "'");
    };
    const std::string samePerson =
        "An existing patient (Lee, Zo\xeb ID:B1) in veltrix has same name and birth date. "
        "Please select the following action.";
    // The same name and birth date: a new patient under the record's own ID, after a taken one.
    EXPECT_EQ(DownloadWith([&](DialogScript& script) { conflict(script, samePerson, "A1").Press(IDCANCEL); }),
              IDCANCEL);
    EXPECT_EQ(State(), "");
    EXPECT_EQ(DownloadWith([&](DialogScript& script) {
                  EXPECT_EQ(script.WaitForDialogWith(IDC_IDCONFLICT_ID).Item(IDC_IDCONFLICT_ID).Text(), "A1");
                  conflict(script, samePerson, "b1").Press(IDOK);
                  script.AnswerBox("This Patient ID already used by another patient. Try another.", IDOK);
                  conflict(script, samePerson, "A1").Press(IDOK);
              }),
              IDOK);
    EXPECT_EQ(State(), NewPatient);

    // Another person has the ID.
    changeRecord("Roe", "77");
    const std::string otherPerson =
        "Patient ID: A1 for patient \"Roe, Zo\xeb\" already exists in Veltrix. Please "
        "select another patient ID.";
    EXPECT_EQ(DownloadWith([&](DialogScript& script) {
                  veltest::SavePicture(script.WaitForDialogWith(IDC_IDCONFLICT_ID).Handle(), "id-taken");
                  conflict(script, otherPerson, "D1").Press(IDOK);
              }),
              IDOK);
    dbCPatient created, other;
    ASSERT_TRUE(created.Load("D1") && other.Load("A1"));
    EXPECT_STRNE(created.GetGUID(), other.GetGUID());
    EXPECT_STREQ(created.GetLastname() + created.GetTimepoint(0).GetBaseFilename(), "RoeD107");

    // The same person after all: the patient who is here gets what is new, under the ID that is here.
    changeRecord("LEE", "78");
    other.SetFirstname("Zoe"); // nobody else of the name
    other.Save();
    EXPECT_EQ(DownloadWith([&](DialogScript& script) {
                  const Dialog dialog = conflict(script, samePerson, "A1");
                  dialog.Press(IDC_IDCONFLICT_MERGE);
                  dialog.Press(IDOK);
                  script.AnswerBox(Merged, IDOK);
              }),
              IDOK);
    dbCPatient merged;
    ASSERT_TRUE(merged.Load("B1"));
    EXPECT_STREQ(merged.GetLastname() + merged.GetVeltrixID(), "Lee78");
    EXPECT_EQ(merged.GetTimepoints().GetCount(), 1);
}

TEST_F(Exchange, SignsInUntilTheServiceAgreesOrTheUserGivesUp)
{
    const std::string getPatient = "Get Patient From Internet", getCredentials = "Waiting for Rasko",
                      signingIn = "Sign In to FarreachVeltrix";
    m_program.m_bCredentials = false;
    EXPECT_EQ(RunList([&](DialogScript& script) { script.WaitForDialog(getCredentials).Press(IDCANCEL); }),
              IDCANCEL);
    m_replies["login"] = "welcome"; // whoever is not greeted with nothing is not remembered
    EXPECT_EQ(RunList([&](DialogScript& script) {
                  const Dialog wait = script.WaitForDialog(getCredentials);
                  EXPECT_EQ(veltest::DialogFindings(wait.Handle()), "");
                  veltest::SavePicture(wait.Handle(), "rasko-wait");
                  wait.Press(IDC_CLD_SIGN_IN_HERE);
                  script.WaitForDialog(signingIn).Press(IDCANCEL);
                  script.WaitUntil("the wait goes on", [&] { return wait.IsEnabled(); });
                  wait.Press(IDC_CLD_SIGN_IN_HERE);
                  const Dialog signIn = script.WaitForDialog(signingIn);
                  script.SettleIdle(signIn.Handle());
                  EXPECT_FALSE(signIn.Item(IDOK).IsEnabled());
                  signIn.Item(IDC_CLD_USER).Type("carl");
                  signIn.Item(IDC_CLD_PASSWORD).Type("x y");
                  script.WaitUntil("OK can be pressed", [&] { return signIn.Item(IDOK).IsEnabled(); });
                  signIn.Press(IDOK);
                  script.WaitForDialog(getPatient).Press(IDCANCEL);
              }),
              IDCANCEL);
    EXPECT_THAT(m_server.Requests().front(), HasSubstr("cmd=login&Login=carl&password=x+y&tz="));
    EXPECT_FALSE(m_credentials.IsKnown());
    m_program.m_bCredentials = true;
    m_replies["login"] =
        "<response><message>Hello</message></response>"; // a message that lets the user go on
    EXPECT_EQ(RunList([&](DialogScript& script) {
                  script.AnswerBox("The dialog could not be created.", IDOK);
                  script.WaitForDialog(getPatient).Press(IDCANCEL);
              }),
              IDCANCEL);
    EXPECT_STREQ(m_credentials.GetUser(), "anna");
    m_credentials.Clear();
    m_program.m_bCredentials = false;
    m_replies.erase("login");
    EXPECT_EQ(RunList([&](DialogScript& script) {
                  script.WaitForDialog(getCredentials);
                  m_program.m_bCredentials = true; // they have been entered there
                  script.AnswerBox("Invalid Username/Password.", IDOK);
                  const Dialog signIn = script.WaitForDialog(signingIn);
                  EXPECT_THAT(DialogScript::ListWindows(), testing::Not(HasSubstr("Signing in")));
                  EXPECT_EQ(signIn.Item(IDC_CLD_USER).Text() + signIn.Item(IDC_CLD_PASSWORD).Text(), "anna");
                  EXPECT_EQ(veltest::DialogFindings(signIn.Handle()), "");
                  veltest::SavePicture(signIn.Handle(), "sign-in");
                  // A message that stops: signed out, and asked again.
                  m_replies["login"] = "<response><message action='stop'>Act</message></response>";
                  signIn.Press(IDOK);
                  script.AnswerBox("The dialog could not be created.", IDOK);
                  m_replies.erase("login");
                  const Dialog again = script.WaitForDialog(signingIn);
                  again.Press(IDOK);
                  script.AnswerBox("Invalid Username/Password.", IDOK);
                  again.WaitForClosed();
                  script.WaitForDialog(signingIn).Press(IDCANCEL);
                  const Dialog list = script.WaitForDialog(getPatient);
                  EXPECT_TRUE(list.Item(IDC_CLD_LIST).Rows().empty());
                  EXPECT_FALSE(list.Item(IDOK).IsEnabled());
                  list.Press(IDCANCEL);
              }),
              IDCANCEL);
    EXPECT_THAT(Commands(), ElementsAre("login", "getdownloadable", "logout", "login", "getdownloadable",
                                        "logout", "login", "login", "logout", "login", "logout"));
    EXPECT_FALSE(m_credentials.IsKnown());
    m_program.m_bInstalled = false;
    EXPECT_EQ(RunList([&](DialogScript& script) {
                  script.AnswerBox("Rasko Upload/Download program not available.", IDOK);
              }),
              IDCANCEL);
}

TEST_F(Exchange, ACutAtEveryRequestEndsInAMessage)
{
    m_known = {"A1"};
    // What comes up, the system's own texts as "system".
    const struct
    {
        int nCut;
        bool bHalf;
        std::vector<std::string> seen;
        INT_PTR nResult;
    } cases[] = {
        {1, true, {"system", "3 record(s)"}, IDCANCEL},
        {1, false, {"Invalid Username/Password.", "sign in", ""}, IDCANCEL},
        {2, true, {"system", "There are no records that you could download."}, IDCANCEL},
        {2, false, {"FarreachVeltrix did not send the list of records.  Please try again later."}, IDCANCEL},
        {3, true, {"3 record(s)", "system", Unusable, "3 record(s)"}, IDCANCEL},
        {3, false, {"3 record(s)", Unusable, "3 record(s)"}, IDCANCEL},
        {4, true, {"3 record(s)", "system"}, IDOK}};
    for (const auto& c : cases)
    {
        std::vector<std::string> seen;
        m_credentials.Clear();
        m_nCut = c.nCut;
        m_bCutHalf = c.bHalf;
        bool bChoose = c.nCut > 2;
        const auto answer = [&](DialogScript& script) {
            if (const auto box = script.FindBox())
            {
                const std::string text = box->BoxText();
                const bool bOwn = text == Unusable || text.starts_with("Invalid");
                // Whether a broken connection has a text is the system's to say.
                if (bOwn || c.bHalf)
                    seen.push_back(bOwn ? text : "system");
                box->Press(IDOK);
                box->WaitForClosed();
                return c.nCut == 4; // the record is here by then
            }
            else if (const auto signIn = script.FindDialog("Sign In to FarreachVeltrix"))
            {
                seen.emplace_back("sign in");
                signIn->Press(IDCANCEL);
                signIn->WaitForClosed();
            }
            else if (const auto list = script.FindDialog("Get Patient From Internet"))
            {
                seen.push_back(list->Item(IDC_CLD_HINT).Text());
                if (bChoose)
                    list->Item(IDC_CLD_LIST).SelectRow(0);
                list->SettleIdle();
                list->Press(std::exchange(bChoose, false) ? IDOK : IDCANCEL);
                script.WaitUntil("what comes of it", [&] { return !list->IsOpen() || !list->IsEnabled(); });
                return !list->IsOpen();
            }
            return false;
        };
        EXPECT_EQ(RunList([&](DialogScript& script) {
                      script.WaitUntil("the end of the list", [&] { return answer(script); });
                  }),
                  c.nResult)
            << c.nCut;
        EXPECT_EQ(seen, c.seen) << c.nCut;
        EXPECT_EQ(State(), c.nResult == IDOK ? NewPatient : "") << c.nCut;
    }
}

TEST_F(Exchange, FollowsTransfersAndTheirReasons)
{
    const std::pair<int, const char*> rows[] = {{-2, ""},
                                                {41, ""},
                                                {57, "The service does not answer."},
                                                {100, ""},
                                                {101, "The record was replaced."},
                                                {102, ""}};
    for (const auto& [nStatus, pszReason] : rows)
    {
        dbSRaskoTask task;
        task.strDescription = ("Lee, Zo\xeb - A" + std::to_string(nStatus)).c_str();
        task.strQueueComputer = CFarreachVeltrix::GetComputer();
        dbCRaskoTasksContainer::InsertRow(task);
        task.nStatus = nStatus;
        task.strReason = pszReason;
        dbCRaskoTasksContainer::UpdateRow(task);
    }
    veltest::RunModal(
        [&] {
            upldCTransfersDlg dialog(nullptr, m_program, 2);
            return velRunModal(dialog);
        },
        [&](DialogScript& script) {
            const Dialog dialog = script.WaitForDialog("Transfers");
            std::string states;
            for (const auto& row : dialog.Item(IDC_CLD_LIST).Rows())
                states += row.at(1) + "|";
            EXPECT_EQ(states, "41 %|Waiting|Done|Failed|Cancelled|");
            EXPECT_EQ(dialog.Item(IDC_CLD_REASON).Text(), "The service does not answer.");
            dialog.Item(IDC_CLD_LIST).SelectRow(3);
            script.Settle(dialog.Handle());
            EXPECT_EQ(dialog.Item(IDC_CLD_REASON).Text(), "The record was replaced.");
            EXPECT_EQ(veltest::DialogFindings(dialog.Handle()), "");
            veltest::SavePicture(dialog.Handle(), "transfers");
            dialog.Press(IDC_CLD_SHOW_RASKO);
            dialog.Press(IDOK);
        });
    EXPECT_THAT(m_program.m_calls, ElementsAre("show"));
}
