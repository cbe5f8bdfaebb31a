#include "app/eventtext.h"
#include "app/nameformat.h"
#include "app/settingsrules.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <string>
#include <vector>

namespace
{

using namespace app;
using testing::ElementsAre;

// --- Full names
// ---------------------------------------------------------------------------------------------

struct NameCase
{
    const char* what;
    int familyFirst;
    int order;
    std::optional<std::string> separator;
    const char* given;
    const char* family;
    const char* expected;
};

class FullName : public testing::TestWithParam<NameCase>
{
};

TEST_P(FullName, FollowsOrderAndSettings)
{
    const NameCase& c = GetParam();
    NameFormatter formatter({[&] { return c.familyFirst; }, [&] { return c.separator; }});
    EXPECT_EQ(formatter.Format(c.given, c.family, static_cast<NAMEORDER>(c.order)), c.expected) << c.what;
}

const NameCase nameCases[] = {
    {"no settings, default order", 0, 0, {}, "Ann", "Lee", "Ann Lee"},
    {"no settings, family first", 0, 2, {}, "Ann", "Lee", "Lee, Ann"},
    {"setting decides for order 0", 1, 0, {}, "Ann", "Lee", "Lee, Ann"},
    {"setting decides for order 1 too", 1, 1, {}, "Ann", "Lee", "Lee, Ann"},
    {"any nonzero setting counts", -7, 1, {}, "Ann", "Lee", "Lee, Ann"},
    {"other orders give the given name first", 1, 3, {}, "Ann", "Lee", "Ann Lee"},
    {"negative orders too", 1, -1, {}, "Ann", "Lee", "Ann Lee"},
    {"configured separator gets a blank", 0, 2, "/", "Ann", "Lee", "Lee/ Ann"},
    {"empty separator is a single blank", 0, 2, "", "Ann", "Lee", "Lee Ann"},
    {"empty given name keeps its blank", 0, 1, {}, "", "Lee", " Lee"},
    {"empty family name keeps its blank", 0, 0, {}, "Ann", "", "Ann "},
    {"empty family name keeps its separator", 0, 2, {}, "Ann", "", ", Ann"},
    {"nothing is trimmed", 0, 2, {}, " Ann ", " Lee ", " Lee ,  Ann "},
    {"a separator of high bytes is a separator", 0, 2, "\xAC", "Ann", "Lee", "Lee\xAC Ann"},
};
INSTANTIATE_TEST_SUITE_P(Table, FullName, testing::ValuesIn(nameCases));

TEST(FullNameCache, SettingsAreReadOnceAndOnlyWhenNeeded)
{
    int flagReads = 0;
    int separatorReads = 0;
    int flag = 1;
    std::string separator = "-";
    NameFormatter formatter({[&] { return ++flagReads, flag; },
                             [&] { return ++separatorReads, std::optional<std::string>(separator); }});

    EXPECT_EQ(formatter.Format("Ann", "Lee", static_cast<NAMEORDER>(3)), "Ann Lee");
    EXPECT_EQ(flagReads, 0);
    EXPECT_EQ(formatter.Format("Ann", "Lee", NAMEORDER_LAST_FIRST), "Lee- Ann");
    EXPECT_EQ(flagReads, 0) << "a fixed order does not need the flag";

    EXPECT_EQ(formatter.Format("Ann", "Lee", NAMEORDER_DEFAULT), "Lee- Ann");
    flag = 0;
    separator = "+";
    EXPECT_EQ(formatter.Format("Ann", "Lee", NAMEORDER_DEFAULT), "Lee- Ann");
    EXPECT_EQ(flagReads, 1);
    EXPECT_EQ(separatorReads, 1);
}

// --- Audit sentences
// ----------------------------------------------------------------------------------------

TEST(EventText, SentencesOfTheThreeChanges)
{
    EXPECT_EQ(PatientEventText(PatientChange::Created, "A1", "Lee", "Ann"),
              "The patient (A1) Lee, Ann has been created");
    EXPECT_EQ(PatientEventText(PatientChange::CreatedFromDicom, "A1", "Lee", "Ann"),
              "The patient from DICOM (A1) Lee, Ann has been created");
    EXPECT_EQ(PatientEventText(PatientChange::Modified, "A1", "Lee", "Ann"),
              "The patient (A1) Lee, Ann data, has been modified");
    EXPECT_EQ(PatientEventText(PatientChange::Modified, "%s", "<1>", ""),
              "The patient (%s) <1>,  data, has been modified");
}

// --- Parsing of settings
// ------------------------------------------------------------------------------------

TEST(ParseDecimal, ReadsTheNumberAtTheStart)
{
    const double huge = std::numeric_limits<double>::max();
    const std::pair<const char*, double> cases[] = {
        {"0.7", 0.7},  {"-2", -2.0}, {"+1.5", 1.5},   {" \t2", 2.0},     {"1.5 mm", 1.5}, {".5", 0.5},
        {"-.5", -0.5}, {"3.", 3.0},  {"1e2", 100.0},  {"1e", 1.0},       {"abc", 0.0},    {"", 0.0},
        {"-", 0.0},    {"+-1", 0.0}, {".", 0.0},      {"..5", 0.0},      {"inf", 0.0},    {"-nan", 0.0},
        {"0x10", 0.0}, {"0,7", 0.0}, {"1e999", huge}, {"-1e999", -huge}, {"1e-999", 0.0}, {"1e99999", huge},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_DOUBLE_EQ(ParseDecimal(text), expected) << "\"" << text << "\"";
    EXPECT_EQ(ParseDecimal(std::string(100000, '9')), huge);
    EXPECT_EQ(ParseDecimal("0." + std::string(100000, '0') + "1"), 0.0);
}

TEST(ParseColour, ReadsThreeNumbersAsTheCFormatDoes)
{
    constexpr std::uint32_t fallback = 0xABCDEF;
    const std::pair<const char*, std::uint32_t> cases[] = {
        {"255,0,0", 0x0000FF},     {"0,255,0", 0x00FF00},
        {"0,0,255", 0xFF0000},     {"1, 2, 3", 0x030201},
        {"0x10,010,10", 0x0A0810}, {"-1,256,257", 0x0100FF},
        {" 1,2,3", 0x030201},      {"1,2,3,4", 0x030201},
        {"1,2,3 blue", 0x030201},  {"", fallback},
        {"red", fallback},         {"1,2", fallback},
        {"1 ,2,3", fallback},      {"1;2;3", fallback},
        {"1,,3", fallback},        {"99999999999999999999,0,0", 0x0000FF},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(ParseColour(text, fallback), expected) << "\"" << text << "\"";
}

/// A settings file in memory that keeps the order of the questions.
struct MemorySettings
{
    std::map<std::string, std::string> values; // "Section/Key"
    std::vector<std::string> asked;

    SettingsSource Source()
    {
        SettingsSource source;
        source.defaultsSection = "Defaults";
        source.environmentSection = "Environment";
        source.workingKey = "WORKING";
        source.windowColour = 0x123456;
        source.readInt = [this](const std::string& section, const char* key, int fallback) {
            const std::string* text = Find(section, key);
            return text ? std::stoi(*text) : fallback;
        };
        source.readString = [this](const std::string& section, const char* key, const char* fallback) {
            const std::string* text = Find(section, key);
            return text ? *text : std::string(fallback);
        };
        return source;
    }

private:
    const std::string* Find(const std::string& section, const std::string& key)
    {
        asked.push_back(section + "/" + key);
        const auto it = values.find(asked.back());
        return it == values.end() ? nullptr : &it->second;
    }
};

TEST(ReadSettings, DefaultsWhenNothingIsSet)
{
    MemorySettings settings;
    const SharedSettings v = ReadSettings(settings.Source());
    EXPECT_EQ(v.measureWindowPrecision, 1);
    EXPECT_EQ(v.tracingPrecision, 0);
    EXPECT_EQ(v.tracingPrintTextScale, 0.7f);
    EXPECT_EQ(v.uniformTeethSize, 0);
    EXPECT_EQ(v.tracingAntiAlias, 1);
    EXPECT_EQ(v.textGuides, 0);
    EXPECT_EQ(v.displayQuality, 2);
    EXPECT_EQ(v.photoCornerRoundedness, 20);
    EXPECT_EQ(v.recycle, 0);
    EXPECT_EQ(v.backgroundColour, 0x123456u);
    EXPECT_EQ(v.implantsFolder, "Implants");
    EXPECT_EQ(v.allowPatientChanges, 1);
    EXPECT_EQ(v.limitCapturedImageSize, 0);
    EXPECT_EQ(v.capturedMegapixelLimit, 8.3);
    EXPECT_EQ(v.tracingLineThickness, 1.0f);
}

TEST(ReadSettings, ReadsInTheFixedOrder)
{
    MemorySettings settings;
    ReadSettings(settings.Source());
    EXPECT_THAT(settings.asked,
                ElementsAre("Defaults/MeasWndNumDisplayPrec", "Defaults/MeasInTracingNumDisplayPrec",
                            "Defaults/TracingPrintTextScale", "Defaults/TurnOnTextGuides",
                            "Defaults/UseUniformTeethSize", "Defaults/UseTracingAntiAlias",
                            "Defaults/DisplayQuality", "Defaults/DisplayPhotoCornerRoundedness",
                            "Defaults/Recycle", "Defaults/BackgroundColor", "Environment/Implants",
                            "Environment/WORKING", "Defaults/AllowPatientChanges",
                            "Environment/LimitCapturedImagesToMegaPixel64",
                            "Defaults/LimitCapturedImagesSize64", "Defaults/TracingLineThickness"));
}

TEST(ReadSettings, BringsValuesIntoTheirLimits)
{
    const auto read = [](const char* key, const char* value) {
        MemorySettings settings;
        settings.values[key] = value;
        return ReadSettings(settings.Source());
    };
    EXPECT_EQ(read("Defaults/MeasWndNumDisplayPrec", "7").measureWindowPrecision, 2);
    EXPECT_EQ(read("Defaults/MeasWndNumDisplayPrec", "-1").measureWindowPrecision, 0);
    EXPECT_EQ(read("Defaults/MeasInTracingNumDisplayPrec", "3").tracingPrecision, 2);
    EXPECT_EQ(read("Defaults/TracingPrintTextScale", "-2").tracingPrintTextScale, 1.0f);
    EXPECT_EQ(read("Defaults/TracingPrintTextScale", "abc").tracingPrintTextScale, 0.0f);
    EXPECT_EQ(read("Defaults/TracingPrintTextScale", "").tracingPrintTextScale, 0.0f);
    EXPECT_EQ(read("Defaults/TracingPrintTextScale", "1e300").tracingPrintTextScale,
              std::numeric_limits<float>::max());
    EXPECT_EQ(read("Defaults/TracingLineThickness", "0.5").tracingLineThickness, 1.0f);
    EXPECT_EQ(read("Defaults/TracingLineThickness", "4").tracingLineThickness, 3.0f);
    EXPECT_EQ(read("Defaults/TracingLineThickness", "2.5").tracingLineThickness, 2.5f);
    EXPECT_EQ(read("Defaults/DisplayQuality", "1").displayQuality, 2);
    EXPECT_EQ(read("Defaults/DisplayQuality", "5").displayQuality, 5);
    EXPECT_EQ(read("Defaults/Recycle", "-3").recycle, 1);
    EXPECT_EQ(read("Defaults/LimitCapturedImagesSize64", "8").limitCapturedImageSize, 1);
    EXPECT_EQ(read("Defaults/UseTracingAntiAlias", "4").tracingAntiAlias, 4) << "kept as it is";
    EXPECT_EQ(read("Defaults/AllowPatientChanges", "3").allowPatientChanges, 3);
    EXPECT_EQ(read("Defaults/BackgroundColor", "255,0,0").backgroundColour, 0x0000FFu);
    EXPECT_EQ(read("Environment/LimitCapturedImagesToMegaPixel64", "12.5").capturedMegapixelLimit, 12.5);
    EXPECT_EQ(read("Environment/Implants", "D:\\Screws").implantsFolder, "D:\\Screws");
    EXPECT_EQ(read("Environment/WORKING", "C:\\Work\\").implantsFolder, "C:\\Work\\Implants");
    EXPECT_EQ(read("Environment/WORKING", "C:\\Work").implantsFolder, "C:\\WorkImplants")
        << "nothing between";
}

} // namespace
