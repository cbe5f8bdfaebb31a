#include "suite/patients/files/filefamily.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iterator>
#include <sstream>

using pat::FileIdentity;
using pat::FileKind;

namespace
{
std::vector<std::string> Words(const char* text)
{
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

TEST(FileFamily, EveryKindOfA1AndNothingElse)
{
    const struct
    {
        FileKind kind;
        int timepoint;
        const char* names;
    } own[] = {{FileKind::PatientFile, -1, "A1.PF a1.pf"},
               {FileKind::Image, 0, "A100.I2A"},
               {FileKind::Image, 99, "a199.i70"},
               {FileKind::Companion, 20, "A120.V2A"},
               {FileKind::FurtherImage, 2, "A102.I2A.AVI"},
               {FileKind::AlternateImage, 3, "A103.C01"},
               {FileKind::TimepointData, 4, "A104.DF0 A104.DF1 A104.DF2 A104.DF3 A104.M"},
               {FileKind::DataImage, 5, "A105.D0.I2A A105.x.y.I2A"},
               {FileKind::Extra, 6, "A1$06$ A1$06$movie.2dmorph"},
               {FileKind::Extra, -1, "A1$ A1$6$movie.avi"},
               {FileKind::Morph, -1, "A1.2dmorph A1075.2dmorph A1grow.old.2dmorph"},
               {FileKind::Morph, 7, "A107.2DMORPH A107x.2dmorph"},
               {FileKind::KeptPatientFile, -1, "A1.ORIGINALPF"},
               {FileKind::UnfinishedPatientFile, -1, "A1.PF~1f@SEAT2"},
               {FileKind::DatabaseRecord, -1, "A1.ACV"}};
    for (const auto& c : own)
        for (const std::string& name : Words(c.names))
            EXPECT_EQ(pat::IdentifyFile(name, "A1"), (FileIdentity{c.kind, c.timepoint})) << name;
    for (const std::string& other :
         Words("A101.PF A101.KAZ A1.KAZ A1.001 A1.KAR A1.PFX A100.PF A100.C02 A100.C011 A100.M1 A100.DF4 "
               "A100.DF A100.I2 A100.I2A.JPEG A100.I2A. A100.V2A.DIC A10.I2A A1000.I2A A1x0.I2A A1.I2A "
               "A1200.I2A A12$00$x A1.D0.I2A A100.D0.V2A A100.D0.I2A.AVI A100.I2A.I2 A105xI2A A12$x.2dmorph "
               "A1.2dmorphs A1 A100 A B100.I2A A12.ORIGINALPF A101.PF~1@X A12.ACV"))
        EXPECT_FALSE(pat::IdentifyFile(other, "A1")) << other;
    EXPECT_FALSE(pat::IdentifyFile("", "A1"));
    EXPECT_FALSE(pat::IdentifyFile(".PF", ""));
}

TEST(FileFamily, OnlyMorphingDataFitsSeveralOwners)
{
    using testing::ElementsAre;
    EXPECT_THAT(pat::PossibleOwners("A101.PF"), ElementsAre("A101"));
    EXPECT_THAT(pat::PossibleOwners("A101.I2A"), ElementsAre("A1"));
    EXPECT_THAT(pat::PossibleOwners("A1$01$A2.I2A"), ElementsAre("A1"));
    EXPECT_THAT(pat::PossibleOwners("A12.2dmorph"), ElementsAre("A12", "A1", "A"));
    EXPECT_THAT(pat::PossibleOwners("holiday.jpg"), ElementsAre());
    EXPECT_TRUE(pat::MayBe("A1.pf", FileKind::PatientFile));
    EXPECT_FALSE(pat::MayBe("A1$00$note.PF", FileKind::PatientFile));
    const std::string longest(25, 'X');
    EXPECT_THAT(pat::PossibleOwners(longest + ".PF"), ElementsAre(longest));
    EXPECT_THAT(pat::PossibleOwners(longest + "Y.PF"), ElementsAre());
}

TEST(FileFamily, ArchivesAreGatheredByEightPatternsInTheirOrder)
{
    std::vector<std::string_view> searched;
    for (const pat::FileRule& rule : pat::FileRules())
        if (!rule.searched.empty())
            searched.push_back(rule.searched);
    EXPECT_THAT(searched, testing::ElementsAre(".PF", "??.i??", "??.v??", "??.m", "??.i??.???", "$*",
                                               "??.d?.i??", "*.2dmorph"));
}

TEST(FileFamily, MovesToAnotherIdAndNumber)
{
    const struct
    {
        const char* name;
        int number;
        const char* moved;
    } cases[] = {{"A100.I0A", 7, "B2207.I0A"},
                 {"a100.v0a", 99, "B2299.v0a"},
                 {"A101.DF0", -1, "B2201.DF0"},
                 {"A1$01$A101.txt", 0, "B22$00$A101.txt"},
                 {"A1$1", 7, "B22$1"},
                 {"A100x.2dmorph", 7, "B2207x.2dmorph"},
                 {"A1grow.2dmorph", 7, "B22grow.2dmorph"},
                 {"A1.PF", 7, "B22.PF"},
                 {"A101.PF", 7, ""},
                 {"A100.I0A", 100, "B2200.I0A"}};
    for (const auto& c : cases)
        EXPECT_EQ(pat::MovedFileName(c.name, "A1", "B22", c.number), c.moved) << c.name;
}

TEST(FileFamily, FoldsTheLettersOfTheCodePage)
{
    EXPECT_EQ(pat::FoldCase("az\xE0\xFE\xFF\x9A\x9C\x9E\xF7\xDF[{"), "AZ\xC0\xDE\x9F\x8A\x8C\x8E\xF7\xDF[{");
    EXPECT_TRUE(pat::EqualNoCase("\xE4"
                                 "b",
                                 "\xC4"
                                 "B"));
    EXPECT_FALSE(pat::EqualNoCase("ab", "abc"));
}
} // namespace
