#include "profile/list_services.h"

#include "base/debug.h"
#include "profile/tree_walk.h"

#include <algorithm>

namespace vxut {
namespace {

// Deeper entries are indented by this depth: a line of the debug channel is limited.
constexpr int kMaxShownDepth = 256;

} // namespace

// The copy is built aside, so that the walk does not meet it and a failure discards all of it.
void CopyEntries(const clsItemList& source, clsItemList& target) {
    clsItemList copy(L"");
    clsItemList* list = &copy;
    clsTreeWalk walk(source);
    while (const auto step = walk.Next()) {
        if (step == clsTreeWalk::kItem)
            list->AppendItem(walk.Item().Name(), walk.Item().Value());
        else
            list = step == clsTreeWalk::kEnter ? &list->AppendList(walk.List().Name()) : list->Parent();
    }
    target.TakeEntries(copy);
}

void DebugWriteEntries(const clsItemList& list) {
    int depth = 0;
    clsTreeWalk walk(list);
    while (const auto step = walk.Next()) {
        if (step == clsTreeWalk::kLeave) {
            --depth;
            continue;
        }
        const clsItem& item = walk.Item();
        const int width = std::min(depth, kMaxShownDepth);
        if (step == clsTreeWalk::kItem) {
            DebugWrite(L"%*s%s=%s\n", width, L"", item.NameText(), item.ValueText());
        } else {
            DebugWrite(L"%*s[%s]\n", width, L"", item.NameText());
            ++depth;
        }
    }
}

} // namespace vxut
