// Writes zips as the module would into the folder given, so that other programs can be asked about them.
#include "archive/zip/zipper.h"
#include "tests/archive/memoryfilesystem.h"

#include <fstream>
#include <iostream>

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
    const auto write = [&](const std::string& name) {
        return static_cast<bool>(std::ofstream(arguments[1] + ("/" + name + ".kaz"), std::ios::binary)
                                 << files.Bytes("C:\\x.kaz"));
    };
    CZipper zipper(files);
    bool good = zipper.OpenZip("C:\\x.kaz", "C:\\w") && zipper.AddFolderToZip("C:\\w") && zipper.CloseZip() &&
                write("tree");
    for (const unsigned workers : {2U, 7U})
    {
        // Of the files one passes as a stream.
        zipper.SetParallel({.workers = workers, .memory = 200'000, .largest = 100'000, .start = {}});
        good = good && zipper.OpenZip("C:\\x.kaz") &&
               zipper.AddPatternList("\"S1*\"", "C:\\w", true, {"C:\\w\\sub\\deep\\x.bin"}) &&
               zipper.CloseZip() && write(std::to_string(workers));
    }
    if (!good)
        std::cerr << "a sample could not be zipped\n";
    return good ? 0 : 1;
}
