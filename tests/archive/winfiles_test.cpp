// The rules' file system on a real disk.
#include "archive/files/filenames.h"
#include "archive/files/filesystem.h"
#include "archive/zip/unzipper.h"
#include "tests/archive/rawzip.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace attribute = arc::attribute;

namespace
{
class ArchiveWindowsFiles : public testing::Test
{
protected:
    void SetUp() override
    {
        const std::string name = "arc" + std::to_string(GetCurrentProcessId());
        folder = (std::filesystem::temp_directory_path() / name).string();
        ASSERT_TRUE(files.CreateFolder(folder));
    }

    void TearDown() override
    {
        std::filesystem::remove_all(folder);
    }

    std::string Path(const std::string& name) const
    {
        return arc::JoinPath(folder, name);
    }

    // Bytes as other programs write and read them.
    void Put(const std::string& name, const std::string& bytes)
    {
        std::ofstream(Path(name), std::ios::binary) << bytes;
    }
    std::string Get(const std::string& name)
    {
        std::ifstream file(Path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    arc::FileSystem& files = arc::WindowsFileSystem();
    std::string folder;
};
} // namespace

TEST_F(ArchiveWindowsFiles, KnowsAFolderByAnyPathAndWhatIsNotThereFromWhatCannotBeAsked)
{
    Put("a.bin", "a");
    const std::string identity = files.Identity(folder);
    EXPECT_FALSE(identity.empty());
    EXPECT_EQ(files.Identity(Path(".") + "\\"), identity);
    EXPECT_NE(files.Identity(Path("a.bin")), identity);
    EXPECT_EQ(files.Identity(Path("none")), "");

    EXPECT_TRUE(files.Query(Path("a.bin")) && !files.Query(Path("a.bin")).IsAbsent());
    EXPECT_TRUE(files.Query(Path("none")).IsAbsent());
    EXPECT_TRUE(files.Query(Path("none\\a.bin")).IsAbsent());
    const arc::FileQuery unknown = files.Query(Path("a?.bin")); // no name that could be asked for
    EXPECT_TRUE(!unknown && !unknown.IsAbsent());
    EXPECT_FALSE(files.Open("NUL", arc::Access::Replace)); // a device is no file
    EXPECT_FALSE(files.Open(Path("NUL"), arc::Access::Replace));
}

TEST_F(ArchiveWindowsFiles, SharesAsAsked)
{
    Put("a.bin", "a");
    {
        const auto alone = files.Open(Path("a.bin"), arc::Access::ReadAlone);
        ASSERT_TRUE(alone);
        EXPECT_FALSE(files.Open(Path("a.bin"), arc::Access::ReadShared));
    }
    const auto shared = files.Open(Path("a.bin"), arc::Access::ReadShared);
    EXPECT_TRUE(files.Open(Path("a.bin"), arc::Access::ReadMedium));
    EXPECT_FALSE(files.Open(Path("a.bin"), arc::Access::ReadAlone));
    EXPECT_FALSE(files.Open(Path("a.bin"), arc::Access::Update));
    EXPECT_EQ(Get("a.bin"), "a");
}

TEST_F(ArchiveWindowsFiles, KeepsAttributesAndTimes)
{
    const std::string path = Path("M\xFCller.bin");
    Put("M\xFCller.bin", "abc");
    for (const int month : {0, 6}) // winter and summer time
    {
        const arc::LocalTime time{2024, month, 15, 12, 30, 44};
        ASSERT_TRUE(files.Open(path, arc::Access::Update)->SetWritten(time));
        EXPECT_EQ(files.Query(path)->written, time);
    }
    ASSERT_TRUE(files.SetAttributes(path, attribute::ReadOnly | attribute::Hidden));
    EXPECT_EQ(files.Query(path)->size, 3u);
    EXPECT_FALSE(files.RemoveFile(path));
    ASSERT_TRUE(files.SetAttributes(path, 0));
    EXPECT_TRUE(files.RemoveFile(path));
}

TEST_F(ArchiveWindowsFiles, ListsMovesAndTells)
{
    Put("A100.I40", "1");
    Put("A100.V40", "22");
    ASSERT_TRUE(files.CreateFolder(Path("sub")));
    const auto count = [&](const std::string& where, const char* wildcard) {
        std::vector<arc::FolderEntry> entries;
        return files.List(where, wildcard, entries) ? static_cast<int>(entries.size()) : -1;
    };
    EXPECT_EQ(count(folder, "*"), 3);
    EXPECT_EQ(count(folder, "none*"), 0);
    EXPECT_EQ(count(Path("nowhere"), "*"), -1);

    EXPECT_FALSE(files.Move(Path("A100.I40"), Path("A100.V40")));
    EXPECT_TRUE(files.Move(Path("A100.I40"), Path("sub\\b")));
    EXPECT_FALSE(files.RemoveFolder(Path("sub")));
    EXPECT_FALSE(files.Open(Path("SUB\\B"), arc::Access::CreateNew));
    EXPECT_TRUE(files.Open(Path("new"), arc::Access::CreateNew));
    EXPECT_EQ(files.Absolute(Path("sub\\..\\sub\\.\\b")), Path("sub\\b"));
    EXPECT_EQ(files.Absolute("C:\\" + std::string(300, 'x')), "");
    const auto space = files.Space(folder);
    ASSERT_TRUE(space);
    EXPECT_GT(space->FreeBytes(), 1u << 20);
    EXPECT_LE(space->freeClusters, space->totalClusters);
    EXPECT_FALSE(files.Space("Q:\\"));
}

TEST_F(ArchiveWindowsFiles, TheShortFormOfALongNameIsNoticed)
{
    for (const char* below : {"", "\\a"})
    {
        files.CreateFolder(Path("long name of a folder"));
        const std::string name = *below ? "long name of a folder" : "long name of a file";
        Put(name + below, "first");
        char path[MAX_PATH];
        ASSERT_NE(GetShortPathNameA(Path(name).c_str(), path, sizeof path), 0u);
        ASSERT_NE(arc::FileNameOf(path), name);
        RawZip zip;
        zip.entries.emplace_back();
        zip.entries[0].name = std::string(arc::FileNameOf(path)) + below;
        Put("x.kaz", zip.Build());
        CUnzipper unzipper(files);
        EXPECT_TRUE(unzipper.OpenZip(Path("x.kaz")));
        EXPECT_FALSE(unzipper.UnzipAll(folder));
        EXPECT_EQ(Get(name + below), "first");
    }
}
