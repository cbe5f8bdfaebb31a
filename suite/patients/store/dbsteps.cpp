#include "suite/patients/store/dbsteps.h"

#include <atomic>

namespace
{
std::atomic<dbSTEPPROC> g_pfnObserver = nullptr;
}

dbSTEPPROC dbObserveSteps(dbSTEPPROC pfnObserver) noexcept
{
    return g_pfnObserver.exchange(pfnObserver);
}

void dbStep(const char* pszStep)
{
    if (const dbSTEPPROC pfnObserver = g_pfnObserver)
        pfnObserver(pszStep);
}
