#include "tests/support/child_process.h"
#include "tests/support/debug_listener.h"
#include "util/handle_tracking.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <regex>
#include <thread>

namespace vxut {
namespace {

// The lists are of the process: each test has a type of its own.
void* Handle(uintptr_t number) { return reinterpret_cast<void*>(number); }

class HandleTest : public testing::Test {
protected:
    // The lines since the last call that speak of handles, without what precedes the text.
    std::vector<std::wstring> Lines() {
        std::vector<std::wstring> lines;
        for (; next_ < listener_.Lines().size(); ++next_) {
            std::wsmatch match;
            const std::wstring& line = listener_.Lines()[next_];
            if (std::regex_search(line, match, std::wregex(L"(LOST|NEW|DELETED) [^\r\n]*HANDLE[^\r\n]*")))
                lines.push_back(match.str());
        }
        return lines;
    }

    DebugListener listener_;

private:
    size_t next_ = 0;
};

TEST_F(HandleTest, CommandsCountReferences) {
    const struct {
        uint32_t command;
        uintptr_t handle;
        uint64_t result;
    } rows[] = {
        {UTIL_HANDLES_REMOVE, 1, 0},
        {UTIL_HANDLES_COUNT, 0, 0},
        {UTIL_HANDLES_ADD, 1, 0},
        {UTIL_HANDLES_ADD, 1, 0},
        {UTIL_HANDLES_ADD, 2, 0},
        {UTIL_HANDLES_COUNT, 0, 2},
        {UTIL_HANDLES_REMOVE, 1, 0},
        {UTIL_HANDLES_IS_LIVE, 1, 1},
        {UTIL_HANDLES_REMOVE, 1, 0},
        {UTIL_HANDLES_IS_LIVE, 1, 0},
        {UTIL_HANDLES_COUNT, 0, 1},
        {5, 2, 0},
        {9, 2, 0},
        {12, 2, 0},
        {UINT32_MAX, 2, 0},
        {UTIL_HANDLES_ADD, 0, 0},
        {UTIL_HANDLES_IS_LIVE, 0, 1},
        {UTIL_HANDLES_COUNT, 0, 2},
    };
    for (const uint32_t type : {uint32_t{OBJ_PEN}, 4u}) { // the second has no name
        for (const auto& row : rows) {
            SetLastError(4711);
            EXPECT_EQ(UtilHandleListMgr(type, row.command, Handle(row.handle)), row.result)
                << row.command << ' ' << row.handle;
            EXPECT_EQ(GetLastError(), 4711u);
        }
    }
    for (const uint32_t type : {15u, UINT32_MAX}) {
        UtilHandleListMgr(type, UTIL_HANDLES_ADD, Handle(1));
        EXPECT_EQ(UtilHandleListMgr(type, UTIL_HANDLES_COUNT, nullptr), 0u) << type;
    }
}

TEST_F(HandleTest, ThreadsShareALists) {
    std::vector<std::thread> threads;
    for (uintptr_t thread = 0; thread < 4; ++thread) {
        threads.emplace_back([thread] {
            for (uintptr_t i = 1; i <= 500; ++i) {
                UtilHandleListMgr(OBJ_DC, UTIL_HANDLES_ADD, Handle(i));
                UtilHandleListMgr(OBJ_DC, UTIL_HANDLES_ADD, Handle(1000 + thread));
                if (i % 2) UtilHandleListMgr(OBJ_DC, UTIL_HANDLES_REMOVE, Handle(i));
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(UtilHandleListMgr(OBJ_DC, UTIL_HANDLES_COUNT, nullptr), 254u);
}

TEST_F(HandleTest, LostHandlesAreListedInOrderWithTheirStacks) {
    for (const uintptr_t handle : {0x30, 0x10, 0x20})
        UtilHandleListMgr(OBJ_FONT, UTIL_HANDLES_ADD, Handle(handle));
    for (int round = 0; round < 2; ++round) { // also a second time
        UtilHandleListMgr(OBJ_FONT, UTIL_HANDLES_LIST, nullptr);
        const auto lines = Lines();
        ASSERT_EQ(lines.size(), 3u);
        for (size_t i = 0; i < 3; ++i) {
            const auto pattern = L"LOST FONT HANDLE 0X0*" + std::to_wstring(i + 1) + L"0:";
            EXPECT_TRUE(std::regex_match(lines[i], std::wregex(pattern, std::regex::icase))) << lines[i];
        }
    }
    EXPECT_TRUE(listener_.Heard(L"BaseThreadInitThunk + 0x")) << "a symbol of the system";
}

TEST_F(HandleTest, SnapshotsAreCompared) {
    const auto run = [](uint32_t command, uintptr_t handle = 0) {
        UtilHandleListMgr(OBJ_BRUSH, command, Handle(handle));
    };
    run(UTIL_HANDLES_COMPARE_SNAPSHOTS);
    run(UTIL_HANDLES_ADD, 0xA1);
    run(UTIL_HANDLES_PUSH_SNAPSHOT);
    run(UTIL_HANDLES_COMPARE_SNAPSHOTS); // one is kept
    EXPECT_TRUE(Lines().empty());
    run(UTIL_HANDLES_REMOVE, 0xA1);
    run(UTIL_HANDLES_ADD, 0xB1);
    run(UTIL_HANDLES_ADD, 0xB2);
    run(UTIL_HANDLES_PUSH_SNAPSHOT);
    run(UTIL_HANDLES_REMOVE, 0xB2); // after the snapshot
    run(UTIL_HANDLES_COMPARE_SNAPSHOTS);
    std::wstring all;
    for (const std::wstring& line : Lines())
        all += std::regex_replace(line, std::wregex(L"0X0*", std::regex::icase), L"") + L"\n";
    EXPECT_EQ(all,
              L"NEW 2 BRUSH HANDLES:\nDELETED 1 BRUSH HANDLES:\n"
              L"NEW 2 BRUSH HANDLES:\nNEW BRUSH HANDLE B1\nNEW BRUSH HANDLE B2\n"
              L"DELETED 1 BRUSH HANDLES:\nDELETED BRUSH HANDLE A1\n");
    run(UTIL_HANDLES_PUSH_SNAPSHOT);
    run(UTIL_HANDLES_COMPARE_SNAPSHOTS); // both are used up
    EXPECT_TRUE(Lines().empty());
}

// Types that were listed before stay silent, also with new handles.
TEST_F(HandleTest, TheUnloadListsWhatWasNotListed) {
    EXPECT_EQ(test::RunChild(L"handle-unload").output,
              "| LOST BITMAP | LOST MEMDC address LOST MEMDC address ");
}

} // namespace
} // namespace vxut
