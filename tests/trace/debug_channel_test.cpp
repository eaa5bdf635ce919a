#include "trace/debug_channel.h"

#include "base/identity.h"
#include "base/owners.h"
#include "tests/support/debug_listener.h"
#include "tests/support/guarded_pages.h"
#include "util/debug.h"
#include "util/frame.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <regex>
#include <thread>

namespace vxut {
namespace {

class DebugChannelTest : public testing::Test {
protected:
    // The columns of a line: all of it, module, thread, digit, indent and text.
    static std::wcmatch Parse(const std::wstring& line) {
        static const std::wregex layout(
            L"(?:(.{8,}?): )?(?:\\d\\d:)?\\d\\d:\\d\\d\\.\\d{3} ([0-9a-f]{8})/[0-9a-f]{2} (\\d) ( +)([^]*)");
        std::wcmatch match;
        EXPECT_TRUE(std::regex_match(line.c_str(), match, layout));
        return match;
    }
    std::wstring LastColumn(size_t column) const { return Parse(listener.Last())[column]; }
    std::wstring LastText() const { return LastColumn(5); }
    int LastDigit() const { return std::stoi(LastColumn(3)); }
    // The indent that a line shows now.
    size_t Blanks() {
        UtilDebug(L"x");
        return LastColumn(4).size();
    }

    DebugListener listener;
};

TEST_F(DebugChannelTest, LaysOutTheColumns) {
    UtilDebugExt(L"IMPORT", 0, L"%s has %d parts, %hs", L"it", 3, "narrow");
    EXPECT_EQ(LastColumn(1), L"IMPORT  ");
    EXPECT_EQ(std::stoul(LastColumn(2), nullptr, 16), GetCurrentThreadId());
    EXPECT_EQ(LastColumn(4), L" ");
    EXPECT_EQ(LastText(), L"it has 3 parts, narrow");
    UtilDebugExt(L"LONGER THAN 8", 0, L"all of it");
    EXPECT_EQ(LastColumn(1), L"LONGER THAN 8");
    DebugWrite(L"the library");
    EXPECT_EQ(LastColumn(1), Identity().libraryBaseName);
    PasDebug(L"100% raw %s");
    EXPECT_EQ(LastText(), L"100% raw %s");
    DebugSetThreadName("reaper");
    UtilDebug(L"text");
    EXPECT_EQ(LastColumn(1), L"");
    EXPECT_EQ(LastText(), L"[reaper] text");
    std::thread([] { UtilDebug(L"of another"); }).join();
    EXPECT_EQ(LastText(), L"of another");
    DebugSetThreadName(nullptr);
}

TEST_F(DebugChannelTest, ChangesTheIndentAfterOrBeforeTheLine) {
    const size_t start = Blanks();
    const std::pair<int, size_t> cases[] = {{1, start}, {40, start + 1}, {0, start + 2}, {-7, start + 1}};
    for (const auto& [change, blanks] : cases) {
        UtilDebugExt(nullptr, change, L"line");
        EXPECT_EQ(LastColumn(4).size(), blanks) << change;
    }
    for (int i = 0; i < 60; ++i) UtilDebugExt(L"MODULE", 1, nullptr);
    EXPECT_EQ(listener.Lines().size(), 1 + std::size(cases)); // without a text there is no line
    EXPECT_EQ(Blanks(), 51u);
    for (int i = 0; i < 65; ++i) UtilDebugExt(nullptr, -1, nullptr);
    EXPECT_EQ(Blanks(), 1u);
    for (int i = 0; i < 5; ++i) UtilDebugExt(nullptr, 1, nullptr);
}

TEST_F(DebugChannelTest, IsSilentWhileNobodyListens) {
    const size_t start = Blanks();
    const int digit = LastDigit();
    EXPECT_EQ(UtilGetFlags(), 1);
    listener.isAttached = false;
    EXPECT_EQ(UtilGetFlags(), 0);
    // A line that were formatted would fault on this argument.
    UtilDebugExt(nullptr, 1, L"%s", reinterpret_cast<const wchar_t*>(1));
    UtilDebugExt(nullptr, 1, nullptr);
    listener.isAttached = true;
    EXPECT_EQ(Blanks(), start);
    EXPECT_EQ(LastDigit(), (digit + 1) % 10);
    EXPECT_EQ(listener.Lines().size(), 2u);
}

TEST_F(DebugChannelTest, CutsALineAtTheEndOfItsBuffer) {
    UtilDebug(L"%s", std::wstring(1200, L'a').c_str());
    EXPECT_EQ(listener.Last().size(), 1024u);
    EXPECT_EQ(LastText().find_first_not_of(L'a'), std::wstring::npos);
    UtilDebugExt(std::wstring(2000, L'm').c_str(), 0, L"text");
    EXPECT_EQ(listener.Last(), std::wstring(1024, L'm'));
    const test::GuardedPages pages;
    UtilDebug(L"before %s behind", static_cast<const wchar_t*>(pages.Untouchable()));
    EXPECT_EQ(LastText().substr(0, 7), L"before ");
}

TEST_F(DebugChannelTest, DropsLinesThatArriveDuringASendAndSurvivesAThrow) {
    UtilDebug(L"first");
    const int digit = LastDigit();
    listener.whileSending = [] { DebugWrite(L"about the line that is being sent"); };
    UtilDebug(L"outer");
    EXPECT_EQ(LastText(), L"outer");
    listener.whileSending = [] {
        SetLastError(ERROR_WRITE_FAULT);
        throw std::bad_alloc();
    };
    SetLastError(ERROR_FILE_NOT_FOUND);
    UtilDebug(L"lost");
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    listener.whileSending = nullptr;
    UtilDebug(L"next");
    EXPECT_EQ(listener.Lines().size(), 3u);
    EXPECT_EQ(LastDigit(), (digit + 4) % 10); // lost lines have digits, too
}

// As a host that handles structured exceptions. True if there was one.
[[gnu::noinline]] bool FaultsInDebug(const wchar_t* module, const wchar_t* format, const wchar_t* argument) {
    __try {
        UtilDebugExt(module, 0, format, argument);
        return false;
    } __except (EXCEPTION_EXECUTE_HANDLER) {
        return true;
    }
}

// Whether another thread can write a line and ask for listeners. One that cannot is left behind.
bool ServesAnotherThread() {
    constexpr DWORD kLongEnough = 10000;
    const auto work = [](void*) -> DWORD {
        UtilDebug(L"of another thread");
        return static_cast<DWORD>(UtilGetFlags());
    };
    const clsAutoCloseHandle thread(CreateThread(nullptr, 0, work, nullptr, 0, nullptr));
    DWORD flags = 0;
    return WaitForSingleObject(thread.Get(), kLongEnough) == WAIT_OBJECT_0 &&
           GetExitCodeThread(thread.Get(), &flags) && flags == 1;
}

TEST_F(DebugChannelTest, HoldsNothingAfterAStructuredException) {
    const auto guarded = [](const test::GuardedPages& pages) { return pages.Last<wchar_t>(4); };
    for (int argument = 0; argument < 3; ++argument) {
        const test::GuardedPages pages(PAGE_READWRITE | PAGE_GUARD);
        FaultsInDebug(argument == 0 ? guarded(pages) : L"MODULE", argument == 1 ? guarded(pages) : L"%s",
                      argument == 2 ? guarded(pages) : L"x");
        ASSERT_TRUE(ServesAnotherThread()) << argument;
        EXPECT_EQ(LastText(), L"of another thread");
    }
    listener.whileSending = [] { RaiseException(0xE0000001, 0, 0, nullptr); };
    EXPECT_TRUE(FaultsInDebug(nullptr, L"%s", L"a sink fails"));
    listener.whileSending = nullptr;
    ASSERT_TRUE(ServesAnotherThread());
    UtilDebug(L"next");
    EXPECT_EQ(LastText(), L"next");
}

TEST_F(DebugChannelTest, KeepsTheLinesOfManyThreadsWhole) {
    constexpr int kThreads = 6, kLines = 400;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([t] {
            for (int i = 0; i < kLines; ++i) UtilDebugExt(L"THREAD", 0, L"%d:%0200d", t, i);
        });
    }
    for (auto& thread : threads) thread.join();

    int nextOf[kThreads] = {};
    int digit = std::stoi(Parse(listener.Lines().front())[3]);
    for (const std::wstring& line : listener.Lines()) {
        const auto columns = Parse(line);
        ASSERT_EQ(std::stoi(columns[3]), digit);
        digit = (digit + 1) % 10;
        const int t = *columns[5].first - L'0';
        ASSERT_TRUE(t >= 0 && t < kThreads);
        wchar_t expected[256];
        _snwprintf(expected, 256, L"%d:%0200d", t, nextOf[t]++);
        ASSERT_EQ(columns[5].str(), expected);
    }
    for (const int next : nextOf) EXPECT_EQ(next, kLines);
}

} // namespace
} // namespace vxut
