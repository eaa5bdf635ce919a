#include "profile/item_list.h"

#include "profile/item_pool.h"

namespace vxut {
namespace {

std::wstring_view WithoutBrackets(std::wstring_view name) {
    if (!name.starts_with(L'[')) return name;
    return name.size() < 2 ? std::wstring_view() : name.substr(1, name.size() - 2);
}

} // namespace

clsItemList::clsItemList(std::wstring_view name) : name_(WithoutBrackets(name)) {}

void* clsItemList::operator new(size_t bytes) { return ItemPool().TakeBlock(bytes); }
void clsItemList::operator delete(void* memory, size_t bytes) noexcept {
    ItemPool().GiveBlock(memory, bytes);
}

clsAutoGiveItem clsItemList::NewEntry(std::wstring_view name) {
    clsAutoGiveItem item = ItemPool().Take(WithoutBrackets(name), {});
    item->sublist_ = std::make_unique<clsItemList>(std::wstring_view());
    item->sublist_->owner_ = item.get();
    return item;
}

void clsItemList::Append(clsAutoGiveItem item) noexcept {
    item->SetParent(this);
    LinkFirst(item.release());
    last_ = First(); // in a ring, the new first becomes the last by moving the mark
}

clsItem& clsItemList::AppendItem(std::wstring_view name, std::wstring_view value) {
    Append(ItemPool().Take(name, value));
    return *Last();
}

clsItemList& clsItemList::AppendList(std::wstring_view name) {
    Append(NewEntry(name));
    return *Last()->Sublist();
}

void clsItemList::TakeEntries(clsItemList& other) noexcept {
    while (!other.isEmpty()) Append(clsAutoGiveItem(other.UnlinkAfter(other.Last())));
}

void clsItemList::SetItem(std::wstring_view name, std::wstring_view value) {
    if (clsItem* const item = FindItem(name))
        item->SetValue(value);
    else
        AppendItem(name, value);
}

clsItem* clsItemList::FindItem(std::wstring_view name) const noexcept {
    for (clsItem* const item : *this)
        if (item->IsPlain() && item->Name() == name) return item;
    return nullptr;
}

clsItemList* clsItemList::FindList(std::wstring_view name) const noexcept {
    for (const clsItem* const item : *this)
        if (!item->IsPlain() && item->Name() == name) return item->Sublist();
    return nullptr;
}

// Descends to the first entry that has nothing below it, frees it and returns by way of the parents, so that
// the depth of the tree takes neither stack nor memory.
void clsItemList::Empty() noexcept {
    clsItemList* list = this;
    while (!isEmpty()) {
        if (list->isEmpty()) {
            list = list->Parent();
            continue;
        }
        clsItem* const first = list->First();
        if (!first->IsPlain() && !first->Sublist()->isEmpty()) {
            list = first->Sublist();
            continue;
        }
        clsAutoGiveItem(list->UnlinkAfter(list->Last())).reset();
    }
}

} // namespace vxut
