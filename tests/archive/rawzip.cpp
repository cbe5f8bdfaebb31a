#include "tests/archive/rawzip.h"

#include <zlib.h>

namespace
{
void Put(std::string& to, std::uint64_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i)
        to += static_cast<char>(value >> (8 * i));
}

// The fields that both headers share, from "version needed" on.
void PutCommon(std::string& to, const RawEntry& entry, std::size_t packed)
{
    Put(to, 20, 2);
    Put(to, entry.flags, 2);
    Put(to, entry.method, 2);
    Put(to, 0x2000, 2); // 04:00:00
    Put(to, 0x5D75, 2); // 21 November 2026
    Put(to, entry.crc.value_or(Crc(entry.contents)), 4);
    Put(to, entry.packedSize.value_or(static_cast<std::uint32_t>(packed)), 4);
    Put(to, entry.size.value_or(static_cast<std::uint32_t>(entry.contents.size())), 4);
    Put(to, static_cast<std::uint32_t>(entry.name.size()), 2);
}
} // namespace

std::uint32_t Crc(const std::string& bytes)
{
    return static_cast<std::uint32_t>(
        crc32(0, reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uInt>(bytes.size())));
}

std::string Deflate(const std::string& bytes)
{
    z_stream stream{};
    deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY);
    std::string packed(deflateBound(&stream, static_cast<uLong>(bytes.size())), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
    stream.avail_in = static_cast<uInt>(bytes.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    deflate(&stream, Z_FINISH);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

std::string RawZip::Build() const
{
    std::string bytes;
    std::string directory;
    for (const RawEntry& entry : entries)
    {
        const std::string packed = entry.method == 8 ? Deflate(entry.contents) : entry.contents;
        const auto offset = static_cast<std::uint32_t>(bytes.size());
        bytes += "PK\x03\x04";
        PutCommon(bytes, entry, packed.size());
        Put(bytes, 0, 2);
        bytes += entry.name + packed;

        directory += "PK\x01\x02";
        Put(directory, 20, 2);
        PutCommon(directory, entry, packed.size());
        Put(directory, static_cast<std::uint32_t>(entry.extra.size()), 2);
        Put(directory, static_cast<std::uint32_t>(entry.comment.size()), 2);
        Put(directory, 0, 4); // disk, internal attributes
        Put(directory, entry.attributes, 4);
        Put(directory, entry.offset.value_or(offset), 4);
        directory += entry.name + entry.extra + entry.comment;
    }
    const auto directoryAt = static_cast<std::uint32_t>(bytes.size());
    bytes += directory;
    const auto entryCount = count.value_or(static_cast<std::uint16_t>(entries.size()));
    if (has64BitEnd)
    {
        const std::size_t endAt = bytes.size();
        bytes += "PK\x06\x06";
        Put(bytes, 44, 8); // bytes that follow
        Put(bytes, 45 | 45 << 16, 4);
        Put(bytes, 0, 8); // disks
        for (const std::uint64_t value : {std::uint64_t{entryCount}, std::uint64_t{entryCount},
                                          std::uint64_t{directory.size()}, std::uint64_t{directoryAt}})
            Put(bytes, value, 8);
        bytes += "PK\x06\x07";
        Put(bytes, 0, 4); // disk
        Put(bytes, endAt, 8);
        Put(bytes, 1, 4); // number of disks
    }
    bytes += "PK\x05\x06";
    Put(bytes, 0, 4);
    Put(bytes, entryCount, 2);
    Put(bytes, entryCount, 2);
    Put(bytes, static_cast<std::uint32_t>(directory.size()), 4);
    Put(bytes, directoryAt, 4);
    Put(bytes, static_cast<std::uint32_t>(comment.size()), 2);
    return prefix + bytes + comment + trailing;
}
