// The rules' file system on a real disk.
#include "archive/files/filenames.h"
#include "archive/files/filesystem.h"
#include "archive/zip/unzipper.h"
#include "tests/archive/rawzip.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>

#include <filesystem>

namespace attribute = arc::attribute;

namespace
{
class ArchiveWindowsFiles : public testing::Test
{
protected:
    void SetUp() override
    {
        char temp[MAX_PATH];
        ASSERT_NE(GetTempPathA(sizeof temp, temp), 0u);
        folder = std::string(temp) + "arc" + std::to_string(GetCurrentProcessId()) + "_" +
                 std::to_string(GetTickCount());
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

    void Put(const std::string& name, const std::string& bytes)
    {
        const auto file = files.Open(Path(name), arc::Access::Replace);
        ASSERT_TRUE(file) << name;
        ASSERT_TRUE(file->Write(bytes.data(), bytes.size()));
        ASSERT_TRUE(file->FlushToDisk());
        ASSERT_TRUE(file->Close());
    }

    std::string Get(const std::string& name)
    {
        const auto file = files.Open(Path(name), arc::Access::ReadShared);
        std::string bytes(file ? static_cast<std::size_t>(file->Size().value_or(0)) : 0, '\0');
        return file && file->Read(bytes.data(), bytes.size()) == bytes.size() ? bytes : "unreadable";
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
    FILETIME written{};
    const HANDLE handle =
        CreateFileA(Path("a.bin").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_TRUE(GetFileTime(handle, nullptr, nullptr, &written));
    CloseHandle(handle);
    EXPECT_EQ(files.Query(Path("a.bin"))->stamp,
              static_cast<std::int64_t>(written.dwHighDateTime) << 32 | written.dwLowDateTime);
}

TEST_F(ArchiveWindowsFiles, ReadsAndWritesByPosition)
{
    Put("a.bin", std::string(600'000, 'a'));
    const auto file = files.Open(Path("a.bin"), arc::Access::Update);
    ASSERT_TRUE(file);
    ASSERT_TRUE(file->Seek(300'000) && file->Write("xyz", 3));
    char bytes[5];
    ASSERT_TRUE(file->Seek(299'999));
    ASSERT_EQ(file->Read(bytes, 5), 5u);
    EXPECT_EQ(std::string(bytes, 5), "axyza");
    ASSERT_TRUE(file->Seek(599'999));
    EXPECT_EQ(file->Read(bytes, 5), 1u);
    EXPECT_EQ(file->Read(bytes, 5), 0u);
    EXPECT_EQ(file->Size(), 600'000u);
    EXPECT_TRUE(file->Close());
    EXPECT_FALSE(file->Read(bytes, 1));
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
    ASSERT_TRUE(shared);
    EXPECT_TRUE(files.Open(Path("a.bin"), arc::Access::ReadShared));
    EXPECT_FALSE(files.Open(Path("a.bin"), arc::Access::ReadAlone));
    EXPECT_FALSE(files.Open(Path("a.bin"), arc::Access::Replace));
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
    constexpr std::uint32_t set = attribute::ReadOnly | attribute::Hidden;
    ASSERT_TRUE(files.SetAttributes(path, set));
    EXPECT_EQ(files.Query(path)->attributes & set, set);
    EXPECT_EQ(files.Query(path)->size, 3u);
    EXPECT_FALSE(files.RemoveFile(path));
    ASSERT_TRUE(files.SetAttributes(path, 0));
    EXPECT_TRUE(files.RemoveFile(path));
    EXPECT_FALSE(files.Query(path));
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
    EXPECT_EQ(count(folder, "A1*"), 2);
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

TEST_F(ArchiveWindowsFiles, DevicesAreNoFiles)
{
    EXPECT_FALSE(files.Open("NUL", arc::Access::Replace));
    EXPECT_FALSE(files.Open(Path("NUL"), arc::Access::Replace));
}
