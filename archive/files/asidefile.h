// A file that is about to be replaced, kept until its replacement is known to be good.
#pragma once

#include "archive/files/filesystem.h"

#include <string>

namespace arc
{
/// Moves an existing file to a free name beside it ("P.KAZ.previous", "P.KAZ.previous2" and so on). Unless it
/// is discarded, it stays there: what became of its replacement may be found out by hand. For one thread.
class AsideFile
{
public:
    explicit AsideFile(FileSystem& files);

    /// True when there is nothing at the path any more. A read-only file is not moved: it was meant to stay.
    bool MoveAway(const std::string& path);
    /// The replacement is good: the old file goes.
    void Discard();
    /// There will be no replacement: the old file takes its name again. False when something else has it now.
    bool PutBack();
    /// Where the old file is; empty when there was none.
    const std::string& Path() const;

private:
    FileSystem& m_files;
    std::string m_path; ///< its own name
    std::string m_aside;
};
} // namespace arc
