#include "archive/files/foldertree.h"

#include "archive/files/filenames.h"

#include <algorithm>

namespace arc
{
namespace
{
constexpr int MaxDepth = 128; // a path of 260 characters cannot go deeper

bool Remove(FileSystem& files, const std::string& path, const FileInfo& info, int depth)
{
    if (info.IsFolder() && !info.IsReparsePoint())
    {
        std::vector<FolderEntry> entries;
        const bool emptied = depth < MaxDepth && files.List(path, "*", entries) &&
                             std::all_of(entries.begin(), entries.end(), [&](const FolderEntry& entry) {
                                 return Remove(files, JoinPath(path, entry.name), entry.info, depth + 1);
                             });
        if (!emptied)
        {
            return false;
        }
    }
    if ((info.attributes & attribute::ReadOnly) != 0 &&
        !files.SetAttributes(path, info.attributes & attribute::Settable & ~attribute::ReadOnly))
    {
        return false;
    }
    return info.IsFolder() ? files.RemoveFolder(path) : files.RemoveFile(path);
}
} // namespace

bool RemoveTree(FileSystem& files, const std::string& path)
{
    const FileQuery found = files.Query(path);
    return found ? Remove(files, path, *found, 0) : found.IsAbsent();
}
} // namespace arc
