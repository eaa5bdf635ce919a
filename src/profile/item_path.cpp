#include "profile/item_path.h"

#include "containers/list.h"
#include "profile/tree_walk.h"

#include <new>

namespace vxut {
namespace {

constexpr wchar_t kSeparator = L'/';
// Components that are not the last one are cut at this length.
constexpr size_t kMaxComponent = 255;

// A path whose components are taken from its front.
class PathSteps {
public:
    explicit PathSteps(std::wstring_view path) : rest_(path) {}

    // Takes the next component before the last one. Returns false if only the last is left.
    bool Next(std::wstring_view& component) {
        const size_t end = rest_.find(kSeparator);
        if (end == std::wstring_view::npos) return false;
        component = rest_.substr(0, end < kMaxComponent ? end : kMaxComponent);
        rest_.remove_prefix(end + 1);
        return true;
    }

    std::wstring_view Last() const { return rest_; }

private:
    std::wstring_view rest_;
};

// The list where a path starts, and the path from there.
struct Start {
    clsItemList& list;
    std::wstring_view path;
};
Start StartOf(const scPlace& place, std::wstring_view path) {
    if (!path.starts_with(kSeparator)) return {place.list, path};
    return {place.root, path.substr(1)};
}

clsItemList* FindNamedList(const clsItemList& list, std::wstring_view name) {
    return name.empty() ? nullptr : list.FindList(name);
}

// The list that the components before the last one lead to, or null; path becomes the last one.
clsItemList* FollowPath(const scPlace& place, std::wstring_view& path) {
    const Start start = StartOf(place, path);
    clsItemList* list = &start.list;
    PathSteps steps(start.path);
    for (std::wstring_view component; list && steps.Next(component);) list = FindNamedList(*list, component);
    path = steps.Last();
    return list;
}

// Calls action(list, last component) for each list that the components before the last one lead to.
template <class Action>
void ForEachList(clsItemList& list, std::wstring_view path, Action action) {
    WCValSList<clsItemList*> level;
    const auto add = [](WCValSList<clsItemList*>& lists, clsItemList* found) {
        if (!lists.append(found)) throw std::bad_alloc();
    };
    add(level, &list);
    PathSteps steps(path);
    for (std::wstring_view component; steps.Next(component);) {
        WCValSList<clsItemList*> next;
        if (!component.empty())
            for (const clsItemList* const parent : level)
                for (const clsItem* const item : *parent)
                    if (!item->IsPlain() && item->Name() == component) add(next, item->Sublist());
        level.swap(next);
    }
    for (clsItemList* const found : level) action(*found, steps.Last());
}

} // namespace

clsItem* FindItemAt(const scPlace& place, const wchar_t* path) {
    std::wstring_view name = path ? path : L"";
    const clsItemList* const list = FollowPath(place, name);
    return list && !name.empty() ? list->FindItem(name) : nullptr;
}

clsItemList* FindListAt(const scPlace& place, const wchar_t* path) {
    if (!path) return &place.list;
    std::wstring_view name = path;
    if (name == L"..") return place.list.Parent();
    const clsItemList* const list = FollowPath(place, name);
    return list ? FindNamedList(*list, name) : nullptr;
}

clsWritePath::clsWritePath(const scPlace& place, const wchar_t* path) {
    const Start start = StartOf(place, path ? path : L"");
    existing_ = list_ = &start.list;
    PathSteps steps(start.path);
    for (std::wstring_view component; steps.Next(component);) {
        if (made_) {
            list_ = &list_->AppendList(component);
        } else if (clsItemList* const found = list_->FindList(component)) {
            existing_ = list_ = found;
        } else {
            made_ = clsItemList::NewEntry(component);
            list_ = made_->Sublist();
        }
    }
    name_ = steps.Last();
}

void clsWritePath::Commit() noexcept {
    if (made_) existing_->Append(std::move(made_));
}

clsItemList& CreateListAt(const scPlace& place, const wchar_t* path) {
    clsWritePath target(place, path);
    clsItemList* const found = target.List().FindList(target.Name());
    if (found) found->Empty();
    clsItemList& list = found ? *found : target.List().AppendList(target.Name());
    target.Commit();
    return list;
}

clsItemList& AppendListAt(const scPlace& place, const wchar_t* path) {
    clsWritePath target(place, path);
    clsItemList& list = target.List().AppendList(target.Name());
    target.Commit();
    return list;
}

void DeleteItemsAt(clsItemList& list, const String& path) {
    ForEachList(list, path.Text(), [](clsItemList& found, std::wstring_view name) {
        found.RemoveNamed(EntryKind::kPlain, name);
    });
}

void DeleteListsAt(clsItemList& list, const String& path) {
    if (path.IsEmpty()) return list.Empty();
    ForEachList(list, path.Text(), [](clsItemList& found, std::wstring_view name) {
        found.RemoveNamed(EntryKind::kList, name);
    });
}

void DeleteEntryOf(clsItemList& root, const clsItemList* sublist) {
    clsTreeWalk walk(root);
    while (const auto step = walk.Next()) {
        const clsItem* const entry = &walk.Item();
        if (step == clsTreeWalk::kLeave || entry->Sublist() != sublist) continue;
        return entry->Parent()->RemoveEntries([&](const clsItem& item) { return &item == entry; });
    }
}

} // namespace vxut
