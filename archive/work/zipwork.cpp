#include "archive/work/zipwork.h"

#include "archive/work/resultcodes.h"
#include "archive/zip/unzipper.h"
#include "archive/work/verify.h"
#include "archive/zip/zipper.h"

namespace arc
{
ZipSaving::ZipSaving(FileSystem& files, const ZipSave& save, const WorkProgress& progress)
    : m_files(files), m_save(save), m_progress(progress), m_previous(files)
{
}

ZipSaving::~ZipSaving()
{
    if (m_bOpened && !m_bCommitted)
    {
        m_files.RemoveFile(WrittenPath());
    }
}

bool ZipSaving::Begin()
{
    const bool begun = m_save.diskette || m_previous.MoveAway(m_save.archivePath);
    Step("save.aside");
    return begun;
}

bool ZipSaving::Write()
{
    CZipper zipper(m_files);
    zipper.SetParallel(m_save.parallel);
    zipper.SetProgress([this](int percent, const std::string& name) { return Report(percent, name); });
    m_bOpened = zipper.OpenZip(WrittenPath(), {}, false, !m_save.diskette);
    const bool added =
        m_bOpened && zipper.AddPatternList(m_save.patterns, m_save.folder, true, m_save.moreFiles);
    m_stored = zipper.Stored();
    const bool written = zipper.CloseZip() && added;
    Step("save.written");
    return written;
}

bool ZipSaving::Prove()
{
    const bool proven = VerifyZip(
                            m_files, WrittenPath(), m_stored, [this] { return Report(100, m_save.checking); },
                            m_save.parallel) &&
                        (!m_save.trial || m_save.trial(WrittenPath()));
    Step("save.proven");
    return proven;
}

bool ZipSaving::Commit()
{
    if (WrittenPath() != m_save.archivePath && !m_files.Move(WrittenPath(), m_save.archivePath))
    {
        return false;
    }
    m_bCommitted = true;
    Step("save.placed");
    m_previous.Discard();
    Step("save.done");
    return true;
}

int ZipSaving::Result() const
{
    return m_bCommitted ? ResultDone : m_bCancelled ? ResultCancelled : ResultSaveFailed;
}

bool ZipSaving::Report(int percent, const std::string& name)
{
    m_bCancelled = m_bCancelled || (m_progress && !m_progress(percent, name));
    return !m_bCancelled;
}

void ZipSaving::Step(const char* step) const
{
    if (m_save.step)
    {
        m_save.step(step);
    }
}

const std::string& ZipSaving::WrittenPath() const
{
    return m_save.workingPath.empty() || m_save.diskette ? m_save.archivePath : m_save.workingPath;
}

int SaveZip(FileSystem& files, const ZipSave& save, const WorkProgress& progress,
            std::vector<PresentFile>* stored)
{
    ZipSaving saving(files, save, progress);
    const bool done = saving.Begin() && saving.Write() && saving.Prove() && saving.Commit();
    if (done && stored)
    {
        *stored = saving.Stored();
    }
    return saving.Result();
}

int LoadZip(FileSystem& files, const std::string& archivePath, const std::string& folder,
            const WorkProgress& progress, const Parallel& parallel)
{
    bool cancelled = false;
    CUnzipper unzipper(files);
    unzipper.SetParallel(parallel);
    unzipper.SetProgress([&](int percent, const std::string& name) {
        cancelled = cancelled || (progress && !progress(percent, name));
        return !cancelled;
    });
    const bool done = unzipper.OpenZip(archivePath) && unzipper.UnzipAll(folder);
    return cancelled ? ResultCancelled : done ? ResultDone : ResultLoadFailed;
}
} // namespace arc
