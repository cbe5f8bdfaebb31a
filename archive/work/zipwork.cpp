#include "archive/work/zipwork.h"

#include "archive/files/asidefile.h"
#include "archive/work/resultcodes.h"
#include "archive/zip/unzipper.h"
#include "archive/work/verify.h"
#include "archive/zip/zipper.h"

namespace arc
{
namespace
{
// Passes progress on and remembers when it was told to stop.
class Watched
{
public:
    explicit Watched(const WorkProgress& progress) : m_progress(progress)
    {
    }

    bool operator()(int percent, const std::string& name)
    {
        m_cancelled = m_cancelled || (m_progress && !m_progress(percent, name));
        return !m_cancelled;
    }

    int Result(bool done, int failure) const
    {
        return m_cancelled ? ResultCancelled : done ? ResultDone : failure;
    }

private:
    const WorkProgress& m_progress;
    bool m_cancelled = false;
};

// opened: something was written to the archive's path.
bool WriteZip(FileSystem& files, const ZipSave& save, Watched& watched, std::vector<PresentFile>& stored,
              bool& opened)
{
    CZipper zipper(files);
    zipper.SetProgress([&](int percent, const std::string& name) { return watched(percent, name); });
    opened = zipper.OpenZip(save.archivePath);
    if (!opened)
    {
        return false;
    }
    const bool added = zipper.AddPatternList(save.patterns, save.folder, true, save.moreFiles);
    stored = zipper.Stored();
    return zipper.CloseZip() && added;
}
} // namespace

int SaveZip(FileSystem& files, const ZipSave& save, const WorkProgress& progress)
{
    Watched watched(progress);
    AsideFile previous(files);
    if (!save.diskette && !previous.MoveAway(save.archivePath))
    {
        return ResultSaveFailed;
    }
    bool opened = false;
    std::vector<PresentFile> stored;
    const bool written = WriteZip(files, save, watched, stored, opened);
    const bool good =
        written && VerifyZip(files, save.archivePath, stored, [&] { return watched(100, save.checking); });
    if (good)
    {
        previous.Discard();
    }
    else if (opened)
    {
        files.RemoveFile(save.archivePath);
    }
    return watched.Result(good, ResultSaveFailed);
}

int LoadZip(FileSystem& files, const std::string& archivePath, const std::string& folder,
            const WorkProgress& progress)
{
    Watched watched(progress);
    CUnzipper unzipper(files);
    unzipper.SetProgress([&](int percent, const std::string& name) { return watched(percent, name); });
    const bool done = unzipper.OpenZip(archivePath) && unzipper.UnzipAll(folder);
    return watched.Result(done, ResultLoadFailed);
}
} // namespace arc
