#include "maintenance/diagnosticsrules.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <map>

namespace
{
using namespace maint;

bool EqualCodes(const std::string& one, const std::string& other)
{
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](unsigned char a, unsigned char b) { return std::tolower(a) == std::tolower(b); });
}

TEST(DiagnosticsRules, EntriesBecomeRecordsOfTheFirstItemWithTheirCode)
{
    std::map<std::string, int> asked;
    const auto itemsOf = [&](const std::string& group) {
        ++asked[group];
        return group == "Airway" ? std::vector<DiagnosticItem>{{"aw1", "{1}"}, {"AW2", "{2}"}, {"AW1", "{3}"}}
                                 : std::vector<DiagnosticItem>{};
    };
    const DiagnosticEntry entries[] = {
        {"Airway", "AW1"}, {"Airway", "aw2"}, {"Airway", "AW9"}, {"Gone", "AW1"}, {"Airway", "AW2"}};
    std::string made;
    for (const DiagnosticRecord& record : PlanDiagnosticRecords(entries, itemsOf, EqualCodes))
        made += std::to_string(record.position) + "+" + std::to_string(record.seconds) + record.dtID + " ";
    EXPECT_EQ(made, "0+0{1} 1+1{2} 4+4{2} ") << "entries without a match take their second";
    EXPECT_EQ(asked, (std::map<std::string, int>{{"Airway", 1}, {"Gone", 1}}));
}

TEST(DiagnosticsRules, TheEarlierFormatIsTriedAfterThePresentOne)
{
    for (const auto& [fits, tried] : std::map<int, std::string>{{1, "1"}, {2, "12"}, {3, "12"}})
    {
        std::string formats;
        const bool read = ReadInAnyFormat([&, fits = fits](int format) {
            formats += std::to_string(format);
            return format == fits;
        });
        EXPECT_EQ(formats, tried);
        EXPECT_EQ(read, fits < 3);
    }
}
} // namespace
