// Volume streams: the input's bytes, cut at a marker into volumes, are read into a folder.
#include "archive/volumes/volumestream.h"
#include "fuzz/check.h"
#include "tests/archive/memoryfilesystem.h"

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const std::string marker = "\xFF\xFE\xFD\xFC";
    MemoryFileSystem files;
    std::size_t volumes = 0;
    for (std::size_t start = 0; start <= bytes.size() && volumes < 5; ++volumes)
    {
        const std::size_t end = std::min(bytes.find(marker, start), bytes.size());
        files.Put("C:\\arc\\P.00" + std::to_string(volumes + 1), bytes.substr(start, end - start));
        start = end + marker.size();
    }
    files.CreateFolder("C:\\out");
    arc::FolderVolumes source(files, "C:\\arc", "P");
    std::vector<arc::PresentFile> read;
    const auto status = arc::ReadVolumeStream(files, "C:\\out", source, read);
    Check(files.Tree("C:").size() == volumes + read.size());
    Check(files.Tree("C:\\out").size() == read.size());
    if (status == arc::VolumeStatus::Done)
        Check(arc::VerifyVolumeStream(files, "C:\\out", read, source) == arc::VolumeStatus::Done);
    return 0;
}
