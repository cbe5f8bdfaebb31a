#pragma once

#include "maintenance/namerules.h"

#include <cctype>

/// The characters of a code page: ASCII, two-byte letters that begin with 0x81 to 0x9F, and 0xE9 as a
/// lower-case letter with the capital 0xC9.
class CodePage : public maint::CharTable
{
public:
    std::size_t LengthOf(std::string_view text) const override
    {
        const auto lead = static_cast<unsigned char>(text.front());
        return text.size() > 1 && lead >= 0x81 && lead <= 0x9F ? 2 : 1;
    }
    unsigned TypeOf(std::string_view character) const override
    {
        const auto byte = static_cast<unsigned char>(character.front());
        if (character.size() == 2 || byte == 0xE9 || byte == 0xC9)
            return letter;
        return (std::isalpha(byte) ? letter : 0U) | (std::isdigit(byte) ? digit : 0U) |
               (std::iscntrl(byte) ? control : 0U);
    }
    char CapitalOf(char byte) const override
    {
        if (byte == '\xE9' || byte == '\x81')
            return '\xC9';
        return static_cast<char>(std::toupper(static_cast<unsigned char>(byte)));
    }
};
