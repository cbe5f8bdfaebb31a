// Archives of many files, packed, read back and unpacked by one thread or several.
#include "archive/files/filenames.h"
#include "archive/work/verify.h"
#include "archive/zip/entrypacker.h"
#include "archive/zip/zipfunctions.h"
#include "tests/archive/zipfixture.h"

#include <algorithm>
#include <chrono>
#include <set>
#include <thread>

#include <minizip/zip.h>

namespace
{
const std::string Zip = "C:\\out\\x.kaz";

std::string Text(std::size_t size)
{
    std::string text;
    for (unsigned line = 0; text.size() < size; ++line)
        text += "point " + std::to_string(line * 7919 % 4096) + "," + std::to_string(line) + "\n";
    return text.substr(0, size);
}

class ArchiveParallel : public ZipTest
{
protected:
    ArchiveParallel()
    {
        files.CreateFolder("C:\\out");
        parallel.largest = 100'000;
        parallel.memory = 250'000; // less than two of the largest need
    }

    void Put(const std::string& name, const std::string& bytes)
    {
        files.Put("C:\\w\\" + name, bytes);
        set.push_back({name, bytes.size()});
    }

    // Everything there is: nothing, text and noise of all lengths, more than fits, more than all others
    // together.
    void PutAllKinds()
    {
        Put("empty", "");
        Put("one", "x");
        Put("text", Text(60'000));
        Put("noise", Noise(99'000));
        Put("bound", Noise(100'000));
        Put("over", Text(100'001));
        Put("grey", std::string(40'000, '\x7f') + std::string(40'000, '\b'));
        Put("only grey", std::string(3'000, '\x1b'));
        Put("late zero", Text(70'000) + std::string(1, '\0') + Text(100));
        Put("repeated, then zero", std::string(60'000, 'a') + std::string(30'000, '\0'));
        Put("early zero", std::string(1, '\0') + Text(90'000));
        Put("giant", Text(400'000) + Noise(900'000));
        for (const std::size_t size : {2047U, 2048U, 2049U, 32'767U, 32'768U, 65'536U, 262'144U, 262'145U})
            Put("n" + std::to_string(size), Noise(size));
        for (int i = 0; i < 50; ++i)
            Put("small" + std::to_string(i),
                Noise(static_cast<std::size_t>(i) * 17, 5U + static_cast<unsigned>(i)));
    }

    bool Save()
    {
        CZipper zipper(files);
        zipper.SetParallel(parallel);
        zipper.SetProgress(progress);
        std::vector<std::string> paths;
        for (const arc::PresentFile& file : set)
            paths.push_back("C:\\w\\" + file.name);
        const bool added = zipper.OpenZip(Zip) && zipper.AddPatternList({}, {}, true, paths);
        stored = zipper.Stored();
        return zipper.CloseZip() && added;
    }

    bool Verify()
    {
        return arc::VerifyZip(files, Zip, set, {}, parallel);
    }

    bool Load(const std::string& path = Zip)
    {
        CUnzipper unzipper(files);
        unzipper.SetParallel(parallel);
        unzipper.SetProgress(progress);
        return unzipper.OpenZip(path) && unzipper.UnzipAll("C:\\back");
    }

    void ExpectAllBack()
    {
        for (const arc::PresentFile& file : set)
            EXPECT_TRUE(files.Bytes("C:\\back\\" + file.name) == files.Bytes("C:\\w\\" + file.name))
                << file.name;
    }

    // As the zip library's own program writes them.
    std::string PlainZip()
    {
        arc::ZipFileFunctions functions(files);
        const zipFile zip =
            zipOpen2_64("C:\\out\\plain.zip", APPEND_STATUS_CREATE, nullptr, functions.Table());
        for (const arc::PresentFile& file : set)
        {
            zip_fileinfo info{};
            info.tmz_date = {6, 5, 4, 21, 10, 2026};
            info.external_fa = arc::attribute::Archive;
            zipOpenNewFileInZip(zip, file.name.c_str(), &info, nullptr, 0, nullptr, 0, nullptr, Z_DEFLATED,
                                Z_DEFAULT_COMPRESSION);
            const std::string bytes = files.Bytes("C:\\w\\" + file.name);
            zipWriteInFileInZip(zip, bytes.data(), static_cast<unsigned>(bytes.size()));
            zipCloseFileInZip(zip);
        }
        zipClose(zip, nullptr);
        return files.Bytes("C:\\out\\plain.zip");
    }

    // The central records, without packed sizes and places.
    static std::vector<std::string> Records(const std::string& zip)
    {
        std::vector<std::string> records;
        const std::size_t end = zip.size() - 22;
        const auto get = [&](std::size_t at, int bytes) {
            std::size_t value = 0;
            while (bytes-- > 0)
                value = value << 8 | static_cast<unsigned char>(zip[at + static_cast<std::size_t>(bytes)]);
            return value;
        };
        for (std::size_t at = get(end + 16, 4); at < end;)
        {
            const std::size_t size = 46 + get(at + 28, 2) + get(at + 30, 2) + get(at + 32, 2);
            std::string record = zip.substr(at, size);
            record.replace(20, 4, 4, '?').replace(42, 4, 4, '?');
            records.push_back(record);
            at += size;
        }
        return records;
    }

    std::vector<arc::PresentFile> set;
    std::vector<arc::PresentFile> stored;
    CZipper::Progress progress;
};
INSTANTIATE_TEST_SUITE_P(Workers, ArchiveParallel, testing::Values(1U, 2U, 7U));
} // namespace

TEST_P(ArchiveParallel, TheZipIsTheLibrarysButForThePackedBytes)
{
    PutAllKinds();
    const std::string plain = PlainZip();
    progress = Noting();
    ASSERT_TRUE(Save());
    const std::string zip = files.Bytes(Zip);
    EXPECT_EQ(Records(zip), Records(plain));
    EXPECT_LE(zip.size(), plain.size() / 100 * 101);
    EXPECT_TRUE(!IsSerial() || zip == plain);
    ASSERT_EQ(stored.size(), set.size());
    EXPECT_TRUE(std::is_sorted(percents.begin(), percents.end()));
    EXPECT_EQ(percents.back(), 100);
    // The giant alone, a stream for whoever packs it, moves the bar twenty times.
    EXPECT_GT(std::set<int>(percents.begin(), percents.end()).size(), 20u);

    EXPECT_TRUE(Verify());
    ++set.back().size;
    EXPECT_FALSE(Verify());
    set.pop_back();
    EXPECT_FALSE(Verify());
    for (const std::string& path : {Zip, std::string("C:\\out\\plain.zip")})
    {
        percents.clear();
        ASSERT_TRUE(Load(path));
        ExpectAllBack();
        EXPECT_GT(percents.size(), IsSerial() ? set.size() + 15 : 15); // the giant every 64 KiB
    }
    EXPECT_EQ(files.Find("C:\\back\\one")->written, (arc::LocalTime{2026, 10, 21, 4, 5, 6}));
}

// Threads that cannot be started, and a thread's first, later and all requests for memory that fail: what
// they cannot do the caller does.
TEST_P(ArchiveParallel, GoesOnWithTheWorkersAndTheMemoryThatThereAre)
{
    PutAllKinds();
    const struct
    {
        int threads;
        std::uint64_t memory; // of 1 byte: one entry at a time goes on without any
        int first, last;      // requests that fail
    } cases[] = {{0, 250'000, 0, 0}, {1, 250'000, 0, 0},  {3, 1, 0, 0},
                 {9, 250'000, 1, 1}, {9, 250'000, 9, 12}, {9, 250'000, 1, 1'000'000}};
    const std::function<bool()> steps[] = {[&] { return Save(); }, [&] { return Verify(); },
                                           [&] { return Load(); }};
    for (const auto& c : cases)
    {
        int asked = 0;
        files.m_opening = [&, caller = std::this_thread::get_id()] {
            if (std::this_thread::get_id() != caller && ++asked >= c.first && asked <= c.last)
                throw std::bad_alloc();
        };
        parallel.memory = c.memory;
        for (const auto& step : steps)
        {
            startable = c.threads;
            asked = 0;
            ASSERT_TRUE(step()) << c.threads << " " << c.first << " " << &step - steps;
        }
        ExpectAllBack();
        files.Clear("C:\\back");
    }
}

TEST_P(ArchiveParallel, ASourceThatFailsOrChangesFailsTheSave)
{
    PutAllKinds();
    for (const std::size_t index : {std::size_t{0}, std::size_t{3}, set.size() - 1}) // none that is a stream
    {
        const std::string path = "C:\\w\\" + set[index].name;
        const std::string whole = files.Bytes(path);
        for (const std::string& changed : {whole + "x", whole.substr(0, whole.size() / 2)})
        {
            files.m_sized = [&](const std::string& sizedPath) {
                if (arc::EqualNoCase(sizedPath, path))
                    files.Find(path)->bytes = changed;
            };
            EXPECT_EQ(Save(), changed == whole) << set[index].name << " " << changed.size();
            EXPECT_EQ(stored.size(), changed == whole ? set.size() : index);
            files.Find(path)->bytes = whole;
        }
        files.m_sized = nullptr;
        const auto held = files.Open(path, arc::Access::ReadShared);
        EXPECT_FALSE(Save()) << set[index].name;
    }
    EXPECT_TRUE(Save());
}

// What is packed ahead is bounded by what it takes once it is packed, and an entry that was taken counts no
// more.
TEST_P(ArchiveParallel, PacksAheadAsFarAsTheMemoryReaches)
{
    constexpr std::size_t size = 40'000;
    const auto begin = [&](const std::string& contents) {
        std::vector<std::string> paths;
        for (int i = 0; i < 20; ++i)
        {
            paths.push_back("C:\\w\\" + std::to_string(i));
            files.Put(paths.back(), contents);
        }
        return paths;
    };
    const auto readsAhead = [&](const arc::EntryPacker& packer, std::size_t expected) {
        for (int i = 0; i < 2000 && packer.BytesRead() < expected * size; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        return packer.BytesRead() / size;
    };
    const auto small = begin(std::string(size, 'a'));
    arc::EntryPacker all(files, small, parallel);
    EXPECT_EQ(readsAhead(all, 20), 20u);

    const auto large = begin(Noise(size));
    arc::EntryPacker some(files, large, parallel);
    for (int i = 0; i < 10; ++i)
        EXPECT_TRUE(some.Next([] { return true; }));
    EXPECT_GE(readsAhead(some, 13), 13u);
    EXPECT_LT(some.BytesRead() / size, 18u);
}

// A patient's file may well be of one value; what we save we load.
TEST_P(ArchiveParallel, NothingThatIsSavedIsTooGoodToBeLoaded)
{
    Put("zeros", std::string(40'000'000, '\0'));
    ASSERT_TRUE(Save());
    EXPECT_TRUE(Verify());
}
