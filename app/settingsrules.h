#pragma once

#include <cstdint>
#include <functional>
#include <string>

/// Rules for the settings that the module shares with its host; text from the settings file is untrusted.

/// The decimal number at the start of the text, after blanks; 0.0 when there is none.
/// The decimal point is always ".", whatever the user's locale. "inf" and "nan" count as no number, and a
/// number too large for a double gives the largest one.
double setParseDecimal(const std::string& text);

/// A colour from "red,green,blue", each part as C's "%i" reads it: decimal, octal after "0", hexadecimal
/// after "0x". Only the low byte of a part counts. Text that does not hold three numbers gives the fallback.
/// The result has red in its low byte, then green, then blue.
std::uint32_t setParseColour(const std::string& text, std::uint32_t fallback);

/// The values that the module puts into the exported container, in the container's order.
struct setValues
{
    std::int32_t measureWindowPrecision = 0; ///< decimals, 0 to 2
    std::int32_t tracingPrecision = 0;       ///< decimals, 0 to 2
    float tracingPrintTextScale = 0;         ///< never negative
    std::int32_t uniformTeethSize = 0;
    std::int32_t tracingAntiAlias = 0;
    std::int32_t textGuides = 0;
    std::int32_t displayQuality = 0; ///< 2 or more
    std::int32_t photoCornerRoundedness = 0;
    std::int32_t recycle = 0; ///< 0 or 1
    std::uint32_t backgroundColour = 0;
    std::string implantsFolder;
    std::int32_t allowPatientChanges = 0;
    std::int32_t limitCapturedImageSize = 0; ///< 0 or 1
    double capturedMegapixelLimit = 0;
    float tracingLineThickness = 0; ///< 1.0 to 3.0
};

/// Where the values are read; the names of the two sections and of one key come from the string table.
struct setSource
{
    std::string defaultsSection;
    std::string environmentSection;
    std::string workingKey;
    std::uint32_t windowColour = 0; ///< used when no background colour is set
    std::function<int(const std::string& section, const char* key, int fallback)> readInt;
    std::function<std::string(const std::string& section, const char* key, const char* fallback)> readString;
};

/// Reads every value once and brings it into its limits.
setValues setRead(const setSource& source);
