// Writes zips as the module would into the folder given, so that other programs can be asked about them, and
// reads them with nothing but the zip library, as its own program does.
#include "archive/zip/zipper.h"
#include "tests/archive/memoryfilesystem.h"

#include <fstream>
#include <iostream>

#include <minizip/unzip.h>

namespace
{
bool ReadsWithTheLibrary(const std::string& path, unsigned entries)
{
    const unzFile zip = unzOpen64(path.c_str());
    bool whole = zip != nullptr;
    for (int result = unzGoToFirstFile(zip); whole && result == UNZ_OK; result = unzGoToNextFile(zip))
    {
        char piece[16384];
        whole = unzOpenCurrentFile(zip) == UNZ_OK;
        int got = 0;
        while (whole && (got = unzReadCurrentFile(zip, piece, sizeof piece)) > 0)
        {
        }
        whole = whole && got == 0 && unzCloseCurrentFile(zip) == UNZ_OK; // compares the checksum
        --entries;
    }
    unzClose(zip);
    return whole && entries == 0;
}

bool Write(MemoryFileSystem& files, const std::string& to, unsigned entries)
{
    const std::string bytes = files.Bytes("C:\\x.kaz");
    std::ofstream(to, std::ios::binary) << bytes;
    return ReadsWithTheLibrary(to, entries);
}
} // namespace

int main(int count, char** arguments)
{
    if (count != 2)
    {
        std::cerr << "usage: write_samples folder\n";
        return 2;
    }
    MemoryFileSystem files;
    files.Put("C:\\w\\S1.PF", "Smith\x01Jo\x01S1\x01\n");
    files.Put("C:\\w\\S100.I40", std::string(500'000, 'x'));
    files.Put("C:\\w\\S100.M", "");
    files.Put("C:\\w\\sub\\deep\\x.bin", std::string(70'000, '\0'));
    files.CreateFolder("C:\\w\\empty");
    const std::string folder = arguments[1];
    CZipper zipper(files);
    bool good = zipper.OpenZip("C:\\x.kaz", "C:\\w") && zipper.AddFolderToZip("C:\\w") && zipper.CloseZip() &&
                Write(files, folder + "/tree.kaz", 7);
    for (const unsigned workers : {2U, 7U})
    {
        // Of the files one passes as a stream.
        zipper.SetParallel({.workers = workers, .memory = 200'000, .largest = 100'000, .start = {}});
        good = good && zipper.OpenZip("C:\\x.kaz") &&
               zipper.AddPatternList("\"S1*\"", "C:\\w", true, {"C:\\w\\sub\\deep\\x.bin"}) &&
               zipper.CloseZip() && Write(files, folder + "/" + std::to_string(workers) + ".kaz", 4);
    }
    if (!good)
        std::cerr << "a sample could not be zipped and read back\n";
    return good ? 0 : 1;
}
