// Measures the archive code on a generated patient: archive_bench folder megabytes round [step]
// Prints one line a step: name, seconds, bytes. bench/archive.sh puts them beside other programs. A round
// after the first works on the patient of the first, and with a step it takes that one alone, on what the
// round has done so far. Every round writes to folders of its own and nothing is removed: some file systems
// are slow to use again what has just been freed, which would be measured.
#include "archive/files/filenames.h"
#include "archive/files/fileset.h"
#include "archive/zip/unzipper.h"
#include "archive/work/verify.h"
#include "archive/work/winworkers.h"
#include "archive/volumes/volumestream.h"
#include "archive/zip/zipper.h"

#include <minizip/unzip.h>
#include <minizip/zip.h>

#include <windows.h>

#include <psapi.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <random>

namespace
{
const std::string Id = "BENCH01";

struct Patient
{
    std::string folder;
    std::vector<arc::TimepointFiles> timepoints;
    arc::ImageTypeTable types;
    std::vector<arc::PresentFile> files;
};

double Seconds(const std::function<bool()>& step)
{
    const auto start = std::chrono::steady_clock::now();
    const bool done = step();
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    if (!done)
    {
        std::fprintf(stderr, "a step failed after %.3f s\n", time.count());
        std::exit(1);
    }
    return time.count();
}

void Print(const char* name, double seconds, std::uint64_t bytes)
{
    std::printf("%s %.6f %llu\n", name, seconds, static_cast<unsigned long long>(bytes));
    std::fflush(stdout);
}

Patient MakePatient(const std::string& folder, int timepoints, int images)
{
    Patient patient;
    patient.folder = folder;
    for (int image = 0; image < images; ++image)
    {
        patient.types[static_cast<std::size_t>(image % arc::ImageGroups)] +=
            static_cast<char>('A' + image / arc::ImageGroups);
    }
    for (int index = 0; index < timepoints; ++index)
    {
        arc::TimepointFiles timepoint;
        timepoint.index = index;
        timepoint.baseName = arc::TimepointBaseName(Id, index);
        for (std::size_t group = 0; group < patient.types.size(); ++group)
        {
            timepoint.typeBits[group] = (1U << patient.types[group].size()) - 1;
        }
        patient.timepoints.push_back(timepoint);
    }
    return patient;
}

// Two thirds of the bytes are noise, as packed images are; the companions compress as drawings and text do.
bool Generate(Patient& patient, std::uint64_t bytes)
{
    arc::FileSystem& files = arc::WindowsFileSystem();
    const auto names = arc::ListFileSet(Id, patient.timepoints, patient.types);
    const std::uint64_t perPair = bytes / (names.size() / 2);
    std::mt19937_64 random(20261121);
    std::vector<std::uint64_t> noise(static_cast<std::size_t>(perPair * 2 / 3 / sizeof(std::uint64_t)));
    std::string text;
    patient.files = arc::PresentFiles(files, patient.folder, names).value();
    if (patient.files.size() == names.size())
    {
        return true; // a round before has made them
    }
    for (const std::string& name : names)
    {
        const char kind = arc::ExtensionOf(name)[1];
        const auto file = files.Open(arc::JoinPath(patient.folder, name), arc::Access::Replace);
        if (!file)
        {
            return false;
        }
        const void* data = nullptr;
        std::size_t size = 0;
        if (kind == 'I')
        {
            for (std::uint64_t& word : noise)
            {
                word = random();
            }
            data = noise.data();
            size = noise.size() * sizeof(std::uint64_t);
        }
        else
        {
            text.clear();
            while (text.size() < perPair / 3)
            {
                text +=
                    "point " + std::to_string(random() % 4096) + "," + std::to_string(random() % 4096) + "\n";
            }
            data = text.data();
            size = text.size();
        }
        if (!file->Write(data, size) || !file->Close())
        {
            return false;
        }
    }
    patient.files = arc::PresentFiles(files, patient.folder, names).value();
    return patient.files.size() == names.size();
}

// What the zip library's own program does: stdio, 16 KiB at a time, the same level.
bool PlainMinizip(const Patient& patient, const std::string& path)
{
    const zipFile zip = zipOpen64(path.c_str(), APPEND_STATUS_CREATE);
    std::vector<char> buffer(16384);
    for (const arc::PresentFile& file : patient.files)
    {
        zip_fileinfo info{};
        std::FILE* source = std::fopen(arc::JoinPath(patient.folder, file.name).c_str(), "rb");
        if (!source || zipOpenNewFileInZip64(zip, file.name.c_str(), &info, nullptr, 0, nullptr, 0, nullptr,
                                             Z_DEFLATED, Z_DEFAULT_COMPRESSION, 0) != ZIP_OK)
        {
            return false;
        }
        while (const std::size_t got = std::fread(buffer.data(), 1, buffer.size(), source))
        {
            if (zipWriteInFileInZip(zip, buffer.data(), static_cast<unsigned>(got)) != ZIP_OK)
            {
                return false;
            }
        }
        std::fclose(source);
        zipCloseFileInZip(zip);
    }
    return zipClose(zip, nullptr) == ZIP_OK;
}

// Many small files, as a patient of many timepoints without images has.
bool GenerateSmall(Patient& patient)
{
    arc::FileSystem& files = arc::WindowsFileSystem();
    std::mt19937_64 random(7);
    for (int i = 0; i < 1000; ++i)
    {
        const std::string name = "SMALL" + std::to_string(i) + ".DF0";
        std::string text;
        while (text.size() < 2000)
        {
            text += std::to_string(random() % 4096) + "\n";
        }
        patient.files.push_back({name, text.size()});
        const auto file = files.Open(arc::JoinPath(patient.folder, name), arc::Access::CreateNew);
        if (file && (!file->Write(text.data(), text.size()) || !file->Close()))
        {
            return false;
        }
    }
    return true;
}

// And how it would unpack.
bool PlainUnzip(const std::string& path, const std::string& folder)
{
    const unzFile zip = unzOpen64(path.c_str());
    std::vector<char> buffer(16384);
    for (int result = unzGoToFirstFile(zip); result == UNZ_OK; result = unzGoToNextFile(zip))
    {
        char name[260];
        unz_file_info64 info{};
        unzGetCurrentFileInfo64(zip, &info, name, sizeof name, nullptr, 0, nullptr, 0);
        std::FILE* target = std::fopen(arc::JoinPath(folder, name).c_str(), "wb");
        if (!target || unzOpenCurrentFile(zip) != UNZ_OK)
        {
            return false;
        }
        int got = 0;
        while ((got = unzReadCurrentFile(zip, buffer.data(), static_cast<unsigned>(buffer.size()))) > 0)
        {
            std::fwrite(buffer.data(), 1, static_cast<std::size_t>(got), target);
        }
        std::fclose(target);
        unzCloseCurrentFile(zip);
    }
    return unzClose(zip) == UNZ_OK;
}

bool Copy(const Patient& patient, const std::string& folder)
{
    return std::all_of(patient.files.begin(), patient.files.end(), [&](const arc::PresentFile& file) {
        return CopyFileA(arc::JoinPath(patient.folder, file.name).c_str(),
                         arc::JoinPath(folder, file.name).c_str(), TRUE);
    });
}

void MeasureListing()
{
    for (const int timepoints : {25, 50, 100})
    {
        const Patient patient = MakePatient("", timepoints, 40);
        std::size_t names = 0;
        constexpr int rounds = 50;
        const double time = Seconds([&] {
            for (int round = 0; round < rounds; ++round)
            {
                names = arc::ListFileSet(Id, patient.timepoints, patient.types).size();
            }
            return true;
        });
        const std::string label = "listing_" + std::to_string(timepoints) + "x40";
        Print(label.c_str(), time / rounds, names);
    }
}
} // namespace

int main(int count, char** arguments)
{
    if (count < 4)
    {
        std::fprintf(stderr, "usage: archive_bench folder megabytes round [step]\n");
        return 2;
    }
    arc::FileSystem& files = arc::WindowsFileSystem();
    const std::string root = files.Absolute(arguments[1]);
    const std::uint64_t bytes = std::strtoull(arguments[2], nullptr, 10) << 20;
    const std::string only = count > 4 ? arguments[4] : "";
    // What the round writes.
    const auto path = [&](const char* name) {
        return arc::JoinPath(arc::JoinPath(root, arguments[3]), name);
    };
    for (const std::string& folder :
         {root, arc::JoinPath(root, "work"), arc::JoinPath(root, "small"), arc::JoinPath(root, arguments[3])})
    {
        files.CreateFolder(folder);
    }
    for (const char* folder : {"out", "plain", "copy", "vol", "back"})
    {
        files.CreateFolder(path(folder));
    }
    Patient patient = MakePatient(arc::JoinPath(root, "work"), 20, 24);
    Patient small;
    small.folder = arc::JoinPath(root, "small");
    const double generated = Seconds([&] { return Generate(patient, bytes) && GenerateSmall(small); });
    Print("generate", generated, arc::StreamLength(patient.files));

    const std::string archive = path("BENCH01.KAZ");
    const arc::Parallel all = arc::WorkersOfThisMachine(0);
    const auto save = [&](const Patient& saved, const char* name, const arc::Parallel& parallel) {
        CZipper zipper(files);
        zipper.SetParallel(parallel);
        std::vector<std::string> paths;
        for (const arc::PresentFile& file : saved.files)
            paths.push_back(arc::JoinPath(saved.folder, file.name));
        const bool added =
            zipper.OpenZip(path(name), {}, false, true) && zipper.AddPatternList({}, {}, true, paths);
        return zipper.CloseZip() && added;
    };
    const auto load = [&] {
        CUnzipper unzipper(files);
        unzipper.SetParallel(all);
        return unzipper.OpenZip(archive) && unzipper.UnzipAll(path("out"));
    };
    arc::FolderVolumes volumes(files, path("vol"), Id);
    const auto writeVolumes = [&] {
        return arc::WriteVolumeStream(files, patient.folder, patient.files, {}, volumes) ==
               arc::VolumeStatus::Done;
    };
    const auto readVolumes = [&] {
        std::vector<arc::PresentFile> read;
        return arc::ReadVolumeStream(files, path("back"), volumes, read) == arc::VolumeStatus::Done;
    };
    const struct
    {
        const char* name;
        std::function<bool()> step;
    } steps[] = {
        {"minizip_program", [&] { return PlainMinizip(patient, path("plain.zip")); }},
        {"save", [&] { return save(patient, "BENCH01.KAZ", all); }},
        {"save_one", [&] { return save(patient, "one.kaz", {}); }},
        {"verify", [&] { return arc::VerifyZip(files, archive, patient.files, {}, all); }},
        {"small", [&] { return save(small, "small.kaz", all); }},
        {"small_one", [&] { return save(small, "small_one.kaz", {}); }},
        {"minizip_unzip", [&] { return PlainUnzip(path("plain.zip"), path("plain")); }},
        {"load", load},
        {"windows_copy", [&] { return Copy(patient, path("copy")); }},
        {"volume_write", writeVolumes},
        {"volume_read", readVolumes},
    };
    for (const auto& step : steps)
    {
        if (only.empty() || only == step.name)
        {
            Print(step.name, Seconds(step.step), 0);
        }
    }
    if (!only.empty())
    {
        return 0;
    }
    Print("packed", 0, files.Query(archive)->size);
    Print("packed_one", 0, files.Query(path("one.kaz"))->size);
    Print("workers", 0, all.workers);
    MeasureListing();
    PROCESS_MEMORY_COUNTERS memory{};
    K32GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
    Print("peak_memory", 0, memory.PeakWorkingSetSize);
    return 0;
}
