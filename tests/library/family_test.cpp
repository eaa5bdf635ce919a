// Exports of the frame whose twins other tests use.
#include "tests/support/debug_listener.h"
#include "util/debug.h"
#include "util/environment.h"
#include "util/stack_trace.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cstdarg>
#include <thread>

namespace vxut {
namespace {

void Write(const wchar_t* module, int32_t indentChange, const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    UtilDebugExtV(module, indentChange, format, arguments);
    va_end(arguments);
}

TEST(DebugFamilyTest, ALineWithAListOfArguments) {
    const DebugListener listener;
    Write(L"IMPORT", 1, L"%s has %d parts, %hs", L"it", 3, "narrow");
    EXPECT_TRUE(listener.Heard(L"IMPORT")) << listener.Last();
    EXPECT_TRUE(listener.Heard(L"it has 3 parts, narrow")) << listener.Last();
    Write(nullptr, -1, nullptr);
    EXPECT_EQ(listener.Lines().size(), 1u) << "the indent alone writes no line";
}

TEST(DebugFamilyTest, TheModulesOfTheProcessAreListed) {
    const DebugListener listener;
    UtilListModules();
    EXPECT_TRUE(listener.Heard(L"Memory image addresses of modules:"));
    wchar_t program[MAX_PATH];
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    EXPECT_TRUE(listener.Heard(program));
    EXPECT_TRUE(listener.Heard(L"kernel32.dll"));
}

TEST(SharedLockTest, EachIsOneLockThatKeepsOtherThreadsOut) {
    CRITICAL_SECTION* graphics = nullptr;
    CRITICAL_SECTION* debugHelp = nullptr;
    UtilGetGDIThreadingCS(&graphics);
    UtilGetDBGHELPThreadingCS(&debugHelp);
    UtilGetGDIThreadingCS(nullptr);
    UtilGetDBGHELPThreadingCS(nullptr);
    ASSERT_TRUE(graphics && debugHelp);
    EXPECT_NE(graphics, debugHelp);
    for (CRITICAL_SECTION* const section : {graphics, debugHelp}) {
        EnterCriticalSection(section);
        BOOL hasEntered = TRUE;
        std::thread([&] { hasEntered = TryEnterCriticalSection(section); }).join();
        LeaveCriticalSection(section);
        EXPECT_FALSE(hasEntered);
    }
    CRITICAL_SECTION* again = nullptr;
    UtilGetGDIThreadingCS(&again);
    EXPECT_EQ(again, graphics);
}

} // namespace
} // namespace vxut
