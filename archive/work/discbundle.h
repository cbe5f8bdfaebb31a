// Turns the folder that an archive was written to into a disc that opens the archive by itself.
#pragma once

#include "archive/files/filesystem.h"

#include <string>

namespace arc
{
/// Copies viewer set-up, launcher, autorun template and readme from the suite's program folder into the
/// destination folder and writes the start line for the patient's archive over the beginning of
/// "autorun.inf". A file that cannot be copied is left out (no part of it stays) and the rest goes on;
/// "autorun.inf" is neither created nor truncated here. Shows nothing.
void MakeDiscBundle(FileSystem& files, const std::string& programFolder, const std::string& destinationFolder,
                    const std::string& patientId);
} // namespace arc
