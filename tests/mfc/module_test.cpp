// Regular DLLs: each in its own module state, and loaded again after it was unloaded.
#include "mfcprogram.h"
#include "mfctestres.h"
#include "tests/support/childprocess.h"
#include "tests/support/temporarypractice.h"

#include <gtest/gtest.h>

namespace
{
class CModule
{
public:
    explicit CModule(const char* file) : m_module(::LoadLibrary(file))
    {
    }
    ~CModule()
    {
        if (m_module != nullptr)
        {
            ::FreeLibrary(m_module);
        }
    }
    CModule(const CModule&) = delete;
    CModule& operator=(const CModule&) = delete;

    HMODULE Get() const
    {
        return m_module;
    }
    std::string Name() const
    {
        char text[64] = "";
        const auto name = Function<int (*)(char*, int)>("TestModuleName");
        return name(text, sizeof(text)) != 0 ? text : "";
    }
    HWND OpenWindow() const
    {
        return Function<HWND (*)()>("TestModuleOpenWindow")();
    }
    bool IsThemed() const
    {
        return Function<int (*)()>("TestModuleIsThemed")() != 0;
    }
    void CloseWindow() const
    {
        Function<void (*)()>("TestModuleCloseWindow")();
    }

private:
    template <class Pointer> Pointer Function(const char* name) const
    {
        return reinterpret_cast<Pointer>(reinterpret_cast<void*>(::GetProcAddress(m_module, name)));
    }
    HMODULE m_module;
};

TEST(MfcModule, RunsEveryCallAndMessageInItsOwnState)
{
    const CModule a("MfcTestA.dll");
    const CModule b("MfcTestB.dll");
    ASSERT_NE(a.Get(), nullptr);
    ASSERT_NE(b.Get(), nullptr);
    EXPECT_EQ(a.Name(), "module a");
    EXPECT_EQ(b.Name(), "module b");
    EXPECT_EQ(AfxGetApp(), &TestApp());
    CString own;
    EXPECT_FALSE(own.LoadString(IDS_WHO)); // a regular DLL's resources are its own
    const HWND windowA = a.OpenWindow();
    const HWND windowB = b.OpenWindow();
    ASSERT_NE(windowA, nullptr);
    ASSERT_NE(windowB, nullptr);
    EXPECT_EQ(::SendMessage(windowA, WM_APP, 0, 0), 1);
    EXPECT_EQ(::SendMessage(windowB, WM_APP, 0, 0), 1);
    EXPECT_EQ(CWnd::FromHandlePermanent(windowA), nullptr); // the object is in the module's map
    EXPECT_EQ(AfxGetApp(), &TestApp());
    a.CloseWindow();
    b.CloseWindow();
}

TEST(MfcModule, BringsItsOwnControlsIntoAProgramWithoutAManifest)
{
    const CModule themed("MfcTestA.dll");
    const CModule plain("MfcTestB.dll"); // has no manifest
    ASSERT_NE(themed.Get(), nullptr);
    ASSERT_NE(plain.Get(), nullptr);
    EXPECT_TRUE(themed.IsThemed());
    EXPECT_FALSE(plain.IsThemed());
    ACTCTX_SECTION_KEYED_DATA data{};
    data.cbSize = sizeof(data);
    EXPECT_FALSE(::FindActCtxSectionString(0, nullptr, ACTIVATION_CONTEXT_SECTION_WINDOW_CLASS_REDIRECTION,
                                           "Button", &data)); // outside nothing has changed
}

TEST(MfcModule, LoadsAgainAfterItWasUnloaded)
{
    for (int round = 0; round < 3; ++round)
    {
        const CModule module("MfcTestA.dll");
        ASSERT_NE(module.Get(), nullptr) << round;
        EXPECT_EQ(module.Name(), "module a");
        const HWND window = module.OpenWindow(); // registers its class anew
        ASSERT_NE(window, nullptr) << round;
        EXPECT_EQ(::SendMessage(window, WM_APP, 0, 0), 1);
        module.CloseWindow();
    }
    EXPECT_EQ(::GetModuleHandle("MfcTestA.dll"), nullptr);
}

// Arguments: whether the module is unloaded before the process ends.
VEL_CHILD_PROCESS(endWithModule)
{
    const HMODULE module = ::LoadLibrary("MfcTestA.dll");
    if (arguments[0] == "unload")
    {
        ::FreeLibrary(module);
    }
    return module != nullptr ? 0 : 1;
}

TEST(MfcModule, EndsItsApplicationWhenUnloadedButNotWithTheProcess)
{
    const veltest::TemporaryPractice folder;
    const std::string log = folder.Path("ended");
    ::SetEnvironmentVariable("MFCTEST_LOG", log.c_str());
    for (const char* way : {"stay", "unload"})
    {
        EXPECT_EQ(veltest::ChildProcess("endWithModule", {way}).Wait(), 0);
        EXPECT_EQ(::GetFileAttributes(log.c_str()) != INVALID_FILE_ATTRIBUTES, way == std::string("unload"));
    }
    ::SetEnvironmentVariable("MFCTEST_LOG", nullptr);
}

TEST(MfcModule, IsNotLoadedWhenItsStartIsRefused)
{
    ::SetEnvironmentVariable("MFCTEST_REFUSE", "1");
    const CModule refused("MfcTestA.dll");
    ::SetEnvironmentVariable("MFCTEST_REFUSE", nullptr);
    EXPECT_EQ(refused.Get(), nullptr);
    const CModule module("MfcTestA.dll");
    ASSERT_NE(module.Get(), nullptr);
    EXPECT_EQ(module.Name(), "module a");
}
} // namespace
