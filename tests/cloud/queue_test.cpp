// Queuing uploads for the transfer program.
#include "cloud/queue/farreachveltrix.h"
#include "cloud/res/cloudres.h"
#include "cloud/upload/internetoperations.h"
#include "tests/cloud/exchangefixture.h"

#include <sqlite3.h>

using testing::ElementsAre;
using veltest::DialogScript;

namespace
{
const std::string NoBirthDate =
    "The patient C1 does not have a valid birth date assigned.  Please edit the patient "
    "information and enter the patient birth date first.";

class Queue : public Exchange
{
protected:
    int Upload(const dbCPatient& patient, const velSUpload& upload = {})
    {
        return CFarreachVeltrix(m_program).QueueUpload(patient, upload, TRUE);
    }

    /// The result while a box with this text comes up and is answered.
    int UploadWithBox(const dbCPatient& patient, const std::string& text, int nButton = IDOK)
    {
        return veltest::RunModal([&] { return Upload(patient); },
                                 [&](DialogScript& script) { script.AnswerBox(text, nButton); });
    }

    void Execute(const char* sql) const
    {
        sqlite3* database = nullptr;
        sqlite3_open(m_practice.Path("patients.db").c_str(), &database);
        EXPECT_EQ(sqlite3_exec(database, sql, nullptr, nullptr, nullptr), SQLITE_OK);
        sqlite3_close(database);
    }
    static int Pending(const dbCPatient& patient)
    {
        return dbCRaskoTasksContainer().LoadPending(patient.GetGUID());
    }
};
} // namespace

TEST_F(Queue, WritesOneWholeTaskAndWakesTheProgram)
{
    const dbCPatient patient = StorePatient("A1", 2);
    m_practice.WriteFile("working\\A100.V2A", "12345");
    EXPECT_EQ(Upload(patient, {{true, false, false}, "bob; eve@e.example", "see 2"}), velQueued);
    EXPECT_THAT(m_program.m_calls, ElementsAre("register 11", "recipients bob; eve@e.example|see 2", "wake"));
    dbCRaskoTasksContainer tasks;
    ASSERT_EQ(tasks.LoadPending(patient.GetGUID()), 1);
    const dbSRaskoTask& task = tasks[0];
    EXPECT_EQ(task.nTotalBytes, 11);
    EXPECT_STREQ(task.strPatientID + task.strPatientGUID, "41" + patient.GetGUID());
    CVelXML xml;
    CString expected;
    xml.BuildPatientXml(patient, expected, {true, false, false});
    EXPECT_STREQ(task.strData, expected);

    // A patient who came from another practice is registered as this one's.
    const dbCPatient received = StorePatient("C1");
    dbCServicePatients::Store({received.GetGUID(), "12", "{G}", "{O}"});
    m_program.m_calls.clear();
    EXPECT_EQ(Upload(received), velQueued);
    EXPECT_THAT(m_program.m_calls, ElementsAre("register 3", "wake"));

    // While it is pending there is no second one, of whichever computer it is.
    m_program.m_calls.clear();
    CFarreachVeltrix again(m_program);
    EXPECT_EQ(again.QueueUpload(patient, {}, TRUE), velQueueExists);
    EXPECT_TRUE(again.GetOtherComputer().IsEmpty());
    EXPECT_EQ(Pending(patient), 1);
    EXPECT_TRUE(m_program.m_calls.empty());
    const dbCPatient other = StorePatient("B1");
    dbSRaskoTask foreign;
    foreign.strPatientGUID = other.GetGUID();
    foreign.strQueueComputer = "FRONTDESK";
    foreign.nStatus = 57;
    dbCRaskoTasksContainer::InsertRow(foreign);
    EXPECT_EQ(again.QueueUpload(other, {}, TRUE), velQueueExists);
    EXPECT_STREQ(again.GetOtherComputer(), "FRONTDESK");
}

TEST_F(Queue, RefusesWhatCannotBeUploaded)
{
    const dbCPatient patient = StorePatient("C1");
    m_program.m_strRefusal = "No room is left.";
    EXPECT_EQ(UploadWithBox(patient, "No room is left."), velQueueRefused);
    m_program.m_bInstalled = false;
    EXPECT_EQ(UploadWithBox(patient, "There is no Rasko program installed on your computer."),
              velQueueNoProgram);
    EXPECT_EQ(CFarreachVeltrix(m_program).CheckRasko(FALSE), velQueueNoProgram);
    EXPECT_EQ(Pending(patient), 0);
    EXPECT_THAT(m_program.m_calls, ElementsAre("register 3"));

    Execute("DROP TABLE raskoTasks");
    const std::string missing =
        "A required database table, raskoTasks, does not exist. Please contact Veltrix "
        "support for assistance.";
    EXPECT_EQ(UploadWithBox(patient, missing), velQueueNoTable);
    EXPECT_EQ(RunList([&](DialogScript& script) { script.AnswerBox(missing, IDOK); }), IDCANCEL);
}

TEST_F(Queue, ReportsEachPatientOfSeveral)
{
    // A program that is not registered and cannot be run: nothing of it comes up.
    m_practice.Set("Environment", "velrasko", "32");
    m_practice.WriteFile("sys\\velrasko.exe", "");
    EXPECT_STREQ(velCTransferProgram::GetPath(), m_practice.Path("sys\\velrasko.exe").c_str());
    StorePatient("A1", 2);
    ::DeleteFile(m_practice.Path("working\\A101.I2A").c_str());
    StorePatient("B1", 0);
    dbCPatient patient = StorePatient("C1");
    patient.SetBirthdate(velCDate());
    patient.Save();
    // One that the database refuses costs neither the others nor the report.
    dbCServicePatients::Store({StorePatient("F1").GetGUID(), "41", "{F}"});
    Execute("CREATE TRIGGER refused BEFORE INSERT ON raskoTasks WHEN NEW.description LIKE '%F1' "
            "BEGIN SELECT RAISE(ABORT, 'refused'); END");
    dbSRaskoTask pending;
    for (const auto& [id, computer] : {std::pair("D1", CFarreachVeltrix::GetComputer()), {"E1", "FRONTDESK"}})
    {
        pending.strPatientGUID = StorePatient(id).GetGUID();
        pending.strQueueComputer = computer;
        dbCRaskoTasksContainer::InsertRow(pending);
    }
    const auto cancel = [](DialogScript& script) {
        const veltest::Dialog dialog = script.WaitForDialog("Save Patient To Internet");
        EXPECT_EQ(dialog.Item(IDC_CLD_PATIENTS).Text(), "The record of Zo\xeb Lee will be uploaded.");
        dialog.Press(IDCANCEL);
    };
    EXPECT_FALSE(veltest::RunModal([] { return velSavePatientsToInternet(nullptr, {"A1"}); }, cancel));
    EXPECT_FALSE(veltest::RunModal(
        [] {
            return velSavePatientsToInternet(nullptr, {"F1", "A1", "B1", "C1", "D1", "E1", "NONE"});
        },
        [](DialogScript& script) {
            const veltest::Dialog dialog = script.WaitForDialog("Save Patient To Internet");
            EXPECT_EQ(dialog.Item(IDC_CLD_PATIENTS).Text(), "The records of 7 patients will be uploaded.");
            dialog.Press(IDOK);
            script.AnswerBox(NoBirthDate, IDOK);
            script.AnswerBox("Error loading patient sID: F1\n"
                             "Patient sID: A1 has some or all images missing. It can not be uploaded.\n"
                             "Patient sID: B1 has no images. It can not be uploaded.\n"
                             "Patient ID: C1 was not queued.\n"
                             "Patient ID: D1 already exists in rasko queue.\n"
                             "Patient ID: E1 has already been queued on computer, \"FRONTDESK\".\n"
                             "Error loading patient sID: NONE",
                             IDOK);
        }));

    velCTransferProgram program;
    const std::string notRegistered =
        "The Veltrix Rasko has not be registered and I was unable to manually run "
        "Rasko.\nConfirm that VelRasko.exe is in the correct location and try again.";
    EXPECT_FALSE(veltest::RunModal([&] { return program.Wake(); },
                                   [&](DialogScript& script) { script.AnswerBox(notRegistered, IDOK); }));
    m_practice.Set("Environment", "velrasko", "64");
    EXPECT_STREQ(velCTransferProgram::GetPath(), m_practice.Path("sys\\velrasko64.exe").c_str());
}

TEST_F(Queue, ChecksTheSettingUpInItsOrder)
{
    const dbCPatient patient = StorePatient("A1");
    m_program.m_bCredentials = false;
    const std::string ask = "Veltrix Rasko, the module that handles uploading records to FarreachVeltrix "
                            "needs to be set up before you "
                            "can upload patient records.  Would you like to setup Rasko now?";
    // Each fault stands before the ones above it.
    const struct
    {
        std::string folder, box;
        int nAnswer;
    } cases[] = {
        {m_practice.Path("temp"), "You must setup Rasko before you can upload records\nUnable to continue.",
         IDOK},
        {"Q:\\no disk",
         "There is no Rasko folder. When Rasko starts please go\nto 'Options' and configure your settings.",
         IDOK},
        // Where not even an administrator makes a file.
        {"Z:\\proc", "You do not have write access to:\n  Z:\\proc\nPlease correct this and try again.",
         IDOK},
        {"", ask, IDNO},
        {"", ask, IDYES}};
    for (const auto& c : cases)
    {
        EXPECT_TRUE(m_program.m_calls.empty());
        dbCApplicationOptionsContainer::SetApplicationOption("RASKOPATH", c.folder.c_str());
        EXPECT_EQ(UploadWithBox(patient, c.box, c.nAnswer), velQueueRefused);
    }
    EXPECT_THAT(m_program.m_calls, ElementsAre("options"));
    EXPECT_EQ(Pending(patient), 0);

    // Several patients are asked about once.
    CFarreachVeltrix queue(m_program);
    EXPECT_EQ(queue.QueueUpload(patient, {}, FALSE), velQueueRefused);
    EXPECT_EQ(queue.QueueUpload(patient, {}, TRUE), velQueueRefused);
}

TEST_F(Queue, TakesNoDownloadThatHasNoWholeManifest)
{
    CFarreachVeltrix queue(m_program);
    for (const char* broken :
         {"", "<patient/>", "<a><patient patID='1'/><patient patID='2'/></a>", "<patient patID='1'"})
        EXPECT_EQ(queue.QueueDownload(broken), velQueueLoadError) << broken;
    dbCRaskoTasksContainer tasks;
    EXPECT_EQ(tasks.LoadQueuedBy(CFarreachVeltrix::GetComputer(), 0), 0);
}
