// A patient on the way from one practice to another: the module as a host loads it, with the transfer program
// and the service as the processes they are.
#include "cloud/res/cloudres.h"
#include "patient/patientres.h"
#include "suite/patients/records/dbemails.h"
#include "suite/rasko/program/credentials.h"
#include "suite/rasko/raskoapi.h"
#include "tests/archive/archivefixture.h"
#include "tests/support/exchangeuser.h"
#include "tests/support/recordservice.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <process.h>

using testing::ElementsAre;
using veltest::Dialog;
using veltest::DialogScript;

namespace
{
constexpr DWORD Patience = 60'000; // milliseconds
constexpr int MostKills = 8;       // of one transfer

bool WaitFor(const std::function<bool()>& condition)
{
    for (const DWORD start = ::GetTickCount(); ::GetTickCount() - start < Patience; ::Sleep(5))
        if (condition())
            return true;
    return false;
}

std::string ProgramFolder()
{
    char path[MAX_PATH] = "";
    ::GetModuleFileName(nullptr, path, MAX_PATH);
    return std::filesystem::path(path).parent_path().string();
}

HANDLE StartProgram(const char* pszSwitch)
{
    const std::string program = ProgramFolder() + "\\" + rasko::ProgramFile;
    const intptr_t nProcess = ::_spawnl(_P_NOWAIT, program.c_str(), rasko::ProgramFile, pszSwitch, nullptr);
    EXPECT_NE(nProcess, -1);
    return reinterpret_cast<HANDLE>(nProcess);
}

/// The running transfer program, whoever has started it; none for a null handle.
HANDLE RunningProgram()
{
    DWORD nProcess = 0;
    const HWND window = ::FindWindow(rasko::WindowClass, nullptr);
    if (window == nullptr || ::GetWindowThreadProcessId(window, &nProcess) == 0)
        return nullptr;
    return ::OpenProcess(SYNCHRONIZE | PROCESS_TERMINATE, FALSE, nProcess);
}

void AwaitEnd(HANDLE process)
{
    EXPECT_EQ(::WaitForSingleObject(process, Patience), WAIT_OBJECT_0);
    ::CloseHandle(process);
}

void KillProgram()
{
    const HANDLE process = RunningProgram();
    ASSERT_NE(process, nullptr);
    ::TerminateProcess(process, 9);
    AwaitEnd(process);
}

void WakeProgram()
{
    ::PostMessage(::FindWindow(rasko::WindowClass, nullptr), ::RegisterWindowMessage(rasko::WakeMessage), 0,
                  0);
}

class WholePath : public ArchiveDialogTest
{
protected:
    static void SetUpTestSuite()
    {
        AwaitEnd(StartProgram("/RegServer"));
    }
    WholePath()
    {
        m_practice.Set("Environment", "SYS", ProgramFolder());
        UseFirst();
    }
    ~WholePath() override
    {
        veltest::EndTransferProgram();
        ForgetCredentials();
    }
    void ForgetCredentials() const
    {
        rasko::StoreCredentials(m_service.Host(), {});
    }

    /// There is one transfer program, and it works for the practice that it was started with.
    void UseFirst()
    {
        veltest::EndTransferProgram();
        rasko::StoreCredentials(m_service.Host(), {"anna", "first secret"});
        UseFirstPractice();
        m_practice.Set("Environment", "DATABASE", m_practice.Path("patients.db"));
    }
    void UseSecond()
    {
        veltest::EndTransferProgram();
        rasko::StoreCredentials(m_service.Host(), {"bert", "second secret"});
        UseSecondPractice();
        m_practice.Set("Environment", "DATABASE", m_practice.Path("patients2.db"));
    }
    /// Where the user would set the program up: everything but the credentials.
    void SetUpTransfers(const std::string& folder)
    {
        std::filesystem::create_directories(m_practice.Path(folder));
        dbCApplicationOptionsContainer::SetApplicationOption("RASKOPATH", m_practice.Path(folder).c_str());
        dbCApplicationOptionsContainer::SetApplicationOption("RASKOTARGET", m_service.Host().c_str());
    }
    void EnterOptions(DialogScript& script, const char* pszUser, const char* pszPassword,
                      const std::string& folder)
    {
        std::filesystem::create_directories(m_practice.Path(folder));
        veltest::EnterTransferOptions(script, pszUser, pszPassword, m_service.Host(),
                                      m_practice.Path(folder));
    }
    /// The archive dialog with one of its internet operations chosen; the script goes on behind its OK.
    __int64 Exchange(int nChoice, const std::vector<std::string>& ids,
                     const std::function<void(DialogScript&, const Dialog& choice)>& play)
    {
        return Run(ARCHIVE_OP_LOAD, ids, {}, [&](DialogScript& script) {
            script.SetPatience(Patience);
            const Dialog choice = WaitForChoice(script);
            choice.Press(nChoice);
            choice.Press(IDOK);
            play(script, choice);
        });
    }
    __int64 Upload(const std::string& id, const std::string& recipients = {})
    {
        return Exchange(IDC_ARC_SAVE_INTERNET, {id}, [&](DialogScript& script, const Dialog&) {
            const Dialog upload = script.WaitForDialog("Save Patient To Internet");
            upload.Item(IDC_CLD_RECIPIENTS).SetText(recipients);
            upload.Press(IDOK);
            script.WaitForDialog("Transfers").Press(IDOK);
        });
    }
    /// Takes the record of this patient, signing in when that is asked for; `settle` answers what comes then.
    __int64 Download(const std::string& id, const DialogScript::Script& settle)
    {
        return Exchange(IDC_ARC_GET_INTERNET, {}, [&](DialogScript& script, const Dialog&) {
            script.WaitUntil("the list", [&] {
                if (script.FindDialog("Waiting for Rasko"))
                    SignInHere(script);
                return script.FindDialog("Get Patient From Internet").has_value();
            });
            const Dialog list = script.WaitForDialog("Get Patient From Internet");
            const auto rows = list.Item(IDC_CLD_LIST).Rows();
            const auto row =
                std::find_if(rows.begin(), rows.end(), [&](const auto& cells) { return cells[4] == id; });
            list.Item(IDC_CLD_LIST).SelectRow(static_cast<int>(row - rows.begin()));
            script.WaitUntil("OK can be pressed", [&] { return list.Item(IDOK).IsEnabled(); });
            list.Press(IDOK);
            settle(script);
        });
    }
    /// The second practice's user, where the transfer program cannot be asked.
    static void SignInHere(DialogScript& script)
    {
        script.WaitForDialog("Waiting for Rasko").Press(IDC_CLD_SIGN_IN_HERE);
        const Dialog signIn = script.WaitForDialog("Sign In to FarreachVeltrix");
        signIn.Item(IDC_CLD_USER).SetText("bert");
        signIn.Item(IDC_CLD_PASSWORD).SetText("second secret");
        signIn.Press(IDOK);
        signIn.WaitForClosed();
    }
    static dbSRaskoTask LastTask()
    {
        dbCRaskoTasksContainer tasks;
        tasks.LoadQueuedBy(dbGetComputerName(), 0);
        return tasks.IsEmpty() ? dbSRaskoTask() : tasks[tasks.GetCount() - 1];
    }
    static bool IsDone()
    {
        return LastTask().nStatus == dbSRaskoTask::STATUS_FINISHED;
    }
    /// Ends the program and the service in turns, each time the last task has come a step further, until it
    /// is done.
    void EndWithKills()
    {
        int nSeen = -3;
        int nKills = 0;
        ASSERT_TRUE(WaitFor([&] {
            const dbSRaskoTask task = LastTask();
            if (task.nStatus >= dbSRaskoTask::STATUS_FINISHED)
                return true;
            if (::FindWindow(rasko::WindowClass, nullptr) == nullptr)
                return false;
            if (!task.strReason.IsEmpty()) // it has met no service, and would try again in a minute
                WakeProgram();
            if (task.nStatus == nSeen || nKills == MostKills)
                return false;
            nSeen = task.nStatus;
            if (nKills++ % 2 != 0)
                m_service.Kill();
            else
            {
                KillProgram();
                ::CloseHandle(StartProgram(rasko::HiddenSwitch));
            }
            return false;
        })) << LastTask().nStatus
            << " " << LastTask().strReason;
        EXPECT_EQ(LastTask().nStatus, dbSRaskoTask::STATUS_FINISHED) << LastTask().strReason;
        EXPECT_GE(nKills, 3);
    }
    static dbCPatient Stored(const std::string& id)
    {
        dbCPatient patient;
        EXPECT_TRUE(patient.Load(id.c_str()));
        return patient;
    }
    veltest::RecordService m_service;
};

/// Everything that a record has a place for.
void AddCarried(dbCPatient& patient)
{
    dbCDoctor doctor;
    doctor.GetPerson().SetLastname("O'Hara & <Co>");
    doctor.GetPerson().SetFirstname("\"Ren\xe9\"");
    doctor.GetPerson().SetTitle("Dr.");
    dbCAddress office;
    office.SetType("O");
    office.SetCompany("Smile");
    office.SetCity("K\xf6ln");
    doctor.GetPerson().SetAddress(0, office);
    doctor.Save();
    dbCPersonEmails emails;
    emails.Add("rene@one.example");
    emails.Add("office@one.example");
    emails.Save(doctor.GetGUID());
    patient.AddPersonInfo(dbPersonTreatingDoctor, doctor.GetPerson());
    dbCDoctor referrer;
    referrer.GetPerson().SetLastname("van der Berg");
    referrer.GetPerson().SetFirstname("Jan");
    referrer.GetPerson().SetEmail("jan@two.example");
    referrer.Save();
    patient.GetReferrals().AddReferralDoc(referrer.GetGUID(), velCDate(2020, 1, 2));
    patient.SetTitle("Ms.");
    patient.SetSalutation("Dear Zo\xeb");
    patient.SetNickname("\x80uro");
    patient.SetNorm(3);
    patient.SetEmail("zoe@four.example");
    dbCPerson guardian;
    patient.GetPersonInfo(dbPersonGuardian, guardian);
    guardian.SetEmail("eve@four.example");
    patient.SetPersonInfo(dbPersonGuardian, guardian);
    dbCAddress second;
    second.SetType("O");
    second.SetStreet("Second \"Street\"");
    second.SetCountry("Norway");
    patient.SetAddress(1, second);
    patient.Save();
    dbCPatientEmailsContainer rows;
    rows.Add({"{P}", "guardian", "home", "Mrs.", "Eve", "Lee", "eve@three.example"});
    rows.Save(patient.GetGUID());
}
} // namespace

TEST_F(WholePath, APatientArrivesAsItLeft)
{
    dbCPatient patient = StorePatient("A1");
    AddCarried(patient);
    ForgetCredentials();
    // The first upload of a practice sets the transfer program up.
    EXPECT_EQ(Exchange(IDC_ARC_SAVE_INTERNET, {"A1"},
                       [&](DialogScript& script, const Dialog& choice) {
                           script.WaitForDialog("Save Patient To Internet").Press(IDOK);
                           script.AnswerBox(
                               "Veltrix Rasko, the module that handles uploading records to "
                               "FarreachVeltrix needs to be set up before you can upload patient "
                               "records.  Would you like to setup Rasko now?",
                               IDYES);
                           EnterOptions(script, "anna", "first secret", "rasko1");
                           script.AnswerBox("Patient ID: A1 was not queued.", IDOK);
                           choice.Press(IDOK);
                           const Dialog upload = script.WaitForDialog("Save Patient To Internet");
                           for (const int nOption : {IDC_CLD_UNCROPPED, IDC_CLD_OTHER, IDC_CLD_3D})
                               upload.Press(nOption);
                           upload.Item(IDC_CLD_RECIPIENTS).SetText("bert");
                           upload.Item(IDC_CLD_NOTES).SetText("f\xfcr Bert");
                           upload.Press(IDOK);
                           const Dialog transfers = script.WaitForDialog("Transfers");
                           script.WaitUntil("the transfer is done", [&] {
                               return transfers.Item(IDC_CLD_LIST).Rows() ==
                                      std::vector<std::vector<std::string>>{{"Lee A1, Zo\xeb - A1", "Done"}};
                           });
                           EXPECT_EQ(veltest::DialogFindings(transfers.Handle()), "");
                           veltest::SavePicture(transfers.Handle(), "transfers");
                           transfers.Press(IDOK);
                       }),
              IDOK);
    const std::string sent = veltest::CarriedFields(Stored("A1"));
    const auto sentFiles = veltest::CarriedFiles("A1");

    // The other practice has another patient of this ID. Its transfer program has no credentials yet.
    UseSecond();
    ForgetCredentials();
    SetUpTransfers("rasko2");
    StorePatient("A1", 1);
    const std::string other = Describe(Stored("A1"));
    EXPECT_EQ(Exchange(IDC_ARC_GET_INTERNET, {},
                       [&](DialogScript& script, const Dialog&) {
                           script.WaitForDialog("Waiting for Rasko");
                           EnterOptions(script, "bert", "second secret", "rasko2");
                           const Dialog list = script.WaitForDialog("Get Patient From Internet");
                           const auto rows = list.Item(IDC_CLD_LIST).Rows();
                           ASSERT_EQ(rows.size(), 1U);
                           EXPECT_EQ(rows[0][1] + "|" + rows[0][2] + "|" + rows[0][4],
                                     "Lee A1,  Zo\xeb|Ames,  Anna|A1");
                           for (const int nOption : {IDC_CLD_UNCROPPED, IDC_CLD_OTHER, IDC_CLD_3D})
                               list.Press(nOption);
                           list.Item(IDC_CLD_LIST).SelectRow(0);
                           script.WaitUntil("OK can be pressed", [&] { return list.Item(IDOK).IsEnabled(); });
                           list.Press(IDOK);
                           script.AnswerBox(
                               "Do you want to save download options setting for future downloads?", IDYES);
                           // The same name and birth date as the one here: it is somebody else all the same.
                           const Dialog conflict = script.WaitForDialogWith(IDC_IDCONFLICT_ID);
                           conflict.Item(IDC_IDCONFLICT_ID).SetText("B7");
                           conflict.Press(IDOK);
                       }),
              IDOK);
    ASSERT_TRUE(WaitFor(IsDone)) << LastTask().nStatus << " " << LastTask().strReason;
    EXPECT_EQ(veltest::CarriedFields(Stored("B7")), sent);
    EXPECT_TRUE(veltest::CarriedFiles("B7") == sentFiles);
    EXPECT_EQ(Describe(Stored("A1")), other);
    EXPECT_TRUE(std::filesystem::is_empty(m_practice.Path("rasko2")));

    // The owner goes on working with the record and sends it again.
    UseFirst();
    patient = Stored("A1");
    dbCTimepoint added;
    added.SetNumber("A1", 5);
    added.SetName("End");
    added.SetDate(velCDate(2021, 6, 7));
    added.SetImage(2, 0);
    patient.GetTimepoints().Add(&patient, added, FALSE, FALSE);
    patient.Save();
    m_practice.WriteFile("working\\A105.I2A", "new");
    m_practice.WriteFile("working\\A101.I2A", "retouched");
    EXPECT_EQ(Upload("A1"), IDOK);
    ASSERT_TRUE(WaitFor(IsDone)) << LastTask().nStatus << " " << LastTask().strReason;
    const std::string sentAgain = veltest::CarriedFields(Stored("A1"));
    const auto filesAgain = veltest::CarriedFiles("A1");
    EXPECT_TRUE(filesAgain != sentFiles);

    UseSecond();
    const auto written = [&](const char* pszName) {
        return std::filesystem::last_write_time(m_practice.Path(std::string("working2\\") + pszName));
    };
    const auto untouched = written("B700.I2A");
    EXPECT_EQ(Download("A1",
                       [](DialogScript& script) {
                           script.AnswerBox(
                               "Patient ID of the downloaded patient does not match with existing Veltrix "
                               "patient.\nDownloaded patient will be merged to the existing patient.",
                               IDOK);
                       }),
              IDOK);
    ASSERT_TRUE(WaitFor(IsDone)) << LastTask().nStatus << " " << LastTask().strReason;
    EXPECT_EQ(veltest::CarriedFields(Stored("B7")), sentAgain);
    EXPECT_TRUE(veltest::CarriedFiles("B7") == filesAgain);
    EXPECT_TRUE(written("B700.I2A") == untouched);
    EXPECT_EQ(Describe(Stored("A1")), other);
}

TEST_F(WholePath, KillsLoseNothing)
{
    StorePatient("K1", 3, 2'000'000);
    m_practice.WriteFile("working\\K100.V2A", "");
    const auto sent = veltest::CarriedFiles("K1");
    m_practice.Set("Defaults", "UploadUncropped", "1");
    m_practice.Set("Defaults", "UploadOther", "1");
    m_practice.Set("Defaults", "Upload3D", "1");
    SetUpTransfers("rasko1");
    EXPECT_EQ(Upload("K1", "bert"), IDOK);
    EndWithKills();

    UseSecond();
    m_practice.Set("Defaults", "DownloadUncropped", "1");
    m_practice.Set("Defaults", "DownloadOther", "1");
    m_practice.Set("Defaults", "Download3D", "1");
    SetUpTransfers("rasko2");
    // The system may still have the object of a killed program, which cannot be asked for credentials any
    // more.
    EXPECT_EQ(Download("K1", [](DialogScript&) {}), IDOK);
    EndWithKills();
    EXPECT_TRUE(veltest::CarriedFiles("K1") == sent);
    EXPECT_TRUE(std::filesystem::is_empty(m_practice.Path("rasko2")));
}
