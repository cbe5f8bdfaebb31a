#include "archive/files/fileset.h"

#include "archive/files/filenames.h"

#include <bit>
#include <unordered_map>
#include <unordered_set>

namespace arc
{
namespace
{
// Names that a list takes at most: the patient file, an image and its companion for every set bit, the data
// files of every timepoint.
std::size_t FileSlots(const std::vector<TimepointFiles>& timepoints)
{
    std::size_t slots = 1 + TimepointDataExtensions.size() * timepoints.size();
    for (const TimepointFiles& timepoint : timepoints)
    {
        for (const std::uint32_t bits : timepoint.typeBits)
        {
            slots += 2 * static_cast<std::size_t>(std::popcount(bits));
        }
    }
    return slots;
}
} // namespace

std::vector<std::string> ListFileSet(const std::string& id, const std::vector<TimepointFiles>& timepoints,
                                     const ImageTypeTable& types)
{
    std::vector<std::string> names;
    names.reserve(FileSlots(timepoints));
    names.push_back(PatientFileName(id));
    for (std::size_t group = 0; group < types.size(); ++group)
    {
        for (std::size_t type = 0; type < types[group].size() && type < 32; ++type)
        {
            const std::uint32_t bit = std::uint32_t{1} << type;
            for (const TimepointFiles& timepoint : timepoints)
            {
                if ((timepoint.typeBits[group] & bit) != 0)
                {
                    names.push_back(
                        ImageFileName(timepoint.baseName, static_cast<int>(group), types[group][type]));
                    names.push_back(ImageCompanionName(names.back()));
                }
            }
        }
    }
    for (const TimepointFiles& timepoint : timepoints)
    {
        for (const std::string_view extension : TimepointDataExtensions)
        {
            names.push_back(TimepointDataName(id, timepoint.index, extension));
        }
    }
    return names;
}

std::optional<std::vector<PresentFile>> PresentFiles(FileSystem& files, const std::string& folder,
                                                     const std::vector<std::string>& names)
{
    std::vector<PresentFile> present;
    present.reserve(names.size());
    for (const std::string& name : names)
    {
        for (const std::string& candidate : {name, AlternateImageName(name)})
        {
            const auto info =
                candidate.empty() ? FileQuery::Absent() : files.Query(JoinPath(folder, candidate));
            if (!info && !info.IsAbsent())
            {
                return std::nullopt;
            }
            if (info && !info->IsFolder())
            {
                present.push_back({candidate, info->size, info->stamp});
                break;
            }
        }
    }
    return present;
}

std::optional<std::vector<PresentFile>> FilesToSave(FileSystem& files, const std::string& folder,
                                                    const std::vector<std::string>& listed)
{
    auto set = PresentFiles(files, folder, listed);
    if (set && (set->empty() || set->front().name != listed.front()))
    {
        set.reset();
    }
    return set;
}

bool FilesToArchive(FileSystem& files, const std::string& folder, const std::string& id,
                    const std::vector<std::string>& listed, std::vector<PresentFile>& found)
{
    // One look at the folder serves all patterns: they all begin with the patient ID.
    std::vector<FolderEntry> entries;
    if (!files.List(folder, id + "*", entries))
    {
        return false;
    }
    std::unordered_map<std::string, const FolderEntry*> byName;
    for (const FolderEntry& entry : entries)
    {
        if (!entry.info.IsFolder())
        {
            byName.emplace(FoldCase(entry.name), &entry);
        }
    }
    std::unordered_set<std::string> taken;
    const auto take = [&](const FolderEntry& entry) {
        if (taken.insert(FoldCase(entry.name)).second)
        {
            found.push_back({entry.name, entry.info.size, entry.info.stamp});
        }
    };
    for (const std::string& pattern : ArchivePatterns(id))
    {
        for (const FolderEntry& entry : entries)
        {
            if (!entry.info.IsFolder() && MatchesWildcard(entry.name, pattern))
            {
                take(entry);
            }
        }
    }
    for (const std::string& name : listed)
    {
        auto match = byName.find(FoldCase(name));
        if (match == byName.end())
        {
            match = byName.find(FoldCase(AlternateImageName(name)));
        }
        if (match != byName.end())
        {
            take(*match->second);
        }
    }
    return true;
}
} // namespace arc
