// Saves in every format, whole and cut off at every call. (zipwork_test.cpp has what only the zip's do.)
#include "archive/files/filenames.h"
#include "archive/files/headerline.h"
#include "archive/work/earliersaving.h"
#include "archive/work/resultcodes.h"
#include "archive/work/volumesaving.h"
#include "archive/work/zipwork.h"
#include "tests/archive/memoryfilesystem.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>

using testing::ElementsAre;

namespace
{
enum class Format
{
    Zip, // with one worker
    ZipOfTwo,
    ZipOfSeven,
    Volumes,
    Earlier
};

class ArchiveSaving : public testing::TestWithParam<Format>
{
protected:
    ArchiveSaving()
    {
        for (const char* name : {"S1.PF", "S100.I0A", "S100.C01"})
            files.Put(std::string("C:\\w\\") + name, std::string(400 + 100U * std::strlen(name), name[4]));
        files.CreateFolder("C:\\arc");
        volumes.header = {"Smith", "Jo", "S1"};
        volumes.archivePath = "C:\\arc\\S1.kar";
        earlier.archivePath = "C:\\arc\\S1.PF";
        zip.archivePath = "C:\\arc\\S1.KAZ";
        zip.workingPath = "C:\\arc\\S1.ZIP";
        zip.patterns = arc::ArchivePatternArgument("S1");
        zip.parallel.workers = GetParam() == Format::ZipOfSeven ? 7 : GetParam() == Format::ZipOfTwo ? 2 : 1;
        zip.parallel.largest = 1100; // so that the longest name's file is a stream
        zip.parallel.memory = 2500;
        zip.checking = volumes.checking = "checking";
        zip.folder = volumes.folder = earlier.folder = "C:\\w";
        volumes.listed = earlier.listed = {"S1.PF", "S100.I0A", "S100.V0A", "S100.I40"};
        zip.trial = volumes.trial = earlier.trial = [this](const std::string& path) {
            tried = path;
            return isGood;
        };
        zip.step = volumes.step = earlier.step = [this](const char* step) { steps.push_back(step); };
        earlier.patientFile = [this] {
            ++standIns;
            return std::shared_ptr<void>(nullptr, [this](void*) { --standIns; });
        };
    }

    static bool IsZip()
    {
        return GetParam() < Format::Volumes;
    }
    static bool IsEarlier()
    {
        return GetParam() == Format::Earlier;
    }

    int Save()
    {
        steps.clear();
        if (IsZip())
            return arc::SaveZip(files, zip, progress);
        if (IsEarlier())
        {
            arc::EarlierSaving saving(files, earlier, progress);
            return arc::Run(saving);
        }
        arc::FolderVolumeSaving saving(files, volumes, progress);
        const int result = arc::Run(saving);
        EXPECT_EQ(result == arc::ResultDone, saving.Status() == arc::VolumeStatus::Done);
        return result;
    }

    // The archive's folder, bytes by path.
    std::map<std::string, std::string> Archives()
    {
        std::map<std::string, std::string> all;
        for (const std::string& path : files.Tree("C:\\arc"))
            all[path] = files.Bytes(path);
        return all;
    }

    // A zip, or an archive of three volumes, or of three files.
    void PutOld()
    {
        files.FailFrom(0);
        files.Clear("C:\\arc");
        const std::vector<std::string> zipped = {"S1.KAZ"}, inVolumes = {"S1.kar", "S1.001", "S1.002"},
                                       bare = {"S1.PF", "S100.I0A", "S100.V0A"};
        for (const std::string& name : IsZip() ? zipped : IsEarlier() ? bare : inVolumes)
            files.Put("C:\\arc\\" + name, "old " + name, arc::attribute::Archive | arc::attribute::Hidden);
    }

    MemoryFileSystem files;
    arc::ZipSave zip;
    arc::VolumeSave volumes;
    arc::EarlierSave earlier;
    arc::WorkProgress progress;
    std::vector<std::string> steps;
    std::string tried;
    bool isGood = true;
    int standIns = 0;
};
INSTANTIATE_TEST_SUITE_P(Formats, ArchiveSaving,
                         testing::Values(Format::Zip, Format::ZipOfTwo, Format::ZipOfSeven, Format::Volumes,
                                         Format::Earlier));
} // namespace

TEST_P(ArchiveSaving, TakesItsStepsAndReplacesTheWholeOldArchive)
{
    PutOld();
    std::vector<std::string> expected = {"save.aside", "save.written", "save.proven", "save.placed",
                                         "save.done"};
    if (IsEarlier())
        expected.insert(expected.begin() + 1, "save.patientFile");
    std::vector<int> standing;
    earlier.step = [&](const char* step) {
        steps.push_back(step);
        standing.push_back(standIns);
    };
    zip.step = [&](const char* step) {
        steps.push_back(step);
        standing.push_back(files.Exists(zip.archivePath)); // only when it is proven
    };
    std::string last;
    progress = [&](int, const std::string& name) {
        last = name;
        return true;
    };
    ASSERT_EQ(Save(), arc::ResultDone);
    EXPECT_EQ(steps, expected);
    if (IsEarlier())
    {
        EXPECT_THAT(standing, ElementsAre(0, 1, 0, 0, 0, 0));
        EXPECT_EQ(tried, "C:\\arc\\S1.PF");
        EXPECT_THAT(files.Tree("C:\\arc"),
                    ElementsAre("C:\\ARC\\S1.PF", "C:\\ARC\\S100.C01", "C:\\ARC\\S100.I0A"));
        for (const char* name : {"S1.PF", "S100.C01", "S100.I0A"})
            EXPECT_EQ(files.Bytes(std::string("C:\\arc\\") + name),
                      files.Bytes(std::string("C:\\w\\") + name));
        return;
    }
    EXPECT_EQ(last, "checking");
    if (IsZip())
    {
        EXPECT_THAT(standing, ElementsAre(0, 0, 0, 1, 1));
        EXPECT_EQ(tried, zip.workingPath);
        EXPECT_THAT(files.Tree("C:\\arc"), ElementsAre("C:\\ARC\\S1.KAZ"));
        EXPECT_TRUE(files.Find(zip.archivePath)->onMedium);
        return;
    }
    EXPECT_EQ(tried, "C:\\w\\S1.PF");
    EXPECT_EQ(files.Bytes("C:\\arc\\S1.kar"), arc::WriteHeaderLine(volumes.header));
    EXPECT_THAT(files.Tree("C:\\arc"), ElementsAre("C:\\ARC\\S1.001", "C:\\ARC\\S1.KAR"));
    EXPECT_TRUE(files.Find("C:\\arc\\S1.kar")->onMedium && files.Find("C:\\arc\\S1.001")->onMedium);
}

// Whichever call is the last that works, or fails once: the old archive is whole, each file under its own
// name or beside it, or the new one is, and nothing of a new one stays that is not.
TEST_P(ArchiveSaving, NoMomentLosesBothArchives)
{
    PutOld();
    const auto old = Archives();
    const int before = files.Calls();
    ASSERT_EQ(Save(), arc::ResultDone);
    const int calls = files.Calls() - before;
    const auto good = Archives();
    ASSERT_GT(calls, 20);
    for (int call = 1; call <= calls; ++call)
    {
        for (const int times : {0, 1})
        {
            PutOld();
            files.FailFrom(call, times);
            const int result = Save();
            files.FailFrom(0);
            const auto now = Archives();
            const auto has = [&](const auto& file) {
                const auto found = now.find(file.first);
                return found != now.end() && found->second == file.second;
            };
            const bool isNew = std::all_of(good.begin(), good.end(), has);
            const bool isOld = std::all_of(old.begin(), old.end(), [&](const auto& file) {
                return has(file) || has(std::pair(file.first + ".PREVIOUS", file.second));
            });
            EXPECT_TRUE(isNew || isOld) << call << " " << times;
            EXPECT_TRUE(result != arc::ResultDone || isNew) << call << " " << times;
            for (const auto& [path, bytes] : now)
            {
                const bool isRest = times == 1 && result != arc::ResultDone && !old.contains(path) &&
                                    !path.ends_with(".PREVIOUS");
                EXPECT_FALSE(isRest) << call << " " << path;
                EXPECT_TRUE(times == 0 || result == arc::ResultDone || !old.contains(path) ||
                            old.at(path) == bytes)
                    << call << " " << path;
            }
        }
    }
}

TEST_P(ArchiveSaving, EndsWhereItIsStoppedOrNotProvenAndKeepsTheOldArchive)
{
    int reports = 0;
    progress = [&](int, const std::string&) { return ++reports > 0; };
    PutOld();
    const auto old = Archives();
    ASSERT_EQ(Save(), arc::ResultDone);
    const int all = std::exchange(reports, 0);
    ASSERT_GT(all, 1);
    for (int last = 1; last <= all + 1; ++last)
    {
        PutOld();
        reports = 0;
        isGood = last <= all;
        progress = [&](int, const std::string&) { return ++reports != last || !isGood; };
        const int result = Save();
        // Several workers may come to one report less than before.
        if (reports < last && zip.parallel.IsParallel() && result == arc::ResultDone)
            continue;
        EXPECT_EQ(result, isGood ? arc::ResultCancelled : arc::ResultSaveFailed) << last;
        const auto now = Archives();
        EXPECT_EQ(now.size(), old.size()) << last;
        for (const auto& [path, bytes] : old)
            EXPECT_EQ(files.Bytes(path + ".previous"), bytes) << last;
        EXPECT_EQ(standIns, 0);
    }
    progress = {};
    isGood = true;
    // Where one of the old archive's files has to stay, all do.
    PutOld();
    const char* const last = IsZip() ? "S1.KAZ" : IsEarlier() ? "S100.V0A" : "S1.002";
    files.Find(std::string("C:\\arc\\") + last)->attributes = arc::attribute::ReadOnly;
    EXPECT_EQ(Save(), arc::ResultSaveFailed);
    EXPECT_EQ(Archives(), old);
    if (!IsZip())
    {
        // Without the patient file there is nothing to save.
        PutOld();
        files.Remove("C:\\w\\S1.PF");
        EXPECT_EQ(Save(), arc::ResultSaveFailed);
        files.Put("C:\\w\\S1.PF", "patient");
    }
    if (IsEarlier())
        return;
    // What has the archive's name by the time it is placed stays; a label that reads back otherwise goes.
    const std::string path = IsZip() ? zip.archivePath : volumes.archivePath;
    for (const bool isTaken : {true, false})
    {
        if (IsZip() && !isTaken)
            return;
        PutOld();
        zip.step = volumes.step = [&](const std::string& step) {
            if (step != "save.proven")
                return;
            if (isTaken)
                files.Put(path, "mine");
            files.m_bGarbles = !isTaken;
        };
        EXPECT_EQ(Save(), arc::ResultSaveFailed);
        EXPECT_EQ(files.Bytes(path), isTaken ? "mine" : "");
        EXPECT_EQ(files.Exists(path), isTaken);
        EXPECT_FALSE(files.Exists("C:\\arc\\S1.001") || files.Exists(zip.workingPath));
    }
}
