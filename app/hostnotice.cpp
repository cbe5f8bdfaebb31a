#include "app/hostnotice.h"

#include "app/velenums.h"

#include <cstring>
#include <memory>

void velNotifyHost(HWND hHost, int nEvent, const CString& strGUID)
{
    if (!::IsWindow(hHost))
        return;
    const auto size = static_cast<std::size_t>(strGUID.GetLength()) + 1;
    auto guid = std::make_unique<char[]>(size);
    std::memcpy(guid.get(), static_cast<LPCTSTR>(strGUID), size);
    if (::PostMessage(hHost, VELDLGS_PATIENT_CHANGED, static_cast<WPARAM>(nEvent),
                      reinterpret_cast<LPARAM>(guid.get())))
    {
        static_cast<void>(guid.release()); // the host's now
    }
} // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks)
