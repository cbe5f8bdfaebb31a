#include "app/settingsrules.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <limits>
#include <locale>
#include <sstream>

namespace app
{

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

double ParseDecimal(const std::string& text)
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

std::uint32_t ParseColour(const std::string& text, std::uint32_t fallback)
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

SharedSettings ReadSettings(const SettingsSource& source)
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

    const auto notNegative = [](float scale) { return scale < 0.0f ? 1.0f : scale; };
    const auto implantsFolder = [&] {
        const std::string folder = environment("Implants", "");
        return folder.empty() ? environment(source.workingKey.c_str(), "") + "Implants" : folder;
    };

    return {
        .measureWindowPrecision = std::clamp(number("MeasWndNumDisplayPrec", 1), 0, 2),
        .tracingPrecision = std::clamp(number("MeasInTracingNumDisplayPrec", 0), 0, 2),
        .tracingPrintTextScale = notNegative(ToFloat(ParseDecimal(text("TracingPrintTextScale", "0.7")))),
        .textGuides = number("TurnOnTextGuides", 0),
        .uniformTeethSize = number("UseUniformTeethSize", 0),
        .tracingAntiAlias = number("UseTracingAntiAlias", 1),
        .displayQuality = std::max(number("DisplayQuality", 2), 2),
        .photoCornerRoundedness = number("DisplayPhotoCornerRoundedness", 20),
        .recycle = number("Recycle", 0) != 0 ? 1 : 0,
        .backgroundColour = ParseColour(text("BackgroundColor", ""), source.windowColour),
        .implantsFolder = implantsFolder(),
        .allowPatientChanges = number("AllowPatientChanges", 1),
        .capturedMegapixelLimit = ParseDecimal(environment("LimitCapturedImagesToMegaPixel64", "8.3")),
        .limitCapturedImageSize = number("LimitCapturedImagesSize64", 0) != 0 ? 1 : 0,
        .tracingLineThickness =
            std::clamp(ToFloat(ParseDecimal(text("TracingLineThickness", "1.0"))), 1.0f, 3.0f),
    };
}

} // namespace app
