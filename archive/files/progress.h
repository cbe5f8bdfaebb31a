// Percentages of the archive progress bar.
#pragma once

#include <cstdint>

namespace arc
{
/// Part of the whole in percent, rounded down, at most 100; nothing to do is 100.
int ProgressPercent(std::uint64_t done, std::uint64_t whole);
/// Entries unzipped in percent, rounded up.
int UnzipPercent(std::uint64_t entriesDone, std::uint64_t entryCount);
} // namespace arc
