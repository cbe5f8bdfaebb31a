// Packing and unpacking of whole buffers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

struct libdeflate_compressor;
struct libdeflate_decompressor;

namespace arc
{
using ByteSpan = std::span<const unsigned char>;

/// Checksum of a zip entry.
std::uint32_t Crc32(ByteSpan bytes);

/// The internal attributes that the zip library gives an entry of these contents when it packs them itself: 1
/// for text, 0 for anything else. It judges by the first block of the packed stream, and so does this.
std::uint16_t InternalAttributes(ByteSpan contents);

/// Memory that grows to what was needed most. The bytes are not initialised.
class Buffer
{
public:
    /// Throws std::bad_alloc. What was in it is lost.
    std::span<unsigned char> Take(std::size_t bytes);

private:
    std::unique_ptr<unsigned char[]> m_bytes;
    std::size_t m_size = 0;
};

/// Packs with the deflate method, at the level that the zip library uses by default. For one thread. Throws
/// std::bad_alloc when it is made.
class Deflater
{
public:
    Deflater();

    /// The most that so many bytes can become.
    std::size_t Bound(std::size_t bytes) const;
    /// The bytes written to packed, which must hold Bound(contents.size()).
    std::size_t Pack(ByteSpan contents, std::span<unsigned char> packed);

private:
    struct Free
    {
        void operator()(libdeflate_compressor* compressor) const;
    };
    std::unique_ptr<libdeflate_compressor, Free> m_compressor;
};

/// Unpacks what any program has deflated. For one thread. Throws std::bad_alloc when it is made.
class Inflater
{
public:
    Inflater();

    /// True when the stream is whole and gives exactly as many bytes as contents holds.
    bool Unpack(ByteSpan packed, std::span<unsigned char> contents);

private:
    struct Free
    {
        void operator()(libdeflate_decompressor* decompressor) const;
    };
    std::unique_ptr<libdeflate_decompressor, Free> m_decompressor;
};
} // namespace arc
