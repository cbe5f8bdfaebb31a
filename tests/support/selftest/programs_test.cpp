#include "tests/support/childprocess.h"

#include <gtest/gtest.h>

#include <array>

namespace
{

VEL_CHILD_PROCESS(compareArguments)
{
    return static_cast<int>(arguments.size()) * 10 + (arguments.at(1) == "with \"quotes\" and \\" ? 1 : 0);
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

TEST(ProgramsTest, PassArgumentsOnAndEndACrashWithItsCode)
{
    EXPECT_EQ(veltest::ChildProcess("compareArguments", {"", "with \"quotes\" and \\"}).Wait(), 21);
    EXPECT_EQ(veltest::ChildProcess("crash", {}).Wait(), 5);
}

} // namespace
