#include "archive/operations/archiveheader.h"

#include "archive/volumes/diskette.h"
#include "archive/files/filenames.h"
#include "archive/files/scratchfolder.h"
#include "archive/zip/unzipper.h"
#include "suite/util/velpath.h"

namespace
{
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
        if (!arc::EqualNoCase(arc::ExtensionOf(entry.name), arc::PatientFileExtension))
            continue;
        arc::ScratchFolder scratch(files, velGetTempPath().GetString());
        if (!scratch.Take() || !unzipper.UnzipCurrentEntry(scratch.Path(), true))
            return std::nullopt;
        return arc::ReadHeaderLine(files, arc::JoinPath(scratch.Path(), arc::FileNameOf(entry.name)));
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
