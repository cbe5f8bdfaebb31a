#include "archive/work/saving.h"

#include "archive/work/resultcodes.h"

#include <utility>

namespace arc
{
Saving::Saving(FileSystem& files, WorkProgress progress, WorkStep step)
    : m_files(files), m_progress(std::move(progress)), m_step(std::move(step))
{
}

bool Saving::Begin()
{
    bool moved = true;
    for (const std::string& path : Replaced())
    {
        m_previous.emplace_back(m_files);
        moved = m_previous.back().MoveAway(path);
        if (!moved)
        {
            break;
        }
    }
    if (!moved)
    {
        for (AsideFile& file : m_previous)
        {
            file.PutBack();
        }
    }
    Step("save.aside");
    return moved;
}

bool Saving::Write()
{
    const bool written = WriteArchive();
    Step("save.written");
    return written;
}

bool Saving::Prove()
{
    const bool proven = ProveArchive();
    Step("save.proven");
    return proven;
}

void Saving::Commit()
{
    if (!PlaceArchive())
    {
        return;
    }
    m_bCommitted = true;
    Step("save.placed");
    for (AsideFile& file : m_previous)
    {
        file.Discard();
    }
    Step("save.done");
}

int Saving::Result() const
{
    return m_bCommitted ? ResultDone : m_bCancelled ? ResultCancelled : ResultSaveFailed;
}

bool Saving::Report(int percent, const std::string& name)
{
    if (m_progress && !m_progress(percent, name))
    {
        Cancel();
    }
    return !m_bCancelled;
}

void Saving::Cancel()
{
    m_bCancelled = true;
}

void Saving::Step(const char* step) const
{
    if (m_step)
    {
        m_step(step);
    }
}

int Run(Saving& saving)
{
    if (saving.Begin() && saving.Write() && saving.Prove())
    {
        saving.Commit();
    }
    return saving.Result();
}
} // namespace arc
