// Reads an archive back before anybody relies on it.
#pragma once

#include "archive/files/fileset.h"
#include "archive/files/filesystem.h"

#include <functional>
#include <string>
#include <vector>

namespace arc
{
// True when the zip opens, holds exactly the expected files (by name, in any order) with their sizes, and
// every entry unpacks whole with the right checksum. alive is called now and then while it reads, for a
// window that wants painting.
bool VerifyZip(FileSystem& files, const std::string& zipPath, const std::vector<PresentFile>& expected,
               const std::function<bool()>& alive = {});
} // namespace arc
