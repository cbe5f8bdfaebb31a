// Removing a folder with everything below it.
#pragma once

#include "archive/files/filesystem.h"

#include <string>

namespace arc
{
/// Removes whatever is at the path: a file, a folder with all that it holds, whatever their attributes, or a
/// link, never what a link leads to. True when nothing is there afterwards; the first failure stops.
bool RemoveTree(FileSystem& files, const std::string& path);
} // namespace arc
