#include "frame/validate.h"

#include "tests/support/child_process.h"
#include "tests/support/debug_listener.h"
#include "tests/support/guarded_pages.h"
#include "util/validate.h"

#include <gtest/gtest.h>
#include <winternl.h>

#include <cwchar>
#include <string>

namespace vxut {
namespace {

using test::GuardedPages;

class PointerTest : public testing::Test {
protected:
    // Whether banner and detail, and nothing else, were reported.
    bool Reported(const void* pointer, const wchar_t* parameter, const wchar_t* detail) const {
        wchar_t banner[256];
        _snwprintf(banner, 256, L"\nVL32UTIL['']: error in 'Caller': %s\n ptr=0x%08x\n err=", parameter,
                   static_cast<unsigned>(reinterpret_cast<uintptr_t>(pointer)));
        return listener.Heard(banner) && (!detail || listener.Heard(detail)) &&
               listener.Lines().size() == (detail ? 2 : 1);
    }

    DebugListener listener;
    GuardedPages pages;
};

TEST_F(PointerTest, FindsUnreadableRanges) {
    char* const last = pages.Last<char>(10);
    EXPECT_EQ(UtilIsRPtr(L"Caller", last, L"Source", 10), 1);
    EXPECT_EQ(UtilIsRPtr(L"Caller", nullptr, L"Source", 100), 1);
    EXPECT_TRUE(listener.Lines().empty());
    EXPECT_EQ(UtilIsRPtr(L"Caller", last, L"Source", 11), 0);
    EXPECT_TRUE(Reported(last, L"Source", L" -> does not point to 11 byte(s) of readable memory\n"));
}

TEST_F(PointerTest, TellsHowUnwriteableARangeIs) {
    char* const last = pages.Last<char>(2);
    EXPECT_EQ(UtilIsWPtr(L"Caller", last, L"Target", 2), 1);
    EXPECT_EQ(UtilIsWPtr(L"Caller", nullptr, L"Target", 2), 1);
    EXPECT_EQ(UtilIsWPtr(L"Caller", last, L"Target", 100), 0);
    EXPECT_TRUE(Reported(last, L"Target", L" -> does not point to enough (100 Bytes) writeable memory\n"));
}

TEST_F(PointerTest, FindsReadOnlyPages) {
    const GuardedPages readOnly(PAGE_READONLY);
    char* const page = readOnly.Last<char>(100);
    EXPECT_EQ(UtilIsRPtr(L"Caller", page, L"Target", 100), 1);
    EXPECT_EQ(UtilIsWPtr(L"Caller", page, L"Target", 100), 0);
    EXPECT_TRUE(Reported(page, L"Target", L" -> does not point to writeable memory at all\n"));
}

TEST_F(PointerTest, FollowsAStringToItsEnd) {
    wchar_t* const text = pages.Last<wchar_t>(4);
    std::wmemcpy(text, L"abc", 4);
    EXPECT_EQ(UtilIsString(L"Caller", text, L"Name"), 1);
    EXPECT_EQ(UtilIsString(L"Caller", nullptr, L"Name"), 1);
    EXPECT_TRUE(listener.Lines().empty());
    text[3] = L'd';
    EXPECT_EQ(UtilIsString(L"Caller", text, L"Name"), 0);
    EXPECT_TRUE(Reported(text, L"Name", L" -> does not point to valid string\n"));
}

TEST_F(PointerTest, ReportsAStringThatBeginsNowhereAsUnreadable) {
    const auto* const text = static_cast<const wchar_t*>(pages.Untouchable());
    EXPECT_EQ(UtilIsString(L"Caller", text, L"Name"), 0);
    EXPECT_TRUE(Reported(text, L"Name", L" -> does not point to 1 byte(s) of readable memory\n"));
}

TEST_F(PointerTest, CountsTheUnitsOfBadStringsToo) {
    wchar_t* const text = pages.Last<wchar_t>(5);
    std::wmemcpy(text, L"four", 5);
    EXPECT_EQ(UtilSafeStrlen(L"Caller", text), 4);
    EXPECT_TRUE(listener.Lines().empty());
    text[4] = L'!';
    EXPECT_EQ(UtilSafeStrlen(L"Caller", text), 4);
    EXPECT_TRUE(Reported(pages.Untouchable(), L"bad string (unterminated)\n", nullptr));
    EXPECT_EQ(UtilSafeStrlen(L"Caller", text + 4), 0);
    EXPECT_EQ(UtilSafeStrlen(L"Caller", static_cast<wchar_t*>(pages.Untouchable())), 0);
}

// Pretends that a debugger is attached, or not.
void SetDebugged(bool isDebugged) { NtCurrentTeb()->ProcessEnvironmentBlock->BeingDebugged = isDebugged; }

TEST_F(PointerTest, TrustsEverythingOnceADebuggerWasSeen) {
    void* const wild = pages.Untouchable();
    EXPECT_FALSE(ProbeRead(wild, 1));
    SetDebugged(true);
    EXPECT_EQ(UtilIsRPtr(L"Caller", wild, L"Source", 1), 1); // it came later and is noticed all the same
    SetDebugged(false);
    EXPECT_EQ(UtilIsWPtr(L"Caller", wild, L"Target", 1), 1);
    EXPECT_EQ(UtilIsString(L"Caller", static_cast<wchar_t*>(wild), L"Name"), 1);
    EXPECT_TRUE(listener.Lines().empty());
    ResetDebuggerState();
    EXPECT_FALSE(ProbeRead(wild, 1));
}

TEST_F(PointerTest, ReportsErrorsOfCallers) {
    UtilError(L"Caller", L"it went wrong");
    EXPECT_TRUE(listener.Heard(L"\nVL32UTIL['']: error in 'Caller' (it went wrong): \n"));
}

TEST(AssertTest, EndsTheProcessWhateverIsAnswered) {
    for (const wchar_t* task : {L"assert-and-retry", L"assert-and-cancel"}) {
        const test::ChildResult result = test::RunChild(task);
        EXPECT_EQ(result.exitCode, -1);
        EXPECT_EQ(result.output, "before ");
    }
}

TEST(DeveloperLoginTest, GoesByTheEnvironment) {
    const std::pair<const wchar_t*, int> cases[] = {
        {L"qzr", 1}, {L"QzR", 1}, {L"qzrx", 0}, {L"qz", 0}, {L"qzrqzrqzrqzr", 0}};
    for (const auto& [user, isDeveloper] : cases) {
        EXPECT_EQ(test::RunChild(L"developer", {{L"user", user}}).exitCode, isDeveloper)
            << testing::PrintToString(user);
    }
}

} // namespace
} // namespace vxut
