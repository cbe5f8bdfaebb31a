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

    // The record that this module writes is one that the service takes.
    m_practice.Set("Environment", "WORKING", m_practice.Working());
    m_practice.WriteFile("working\\A107.I2A", "abc");
    dbCPatients::Create(m_practice.Path("patients.db").c_str());
    dbCPatient patient;
    patient.SetID("A1");
    patient.SetLastname("M\xfcller & <Co>");
    patient.SetFirstname("\"Zo\xeb\" \x80");
    patient.SetBirthdate(velCDate(1999, 5, 17));
    dbCTimepoint timepoint;
    timepoint.SetNumber("A1", 7);
    timepoint.SetName("Start");
    timepoint.SetDate(velCDate(2009, 3, 5));
    timepoint.SetImage(2, 0);
    patient.GetTimepoints().Add(&patient, timepoint, FALSE, FALSE);
    patient.Save();
    CString document, id;
    ASSERT_TRUE(xml.BuildPatientXml(patient, document));
    ASSERT_EQ(anna.GetRecordInfo(patient.GetGUID(), "", 3), 200);
    ASSERT_TRUE(xml.LoadXml(anna.GetResponse()));
    ASSERT_EQ(xml.SelectCount("//record/patinfo"), 1);
    ASSERT_TRUE(xml.GetAttribute(0, "patVeltrixID", id));
    ASSERT_EQ(anna.AddToQueue(document), 200) << document;
    ASSERT_TRUE(xml.LoadXml(anna.GetResponse()));
    CString name, signature;
    EXPECT_EQ(xml.SelectCount("//response/file"), 1) << anna.GetResponse();
    xml.GetAttribute(0, "name", name);
    xml.GetAttribute(0, "signature", signature);
    EXPECT_STREQ(name + " " + signature, "A107.I2A 900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(anna.GetRecordInfoEx(
                  patient.GetGUID(), id,
                  "<referralinfo><recipient address=\"bert\" type=\"1\"/><note>see</note></referralinfo>"),
              200);

    // Another user's session is another: it reaches nothing of hers.
    ASSERT_EQ(anna.Logout(), 0);
    EXPECT_EQ(anna.GetList(), -1);
    Client bert(host);
    ASSERT_EQ(bert.Login("bert", "second secret"), 0);
    EXPECT_THAT(bert.DeleteFromFrv(patient.GetGUID(), id), testing::AnyOf(403, 404));
    EXPECT_EQ(bert.GetDownloadPatient(id), -1) << "it has never been uploaded in full";
    EXPECT_EQ(bert.Logout(), 0);
    dbCPatients::Close();
}
