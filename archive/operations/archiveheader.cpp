#include "archive/operations/archiveheader.h"

#include "archive/volumes/diskette.h"
#include "archive/files/filenames.h"
#include "archive/zip/unzipper.h"

namespace
{
constexpr std::uint64_t MaxPatientFile = 1 << 20; // bytes

std::optional<arc::HeaderLine> ReadZippedHeader(arc::FileSystem& files, const std::string& archivePath)
{
    CUnzipper unzipper(files);
    if (!unzipper.OpenZip(archivePath))
        return std::nullopt;
    for (bool more = unzipper.GoToFirstEntry(); more; more = unzipper.GoToNextEntry())
    {
        CUnzipper::EntryInfo entry;
        if (!unzipper.CurrentEntryInfo(entry))
            return std::nullopt;
        if (!pat::MayBe(entry.name, pat::FileKind::PatientFile))
            continue;
        std::string bytes;
        return unzipper.ReadCurrentEntry(bytes, MaxPatientFile) ? arc::ParseHeaderLine(bytes) : std::nullopt;
    }
    return std::nullopt;
}
} // namespace

std::optional<arc::HeaderLine> arcReadArchiveHeader(LPCTSTR pszArchivePath)
{
    arc::FileSystem& files = arc::WindowsFileSystem();
    if (arc::IsZippedArchive(pszArchivePath))
        return ReadZippedHeader(files, pszArchivePath);
    return arc::ReadHeaderLine(files, pszArchivePath);
}
