// What the saves of all formats have in common: their steps, and what each step leaves when it is the last.
#pragma once

#include "archive/files/asidefile.h"

#include <functional>
#include <string>
#include <vector>

namespace arc
{
/// How far the work is, 0 to 100, with the name of what is under way. Called often; false ends the work.
using WorkProgress = std::function<bool(int percent, const std::string& name)>;
/// Told of every step that has been taken, "save.aside" for instance.
using WorkStep = std::function<void(const char* step)>;

/// One save to an archive, step by step; each step answers whether it succeeded and may only follow the one
/// before. The archive that it replaces is kept beside it under another name until the new one is proven and
/// in its place, and stays there when the save is not committed. The destructor of a class that writes
/// removes what it has written unless it was committed. For one thread; what it was made with must outlive
/// it.
class Saving
{
public:
    virtual ~Saving() = default;
    Saving(const Saving&) = delete;
    Saving& operator=(const Saving&) = delete;

    /// The old archive leaves its path, or nothing has happened. Step "save.aside".
    bool Begin();
    /// All files are in the archive and the archive is on the medium. Step "save.written".
    bool Write();
    /// What is on the medium is what went in, and a load would take it. Step "save.proven".
    bool Prove();
    /// It becomes the archive of its path, step "save.placed", and the old one goes, step "save.done".
    void Commit();

    /// ResultDone once it is committed, else ResultCancelled or ResultSaveFailed.
    int Result() const;

protected:
    Saving(FileSystem& files, WorkProgress progress, WorkStep step);

    /// The files of the archive that is replaced, as far as they are to be kept until then.
    virtual std::vector<std::string> Replaced() = 0;
    virtual bool WriteArchive() = 0;
    virtual bool ProveArchive() = 0;
    virtual bool PlaceArchive() = 0;

    /// False from then on when the work is to end.
    bool Report(int percent, const std::string& name);
    /// The user has ended it.
    void Cancel();
    void Step(const char* step) const;
    bool IsCommitted() const
    {
        return m_bCommitted;
    }
    FileSystem& Files() const
    {
        return m_files;
    }

private:
    FileSystem& m_files;
    const WorkProgress m_progress;
    const WorkStep m_step;
    std::vector<AsideFile> m_previous;
    bool m_bCancelled = false;
    bool m_bCommitted = false;
};

/// All steps of a save; its result.
int Run(Saving& saving);
} // namespace arc
