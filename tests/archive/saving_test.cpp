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
        zip.step = volumes.step = earlier.step = [this](const char* step) {
            steps.push_back(step + std::string(files.Exists(Path()) ? "+" : "") + (standIns > 0 ? "*" : ""));
        };
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

    const std::string& Path() const
    {
        return IsZip() ? zip.archivePath : IsEarlier() ? earlier.archivePath : volumes.archivePath;
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

    // Bytes of a folder's files by path.
    std::map<std::string, std::string> FilesIn(const std::string& folder)
    {
        std::map<std::string, std::string> all;
        for (const std::string& path : files.Tree(folder))
            all[path.substr(folder.size() + 1)] = files.Bytes(path);
        return all;
    }
    std::map<std::string, std::string> Archives()
    {
        return FilesIn("C:\\arc");
    }

    // A zip, or an archive of three volumes, or of three files.
    void PutOld()
    {
        files.FailFrom(0);
        files.Clear("C:\\arc");
        const std::vector<std::string> zipped = {"S1.KAZ"}, inVolumes = {"S1.KAR", "S1.001", "S1.002"},
                                       bare = {"S1.PF", "S100.I0A", "S100.V0A"};
        for (const std::string& name : IsZip() ? zipped : IsEarlier() ? bare : inVolumes)
            files.Put("C:\\arc\\" + name, "old " + name, arc::attribute::Archive | arc::attribute::Hidden);
    }

    MemoryFileSystem files;
    arc::ZipSave zip;
    arc::VolumeSave volumes;
    arc::EarlierSave earlier;
    arc::WorkProgress progress;
    std::vector<std::string> steps; // with "+" where the archive has its name, "*" beside the stand-in
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
    std::string last;
    progress = [&](int, const std::string& name) {
        last = name;
        return true;
    };
    ASSERT_EQ(Save(), arc::ResultDone);
    for (const std::string& path : files.Tree("C:\\arc"))
        EXPECT_TRUE(files.Find(path)->onMedium) << path;
    if (IsEarlier())
    {
        EXPECT_THAT(steps, ElementsAre("save.aside", "save.patientFile*", "save.written+", "save.proven+",
                                       "save.placed+", "save.done+"));
        EXPECT_EQ(tried, Path());
        EXPECT_EQ(Archives(), FilesIn("C:\\w"));
        return;
    }
    EXPECT_THAT(steps,
                ElementsAre("save.aside", "save.written", "save.proven", "save.placed+", "save.done+"));
    EXPECT_EQ(last, "checking");
    EXPECT_EQ(tried, IsZip() ? zip.workingPath : "C:\\w\\S1.PF");
    EXPECT_EQ(Archives().size(), IsZip() ? 1U : 2U);
    EXPECT_TRUE(IsZip() || files.Bytes(Path()) == arc::WriteHeaderLine(volumes.header));
}

// Whichever call is the last that works, or fails once: the old archive is whole, each file under its own
// name or beside it, or the new one is, and nothing of a new one stays that is not.
TEST_P(ArchiveSaving, NoMomentLosesBothArchives)
{
    PutOld();
    const auto old = Archives();
    const int before = files.m_calls;
    ASSERT_EQ(Save(), arc::ResultDone);
    const int calls = files.m_calls - before;
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
            EXPECT_EQ(now.at(path + ".PREVIOUS"), bytes) << last;
        EXPECT_EQ(standIns, 0);
    }
    progress = {};
    isGood = true;
    // Where one of the old archive's files has to stay, all do.
    PutOld();
    files.Find(IsZip()       ? Path()
               : IsEarlier() ? "C:\\arc\\S100.V0A"
                             : "C:\\arc\\S1.002")
        ->attributes = arc::attribute::ReadOnly;
    EXPECT_EQ(Save(), arc::ResultSaveFailed);
    EXPECT_EQ(Archives(), old);
    // What has the archive's name by the time it is placed stays; a label that reads back otherwise goes.
    for (const bool isTaken : {true, false})
    {
        if (IsEarlier() || (IsZip() && !isTaken))
            break;
        PutOld();
        zip.step = volumes.step = [&](const std::string& step) {
            if (step != "save.proven")
                return;
            if (isTaken)
                files.Put(Path(), "mine");
            files.m_bGarbles = !isTaken;
        };
        EXPECT_EQ(Save(), arc::ResultSaveFailed);
        EXPECT_EQ(files.Bytes(Path()), isTaken ? "mine" : "");
        EXPECT_EQ(files.Exists(Path()), isTaken);
        EXPECT_FALSE(files.Exists("C:\\arc\\S1.001") || files.Exists(zip.workingPath));
    }
    // Without the patient file there is nothing to save.
    files.m_bGarbles = false;
    files.RemoveFile("C:\\w\\S1.PF");
    EXPECT_TRUE(IsZip() || Save() == arc::ResultSaveFailed);
}
