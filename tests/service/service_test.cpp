// The service as its clients see it: a process of its own, over TLS.
#include "service/database.h"
#include "service/text.h"
#include "suite/rasko/transfer/serviceclient.h"
#include "tests/service/serviceprocess.h"

#include <gmock/gmock.h>
#include <httplib.h>
#include <pugixml.hpp>

#include <fstream>
#include <regex>

namespace
{
using rasko::FormEncode;
using testing::HasSubstr;
using testing::Not;
using veltest::SampleDocument;
using veltest::SampleFile;
using veltest::ServiceProcess;
using veltest::User;

constexpr char Guid[] = "{00000000-0000-4000-8000-000000000001}";
const std::string Pid = "&pid=" + FormEncode(Guid);

class ServiceTest : public testing::Test
{
protected:
    rasko::Reply Queue(User& user, const std::string& document)
    {
        return user.Command("cmd=addtoqueue&xmlData=" + FormEncode(document));
    }
    void Publish(User& user, const std::string& upload, const std::vector<SampleFile>& files)
    {
        for (const SampleFile& file : files)
            EXPECT_EQ(user.Upload("?upload=" + upload + "&name=" + file.name + "&offset=0&last=1", file.bytes)
                          .status,
                      200);
        EXPECT_EQ(user.Upload("?upload=" + upload + "&commit=1", {}).status, 200);
    }
    /// The service's own tables, which it has open as well.
    void Change(const char* sql) const
    {
        svc::Database((service.Files().parent_path() / "service.db").string()).Execute(sql);
    }
    std::size_t FilesOnDisk() const
    {
        const std::filesystem::directory_iterator files(service.Files());
        return static_cast<std::size_t>(std::distance(begin(files), end(files)));
    }

    ServiceProcess service;
    const std::vector<SampleFile> images = {{"A107.I0A", "first image"},
                                            {"A107.V0A", std::string(300000, 'v')}};
};

TEST_F(ServiceTest, KeepsEveryoneAwayFromRecordsThatAreNotShared)
{
    User anna(service, "anna"), bert(service, "bert"), carl(service, "carl");
    ASSERT_EQ(Queue(anna, SampleDocument(Guid, "A1", images)).status, 200);
    Publish(anna, "1", images);
    const std::string file = "?id=1&name=A107.I0A&signature=" + veltest::Md5("first image");
    const std::string before = anna.Command("cmd=getdownloadpatient&PatientID=1").body;
    ASSERT_THAT(before, HasSubstr("A107.V0A"));

    ASSERT_EQ(
        anna.Command("cmd=getadhocshareinfo" + Pid + "&id=1&emailorusername=BERT@example.org&recipienttype=2")
            .status,
        200);
    const std::string list = bert.Command("cmd=getlist").body;
    const std::string bertsGuid = list.substr(list.find("userGUID=\"") + 10, 38);

    const std::string shareWith = Pid + "&id=1&emailorusername=";
    const std::string refer = "<referralinfo><recipient address='bert' type='2'/></referralinfo>";
    // What a stranger, a recipient and the owner are answered; who is not signed in is told so.
    const struct
    {
        std::string request; // a command, or the query of a GET or POST to the upload script
        int stranger, recipient, owner;
    } cases[] = {
        {"cmd=getdownloadpatient&PatientID=1", 404, 200, 200},
        {"GET " + file, 404, 200, 200},
        {"cmd=getrecordinfo" + Pid + "&id=1&space=0", 404, 404, 200},
        {"cmd=getrecordinfo&pid=&id=1&space=0", 400, 400, 400}, // of a number alone
        {"cmd=getrecordinfoex" + Pid + "&id=1&referralinfo=", 404, 404, 200},
        {"cmd=getadhocshareinfo" + shareWith + "bert&recipienttype=1", 404, 404, 200},
        {"GET ?upload=1", 404, 404, 404},
        {"POST ?upload=1&name=A107.I0A&offset=0", 404, 404, 404},
        {"POST ?upload=1&commit=1", 404, 404, 200},
        {"cmd=deletefromfrv&pid=%7bother%7d&id=1", 404, 403, 404},
        {"cmd=stopsharingwith&id=1&recipientid=nobody", 404, 403, 404},
        {"cmd=getadhocshareinfo" + shareWith + "dora&recipienttype=0", 404, 404, 404}, // nobody's name
        {"cmd=getadhocshareinfo" + shareWith + "bert&recipienttype=2", 404, 404, 404}, // no e-mail address
        {"cmd=getrecordinfoex" + Pid + "&id=1&referralinfo=" + FormEncode(refer), 404, 404, 404},
        {"cmd=getlist", 200, 200, 200},
        {"cmd=getdownloadable", 200, 200, 200},
        {"cmd=updatedpatients&lastQueryTime=2020-01-01T00%3a00", 200, 200, 200},
        {"cmd=displaymessage", 200, 200, 200},
        // A patient of the same GUID in another practice is another record.
        {"cmd=addtoqueue&xmlData=" + FormEncode(SampleDocument(Guid, "A1", images)), 200, 200, 200},
        {"cmd=getdownloadpatient&PatientID=2", 404, 404, 404},
        {"cmd=getdownloadpatient&PatientID=1%27+OR+1=1", 404, 404, 404},
        {"cmd=shutdown", 404, 404, 404},
    };
    const auto answer = [](User& user, const std::string& request) {
        return request.starts_with("GET ")    ? user.Get(request.substr(4))
               : request.starts_with("POST ") ? user.Upload(request.substr(5), {})
                                              : user.Command(request);
    };
    User nobody(service, "carl");
    nobody.Command("cmd=logout");
    for (const auto& one : cases)
    {
        for (User* user : {&nobody, &carl})
        {
            const rasko::Reply reply = answer(*user, one.request);
            EXPECT_EQ(reply.status, user == &carl ? one.stranger : 401) << one.request;
            EXPECT_THAT(reply.body, testing::AllOf(Not(HasSubstr("ller")), Not(HasSubstr("VeltrixID=\"1\""))))
                << one.request;
        }
        EXPECT_EQ(answer(bert, one.request).status, one.recipient) << one.request;
        EXPECT_EQ(answer(anna, one.request).status, one.owner) << one.request;
    }
    EXPECT_THAT(bert.Command("cmd=getlist").body, Not(HasSubstr("patinfo")));
    EXPECT_THAT(bert.Command("cmd=getdownloadable").body, HasSubstr("patVeltrixID=\"1\""));
    EXPECT_EQ(anna.Command("cmd=getdownloadpatient&PatientID=1").body, before);

    ASSERT_EQ(anna.Command("cmd=stopsharingwith&id=1&recipientid=" + FormEncode(bertsGuid)).status, 200);
    EXPECT_EQ(bert.Get(file).status, 404);
    ASSERT_EQ(anna.Command("cmd=deletefromfrv" + Pid + "&id=1").status, 200);
    EXPECT_EQ(FilesOnDisk(), 0U);
    // A number is never given again.
    EXPECT_THAT(Queue(anna, SampleDocument(Guid, "A1", images)).body, HasSubstr("patVeltrixID=\"5\""));
}

TEST_F(ServiceTest, GivesARecordBackWithEverythingItsOwnerWrote)
{
    User anna(service, "anna"), bert(service, "bert");
    std::string document = SampleDocument(Guid, "A1", images);
    // Without a signature: it was missing already when the record was written.
    document.insert(document.find("<images>"), "<Files><file name='A1$07$jaw.stl' category='3D'/></Files>");
    Queue(anna, document);
    Publish(anna, "1", images);
    const std::string info =
        "<referralinfo><recipient address='bert' type='1'/><note>a &lt; b</note></referralinfo>";
    ASSERT_EQ(anna.Command("cmd=getrecordinfoex" + Pid + "&id=1&referralinfo=" + FormEncode(info)).status,
              200);

    pugi::xml_document record;
    ASSERT_TRUE(record.load_string(bert.Command("cmd=getdownloadpatient&PatientID=1").body.c_str()));
    EXPECT_STREQ(record.select_node("//record/note").node().text().get(), "a < b");
    const auto raw = [&](const char* path) {
        std::ostringstream text;
        record.select_node(path).node().print(text, "", pugi::format_raw);
        return std::regex_replace(text.str(), std::regex("(Owner|frvPat|image)GUID=\"\\{[^\"]+\""), "$1GUID");
    };
    EXPECT_EQ(raw("//record/patient[@patVeltrixID]"),
              R"(<patient patVeltrixID="1" patGUID="{00000000-0000-4000-8000-000000000001}" patientID="A1" )"
              R"(patOwnerGUID frvPatGUID patfirstName="O'Neil" patlastName="Müller &amp; &lt;Co>" )"
              R"(patBirthdate="1999-05-17" patGender="M"/>)");
    EXPECT_EQ(
        raw("//Timepoints"),
        R"(<Timepoints><Timepoint name="Initial" tpDate="2009-03-05" tpNumber="7" tpGUID="{T}">)"
        R"(<file name="A1$07$jaw.stl" category="3D"/><Images><image file="A107.I0A" signature=")" +
            veltest::Md5(images[0].bytes) +
            R"(" title="t" imageType="0A" imageGUID size="11"/><image file="A107.V0A" signature=")" +
            veltest::Md5(images[1].bytes) +
            R"(" title="t" imageType="0A" imageGUID size="300000"/></Images></Timepoint></Timepoints>)");
    pugi::xml_document written;
    written.load_string(document.c_str());
    std::ostringstream expected, found;
    written.child("patient").print(expected);
    record.select_node("//record/patient[@patientid]").node().print(found);
    EXPECT_EQ(found.str(), expected.str());
}

TEST_F(ServiceTest, RefusesDocumentsThatCannotBeTrusted)
{
    User anna(service, "anna");
    const std::string signature = veltest::Md5("x");
    const auto withFiles = [](const std::string& files) {
        return "<patient id='" + std::string(Guid) + "' patientid='A1'><timepoints><timepoint><Files>" +
               files + "</Files></timepoint></timepoints></patient>";
    };
    // The text so often, each time with its number for "#".
    const auto repeat = [](int count, const std::string& text) {
        std::string all;
        const std::size_t place = text.find('#');
        for (int i = 0; i < count; ++i)
            all += place > text.size() ? text
                                       : text.substr(0, place) + std::to_string(i) + text.substr(place + 1);
        return all;
    };
    const std::pair<std::string, int> documents[] = {
        {"", 400},
        {"<patient/>", 400},
        {"<record id='{1}'/>", 400},
        {"<!DOCTYPE patient [<!ENTITY a 'aaaa'>]><patient id='{1}'>&a;</patient>", 400},
        {repeat(17, "<a>") + repeat(17, "</a>"), 400},
        {"<patient id='{1}' last='a' last='b'/>", 400},
        {"<patient id='{1}'" + repeat(64, " a#=''") + "/>", 400},
        {"<patient id='{1}'>" + repeat(600000, "<a/>") + "</patient>", 400},
        {withFiles(repeat(100001, "<file name='A#' signature='" + signature + "'/>")), 413},
        {"<patient id='{1}' last='\xFF'/>", 400},
        {"<patient id='{1}' last='" + std::string(1 << 20, 'x') + "'/>", 413},
        {"<patient id='{1}'>" + std::string(17 << 20, 'x') + "</patient>", 413},
        {withFiles("<file name='../A1' signature='" + signature + "'/>"), 400},
        {withFiles("<file name='A1\\b' signature='" + signature + "'/>"), 400},
        {withFiles("<file name='A1' signature='" + std::string(32, 'A') + "'/>"), 400},
        {withFiles("<file name='A1' signature='" + signature + "'/><file name='A1' signature='" +
                   std::string(32, '0') + "'/>"),
         400},
    };
    for (const auto& [document, status] : documents)
        EXPECT_EQ(Queue(anna, document).status, status) << document.substr(0, 80);
    EXPECT_EQ(anna.Command("cmd=getlist&cmd=logout").status, 400);
    for (const auto& [name, status] :
         {std::pair("%81", 400), {"Zo%eb", 404}}) // in the code page, or not at all
        EXPECT_EQ(anna.Command("cmd=getadhocshareinfo&pid=x&id=1&recipienttype=0&emailorusername=" +
                               std::string(name))
                      .status,
                  status);
    User stranger(service, "bert");
    stranger.Command("cmd=logout");
    EXPECT_EQ(stranger.Command("cmd=login&x=" + std::string(65 << 10, 'x')).status, 401);
    // Nothing of all this has become a record.
    EXPECT_THAT(Queue(anna, withFiles("")).body, HasSubstr("patVeltrixID=\"1\""));
}

TEST_F(ServiceTest, TakesFilesInPiecesAcrossKills)
{
    User anna(service, "anna");
    const std::string& big = images[1].bytes;
    ASSERT_EQ(Queue(anna, SampleDocument(Guid, "A1", images)).status, 200);
    const auto piece = [&](std::size_t offset, std::size_t size, const char* rest = "") {
        return anna.Upload("?upload=1&name=A107.V0A&offset=" + std::to_string(offset) + rest,
                           big.substr(offset, size));
    };
    const auto first = [&](const std::string& bytes) {
        return anna.Upload("?upload=1&name=A107.I0A&offset=0&last=1", bytes).status;
    };
    const auto fetched = [&](const char* offset) {
        return anna.Get(std::string("?id=1&name=A107.V0A&offset=") + offset +
                        "&signature=" + veltest::Md5(big));
    };
    EXPECT_EQ(piece(0, 100000).status, 200);
    service.KillAndRestart();
    const rasko::Reply wrongOffset = piece(0, 100000);
    EXPECT_EQ(wrongOffset.status, 409);
    EXPECT_THAT(wrongOffset.body, HasSubstr("received=\"100000\""));
    EXPECT_EQ(piece(200000, 10).status, 409);
    EXPECT_EQ(piece(100000, 200000).status, 200);
    service.KillAndRestart(); // the whole is there, the last piece was never told
    EXPECT_THAT(Queue(anna, SampleDocument(Guid, "A1", images)).body, HasSubstr("upload=\"1\""));
    EXPECT_EQ(anna.Upload("?upload=1&commit=1", {}).status, 409);
    EXPECT_EQ(piece(300000, 0, "&last=1").status, 200);
    EXPECT_EQ(first("first imagE"), 422);
    EXPECT_EQ(first("first image"), 200);
    EXPECT_EQ(first("first image"), 200); // again, as after a lost reply: it is there already
    EXPECT_EQ(anna.Command("cmd=getdownloadpatient&PatientID=1").status, 404); // not before it is complete
    EXPECT_EQ(anna.Upload("?upload=1&commit=1", {}).status, 200);
    service.KillAndRestart();
    EXPECT_EQ(anna.Upload("?upload=1&commit=1", {}).status, 200);
    EXPECT_EQ(fetched("299990").body, big.substr(299990));
    EXPECT_EQ(fetched("300000").body, "");
    EXPECT_EQ(fetched("300001").status, 416);

    // A newer record keeps what has not changed; what others see stays until it is complete.
    const std::string before = anna.Command("cmd=getdownloadpatient&PatientID=1").body;
    const std::vector<SampleFile> newer = {{"A107.I0A", "other image"}, images[1]};
    const rasko::Reply second = Queue(anna, SampleDocument(Guid, "A1", newer));
    EXPECT_THAT(second.body, HasSubstr("A107.I0A"));
    EXPECT_THAT(second.body, Not(HasSubstr("A107.V0A")));
    EXPECT_EQ(anna.Command("cmd=getdownloadpatient&PatientID=1").body, before);
    Publish(anna, "2", {newer[0]});
    EXPECT_EQ(FilesOnDisk(), 2U);
    EXPECT_EQ(anna.Get("?id=1&name=A107.I0A&signature=" + veltest::Md5("first image")).status, 404);
    EXPECT_EQ(anna.Get("?id=1&name=A107.I0A&signature=" + veltest::Md5("other image")).body, "other image");
    // What no row knows goes at the next start.
    veltest::WriteBytes(service.Files() / "4711", "left over");
    service.KillAndRestart();
    EXPECT_EQ(FilesOnDisk(), 2U);
}

TEST_F(ServiceTest, SaysWhenThereIsNoRoomOrNoDatabase)
{
    service.Administer("add-account --name dora --email dora@example.org --quota 0", "pw-dora");
    User dora(service, "dora");
    EXPECT_EQ(dora.Command("cmd=getrecordinfo" + Pid + "&id=&space=0").status, 200);
    EXPECT_EQ(dora.Command("cmd=getrecordinfo" + Pid + "&id=&space=1").status, 507);
    ASSERT_EQ(Queue(dora, SampleDocument(Guid, "A1", images)).status, 200);
    EXPECT_EQ(dora.Upload("?upload=1&name=A107.I0A&offset=0&last=1", "first image").status, 507);
    EXPECT_EQ(FilesOnDisk(), 0U);
    Change("DROP TABLE messages");
    const rasko::Reply broken = dora.Command("cmd=displaymessage");
    EXPECT_EQ(broken.status, 500);
    EXPECT_EQ(broken.body, "The service has failed; nothing was changed.");
    EXPECT_EQ(dora.Command("cmd=getlist").status, 200);
}

TEST_F(ServiceTest, ListsByTheUsersClock)
{
    User anna(service, "anna");
    for (const char* id : {"B", "A"})
        Queue(anna, SampleDocument(std::string("{") + id + "}", id, {}));
    Publish(anna, "1", {});
    // Registered but never uploaded: in no list.
    pugi::xml_document list;
    list.load_string(anna.Command("cmd=getlist").body.c_str());
    ASSERT_EQ(list.select_nodes("//patinfo").size(), 1U);
    const pugi::xml_node line = list.select_node("//patinfo").node();
    EXPECT_STREQ(line.attribute("patID").value(), "B");
    const std::string utc = line.attribute("lastUpdate").value();
    EXPECT_THAT(anna.Command("cmd=updatedpatients&lastQueryTime=" + FormEncode(utc)).body,
                Not(HasSubstr("patinfo")));
    EXPECT_THAT(anna.Command("cmd=updatedpatients&lastQueryTime=2020-01-01T00%3a00").body,
                HasSubstr("patinfo"));
    EXPECT_EQ(anna.Command("cmd=updatedpatients&lastQueryTime=yesterday").status, 400);

    // Many more, in the order of their names.
    Change("WITH RECURSIVE n(i) AS (VALUES (10000) UNION ALL SELECT i + 1 FROM n WHERE i < 19999)"
           " INSERT INTO records SELECT NULL, owner, i, i, i, i, '', '', '', updated, 0 FROM n, records "
           "WHERE id = 1");
    list.load_string(anna.Command("cmd=getdownloadable").body.c_str());
    const auto lines = list.select_nodes("//patinfo[@patlastName<20000]");
    ASSERT_EQ(lines.size(), 10000U);
    EXPECT_STREQ(lines[9999].node().attribute("patlastName").value(), "19999");

    // Ten hours east at two in the morning tells 840: a day too much.
    User bert(service, "bert");
    ASSERT_EQ(bert.Command("cmd=login&Login=anna&password=pw-anna&tz=840").status, 200);
    list.load_string(bert.Command("cmd=getlist").body.c_str());
    EXPECT_EQ(svc::ParseTime(list.select_node("//patinfo").node().attribute("lastUpdate").value(), -600),
              svc::ParseTime(utc, 0));
}

TEST_F(ServiceTest, TellsMessagesAndSlowsGuessers)
{
    User anna(service, "anna");
    EXPECT_EQ(anna.Command("cmd=displaymessage").body, "");
    service.Administer("add-message --text 'Renew <soon> & pay' --link example.org/renew --linkname More "
                       "--stop --name anna");
    service.Administer("add-message --text Welcome");
    pugi::xml_document document;
    document.load_string(anna.Command("cmd=login&Login=anna&password=pw-anna&tz=0").body.c_str());
    const pugi::xml_node first = document.select_node("//response/message").node();
    std::ostringstream text;
    first.print(text, "", pugi::format_raw);
    EXPECT_EQ(text.str(), R"(<message link="example.org/renew" linkname="More" action="stop">)"
                          "Renew &lt;soon&gt; &amp; pay</message>");
    EXPECT_EQ(document.select_nodes("//message").size(), 2U);
    EXPECT_THAT(User(service, "bert").Command("cmd=displaymessage").body, Not(HasSubstr("Renew")));
    EXPECT_EQ(service.Administer("messages"),
              "1\tanna\tstop\tRenew <soon> & pay\n2\t(all)\tcontinue\tWelcome\n");
    service.Administer("withdraw-message --id 1");
    EXPECT_THAT(anna.Command("cmd=displaymessage").body, Not(HasSubstr("Renew")));

    User carl(service, "carl");
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(carl.Command("cmd=login&Login=CARL&password=guess&tz=0").status, 401);
    EXPECT_EQ(carl.Command("cmd=login&Login=carl%40example.org&password=pw-carl&tz=0").status, 429);
    EXPECT_EQ(carl.Command("cmd=getlist").status, 200); // the session that is there stays
    service.Administer("set-password --name carl", "new");
    EXPECT_EQ(carl.Command("cmd=getlist").status, 401);
}

TEST_F(ServiceTest, IsReachedOnlyByWhoTrustsItsAuthority)
{
    httplib::SSLClient stranger("localhost", service.Port());
    stranger.enable_server_certificate_verification(true);
    EXPECT_EQ(stranger.Get("/").error(), httplib::Error::SSLServerVerification);
    httplib::Client plain("localhost", service.Port());
    EXPECT_FALSE(plain.Get("/"));
    httplib::SSLClient ranges("localhost", service.Port());
    ranges.set_ca_cert_path(service.Authority().c_str());
    EXPECT_EQ(ranges.Get("/beta/upload/veltrixupload.asp", {{"Range", "bytes=0-1,1-2"}})->status, 416);
    EXPECT_EQ(ranges.Get("/")->status, 404);
    const std::string key = (service.Files().parent_path() / "server.key").string();
    EXPECT_EQ(std::filesystem::status(key).permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST(ServiceText, ReadsFormsAndTextStrictly)
{
    const auto form = svc::ParseForm("a=1+2%2f&b=&c");
    ASSERT_TRUE(form);
    EXPECT_EQ(*form, (svc::Form{{"a", "1 2/"}, {"b", ""}, {"c", ""}}));
    for (const char* broken : {"a=%", "a=%4", "a=%g0", "a=1&a=2"})
        EXPECT_FALSE(svc::ParseForm(broken)) << broken;
    for (const char* clean : {"", "plain\r\n", "\xC3\xA9", "\xF0\x9F\x98\x80"})
        EXPECT_TRUE(svc::IsCleanText(clean)) << clean;
    for (const char* dirty : {"\x01", "\x80", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xE2\x82"})
        EXPECT_FALSE(svc::IsCleanText(dirty)) << dirty;
    EXPECT_EQ(svc::FromCodePage1252("Zo\xEB\x80\x9F"), "Zo\xC3\xAB\xE2\x82\xAC\xC5\xB8");
    EXPECT_EQ(svc::FromCodePage1252("\xEB\x81"), "\xEB\x81");
    for (const auto& [told, meant] :
         {std::pair{300, 300}, {-840, -840}, {720, 720}, {840, -600}, {-900, 0}, {9999, 0}})
        EXPECT_EQ(svc::NormalizeOffset(told), meant) << told;
}
} // namespace
