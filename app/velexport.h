#pragma once

/// Marks what VelDlgs.dll exports; nothing else leaves the module.
#ifdef veldlgs_EXPORTS
#define VELDLGS_API __declspec(dllexport)
#else
#define VELDLGS_API __declspec(dllimport)
#endif
