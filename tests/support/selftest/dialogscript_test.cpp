#include "tests/support/dialogscript.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

namespace
{

int Ask()
{
    return MessageBoxA(nullptr, "Go on?", "Question", MB_OKCANCEL);
}

// What a broken test must lead to: a failure that names the cause, and an ended modal call.
TEST(DialogScriptTest, FailingScriptsFailTheTestAndEndTheModalCall)
{
    const auto waitsInVain = [](veltest::DialogScript& script) {
        script.SetPatience(200);
        script.WaitForDialog("Another title");
    };
    EXPECT_NONFATAL_FAILURE_ON_ALL_THREADS(EXPECT_EQ(veltest::RunModal(Ask, waitsInVain), IDCANCEL),
                                           "waited in vain");

    const auto leavesBoxOpen = [](veltest::DialogScript& script) {
        script.SetPatience(400);
        script.WaitForBox();
    };
    EXPECT_NONFATAL_FAILURE_ON_ALL_THREADS(EXPECT_EQ(veltest::RunModal(Ask, leavesBoxOpen), IDCANCEL),
                                           "left windows open");

    const auto waitsAfterTheEnd = [](veltest::DialogScript& script) {
        script.WaitForBox().Press(IDCANCEL);
        script.WaitForDialog("Another title");
    };
    EXPECT_NONFATAL_FAILURE_ON_ALL_THREADS(veltest::RunModal(Ask, waitsAfterTheEnd),
                                           "the modal call returned");
}

} // namespace
