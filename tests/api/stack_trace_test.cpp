// Call stacks as a host sees them: they begin with the host, whatever the library has called inside itself.
#include "../support/trace_viewer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace vxut::test {
namespace {

class StackTraceTest : public testing::Test {
protected:
    // The file names of the modules that were reported since the last time, in capitals.
    std::vector<std::string> Modules() {
        std::vector<std::string> modules;
        for (const std::string& line : viewer.Take()) {
            const size_t start = line.find("[called by ");
            if (start == std::string::npos) continue;
            const size_t name = line.find_last_of('\\') + 1;
            modules.push_back(line.substr(name, line.find(']', name) - name));
            for (char& letter : modules.back()) letter = static_cast<char>(std::toupper(letter));
        }
        return modules;
    }

    const std::string self = "VXUT_API_TESTS.EXE", library = "VXUT21.DLL";
    TraceViewer viewer;
};

// Writes the stack from some depth of calls of the host.
[[gnu::noinline]] int TraceAtDepth(int depth, uint32_t skip) {
    volatile int below = depth; // keeps the recursion one
    if (depth > 0) return TraceAtDepth(depth - 1, skip) + below;
    UtilStackTrace(nullptr, skip);
    return depth;
}

TEST_F(StackTraceTest, ListsUpToTwentyCallersBelowThoseSkipped) {
    const struct {
        uint32_t skip;
        size_t listed;
    } rows[] = {{0, 20}, {5, 20}, {40, 20}, {150, 0}, {200, 0}, {256, 0}, {257, 0}, {UINT32_MAX, 0}};
    for (const auto& row : rows) {
        TraceAtDepth(60, row.skip);
        EXPECT_EQ(Modules(), std::vector<std::string>(row.listed, self)) << row.skip;
    }
}

TEST_F(StackTraceTest, CountsSkippedFramesFromTheHost) {
    UtilStackTrace(nullptr, 0);
    const auto all = Modules();
    UtilStackTrace(nullptr, 1);
    ASSERT_FALSE(all.empty());
    EXPECT_EQ(all.front(), self);
    EXPECT_EQ(Modules(), std::vector<std::string>(all.begin() + 1, all.end()));
}

TEST_F(StackTraceTest, HeapsAndObjectsAreListedWithTheirHost) {
    const HUTILJOB job = UtilJobOpen(L"STACKS", UTIL_JOB_TRACE);
    const HUTILHEAP heap = UtilHeapCreate(job, L"STACKS", UTIL_HEAP_DEBUG);
    UtilHeapObjectAlloc(heap, 8, 0);
    UtilHeapObjectAlloc(heap, -1, UTIL_OBJECT_NO_STACK); // the report lists the caller
    EXPECT_EQ(UtilHeapDelete(heap), UTIL_ERR_LEFT_BEHIND);
    EXPECT_EQ(UtilJobClose(job), UTIL_OK);
    const auto modules = Modules();
    EXPECT_EQ(std::count(modules.begin(), modules.end(), library), 0);
    ASSERT_FALSE(modules.empty());
    EXPECT_EQ(modules.front(), self);
}

TEST_F(StackTraceTest, ListsTheModulesOfTheProcess) {
    UtilListModules();
    std::string lines;
    for (const std::string& line : viewer.Take()) lines += line + "\n";
    for (const char* expected :
         {"Memory image addresses of modules:", "vxut_api_tests.exe\n", "vxut21.dll\n"})
        EXPECT_NE(lines.find(expected), std::string::npos) << lines;
}

} // namespace
} // namespace vxut::test
