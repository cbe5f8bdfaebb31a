#include "tests/support/childprocess.h"
#include "tests/support/temporarypractice.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>

namespace
{

VEL_CHILD_PROCESS(compareArguments)
{
    return static_cast<int>(arguments.size()) * 10 + (arguments.at(1) == "with \"quotes\" and \\" ? 1 : 0);
}

VEL_CHILD_PROCESS(waitForever)
{
    Sleep(INFINITE);
    return 0;
}

VEL_CHILD_PROCESS(crash)
{
    std::puts("(the next lines belong to a crash that is wanted)");
    volatile int* volatile nowhere = nullptr;
    *nowhere = 1;
    return 0;
}

TEST(ProgramsTest, RunsOnADesktopOfItsOwn)
{
    std::array<char, 256> name = {};
    ASSERT_TRUE(GetUserObjectInformationA(GetThreadDesktop(GetCurrentThreadId()), UOI_NAME, name.data(),
                                          static_cast<DWORD>(name.size()), nullptr));
    EXPECT_EQ(std::string(name.data()).rfind("veltest-", 0), 0U) << name.data();
}

TEST(ProgramsTest, StartsAndEndsSecondProcesses)
{
    veltest::ChildProcess child("compareArguments", {"", "with \"quotes\" and \\"});
    EXPECT_EQ(child.Wait(), 21);

    veltest::ChildProcess endless("waitForever", {});
    EXPECT_TRUE(endless.IsRunning());
    endless.Kill();
    EXPECT_FALSE(endless.IsRunning());

    veltest::ChildProcess crashing("crash", {});
    EXPECT_EQ(crashing.Wait(), 5);
}

TEST(ProgramsTest, PracticeIsSetUpAndRemoved)
{
    std::filesystem::path folder;
    {
        const veltest::TemporaryPractice practice;
        folder = practice.Folder();
        EXPECT_EQ(std::getenv("VELTRIX_INI"), practice.IniFile());
        practice.Set("Defaults", "Country", "USA");
        EXPECT_EQ(practice.Get("Defaults", "Country"), "USA");
        practice.WriteFile("working\\A1.PF", std::string("a\0b\r\n", 5));
        EXPECT_EQ(practice.ReadFile("working\\A1.PF"), std::string("a\0b\r\n", 5));
        SetFileAttributesA(practice.Path("working\\A1.PF").c_str(),
                           FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
    }
    EXPECT_FALSE(std::filesystem::exists(folder));
    EXPECT_EQ(std::getenv("VELTRIX_INI"), nullptr);
}

} // namespace
