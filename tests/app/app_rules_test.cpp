#include "app/nameformat.h"
#include "app/settingsrules.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <tuple>

namespace
{

using namespace app;

TEST(FullName, FollowsOrderAndSettings)
{
    const struct
    {
        const char* what;
        int familyFirst;
        int order;
        std::optional<std::string> separator;
        const char* given;
        const char* family;
        const char* expected;
    } cases[] = {
        {"any nonzero setting counts", -7, 1, {}, "Ann", "Lee", "Lee, Ann"},
        {"other orders give the given name first", 1, 3, {}, "Ann", "Lee", "Ann Lee"},
        {"empty given name keeps its blank", 0, 1, {}, "", "Lee", " Lee"},
        {"empty family name keeps its separator", 0, 2, {}, "Ann", "", ", Ann"},
        {"nothing is trimmed", 0, 2, {}, " Ann ", " Lee ", " Lee ,  Ann "},
        {"a separator of high bytes is a separator", 0, 2, "\xAC", "Ann", "Lee", "Lee\xAC Ann"},
    };
    for (const auto& c : cases)
    {
        NameFormatter formatter({[&] { return c.familyFirst; }, [&] { return c.separator; }});
        EXPECT_EQ(formatter.Format(c.given, c.family, static_cast<NAMEORDER>(c.order)), c.expected) << c.what;
    }
}

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

TEST(ReadSettings, BringsValuesIntoTheirLimits)
{
    using S = SharedSettings;
    const std::tuple<const char*, const char*, std::function<void(S&)>> cases[] = {
        {"Defaults/MeasWndNumDisplayPrec", "7", [](S& s) { s.measureWindowPrecision = 2; }},
        {"Defaults/MeasWndNumDisplayPrec", "-1", [](S& s) { s.measureWindowPrecision = 0; }},
        {"Defaults/MeasInTracingNumDisplayPrec", "3", [](S& s) { s.tracingPrecision = 2; }},
        {"Defaults/MeasInTracingNumDisplayPrec", "-3", [](S& s) { s.tracingPrecision = 0; }},
        {"Defaults/TracingPrintTextScale", "-2", [](S& s) { s.tracingPrintTextScale = 1.0f; }},
        {"Defaults/TracingPrintTextScale", "abc", [](S& s) { s.tracingPrintTextScale = 0.0f; }},
        {"Defaults/TracingPrintTextScale", "1e300",
         [](S& s) { s.tracingPrintTextScale = std::numeric_limits<float>::max(); }},
        {"Defaults/DisplayQuality", "1", [](S& s) { s.displayQuality = 2; }},
        {"Defaults/Recycle", "-3", [](S& s) { s.recycle = 1; }},
        {"Environment/WORKING", "C:\\Work", [](S& s) { s.implantsFolder = "C:\\WorkImplants"; }},
        {"Defaults/TracingLineThickness", "0.5", [](S& s) { s.tracingLineThickness = 1.0f; }},
        {"Defaults/TracingLineThickness", "2.5", [](S& s) { s.tracingLineThickness = 2.5f; }},
        {"Defaults/TracingLineThickness", "4", [](S& s) { s.tracingLineThickness = 3.0f; }},
    };
    const auto read = [](const std::string& one, const std::string& value) {
        const auto isSet = [&](const std::string& section, const char* key) {
            return section + "/" + key == one;
        };
        SettingsSource source;
        source.defaultsSection = "Defaults";
        source.environmentSection = "Environment";
        source.workingKey = "WORKING";
        source.windowColour = 0x123456;
        source.readInt = [&](const std::string& section, const char* key, int fallback) {
            return isSet(section, key) ? std::stoi(value) : fallback;
        };
        source.readString = [&](const std::string& section, const char* key, const char* fallback) {
            return isSet(section, key) ? value : fallback;
        };
        return ReadSettings(source);
    };
    const SharedSettings defaults = read("", "");
    EXPECT_EQ(defaults.backgroundColour, 0x123456U);
    EXPECT_EQ(defaults.implantsFolder, "Implants");
    for (const auto& [key, value, change] : cases)
    {
        SharedSettings expected = defaults;
        change(expected);
        EXPECT_EQ(read(key, value), expected) << key << "=" << value;
    }
}

} // namespace
