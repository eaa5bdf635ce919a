// Heaps on systems that lack a heap function, or have one that goes astray.
#include "tests/support/child_process.h"

#include <gtest/gtest.h>

namespace vxut::test {
namespace {

TEST(HeapPlatformTest, GoesOnWithoutFunctionsOfTheSystem) {
    const struct {
        const wchar_t* task;
        const char* output;
    } rows[] = {
        {L"heap-functions-absent", "size 10 objects -7 validate -7 shrink -7 free 0 delete 0"},
        {L"heap-walk-on-the-spot", "size 100 objects 100 validate 0 shrink -2 free 0 delete 0"},
        {L"heap-walk-astray", "size 0 objects 0 validate 0 shrink -2 free 0 delete 0"},
        {L"heap-compact", "size 58 objects 58 validate 0 shrink 0 free 0 delete 0"},
        {L"heap-compact-fails", "size 58 objects 58 validate 0 shrink -2 free 0 delete 0"},
    };
    for (const auto& row : rows) {
        const ChildResult result = RunChild(row.task);
        EXPECT_EQ(result.exitCode, 0) << row.task;
        EXPECT_EQ(result.output, row.output) << row.task;
    }
}

} // namespace
} // namespace vxut::test
