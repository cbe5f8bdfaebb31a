// What only a save to a zip does, and loads from one. (saving_test.cpp has what all saves share.)
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
        for (const char* name : {"S1.PF", "S1$x.2dmorph", "S100.I40", "S100.DF0", "S12.PF"})
            files.Put(std::string("C:\\w\\") + name, std::string(5000, name[3]) + name);
        files.Put("C:\\tmp\\S1.ACV", "record");
        files.CreateFolder("C:\\arc");
        save.archivePath = Archive;
        save.patterns = arc::ArchivePatternArgument("S1");
        save.folder = "C:\\w";
        save.moreFiles = {"C:\\tmp\\S1.ACV", "C:\\w\\S100.DF0", "C:\\w\\S1.PF"};
        save.parallel = parallel;
    }

    int Load(const arc::WorkProgress& progress)
    {
        return arc::LoadZip(files, Archive, "C:\\out", progress, save.parallel);
    }

    arc::ZipSave save;
};
INSTANTIATE_TEST_SUITE_P(Workers, ArchiveZipWork, testing::Values(1U, 2U, 7U));
} // namespace

TEST_P(ArchiveZipWork, WhatIsSavedLoadsEqual)
{
    std::vector<arc::PresentFile> stored;
    files.Find("C:\\w\\S1.PF")->stamp = 77;
    ASSERT_EQ(arc::SaveZip(files, save, Noting(), &stored), arc::ResultDone);
    EXPECT_TRUE(std::is_sorted(percents.begin(), percents.end()));
    EXPECT_THAT(stored,
                ElementsAre(arc::PresentFile{"S1.PF", 5005, 77}, arc::PresentFile{"S100.I40", 5008, 0},
                            arc::PresentFile{"S1$x.2dmorph", 5012, 0}, arc::PresentFile{"S1.ACV", 6, 0},
                            arc::PresentFile{"S100.DF0", 5008, 0}));
    ASSERT_EQ(Load({}), arc::ResultDone);
    EXPECT_EQ(files.Tree("C:\\out").size(), stored.size());
    EXPECT_EQ(files.Bytes("C:\\out\\S1.ACV"), "record");
    EXPECT_EQ(files.Bytes("C:\\out\\S100.DF0"), files.Bytes("C:\\w\\S100.DF0"));
    EXPECT_EQ(Load([](int, const std::string&) { return false; }), arc::ResultCancelled);
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
    files.Put(Archive, "old", attribute::Archive | attribute::ReadOnly);
    EXPECT_EQ(arc::SaveZip(files, save), arc::ResultSaveFailed);
    EXPECT_EQ(files.Bytes(Archive), "old");
}

TEST_P(ArchiveZipWork, FailuresHaveTheirCodes)
{
    files.Put("C:\\tmp\\S100.I40", "other");
    files.Put("C:\\arc\\TAKEN.ZIP", "mine");
    const arc::ZipSave good = save;
    const struct
    {
        const char *archive, *working, *more;
    } cases[] = {{"C:\\arc\\S1.KAZ", "", "C:\\tmp\\none"},
                 {"C:\\nowhere\\S1.KAZ", "", "C:\\tmp\\S1.ACV"},
                 {"C:\\arc\\S1.KAZ", "", "C:\\tmp\\S100.I40"}, // two of one bare name could not be loaded
                 {"C:\\arc\\S1.KAZ", "C:\\arc\\TAKEN.ZIP", "C:\\tmp\\S1.ACV"}};
    for (const auto& c : cases)
    {
        save = good;
        save.archivePath = c.archive;
        save.workingPath = c.working;
        save.moreFiles.push_back(c.more);
        EXPECT_EQ(arc::SaveZip(files, save), arc::ResultSaveFailed) << c.archive << c.working << c.more;
        EXPECT_EQ(files.Tree("C:\\arc").size(), 1u);
        EXPECT_EQ(files.Bytes("C:\\arc\\TAKEN.ZIP"), "mine");
    }
    files.Put(Archive, "no zip");
    EXPECT_EQ(Load({}), arc::ResultLoadFailed);
}
