// The way to the service when the other side is none, over the system's client and real TLS.
#include "suite/rasko/program/wininetchannel.h"
#include "tests/support/recordservice.h"

#include <gmock/gmock.h>

#include <cstdlib>

namespace
{
constexpr unsigned Timeout = 1500; // milliseconds; a handshake has twice as many on the slowest machine

std::string Faulty(const char* kind, const char* host = "localhost:")
{
    const char* port = std::getenv((std::string("VEL_FAULTY_") + kind).c_str());
    return host + std::string(port ? port : "the test was not started by faulty_server");
}

TEST(Channel, TellsWhatIsWrongWithTheOtherSide)
{
    const veltest::RecordService trusted;
    const std::string tls = Faulty("TLS");
    // Too long for any name service to be asked, which could take its time where there is none.
    const std::string unresolvable(64, 'x');
    const struct
    {
        std::string target;
        const char *path, *reason;
    } faults[] = {
        {Faulty("EXPIRED"), "/html", "12037"},
        {Faulty("TLS", "127.0.0.1:"), "/html", "12038"},
        {Faulty("PLAIN"), "/html", "12157"},
        {Faulty("DEAD"), "/html", "12002"},
        {"localhost:1", "/html", "12029"},
        {unresolvable, "/html", "12007"},
        {tls, "/silent", "12030"},
        {tls, "/drop", "closed"},
        {tls, "/cut", "cut short"},
        {tls, "/drip", "too slowly"},
    };
    for (const auto& fault : faults)
        for (const bool post : {true, false})
        {
            rasko::WinInetChannel channel(fault.target, Timeout);
            std::string reason = "none";
            const DWORD start = GetTickCount();
            try
            {
                // As a refusal's text would be read: no receiver.
                post ? channel.Post(fault.path, "text/plain", "x") : channel.Get(fault.path, nullptr);
            }
            catch (const rasko::Interrupted& cut)
            {
                reason = cut.what();
            }
            EXPECT_THAT(reason, testing::HasSubstr(fault.reason)) << fault.target << fault.path << post;
            EXPECT_LT(GetTickCount() - start, 20'000U) << fault.path;
        }
}

TEST(Channel, LeavesToTheCallerWhatAReplySays)
{
    const veltest::RecordService trusted;
    rasko::WinInetChannel channel(Faulty("TLS"), Timeout);
    const rasko::Reply redirected = channel.Post("/redirect", "text/plain", "x");
    EXPECT_EQ(redirected.status, 302);
    EXPECT_EQ(redirected.body, "moved");
    std::string received;
    const auto keep = [&received](std::string_view bytes) {
        received += bytes;
        return true;
    };
    EXPECT_EQ(channel.Get("/redirect", keep).body, "moved");
    EXPECT_EQ(received, "") << "only a file is for the receiver";
    EXPECT_EQ(channel.Get("/html", keep).status, 200);
    EXPECT_EQ(received, "<html><p>Welcome!</html>");
    EXPECT_THROW(channel.Get("/cut", keep), rasko::Interrupted);
    EXPECT_EQ(received, "<html><p>Welcome!</html>half of it");
}
} // namespace
