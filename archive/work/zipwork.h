// The work of the status thread: a whole save to a zipped archive, a whole load from one.
#pragma once

#include "archive/files/fileset.h"
#include "archive/work/saving.h"
#include "archive/zip/parallel.h"

#include <functional>
#include <string>
#include <vector>

namespace arc
{
struct ZipSave
{
    std::string archivePath;
    std::string workingPath;            ///< written under this name in the same folder; empty: under its own
    std::string patterns;               ///< quoted, bare
    std::string folder;                 ///< where the patterns look
    std::vector<std::string> moreFiles; ///< full paths
    bool diskette = false;              ///< the archive is written over an old one, not beside it
    std::string checking;               ///< the name that is reported while the archive is read back
    Parallel parallel;                  ///< of packing and of reading back
    /// A trial reading of the archive as a load would do it; without one none is made.
    std::function<bool(const std::string& path)> trial;
    WorkStep step;
};

/// A save to a zipped archive. Nothing is written over anything but a diskette's old archive.
class ZipSaving : public Saving
{
public:
    ZipSaving(FileSystem& files, const ZipSave& save, const WorkProgress& progress);
    ~ZipSaving() override;

    /// What went in, as it was then.
    const std::vector<PresentFile>& Stored() const
    {
        return m_stored;
    }

protected:
    std::vector<std::string> Replaced() override;
    bool WriteArchive() override;
    bool ProveArchive() override;
    bool PlaceArchive() override;

private:
    const std::string& WrittenPath() const;

    const ZipSave& m_save;
    std::vector<PresentFile> m_stored;
    bool m_bOpened = false; ///< something of this save is at the path that it writes
};

/// All steps of a save. stored, if given, receives what went in.
int SaveZip(FileSystem& files, const ZipSave& save, const WorkProgress& progress = {},
            std::vector<PresentFile>* stored = nullptr);

/// ResultDone when every entry was unpacked into the folder; otherwise ResultLoadFailed or ResultCancelled.
int LoadZip(FileSystem& files, const std::string& archivePath, const std::string& folder,
            const WorkProgress& progress = {}, const Parallel& parallel = {});
} // namespace arc
