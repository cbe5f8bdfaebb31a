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
    HWND OpenWindow() const
    {
        return Function<HWND (*)()>("TestModuleOpenWindow")();
    }
    void CloseWindow() const
    {
        Function<void (*)()>("TestModuleCloseWindow")();
    }
    // Its own name, and whether it has the themed controls.
    void ExpectToBe(const std::string& name, bool themed) const
    {
        ASSERT_NE(m_module, nullptr);
        char text[64] = "";
        EXPECT_EQ(Function<int (*)(char*, int)>("TestModuleDescribe")(text, sizeof(text)) != 0, themed);
        EXPECT_EQ(text, name);
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
    const CModule b("MfcTestB.dll"); // has no manifest
    a.ExpectToBe("module a", true);
    b.ExpectToBe("module b", false);
    const HWND windowA = a.OpenWindow();
    const HWND windowB = b.OpenWindow();
    EXPECT_EQ(::SendMessage(windowA, WM_APP, 0, 0), 1);
    EXPECT_EQ(::SendMessage(windowB, WM_APP, 0, 0), 1);
    EXPECT_EQ(CWnd::FromHandlePermanent(windowA), nullptr); // the object is in the module's map
    a.CloseWindow();
    b.CloseWindow();

    // Outside nothing has changed.
    EXPECT_EQ(AfxGetApp(), &TestApp());
    CString own;
    EXPECT_FALSE(own.LoadString(IDS_WHO));
    ACTCTX_SECTION_KEYED_DATA data{};
    data.cbSize = sizeof(data);
    EXPECT_FALSE(::FindActCtxSectionString(0, nullptr, ACTIVATION_CONTEXT_SECTION_WINDOW_CLASS_REDIRECTION,
                                           "Button", &data));
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
    CModule("MfcTestA.dll").ExpectToBe("module a", true);
}
} // namespace
