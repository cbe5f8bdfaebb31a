#include "cloud/exchange/patientfiles.h"

#include "archive/files/filenames.h"
#include "cloud/exchange/receiveplan.h"
#include "suite/patients/files/filefamily.h"

#include <algorithm>

namespace cloud
{
namespace
{
using Files = std::vector<std::pair<std::string, FileKind>>;

void Sort(Files& files)
{
    std::sort(files.begin(), files.end(), [](const auto& left, const auto& right) {
        return std::pair(left.second, pat::FoldCase(left.first)) <
               std::pair(right.second, pat::FoldCase(right.first));
    });
}

/// The slot of a companion, as if it were the image.
std::optional<std::pair<int, char>> SlotOfCompanion(std::string name)
{
    name[name.size() - 3] = 'I';
    return ImageSlotOf(name);
}
} // namespace

std::map<int, TimepointFiles> GroupPatientFiles(const std::vector<std::string>& names, const std::string& id)
{
    std::map<int, TimepointFiles> timepoints;
    for (const std::string& name : names)
    {
        const auto identity = pat::IdentifyFile(name, id);
        if (!identity || identity->timepoint < 0)
            continue;
        TimepointFiles& timepoint = timepoints[identity->timepoint];
        const auto further = [&](const std::string& image, FileKind kind) {
            if (const auto slot = ImageSlotOf(image))
                timepoint.images[*slot].further.emplace_back(name, kind);
        };
        switch (identity->kind)
        {
        case pat::FileKind::Image:
        case pat::FileKind::AlternateImage:
            if (const auto slot = ImageSlotOf(name))
            {
                std::string& image = timepoint.images[*slot].image;
                // The proper name goes before the other.
                if (image.empty() || identity->kind == pat::FileKind::Image)
                    image = name;
            }
            break;
        case pat::FileKind::Companion:
            if (const auto slot = SlotOfCompanion(name))
                timepoint.images[*slot].companion = name;
            break;
        case pat::FileKind::DataImage:
            further(name, FileKind::ThreeD);
            break;
        case pat::FileKind::FurtherImage:
            further(name.substr(0, name.rfind('.')), FileKind::Other);
            break;
        case pat::FileKind::Extra:
            timepoint.files.emplace_back(name, FileKind::ThreeD);
            break;
        case pat::FileKind::TimepointData:
            if (pat::EqualNoCase(arc::ExtensionOf(name), ".M"))
                timepoint.files.emplace_back(name, FileKind::Measurements);
            break;
        default:
            break;
        }
    }
    for (auto& [number, timepoint] : timepoints)
    {
        Sort(timepoint.files);
        for (auto& [slot, image] : timepoint.images)
            Sort(image.further);
    }
    return timepoints;
}
} // namespace cloud
