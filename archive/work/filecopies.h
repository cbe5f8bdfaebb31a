// Copies of files that have proven to be equal before anybody relies on them.
#pragma once

#include "archive/files/fileset.h"
#include "archive/files/filesystem.h"
#include "archive/work/zipwork.h"

#include <string>
#include <vector>

namespace arc
{
/// True when both files can be read and hold the same bytes.
bool SameContents(FileSystem& files, const std::string& left, const std::string& right);

/// Copies a file with its time to a path where nothing is, has the copy on the medium, and compares it with
/// the file. False, with nothing left there, when any of that fails.
bool CopyNew(FileSystem& files, const std::string& from, const std::string& to);

/// Copies these files of a folder into another as CopyNew does; on failure none of the copies stays. Progress
/// counts files.
bool CopyAllNew(FileSystem& files, const std::string& from, const std::vector<PresentFile>& set,
                const std::string& to, const WorkProgress& progress = {});
} // namespace arc
