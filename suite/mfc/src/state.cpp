// Module and thread states, and the chain in which resources are found.
#include "threadstate.h"
#include "handlemap.h"

#include "suite/mfc/afxdllx.h"

#include <algorithm>
#include <map>
#include <mutex>

namespace
{
struct ThreadStates
{
    DWORD index = TlsAlloc();
    std::mutex mutex; // guards all
    std::vector<AfxThreadState*> all;
};

struct ModuleStates
{
    std::mutex mutex;
    std::map<HINSTANCE, std::unique_ptr<AFX_MODULE_STATE>> all;
};

struct ExtensionChain
{
    std::mutex mutex;
    std::vector<CDynLinkLibrary*> links;
};

// These outlive every thread and module on purpose: unloading libraries still ask for them.
ThreadStates& Threads()
{
    static ThreadStates& states = *new ThreadStates;
    return states;
}

ModuleStates& Modules()
{
    static ModuleStates& states = *new ModuleStates;
    return states;
}

ExtensionChain& Extensions()
{
    static ExtensionChain& chain = *new ExtensionChain;
    return chain;
}

LRESULT CALLBACK AfxWndProcBase(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam)
{
    AFX_MANAGE_STATE(AfxBaseModuleState());
    return AfxWndProc(hWnd, nMsg, wParam, lParam);
}

bool HasString(HINSTANCE module, UINT id)
{
    const wchar_t* text = nullptr;
    return ::LoadStringW(module, id, reinterpret_cast<LPWSTR>(&text), 0) > 0;
}

// The first module of the resource chain that `has` what is looked for, or null.
template <class Has> HINSTANCE FindInChain(const Has& has)
{
    const HINSTANCE own = AfxGetResourceHandle();
    if (has(own))
    {
        return own;
    }
    {
        ExtensionChain& chain = Extensions();
        const std::lock_guard lock(chain.mutex);
        for (const CDynLinkLibrary* link : chain.links)
        {
            if (has(link->m_hResource))
            {
                return link->m_hResource;
            }
        }
    }
    return has(AfxFrameworkInstance()) ? AfxFrameworkInstance() : nullptr;
}
} // namespace

AFX_MODULE_THREAD_STATE::AFX_MODULE_THREAD_STATE() : m_maps(std::make_unique<CHandleMaps>())
{
}

AFX_MODULE_THREAD_STATE::~AFX_MODULE_THREAD_STATE() = default;

AFX_MODULE_THREAD_STATE* AfxThreadState::Of(AFX_MODULE_STATE* state)
{
    // Another thread may be unloading a library just now.
    const std::lock_guard lock(Threads().mutex);
    for (const Module& module : m_modules)
    {
        if (module.state == state)
        {
            return module.data.get();
        }
    }
    auto data = std::make_unique<AFX_MODULE_THREAD_STATE>();
    m_modules.push_back({state, std::move(data)});
    return m_modules.back().data.get();
}

void AfxThreadState::Forget(const AFX_MODULE_STATE* state)
{
    std::erase_if(m_modules, [state](const Module& module) { return module.state == state; });
    if (m_pModuleState == state)
    {
        m_pModuleState = nullptr;
    }
}

AfxThreadState* AfxGetThreadState()
{
    ThreadStates& threads = Threads();
    const DWORD error = GetLastError(); // TlsGetValue clears it
    auto* state = static_cast<AfxThreadState*>(TlsGetValue(threads.index));
    SetLastError(error);
    if (state == nullptr)
    {
        auto made = std::make_unique<AfxThreadState>();
        {
            const std::lock_guard lock(threads.mutex);
            threads.all.push_back(made.get());
        }
        state = made.release();
        TlsSetValue(threads.index, state);
    }
    return state;
}

void AfxDetachThread()
{
    ThreadStates& threads = Threads();
    const std::unique_ptr<AfxThreadState> state(static_cast<AfxThreadState*>(TlsGetValue(threads.index)));
    if (state)
    {
        TlsSetValue(threads.index, nullptr);
        const std::lock_guard lock(threads.mutex);
        std::erase(threads.all, state.get());
    }
}

AFX_MODULE_STATE* AfxGetModuleStateOf(HINSTANCE hInstance)
{
    ModuleStates& modules = Modules();
    const std::lock_guard lock(modules.mutex);
    std::unique_ptr<AFX_MODULE_STATE>& state = modules.all[hInstance];
    if (!state)
    {
        state = std::make_unique<AFX_MODULE_STATE>();
        state->m_hCurrentInstanceHandle = hInstance;
        state->m_hCurrentResourceHandle = hInstance;
        state->m_bDLL = hInstance != GetModuleHandle(nullptr);
        state->m_pfnAfxWndProc = state->m_bDLL ? nullptr : &AfxWndProcBase;
    }
    return state.get();
}

AFX_MODULE_STATE* AfxBaseModuleState()
{
    static AFX_MODULE_STATE* const state = AfxGetModuleStateOf(GetModuleHandle(nullptr));
    return state;
}

void AfxRemoveModuleState(HINSTANCE hInstance)
{
    ModuleStates& modules = Modules();
    std::unique_ptr<AFX_MODULE_STATE> removed;
    {
        const std::lock_guard lock(modules.mutex);
        auto node = modules.all.extract(hInstance);
        if (node)
        {
            removed = std::move(node.mapped());
        }
    }
    if (removed)
    {
        ThreadStates& threads = Threads();
        const std::lock_guard lock(threads.mutex);
        for (AfxThreadState* thread : threads.all)
        {
            thread->Forget(removed.get());
        }
    }
}

AFX_MODULE_STATE* AfxGetModuleState()
{
    AFX_MODULE_STATE* state = AfxGetThreadState()->m_pModuleState;
    return state != nullptr ? state : AfxBaseModuleState();
}

AFX_MODULE_STATE* AfxSetModuleState(AFX_MODULE_STATE* pNewState)
{
    AfxThreadState* thread = AfxGetThreadState();
    AFX_MODULE_STATE* previous = thread->m_pModuleState;
    thread->m_pModuleState = pNewState;
    return previous;
}

AFX_MODULE_THREAD_STATE* AfxGetModuleThreadState()
{
    return AfxGetThreadState()->Of(AfxGetModuleState());
}

AFX_MAINTAIN_STATE2::AFX_MAINTAIN_STATE2(AFX_MODULE_STATE* pModuleState) noexcept
    : m_pPrevModuleState(AfxSetModuleState(pModuleState))
{
    if (pModuleState != nullptr)
    {
        if (pModuleState->m_hActCtx != INVALID_HANDLE_VALUE)
        {
            m_bValidActCtxCookie = ActivateActCtx(pModuleState->m_hActCtx, &m_ulActCtxCookie) != FALSE;
        }
        ++AfxGetModuleThreadState()->m_nDepth;
    }
}

AFX_MAINTAIN_STATE2::~AFX_MAINTAIN_STATE2()
{
    AfxThreadState* thread = AfxGetThreadState();
    if (AFX_MODULE_STATE* state = thread->m_pModuleState)
    {
        AFX_MODULE_THREAD_STATE* data = thread->Of(state);
        // No code of the library runs on this thread any more, so nobody holds its temporary objects. A
        // program's code may run outside of such blocks.
        if (--data->m_nDepth == 0 && state->m_bDLL)
        {
            data->m_maps->DropSince(0);
        }
    }
    thread->m_pModuleState = m_pPrevModuleState;
    if (m_bValidActCtxCookie)
    {
        DeactivateActCtx(0, m_ulActCtxCookie);
    }
}

// ---------------------------------------------------------------------------------------------------------
// Resources

HINSTANCE AfxGetInstanceHandle()
{
    return AfxGetModuleState()->m_hCurrentInstanceHandle;
}

HINSTANCE AfxGetResourceHandle()
{
    return AfxGetModuleState()->m_hCurrentResourceHandle;
}

HINSTANCE AfxFindResourceHandle(LPCTSTR lpszName, LPCTSTR lpszType)
{
    const HINSTANCE found =
        FindInChain([&](HINSTANCE module) { return ::FindResource(module, lpszName, lpszType) != nullptr; });
    return found != nullptr ? found : AfxGetResourceHandle();
}

HINSTANCE AfxFindStringResourceHandle(UINT nID)
{
    return FindInChain([nID](HINSTANCE module) { return HasString(module, nID); });
}

LPCTSTR AfxGetAppName()
{
    const CWinApp* app = AfxGetApp();
    return app != nullptr && app->m_pszAppName != nullptr ? app->m_pszAppName : "";
}

// ---------------------------------------------------------------------------------------------------------
// Extension DLLs

CDynLinkLibrary::CDynLinkLibrary(AFX_EXTENSION_MODULE& state)
    : m_hModule(state.hModule), m_hResource(state.hResource)
{
    ExtensionChain& chain = Extensions();
    const std::lock_guard lock(chain.mutex);
    chain.links.push_back(this);
}

CDynLinkLibrary::~CDynLinkLibrary()
{
    ExtensionChain& chain = Extensions();
    const std::lock_guard lock(chain.mutex);
    std::erase(chain.links, this);
}

BOOL AfxInitExtensionModule(AFX_EXTENSION_MODULE& state, HMODULE hModule)
{
    state.bInitialized = TRUE;
    state.hModule = hModule;
    state.hResource = hModule;
    return TRUE;
}

void AfxTermExtensionModule(AFX_EXTENSION_MODULE& state, BOOL)
{
    if (!state.bInitialized)
    {
        return;
    }
    std::vector<CDynLinkLibrary*> ended;
    {
        ExtensionChain& chain = Extensions();
        const std::lock_guard lock(chain.mutex);
        std::copy_if(chain.links.begin(), chain.links.end(), std::back_inserter(ended),
                     [&](const CDynLinkLibrary* link) { return link->m_hModule == state.hModule; });
    }
    for (const CDynLinkLibrary* link : ended)
    {
        delete link;
    }
    state.bInitialized = FALSE;
}
