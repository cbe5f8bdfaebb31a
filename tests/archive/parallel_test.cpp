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
    {
        text += "point " + std::to_string(line * 7919 % 4096) + "," + std::to_string(line) + "\n";
    }
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
        {
            Put("n" + std::to_string(size), Noise(size));
        }
        for (int i = 0; i < 50; ++i)
        {
            Put("small" + std::to_string(i),
                Noise(static_cast<std::size_t>(i) * 17, 5U + static_cast<unsigned>(i)));
        }
    }

    bool Save(const std::string& path = Zip)
    {
        CZipper zipper(files);
        zipper.SetParallel(parallel);
        zipper.SetProgress(progress);
        const bool added = zipper.OpenZip(path) && zipper.AddFiles("C:\\w", set);
        stored = zipper.Stored();
        return zipper.CloseZip() && added;
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
            {
                value = value << 8 | static_cast<unsigned char>(zip[at + static_cast<std::size_t>(bytes)]);
            }
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
    std::vector<int> percents;
    progress = [&](int percent, const std::string&) {
        percents.push_back(percent);
        return true;
    };
    ASSERT_TRUE(Save());
    const std::string zip = files.Bytes(Zip);
    EXPECT_EQ(Records(zip), Records(plain));
    EXPECT_LE(zip.size(), plain.size() / 100 * 101);
    if (GetParam() == 1)
    {
        EXPECT_EQ(zip == plain, true);
    }
    ASSERT_EQ(stored.size(), set.size());
    EXPECT_TRUE(std::is_sorted(percents.begin(), percents.end()));
    EXPECT_EQ(percents.back(), 100);
    // The giant alone, a stream for whoever packs it, moves the bar twenty times.
    EXPECT_GT(std::set<int>(percents.begin(), percents.end()).size(), 20u);

    EXPECT_TRUE(arc::VerifyZip(files, Zip, set, {}, parallel));
    std::vector<arc::PresentFile> other = set;
    ++other.back().size;
    EXPECT_FALSE(arc::VerifyZip(files, Zip, other, {}, parallel));
    other.pop_back();
    EXPECT_FALSE(arc::VerifyZip(files, Zip, other, {}, parallel));
    percents.clear();
    for (const std::string& path : {Zip, std::string("C:\\out\\plain.zip")})
    {
        ASSERT_TRUE(Load(path));
        ExpectAllBack();
    }
    EXPECT_EQ(files.Find("C:\\back\\one")->written, (arc::LocalTime{2026, 10, 21, 4, 5, 6}));
}

TEST_P(ArchiveParallel, GoesOnWithAsManyWorkersAsThereAre)
{
    PutAllKinds();
    for (const int some : {0, 1, 3})
    {
        parallel.memory = some == 3 ? 1 : parallel.memory; // one entry at a time goes on without any
        startable = some;
        ASSERT_TRUE(Save()) << some;
        startable = some;
        EXPECT_TRUE(arc::VerifyZip(files, Zip, set, {}, parallel)) << some;
        startable = some;
        EXPECT_TRUE(Load()) << some;
    }
}

// A worker's first, a later and all of its requests for memory: what it cannot do the caller does.
TEST_P(ArchiveParallel, GoesOnWithoutTheMemoryThatWorkersDoNotGet)
{
    PutAllKinds();
    int asked = 0, first = 0, last = 0;
    files.m_opening = [&, caller = std::this_thread::get_id()] {
        if (std::this_thread::get_id() != caller && ++asked >= first && asked <= last)
        {
            throw std::bad_alloc();
        }
    };
    for (const auto& [from, to] : {std::pair{1, 1}, {9, 12}, {1, 1'000'000}})
    {
        first = from;
        last = to;
        asked = 0;
        ASSERT_TRUE(Save()) << from;
        asked = 0;
        EXPECT_TRUE(arc::VerifyZip(files, Zip, set, {}, parallel)) << from;
        asked = 0;
        ASSERT_TRUE(Load()) << from;
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
                {
                    files.Find(path)->bytes = changed;
                }
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

TEST_P(ArchiveParallel, StopsWhereverItIsToldTo)
{
    PutAllKinds();
    ASSERT_TRUE(Save());
    for (const int last : {1, 2, 20, 60})
    {
        int reports = 0;
        progress = [&](int, const std::string&) { return ++reports < last; };
        EXPECT_FALSE(Save("C:\\out\\stopped.kaz")) << last;
        EXPECT_LE(reports, last);
        reports = 0;
        if (last <= 20) // who unpacks in parallel may be done by then
        {
            EXPECT_FALSE(Load() && reports > last) << last;
        }
    }
}

TEST_P(ArchiveParallel, AFullDiskFailsTheSave)
{
    PutAllKinds();
    ASSERT_TRUE(Save());
    const std::uint64_t needed = files.Bytes(Zip).size() / 512;
    for (std::uint64_t clusters = 0; clusters < needed; clusters += needed / 5)
    {
        files.AddDrive('D', clusters);
        EXPECT_FALSE(Save("D:\\x.kaz")) << clusters;
        files.RemoveFile("D:\\x.kaz");
    }
}

// Whatever call fails, on whichever thread.
TEST_P(ArchiveParallel, NoFaultGoesUnnoticed)
{
    for (const std::size_t size : {90'000U, 3U, 120'000U, 70'000U})
    {
        Put("f" + std::to_string(size), Noise(size));
    }
    const std::function<bool()> steps[] = {
        [&] { return Save(); },
        [&] { return arc::VerifyZip(files, Zip, set, {}, parallel); },
        [&] {
            for (const std::string& path : files.Tree("C:\\back"))
            {
                files.Find(path)->bytes.clear();
            }
            return Load();
        },
    };
    ASSERT_TRUE(Save());
    const std::string good = files.Bytes(Zip);
    for (const auto& step : steps)
    {
        files.Put(Zip, good);
        files.FailFrom(0);
        ASSERT_TRUE(step());
        const int calls = files.Calls();
        ASSERT_GT(calls, 8);
        // Closing what was only read may fail, by each worker last of all.
        const int harmless = &step == steps ? 0 : static_cast<int>(GetParam()) + 2;
        for (int call = 1; call <= calls; ++call)
        {
            files.Put(Zip, good);
            files.FailFrom(call);
            const bool done = step();
            // Which thread does what, and so how often it asks for more, is never twice the same.
            EXPECT_TRUE(!done || files.Calls() < call + harmless) << call << " of " << files.Calls();
            files.FailFrom(0);
        }
    }
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
    parallel = {};
    parallel.workers = GetParam();
    files.AddDrive('D');
    Put("zeros", std::string(40'000'000, '\0'));
    ASSERT_TRUE(Save());
    EXPECT_TRUE(arc::VerifyZip(files, Zip, set, {}, parallel));
}

TEST_P(ArchiveParallel, VerificationSeesEveryChangedByte)
{
    Put("a.pf", "some bytes of a record");
    Put("b.pf", Noise(50));
    ASSERT_TRUE(Save());
    const std::string whole = files.Bytes(Zip);
    int unnoticed = 0;
    for (std::size_t at = 0; at < whole.size(); ++at)
    {
        std::string changed = whole;
        changed[at] ^= 0x10;
        files.Put(Zip, changed);
        unnoticed += arc::VerifyZip(files, Zip, set, {}, parallel) ? 1 : 0;
    }
    // Versions, times and attributes of two entries in two headers, and the bits that fill up the last byte
    // of packed contents; nothing of names, sizes, places or contents.
    EXPECT_LE(unnoticed, 2 * (6 + 14 + 1));
}
