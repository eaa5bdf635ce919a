#include "util/stack_trace.h"

#include "tests/support/debug_listener.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

namespace vxut {
namespace {

std::wstring OwnPath() {
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return path;
}

// The lines that a trace writes from some depth of calls.
[[gnu::noinline]] size_t LinesAtDepth(int depth, uint32_t skip, DebugListener& listener) {
    volatile size_t before = listener.Lines().size(); // keeps the recursion one
    if (depth > 0) return LinesAtDepth(depth - 1, skip, listener) + (before - before);
    UtilStackTrace(&listener, skip);
    return listener.Lines().size() - before;
}

// Whether a line begins with its time, as one without a module column does.
bool BeginsWithTime(const std::wstring& line) { return line[2] == L':'; }

TEST(StackTraceTest, TellsTheCallersWithoutAModuleColumn) {
    DebugListener listener;
    const size_t lines = LinesAtDepth(0, 0, listener);
    ASSERT_GT(lines, 3u);
    EXPECT_TRUE(listener.Lines()[0].ends_with(L" \n [called by " + OwnPath() + L"]"));
    EXPECT_TRUE(listener.Last().ends_with(L" \n"));
    for (const std::wstring& line : listener.Lines()) EXPECT_TRUE(BeginsWithTime(line)) << line;
}

TEST(StackTraceTest, SkipsAndStops) {
    DebugListener listener;
    const struct {
        uint32_t skip;
        size_t lines;
    } rows[] = {{0, 21}, {5, 21}, {150, 1}, {200, 1}, {256, 1}, {257, 0}, {UINT32_MAX, 0}};
    for (const auto& row : rows) EXPECT_EQ(LinesAtDepth(60, row.skip, listener), row.lines) << row.skip;
    const size_t all = LinesAtDepth(0, 0, listener);
    ASSERT_LT(all, 21u);
    EXPECT_EQ(LinesAtDepth(0, 2, listener), all - 2);
}

TEST(StackTraceTest, ListsModulesByTheLowHalfOfTheirAddresses) {
    DebugListener listener;
    listener.isAttached = false;
    UtilListModules();
    EXPECT_TRUE(listener.Lines().empty());
    listener.isAttached = true;
    UtilListModules();
    EXPECT_TRUE(listener.Lines()[0].ends_with(L"Memory image addresses of modules:"));
    MEMORY_BASIC_INFORMATION region;
    for (const wchar_t* const name : {static_cast<const wchar_t*>(nullptr), L"kernel32.dll"}) {
        const HMODULE module = GetModuleHandleW(name);
        wchar_t path[MAX_PATH] = L"";
        GetModuleFileNameW(module, path, MAX_PATH);
        VirtualQuery(reinterpret_cast<const void*>(module), &region, sizeof region);
        const auto start = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(module));
        wchar_t text[MAX_PATH + 32];
        _snwprintf(text, MAX_PATH + 32, L" 0x%08x-0x%08x: %s", start,
                   static_cast<uint32_t>(start + region.RegionSize - 1), path);
        EXPECT_TRUE(listener.Heard(text)) << text;
    }
    for (const std::wstring& line : listener.Lines()) EXPECT_FALSE(BeginsWithTime(line)) << line;
    // A free region, such as that at address zero, is no module.
    EXPECT_FALSE(listener.Heard(L" 0x00000000-"));
}

} // namespace
} // namespace vxut
