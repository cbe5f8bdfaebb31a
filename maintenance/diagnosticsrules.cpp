#include "maintenance/diagnosticsrules.h"

#include <algorithm>
#include <unordered_map>

namespace maint
{
bool ReadInAnyFormat(const std::function<bool(int nFormat)>& attempt)
{
    return std::any_of(std::begin(SERIALIZED_FORMATS), std::end(SERIALIZED_FORMATS), attempt);
}

std::vector<DiagnosticRecord> PlanDiagnosticRecords(
    std::span<const DiagnosticEntry> entries,
    const std::function<std::vector<DiagnosticItem>(const std::string& group)>& itemsOf,
    const std::function<bool(const std::string&, const std::string&)>& equalCodes)
{
    std::vector<DiagnosticRecord> records;
    std::unordered_map<std::string, std::vector<DiagnosticItem>> groups;
    int position = 0;
    for (const DiagnosticEntry& entry : entries)
    {
        auto known = groups.find(entry.group);
        if (known == groups.end())
            known = groups.emplace(entry.group, itemsOf(entry.group)).first;
        const auto match =
            std::find_if(known->second.begin(), known->second.end(), [&](const DiagnosticItem& item) {
                return equalCodes(item.itemCode, entry.itemCode);
            });
        if (match != known->second.end())
            records.push_back({position, position, match->dtID});
        ++position;
    }
    return records;
}
} // namespace maint
