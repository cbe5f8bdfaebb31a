// The client and the real service over TLS.
#include "cloud/net/velinet.h"
#include "cloud/xml/velxml.h"
#include "suite/patients/velpat.h"
#include "tests/support/childprocess.h"
#include "tests/support/dialogscript.h"
#include "tests/support/mfctestprogram.h"
#include "tests/support/recordservice.h"
#include "tests/support/temporarypractice.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <functional>

using veltest::DialogScript;

VEL_MFC_TEST_PROGRAM();

namespace
{
struct Client : CVelInet
{
    explicit Client(const std::string& host)
        : CVelInet(cloud::AgentName().c_str(), 1, INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr,
                   INTERNET_FLAG_DONT_CACHE)
    {
        SetServerUrl(("https://" + host).c_str());
        SetCommandPath("/beta/upload/veltrixserver.asp");
        EnableStatusCallback();
    }
};

/// In a process of its own: what the system has once trusted or refused it remembers.
VEL_CHILD_PROCESS(signInWithoutTrust)
{
    AfxWinInit(::GetModuleHandle(nullptr), nullptr, ::GetCommandLine(), 0);
    return veltest::RunModal([&] { return Client(arguments[0]).Login("anna", "first secret"); },
                             [](DialogScript& script) { script.WaitForBox().Press(IDOK); });
}

class Service : public testing::Test
{
protected:
    /// Plays what no message box is expected of; one that comes up fails the test and is closed.
    static void Quietly(const std::function<void()>& play)
    {
        veltest::RunModal(
            [&] {
                play();
                return 0;
            },
            [](DialogScript&) {});
    }
    void PlaySession(const std::string& host);

    veltest::TemporaryPractice m_practice;
};
} // namespace

TEST_F(Service, AnUntrustedCertificateIsRefused)
{
    const char* const pszHost = std::getenv("VEL_SERVICE_HOST");
    ASSERT_NE(pszHost, nullptr);
    EXPECT_EQ(veltest::ChildProcess("signInWithoutTrust", {pszHost}).Wait(), -1);
}

TEST_F(Service, KeepsASessionAndItsRules)
{
    const veltest::RecordService service;
    Quietly([&] { PlaySession(service.Host()); });
}

void Service::PlaySession(const std::string& host)
{
    Client anna(host);
    EXPECT_EQ(anna.GetDownloadable(), -1) << "nobody is signed in";
    EXPECT_EQ(anna.Login("anna", "wrong"), -1);
    ASSERT_EQ(anna.Login("anna", "first secret"), 0);
    EXPECT_STREQ(anna.GetResponse(), "");
    ASSERT_EQ(anna.GetDownloadable(), 0);
    CVelXML xml;
    ASSERT_TRUE(xml.LoadXml(anna.GetResponse())) << anna.GetResponse();
    EXPECT_EQ(xml.SelectCount("//record[@userGUID]"), 1);
    EXPECT_EQ(xml.SelectCount("//record/patinfo"), 0);

    ASSERT_EQ(anna.Logout(), 0);
    EXPECT_EQ(anna.GetList(), -1);
}
