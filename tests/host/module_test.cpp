// The table of exports against the real module, and modules that are missing or wrong.

#include "host/hostmodule.h"
#include "host/hostsession.h"
#include "tests/support/mfctestprogram.h"
#include "tests/support/temporarypractice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

VEL_MFC_TEST_PROGRAM();

namespace
{

TEST(HostModule, IsLoadedAndLoadedAgain)
{
    const veltest::TemporaryPractice practice;
    hostCModule module;
    CString error;
    ASSERT_TRUE(module.Load(nullptr, error)) << error.GetString();
    EXPECT_THAT(module.GetPath().GetString(), testing::EndsWith("VelDlgs.dll"));

    EXPECT_FALSE(module->SetArchivingAllowed(true));
    EXPECT_TRUE(module->SetArchivingAllowed(false));
    EXPECT_EQ(20, module->settings->GetDisplayPhotoCornerRoundedness());

    module.Unload();
    EXPECT_FALSE(module.IsLoaded());
    ASSERT_TRUE(module.Load(nullptr, error)) << "a second time: " << error.GetString();
}

TEST(HostModule, AMissingOrWrongOneIsTold)
{
    const veltest::TemporaryPractice practice;
    practice.WriteFile("noise.dll", "this is no library");
    char system[MAX_PATH] = {};
    ::GetSystemDirectory(system, MAX_PATH);

    const std::pair<std::string, const char*> cases[] = {
        {practice.Path("absent.dll"), "is missing"},
        {practice.Path("noise.dll"), "could not be loaded"},
        {std::string(system) + "\\version.dll", "NewPatientDlg, NewPatientDlgWithData"},
    };
    for (const auto& [path, told] : cases)
    {
        hostCModule module;
        CString error;
        EXPECT_FALSE(module.Load(path.c_str(), error)) << path;
        EXPECT_FALSE(module.IsLoaded());
        EXPECT_THAT(error.GetString(), testing::AllOf(testing::HasSubstr(path), testing::HasSubstr(told)));
    }
}

} // namespace
