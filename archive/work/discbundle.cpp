#include "archive/work/discbundle.h"

#include "archive/files/filenames.h"

#include <array>
#include <string_view>
#include <vector>

namespace arc
{
namespace
{
struct BundleFile
{
    std::string_view source;      // in the program folder
    std::string_view destination; // on the disc
};

constexpr std::string_view AutorunFile = "autorun.inf";

// In the order of copying.
constexpr std::array<BundleFile, 4> BundleFiles{{
    {"VeltrixViewerSetup.exe", "zzz.exe"},
    {"LaunchKaz.exe", "LaunchKaz.exe"},
    {"autorunLaunchKaz.inf", AutorunFile},
    {"LaunchKazReadme.txt", "readme.txt"},
}};

constexpr std::size_t CopyBuffer = std::size_t{64} * 1024;

bool CopyContents(File& from, File& to)
{
    std::vector<char> buffer(CopyBuffer);
    for (;;)
    {
        const auto bytes = from.Read(buffer.data(), buffer.size());
        if (!bytes)
            return false;
        if (*bytes == 0)
            return to.Close();
        if (!to.Write(buffer.data(), *bytes))
            return false;
    }
}

// Replaces the destination; a destination that could not be written whole is removed.
void CopyOver(FileSystem& files, const std::string& source, const std::string& destination)
{
    const auto from = files.Open(source, Access::ReadShared);
    if (!from)
        return;
    auto to = files.Open(destination, Access::Replace);
    if (!to || CopyContents(*from, *to))
        return;
    to.reset();
    files.RemoveFile(destination);
}
} // namespace

void MakeDiscBundle(FileSystem& files, const std::string& programFolder, const std::string& destinationFolder,
                    const std::string& patientId)
{
    for (const BundleFile& file : BundleFiles)
        CopyOver(files, JoinPath(programFolder, file.source), JoinPath(destinationFolder, file.destination));

    const auto autorun = files.Open(JoinPath(destinationFolder, AutorunFile), Access::Update);
    if (!autorun)
        return;
    const std::string start = "[autorun]\r\nOPEN=LaunchKaz.exe " + patientId + ".KAZ";
    autorun->Write(start.data(), start.size());
    autorun->Close();
}
} // namespace arc
