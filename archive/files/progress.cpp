#include "archive/files/progress.h"

#include <limits>

namespace arc
{
int ProgressPercent(std::uint64_t done, std::uint64_t whole)
{
    if (done >= whole)
    {
        return 100;
    }
    // Sizes whose hundredfold does not fit are large enough to lose their last digits.
    constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max() / 100;
    return static_cast<int>(done <= largest ? done * 100 / whole : done / (whole / 100));
}

int UnzipPercent(std::uint64_t entriesDone, std::uint64_t entryCount)
{
    if (entriesDone >= entryCount)
    {
        return 100;
    }
    return static_cast<int>((entriesDone * 100 + entryCount - 1) / entryCount);
}
} // namespace arc
