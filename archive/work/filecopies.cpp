#include "archive/work/filecopies.h"

#include "archive/files/filenames.h"
#include "archive/files/outputfile.h"
#include "archive/files/progress.h"

#include <algorithm>

namespace arc
{
namespace
{
constexpr std::size_t CopyBuffer = std::size_t{64} * 1024;

bool CopyContents(File& from, OutputFile& to)
{
    std::vector<char> buffer(CopyBuffer);
    for (;;)
    {
        const auto got = from.Read(buffer.data(), buffer.size());
        if (!got || *got == 0)
        {
            return got.has_value();
        }
        if (!to.Write(buffer.data(), *got))
        {
            return false;
        }
    }
}
} // namespace

bool SameContents(FileSystem& files, const std::string& left, const std::string& right)
{
    const auto leftFile = files.Open(left, Access::ReadShared);
    const auto rightFile = files.Open(right, Access::ReadShared);
    if (!leftFile || !rightFile)
    {
        return false;
    }
    std::vector<char> leftBytes(CopyBuffer);
    std::vector<char> rightBytes(CopyBuffer);
    for (;;)
    {
        const auto leftGot = leftFile->Read(leftBytes.data(), CopyBuffer);
        const auto rightGot = rightFile->Read(rightBytes.data(), CopyBuffer);
        if (!leftGot || !rightGot || *leftGot != *rightGot ||
            !std::equal(leftBytes.begin(), leftBytes.begin() + static_cast<std::ptrdiff_t>(*leftGot),
                        rightBytes.begin()))
        {
            return false;
        }
        if (*leftGot == 0)
        {
            return true;
        }
    }
}

bool CopyNew(FileSystem& files, const std::string& from, const std::string& to)
{
    const auto source = files.Open(from, Access::ReadShared);
    const FileQuery info = files.Query(from);
    OutputFile copy(files);
    if (!source || !info || !copy.CreateNew(to) || !CopyContents(*source, copy) ||
        !copy.Keep(&info->written, true))
    {
        return false;
    }
    if (!SameContents(files, from, to))
    {
        files.RemoveFile(to);
        return false;
    }
    return true;
}

bool CopyAllNew(FileSystem& files, const std::string& from, const std::vector<PresentFile>& set,
                const std::string& to, const WorkProgress& progress)
{
    std::size_t made = 0;
    const auto copy = [&](const PresentFile& file) {
        return (!progress || progress(ProgressPercent(made, set.size()), file.name)) &&
               CopyNew(files, JoinPath(from, file.name), JoinPath(to, file.name)) && ++made > 0;
    };
    if (std::all_of(set.begin(), set.end(), copy))
    {
        return true;
    }
    for (std::size_t i = 0; i < made; ++i)
    {
        files.RemoveFile(JoinPath(to, set[i].name));
    }
    return false;
}
} // namespace arc
