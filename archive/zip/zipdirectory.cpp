#include "archive/zip/zipdirectory.h"

#include "archive/zip/ziplimits.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <string_view>

namespace arc
{
namespace
{
constexpr std::size_t EndRecordSize = 22;
constexpr std::size_t Locator64Size = 20;
constexpr std::size_t EndRecord64Size = 56;
constexpr std::size_t DirectoryRecordSize = 46;
constexpr std::size_t LocalHeaderSize = 30;
constexpr std::uint64_t SearchBack = 0xFFFF; // how far before the file's end the zip library looks

constexpr std::uint32_t EndSignature = 0x06054B50;
constexpr std::uint32_t Locator64Signature = 0x07064B50;
constexpr std::uint32_t End64Signature = 0x06064B50;
constexpr std::uint32_t DirectorySignature = 0x02014B50;
constexpr std::uint32_t LocalSignature = 0x04034B50;

constexpr std::uint32_t Unknown16 = 0xFFFF;
constexpr std::uint32_t Unknown32 = 0xFFFFFFFF; // the 64-bit extra field has the value
constexpr std::uint16_t Extra64 = 0x0001;

constexpr std::uint16_t FlagSizesFollow = 0x0008;
// Encrypted, patch data, strongly encrypted, masked header.
constexpr std::uint16_t FlagsRefused = 0x0001 | 0x0020 | 0x0040 | 0x2000;
constexpr std::uint16_t MethodStored = 0;
constexpr std::uint16_t MethodDeflated = 8;

using Bytes = std::span<const unsigned char>;

std::uint16_t Get16(Bytes bytes, std::size_t at)
{
    return static_cast<std::uint16_t>(bytes[at] | bytes[at + 1] << 8);
}

std::uint32_t Get32(Bytes bytes, std::size_t at)
{
    return Get16(bytes, at) | static_cast<std::uint32_t>(Get16(bytes, at + 2)) << 16;
}

std::uint64_t Get64(Bytes bytes, std::size_t at)
{
    return Get32(bytes, at) | static_cast<std::uint64_t>(Get32(bytes, at + 4)) << 32;
}

std::string Text(Bytes bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

bool ReadAt(File& file, std::uint64_t position, std::vector<unsigned char>& bytes)
{
    return file.Seek(position) && file.Read(bytes.data(), bytes.size()) == bytes.size();
}

// Where the directory lies, as the end records say.
struct Extent
{
    std::uint64_t count = 0;
    std::uint64_t size = 0;
    std::uint64_t offset = 0; // counted from the first byte of the zip, which may lie behind others
    std::uint64_t end = 0;    // position in the file at which the directory must end
    std::string comment;
};

bool FindEndRecord(Bytes tail, std::size_t& at)
{
    // Position of the last signature, also where too few bytes follow: the zip library would take that one.
    for (at = tail.size() >= 4 ? tail.size() - 3 : 0; at-- > 0;)
    {
        if (Get32(tail, at) == EndSignature)
        {
            return tail.size() - at >= EndRecordSize;
        }
    }
    return false;
}

bool ReadExtent64(File& file, std::uint64_t locatorAt, Bytes locator, Extent& extent)
{
    const std::uint64_t endAt = Get64(locator, 8);
    std::vector<unsigned char> record(EndRecord64Size);
    if (Get32(locator, 4) != 0 || Get32(locator, 16) > 1 || endAt > locatorAt ||
        locatorAt - endAt < EndRecord64Size || !ReadAt(file, endAt, record) ||
        Get32(record, 0) != End64Signature || Get32(record, 16) != 0 || Get32(record, 20) != 0 ||
        Get64(record, 24) != Get64(record, 32))
    {
        return false;
    }
    extent.count = Get64(record, 32);
    extent.size = Get64(record, 40);
    extent.offset = Get64(record, 48);
    extent.end = endAt;
    return true;
}

bool ReadExtent(File& file, std::uint64_t fileSize, Extent& extent)
{
    // The search reaches as far as the zip library's; a locator of the 64-bit form may stand before it.
    const std::uint64_t reach = std::min<std::uint64_t>(fileSize, SearchBack + Locator64Size);
    std::vector<unsigned char> tail(static_cast<std::size_t>(reach));
    std::size_t at = 0;
    if (!ReadAt(file, fileSize - reach, tail) || !FindEndRecord(tail, at))
    {
        return false;
    }
    const Bytes end = Bytes(tail).subspan(at);
    const std::size_t commentLength = Get16(end, 20);
    if (commentLength > end.size() - EndRecordSize)
    {
        return false;
    }
    extent.comment = Text(end.subspan(EndRecordSize, commentLength));
    const std::uint64_t endAt = fileSize - reach + at;
    if (at >= Locator64Size && Get32(tail, at - Locator64Size) == Locator64Signature)
    {
        return ReadExtent64(file, endAt - Locator64Size,
                            Bytes(tail).subspan(at - Locator64Size, Locator64Size), extent);
    }
    if (Get16(end, 4) != 0 || Get16(end, 6) != 0 || Get16(end, 8) != Get16(end, 10))
    {
        return false;
    }
    extent.count = Get16(end, 10);
    extent.size = Get32(end, 12);
    extent.offset = Get32(end, 16);
    extent.end = endAt;
    return true;
}

// Replaces the values that stand in the 64-bit extra field, in its order. False when the field is damaged.
bool ApplyExtra64(Bytes extra, std::initializer_list<std::uint64_t*> values)
{
    while (extra.size() >= 4)
    {
        const std::uint16_t id = Get16(extra, 0);
        const std::size_t length = Get16(extra, 2);
        if (length > extra.size() - 4)
        {
            return false;
        }
        if (id == Extra64)
        {
            Bytes field = extra.subspan(4, length);
            for (std::uint64_t* value : values)
            {
                if (*value != Unknown32)
                {
                    continue;
                }
                if (field.size() < 8)
                {
                    return false;
                }
                *value = Get64(field, 0);
                field = field.subspan(8);
            }
            return true;
        }
        extra = extra.subspan(4 + length);
    }
    return true;
}

LocalTime TimeFromDos(std::uint16_t date, std::uint16_t time)
{
    LocalTime local;
    local.year = 1980 + (date >> 9);
    local.month = std::clamp((date >> 5 & 15) - 1, 0, 11);
    local.day = std::max(date & 31, 1);
    local.hour = time >> 11;
    local.minute = time >> 5 & 63;
    local.second = (time & 31) * 2;
    return local;
}

// An entry and where its bytes are.
struct Placed
{
    ZipEntry entry;
    std::uint64_t localOffset = 0; // counted as Extent::offset
    std::uint64_t start = 0;       // positions in the file of its local header and behind its data
    std::uint64_t end = 0;
};

bool ParseDirectoryRecord(Bytes& rest, Placed& placed)
{
    if (rest.size() < DirectoryRecordSize || Get32(rest, 0) != DirectorySignature)
    {
        return false;
    }
    const std::size_t nameLength = Get16(rest, 28);
    const std::size_t extraLength = Get16(rest, 30);
    const std::size_t commentLength = Get16(rest, 32);
    if (rest.size() - DirectoryRecordSize < nameLength + extraLength + commentLength)
    {
        return false;
    }
    ZipEntry& entry = placed.entry;
    entry.flags = Get16(rest, 8);
    entry.method = Get16(rest, 10);
    entry.time = TimeFromDos(Get16(rest, 14), Get16(rest, 12));
    entry.crc = Get32(rest, 16);
    entry.packedSize = Get32(rest, 20);
    entry.size = Get32(rest, 24);
    entry.attributes = Get32(rest, 38);
    placed.localOffset = Get32(rest, 42);
    entry.name = Text(rest.subspan(DirectoryRecordSize, nameLength));
    entry.comment = Text(rest.subspan(DirectoryRecordSize + nameLength + extraLength, commentLength));
    const Bytes extra = rest.subspan(DirectoryRecordSize + nameLength, extraLength);
    const std::uint16_t disk = Get16(rest, 34);
    if ((disk != 0 && disk != Unknown16) ||
        !ApplyExtra64(extra, {&entry.size, &entry.packedSize, &placed.localOffset}))
    {
        return false;
    }
    rest = rest.subspan(DirectoryRecordSize + nameLength + extraLength + commentLength);
    return true;
}

bool IsTrusted(const ZipEntry& entry)
{
    const bool known = entry.method == MethodStored || entry.method == MethodDeflated;
    const bool plain = (entry.flags & FlagsRefused) == 0;
    const bool sized = entry.method != MethodStored || entry.size == entry.packedSize;
    const bool emptyFolder = !entry.IsFolder() || entry.size == 0;
    return known && plain && sized && emptyFolder && !entry.name.empty() && entry.size <= MaxUnpackedBytes;
}

// Compares the header before the entry's data with the directory, and finds where the data ends.
bool CheckLocalHeader(File& file, std::uint64_t firstByte, std::uint64_t directoryAt, Placed& placed)
{
    ZipEntry& entry = placed.entry;
    std::vector<unsigned char> header(LocalHeaderSize);
    if (placed.localOffset > directoryAt || firstByte + placed.localOffset + LocalHeaderSize > directoryAt)
    {
        return false;
    }
    placed.start = firstByte + placed.localOffset;
    if (!ReadAt(file, placed.start, header) || Get32(header, 0) != LocalSignature)
    {
        return false;
    }
    const std::uint16_t flags = Get16(header, 6);
    const std::size_t nameLength = Get16(header, 26);
    const std::size_t extraLength = Get16(header, 28);
    const std::uint64_t dataAt = placed.start + LocalHeaderSize + nameLength + extraLength;
    if (flags != entry.flags || Get16(header, 8) != entry.method || nameLength != entry.name.size() ||
        dataAt > directoryAt || entry.packedSize > directoryAt - dataAt)
    {
        return false;
    }
    entry.dataOffset = dataAt;
    placed.end = dataAt + entry.packedSize;

    std::vector<unsigned char> variable(nameLength + extraLength);
    if (!ReadAt(file, placed.start + LocalHeaderSize, variable) ||
        std::memcmp(variable.data(), entry.name.data(), nameLength) != 0)
    {
        return false;
    }
    if ((flags & FlagSizesFollow) != 0)
    {
        return true;
    }
    std::uint64_t packed = Get32(header, 18);
    std::uint64_t size = Get32(header, 22);
    return ApplyExtra64(Bytes(variable).subspan(nameLength), {&size, &packed}) &&
           Get32(header, 14) == entry.crc && packed == entry.packedSize && size == entry.size;
}

bool Overlap(std::vector<Placed>& placed)
{
    std::vector<const Placed*> order;
    order.reserve(placed.size());
    for (const Placed& entry : placed)
    {
        order.push_back(&entry);
    }
    std::sort(order.begin(), order.end(),
              [](const Placed* left, const Placed* right) { return left->start < right->start; });
    return std::adjacent_find(order.begin(), order.end(), [](const Placed* left, const Placed* right) {
               return right->start < left->end;
           }) != order.end();
}
} // namespace

bool ZipEntry::IsFolder() const
{
    return (attributes & attribute::Folder) != 0 || name.ends_with('\\') || name.ends_with('/');
}

std::optional<ZipDirectory> ReadZipDirectory(File& file)
{
    const auto fileSize = file.Size();
    Extent extent;
    if (!fileSize || !ReadExtent(file, *fileSize, extent) || extent.count > MaxZipEntries ||
        extent.size > MaxCentralDirectoryBytes || extent.size > extent.end ||
        extent.offset > extent.end - extent.size || extent.count * DirectoryRecordSize > extent.size)
    {
        return std::nullopt;
    }
    const std::uint64_t directoryAt = extent.end - extent.size;
    const std::uint64_t firstByte = directoryAt - extent.offset;

    std::vector<unsigned char> bytes(static_cast<std::size_t>(extent.size));
    if (!ReadAt(file, directoryAt, bytes))
    {
        return std::nullopt;
    }
    ZipDirectory directory;
    directory.comment = extent.comment;
    std::vector<Placed> placed(static_cast<std::size_t>(extent.count));
    Bytes rest(bytes);
    for (Placed& entry : placed)
    {
        entry.entry.directoryOffset = extent.offset + (extent.size - rest.size());
        if (!ParseDirectoryRecord(rest, entry) || !IsTrusted(entry.entry) ||
            !CheckLocalHeader(file, firstByte, directoryAt, entry))
        {
            return std::nullopt;
        }
        directory.unpackedBytes += entry.entry.size;
        if (directory.unpackedBytes > MaxUnpackedBytes)
        {
            return std::nullopt;
        }
    }
    const bool bomb = directory.unpackedBytes / MaxUnpackRatio > *fileSize;
    if (!rest.empty() || bomb || Overlap(placed))
    {
        return std::nullopt;
    }
    directory.entries.reserve(placed.size());
    for (Placed& entry : placed)
    {
        directory.entries.push_back(std::move(entry.entry));
    }
    return directory;
}
} // namespace arc
