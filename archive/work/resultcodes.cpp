#include "archive/work/resultcodes.h"

#include "archive/res/archiveres.h"

#include <span>

namespace arc
{
namespace
{
struct CodeRange
{
    int first;
    int last;
    unsigned text;
};

constexpr CodeRange SaveTexts[] = {
    {1, 2, IDS_ARC_SAVE_ERROR_CODE},   {3, 3, IDS_ARC_WRITE_PROTECTED}, {4, 8, IDS_ARC_SAVE_ERROR_CODE},
    {10, 13, IDS_ARC_SAVE_ERROR_CODE}, {14, 14, IDS_ARC_WRITE_FAILURE}, {15, 15, IDS_ARC_NOT_CREATED},
    {16, 21, IDS_ARC_SAVE_ERROR_CODE},
};

constexpr CodeRange LoadTexts[] = {
    {2, 5, IDS_ARC_OPEN_ERROR},      {9, 9, IDS_ARC_OPEN_ERROR},        {11, 12, IDS_ARC_OPEN_ERROR},
    {25, 25, IDS_ARC_OPEN_ERROR},    {28, 29, IDS_ARC_OPEN_ERROR},      {39, 39, IDS_ARC_EXTRACT_ERROR},
    {41, 42, IDS_ARC_EXTRACT_ERROR}, {44, 47, IDS_ARC_LOAD_ERROR_CODE}, {49, 50, IDS_ARC_LOAD_ERROR_CODE},
};

constexpr CodeRange ThreadTexts[] = {
    {ResultNoThread, ResultNoThread, IDS_ARC_NO_THREAD},
    {ResultCancelled, ResultCancelled, IDS_ARC_CANCELLED},
    {ResultNoDialog, ResultNoDialog, IDS_ARC_NO_DIALOG},
};

unsigned Find(std::span<const CodeRange> texts, int code)
{
    for (const CodeRange& range : texts)
    {
        if (code >= range.first && code <= range.last)
        {
            return range.text;
        }
    }
    return 0;
}
} // namespace

unsigned SaveResultText(int code)
{
    return Find(SaveTexts, code);
}

unsigned LoadResultText(int code)
{
    return Find(LoadTexts, code);
}

unsigned ThreadResultText(int code)
{
    return Find(ThreadTexts, code);
}
} // namespace arc
