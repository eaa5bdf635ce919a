#include "util/stack_trace.h"

#include "tests/support/debug_listener.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <string>

namespace vxut {
namespace {

// The lines that a trace writes from some depth of calls.
[[gnu::noinline]] size_t LinesAtDepth(int depth, uint32_t skip, DebugListener& listener) {
    volatile size_t before = listener.Lines().size(); // keeps the recursion one
    if (depth > 0) return LinesAtDepth(depth - 1, skip, listener) + (before - before);
    UtilStackTrace(&listener, skip);
    return listener.Lines().size() - before;
}

std::wstring PathOf(HMODULE module) {
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(module, path, MAX_PATH);
    return path;
}

TEST(StackTraceTest, SkipsAndStops) {
    DebugListener listener;
    const std::pair<uint32_t, size_t> rows[] = {{0, 21},  {5, 21},  {150, 1},       {200, 1},
                                                {256, 1}, {257, 0}, {UINT32_MAX, 0}};
    for (const auto& [skip, lines] : rows) EXPECT_EQ(LinesAtDepth(60, skip, listener), lines) << skip;
    EXPECT_TRUE(listener.Lines()[0].ends_with(L" \n [called by " + PathOf(nullptr) + L"]"));
    EXPECT_TRUE(listener.Last().ends_with(L" \n"));
    EXPECT_EQ(listener.Last()[2], L':'); // begins with the time: there is no module column
}

TEST(StackTraceTest, ListsModulesByTheLowHalfOfTheirAddresses) {
    DebugListener listener;
    UtilListModules();
    EXPECT_TRUE(listener.Lines()[0].ends_with(L"Memory image addresses of modules:"));
    for (const HMODULE module : {GetModuleHandleW(nullptr), GetModuleHandleW(L"kernel32.dll")}) {
        MEMORY_BASIC_INFORMATION region;
        VirtualQuery(reinterpret_cast<const void*>(module), &region, sizeof region);
        const auto start = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(module));
        wchar_t range[32];
        _snwprintf(range, 32, L" 0x%08x-0x%08x: ", start,
                   static_cast<uint32_t>(start + region.RegionSize - 1));
        EXPECT_TRUE(listener.Heard((range + PathOf(module)).c_str())) << range;
    }
    EXPECT_FALSE(listener.Heard(L" 0x00000000-")); // a free region is no module
}

} // namespace
} // namespace vxut
