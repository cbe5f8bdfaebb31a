// What the module reads from the settings file once per process; every case therefore has a process of its
// own.

#include "app/velenums.h"
#include "suite/util/velinisettings.h"
#include "tests/support/childprocess.h"
#include "tests/support/temporarypractice.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <map>

namespace
{

template <typename Symbol> Symbol Find(const char* name)
{
    const HMODULE module = LoadLibraryA("VelDlgs.dll");
    return module == nullptr
               ? nullptr
               : reinterpret_cast<Symbol>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

int Report(const std::string& what, const std::string& expected, const std::string& found)
{
    if (expected == found)
        return 0;
    std::printf("%s is \"%s\", expected \"%s\"\n", what.c_str(), found.c_str(), expected.c_str());
    return 1;
}

std::string Number(double value)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.9g", value);
    return text;
}

// --- The container, read by its layout as a host does

const std::map<std::string, std::function<std::string(const CVelIniSettingsContainer&)>> fields = {
    {"size", [](auto& c) { return Number(c.m_nSize == sizeof c); }},
    {"filled", [](auto& c) { return Number(c.m_bFilled); }},
    {"measure", [](auto& c) { return Number(c.m_nMeasWndNumDisplayPrec); }},
    {"tracing", [](auto& c) { return Number(c.m_nMeasInTracingNumDisplayPrec); }},
    {"scale", [](auto& c) { return Number(c.m_fTracingPrintTextScale); }},
    {"teeth", [](auto& c) { return Number(c.m_nUseUniformTeethSize); }},
    {"antialias", [](auto& c) { return Number(c.m_nUseTracingAntiAlias); }},
    {"guides", [](auto& c) { return Number(c.m_nTurnOnTextGuides); }},
    {"quality", [](auto& c) { return Number(c.m_nDisplayQuality); }},
    {"corner", [](auto& c) { return Number(c.m_nDisplayPhotoCornerRoundedness); }},
    {"recycle", [](auto& c) { return Number(c.m_bRecycle); }},
    {"colour", [](auto& c) { return Number(c.m_crBackgroundColor); }},
    {"iswindowcolour", [](auto& c) { return Number(c.m_crBackgroundColor == GetSysColor(COLOR_WINDOW)); }},
    {"implants", [](auto& c) { return std::string(c.m_strImplants.GetString()); }},
    {"changes", [](auto& c) { return Number(c.m_nAllowPatientChanges); }},
    {"limit", [](auto& c) { return Number(c.m_bLimitCapturedImagesSize); }},
    {"megapixels", [](auto& c) { return Number(c.m_dLimitCapturedImagesToMegaPixel); }},
    {"line", [](auto& c) { return Number(c.m_fTracingLineThickness); }},
};

/// Arguments: field and expected text in turn.
VEL_CHILD_PROCESS(readContainer)
{
    const auto* const container = Find<const CVelIniSettingsContainer*>("g_VelIniSettingContainer");
    if (container == nullptr)
        return 100;
    int failures = 0;
    for (std::size_t i = 0; i + 1 < arguments.size(); i += 2)
        failures += Report(arguments[i], arguments[i + 1], fields.at(arguments[i])(*container));
    return failures;
}

int ReadContainer(const std::vector<std::string>& expected)
{
    return veltest::ChildProcess("readContainer", expected).Wait();
}

TEST(Container, HoldsTheDefaultsWhenNothingIsSet)
{
    const veltest::TemporaryPractice practice;
    const std::string working = practice.Get("Environment", "WORKING");
    EXPECT_EQ(ReadContainer({"size",           "1",
                             "filled",         "1",
                             "measure",        "1",
                             "tracing",        "0",
                             "scale",          "0.699999988",
                             "teeth",          "0",
                             "antialias",      "1",
                             "guides",         "0",
                             "quality",        "2",
                             "corner",         "20",
                             "recycle",        "0",
                             "changes",        "1",
                             "iswindowcolour", "1",
                             "limit",          "0",
                             "megapixels",     "8.3",
                             "line",           "1",
                             "implants",       working + "Implants"}),
              0);
}

TEST(Container, HoldsWhatIsSetWithinItsLimits)
{
    const veltest::TemporaryPractice practice;
    practice.Set("Defaults", "MeasWndNumDisplayPrec", "7");
    practice.Set("Defaults", "MeasInTracingNumDisplayPrec", "-1");
    practice.Set("Defaults", "TracingPrintTextScale", "-2");
    practice.Set("Defaults", "UseUniformTeethSize", "3");
    practice.Set("Defaults", "UseTracingAntiAlias", "0");
    practice.Set("Defaults", "TurnOnTextGuides", "1");
    practice.Set("Defaults", "DisplayQuality", "5");
    practice.Set("Defaults", "DisplayPhotoCornerRoundedness", "-4");
    practice.Set("Defaults", "Recycle", "2");
    practice.Set("Defaults", "BackgroundColor", "0xff,010,1");
    practice.Set("Environment", "Implants", "D:\\Screws");
    practice.Set("Defaults", "AllowPatientChanges", "3");
    practice.Set("Defaults", "LimitCapturedImagesSize64", "9");
    practice.Set("Environment", "LimitCapturedImagesToMegaPixel64", "12.25");
    practice.Set("Defaults", "TracingLineThickness", "4");
    EXPECT_EQ(
        ReadContainer({"measure",   "2",          "tracing", "0",     "scale",      "1",    "teeth",  "3",
                       "antialias", "0",          "guides",  "1",     "quality",    "5",    "corner", "-4",
                       "recycle",   "1",          "colour",  "67839", "changes",    "3",    "limit",  "1",
                       "implants",  "D:\\Screws", "line",    "3",     "megapixels", "12.25"}),
        0);
}

// --- Full names

using MakeFullname = void (*)(const char*, const char*, CString*, NAMEORDER);
constexpr const char* makeFullnameName = "_Z16nameMakeFullnamePKcS0_P7CString9NAMEORDER";

/// Arguments: order and expected name of Ann Lee in turn.
VEL_CHILD_PROCESS(makeNames)
{
    const auto makeFullname = Find<MakeFullname>(makeFullnameName);
    if (makeFullname == nullptr)
        return 100;
    int failures = 0;
    for (std::size_t i = 0; i + 1 < arguments.size(); i += 2)
    {
        CString name = "before";
        makeFullname("Ann", "Lee", &name, static_cast<NAMEORDER>(std::stoi(arguments[i])));
        failures += Report("order " + arguments[i], arguments[i + 1], name.GetString());
    }
    makeFullname("Ann", "Lee", nullptr, NAMEORDER_DEFAULT);
    CString name;
    makeFullname(nullptr, nullptr, &name, static_cast<NAMEORDER>(3));
    failures += Report("the name of nobody", " ", name.GetString());
    return failures;
}

int MakeNames(const std::vector<std::string>& expected)
{
    return veltest::ChildProcess("makeNames", expected).Wait();
}

TEST(FullName, FollowsTheSettingsOfItsProcess)
{
    const veltest::TemporaryPractice practice;
    EXPECT_EQ(MakeNames({"0", "Ann Lee", "1", "Ann Lee", "2", "Lee, Ann", "3", "Ann Lee"}), 0);
    practice.Set("Intl", "FamilyNameFirst", "1");
    EXPECT_EQ(MakeNames({"0", "Lee, Ann", "1", "Lee, Ann", "3", "Ann Lee"}), 0);
    practice.Set("Intl", "NameSep", "/");
    EXPECT_EQ(MakeNames({"2", "Lee/ Ann"}), 0);
    practice.Set("Intl", "NameSep", "");
    EXPECT_EQ(MakeNames({"2", "Lee Ann"}), 0);
}

VEL_CHILD_PROCESS(keepFirstSettings)
{
    const auto makeFullname = Find<MakeFullname>(makeFullnameName);
    CString name;
    makeFullname("Ann", "Lee", &name, NAMEORDER_LAST_FIRST);
    makeFullname("Ann", "Lee", &name, NAMEORDER_DEFAULT);
    WritePrivateProfileStringA("Intl", "NameSep", "+", arguments[0].c_str());
    WritePrivateProfileStringA("Intl", "FamilyNameFirst", "0", arguments[0].c_str());
    makeFullname("Ann", "Lee", &name, NAMEORDER_DEFAULT);
    return Report("a later name", "Lee- Ann", name.GetString());
}

TEST(FullName, KeepsItsSettingsUntilTheModuleIsLoadedAgain)
{
    const veltest::TemporaryPractice practice;
    practice.Set("Intl", "FamilyNameFirst", "1");
    practice.Set("Intl", "NameSep", "-");
    EXPECT_EQ(veltest::ChildProcess("keepFirstSettings", {practice.IniFile()}).Wait(), 0);
    EXPECT_EQ(MakeNames({"2", "Lee+ Ann", "0", "Ann Lee"}), 0);
}

} // namespace
