// What leaves VelDlgs.dll, and that it can be loaded and unloaded again and again.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>

#include <set>
#include <string>

namespace
{

template <typename T> const T* At(HMODULE module, DWORD offset)
{
    return reinterpret_cast<const T*>(reinterpret_cast<const char*>(module) + offset);
}

const IMAGE_NT_HEADERS* Headers(HMODULE module)
{
    return At<IMAGE_NT_HEADERS>(module, static_cast<DWORD>(At<IMAGE_DOS_HEADER>(module, 0)->e_lfanew));
}

/// The module, unloaded at the end of the scope.
struct Module
{
    Module() = default;
    ~Module()
    {
        FreeLibrary(handle);
    }
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    template <typename Function> Function Get(const char* name) const
    {
        return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(handle, name)));
    }

    const HMODULE handle = LoadLibraryA("VelDlgs.dll");
};

/// The names in the export directory of a loaded module.
std::multiset<std::string> ExportedNames(HMODULE module)
{
    const IMAGE_DATA_DIRECTORY& entry =
        Headers(module)->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
    const auto* const directory = At<IMAGE_EXPORT_DIRECTORY>(module, entry.VirtualAddress);
    const DWORD* const names = At<DWORD>(module, directory->AddressOfNames);
    EXPECT_EQ(directory->NumberOfFunctions, directory->NumberOfNames) << "an export by number alone";
    std::multiset<std::string> result;
    for (DWORD i = 0; i < directory->NumberOfNames; ++i)
        result.insert(At<char>(module, names[i]));
    return result;
}

TEST(Exports, AreTheThirteenAndNothingElse)
{
    const Module module;
    ASSERT_NE(module.handle, nullptr) << "error " << GetLastError();
    EXPECT_THAT(
        ExportedNames(module.handle),
        testing::UnorderedElementsAre(
            "_Z10ArchiveDlgP4CWndiP10dbCPatient10ARCHIVE_OPR12CStringArrayP11dbCPatientsS5_S5_S5_S5_ii",
            "_Z12EditKeywordsP4CWnd8INI_LIST", "_Z13NewPatientDlgP4CWndP11dbCPatientsR7CString",
            "_Z14GrayStringProcP5HDC__xi", "_Z15NewTimepointDlgP4CWndiP10dbCPatientRx",
            "_Z16ChangePatientDlgP4CWndP11dbCPatientsP10dbCPatient",
            "_Z16nameMakeFullnamePKcS0_P7CString9NAMEORDER", "_Z19SetArchivingAllowedb",
            "_Z21NewPatientDlgWithDataP4CWndP11dbCPatientsR7CStringP10dbCPatient",
            "_Z9DeleteDlgP4CWndiP10dbCPatientiii7CStringRxRj",
            "_Z9RenameDlgP4CWndiP10dbCPatienti7CStringP9RENAME_OPRS3_S6_S6_S6_R12COleDateTime",
            "ImportPatientDiagnostics", "g_VelIniSettingContainer"));
}

/// How many of the module's window classes are registered.
int KnownClasses(HINSTANCE instance)
{
    WNDCLASSA known = {};
    int count = 0;
    for (const char* name : {"VELEDKEYW", "VELEDIT", "VELTEETH"})
        count += GetClassInfoA(instance, name, &known) != FALSE;
    return count;
}

TEST(Loading, WorksAgainAndAgainAndLeavesNoWindowClassBehind)
{
    for (int round = 0; round < 3; ++round)
    {
        HMODULE handle = nullptr;
        {
            const Module module;
            handle = module.handle;
            ASSERT_NE(handle, nullptr) << "round " << round << ", error " << GetLastError();
            EXPECT_EQ(KnownClasses(handle), 3);
            const HANDLE mutex = OpenMutexA(SYNCHRONIZE, FALSE, "VelMultiThreadMutex");
            EXPECT_NE(mutex, nullptr) << "error " << GetLastError();
            CloseHandle(mutex);

            // A fresh module: archiving is forbidden until it is allowed.
            const auto setArchivingAllowed = module.Get<bool (*)(bool)>("_Z19SetArchivingAllowedb");
            EXPECT_FALSE(setArchivingAllowed(true));
            EXPECT_TRUE(setArchivingAllowed(false));
            EXPECT_FALSE(setArchivingAllowed(true));
        }
        EXPECT_EQ(GetModuleHandleA("VelDlgs.dll"), nullptr) << "still loaded after round " << round;
        EXPECT_EQ(KnownClasses(handle), 0);
    }
}

TEST(GreyText, DrawsTheTextAndReturnsItsHeight)
{
    const Module module;
    const auto grayString = module.Get<int (*)(HDC, LPARAM, int)>("_Z14GrayStringProcP5HDC__xi");
    HDC dc = CreateCompatibleDC(nullptr);
    TEXTMETRICA metrics = {};
    GetTextMetricsA(dc, &metrics);
    const char text[] = "Aligner";
    EXPECT_EQ(grayString(dc, reinterpret_cast<LPARAM>(text), -1), metrics.tmHeight);
    EXPECT_EQ(grayString(dc, reinterpret_cast<LPARAM>("one\ntwo"), 7), 2 * metrics.tmHeight);
    EXPECT_EQ(grayString(dc, 0, 0), 0);
    DeleteDC(dc);
}

} // namespace
