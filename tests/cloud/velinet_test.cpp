// The service's client against a server of this process, and against servers that fail.
#include "cloud/net/serviceoptions.h"
#include "cloud/net/velinet.h"
#include "suite/patients/velpat.h"
#include "tests/cloud/httpserver.h"
#include "tests/support/dialogscript.h"
#include "tests/support/mfctestprogram.h"
#include "tests/support/temporarypractice.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::HasSubstr;
using veltest::DialogScript;
using veltest::HttpServer;
using veltest::Ok;

VEL_MFC_TEST_PROGRAM();

namespace
{
/// Without encryption, so that the server can be this process; everything else as it is.
class PlainInet : public CVelInet
{
public:
    explicit PlainInet(const std::string& address = {})
        : CVelInet(cloud::AgentName().c_str(), 1, INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr,
                   INTERNET_FLAG_DONT_CACHE)
    {
        SetServerUrl(address.c_str());
        SetCommandPath("/s.asp");
        EnableStatusCallback();
    }
    bool m_bRefuse = false;

protected:
    DWORD ConnectionFlags() const override
    {
        return 0;
    }
    BOOL Post(const std::shared_ptr<CHttpFile>& request, const std::string& headers,
              const std::string& line) override
    {
        if (!m_bRefuse)
            return CVelInet::Post(request, headers, line);
        ::SetLastError(MB_YESNO | MB_ICONQUESTION);
        return FALSE;
    }
};

class VelInet : public testing::Test
{
protected:
    veltest::TemporaryPractice m_practice;
};

std::string BodyOf(const std::string& request)
{
    return request.substr(request.find("\r\n\r\n") + 4);
}

/// What a command returns while one message box with this text comes up.
int WithBox(const std::string& text, const std::function<int()>& command)
{
    return veltest::RunModal(command, [&](DialogScript& script) {
        const veltest::Dialog box = script.WaitForBox(text);
        EXPECT_NE(box.BoxText(), "Error on Login: %d\n") << "the system's own text is lost";
        box.Press(IDOK);
    });
}
} // namespace

TEST_F(VelInet, SendsEveryCommandByteForByte)
{
    const HttpServer server(
        [](const std::string&, const veltest::Reply& reply) { reply.Send(Ok("one\r\ntwo\nthree")); });
    PlainInet inet(server.Address());
    _putenv("TZ=WST5"); // five hours west of Greenwich
    _tzset();
    EXPECT_EQ(inet.Login("u ser", "a b&c"), 0);
    _putenv("TZ=");
    _tzset();
    EXPECT_TRUE(inet.IsLoggedIn());
    EXPECT_STREQ(inet.GetResponse(), "onetwothree");
    EXPECT_EQ(inet.Logout(), 0);
    EXPECT_FALSE(inet.IsLoggedIn());
    inet.Login("", "p");
    EXPECT_EQ(inet.DisplayMessage(), 0);
    EXPECT_FALSE(inet.IsLoggedIn());
    EXPECT_EQ(inet.GetList(), 0);
    EXPECT_EQ(inet.GetDownloadable(), 0);
    EXPECT_EQ(inet.GetDownloadPatient("F/1"), 0);
    EXPECT_EQ(inet.GetUpdatedPatients("2020-01-01T00:00"), 200);
    EXPECT_EQ(inet.AddToQueue("<a b=\"\xe9\"/>"), 200);
    EXPECT_EQ(inet.GetRecordInfo("{P}", "7", -1), 200);
    EXPECT_EQ(inet.GetRecordInfoEx("{P}", "7", "r~"), 200);
    EXPECT_EQ(inet.GetAdhocShareInfo("{P}", "7", "a@b.c", 2), 200);
    EXPECT_EQ(inet.StopSharingWith("7", "9"), 200);
    EXPECT_EQ(inet.DeleteFromFrv("{P}", "7"), 200);

    std::vector<std::string> bodies;
    for (const std::string& request : server.Requests())
        bodies.push_back(BodyOf(request));
    EXPECT_THAT(
        bodies,
        ElementsAre("cmd=login&Login=u+ser&password=a+b%26c&tz=300", "cmd=logout",
                    testing::StartsWith("cmd=login&Login=&password=p&tz="), "cmd=displaymessage",
                    "cmd=getlist", "cmd=getdownloadable", "cmd=getdownloadpatient&PatientID=F%2f1",
                    "cmd=updatedpatients&lastQueryTime=2020%2d01%2d01T00%3a00",
                    "cmd=addtoqueue&xmlData=%3ca+b%3d%22%e9%22%2f%3e",
                    "cmd=getrecordinfo&pid=%7bP%7d&id=7&space=%2d1",
                    "cmd=getrecordinfoex&pid=%7bP%7d&id=7&referralinfo=r%7e",
                    "cmd=getadhocshareinfo&pid=%7bP%7d&id=7&emailorusername=a%40b%2ec&recipienttype=2",
                    "cmd=stopsharingwith&id=7&recipientid=9", "cmd=deletefromfrv&pid=%7bP%7d&id=7"));
    const std::string first = server.Requests().front();
    EXPECT_THAT(first, testing::StartsWith("POST /s.asp HTTP/1.1\r\n"));
    EXPECT_THAT(first, HasSubstr("Content-Type: application/x-www-form-urlencoded\r\n"));
    EXPECT_EQ(first.find("User-Agent: VeltrixRasko/12.0.9.58\r\n"), first.rfind("User-Agent:"));
    EXPECT_THAT(first, testing::Not(HasSubstr("velUseFIPS")));

    m_practice.Set("defaults", "FIPS", "On");
    PlainInet(server.Address()).GetList();
    EXPECT_THAT(server.Requests().back(), HasSubstr("velUseFIPS: ON\r\n"));
}

TEST_F(VelInet, KeepsNothingOfARefusal)
{
    std::string status;
    const HttpServer other(
        [](const std::string&, const veltest::Reply& reply) { reply.Send(Ok("elsewhere")); });
    const HttpServer server([&](const std::string&, const veltest::Reply& reply) {
        reply.Send("HTTP/1.1 " + status + "\r\nLocation: " + other.Address() +
                   "/\r\nContent-Length: 3\r\nConnection: close\r\n\r\nbad");
    });
    PlainInet inet(server.Address());
    for (const char* refusal : {"404 None", "500 Broken", "302 Moved", "307 Moved", "204 Nothing"})
    {
        status = refusal;
        EXPECT_EQ(inet.GetDownloadable(), -1) << refusal;
        EXPECT_STREQ(inet.GetResponse(), "");
        EXPECT_EQ(inet.AddToQueue("x"), std::stoi(status));
        EXPECT_EQ(inet.Login("u", "p"), -1);
        EXPECT_FALSE(inet.IsLoggedIn());
        EXPECT_EQ(inet.Logout(), -1);
        EXPECT_TRUE(inet.IsLoggedIn());
        EXPECT_EQ(inet.DisplayMessage(), -1);
        EXPECT_TRUE(inet.IsLoggedIn());
    }
    EXPECT_TRUE(other.Requests().empty()) << "a redirection was followed";
}

TEST_F(VelInet, TellsFailuresAndGoesOn)
{
    std::string answer;
    const HttpServer server([&](const std::string&, const veltest::Reply& reply) { reply.Send(answer); });
    PlainInet inet(server.Address());
    const std::string endless = Ok(std::string(80'000'000, 'x')); // longer than any of the service's
    for (const std::string& broken : {Ok(std::string(100, 'x')).substr(0, 99), endless})
    {
        answer = broken;
        // The status was known by then, and is what the command came to.
        EXPECT_EQ(WithBox("", [&] { return inet.AddToQueue("x"); }), 200);
        EXPECT_STREQ(inet.GetResponse(), "");
    }
    answer = Ok("fine");
    EXPECT_EQ(inet.GetList(), 0);
    EXPECT_STREQ(inet.GetResponse(), "fine");

    inet.m_bRefuse = true;
    // Style and text as they are: the placeholder stays, the error is the style.
    EXPECT_EQ(
        veltest::RunModal([&] { return inet.AddToQueue("x"); },
                          [](DialogScript& script) { script.AnswerBox("Error on Login: %d\n", IDYES); }),
        0);
    EXPECT_STREQ(inet.GetResponse(), "");
}

TEST_F(VelInet, AServerThatNeverAnswersIsGivenUp)
{
    // The system alone would wait for the handshake for ever.
    class Impatient : public CVelInet
    {
    public:
        Impatient() : CVelInet("a", 1, INTERNET_OPEN_TYPE_DIRECT, nullptr, nullptr, 0)
        {
            m_nSendTimeout = 500;
            EnableStatusCallback();
        }
    };
    const HttpServer silent([](const std::string&, const veltest::Reply&) {});
    const DWORD start = ::GetTickCount();
    EXPECT_EQ(WithBox("The request has timed out.",
                      [&] {
                          Impatient inet; // gone before the thread that waits
                          inet.SetServerUrl(silent.Address("https").c_str());
                          inet.SetCommandPath("/s.asp");
                          return inet.GetList();
                      }),
              -1);
    EXPECT_LT(::GetTickCount() - start, 30'000U);
}

TEST_F(VelInet, TakesAddressesApartAndRefusesThoseThatAreNone)
{
    for (const char* address : {"", "https://", "localhost", "https:///x", "http://localhost:1"})
        EXPECT_EQ(WithBox("", [&] { return PlainInet(address).AddToQueue("x"); }), 0) << address;
    EXPECT_EQ(WithBox("", [] { return PlainInet("http://" + std::string(64, 'x')).GetList(); }), -1);

    const std::tuple<const char*, DWORD, const char*> cases[] = {
        {"https://h.example/a/b.asp?x=1", AFX_INET_SERVICE_HTTPS, "h.example 443 /a/b.asp?x=1"},
        {"https://h:8443/p/beta.asp", AFX_INET_SERVICE_HTTPS, "h 8443 /p/beta.asp"},
        {"http://h", AFX_INET_SERVICE_HTTP, "h 80 /"}};
    for (const auto& [address, expected, parts] : cases)
    {
        DWORD service = 0;
        CString server, object;
        INTERNET_PORT port = 0;
        ASSERT_TRUE(AfxParseURL(address, service, server, object, port)) << address;
        EXPECT_EQ(service, expected) << address;
        EXPECT_STREQ(server + " " + std::to_string(port).c_str() + " " + object, parts);
    }
}

TEST_F(VelInet, OptionsAreWrittenOnceAndTakeTheFirstRow)
{
    dbCPatients::Create(m_practice.Path("patients.db").c_str());
    for (const char* host : {"service.example", "other.example"})
    {
        m_practice.Set("Environment", "RASKOTARGET", host);
        EXPECT_STREQ(velServiceHost(), "service.example");
    }
    EXPECT_STREQ(velCommandScript() + velUploadScript(),
                 "/beta/upload/veltrixserver.asp/beta/upload/veltrixupload.asp");
    dbCApplicationOptionsContainer rows("RASKOTARGET");
    ASSERT_EQ(rows.GetCount(), 1);
    EXPECT_EQ(rows[0].nStatus, 1);
    dbSApplicationOption second = rows[0];
    second.strValue = "second.example";
    rows.InsertRow(second);
    EXPECT_STREQ(velServiceHost(), "service.example");
    EXPECT_EQ(dbCApplicationOptionsContainer::SetApplicationOption("RASKOTARGET", "x"), -1);
    dbCPatients::Close();
}
