// What goes to the service byte by byte, and what its replies mean.
#include "cloud/message/messagepage.h"
#include "cloud/protocol/commands.h"
#include "cloud/protocol/servicetime.h"

#include <gtest/gtest.h>

using namespace cloud;

TEST(CloudCommands, EncodeEveryByteThatIsNoLetterOrDigit)
{
    std::string all, expected;
    for (int byte = 0; byte < 256; ++byte)
    {
        char hex[4];
        std::snprintf(hex, sizeof hex, "%%%02x", byte);
        all += static_cast<char>(byte);
        const bool plain =
            (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
        expected += plain ? std::string(1, static_cast<char>(byte)) : byte == ' ' ? "+" : hex;
    }
    EXPECT_EQ(UrlEncode(all), expected);
}

TEST(CloudCommands, AreWrittenAsTheServiceReadsThem)
{
    EXPECT_EQ(LoginLine("", "\xe9/-", -840), "cmd=login&Login=&password=%e9%2f%2d&tz=-840");
    for (const char* on : {"on", "ON", "On", "oN"})
        EXPECT_TRUE(IsFipsOn(on)) << on;
    for (const char* off : {"", "o", "on ", "one", "1", "yes", "\x0fn"})
        EXPECT_FALSE(IsFipsOn(off)) << off;
}

TEST(CloudCommands, LoginIsJudgedByStatusThenReply)
{
    EXPECT_EQ(JudgeLogin(false, "<message"), LoginReply::Refused);
    EXPECT_EQ(JudgeLogin(true, ""), LoginReply::LoggedIn);
    EXPECT_EQ(JudgeLogin(true, "<response><message/></response>"), LoginReply::Message);
    EXPECT_EQ(JudgeLogin(true, "<messag welcome"), LoginReply::LoggedInOnce);
}

TEST(CloudTimes, AreReadByTheirFieldsAndTheCalendar)
{
    EXPECT_EQ(ParseServiceDate("2009-03-05T01:02:03"), (ServiceTime{2009, 3, 5}));
    EXPECT_EQ(ParseServiceDate("0100-01-01"), (ServiceTime{100, 1, 1}));
    EXPECT_EQ(ParseServiceTime("2012-02-29T14:07"), (ServiceTime{2012, 2, 29, 14, 7, 0}));
    EXPECT_EQ(ParseServiceTime("2012-02-29T14:07:09.500"), (ServiceTime{2012, 2, 29, 14, 7, 9}));
    for (const char* broken : {"", "2009", "2009-03", "2009-13-01", "2009-00-01", "2009-02-29", "2009-02-00",
                               "-009-01-01", "0099-12-31", "03/05/2009", "x2009-03-05"})
        EXPECT_FALSE(ParseServiceDate(broken)) << broken;
    for (const char* broken : {"2009-03-05", "2009-03-05 14:07", "2009-03-05T14", "2009-03-05T24:00",
                               "2009-03-05T23:60", "2009-03-05T23:59:60", "2009-03-05T-1:00"})
    {
        EXPECT_FALSE(ParseServiceTime(broken)) << broken;
        EXPECT_EQ(ShownTime(broken), "-");
    }
    EXPECT_EQ(ShownTime("2026-11-21T04:05"), "2026-11-21 04:05:00");
    EXPECT_EQ(TimeText({2026, 1, 2, 3, 4, 5}), "2026-01-02T03:04:05");
}

TEST(CloudTimes, OffsetCountsWholeHoursAndKeepsItsRuleForDates)
{
    const auto at = [](int year, int day, int hour) {
        std::tm time{};
        time.tm_year = year;
        time.tm_yday = day;
        time.tm_hour = hour;
        return time;
    };
    const std::tuple<std::tm, std::tm, int> cases[] = {
        {at(126, 100, 9), at(126, 100, 14), 300},  // five hours west
        {at(126, 100, 15), at(126, 100, 14), -60}, // one hour east
        {at(126, 100, 20), at(126, 101, 1), 300},  // UTC is a day ahead
        {at(126, 364, 20), at(127, 0, 1), 300},    // 31 December here, 1 January there
        {at(127, 0, 2), at(126, 364, 16),
         2280}, // the local date is ahead across the year's end: the day decides
        {at(126, 101, 2), at(126, 100, 16), 840}}; // ten hours east
    for (const auto& [local, utc, expected] : cases)
        EXPECT_EQ(TimeZoneOffset(local, utc), expected) << local.tm_yday << " " << local.tm_hour;
}

TEST(CloudMessages, PageListsThemAndNamesWhatMustBeDone)
{
    const std::string header =
        "<div class=\"header\" align=\"center\">FarreachVeltrix returned the following message";
    const MessagePage one = BuildMessagePage({{"Pay <b>now</b>", "https://a/b", "here", "Stop"}});
    EXPECT_EQ(one.body, header + ":</div><ol START=1><li class=\"cont\">Pay <b>now</b><br>"
                                 "<a href=\"http://https://a/b\">here</a></li>\r\n</ol>");
    EXPECT_FALSE(one.stop);
    EXPECT_EQ(BuildMessagePage({}).body, header + "s:</div><ol START=1></ol>");

    const struct
    {
        const char* stops; // "s" for an item that stops, "c" for one that does not
        const char* paragraph;
    } cases[] = {{"s", "Item <span class=\"hilite\">#1<"},
                 {"sc", "Item <span class=\"hilite\">#1<"},
                 {"scs", "Items <span class=\"hilite\">#1 &amp; #3<"},
                 {"ssc", "Items <span class=\"hilite\">#1, #2<"},
                 {"ssss", "Items <span class=\"hilite\">#1, #2, #3 &amp; #4<"},
                 {"cs", "Item <span class=\"hilite\">#2<"}};
    for (const auto& c : cases)
    {
        std::vector<ServiceMessage> messages;
        for (const char* p = c.stops; *p != 0; ++p)
            messages.push_back({"t", "l", "n", *p == 's' ? "stop" : "go"});
        const MessagePage page = BuildMessagePage(messages);
        EXPECT_TRUE(page.stop);
        EXPECT_TRUE(page.body.ends_with(
            std::string("</ol><p class=\"attn\"><b>") + c.paragraph +
            "/span> must be completed before synchronization with FarreachVeltrix can proceed!</b></p>"))
            << c.stops << "\n"
            << page.body;
        EXPECT_NE(page.body.find("<li class=\"stop\">t<br><a href=\"http://l\">n</a></li>\r\n"),
                  std::string::npos);
    }
    EXPECT_FALSE(MalformedMessagePage().stop);
    EXPECT_EQ(MalformedMessagePage().numbers, "#1");
}
