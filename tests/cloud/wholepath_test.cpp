// A patient on the way from one practice to another: the module as a host loads it, with the transfer program
// and the service as the processes they are.
#include "cloud/net/velinet.h"
#include "cloud/queue/transferprogram.h"
#include "cloud/res/cloudres.h"
#include "cloud/xml/codepage.h"
#include "cloud/xml/velxml.h"
#include "patient/patientres.h"
#include "suite/rasko/program/credentials.h"
#include "suite/rasko/raskoapi.h"
#include "suite/rasko/transfer/transfer.h"
#include "tests/archive/archivefixture.h"
#include "tests/support/exchangeuser.h"
#include "tests/support/recordservice.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

using testing::HasSubstr;
using testing::IsEmpty;
using veltest::Dialog;
using veltest::DialogScript;
using veltest::WaitFor;

namespace
{
constexpr int MostKills = 8; // of one transfer
constexpr char Guid[] = "{00000000-0000-4000-8000-000000000001}";

/// In a process of its own: what the system has once trusted or refused it remembers.
VEL_CHILD_PROCESS(signIn)
{
    AfxWinInit(::GetModuleHandle(nullptr), nullptr, ::GetCommandLine(), 0);
    CVelInet inet(cloud::AgentName().c_str(), 1, INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr,
                  INTERNET_FLAG_DONT_CACHE);
    inet.SetServerUrl(("https://" + arguments[0]).c_str());
    inet.SetCommandPath("/beta/upload/veltrixserver.asp");
    return veltest::RunModal([&] { return inet.Login("anna", "first secret"); },
                             [&](DialogScript& script) {
                                 if (arguments[1] == "refused")
                                     script.WaitForBox().Press(IDOK);
                             });
}

/// The files below a folder that hold a text, in the code page or in UTF-16.
std::vector<std::string> FilesWith(const std::string& text, const std::filesystem::path& folder)
{
    std::string wide;
    for (const char c : text)
        wide.append({c, '\0'});
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
    {
        std::ostringstream bytes;
        if (entry.is_regular_file())
            bytes << std::ifstream(entry.path(), std::ios::binary).rdbuf();
        if (bytes.str().find(text) != std::string::npos || bytes.str().find(wide) != std::string::npos)
            found.push_back(entry.path().string());
    }
    return found;
}

void AwaitEnd(HANDLE process)
{
    EXPECT_EQ(::WaitForSingleObject(process, veltest::ProgramPatience), WAIT_OBJECT_0);
    ::CloseHandle(process);
}

/// Ends the running transfer program as a crash would, and starts another.
void KillProgram()
{
    DWORD nProcess = 0;
    ::GetWindowThreadProcessId(::FindWindow(rasko::WindowClass, nullptr), &nProcess);
    const HANDLE process = ::OpenProcess(SYNCHRONIZE | PROCESS_TERMINATE, FALSE, nProcess);
    ASSERT_NE(process, nullptr);
    ::TerminateProcess(process, 9);
    AwaitEnd(process);
    ::CloseHandle(veltest::StartTransferProgram(rasko::HiddenSwitch));
}

class WholePath : public ArchiveDialogTest
{
protected:
    static void SetUpTestSuite()
    {
        AwaitEnd(veltest::StartTransferProgram("/RegServer"));
    }
    WholePath()
    {
        m_practice.Set("Environment", "SYS", veltest::ProgramFolder());
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
        UsePractice(1);
        m_practice.Set("Environment", "DATABASE", m_practice.Path("patients1.db"));
    }
    void UseSecond()
    {
        veltest::EndTransferProgram();
        rasko::StoreCredentials(m_service.Host(), {"bert", "second secret"});
        UsePractice(2);
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
    static void ChooseEverything(const Dialog& dialog)
    {
        for (const int nOption : {IDC_CLD_UNCROPPED, IDC_CLD_OTHER, IDC_CLD_3D})
            dialog.Press(nOption);
    }
    /// The archive dialog with one of its internet operations chosen; the script goes on behind its OK.
    void Exchange(int nChoice, const std::vector<std::string>& ids,
                  const std::function<void(DialogScript&, const Dialog& choice)>& play)
    {
        EXPECT_EQ(Run(ARCHIVE_OP_LOAD, ids, {},
                      [&](DialogScript& script) {
                          script.SetPatience(veltest::ProgramPatience);
                          const Dialog choice = WaitForChoice(script);
                          choice.Press(nChoice);
                          choice.Press(IDOK);
                          play(script, choice);
                      }),
                  IDOK);
    }
    void Upload(const std::string& id, const std::string& recipients = {})
    {
        Exchange(IDC_ARC_SAVE_INTERNET, {id}, [&](DialogScript& script, const Dialog&) {
            const Dialog upload = script.WaitForDialog("Save Patient To Internet");
            upload.Item(IDC_CLD_RECIPIENTS).SetText(recipients);
            upload.Press(IDOK);
            script.WaitForDialog("Transfers").Press(IDOK);
        });
    }
    /// Takes the record of this patient. `credentials` answers the wait for them, where there is one;
    /// `settle` what comes after the list's OK.
    void Download(const std::string& id, const Script& credentials, const Script& settle,
                  const std::function<void(const Dialog&)>& choose = nullptr)
    {
        Exchange(IDC_ARC_GET_INTERNET, {}, [&](DialogScript& script, const Dialog&) {
            bool bAsked = false;
            script.WaitUntil("the list", [&] {
                if (!bAsked && script.FindDialog("Waiting for Rasko"))
                {
                    bAsked = true;
                    credentials(script);
                }
                return script.FindDialog("Get Patient From Internet").has_value();
            });
            const Dialog list = script.WaitForDialog("Get Patient From Internet");
            const auto rows = list.Item(IDC_CLD_LIST).Rows();
            const auto row =
                std::find_if(rows.begin(), rows.end(), [&](const auto& cells) { return cells[4] == id; });
            ASSERT_NE(row, rows.end());
            EXPECT_EQ((*row)[1] + "|" + (*row)[2], "Lee " + id + ",  Zo\xeb|Ames,  Anna");
            if (choose)
                choose(list);
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
    /// Waits for the end of the last transfer. Ends the program and the service in turns, each time it has
    /// come a step further, as often as that is asked for.
    void AwaitTransfer(int nMostKills = 0)
    {
        int nSeen = -3;
        int nKills = 0;
        WaitFor([&] {
            const dbSRaskoTask task = LastTask();
            if (task.nStatus >= dbSRaskoTask::STATUS_FINISHED)
                return true;
            const HWND program = ::FindWindow(rasko::WindowClass, nullptr);
            if (!task.strReason.IsEmpty()) // it has met no service, and would try again in a minute
                ::PostMessage(program, ::RegisterWindowMessage(rasko::WakeMessage), 0, 0);
            if (program == nullptr || task.nStatus == nSeen || nKills == nMostKills)
                return false;
            nSeen = task.nStatus;
            if (nKills++ % 2 != 0)
                m_service.Kill();
            else
                KillProgram();
            return false;
        });
        ASSERT_EQ(LastTask().nStatus, dbSRaskoTask::STATUS_FINISHED) << LastTask().strReason;
        EXPECT_GE(nKills, std::min(nMostKills, 3));
    }
    /// Puts an upload of one image into the table; answers its number.
    __int64 Queue(const CString& strComputer = dbGetComputerName()) const
    {
        dbSRaskoTask task;
        m_practice.WriteFile("working1\\A107.I0A", "abc");
        task.nType = dbSRaskoTask::UPLOAD;
        task.strPatientGUID = Guid;
        task.strData = "<patient patientid=\"A1\" id=\"" + CString(Guid) +
                       "\" last=\"M\xFCller\" first=\"Anna\"><timepoints><timepoint file=\"A107\"><images>"
                       "<image file=\"A107.I0A\" signature=\"900150983cd24fb0d6963f7d28e17f72\"/></images>"
                       "</timepoint></timepoints></patient>";
        task.strQueueComputer = strComputer;
        dbCRaskoTasksContainer::InsertRow(task);
        return task.nTask;
    }
    static dbSRaskoTask Row(__int64 nTask)
    {
        dbSRaskoTask row;
        EXPECT_TRUE(dbCRaskoTasksContainer::FindRow(nTask, row));
        return row;
    }
    static dbCPatient Stored(const std::string& id)
    {
        dbCPatient patient;
        EXPECT_TRUE(patient.Load(id.c_str()));
        return patient;
    }
    veltest::RecordService m_service;
};
} // namespace

// Before anything has been trusted.
TEST(CertificateTest, AnUntrustedOneIsRefused)
{
    const char* const pszHost = std::getenv("VEL_SERVICE_HOST");
    ASSERT_NE(pszHost, nullptr);
    EXPECT_EQ(veltest::ChildProcess("signIn", {pszHost, "refused"}).Wait(), -1);
    const veltest::RecordService trusted;
    EXPECT_EQ(veltest::ChildProcess("signIn", {pszHost, "trusted"}).Wait(), 0);
}

TEST_F(WholePath, APatientArrivesAsItLeft)
{
    dbCPatient patient = StorePatient("A1");
    dbCPerson guardian;
    patient.GetPersonInfo(dbPersonGuardian, guardian);
    guardian.SetEmail("eve@four.example");
    patient.SetPersonInfo(dbPersonGuardian, guardian);
    veltest::AddCarried(patient);
    ForgetCredentials();
    // The first upload of a practice sets the transfer program up.
    const auto choice = [&] {
        return m_practice.Get("Defaults", "UploadUncropped") + m_practice.Get("Defaults", "UploadOther") +
               m_practice.Get("Defaults", "Upload3D");
    };
    Exchange(IDC_ARC_SAVE_INTERNET, {"A1"}, [&](DialogScript& script, const Dialog& archive) {
        script.WaitForDialog("Save Patient To Internet").Press(IDOK);
        script.WaitForBox().Press(IDYES);
        EnterOptions(script, "anna", "first secret", "rasko1");
        script.AnswerBox("Patient ID: A1 was not queued.", IDOK);
        EXPECT_EQ(choice(), "000");
        archive.Press(IDOK);
        const Dialog upload = script.WaitForDialog("Save Patient To Internet");
        EXPECT_EQ(veltest::DialogFindings(upload.Handle()), "");
        veltest::SavePicture(upload.Handle(), "upload");
        ChooseEverything(upload);
        upload.Item(IDC_CLD_RECIPIENTS).SetText(" bert ");
        upload.Item(IDC_CLD_NOTES).SetText("f\xfcr Bert");
        upload.Press(IDOK);
        const Dialog transfers = script.WaitForDialog("Transfers");
        script.WaitUntil("the transfer is done", [&] {
            return transfers.Item(IDC_CLD_LIST).Rows() ==
                   std::vector<std::vector<std::string>>{{"Lee A1, Zo\xeb - A1", "Done"}};
        });
        transfers.Press(IDOK);
    });
    EXPECT_EQ(choice(), "111");
    const std::string sent = veltest::CarriedFields(Stored("A1"));
    const auto sentFiles = veltest::CarriedFiles("A1");

    // The other practice has another patient of this ID. Its transfer program has no credentials yet.
    UseSecond();
    ForgetCredentials();
    SetUpTransfers("rasko2");
    StorePatient("A1", 1);
    const std::string other = Describe(Stored("A1"));
    const std::string note = "The owner of the record writes:\n\nf\xfcr Bert";
    const auto expectArrived = [&](const std::string& fields, const auto& files) {
        AwaitTransfer();
        EXPECT_EQ(veltest::CarriedFields(Stored("B7")), fields);
        EXPECT_TRUE(veltest::CarriedFiles("B7") == files);
        EXPECT_EQ(Describe(Stored("A1")), other);
        EXPECT_TRUE(std::filesystem::is_empty(m_practice.Path("rasko2")));
    };
    Download(
        "A1", [&](DialogScript& script) { EnterOptions(script, "bert", "second secret", "rasko2"); },
        [&](DialogScript& script) {
            script.AnswerBox("Do you want to save download options setting for future downloads?", IDYES);
            // The same name and birth date as the one here: it is somebody else all the same.
            const Dialog conflict = script.WaitForDialogWith(IDC_IDCONFLICT_ID);
            conflict.Item(IDC_IDCONFLICT_ID).SetText("B7");
            conflict.Press(IDOK);
            script.AnswerBox(note, IDOK);
        },
        ChooseEverything);
    expectArrived(sent, sentFiles);

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
    m_practice.WriteFile("working1\\A105.I2A", "new");
    m_practice.WriteFile("working1\\A101.I2A", "retouched");
    Upload("A1");
    AwaitTransfer();
    const std::string sentAgain = veltest::CarriedFields(Stored("A1"));
    const auto filesAgain = veltest::CarriedFiles("A1");

    UseSecond();
    const auto written = [&] {
        return std::filesystem::last_write_time(m_practice.Path("working2\\B700.I2A"));
    };
    const auto untouched = written();
    Download("A1", nullptr, [&](DialogScript& script) {
        script.AnswerBox(
            "Patient ID of the downloaded patient does not match with existing Veltrix patient.\n"
            "Downloaded patient will be merged to the existing patient.",
            IDOK);
        script.AnswerBox(note, IDOK);
    });
    expectArrived(sentAgain, filesAgain);
    EXPECT_TRUE(written() == untouched);
}

TEST_F(WholePath, TransfersSayWhyAndGoOnWhenTheyAreWoken)
{
    SetUpTransfers("rasko1");
    rasko::StoreCredentials(m_service.Host(), {"anna", "wrong"});
    const __int64 nForeign = Queue("another computer"), nRefused = Queue();
    const HANDLE process = veltest::StartTransferProgram(nullptr);
    EXPECT_TRUE(WaitFor([&] { return Row(nRefused).nStatus == rasko::Failed; }));
    EXPECT_STREQ(Row(nRefused).strReason, "The service does not accept the user name and the password.");

    // Nobody listens there: the task waits, and a wake-up tries it again.
    const auto useService = [](const std::string& host) {
        dbCApplicationOptionsContainer::SetApplicationOption(rasko::OptionService, host.c_str());
        rasko::StoreCredentials(host, {"anna", "first secret"});
    };
    velCTransferProgram program;
    useService("localhost:1");
    const __int64 nWaiting = Queue();
    EXPECT_TRUE(program.Wake());
    EXPECT_TRUE(WaitFor([&] { return !Row(nWaiting).strReason.IsEmpty(); }));
    EXPECT_LT(Row(nWaiting).nStatus, dbSRaskoTask::STATUS_FINISHED);
    EXPECT_TRUE(::IsWindowVisible(::FindWindow(rasko::WindowClass, nullptr)));
    rasko::StoreCredentials("localhost:1", {});
    useService(m_service.Host());
    program.Wake();
    EXPECT_TRUE(WaitFor([&] { return Row(nWaiting).nStatus == dbSRaskoTask::STATUS_FINISHED; }));
    EXPECT_STREQ(Row(nWaiting).strReason, "");
    EXPECT_STREQ(program.SetRecipients(Guid, " bert@two.example; bert ;", "f\xFCr"), "");
    EXPECT_THAT(std::string(program.SetRecipients(Guid, "nobody", "")), HasSubstr("nobody"));
    velCCredentials credentials;
    EXPECT_TRUE(program.GetCredentials(credentials));
    EXPECT_STREQ(credentials.GetUser(), "anna");

    ForgetCredentials();
    EXPECT_FALSE(program.HasCredentials());
    program.EnterCredentials();
    HWND options = nullptr;
    EXPECT_TRUE(WaitFor([&] {
        options = ::FindWindow("#32770", "Veltrix Rasko Options");
        return options != nullptr && ::IsWindowVisible(options);
    }));
    ::PostMessage(options, WM_COMMAND, IDCANCEL, 0);

    // The user's name is where it belongs, the password in no file of practice and service.
    const std::filesystem::path atService = "Z:" + std::string(std::getenv("VEL_SERVICE_DATA"));
    EXPECT_THAT(FilesWith("anna@one.example", atService), testing::Not(IsEmpty()));
    for (const std::string secret : {"first secret", "first+secret"})
        for (const std::filesystem::path& folder : {m_practice.Folder(), atService})
            EXPECT_THAT(FilesWith(secret, folder), IsEmpty());
    EXPECT_EQ(Row(nForeign).nStatus, -2);

    // Whoever binds late finds the members by their names.
    CLSID id = {};
    EXPECT_EQ(::CLSIDFromProgID(velWide(rasko::ProgId).c_str(), &id), S_OK);
    velComPtr<IDispatch> object;
    ASSERT_EQ(::CoCreateInstance(id, nullptr, CLSCTX_LOCAL_SERVER, IID_IDispatch, object.ReceiveVoid()),
              S_OK);
    LPOLESTR pszQuit = const_cast<LPOLESTR>(L"Quit");
    DISPID nMember = 0;
    DISPPARAMS none = {};
    EXPECT_EQ(object->GetIDsOfNames(IID_NULL, &pszQuit, 1, LOCALE_USER_DEFAULT, &nMember), S_OK);
    object->Invoke(nMember, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr);
    AwaitEnd(process);
}

// Last: the system may still have the object of a killed program, which cannot be asked for credentials any
// more.
TEST_F(WholePath, KillsLoseNothing)
{
    StorePatient("K1", 3, 2'000'000);
    m_practice.WriteFile("working1\\K100.V2A", "");
    const auto sent = veltest::CarriedFiles("K1");
    for (const std::string kind : {"Uncropped", "Other", "3D"})
        for (const char* way : {"Upload", "Download"})
            m_practice.Set("Defaults", way + kind, "1");
    SetUpTransfers("rasko1");
    Upload("K1", "bert");
    AwaitTransfer(MostKills);

    UseSecond();
    SetUpTransfers("rasko2");
    Download("K1", SignInHere, [](DialogScript&) {});
    AwaitTransfer(MostKills);
    EXPECT_TRUE(veltest::CarriedFiles("K1") == sent);
    EXPECT_TRUE(std::filesystem::is_empty(m_practice.Path("rasko2")));
}
