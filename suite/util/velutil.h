// What every header of the utility library includes.
#pragma once

#include <afx.h>
#include <afxcoll.h>

#ifdef velutil_EXPORTS
#define VELUTIL_API __declspec(dllexport)
#else
#define VELUTIL_API __declspec(dllimport)
#endif
