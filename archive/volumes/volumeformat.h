// Bytes of a volume stream: the header of each volume, the block behind the first one, the directory records.
#pragma once

#include "archive/files/filesystem.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace arc
{
inline constexpr std::size_t VolumeHeaderSize = 28;
inline constexpr std::size_t TotalBlockSize = 16;
inline constexpr std::size_t LongRecordSize = 36;  ///< length and 32 bytes of name, of which 31 are used
inline constexpr std::size_t ShortRecordSize = 16; ///< length and 12 bytes of name
inline constexpr std::size_t LongNameLength = 31;
inline constexpr std::size_t ShortNameLength = 12;
inline constexpr std::size_t LongFormFrom =
    7; ///< length of the patient file's name part that needs the long form
inline constexpr int MaxVolumes = 255;
inline constexpr std::size_t MaxVolumeFiles = 65535;
inline constexpr std::uint64_t MaxStreamBytes = 0xFFFFFFFF;

using ByteView = std::span<const unsigned char>;

enum class RecordForm
{
    Short,
    Long
};

/// The form that a set takes whose first file has this name.
RecordForm FormForFirstFile(std::string_view fileName);
std::size_t RecordSize(RecordForm form);
std::size_t NameCapacity(RecordForm form);

/// What the bytes of a header hold. The year is the low byte of (years since 1900 minus 1980).
struct VolumeHeader
{
    std::uint8_t year = 0;
    std::uint8_t month = 0; ///< 0 to 11
    std::uint8_t day = 0;
    std::uint8_t hour = 0;
    std::uint8_t minute = 0;
    std::uint8_t volume = 0; ///< from 1
    std::uint16_t fileCount = 0;
    RecordForm form = RecordForm::Short;

    /// True when both are of one save: all but the volume number is equal.
    bool SameSet(const VolumeHeader& other) const;
};

VolumeHeader MakeVolumeHeader(const LocalTime& time, int volume, std::size_t fileCount, RecordForm form);
std::array<unsigned char, VolumeHeaderSize> EncodeHeader(const VolumeHeader& header);
/// Nothing when the bytes are too few or the format tag is neither of the two known.
std::optional<VolumeHeader> DecodeHeader(ByteView bytes);

std::array<unsigned char, TotalBlockSize> EncodeTotal(std::uint32_t total);
std::optional<std::uint32_t> DecodeTotal(ByteView bytes);

struct DirectoryRecord
{
    std::uint32_t length = 0;
    std::string name;
};

/// The record's bytes in the form given; the name must fit (NameCapacity).
std::string EncodeRecord(const DirectoryRecord& record, RecordForm form);
/// Nothing when the bytes are too few or the name is empty. The name ends at its first NUL; what follows is
/// padding.
std::optional<DirectoryRecord> DecodeRecord(ByteView bytes, RecordForm form);
} // namespace arc
