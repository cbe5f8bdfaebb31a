#include "archive/work/verify.h"

#include "archive/files/filenames.h"
#include "archive/zip/unzipper.h"

#include <unordered_map>

namespace arc
{
bool VerifyZip(FileSystem& files, const std::string& zipPath, const std::vector<PresentFile>& expected,
               const std::function<bool()>& alive, const Parallel& parallel)
{
    CUnzipper unzipper(files);
    unzipper.SetParallel(parallel);
    if (!unzipper.OpenZip(zipPath, Access::ReadMedium) || unzipper.FileCount() != expected.size())
    {
        return false;
    }
    if (alive)
    {
        unzipper.SetProgress([&](int, const std::string&) { return alive(); });
    }
    std::unordered_map<std::string, std::uint64_t> sizes;
    for (const PresentFile& file : expected)
    {
        sizes.emplace(FoldCase(file.name), file.size);
    }
    for (bool more = unzipper.GoToFirstEntry(); more; more = unzipper.GoToNextEntry())
    {
        CUnzipper::EntryInfo entry;
        if (!unzipper.CurrentEntryInfo(entry))
        {
            return false;
        }
        // Each name is struck off, so that one entry cannot stand for two files.
        const auto size = sizes.extract(FoldCase(entry.name));
        if (!size || size.mapped() != entry.size)
        {
            return false;
        }
    }
    return sizes.empty() && unzipper.CheckAll();
}
} // namespace arc
