#include "app/settingsrules.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <limits>
#include <locale>
#include <sstream>

namespace
{

bool IsBlank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

float ToFloat(double value)
{
    const double limit = std::numeric_limits<float>::max();
    return static_cast<float>(std::clamp(value, -limit, limit));
}

} // namespace

double setParseDecimal(const std::string& text)
{
    const char* first = text.data();
    const char* const end = first + text.size();
    first = std::find_if_not(first, end, IsBlank);
    if (first != end && *first == '+' && first + 1 != end && first[1] != '-')
        ++first;

    // from_chars also reads "inf" and "nan", which are no numbers to draw with.
    const char* digits = first != end && *first == '-' ? first + 1 : first;
    if (digits != end && *digits == '.')
        ++digits;
    if (digits == end || !IsDigit(*digits))
        return 0.0;

    double value = 0.0;
    if (std::from_chars(first, end, value).ec != std::errc::result_out_of_range)
        return value;

    // Streams tell next to nothing from beyond the largest number: they give 0 or that number.
    std::istringstream stream(std::string(first, end));
    stream.imbue(std::locale::classic());
    stream >> value;
    return value;
}

std::uint32_t setParseColour(const std::string& text, std::uint32_t fallback)
{
    std::uint32_t colour = 0;
    const char* next = text.c_str();
    for (int shift = 0; shift <= 16; shift += 8)
    {
        if (shift > 0 && *next++ != ',')
            return fallback;
        char* end = nullptr;
        const long long part = std::strtoll(next, &end, 0);
        if (end == next)
            return fallback;
        colour |= (static_cast<std::uint32_t>(part) & 0xFFu) << shift;
        next = end;
    }
    return colour;
}

setValues setRead(const setSource& source)
{
    const auto number = [&](const char* key, int fallback) {
        return source.readInt(source.defaultsSection, key, fallback);
    };
    const auto text = [&](const char* key, const char* fallback) {
        return source.readString(source.defaultsSection, key, fallback);
    };
    const auto environment = [&](const char* key, const char* fallback) {
        return source.readString(source.environmentSection, key, fallback);
    };

    setValues values;
    values.measureWindowPrecision = std::clamp(number("MeasWndNumDisplayPrec", 1), 0, 2);
    values.tracingPrecision = std::clamp(number("MeasInTracingNumDisplayPrec", 0), 0, 2);
    const float scale = ToFloat(setParseDecimal(text("TracingPrintTextScale", "0.7")));
    values.tracingPrintTextScale = scale < 0.0f ? 1.0f : scale;
    values.textGuides = number("TurnOnTextGuides", 0);
    values.uniformTeethSize = number("UseUniformTeethSize", 0);
    values.tracingAntiAlias = number("UseTracingAntiAlias", 1);
    values.displayQuality = std::max(number("DisplayQuality", 2), 2);
    values.photoCornerRoundedness = number("DisplayPhotoCornerRoundedness", 20);
    values.recycle = number("Recycle", 0) != 0 ? 1 : 0;
    values.backgroundColour = setParseColour(text("BackgroundColor", ""), source.windowColour);
    values.implantsFolder = environment("Implants", "");
    if (values.implantsFolder.empty())
        values.implantsFolder = environment(source.workingKey.c_str(), "") + "Implants";
    values.allowPatientChanges = number("AllowPatientChanges", 1);
    values.capturedMegapixelLimit = setParseDecimal(environment("LimitCapturedImagesToMegaPixel64", "8.3"));
    values.limitCapturedImageSize = number("LimitCapturedImagesSize64", 0) != 0 ? 1 : 0;
    values.tracingLineThickness =
        std::clamp(ToFloat(setParseDecimal(text("TracingLineThickness", "1.0"))), 1.0f, 3.0f);
    return values;
}
