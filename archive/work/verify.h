// Reads an archive back before anybody relies on it.
#pragma once

#include "archive/files/fileset.h"
#include "archive/files/filesystem.h"
#include "archive/zip/parallel.h"

#include <functional>
#include <string>
#include <vector>

namespace arc
{
/// True when the zip opens, holds exactly the expected files (by name, in any order) with their sizes, and
/// every entry unpacks whole with the right checksum. What is read is what the medium holds, past the
/// system's cache where that is possible. alive is called now and then meanwhile; false ends it.
bool VerifyZip(FileSystem& files, const std::string& zipPath, const std::vector<PresentFile>& expected,
               const std::function<bool()>& alive = {}, const Parallel& parallel = {});
} // namespace arc
