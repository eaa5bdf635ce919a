#include "checks/validate.h"

#include "tests/support/child_process.h"
#include "tests/support/debug_listener.h"
#include "tests/support/guarded_pages.h"
#include "util/validate.h"

#include <windows.h>
#include <winternl.h>

#include <gtest/gtest.h>

#include <cwchar>
#include <string>

namespace vxut {
namespace {

using test::GuardedPages;

int CheckRead(void* pointer, uint32_t size) { return UtilIsRPtr(L"Caller", pointer, L"P", size); }
int CheckWrite(void* pointer, uint32_t size) { return UtilIsWPtr(L"Caller", pointer, L"P", size); }
int CheckText(void* pointer, uint32_t) {
    return UtilIsString(L"Caller", static_cast<wchar_t*>(pointer), L"P");
}

TEST(PointerTest, ReportsWhatIsWrongWithAPointer) {
    const GuardedPages pages, readOnly(PAGE_READONLY);
    char* const two = pages.Last<char>(2);
    *pages.Last<wchar_t>(1) = L'x'; // has no end
    char* const zeros = readOnly.Last<char>(100);
    const struct {
        int (*check)(void* pointer, uint32_t size);
        void* pointer;
        uint32_t size;
        const wchar_t* detail; // null if nothing is wrong
    } cases[] = {
        {CheckRead, two, 2, nullptr},
        {CheckRead, two, 3, L" -> does not point to 3 byte(s) of readable memory\n"},
        {CheckWrite, two, 2, nullptr},
        {CheckWrite, two, 100, L" -> does not point to enough (100 Bytes) writeable memory\n"},
        {CheckWrite, zeros, 100, L" -> does not point to writeable memory at all\n"},
        {CheckText, zeros, 0, nullptr},
        {CheckText, two, 0, L" -> does not point to valid string\n"},
    };
    for (const auto& row : cases) {
        const DebugListener listener;
        EXPECT_EQ(row.check(row.pointer, row.size), row.detail == nullptr);
        EXPECT_EQ(listener.Lines().size(), row.detail ? 2u : 0u);
        if (!row.detail) continue;
        wchar_t banner[128];
        _snwprintf(banner, 128, L"\nVL32UTIL['']: error in 'Caller': P\n ptr=0x%08x\n err=",
                   static_cast<unsigned>(reinterpret_cast<uintptr_t>(row.pointer)));
        EXPECT_TRUE(listener.Heard(banner));
        EXPECT_TRUE(listener.Heard(row.detail)) << testing::PrintToString(row.detail);
    }
    *pages.Last<wchar_t>(2) = L'!';
    EXPECT_EQ(UtilSafeStrlen(L"Caller", pages.Last<wchar_t>(2)), 1); // its end is not there
}

TEST(PointerTest, TrustsEverythingOnceADebuggerWasSeen) {
    const GuardedPages pages;
    for (const bool isDebugged : {true, false}) {
        NtCurrentTeb()->ProcessEnvironmentBlock->BeingDebugged = isDebugged;
        EXPECT_EQ(CheckRead(pages.Untouchable(), 1), 1);
    }
    ResetDebuggerState();
    EXPECT_EQ(CheckRead(pages.Untouchable(), 1), 0);
}

TEST(ErrorTest, NamesTheFunctionAndTheText) {
    const DebugListener listener;
    UtilError(L"ReadRecord", L"no record");
    EXPECT_TRUE(listener.Heard(L"VL32UTIL['']: error in 'ReadRecord' (no record): ")) << listener.Last();
}

TEST(AssertTest, EndsTheProcessWhateverIsAnswered) {
    for (const wchar_t* task : {L"assert-and-retry", L"assert-and-cancel"}) {
        const test::ChildResult result = test::RunChild(task);
        EXPECT_EQ(result.exitCode, -1);
        EXPECT_EQ(result.output, "before ");
    }
}

TEST(DeveloperLoginTest, GoesByTheEnvironment) {
    const std::pair<const wchar_t*, int> cases[] = {{L"QzR", 1}, {L"qzrx", 0}, {L"qz", 0}};
    for (const auto& [user, isDeveloper] : cases) {
        SetEnvironmentVariableW(L"user", user); // the child inherits it
        EXPECT_EQ(test::RunChild(L"developer").exitCode, isDeveloper) << testing::PrintToString(user);
    }
    SetEnvironmentVariableW(L"user", nullptr);
}

} // namespace
} // namespace vxut
