// The work of the status thread: a whole save to a zipped archive, a whole load from one.
#pragma once

#include "archive/files/filesystem.h"

#include <functional>
#include <string>
#include <vector>

namespace arc
{
// How far the work is, 0 to 100, with the name of what is under way. Called often; false ends the work.
using WorkProgress = std::function<bool(int percent, const std::string& name)>;

struct ZipSave
{
    std::string archivePath;
    std::string patterns;               // quoted, bare
    std::string folder;                 // where the patterns look
    std::vector<std::string> moreFiles; // full paths
    bool diskette = false;              // the archive is written over an old one, not beside it
    std::string checking;               // the name that is reported while the archive is read back
};

// ResultDone when the archive is written, on the medium, and was read back: every entry whole, of its size
// and checksum. Otherwise ResultSaveFailed, or ResultCancelled: then there is no archive at the path. An
// archive that was there is kept beside it under another name until the new one is good, and stays there
// after a failure.
int SaveZip(FileSystem& files, const ZipSave& save, const WorkProgress& progress = {});

// ResultDone when every entry was unpacked into the folder; otherwise ResultLoadFailed or ResultCancelled.
int LoadZip(FileSystem& files, const std::string& archivePath, const std::string& folder,
            const WorkProgress& progress = {});
} // namespace arc
