#include "archive/volumes/volumeformat.h"

#include "archive/files/filenames.h"

#include <algorithm>

namespace arc
{
namespace
{
constexpr std::size_t FormatTagOffset = 8;
constexpr unsigned char LongFormTag = '2';

void PutNumber(unsigned char* to, std::uint32_t value, std::size_t bytes)
{
    for (std::size_t i = 0; i < bytes; ++i)
    {
        to[i] = static_cast<unsigned char>(value >> (8 * i));
    }
}

std::uint32_t GetNumber(const unsigned char* from, std::size_t bytes)
{
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < bytes; ++i)
    {
        value |= static_cast<std::uint32_t>(from[i]) << (8 * i);
    }
    return value;
}
} // namespace

RecordForm FormForFirstFile(std::string_view fileName)
{
    const std::size_t namePart = fileName.size() - ExtensionOf(fileName).size();
    return namePart >= LongFormFrom ? RecordForm::Long : RecordForm::Short;
}

std::size_t RecordSize(RecordForm form)
{
    return form == RecordForm::Long ? LongRecordSize : ShortRecordSize;
}

std::size_t NameCapacity(RecordForm form)
{
    return form == RecordForm::Long ? LongNameLength : ShortNameLength;
}

bool VolumeHeader::SameSet(const VolumeHeader& other) const
{
    return year == other.year && month == other.month && day == other.day && hour == other.hour &&
           minute == other.minute && fileCount == other.fileCount && form == other.form;
}

VolumeHeader MakeVolumeHeader(const LocalTime& time, int volume, std::size_t fileCount, RecordForm form)
{
    VolumeHeader header;
    // The field counts from 1900 and still has 1980 taken off: 2026 is stored as 194.
    header.year = static_cast<std::uint8_t>(time.year - 1900 - 1980);
    header.month = static_cast<std::uint8_t>(time.month);
    header.day = static_cast<std::uint8_t>(time.day);
    header.hour = static_cast<std::uint8_t>(time.hour);
    header.minute = static_cast<std::uint8_t>(time.minute);
    header.volume = static_cast<std::uint8_t>(volume);
    header.fileCount = static_cast<std::uint16_t>(fileCount);
    header.form = form;
    return header;
}

std::array<unsigned char, VolumeHeaderSize> EncodeHeader(const VolumeHeader& header)
{
    std::array<unsigned char, VolumeHeaderSize> bytes{header.year, header.month,  header.day,
                                                      header.hour, header.minute, header.volume};
    PutNumber(&bytes[6], header.fileCount, 2);
    if (header.form == RecordForm::Long)
    {
        bytes[FormatTagOffset] = LongFormTag;
    }
    return bytes;
}

std::optional<VolumeHeader> DecodeHeader(ByteView bytes)
{
    if (bytes.size() < VolumeHeaderSize)
    {
        return std::nullopt;
    }
    const ByteView tag = bytes.subspan(FormatTagOffset, VolumeHeaderSize - FormatTagOffset);
    const bool longForm = tag[0] == LongFormTag;
    if (!std::all_of(tag.begin() + (longForm ? 1 : 0), tag.end(),
                     [](unsigned char byte) { return byte == 0; }))
    {
        return std::nullopt;
    }
    VolumeHeader header;
    header.year = bytes[0];
    header.month = bytes[1];
    header.day = bytes[2];
    header.hour = bytes[3];
    header.minute = bytes[4];
    header.volume = bytes[5];
    header.fileCount = static_cast<std::uint16_t>(GetNumber(&bytes[6], 2));
    header.form = longForm ? RecordForm::Long : RecordForm::Short;
    return header;
}

std::array<unsigned char, TotalBlockSize> EncodeTotal(std::uint32_t total)
{
    std::array<unsigned char, TotalBlockSize> bytes{};
    PutNumber(bytes.data(), total, 4);
    return bytes;
}

std::optional<std::uint32_t> DecodeTotal(ByteView bytes)
{
    if (bytes.size() < TotalBlockSize)
    {
        return std::nullopt;
    }
    return GetNumber(bytes.data(), 4);
}

std::string EncodeRecord(const DirectoryRecord& record, RecordForm form)
{
    std::string bytes(RecordSize(form), '\0');
    PutNumber(reinterpret_cast<unsigned char*>(bytes.data()), record.length, 4);
    const std::size_t length = std::min(record.name.size(), NameCapacity(form));
    std::copy_n(record.name.begin(), length, bytes.begin() + 4);
    return bytes;
}

std::optional<DirectoryRecord> DecodeRecord(ByteView bytes, RecordForm form)
{
    if (bytes.size() < RecordSize(form))
    {
        return std::nullopt;
    }
    const auto* name = reinterpret_cast<const char*>(&bytes[4]);
    DirectoryRecord record;
    record.length = GetNumber(bytes.data(), 4);
    record.name.assign(name, std::find(name, name + NameCapacity(form), '\0'));
    if (record.name.empty())
    {
        return std::nullopt;
    }
    return record;
}
} // namespace arc
