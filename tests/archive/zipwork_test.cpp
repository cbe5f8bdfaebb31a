#include "archive/files/filenames.h"
#include "archive/work/resultcodes.h"
#include "archive/work/zipwork.h"
#include "tests/archive/zipfixture.h"

#include <algorithm>

using testing::ElementsAre;
namespace attribute = arc::attribute;

namespace
{
const std::string Archive = "C:\\arc\\S1.KAZ";

class ArchiveZipWork : public ZipTest
{
protected:
    ArchiveZipWork()
    {
        for (const char* name : {"S1.PF", "S100.I40", "S100.DF0", "S12.PF"})
        {
            files.Put(std::string("C:\\w\\") + name, std::string(5000, name[3]) + name);
        }
        files.Put("C:\\tmp\\S1.ACV", "record");
        files.CreateFolder("C:\\arc");
        save.archivePath = Archive;
        save.patterns = arc::ArchivePatternArgument("S1");
        save.folder = "C:\\w";
        save.moreFiles = {"C:\\tmp\\S1.ACV", "C:\\w\\S100.DF0", "C:\\w\\S1.PF"};
        save.parallel = parallel;
    }

    int Load(const arc::WorkProgress& progress = {}, const std::string& path = Archive)
    {
        return arc::LoadZip(files, path, "C:\\out", progress, save.parallel);
    }

    arc::ZipSave save;
};
INSTANTIATE_TEST_SUITE_P(Workers, ArchiveZipWork, testing::Values(1U, 2U, 7U));
} // namespace

TEST_P(ArchiveZipWork, WhatIsSavedLoadsEqual)
{
    std::vector<int> percents;
    save.checking = "checking";
    std::string last;
    ASSERT_EQ(arc::SaveZip(files, save,
                           [&](int percent, const std::string& name) {
                               percents.push_back(percent);
                               last = name;
                               return true;
                           }),
              arc::ResultDone);
    EXPECT_TRUE(std::is_sorted(percents.begin(), percents.end()));
    EXPECT_EQ(last, "checking");
    ASSERT_EQ(Load(), arc::ResultDone);
    EXPECT_THAT(files.Tree("C:\\out"),
                ElementsAre("C:\\OUT\\S1.ACV", "C:\\OUT\\S1.PF", "C:\\OUT\\S100.DF0", "C:\\OUT\\S100.I40"));
    EXPECT_EQ(files.Bytes("C:\\out\\S100.DF0"), files.Bytes("C:\\w\\S100.DF0"));
    EXPECT_THAT(files.Tree("C:\\arc"), ElementsAre("C:\\ARC\\S1.KAZ"));
}

TEST_P(ArchiveZipWork, TheOldArchiveGoesOnlyWhenTheNewOneIsGood)
{
    files.Put(Archive, "old", attribute::Archive | attribute::Hidden);
    files.Put(Archive + ".previous", "older");
    ASSERT_EQ(arc::SaveZip(files, save), arc::ResultDone);
    EXPECT_THAT(files.Tree("C:\\arc"), ElementsAre("C:\\ARC\\S1.KAZ", "C:\\ARC\\S1.KAZ.PREVIOUS"));
    EXPECT_EQ(files.Bytes(Archive + ".previous"), "older");

    files.Put(Archive, "old");
    const auto held = files.Open("C:\\w\\S100.I40", arc::Access::ReadShared);
    EXPECT_EQ(arc::SaveZip(files, save), arc::ResultSaveFailed);
    EXPECT_FALSE(files.Exists(Archive));
    EXPECT_EQ(files.Bytes(Archive + ".previous2"), "old");
    EXPECT_EQ(files.Bytes(Archive + ".previous"), "older");
}

TEST_P(ArchiveZipWork, TheZipTakesTheArchivesNameWhenItIsProven)
{
    files.Put(Archive, "old");
    save.workingPath = "C:\\arc\\S1.ZIP";
    std::vector<std::string> seen;
    save.step = [&](const char* step) {
        seen.push_back(step + (files.Exists(Archive) ? std::string("!") : ""));
    };
    save.trial = [&](const std::string& path) { return path == save.workingPath && files.Exists(path); };
    std::vector<arc::PresentFile> stored;
    files.Find("C:\\w\\S1.PF")->stamp = 77;
    ASSERT_EQ(arc::SaveZip(files, save, {}, &stored), arc::ResultDone);
    EXPECT_THAT(seen, ElementsAre("save.aside", "save.written", "save.proven", "save.placed!", "save.done!"));
    EXPECT_THAT(files.Tree("C:\\arc"), ElementsAre("C:\\ARC\\S1.KAZ"));
    EXPECT_THAT(stored,
                ElementsAre(arc::PresentFile{"S1.PF", 5005, 77}, arc::PresentFile{"S100.I40", 5008, 0},
                            arc::PresentFile{"S1.ACV", 6, 0}, arc::PresentFile{"S100.DF0", 5008, 0}));

    // What fails the trial is no archive, and the one that was there is kept.
    files.Put(Archive, "old");
    save.trial = [](const std::string&) { return false; };
    EXPECT_EQ(arc::SaveZip(files, save, {}, &stored), arc::ResultSaveFailed);
    EXPECT_THAT(files.Tree("C:\\arc"), ElementsAre("C:\\ARC\\S1.KAZ.PREVIOUS"));
    // Somebody else's file of the working name stays.
    save.trial = {};
    files.Put(save.workingPath, "mine");
    EXPECT_EQ(arc::SaveZip(files, save), arc::ResultSaveFailed);
    EXPECT_EQ(files.Bytes(save.workingPath), "mine");
    // So does one that takes the archive's name meanwhile.
    files.Remove(save.workingPath);
    save.trial = [&](const std::string&) {
        files.Put(Archive, "mine");
        return true;
    };
    EXPECT_EQ(arc::SaveZip(files, save), arc::ResultSaveFailed);
    EXPECT_THAT(files.Tree("C:\\arc"), ElementsAre("C:\\ARC\\S1.KAZ", "C:\\ARC\\S1.KAZ.PREVIOUS"));
    EXPECT_EQ(files.Bytes(Archive), "mine");
}

TEST_P(ArchiveZipWork, AReadOnlyArchiveStays)
{
    files.Put(Archive, "old", attribute::Archive | attribute::ReadOnly);
    EXPECT_EQ(arc::SaveZip(files, save), arc::ResultSaveFailed);
    EXPECT_EQ(files.Bytes(Archive), "old");
    save.diskette = true;
    EXPECT_EQ(arc::SaveZip(files, save), arc::ResultSaveFailed);
    EXPECT_EQ(files.Bytes(Archive), "old");
}

TEST_P(ArchiveZipWork, OnADisketteTheArchiveIsWrittenOver)
{
    files.Put(Archive, "old");
    save.diskette = true;
    save.workingPath = "C:\\arc\\S1.ZIP"; // the diskette need not have room for both
    save.trial = [](const std::string& path) { return path == Archive; };
    EXPECT_EQ(arc::SaveZip(files, save), arc::ResultDone);
    EXPECT_TRUE(files.Find(Archive)->onMedium);
    EXPECT_THAT(files.Tree("C:\\arc"), ElementsAre("C:\\ARC\\S1.KAZ"));
}

TEST_P(ArchiveZipWork, FailuresHaveTheirCodes)
{
    save.moreFiles.push_back("C:\\tmp\\none");
    EXPECT_EQ(arc::SaveZip(files, save), arc::ResultSaveFailed);
    EXPECT_FALSE(files.Exists(Archive));
    save.moreFiles.pop_back();
    save.archivePath = "C:\\nowhere\\S1.KAZ";
    EXPECT_EQ(arc::SaveZip(files, save), arc::ResultSaveFailed);
    // Two files of one bare name could not both be loaded.
    save.archivePath = Archive;
    files.Put("C:\\tmp\\S100.I40", "other");
    save.moreFiles.push_back("C:\\tmp\\S100.I40");
    EXPECT_EQ(arc::SaveZip(files, save), arc::ResultSaveFailed);
    EXPECT_FALSE(files.Exists(Archive));

    files.Put(Archive, "no zip");
    EXPECT_EQ(Load(), arc::ResultLoadFailed);
    EXPECT_EQ(Load({}, "C:\\none.kaz"), arc::ResultLoadFailed);
}

TEST_P(ArchiveZipWork, StoppingLeavesNoArchive)
{
    files.Put(Archive, "old");
    EXPECT_EQ(arc::SaveZip(files, save, [](int, const std::string&) { return false; }), arc::ResultCancelled);
    EXPECT_FALSE(files.Exists(Archive));
    EXPECT_EQ(files.Bytes(Archive + ".previous"), "old");
    ASSERT_EQ(arc::SaveZip(files, save), arc::ResultDone);
    EXPECT_EQ(Load([](int, const std::string&) { return false; }), arc::ResultCancelled);
}

// Whichever call is the last that works, as when the process is killed there: the old archive is whole, under
// its own name or beside it, or the new one is.
TEST_P(ArchiveZipWork, NoMomentLosesBothArchives)
{
    save.workingPath = "C:\\arc\\S1.ZIP";
    const auto reset = [&] {
        files.FailFrom(0);
        for (const std::string& path : files.Tree("C:\\arc"))
        {
            files.RemoveFile(path);
        }
        files.Put(Archive, "old");
    };
    reset();
    files.FailFrom(0);
    ASSERT_EQ(arc::SaveZip(files, save), arc::ResultDone);
    const int calls = files.Calls();
    const std::string good = files.Bytes(Archive);
    ASSERT_GT(calls, 20);
    for (int call = 1; call <= calls; ++call)
    {
        for (const int times : {0, 1})
        {
            reset();
            files.FailFrom(call, times);
            const int result = arc::SaveZip(files, save);
            files.FailFrom(0);
            const bool whole = files.Bytes(Archive) == good;
            const bool kept = files.Bytes(Archive) == "old" || files.Bytes(Archive + ".previous") == "old";
            EXPECT_TRUE(whole || kept) << call << " " << times;
            EXPECT_TRUE(result != arc::ResultDone || whole) << call << " " << times;
            // After a fault that passed, what is not good does not stand under the archive's name.
            EXPECT_TRUE(times == 0 || result == arc::ResultDone || !files.Exists(Archive) ||
                        files.Bytes(Archive) == "old")
                << call;
        }
    }
}
