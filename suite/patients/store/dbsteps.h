#pragma once

// Named steps of the operations that must survive a crash: saving, loading, merging, renaming, removing.
//
// An operation calls dbStep at every point at which the process may end and leave something different behind.
// A test sets an observer and ends its process, or throws, at one of them. Plain: no windows.h.

#if !defined(_WIN32)
#define VELPAT_STEP_API
#elif defined(velpat_EXPORTS)
#define VELPAT_STEP_API __declspec(dllexport)
#else
#define VELPAT_STEP_API __declspec(dllimport)
#endif

/// Called with a step's name, "operation.step" ("rename.committed"), on the thread that does the work. Where
/// the step lies in the operation's fallible part the observer may throw; see the operation.
using dbSTEPPROC = void (*)(const char* pszStep);

/// Sets the process's observer, null for none, and returns the one before. Any thread.
VELPAT_STEP_API dbSTEPPROC dbObserveSteps(dbSTEPPROC pfnObserver) noexcept;

/// Tells the observer, if there is one, that a step has been reached.
VELPAT_STEP_API void dbStep(const char* pszStep);
