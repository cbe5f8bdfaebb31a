// How much an archive may hold. The one place for every limit that protects a load from hostile or broken
// archives; a patient's real archive stays far below each of them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace arc
{
/// Entries: 100 timepoints with every type of every group, companions and extras stay below a tenth of this.
inline constexpr std::uint64_t MaxZipEntries = 250'000;
/// Bytes of a central directory, which is held in memory while it is checked.
inline constexpr std::uint64_t MaxCentralDirectoryBytes = 64ULL << 20;
/// Bytes of everything unpacked.
inline constexpr std::uint64_t MaxUnpackedBytes = 1ULL << 40;
/// Unpacked bytes may be this many times the file's. Deflate comes to 1032 with files of one value, which a
/// patient's may be; a directory that claims more is a lie. What a load would write is measured against the
/// disk's free space besides.
inline constexpr std::uint64_t MaxUnpackRatio = 1032;
/// Stored names and comments, in bytes, as far as they are shown.
inline constexpr std::size_t MaxStoredName = 260;
inline constexpr std::size_t MaxShownComment = 255;
} // namespace arc
