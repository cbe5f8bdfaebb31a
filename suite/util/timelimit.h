// A call that may block for longer than anybody wants to wait.
#pragma once

#include <windows.h>

#include <chrono>
#include <future>
#include <optional>
#include <thread>
#include <type_traits>

/// Runs the call on a thread of its own and answers what it returned, or nothing when that took longer than
/// `limit`. Throws what the call throws. After the limit the thread goes on: what the call refers to has to
/// be its own, and the module that its code is in stays loaded. The caller then closes what the call waits
/// for.
template <typename Call>
std::optional<std::invoke_result_t<Call>> velCallWithin(std::chrono::milliseconds limit, Call call)
{
    std::packaged_task<std::invoke_result_t<Call>()> task(std::move(call));
    auto result = task.get_future();
    std::thread thread(std::move(task));
    if (result.wait_for(limit) == std::future_status::ready)
    {
        thread.join();
        return result.get();
    }
    HMODULE module = nullptr;
    ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                         reinterpret_cast<LPCWSTR>(&velCallWithin<Call>), &module);
    thread.detach();
    return std::nullopt;
}
