#include "archive/zip/codec.h"

#include <algorithm>
#include <new>

#include <libdeflate.h>
#include <zlib.h>

namespace arc
{
namespace
{
constexpr int Level = 6;       // what Z_DEFAULT_COMPRESSION stands for
constexpr int MemoryLevel = 8; // the zip library's

// Bytes that no text holds, and those that make one, as zlib sees it; the rest says nothing.
constexpr bool IsBinary(unsigned char byte)
{
    return byte < 7 || (byte >= 14 && byte <= 25) || (byte >= 28 && byte <= 31);
}
constexpr bool IsText(unsigned char byte)
{
    return byte == '\t' || byte == '\n' || byte == '\r' || byte >= 32;
}

// Every block but the last has this many symbols, and a symbol stands for at least one byte.
constexpr std::size_t FirstBlockAtLeast = 16383;

std::uint16_t AskZlib(ByteSpan contents)
{
    z_stream stream{};
    if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, -MAX_WBITS, MemoryLevel,
                     Z_DEFAULT_STRATEGY) != Z_OK)
    {
        throw std::bad_alloc();
    }
    constexpr std::size_t Piece = std::size_t{64} * 1024;
    unsigned char packed[4096];
    while (stream.data_type == Z_UNKNOWN && !contents.empty())
    {
        const ByteSpan piece = contents.first(std::min(contents.size(), Piece));
        contents = contents.subspan(piece.size());
        stream.next_in = const_cast<unsigned char*>(piece.data());
        stream.avail_in = static_cast<uInt>(piece.size());
        do
        {
            stream.next_out = packed;
            stream.avail_out = sizeof packed;
            deflate(&stream, contents.empty() ? Z_FINISH : Z_NO_FLUSH);
        } while (stream.avail_out == 0 && stream.data_type == Z_UNKNOWN);
    }
    const bool text = stream.data_type == Z_TEXT;
    deflateEnd(&stream);
    return text ? 1 : 0;
}
} // namespace

std::uint32_t Crc32(ByteSpan bytes)
{
    return libdeflate_crc32(0, bytes.data(), bytes.size());
}

std::uint16_t InternalAttributes(ByteSpan contents)
{
    const ByteSpan head = contents.first(std::min(contents.size(), FirstBlockAtLeast));
    if (std::any_of(head.begin(), head.end(), IsBinary))
    {
        return 0;
    }
    const bool text = std::any_of(head.begin(), head.end(), IsText);
    const ByteSpan rest = contents.subspan(head.size());
    // Only what the block holds besides its certain beginning can still decide, and zlib alone knows its end.
    if (rest.empty() || (text && std::none_of(rest.begin(), rest.end(), IsBinary)))
    {
        return text ? 1 : 0;
    }
    return AskZlib(contents);
}

std::span<unsigned char> Buffer::Take(std::size_t bytes)
{
    if (bytes > m_size)
    {
        m_bytes.reset();
        m_size = 0;
        m_bytes = std::make_unique_for_overwrite<unsigned char[]>(bytes);
        m_size = bytes;
    }
    return {m_bytes.get(), bytes};
}

Deflater::Deflater() : m_compressor(libdeflate_alloc_compressor(Level))
{
    if (!m_compressor)
    {
        throw std::bad_alloc();
    }
}

void Deflater::Free::operator()(libdeflate_compressor* compressor) const
{
    libdeflate_free_compressor(compressor);
}

std::size_t Deflater::Bound(std::size_t bytes) const
{
    return libdeflate_deflate_compress_bound(m_compressor.get(), bytes);
}

std::size_t Deflater::Pack(ByteSpan contents, std::span<unsigned char> packed)
{
    return libdeflate_deflate_compress(m_compressor.get(), contents.data(), contents.size(), packed.data(),
                                       packed.size());
}

Inflater::Inflater() : m_decompressor(libdeflate_alloc_decompressor())
{
    if (!m_decompressor)
    {
        throw std::bad_alloc();
    }
}

void Inflater::Free::operator()(libdeflate_decompressor* decompressor) const
{
    libdeflate_free_decompressor(decompressor);
}

bool Inflater::Unpack(ByteSpan packed, std::span<unsigned char> contents)
{
    return libdeflate_deflate_decompress(m_decompressor.get(), packed.data(), packed.size(), contents.data(),
                                         contents.size(), nullptr) == LIBDEFLATE_SUCCESS;
}
} // namespace arc
