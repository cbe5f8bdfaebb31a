// What the module reads from the settings file once per process; every case therefore has a process of its
// own.

#include "app/velenums.h"
#include "suite/util/velinisettings.h"
#include "tests/support/childprocess.h"
#include "tests/support/temporarypractice.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace
{

template <typename Symbol> Symbol Find(const char* name)
{
    const HMODULE module = LoadLibraryA("VelDlgs.dll");
    return reinterpret_cast<Symbol>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

/// The result of a process that expects this.
int Expect(const std::string& expected, const char* found)
{
    if (expected == found)
        return 0;
    std::printf("\"%s\", expected \"%s\"\n", found, expected.c_str());
    return 1;
}

/// The container, read by its layout as a host does. Argument: its expected fields.
VEL_CHILD_PROCESS(readContainer)
{
    const auto& c = *Find<const CVelIniSettingsContainer*>("g_VelIniSettingContainer");
    CString colour = "window";
    if (c.m_crBackgroundColor != GetSysColor(COLOR_WINDOW))
        colour.Format("%06lx", c.m_crBackgroundColor);
    CString text;
    text.Format("%d %d|%d %d %.9g %d %d %d %d %d %d %s %s|%d %d %.9g %.9g", c.m_nSize == sizeof c,
                c.m_bFilled, c.m_nMeasWndNumDisplayPrec, c.m_nMeasInTracingNumDisplayPrec,
                c.m_fTracingPrintTextScale, c.m_nUseUniformTeethSize, c.m_nUseTracingAntiAlias,
                c.m_nTurnOnTextGuides, c.m_nDisplayQuality, c.m_nDisplayPhotoCornerRoundedness, c.m_bRecycle,
                colour.GetString(), c.m_strImplants.GetString(), c.m_nAllowPatientChanges,
                c.m_bLimitCapturedImagesSize, c.m_dLimitCapturedImagesToMegaPixel, c.m_fTracingLineThickness);
    return Expect(arguments[0], text);
}

TEST(Container, HoldsTheDefaultsAndWhatIsSetWithinItsLimits)
{
    const veltest::TemporaryPractice practice;
    const auto expect = [](const std::string& fields) {
        EXPECT_EQ(veltest::ChildProcess("readContainer", {fields}).Wait(), 0);
    };
    expect("1 1|1 0 0.699999988 0 1 0 2 20 0 window " + practice.Get("Environment", "WORKING") +
           "Implants|1 0 8.3 1");
    const char* const settings[][3] = {
        {"Defaults", "MeasWndNumDisplayPrec", "7"},
        {"Defaults", "MeasInTracingNumDisplayPrec", "2"},
        {"Defaults", "TracingPrintTextScale", "-2"},
        {"Defaults", "UseUniformTeethSize", "3"},
        {"Defaults", "UseTracingAntiAlias", "4"},
        {"Defaults", "TurnOnTextGuides", "5"},
        {"Defaults", "DisplayQuality", "6"},
        {"Defaults", "DisplayPhotoCornerRoundedness", "-4"},
        {"Defaults", "Recycle", "2"},
        {"Defaults", "BackgroundColor", "0xff,010,1"},
        {"Environment", "Implants", "D:\\Screws"},
        {"Defaults", "AllowPatientChanges", "3"},
        {"Defaults", "LimitCapturedImagesSize64", "9"},
        {"Environment", "LimitCapturedImagesToMegaPixel64", "12.25"},
        {"Defaults", "TracingLineThickness", "4"},
    };
    for (const auto& [section, key, value] : settings)
        practice.Set(section, key, value);
    expect("1 1|2 2 1 3 4 5 6 -4 1 0108ff D:\\Screws|3 1 12.25 3");
}

using MakeFullname = void (*)(const char*, const char*, CString*, NAMEORDER);
constexpr const char* makeFullnameName = "_Z16nameMakeFullnamePKcS0_P7CString9NAMEORDER";

/// Argument: the expected names of Ann Lee in the orders 0 to 3. What is set meanwhile counts only for the
/// next process.
VEL_CHILD_PROCESS(makeNames)
{
    const auto makeFullname = Find<MakeFullname>(makeFullnameName);
    CString names;
    for (const int round : {0, 1})
    {
        names.Empty();
        for (int order = 0; order < 4; ++order)
        {
            CString name = "before";
            makeFullname("Ann", "Lee", &name, static_cast<NAMEORDER>(order));
            names += name + "|";
        }
        if (round == 0 && arguments.size() > 1)
        {
            WritePrivateProfileStringA("Intl", "NameSep", "+", arguments[1].c_str());
            WritePrivateProfileStringA("Intl", "FamilyNameFirst", "0", arguments[1].c_str());
        }
    }
    makeFullname("Ann", "Lee", nullptr, NAMEORDER_DEFAULT);
    CString nobody;
    makeFullname(nullptr, nullptr, &nobody, static_cast<NAMEORDER>(3));
    return Expect(arguments[0], names) + Expect(" ", nobody);
}

TEST(FullName, FollowsTheSettingsThatItsProcessBeganWith)
{
    const veltest::TemporaryPractice practice;
    const auto expect = [](const std::vector<std::string>& arguments) {
        EXPECT_EQ(veltest::ChildProcess("makeNames", arguments).Wait(), 0);
    };
    expect({"Ann Lee|Ann Lee|Lee, Ann|Ann Lee|"});
    practice.Set("Intl", "FamilyNameFirst", "1");
    expect({"Lee, Ann|Lee, Ann|Lee, Ann|Ann Lee|"});
    practice.Set("Intl", "NameSep", "");
    expect({"Lee Ann|Lee Ann|Lee Ann|Ann Lee|"});
    practice.Set("Intl", "NameSep", "-");
    expect({"Lee- Ann|Lee- Ann|Lee- Ann|Ann Lee|", practice.IniFile()});
    expect({"Ann Lee|Ann Lee|Lee+ Ann|Ann Lee|"});
}

} // namespace
