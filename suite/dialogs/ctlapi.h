#pragma once

// The suite's dialog and control library: an extension library, it runs in its caller's module state.

#include <afxwin.h>
#include <afxcmn.h>
#include <afxdlgs.h>

#ifdef velctl_EXPORTS
#define VELCTL_API __declspec(dllexport)
#else
#define VELCTL_API __declspec(dllimport)
#endif
