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
