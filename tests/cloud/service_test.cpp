// The client, the transfer program as a process, and the real service over TLS.
#include "cloud/net/velinet.h"
#include "cloud/queue/transferprogram.h"
#include "cloud/xml/codepage.h"
#include "cloud/xml/velxml.h"
#include "suite/patients/velpat.h"
#include "suite/rasko/program/credentials.h"
#include "suite/rasko/raskoapi.h"
#include "suite/rasko/transfer/transfer.h"
#include "tests/support/childprocess.h"
#include "tests/support/dialogscript.h"
#include "tests/support/exchangeuser.h"
#include "tests/support/mfctestprogram.h"
#include "tests/support/recordservice.h"
#include "tests/support/temporarypractice.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <process.h>
#include <sstream>

using testing::HasSubstr;
using testing::IsEmpty;
using veltest::DialogScript;

VEL_MFC_TEST_PROGRAM();

namespace
{
constexpr DWORD Patience = 60'000; // milliseconds
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

bool WaitFor(const std::function<bool()>& condition)
{
    for (const DWORD start = ::GetTickCount(); ::GetTickCount() - start < Patience; ::Sleep(20))
        if (condition())
            return true;
    return false;
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

/// A practice whose transfer program is the one beside this program.
class Transfers : public testing::Test
{
protected:
    Transfers()
    {
        char path[MAX_PATH] = "";
        ::GetModuleFileName(nullptr, path, MAX_PATH);
        m_practice.Set("Environment", "SYS", std::filesystem::path(path).parent_path().string());
        m_practice.Set("Environment", "DATABASE", m_practice.Path("patients.db"));
        dbCPatients::Create(m_practice.Path("patients.db").c_str());
        std::filesystem::create_directories(m_practice.Path("rasko"));
        dbCApplicationOptionsContainer::SetApplicationOption("RASKOPATH", m_practice.Path("rasko").c_str());
        ::WaitForSingleObject(Start("/RegServer"), Patience);
    }
    ~Transfers() override
    {
        veltest::EndTransferProgram();
        rasko::StoreCredentials(m_service.Host(), {});
        dbCPatients::Close();
    }
    /// Not closed: there are two in this process.
    static HANDLE Start(const char* pszSwitch)
    {
        const CString strProgram = velCTransferProgram::GetPath();
        return reinterpret_cast<HANDLE>(
            ::_spawnl(_P_NOWAIT, strProgram, rasko::ProgramFile, pszSwitch, nullptr));
    }
    static void UseService(const std::string& host, const char* pszPassword)
    {
        dbCApplicationOptionsContainer::SetApplicationOption(rasko::OptionService, host.c_str());
        rasko::StoreCredentials(host, {"anna", rasko::Secret(pszPassword)});
    }
    /// An upload of one image; answers its number.
    __int64 Queue(const CString& strComputer = dbGetComputerName()) const
    {
        CString strSignature;
        m_practice.WriteFile("working\\A107.I0A", "image");
        CVelXML().GetFileSignature(m_practice.Path("working\\A107.I0A").c_str(), strSignature);
        dbSRaskoTask task;
        task.nType = dbSRaskoTask::UPLOAD;
        task.strPatientGUID = Guid;
        task.strData = "<patient patientid=\"A1\" id=\"" + CString(Guid) +
                       "\" last=\"M\xFCller\" first=\"Anna\"><timepoints><timepoint file=\"A107\"><images>"
                       "<image file=\"A107.I0A\" signature=\"" +
                       strSignature + "\"/></images></timepoint></timepoints></patient>";
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

    veltest::TemporaryPractice m_practice;
    veltest::RecordService m_service;
};
} // namespace

TEST(Service, AnUntrustedCertificateIsRefused)
{
    const char* const pszHost = std::getenv("VEL_SERVICE_HOST");
    ASSERT_NE(pszHost, nullptr);
    EXPECT_EQ(veltest::ChildProcess("signIn", {pszHost, "refused"}).Wait(), -1);
    const veltest::RecordService trusted;
    EXPECT_EQ(veltest::ChildProcess("signIn", {pszHost, "trusted"}).Wait(), 0);
}

TEST_F(Transfers, SayWhyAndGoOnWhenTheyAreWoken)
{
    UseService(m_service.Host(), "wrong");
    const __int64 nForeign = Queue("another computer");
    const __int64 nRefused = Queue();
    const HANDLE process = Start(nullptr);
    EXPECT_TRUE(WaitFor([&] { return Row(nRefused).nStatus == rasko::Failed; }));
    EXPECT_STREQ(Row(nRefused).strReason, "The service does not accept the user name and the password.");

    // Nobody listens there: the task waits, and a wake-up tries it again.
    velCTransferProgram program;
    UseService("localhost:1", "first secret");
    const __int64 nWaiting = Queue();
    EXPECT_TRUE(program.Wake());
    EXPECT_TRUE(WaitFor([&] { return !Row(nWaiting).strReason.IsEmpty(); }));
    EXPECT_LT(Row(nWaiting).nStatus, dbSRaskoTask::STATUS_FINISHED);
    EXPECT_TRUE(::IsWindowVisible(::FindWindow(rasko::WindowClass, nullptr)));
    rasko::StoreCredentials("localhost:1", {});
    UseService(m_service.Host(), "first secret");
    program.Wake();
    EXPECT_TRUE(WaitFor([&] { return Row(nWaiting).nStatus == dbSRaskoTask::STATUS_FINISHED; }));
    EXPECT_STREQ(Row(nWaiting).strReason, "");
    EXPECT_STREQ(program.SetRecipients(Guid, " bert@two.example; bert ;", "f\xFCr"), "");
    EXPECT_THAT(std::string(program.SetRecipients(Guid, "nobody", "")), HasSubstr("nobody"));
    velCCredentials credentials;
    EXPECT_TRUE(program.GetCredentials(credentials));
    EXPECT_STREQ(credentials.GetUser(), "anna");

    rasko::StoreCredentials(m_service.Host(), {});
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
    {
        EXPECT_THAT(FilesWith(secret, m_practice.Folder()), IsEmpty());
        EXPECT_THAT(FilesWith(secret, atService), IsEmpty());
    }
    EXPECT_EQ(Row(nForeign).nStatus, -2);

    // Whoever binds late finds the members by their names.
    CLSID id = {};
    EXPECT_EQ(::CLSIDFromProgID(velWide(rasko::ProgId).c_str(), &id), S_OK);
    velComPtr<IDispatch> object;
    ASSERT_EQ(::CoCreateInstance(id, nullptr, CLSCTX_LOCAL_SERVER, IID_IDispatch, object.ReceiveVoid()),
              S_OK);
    DISPID nMember = 0;
    for (const wchar_t* pszName : rasko::MemberNames)
    {
        LPOLESTR pszMember = const_cast<LPOLESTR>(pszName);
        const DISPID nExpected = nMember + 1;
        EXPECT_EQ(object->GetIDsOfNames(IID_NULL, &pszMember, 1, LOCALE_USER_DEFAULT, &nMember), S_OK);
        EXPECT_EQ(nMember, nExpected);
    }
    DISPPARAMS none = {};
    object->Invoke(rasko::Quit, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &none, nullptr, nullptr,
                   nullptr);
    EXPECT_EQ(::WaitForSingleObject(process, Patience), WAIT_OBJECT_0);
}
