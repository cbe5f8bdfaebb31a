#include "host/commandline.h"
#include "host/hostcommands.h"
#include "host/hostres.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace
{

TEST(HostCommands, EveryExportWithAWindowHasACommandAndNoIdStandsTwice)
{
    std::set<std::string> exports;
    std::set<int> ids;
    for (const hostSCommand& command : hostGetCommands())
    {
        EXPECT_TRUE(ids.insert(command.id).second) << command.id;
        EXPECT_TRUE(command.id >= ID_COMMAND_FIRST && command.id <= ID_COMMAND_LAST)
            << command.id << " would reach no handler";
        EXPECT_EQ(&command, hostFindCommand(command.id));
        if (command.exportName != nullptr)
        {
            exports.insert(command.exportName);
            EXPECT_NE(hostNeed::nothing, command.need) << "an export needs a practice and the module";
        }
    }
    EXPECT_THAT(exports, testing::UnorderedElementsAre("NewPatientDlg", "NewPatientDlgWithData",
                                                       "ChangePatientDlg", "NewTimepointDlg", "DeleteDlg",
                                                       "ArchiveDlg", "RenameDlg", "EditKeywords",
                                                       "ImportPatientDiagnostics", "SetArchivingAllowed"));
    EXPECT_EQ(nullptr, hostFindCommand(0));
}

TEST(HostCommands, AreOfferedOnlyWithWhatTheyNeed)
{
    const std::tuple<hostNeed, bool, std::size_t, bool> cases[] = {
        {hostNeed::nothing, false, 0, true},   {hostNeed::practice, false, 1, false},
        {hostNeed::practice, true, 0, true},   {hostNeed::patient, true, 0, false},
        {hostNeed::patient, true, 1, true},    {hostNeed::patient, true, 2, false},
        {hostNeed::patient, false, 1, false},  {hostNeed::patients, true, 0, false},
        {hostNeed::patients, true, 1, true},   {hostNeed::patients, true, 500, true},
        {hostNeed::patients, false, 2, false},
    };
    for (const auto& [need, practice, selected, offered] : cases)
    {
        const hostSCommand command = {1, nullptr, need, hostIcon::none, false};
        EXPECT_EQ(offered, hostIsOffered(command, practice, selected))
            << static_cast<int>(need) << ' ' << practice << ' ' << selected;
    }
}

TEST(HostCommandLine, IsReadOrRefusedWhole)
{
    struct Case
    {
        std::vector<std::string> arguments;
        std::string error; // empty: taken
        std::string practice = {};
        int patients = 0;
    };
    const Case cases[] = {
        {{}, ""},
        {{"--practice", "c:\\my practice"}, "", "c:\\my practice"},
        {{"--patients", "100000", "--practice", "d:\\p"}, "", "d:\\p", 100000},
        {{"--patients", "1000000"}, "", "", 1000000},
        {{"--practice"}, "--practice"},
        {{"--practice", ""}, "--practice"},
        {{"--patients", "0"}, "--patients 0"},
        {{"--patients", "1000001"}, "--patients 1000001"},
        {{"--patients", "60x"}, "--patients 60x"},
        {{"--patients", " 60"}, "--patients  60"},
        {{"c:\\p"}, "c:\\p"},
        {{"--practice", "p", "extra"}, "extra"},
    };
    for (const Case& expected : cases)
    {
        SCOPED_TRACE(testing::PrintToString(expected.arguments));
        hostSOptions options;
        std::string error;
        EXPECT_EQ(expected.error.empty(), hostParseCommandLine(expected.arguments, options, error));
        EXPECT_EQ(expected.error, error);
        if (expected.error.empty())
        {
            EXPECT_EQ(expected.practice, options.practice);
            EXPECT_EQ(expected.patients, options.patients);
        }
    }
}

} // namespace
