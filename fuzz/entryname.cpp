// Stored names: what is accepted is, below any folder, just that path.
#include "archive/files/filenames.h"
#include "archive/files/pathsafety.h"
#include "fuzz/check.h"
#include "tests/archive/memoryfilesystem.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static MemoryFileSystem files;
    const std::string folder = "C:\\out";
    const auto safe = arc::SafeRelativePath({reinterpret_cast<const char*>(data), size}, folder.size());
    if (!safe)
        return 0;
    const std::string full = arc::JoinPath(folder, safe->path);
    Check(full.size() <= arc::MaxPathLength && files.Absolute(full) == full && arc::LiesBelow(full, folder));
    Check(safe->path.find_first_of("/:*?\"<>|") == std::string::npos &&
          safe->path.find('\0') == std::string::npos);
    const auto again = arc::SafeRelativePath(safe->path, folder.size());
    Check(again && again->path == safe->path && !again->folder);
    Check(arc::SafeFileName(safe->path).has_value() == (safe->path.find('\\') == std::string::npos));
    return 0;
}
