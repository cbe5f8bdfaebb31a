#pragma once

#include <functional>
#include <span>
#include <string>
#include <vector>

/// Which diagnostic entries of a serialized patient become records, and when they were made.
namespace maint
{
/// Formats of a serialized patient, in the order in which they are tried.
inline constexpr int SERIALIZED_FORMATS[] = {1, 2};

/// Calls `attempt` with one format after the other until it answers true. It begins with an empty patient and
/// at the start of the file each time. False when no format fits.
bool ReadInAnyFormat(const std::function<bool(int nFormat)>& attempt);

/// An entry of the file: the title of its group and its item's code there.
struct DiagnosticEntry
{
    std::string group, itemCode;
};

/// What a group of the practice asks.
struct DiagnosticItem
{
    std::string itemCode, dtID;
};

/// A record to be made of the entry at `position`.
struct DiagnosticRecord
{
    int position; ///< of the entry in the file, from 0; orders the records
    int seconds;  ///< behind the start of the import; entries without a match take their second as well
    std::string dtID;
};

/// The records that a file's entries give, in their order. An entry becomes a record when its group has an
/// item of its code; the first such item counts. `itemsOf` is asked once for each title. `equalCodes`
/// compares codes without regard to case.
std::vector<DiagnosticRecord> PlanDiagnosticRecords(
    std::span<const DiagnosticEntry> entries,
    const std::function<std::vector<DiagnosticItem>(const std::string& group)>& itemsOf,
    const std::function<bool(const std::string&, const std::string&)>& equalCodes);
} // namespace maint
