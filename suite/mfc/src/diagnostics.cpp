#include "afx.h"

#include <cstdio>
#include <cstdlib>

void AfxAssertFailed(LPCSTR lpszExpression, LPCSTR lpszFile, int nLine)
{
    char text[1024];
    snprintf(text, sizeof(text), "%s(%d): assertion failed: %s\n", lpszFile, nLine, lpszExpression);
    OutputDebugStringA(text);
    if (IsDebuggerPresent())
    {
        DebugBreak();
        return;
    }
    // A message box could wait for ever in a run that nobody watches.
    fputs(text, stderr);
    fflush(stderr);
    std::abort();
}

void AfxTrace(LPCSTR lpszFormat, ...)
{
    char text[1024];
    va_list args;
    va_start(args, lpszFormat);
    vsnprintf(text, sizeof(text), lpszFormat, args);
    va_end(args);
    OutputDebugStringA(text);
}

BOOL AfxIsValidAddress(const void* p, UINT_PTR nBytes, BOOL bReadWrite)
{
    MEMORY_BASIC_INFORMATION info = {};
    if (p == nullptr || nBytes == 0 || VirtualQuery(p, &info, sizeof(info)) == 0 || info.State != MEM_COMMIT)
    {
        return FALSE;
    }
    constexpr DWORD writable =
        PAGE_READWRITE | PAGE_WRITECOPY | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
    constexpr DWORD readable = writable | PAGE_READONLY | PAGE_EXECUTE_READ;
    return (info.Protect & (bReadWrite ? writable : readable)) != 0 && (info.Protect & PAGE_GUARD) == 0;
}
