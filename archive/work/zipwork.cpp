#include "archive/work/zipwork.h"

#include "archive/work/resultcodes.h"
#include "archive/zip/unzipper.h"
#include "archive/work/verify.h"
#include "archive/zip/zipper.h"

namespace arc
{
ZipSaving::ZipSaving(FileSystem& files, const ZipSave& save, const WorkProgress& progress)
    : Saving(files, progress, save.step), m_save(save)
{
}

ZipSaving::~ZipSaving()
{
    if (m_bOpened && !IsCommitted())
    {
        Files().RemoveFile(WrittenPath());
    }
}

std::vector<std::string> ZipSaving::Replaced()
{
    return m_save.diskette ? std::vector<std::string>() : std::vector{m_save.archivePath};
}

bool ZipSaving::WriteArchive()
{
    CZipper zipper(Files());
    zipper.SetParallel(m_save.parallel);
    zipper.SetProgress([this](int percent, const std::string& name) { return Report(percent, name); });
    m_bOpened = zipper.OpenZip(WrittenPath(), {}, false, !m_save.diskette);
    const bool added =
        m_bOpened && zipper.AddPatternList(m_save.patterns, m_save.folder, true, m_save.moreFiles);
    m_stored = zipper.Stored();
    return zipper.CloseZip() && added;
}

bool ZipSaving::ProveArchive()
{
    return VerifyZip(
               Files(), WrittenPath(), m_stored, [this] { return Report(100, m_save.checking); },
               m_save.parallel) &&
           (!m_save.trial || m_save.trial(WrittenPath()));
}

bool ZipSaving::PlaceArchive()
{
    return WrittenPath() == m_save.archivePath || Files().Move(WrittenPath(), m_save.archivePath);
}

const std::string& ZipSaving::WrittenPath() const
{
    return m_save.workingPath.empty() || m_save.diskette ? m_save.archivePath : m_save.workingPath;
}

int SaveZip(FileSystem& files, const ZipSave& save, const WorkProgress& progress,
            std::vector<PresentFile>* stored)
{
    ZipSaving saving(files, save, progress);
    const int result = Run(saving);
    if (result == ResultDone && stored)
    {
        *stored = saving.Stored();
    }
    return result;
}

int LoadZip(FileSystem& files, const std::string& archivePath, const std::string& folder,
            const WorkProgress& progress, const Parallel& parallel)
{
    bool cancelled = false;
    CUnzipper unzipper(files);
    unzipper.SetParallel(parallel);
    unzipper.SetProgress([&](int percent, const std::string& name) {
        cancelled |= progress && !progress(percent, name);
        return !cancelled;
    });
    const bool done = unzipper.OpenZip(archivePath) && unzipper.UnzipAll(folder);
    return cancelled ? ResultCancelled : done ? ResultDone : ResultLoadFailed;
}
} // namespace arc
