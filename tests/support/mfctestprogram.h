#pragma once

// For test programs that use the framework: write VEL_MFC_TEST_PROGRAM() once, in one of their sources.
// The program then has an application object, and the framework is initialised before the first test.

#include <afxwin.h>

#include <gtest/gtest.h>

namespace veltest
{

class MfcEnvironment : public ::testing::Environment
{
public:
    void SetUp() override
    {
        ASSERT_TRUE(AfxWinInit(::GetModuleHandle(nullptr), nullptr, ::GetCommandLine(), 0));
    }
};

} // namespace veltest

#define VEL_MFC_TEST_PROGRAM()                                                                               \
    static CWinApp testProgramApp;                                                                           \
    [[maybe_unused]] static const auto* const testProgramEnvironment =                                       \
        ::testing::AddGlobalTestEnvironment(new veltest::MfcEnvironment)
