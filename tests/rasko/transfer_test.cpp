// Transfers against the real service: whole practices compared, after cuts and kills at every step.
#include "suite/rasko/transfer/plan.h"
#include "suite/rasko/transfer/texts.h"
#include "suite/rasko/transfer/transfer.h"
#include "tests/service/serviceprocess.h"

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>
#include <utility>

namespace
{
using rasko::Outcome;
using veltest::HttpsChannel;
using veltest::Md5;
using veltest::ReadBytes;
using veltest::SampleFile;
using veltest::WriteBytes;
namespace fs = std::filesystem;

const std::vector<SampleFile> Files = {
    {"A107.I0A", std::string(5000000, 'i') + "end"}, {"A107.V0A", ""}, {"A107.I1A", "third"}};
constexpr char Guid[] = "{00000000-0000-4000-8000-000000000001}";

std::map<std::string, std::string> Contents(const fs::path& folder)
{
    std::map<std::string, std::string> contents;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        contents[fs::relative(entry.path(), folder).string()] =
            entry.is_directory() ? "folder" : Md5(ReadBytes(entry.path()));
    return contents;
}

std::string Manifest()
{
    std::string manifest = "<patient patID='B9' frvPatId='1'><images>";
    for (const SampleFile& file : Files)
        manifest += "<image imageExists='0' imgfilename='" + file.name + "' finalfilename='B903" +
                    file.name.substr(4) + "' imgfileSignature='" + Md5(file.bytes) + "'/>";
    return manifest + "</images></patient>";
}

/// Two practices, one of which has what the other wants.
class Practices : public testing::Test
{
protected:
    struct Practice
    {
        veltest::TemporaryFolder folder;
        rasko::Folders folders{folder.Path() / "working", folder.Path() / "rasko"};
        Practice()
        {
            fs::create_directories(folders.working);
            fs::create_directories(folders.rasko);
        }
    };

    Practices()
    {
        for (const SampleFile& file : Files)
            WriteBytes(sender.folders.working / file.name, file.bytes);
        WriteBytes(receiver.folders.working / "B903.V0A", "an older companion");
        WriteBytes(receiver.folders.working / "B903.PF", "of the practice");
        expected = Contents(receiver.folders.working);
        for (const SampleFile& file : Files)
            expected["B903" + file.name.substr(4)] = Md5(file.bytes);
    }

    rasko::Task UploadTask(int revision = 0) const
    {
        std::string document = veltest::SampleDocument(Guid, "A1", Files);
        document.replace(document.find("t\" file"), 1, "title " + std::to_string(revision));
        return {1, true, document};
    }
    static rasko::Task DownloadTask()
    {
        return {2, false, Manifest()};
    }
    Practice sender, receiver;
    std::map<std::string, std::string> expected;
};

/// The same with the service between them.
class TransferTest : public Practices
{
protected:
    Outcome Run(const rasko::Task& task, const Practice& practice,
                const rasko::ProgressReceiver& progress = nullptr,
                const std::function<void(HttpsChannel&)>& prepare = nullptr)
    {
        HttpsChannel channel(service);
        if (prepare)
            prepare(channel);
        rasko::ServiceClient client(channel, {}, {"anna", "pw-anna"}, 0);
        return rasko::RunTask(task, client, practice.folders, progress);
    }
    /// Both ways, to the end.
    void ExpectToArrive()
    {
        const Outcome up = Run(UploadTask(), sender);
        ASSERT_EQ(up.kind, Outcome::Complete) << up.reason;
        const Outcome down = Run(DownloadTask(), receiver);
        ASSERT_EQ(down.kind, Outcome::Complete) << down.reason;
        EXPECT_EQ(Contents(receiver.folders.working), expected);
        EXPECT_TRUE(Contents(receiver.folders.rasko).empty());
    }
    /// True when what is there is what was there before or all of the download.
    void ExpectNoneOrAll(const std::map<std::string, std::string>& before)
    {
        std::map<std::string, std::string> present;
        for (const auto& [name, content] : Contents(receiver.folders.working))
            if (!name.starts_with("~rasko"))
                present[name] = content;
        EXPECT_TRUE(present == before || present == expected);
    }

    veltest::ServiceProcess service;
};

TEST_F(TransferTest, GoesOnAfterACutAtEveryCall)
{
    const auto before = Contents(receiver.folders.working);
    // Every call fails once before it is sent, and once with its reply lost; then every read in its middle.
    int cuts = 0;
    for (const bool lostReply : {false, true})
        for (int nth = 1, completed = 0; completed < 2; ++nth)
        {
            int calls = 0;
            const auto cut = [&](HttpsChannel& channel) {
                channel.atCall = [&](bool isBefore) {
                    if (isBefore)
                        ++calls;
                    if (calls == nth && isBefore != lostReply)
                        throw rasko::Interrupted("cut");
                };
            };
            const bool uploading = completed == 0;
            const Outcome outcome = uploading ? Run(UploadTask(nth + 100 * lostReply), sender, nullptr, cut)
                                              : Run(DownloadTask(), receiver, nullptr, cut);
            if (outcome.kind == Outcome::Complete)
            {
                ++completed;
                nth = 0;
                continue;
            }
            ++cuts;
            ASSERT_EQ(outcome.kind, Outcome::Waiting) << outcome.reason;
            ExpectNoneOrAll(before);
        }
    EXPECT_GT(cuts, 10);
    ExpectToArrive();

    fs::remove_all(receiver.folders.working);
    fs::create_directories(receiver.folders.working);
    WriteBytes(receiver.folders.working / "B903.PF", "of the practice");
    const auto cutInside = [](HttpsChannel& channel) { channel.cutAfter = 1500000; };
    int attempts = 0;
    while (Run(DownloadTask(), receiver, nullptr, cutInside).kind == Outcome::Waiting && attempts < 9)
        ++attempts;
    EXPECT_EQ(attempts, 3); // 5,000,003 bytes in pieces of 1,500,000
    EXPECT_EQ(Contents(receiver.folders.working), expected);
}

TEST_F(TransferTest, GoesOnAfterItsProcessIsKilledAtEveryStep)
{
    const auto before = Contents(receiver.folders.working);
    const auto runKilled = [&](const rasko::Task& task, const Practice& practice, int nth) {
        const pid_t child = fork();
        if (child == 0)
        {
            int steps = 0;
            const auto step = [&] {
                if (++steps == nth)
                    _exit(77);
            };
            const Outcome outcome = Run(
                task, practice,
                [&](const rasko::Progress&) {
                    step();
                    return true;
                },
                [&](HttpsChannel& channel) { channel.atCall = [&](bool) { step(); }; });
            _exit(outcome.kind == Outcome::Complete ? 0 : 1);
        }
        int state = 0;
        waitpid(child, &state, 0);
        return WEXITSTATUS(state);
    };
    // The upload starts anew for every step; the download goes on from what the one before has left.
    int nth = 1, code = 0;
    while ((code = runKilled(UploadTask(nth), sender, nth)) == 77)
        ++nth;
    EXPECT_EQ(code, 0);
    EXPECT_GT(nth, 10);
    for (nth = 1; (code = runKilled(DownloadTask(), receiver, nth)) == 77; ++nth)
        ExpectNoneOrAll(before);
    EXPECT_EQ(code, 0);
    EXPECT_GT(nth, 5);
    EXPECT_EQ(Contents(receiver.folders.working), expected);
    ExpectToArrive();
}

TEST_F(TransferTest, WaitsForRoomOnEitherDisk)
{
    const auto before = Contents(receiver.folders.working);
    const fs::path atService = service.Files() / "1",
                   here = receiver.folders.rasko / "~rasko2" / "B903.I0A.part";
    fs::create_symlink("/dev/full", atService);
    const Outcome up = Run(UploadTask(), sender);
    EXPECT_EQ(up.kind, Outcome::Waiting) << up.reason;
    fs::remove(atService);
    ASSERT_EQ(Run(UploadTask(), sender).kind, Outcome::Complete);

    fs::create_directories(here.parent_path());
    fs::create_symlink("/dev/full", here);
    const Outcome down = Run(DownloadTask(), receiver);
    EXPECT_EQ(down.kind, Outcome::Waiting);
    EXPECT_THAT(down.reason, testing::HasSubstr(here.filename().string()));
    fs::remove_all(receiver.folders.rasko);
    WriteBytes(receiver.folders.rasko, "no folder");
    EXPECT_EQ(Run(DownloadTask(), receiver).kind, Outcome::Waiting);
    EXPECT_EQ(Contents(receiver.folders.working), before);
    fs::remove(receiver.folders.rasko);
    ExpectToArrive();
}

/// Answers with the given replies in turn, the last one again and again.
class ScriptedChannel : public rasko::Channel
{
public:
    explicit ScriptedChannel(std::vector<rasko::Reply> replies) : m_replies(std::move(replies))
    {
    }
    rasko::Reply Post(const std::string&, const char*, std::string_view) override
    {
        return m_replies[std::min(calls++, m_replies.size() - 1)];
    }
    rasko::Reply Get(const std::string& target, const rasko::Receiver& receiver) override
    {
        rasko::Reply reply = Post(target, "", {});
        if (reply.status == 200)
            receiver(reply.body);
        return reply;
    }
    std::size_t calls = 0;

private:
    std::vector<rasko::Reply> m_replies;
};

TEST_F(Practices, JudgeEveryAnswer)
{
    using namespace rasko::text;
    const auto begun = [](const std::string& name, const std::string& received) {
        return rasko::Reply{200, "<response upload='7'><file name='" + name + "' signature='x' received='" +
                                     received + "'/></response>"};
    };
    const rasko::Reply file = begun("A107.I0A", "0"), html{200, "<html><p>Welcome!</html>"};
    const std::string refused401 = Fill(ServiceSays, "Not signed in.");
    const struct
    {
        bool upload;
        std::vector<rasko::Reply> replies;
        Outcome::Kind kind;
        std::string reason;
        std::size_t calls;
    } cases[] = {
        {true, {html}, Outcome::Waiting, NotUnderstood, 1},
        {true, {{200, ""}}, Outcome::Waiting, NotUnderstood, 1},
        {true, {{200, "<!DOCTYPE a><response upload='7'/>"}}, Outcome::Waiting, NotUnderstood, 1},
        {true, {begun("A107.I0A", "-1")}, Outcome::Waiting, NotUnderstood, 1},
        {true, {begun("A107.I9A", "0")}, Outcome::Hopeless, NotUnderstood, 1},
        {true, {begun("A107.I0A", "9000000000")}, Outcome::Hopeless, Fill(LocalChanged, "A107.I0A"), 1},
        {true, {{302, "<html>"}}, Outcome::Hopeless, Fill(ServiceSays, "HTTP 302"), 1},
        {true, {{403, "Two\nlines"}}, Outcome::Hopeless, Fill(ServiceSays, "HTTP 403"), 1},
        {true, {{507, "There is no room."}}, Outcome::Hopeless, Fill(ServiceSays, "There is no room."), 1},
        {true, {{500, "x"}}, Outcome::Waiting, Fill(NoAnswer, "HTTP 500"), 1},
        {true, {{401, ""}, {401, ""}}, Outcome::Hopeless, NotSignedIn, 2},
        {true, {{401, ""}, {503, ""}}, Outcome::Waiting, Fill(NoAnswer, "HTTP 503"), 2},
        {true, {{401, ""}, {200, ""}, {401, "Not signed in."}}, Outcome::Hopeless, refused401, 3},
        {true, {file, {200, "<file/>"}}, Outcome::Waiting, NotUnderstood, 2},
        {true, {file, {422, ""}}, Outcome::Hopeless, Fill(LocalChanged, "A107.I0A"), 2},
        {true, {file, {409, "<file received='1'/>"}}, Outcome::Waiting, NotUnderstood, 5},
        {true, {file, {200, "<file received='0'/>"}}, Outcome::Waiting, NotUnderstood, 5},
        {false, {{404, "Gone."}}, Outcome::Hopeless, Replaced, 1},
        {false, {{503, ""}}, Outcome::Waiting, Fill(NoAnswer, "HTTP 503"), 1},
        {false, {html}, Outcome::Hopeless, Fill(ArrivedWrong, "B903.I0A"), 2},
    };
    const auto before = Contents(receiver.folders.working);
    for (const auto& one : cases)
    {
        ScriptedChannel channel(one.replies);
        rasko::ServiceClient client(channel, {}, {"anna", "pw-anna"}, 0);
        const Outcome outcome = one.upload
                                    ? rasko::RunTask(UploadTask(), client, sender.folders, nullptr)
                                    : rasko::RunTask(DownloadTask(), client, receiver.folders, nullptr);
        const std::string what = std::to_string(one.replies.back().status) + one.replies.back().body;
        EXPECT_EQ(outcome.kind, one.kind) << what;
        EXPECT_EQ(outcome.reason, one.reason) << what;
        EXPECT_EQ(channel.calls, one.calls) << what;
    }
    EXPECT_EQ(Contents(receiver.folders.working), before);
}

/// How often a text, of which only its bytes plus one are given, is in this process's own memory.
int CountInMemory(const std::string& shifted)
{
    int found = 0;
    std::ifstream maps("/proc/self/maps"), memory("/proc/self/mem", std::ios::binary);
    std::vector<char> page(1U << 16);
    for (std::string line; std::getline(maps, line);)
    {
        unsigned long begin = 0, end = 0;
        // The sanitizer's shadow is large and holds no text.
        if (std::sscanf(line.c_str(), "%lx-%lx rw", &begin, &end) != 2 || end - begin > (256UL << 20) ||
            line.find(" rw") == std::string::npos)
            continue;
        for (unsigned long at = begin; at < end; at += page.size() - shifted.size())
        {
            memory.clear();
            memory.seekg(static_cast<std::streamoff>(at));
            memory.read(page.data(),
                        static_cast<std::streamsize>(std::min<unsigned long>(page.size(), end - at)));
            const char *place = page.data(), *const last = place + memory.gcount() - shifted.size();
            const auto same = [](char one, char present) { return present + 1 == one; };
            while (place < last &&
                   (place = static_cast<const char*>(std::memchr(place, shifted[0] - 1, last - place))))
                found += std::equal(shifted.begin(), shifted.end(), place++, same) ? 1 : 0;
            std::fill(page.begin(), page.end(), '\0');
        }
    }
    return found;
}

TEST(Credentials, LeaveNothingInMemory)
{
    const std::string shifted = "Tfdsfu5812pgBoob"; // never as it is
    const auto password = [&shifted] {
        std::vector<char> plain(shifted.begin(), shifted.end());
        std::for_each(plain.begin(), plain.end(), [](char& c) { --c; });
        rasko::Secret secret(std::string_view(plain.data(), plain.size()));
        rasko::Overwrite(plain.data(), plain.size());
        return secret;
    };
    {
        rasko::Credentials credentials{"anna", password()};
        EXPECT_EQ(CountInMemory(shifted), 1);
        ScriptedChannel channel({{401, ""}, {200, ""}, {404, "x"}});
        rasko::ServiceClient client(channel, {}, credentials, 0);
        credentials = {};
        EXPECT_THROW(client.Commit("1"), rasko::Refused);
        EXPECT_EQ(channel.calls, 3U);
        EXPECT_EQ(CountInMemory(shifted), 1) << "the client's own";
    }
    EXPECT_EQ(CountInMemory(shifted), 0);
}

TEST_F(TransferTest, FinishesPlacingThatWasCutShort)
{
    ASSERT_EQ(Run(UploadTask(), sender).kind, Outcome::Complete);
    // One file has its place already, one waits beside it, one is still in the other folder.
    const fs::path beside = receiver.folders.working / "~rasko2", staged = receiver.folders.rasko / "~rasko2";
    fs::create_directories(beside);
    fs::create_directories(staged);
    WriteBytes(receiver.folders.working / "B903.I0A", Files[0].bytes);
    WriteBytes(beside / "B903.V0A", Files[1].bytes);
    WriteBytes(staged / "B903.I1A", Files[2].bytes);
    int calls = 0;
    const Outcome outcome = Run(DownloadTask(), receiver, nullptr,
                                [&](HttpsChannel& channel) { channel.atCall = [&](bool) { ++calls; }; });
    EXPECT_EQ(outcome.kind, Outcome::Complete) << outcome.reason;
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(Contents(receiver.folders.working), expected);

    // A file in the way of a rename: the task waits, and goes on when it is gone.
    fs::remove(receiver.folders.working / "B903.I1A");
    fs::create_directories(receiver.folders.working / "B903.I1A" / "in the way");
    EXPECT_EQ(Run(DownloadTask(), receiver).kind, Outcome::Waiting);
    fs::remove_all(receiver.folders.working / "B903.I1A");
    EXPECT_EQ(Run(DownloadTask(), receiver).kind, Outcome::Complete);
    EXPECT_EQ(Contents(receiver.folders.working), expected);
}

TEST_F(TransferTest, SaysWhyItCannotGoOn)
{
    using namespace rasko::text;
    const auto expectHopeless = [&](const rasko::Task& task, const Practice& practice,
                                    const std::string& reason) {
        const Outcome outcome = Run(task, practice);
        EXPECT_EQ(outcome.kind, Outcome::Hopeless);
        EXPECT_EQ(outcome.reason, reason);
    };
    const fs::path third = sender.folders.working / "A107.I1A";
    WriteBytes(third, "changed since");
    expectHopeless(UploadTask(), sender, Fill(LocalChanged, "A107.I1A"));
    fs::remove(third);
    expectHopeless(UploadTask(), sender, Fill(LocalMissing, "A107.I1A"));
    WriteBytes(third, "third");
    ASSERT_EQ(Run(UploadTask(), sender).kind, Outcome::Complete);

    // The service's file is not what the manifest says: nothing is replaced.
    const auto before = Contents(receiver.folders.working);
    for (const auto& entry : fs::directory_iterator(service.Files()))
        if (ReadBytes(entry.path()) == "third")
            WriteBytes(entry.path(), "THIRD");
    expectHopeless(DownloadTask(), receiver, Fill(ArrivedWrong, "B903.I1A"));
    rasko::DropStaged(DownloadTask(), receiver.folders);
    EXPECT_EQ(Contents(receiver.folders.working), before);

    service.Administer("add-message --text 'Please renew.' --stop");
    expectHopeless(UploadTask(1), sender, Fill(MustAct, "Please renew."));
    // The user's cancel takes hold between two pieces.
    const auto stop = [](const rasko::Progress& progress) { return progress.done < 1; };
    EXPECT_EQ(Run(DownloadTask(), receiver, stop).kind, Outcome::Stopped);
}

TEST(TransferPlan, TakesOnlyFilesOfThePatient)
{
    const std::string signature(32, 'a');
    const auto manifest = [&](const std::string& name, const std::string& sign) {
        return "<patient patID='A1' frvPatId='7'><images><image imgfilename='x' finalfilename='" + name +
               "' imgfileSignature='" + sign + "'/></images></patient>";
    };
    for (const char* name : {"A100.I0A", "a199.v7z", "A100.M", "A1$00$scan.stl", "A100.I0A.AVI"})
        EXPECT_EQ(rasko::ReadDownload(manifest(name, signature)).files.at(0).localName, name);
    for (const char* name :
         {"", "A1.PF", "A1.ORIGINALPF", "A101.PF", "A2.PF", "B100.I0A", "A10000.I0A", "../A100.I0A",
          "A1$00$..\\..\\x", "A1$00$/x", "C:A100.I0A", "A1$00$x:stream", "A1$00$x.", "A1$00$x "})
        EXPECT_THROW(rasko::ReadDownload(manifest(name, signature)), rasko::Refused) << name;
    for (const std::string& sign :
         {std::string(), std::string(31, 'a'), std::string(32, 'A'), std::string(128, 'g')})
        EXPECT_THROW(rasko::ReadDownload(manifest("A100.I0A", sign)), rasko::Refused) << sign;
    for (const char* broken : {"", "<patient", "<patient patID='A1'/>", "<patient frvPatId='1'/>",
                               "<!DOCTYPE a><patient patID='A1' frvPatId='7'/>"})
        EXPECT_THROW(rasko::ReadDownload(broken), rasko::Refused) << broken;
    EXPECT_TRUE(rasko::ReadDownload("<patient patID='A1' frvPatId='7'><images><image imageExists='1'"
                                    " finalfilename='A100.I0A' imgfileSignature=''/></images></patient>")
                    .files.empty());
    // An upload lists what has a signature, each file once; the same grammar holds.
    const auto files =
        rasko::ReadUpload(veltest::SampleDocument("{1}", "A1", {{"A107.I0A", "x"}, {"A107.I0A", "x"}}));
    EXPECT_EQ(files.size(), 1U);
    EXPECT_THROW(rasko::ReadUpload(veltest::SampleDocument("{1}", "A1", {{"A1.PF", "x"}})), rasko::Refused);
    EXPECT_EQ(rasko::FormEncode("azAZ09 /:@[`{\xC3"), "azAZ09+%2f%3a%40%5b%60%7b%c3");
    EXPECT_EQ(rasko::ProgressStatus(1, 3), 29);
    EXPECT_EQ(rasko::ProgressStatus(9, 3), 89);
    EXPECT_EQ(rasko::ProgressStatus(0, 0), 0);
}
} // namespace
