#include "base/grow_buffer.h"

#include <gtest/gtest.h>

#include <vector>

namespace vxut {
namespace {

TEST(GrowBuffer, AsksAgainUntilTheResultFits) {
    clsGrowBuffer<wchar_t, 4> buffer;
    std::vector<DWORD> capacities;
    const DWORD sizes[] = {6, 9, 9}; // it grows between two calls
    const DWORD needed = buffer.Fill([&](wchar_t* target, DWORD capacity) {
        const DWORD size = sizes[capacities.size()];
        capacities.push_back(capacity);
        for (DWORD i = 0; i < capacity; ++i) target[i] = L'x'; // leaves no terminator
        return size;
    });
    EXPECT_EQ(needed, 9u);
    EXPECT_EQ(capacities, (std::vector<DWORD>{4, 6, 9}));
    EXPECT_STREQ(buffer.Get(), L"xxxxxxxxx");
}

TEST(GrowBuffer, EndsWithAFailedCall) {
    clsGrowBuffer<BYTE, 4> buffer;
    int calls = 0;
    EXPECT_EQ(buffer.Fill([&](BYTE*, DWORD) { return ++calls == 1 ? 5u : 0u; }), 0u);
    EXPECT_EQ(calls, 2);
}

} // namespace
} // namespace vxut
