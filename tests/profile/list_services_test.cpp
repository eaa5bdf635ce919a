#include "profile/list_services.h"

#include "tests/support/debug_listener.h"

#include <gtest/gtest.h>

namespace vxut {
namespace {

TEST(DebugWriteEntriesTest, OneIndentedLineForEachEntry) {
    clsItemList root(L"/");
    root.AppendItem(L"a", L"1");
    clsItemList& list = root.AppendList(L"l");
    list.AppendItem(L"b", L"2");
    list.AppendList(L"m").AppendItem(L"c", L"3");
    root.AppendItem(L"d", L"4");
    const DebugListener listener;
    DebugWriteEntries(root);
    const wchar_t* const kWanted[] = {L" a=1", L" [l]", L"  b=2", L"  [m]", L"   c=3", L" d=4"};
    ASSERT_EQ(listener.Lines().size(), std::size(kWanted));
    for (size_t i = 0; i < std::size(kWanted); ++i)
        EXPECT_NE(listener.Lines()[i].find(kWanted[i]), std::wstring::npos) << listener.Lines()[i];
}

} // namespace
} // namespace vxut
