// The work of the status thread: a whole save to a zipped archive, a whole load from one.
#pragma once

#include "archive/files/asidefile.h"
#include "archive/files/fileset.h"
#include "archive/zip/parallel.h"

#include <functional>
#include <string>
#include <vector>

namespace arc
{
/// How far the work is, 0 to 100, with the name of what is under way. Called often; false ends the work.
using WorkProgress = std::function<bool(int percent, const std::string& name)>;

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
    /// Told of every step that has been taken: "save.aside", "save.written", "save.proven", "save.placed",
    /// "save.done".
    std::function<void(const char* step)> step;
};

/// One save to a zipped archive, step by step; each step answers whether it succeeded and may only follow the
/// one before. An archive that was at the path is kept beside it under another name until the new one is
/// proven and in its place, and stays there when the save is not committed. Nothing is written over anything
/// but a diskette's old archive. For one thread; what it was made with must outlive it.
class ZipSaving
{
public:
    ZipSaving(FileSystem& files, const ZipSave& save, const WorkProgress& progress);
    /// Removes what was written unless it was committed.
    ~ZipSaving();
    ZipSaving(const ZipSaving&) = delete;
    ZipSaving& operator=(const ZipSaving&) = delete;

    /// The old archive leaves the path.
    bool Begin();
    /// All files are in the zip and the zip is on the medium.
    bool Write();
    /// Every entry is whole, of its size and checksum, and the trial reading succeeds.
    bool Prove();
    /// The zip takes the archive's name and the old archive goes.
    bool Commit();

    /// ResultDone once it is committed, else ResultCancelled or ResultSaveFailed.
    int Result() const;
    /// What went in, as it was then.
    const std::vector<PresentFile>& Stored() const
    {
        return m_stored;
    }

private:
    bool Report(int percent, const std::string& name);
    void Step(const char* step) const;
    const std::string& WrittenPath() const;

    FileSystem& m_files;
    const ZipSave& m_save;
    const WorkProgress& m_progress;
    AsideFile m_previous;
    std::vector<PresentFile> m_stored;
    bool m_bOpened = false; ///< something of this save is at the path that it writes
    bool m_bCancelled = false;
    bool m_bCommitted = false;
};

/// All steps of a save. stored, if given, receives what went in.
int SaveZip(FileSystem& files, const ZipSave& save, const WorkProgress& progress = {},
            std::vector<PresentFile>* stored = nullptr);

/// ResultDone when every entry was unpacked into the folder; otherwise ResultLoadFailed or ResultCancelled.
int LoadZip(FileSystem& files, const std::string& archivePath, const std::string& folder,
            const WorkProgress& progress = {}, const Parallel& parallel = {});
} // namespace arc
