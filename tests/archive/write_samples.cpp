// Writes a zip as the module would, to the path given, so that other programs can be asked about it.
#include "archive/zip/zipper.h"
#include "tests/archive/memoryfilesystem.h"

#include <fstream>
#include <iostream>

int main(int count, char** arguments)
{
    if (count != 2)
    {
        std::cerr << "usage: write_samples file.zip\n";
        return 2;
    }
    MemoryFileSystem files;
    files.Put("C:\\w\\S1.PF", "Smith\x01Jo\x01S1\x01\n");
    files.Put("C:\\w\\S100.I40", std::string(500'000, 'x'));
    files.Put("C:\\w\\S100.M", "");
    files.Put("C:\\w\\sub\\deep\\x.bin", std::string(70'000, '\0'));
    files.CreateFolder("C:\\w\\empty");
    CZipper zipper(files);
    const bool added = zipper.OpenZip("C:\\x.kaz", "C:\\w") && zipper.AddFolderToZip("C:\\w");
    if (!zipper.CloseZip() || !added)
    {
        std::cerr << "the sample could not be zipped\n";
        return 1;
    }
    const std::string bytes = files.Bytes("C:\\x.kaz");
    std::ofstream file(arguments[1], std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return file.good() ? 0 : 1;
}
