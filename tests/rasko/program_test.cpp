// The transfer program as a process, between two practices and the service.
#include "suite/patients/velpat.h"
#include "suite/rasko/program/credentials.h"
#include "suite/rasko/raskoapi.h"
#include "suite/rasko/transfer/platform.h"
#include "suite/rasko/transfer/transfer.h"
#include "tests/support/mfctestprogram.h"
#include "tests/support/recordservice.h"
#include "tests/support/temporarypractice.h"

#include <gmock/gmock.h>
#include <objbase.h>
#include <oleauto.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>

VEL_MFC_TEST_PROGRAM();

namespace
{
constexpr DWORD Patience = 60'000;
constexpr char Guid[] = "{00000000-0000-4000-8000-000000000001}";

std::string Md5(const std::string& bytes)
{
    const auto digest = rasko::NewDigest(32);
    digest->Add(bytes.data(), bytes.size());
    return digest->Finish();
}

bool WaitFor(const std::function<bool()>& condition)
{
    for (DWORD end = GetTickCount() + Patience; GetTickCount() < end; Sleep(20))
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

bool HasFiles(const std::string& folder)
{
    return !std::filesystem::is_empty(folder);
}

/// A practice with a database that the program finds, set up for the service as one of its users.
class Practice
{
public:
    Practice(const veltest::RecordService& service, const rasko::Credentials& credentials)
        : host(service.Host())
    {
        const std::string database = files.Path("patients.db");
        files.Set("Environment", "DATABASE", database);
        dbCPatients::Create(database.c_str());
        CreateDirectoryA(files.Path("rasko").c_str(), nullptr);
        dbCApplicationOptionsContainer::SetApplicationOption("RASKOTARGET", host.c_str());
        dbCApplicationOptionsContainer::SetApplicationOption("RASKOPATH", files.Path("rasko").c_str());
        rasko::StoreCredentials(host, credentials);
    }
    ~Practice()
    {
        dbCPatients::Close();
        rasko::StoreCredentials(host, {});
    }
    Practice(const Practice&) = delete;
    Practice& operator=(const Practice&) = delete;

    __int64 Queue(int type, const std::string& data, const char* computer = nullptr) const
    {
        char name[MAX_COMPUTERNAME_LENGTH + 1] = "";
        DWORD size = sizeof name;
        GetComputerNameA(name, &size);
        dbSRaskoTask task;
        task.nType = type;
        task.strPatientGUID = Guid;
        task.strDescription = "Ames, Anna - A1";
        task.strData = data.c_str();
        task.strQueueComputer = computer ? computer : name;
        dbCRaskoTasksContainer::InsertRow(task);
        return task.nTask;
    }
    /// Status and reason of a row.
    static std::pair<int, std::string> State(__int64 number)
    {
        dbSRaskoTask row;
        return dbCRaskoTasksContainer::FindRow(number, row)
                   ? std::pair(row.nStatus, std::string(row.strReason))
                   : std::pair(-99, std::string());
    }

    veltest::TemporaryPractice files;
    std::string host;
};

/// The program's process; ended by the destructor.
class Program
{
public:
    explicit Program(const char* arguments = rasko::HiddenSwitch)
    {
        char folder[MAX_PATH];
        GetModuleFileNameA(nullptr, folder, MAX_PATH);
        *strrchr(folder, '\\') = '\0';
        std::string line = "\"" + std::string(folder) + "\\" + rasko::ProgramFile + "\" " + arguments;
        STARTUPINFOA start{};
        start.cb = sizeof start;
        EXPECT_TRUE(CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                                   &m_process));
    }
    ~Program()
    {
        // COM keeps the registration of a server that is killed.
        if (const HWND window = FindWindowA(rasko::WindowClass, nullptr))
            PostMessageA(window, WM_COMMAND, ID_APP_EXIT, 0);
        if (WaitForSingleObject(m_process.hProcess, 5'000) != WAIT_OBJECT_0)
            Kill();
        CloseHandle(m_process.hProcess);
        CloseHandle(m_process.hThread);
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    void Kill() const
    {
        TerminateProcess(m_process.hProcess, 9);
        WaitForSingleObject(m_process.hProcess, Patience);
    }
    bool Ends() const
    {
        return WaitForSingleObject(m_process.hProcess, Patience) == WAIT_OBJECT_0;
    }
    static HWND Window()
    {
        HWND window = nullptr;
        WaitFor([&window] { return (window = FindWindowA(rasko::WindowClass, nullptr)) != nullptr; });
        return window;
    }

private:
    PROCESS_INFORMATION m_process{};
};

/// The automation object, late bound.
class Automation
{
public:
    Automation()
    {
        CLSID id;
        const std::wstring name(rasko::ProgId, rasko::ProgId + sizeof rasko::ProgId - 1);
        EXPECT_EQ(CLSIDFromProgID(name.c_str(), &id), S_OK);
        EXPECT_EQ(CoCreateInstance(id, nullptr, CLSCTX_LOCAL_SERVER, IID_IDispatch,
                                   reinterpret_cast<void**>(&m_object)),
                  S_OK);
    }
    ~Automation()
    {
        if (m_object)
            m_object->Release();
    }
    Automation(const Automation&) = delete;
    Automation& operator=(const Automation&) = delete;

    std::string Call(const wchar_t* member, const std::vector<std::wstring>& arguments = {}) const
    {
        DISPID id = 0;
        LPOLESTR name = const_cast<LPOLESTR>(member);
        if (!m_object || FAILED(m_object->GetIDsOfNames(IID_NULL, &name, 1, 0, &id)))
            return "no such member";
        std::vector<VARIANT> values(arguments.size());
        for (std::size_t i = 0; i < arguments.size(); ++i)
        {
            VARIANT& value = values[arguments.size() - 1 - i];
            value.vt = VT_BSTR;
            value.bstrVal = SysAllocString(arguments[i].c_str());
        }
        DISPPARAMS parameters{values.data(), nullptr, static_cast<UINT>(values.size()), 0};
        VARIANT result;
        VariantInit(&result);
        const HRESULT done = m_object->Invoke(id, IID_NULL, 0, DISPATCH_METHOD | DISPATCH_PROPERTYGET,
                                              &parameters, &result, nullptr, nullptr);
        for (VARIANT& value : values)
            VariantClear(&value);
        VariantChangeType(&result, &result, 0, VT_BSTR);
        const std::string text = FAILED(done)           ? "failed"
                                 : result.vt == VT_BSTR ? CString(result.bstrVal).GetString()
                                                        : "";
        VariantClear(&result);
        return text;
    }

private:
    IDispatch* m_object = nullptr;
};

class ProgramTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        CoInitialize(nullptr);
        EXPECT_TRUE(Program("/RegServer").Ends());
    }
    static void TearDownTestSuite()
    {
        CoUninitialize();
    }
    static std::string Document(const std::map<std::string, std::string>& files)
    {
        std::string document =
            "<patient patientid=\"A1\" id=\"" + std::string(Guid) +
            "\" last=\"M\xFCller\" first=\"Anna\"><timepoints><timepoint file=\"A107\"><images>";
        for (const auto& [name, bytes] : files)
            document += "<image file=\"" + name + "\" signature=\"" + Md5(bytes) + "\"/>";
        return document + "</images></timepoint></timepoints></patient>";
    }
    static std::string Manifest(const std::map<std::string, std::string>& files, const char* number)
    {
        std::string manifest = "<patient patID=\"B9\" frvPatId=\"" + std::string(number) + "\"><images>";
        for (const auto& [name, bytes] : files)
            manifest += "<image imgfilename=\"" + name + "\" finalfilename=\"B9" + name.substr(2) +
                        "\" imageExists=\"0\" imgfileSignature=\"" + Md5(bytes) + "\"/>";
        return manifest + "</images></patient>";
    }

    veltest::RecordService service;
    const rasko::Credentials anna{"anna", "first secret"};
};

TEST_F(ProgramTest, SaysWhyAndGoesOnWhenItIsWoken)
{
    const Practice practice(service, {"anna", "wrong"});
    practice.files.WriteFile("working\\A107.I0A", "image");
    const std::string document = Document({{"A107.I0A", "image"}});
    const __int64 refused = practice.Queue(dbSRaskoTask::UPLOAD, document);
    const Program program("");
    EXPECT_TRUE(WaitFor([&] { return Practice::State(refused).first == rasko::Failed; }));
    EXPECT_EQ(Practice::State(refused).second, "The service does not accept the user name and the password.");

    // Nobody listens there: the task waits, and a wake-up tries it again.
    dbCApplicationOptionsContainer::SetApplicationOption("RASKOTARGET", "localhost:1");
    rasko::StoreCredentials("localhost:1", anna);
    const HWND window = Program::Window();
    const UINT wake = RegisterWindowMessageA(rasko::WakeMessage);
    const __int64 waiting = practice.Queue(dbSRaskoTask::UPLOAD, document);
    PostMessageA(window, wake, 0, 0);
    EXPECT_TRUE(WaitFor([&] { return !Practice::State(waiting).second.empty(); }));
    EXPECT_LT(Practice::State(waiting).first, rasko::Finished);
    EXPECT_TRUE(IsWindowVisible(window));
    rasko::StoreCredentials("localhost:1", {});

    dbCApplicationOptionsContainer::SetApplicationOption("RASKOTARGET", practice.host.c_str());
    rasko::StoreCredentials(practice.host, anna);
    PostMessageA(window, wake, 0, 0);
    EXPECT_TRUE(WaitFor([&] { return Practice::State(waiting).first == rasko::Finished; }))
        << Practice::State(waiting).second;
    EXPECT_EQ(Practice::State(waiting).second, "");

    const Automation automation;
    EXPECT_EQ(automation.Call(L"UserName"), "anna");
    EXPECT_EQ(automation.Call(L"Password"), "first secret");
    EXPECT_EQ(automation.Call(L"HasCredentials"), "-1");
    rasko::StoreCredentials(practice.host, {});
    EXPECT_EQ(automation.Call(L"HasCredentials"), "0");
    automation.Call(L"EnterCredentials");
    HWND options = nullptr;
    EXPECT_TRUE(WaitFor([&] {
        return (options = FindWindowA("#32770", "Veltrix Rasko Options")) && IsWindowVisible(options);
    }));
    PostMessageA(options, WM_COMMAND, IDCANCEL, 0);
    // The user's name is where it belongs, the password in no file of practice and service.
    const std::filesystem::path atService = "Z:" + std::string(std::getenv("VEL_SERVICE_DATA"));
    EXPECT_THAT(FilesWith("anna@one.example", atService), testing::Not(testing::IsEmpty()));
    for (const std::string secret : {"first secret", "first+secret"})
    {
        EXPECT_THAT(FilesWith(secret, practice.files.Folder()), testing::IsEmpty());
        EXPECT_THAT(FilesWith(secret, atService), testing::IsEmpty());
    }
}
// Last: COM keeps a killed server's registration for a while.
TEST_F(ProgramTest, CarriesAPatientAcrossKillsOfItself)
{
    const std::map<std::string, std::string> images = {
        {"A107.I0A", std::string(20'000'000, 'i') + "end"}, {"A107.V0A", ""}, {"A107.I1A", "third"}};
    std::string number;
    {
        const Practice sender(service, anna);
        for (const auto& [name, bytes] : images)
            sender.files.WriteFile("working\\" + name, bytes);
        {
            const Program program;
            ASSERT_NE(Program::Window(), nullptr);
            const Automation automation;
            EXPECT_EQ(automation.Call(L"RegisterPatient", {L"{00000000-0000-4000-8000-000000000001}", L"1"}),
                      "");
            dbSServicePatient row;
            ASSERT_TRUE(dbCServicePatients::FindByGUID(Guid, row));
            number = row.strServiceID;
            EXPECT_EQ(automation.Call(L"SetRecipients", {L"{00000000-0000-4000-8000-000000000001}",
                                                         L" bert@two.example; bert ;", L"f\x00FCr"}),
                      "");
            EXPECT_THAT(automation.Call(L"SetRecipients",
                                        {L"{00000000-0000-4000-8000-000000000001}", L"nobody", L""}),
                        testing::HasSubstr("nobody"));
            automation.Call(L"Quit");
            EXPECT_TRUE(program.Ends());
        }
        const __int64 foreign = sender.Queue(dbSRaskoTask::UPLOAD, Document(images), "another computer");
        const __int64 task = sender.Queue(dbSRaskoTask::UPLOAD, Document(images));
        {
            const Program program;
            ASSERT_TRUE(WaitFor([&] { return Practice::State(task).first > 0; }))
                << Practice::State(task).second;
            program.Kill();
            EXPECT_LT(Practice::State(task).first, rasko::Finished);
        }
        const Program program;
        EXPECT_TRUE(WaitFor([&] { return Practice::State(task).first == rasko::Finished; }))
            << Practice::State(task).second;
        EXPECT_EQ(Practice::State(foreign), std::pair(-2, std::string()));
    }
    const Practice receiver(service, {"bert", "second secret"});
    const __int64 task = receiver.Queue(dbSRaskoTask::DOWNLOAD, Manifest(images, number.c_str()));
    {
        const Program program;
        ASSERT_TRUE(WaitFor([&] { return HasFiles(receiver.files.Path("rasko")); }));
        program.Kill();
    }
    const Program program;
    EXPECT_TRUE(WaitFor([&] { return Practice::State(task).first == rasko::Finished; }))
        << Practice::State(task).second;
    for (const auto& [name, bytes] : images)
        EXPECT_EQ(Md5(receiver.files.ReadFile("working\\B9" + name.substr(2))), Md5(bytes)) << name;
    EXPECT_FALSE(HasFiles(receiver.files.Path("rasko")));
}

} // namespace
