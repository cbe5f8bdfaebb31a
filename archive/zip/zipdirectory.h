// The central directory of a zip file, read and checked before anything of the file is believed.
#pragma once

#include "archive/files/filesystem.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace arc
{
/// One record of the directory; sizes in bytes.
struct ZipEntry
{
    std::string name; ///< as stored, any bytes
    std::string comment;
    std::uint64_t packedSize = 0;
    std::uint64_t size = 0;
    std::uint32_t crc = 0;
    std::uint32_t attributes = 0;
    std::uint16_t method = 0;
    std::uint16_t flags = 0;
    LocalTime time;
    std::uint64_t directoryOffset = 0; ///< of its record within the directory, as the zip library counts it
    std::uint64_t dataOffset = 0;      ///< of its packed bytes, in the file

    /// True when its name ends in a separator or its attributes say so.
    bool IsFolder() const;
};

struct ZipDirectory
{
    std::vector<ZipEntry> entries;
    std::string comment;
    std::uint64_t unpackedBytes = 0; ///< of all entries
};

/// The directory of an open zip file; nothing when the file is not a zip or not one that can be trusted:
/// - the counts and sizes of its end record must be those of the directory itself, on one disk;
/// - every entry's local header must agree with it in name, method, flags and sizes;
/// - the entries' bytes must lie before the directory and must not overlap;
/// - stored entries are as long as they are packed; methods are 0 and 8; nothing is encrypted;
/// - the limits of ziplimits.h.
/// Bytes before the first entry and behind the end record are tolerated, as other programs do.
std::optional<ZipDirectory> ReadZipDirectory(File& file);
} // namespace arc
