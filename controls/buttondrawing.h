#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

/// The drawings on the module's buttons: text that says which strokes make an image, one stroke a line.
///
///     <kind> <colour> <width> <x>,<y> <x>,<y> ...
///
/// "line" joins its points, "curve" runs smoothly through them, both with round ends; "disc" is a filled
/// circle around its one point, and its width the radius. The colour is six hexadecimal digits, red first, or
/// "back" for the button's background. Everything is measured on a grid of 16 by 16 with its origin at the
/// top left.
namespace ctl
{

inline constexpr float drawingGrid = 16;

struct Point
{
    float x;
    float y;
    bool operator==(const Point&) const = default;
};

struct Stroke
{
    enum class Kind
    {
        line,
        curve,
        disc,
    };

    Kind kind;
    std::optional<std::uint32_t> colour; ///< 0xRRGGBB; nothing for the background
    float width;
    std::vector<Point> points;
    bool operator==(const Stroke&) const = default;
};

/// The strokes in the order in which they are drawn; nothing for a text that is no drawing.
std::optional<std::vector<Stroke>> ParseDrawing(std::string_view text);

} // namespace ctl
