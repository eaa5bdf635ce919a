#include "diagnostics/debug_channel.h"

#include "frame/identity.h"
#include "tests/support/debug_listener.h"
#include "tests/support/guarded_pages.h"
#include "util/debug.h"
#include "util/frame.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <regex>
#include <string>
#include <thread>
#include <vector>

namespace vxut {
namespace {

// The columns of a line.
struct Line {
    std::wstring module;
    unsigned long thread, processor;
    int digit;
    size_t blanks; // of the indent
    std::wstring text;
};

Line Parse(const std::wstring& line) {
    static const std::wregex layout(
        L"^(?:(.{8,}?): )?(?:\\d\\d:)?\\d\\d:\\d\\d\\.\\d{3} ([0-9a-f]{8})/([0-9a-f]{2}) (\\d) ( +)([^]*)$");
    std::wsmatch match;
    if (!std::regex_match(line, match, layout)) return {L"(not well-formed)", 0, 99, -1, 0, line};
    return {match[1],
            std::stoul(match[2], nullptr, 16),
            std::stoul(match[3], nullptr, 16),
            std::stoi(match[4]),
            static_cast<size_t>(match[5].length()),
            match[6]};
}

class DebugChannelTest : public testing::Test {
protected:
    Line LastLine() const { return Parse(listener.Last()); }
    // The indent that a line shows now.
    size_t Blanks() {
        UtilDebug(L"x");
        return LastLine().blanks;
    }

    DebugListener listener;
};

TEST_F(DebugChannelTest, LaysOutTheColumns) {
    UtilDebugExt(L"IMPORT", 0, L"%s has %d parts, %hs", L"it", 3, "narrow");
    const Line line = LastLine();
    EXPECT_EQ(line.module, L"IMPORT  ");
    EXPECT_EQ(line.thread, GetCurrentThreadId());
    EXPECT_LT(line.processor, 64u);
    EXPECT_EQ(line.blanks, 1u);
    EXPECT_EQ(line.text, L"it has 3 parts, narrow");
    UtilDebugExt(L"LONGER THAN 8", 0, L"all of it");
    EXPECT_EQ(LastLine().module, L"LONGER THAN 8");
}

TEST_F(DebugChannelTest, NamesTheModuleAsTheWriterDoes) {
    DebugWrite(L"the library");
    EXPECT_EQ(LastLine().module, Identity().libraryBaseName);
    UtilDebug(L"none");
    EXPECT_EQ(LastLine().module, L"");
    PasDebug(L"100% raw %s");
    EXPECT_EQ(LastLine().text, L"100% raw %s");
}

TEST_F(DebugChannelTest, ShowsTheNameOfTheThread) {
    DebugSetThreadName("reaper");
    UtilDebug(L"text");
    EXPECT_EQ(LastLine().text, L"[reaper] text");
    std::thread([] { UtilDebug(L"of another"); }).join();
    EXPECT_EQ(LastLine().text, L"of another");
    DebugSetThreadName(nullptr);
    UtilDebug(L"text");
    EXPECT_EQ(LastLine().text, L"text");
}

TEST_F(DebugChannelTest, ChangesTheIndentBehindOrBeforeTheLine) {
    const size_t start = Blanks();
    const std::pair<int, size_t> cases[] = {{1, start}, {40, start + 1}, {0, start + 2}, {-7, start + 1}};
    for (const auto& [change, blanks] : cases) {
        UtilDebugExt(nullptr, change, L"line");
        EXPECT_EQ(LastLine().blanks, blanks) << change;
    }
    for (const int change : {1, -1, -1}) UtilDebugExt(L"MODULE", change, nullptr);
    EXPECT_EQ(listener.Lines().size(), 1 + std::size(cases)); // without a text there is no line
    EXPECT_EQ(Blanks(), start);
}

TEST_F(DebugChannelTest, ShowsAtMostFiftySteps) {
    for (int i = 0; i < 60; ++i) UtilDebugExt(nullptr, 1, nullptr);
    EXPECT_EQ(Blanks(), 51u);
    for (int i = 0; i < 65; ++i) UtilDebugExt(nullptr, -1, nullptr);
    EXPECT_EQ(Blanks(), 1u);
    for (int i = 0; i < 5; ++i) UtilDebugExt(nullptr, 1, nullptr);
}

TEST_F(DebugChannelTest, IsSilentWhileNobodyListens) {
    const size_t start = Blanks();
    const int digit = LastLine().digit;
    EXPECT_EQ(UtilGetFlags(), 1);
    listener.isAttached = false;
    EXPECT_EQ(UtilGetFlags(), 0);
    // A line that were formatted would fault on this argument.
    UtilDebugExt(nullptr, 1, L"%s", reinterpret_cast<const wchar_t*>(1));
    UtilDebugExt(nullptr, 1, nullptr);
    listener.isAttached = true;
    EXPECT_EQ(Blanks(), start);
    EXPECT_EQ(LastLine().digit, (digit + 1) % 10);
    EXPECT_EQ(listener.Lines().size(), 2u);
    IclsDebugSinks* const sinks = SetDebugSinks(nullptr);
    EXPECT_EQ(UtilGetFlags(), 0);
    UtilDebug(L"nobody hears this");
    SetDebugSinks(sinks);
    EXPECT_EQ(listener.Lines().size(), 2u);
}

TEST_F(DebugChannelTest, CutsALineAtTheEndOfItsBuffer) {
    UtilDebug(L"%s", std::wstring(1200, L'a').c_str());
    const std::wstring cut = listener.Last();
    EXPECT_EQ(cut.size(), 1024u);
    EXPECT_LT(cut.find_last_not_of(L'a'), 60u); // in the columns in front
    // Nothing of it is left in the next line, not even behind a module that fills the buffer alone.
    UtilDebugExt(std::wstring(2000, L'm').c_str(), 0, L"text");
    EXPECT_EQ(listener.Last(), std::wstring(1024, L'm'));
    UtilDebug(L"short");
    EXPECT_EQ(LastLine().text, L"short");
}

TEST_F(DebugChannelTest, SurvivesArgumentsThatLeadNowhere) {
    const test::GuardedPages pages;
    UtilDebug(L"before %s behind", static_cast<const wchar_t*>(pages.Untouchable()));
    EXPECT_EQ(LastLine().text.substr(0, 7), L"before ");
    UtilDebug(L"%s", static_cast<const wchar_t*>(nullptr));
    EXPECT_EQ(LastLine().text, L"(null)");
}

TEST_F(DebugChannelTest, DropsLinesThatArriveDuringASend) {
    UtilDebug(L"first");
    const int digit = LastLine().digit;
    bool isActiveInside = false;
    listener.whileSending = [&] {
        isActiveInside = DebugIsActive();
        DebugWrite(L"about the line that is being sent");
    };
    UtilDebug(L"outer");
    listener.whileSending = nullptr;
    EXPECT_TRUE(isActiveInside);
    EXPECT_EQ(LastLine().text, L"outer");
    UtilDebug(L"next");
    EXPECT_EQ(listener.Lines().size(), 3u);
    EXPECT_EQ(LastLine().digit, (digit + 3) % 10); // the digit tells of the lost line
}

TEST_F(DebugChannelTest, SurvivesASinkThatThrowsAndKeepsTheLastError) {
    listener.whileSending = [] {
        SetLastError(ERROR_WRITE_FAULT);
        throw std::bad_alloc();
    };
    SetLastError(ERROR_FILE_NOT_FOUND);
    UtilDebug(L"lost");
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    listener.whileSending = nullptr;
    UtilDebug(L"heard");
    EXPECT_EQ(LastLine().text, L"heard");
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
    int digit = Parse(listener.Lines().front()).digit;
    for (const std::wstring& each : listener.Lines()) {
        const Line line = Parse(each);
        ASSERT_EQ(line.digit, digit);
        digit = (digit + 1) % 10;
        const int t = line.text[0] - L'0';
        ASSERT_TRUE(t >= 0 && t < kThreads);
        wchar_t expected[256];
        _snwprintf(expected, 256, L"%d:%0200d", t, nextOf[t]++);
        ASSERT_EQ(line.text, expected);
    }
    for (const int next : nextOf) EXPECT_EQ(next, kLines);
}

// Other modules of the process count and indent in the same block.
TEST_F(DebugChannelTest, SharesIndentAndCountThroughANamedBlock) {
    wchar_t name[64];
    _snwprintf(name, 64, L"QzrTRCWINAppLocalData_%#p",
               reinterpret_cast<void*>(uintptr_t{GetCurrentProcessId()}));
    const clsAutoCloseHandle mapping(OpenFileMappingW(FILE_MAP_WRITE, FALSE, name));
    ASSERT_TRUE(mapping);
    const clsAutoUnmap view(MapViewOfFile(mapping.Get(), FILE_MAP_WRITE, 0, 0, 8));
    auto* const indent = static_cast<LONG*>(view.Get());
    auto* const sequence = indent + 1;

    const size_t blanks = Blanks();
    EXPECT_EQ(LastLine().digit, (*sequence - 1) % 10);
    *indent += 3;
    *sequence += 4;
    EXPECT_EQ(Blanks(), blanks + 3);
    EXPECT_EQ(LastLine().digit, (*sequence - 1) % 10);
    *indent -= 3;
}

} // namespace
} // namespace vxut
