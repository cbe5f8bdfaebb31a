// The framework's own messages that programs may handle.
#pragma once

#define WM_QUERYAFXWNDPROC 0x0360
#define WM_IDLEUPDATECMDUI 0x0363 // wParam: TRUE disables commands nobody handles
#define WM_COMMANDHELP 0x0365
#define WM_KICKIDLE 0x036A // sent by modal loops; answer nonzero to be called again
