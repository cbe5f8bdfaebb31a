// Which kinds of file an upload or a download takes.
#pragma once

#include <string_view>

namespace cloud
{
/// What a file of a record is.
enum class FileKind
{
    Image,
    Uncropped, ///< companion of an image
    ThreeD,
    Measurements, ///< McLaughlin analysis
    Other         ///< further documents of an image
};

/// The category's name in a record; empty for images and their companions, which have elements of their own.
std::string_view CategoryOf(FileKind kind);
/// A category that is not known counts as other documents.
FileKind KindOfCategory(std::string_view category);

/// The user's choice of extra files. Images and measurements are always taken.
struct FileChoice
{
    bool uncropped = false;
    bool other = false;
    bool threeD = false;

    bool Takes(FileKind kind) const;
    bool operator==(const FileChoice&) const = default;

    static constexpr FileChoice Everything()
    {
        return {true, true, true};
    }
};
} // namespace cloud
