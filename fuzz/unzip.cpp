// Zip files: loaded as the status thread does.
#include "archive/zip/unzipper.h"
#include "fuzz/check.h"
#include "tests/archive/memoryfilesystem.h"

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    MemoryFileSystem files;
    files.Put("C:\\x.kaz", std::string(reinterpret_cast<const char*>(data), size));
    CUnzipper unzipper(files);
    if (!unzipper.OpenZip("C:\\x.kaz"))
        return 0;
    const bool loaded = unzipper.UnzipAll("C:\\out");
    Check(files.Tree("C:").size() == files.Tree("C:\\out").size() + 1);
    std::uint64_t bytes = 0;
    std::uint64_t stated = 0;
    std::size_t count = 0;
    for (bool more = unzipper.GoToFirstEntry(); more; more = unzipper.GoToNextEntry())
    {
        CUnzipper::EntryInfo info;
        Check(unzipper.CurrentEntryInfo(info) && info.name.size() <= 260);
        count += info.folder ? 0 : 1;
        stated += info.size;
    }
    for (const std::string& path : files.Tree("C:\\out"))
        bytes += files.Bytes(path).size();
    Check(!loaded || (bytes == stated && files.Tree("C:\\out").size() == count));
    return 0;
}
