#include "tests/support/child_process.h"
#include "tests/support/debug_listener.h"
#include "util/handle_tracking.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <thread>

namespace vxut {
namespace {

// The lists are of the process: each test has a type of its own.
void* Handle(uintptr_t number) { return reinterpret_cast<void*>(number); }

class HandleTest : public testing::Test {
protected:
    // The lines since the last call that speak of handles, one after the other, without what precedes the
    // text and without prefix and leading zeros of handles.
    std::wstring Lines() {
        std::wstring all;
        for (; next_ < listener_.Lines().size(); ++next_) {
            const std::wstring& line = listener_.Lines()[next_];
            for (const wchar_t* word : {L"LOST ", L"NEW ", L"DELETED "}) {
                const size_t start = line.find(word);
                if (start == std::wstring::npos || line.find(L" HANDLE") == std::wstring::npos) continue;
                const size_t end = line.find_last_not_of(L"\r\n") + 1;
                size_t number = line.find(L" 0X", start);
                if (number == std::wstring::npos) number = line.find(L" 0x", start);
                const bool hasNumber = number != std::wstring::npos;
                all += line.substr(start, (hasNumber ? number + 1 : end) - start);
                if (hasNumber) number = line.find_first_not_of(L'0', number + 3);
                all += (hasNumber ? line.substr(number, end - number) : L"") + L"\n";
            }
        }
        return all;
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

TEST_F(HandleTest, ThreadsShareAList) {
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
        EXPECT_EQ(Lines(), L"LOST FONT HANDLE 10:\nLOST FONT HANDLE 20:\nLOST FONT HANDLE 30:\n");
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
    EXPECT_EQ(Lines(), L"");
    run(UTIL_HANDLES_REMOVE, 0xA1);
    run(UTIL_HANDLES_ADD, 0xB1);
    run(UTIL_HANDLES_ADD, 0xB2);
    run(UTIL_HANDLES_PUSH_SNAPSHOT);
    run(UTIL_HANDLES_REMOVE, 0xB2); // after the snapshot
    run(UTIL_HANDLES_COMPARE_SNAPSHOTS);
    EXPECT_EQ(Lines(),
              L"NEW 2 BRUSH HANDLES:\nDELETED 1 BRUSH HANDLES:\n"
              L"NEW 2 BRUSH HANDLES:\nNEW BRUSH HANDLE B1\nNEW BRUSH HANDLE B2\n"
              L"DELETED 1 BRUSH HANDLES:\nDELETED BRUSH HANDLE A1\n");
    run(UTIL_HANDLES_PUSH_SNAPSHOT);
    run(UTIL_HANDLES_COMPARE_SNAPSHOTS); // both are used up
    EXPECT_EQ(Lines(), L"");
}

// Types that were listed before stay silent, also with new handles.
TEST_F(HandleTest, TheUnloadListsWhatWasNotListed) {
    EXPECT_EQ(test::RunChild(L"handle-unload").output,
              "| LOST BITMAP | LOST MEMDC address LOST MEMDC address ");
}

} // namespace
} // namespace vxut
