// Builds zip files byte by byte, also such as no program would write.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// An entry as its headers tell it. What is not set is made to fit the contents.
struct RawEntry
{
    std::string name = {};
    std::string contents = {}; // as unpacked
    std::uint16_t method = 0;  // 8: contents are deflated
    std::uint16_t flags = 0;
    std::uint32_t attributes = 0x20;
    std::optional<std::uint32_t> crc = {};
    std::optional<std::uint32_t> size = {}; // unpacked
    std::optional<std::uint32_t> packedSize = {};
    std::optional<std::uint32_t> offset = {}; // of the local header, in the directory
    std::string extra = {};                   // in the directory
    std::string comment = {};
};

struct RawZip
{
    std::vector<RawEntry> entries;
    std::string prefix; // before everything; offsets do not count it
    std::string comment;
    std::string trailing; // behind the end record
    std::optional<std::uint16_t> count = {};
    bool has64BitEnd = false; // for a zip without prefix

    std::string Build() const;
};

std::uint32_t Crc(const std::string& bytes);
std::string Deflate(const std::string& bytes);
