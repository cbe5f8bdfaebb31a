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
    struct Case
    {
        hostNeed need;
        bool practice;
        std::size_t selected;
        bool offered;
    };
    constexpr Case kCases[] = {
        {hostNeed::nothing, false, 0, true},   {hostNeed::practice, false, 1, false},
        {hostNeed::practice, true, 0, true},   {hostNeed::patient, true, 0, false},
        {hostNeed::patient, true, 1, true},    {hostNeed::patient, true, 2, false},
        {hostNeed::patient, false, 1, false},  {hostNeed::patients, true, 0, false},
        {hostNeed::patients, true, 1, true},   {hostNeed::patients, true, 500, true},
        {hostNeed::patients, false, 2, false},
    };
    for (const Case& expected : kCases)
    {
        const hostSCommand command = {1, nullptr, expected.need, hostIcon::none, false};
        EXPECT_EQ(expected.offered, hostIsOffered(command, expected.practice, expected.selected))
            << static_cast<int>(expected.need) << ' ' << expected.practice << ' ' << expected.selected;
    }
}

TEST(HostCommandLine, IsReadOrRefusedWhole)
{
    struct Case
    {
        std::vector<std::string> arguments;
        bool accepted;
        std::string practice;
        int patients;
        std::string error;
    };
    const Case kCases[] = {
        {{}, true, "", 0, ""},
        {{"--practice", "c:\\my practice"}, true, "c:\\my practice", 0, ""},
        {{"--patients", "100000", "--practice", "d:\\p"}, true, "d:\\p", 100000, ""},
        {{"--patients", "1"}, true, "", 1, ""},
        {{"--patients", "1000000"}, true, "", 1000000, ""},
        {{"--practice"}, false, "", 0, "--practice"},
        {{"--practice", ""}, false, "", 0, "--practice"},
        {{"--patients", "0"}, false, "", 0, "--patients 0"},
        {{"--patients", "-5"}, false, "", 0, "--patients -5"},
        {{"--patients", "1000001"}, false, "", 0, "--patients 1000001"},
        {{"--patients", "99999999999999"}, false, "", 0, "--patients 99999999999999"},
        {{"--patients", "60x"}, false, "", 0, "--patients 60x"},
        {{"--patients", " 60"}, false, "", 0, "--patients  60"},
        {{"c:\\p"}, false, "", 0, "c:\\p"},
        {{"--practice", "p", "extra"}, false, "", 0, "extra"},
    };
    for (const Case& expected : kCases)
    {
        SCOPED_TRACE(testing::PrintToString(expected.arguments));
        hostSOptions options;
        std::string error;
        EXPECT_EQ(expected.accepted, hostParseCommandLine(expected.arguments, options, error));
        EXPECT_EQ(expected.error, error);
        if (expected.accepted)
        {
            EXPECT_EQ(expected.practice, options.practice);
            EXPECT_EQ(expected.patients, options.patients);
        }
    }
}

} // namespace
