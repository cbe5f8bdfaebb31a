#include "cloud/exchange/filechoice.h"

namespace cloud
{
std::string_view CategoryOf(FileKind kind)
{
    switch (kind)
    {
    case FileKind::ThreeD:
        return "3D";
    case FileKind::Measurements:
        return "McLaughlin";
    case FileKind::Other:
        return "other";
    default:
        return {};
    }
}

FileKind KindOfCategory(std::string_view category)
{
    for (const FileKind kind : {FileKind::ThreeD, FileKind::Measurements})
    {
        if (category == CategoryOf(kind))
            return kind;
    }
    return FileKind::Other;
}

bool FileChoice::Takes(FileKind kind) const
{
    switch (kind)
    {
    case FileKind::Uncropped:
        return uncropped;
    case FileKind::Other:
        return other;
    case FileKind::ThreeD:
        return threeD;
    default:
        return true;
    }
}
} // namespace cloud
