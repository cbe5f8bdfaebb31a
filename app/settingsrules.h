#pragma once

#include <cstdint>
#include <functional>
#include <string>

/// Rules for the settings that the module shares with its host; text from the settings file is untrusted.
namespace app
{

/// The decimal number at the start of the text, after blanks; 0.0 when there is none.
/// The decimal point is always ".", whatever the user's locale. "inf" and "nan" count as no number, and a
/// number too large for a double gives the largest one.
double ParseDecimal(const std::string& text);

/// A colour from "red,green,blue", each part as C's "%i" reads it: decimal, octal after "0", hexadecimal
/// after "0x". Only the low byte of a part counts. Text that does not hold three numbers gives the fallback.
/// The result has red in its low byte, then green, then blue.
std::uint32_t ParseColour(const std::string& text, std::uint32_t fallback);

/// The values that the module puts into the exported container, in the order in which they are read.
struct SharedSettings
{
    std::int32_t measureWindowPrecision; ///< decimals, 0 to 2
    std::int32_t tracingPrecision;       ///< decimals, 0 to 2
    float tracingPrintTextScale;         ///< never negative
    std::int32_t textGuides;
    std::int32_t uniformTeethSize;
    std::int32_t tracingAntiAlias;
    std::int32_t displayQuality; ///< 2 or more
    std::int32_t photoCornerRoundedness;
    std::int32_t recycle; ///< 0 or 1
    std::uint32_t backgroundColour;
    std::string implantsFolder;
    std::int32_t allowPatientChanges;
    double capturedMegapixelLimit;
    std::int32_t limitCapturedImageSize; ///< 0 or 1
    float tracingLineThickness;          ///< 1.0 to 3.0
    bool operator==(const SharedSettings&) const = default;
};

/// Where the values are read; the names of the two sections and of one key come from the string table.
struct SettingsSource
{
    std::string defaultsSection;
    std::string environmentSection;
    std::string workingKey;
    std::uint32_t windowColour = 0; ///< used when no background colour is set
    std::function<int(const std::string& section, const char* key, int fallback)> readInt;
    std::function<std::string(const std::string& section, const char* key, const char* fallback)> readString;
};

/// Reads every value once and brings it into its limits.
SharedSettings ReadSettings(const SettingsSource& source);

} // namespace app
