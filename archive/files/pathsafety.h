// Whether a name stored in an archive may become a path below a folder. Every name that is read from an
// archive, of a zip entry or of a volume's directory record, passes here before it meets the file system.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace arc
{
inline constexpr std::size_t MaxPathLength = 259; ///< characters of a full path, without the ending NUL
inline constexpr std::size_t MaxComponentLength = 255;

struct SafeName
{
    std::string path;    ///< relative, "\\" as only separator, none at the end
    bool folder = false; ///< the stored name ended in a separator
};

/// The relative path that the stored name stands for, or nothing when it could leave the folder, reach a
/// device or another stream, alias another name, or cannot be a file name on Windows. Both separators are
/// understood. folderLength: length of the folder's full path, for the length of the whole.
std::optional<SafeName> SafeRelativePath(std::string_view stored, std::size_t folderLength = 0);

/// The same for a name that must be a plain file name without any folder.
std::optional<std::string> SafeFileName(std::string_view stored, std::size_t folderLength = 0);

/// True when a name (with or without extension) is reserved for a device: "AUX", "con.pf", "LPT\xB9".
bool IsDeviceName(std::string_view name);

/// True when the full path lies below the folder's full path; both with dots already resolved.
bool LiesBelow(std::string_view fullPath, std::string_view fullFolder);

/// Equal for two relative safe paths exactly when Windows takes them for the same file by name.
std::string SameFileKey(std::string_view safePath);
} // namespace arc
