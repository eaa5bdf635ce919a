#include "profile/item_list.h"

#include "profile/item_pool.h"

#include <new>

namespace vxut {
namespace {

std::wstring_view WithoutBrackets(std::wstring_view name) {
    if (!name.starts_with(L'[')) return name;
    return name.size() < 2 ? std::wstring_view() : name.substr(1, name.size() - 2);
}

} // namespace

clsItemList::clsItemList(std::wstring_view name, clsItemList* parent)
    : name_(WithoutBrackets(name)), parent_(parent) {}

void clsItemList::GiveItem(clsItem* item) noexcept { ItemPool().Give(item); }

clsItem& clsItemList::AppendNew(std::wstring_view name, std::wstring_view value,
                                clsGenericAutoDelete<clsItemList> list) {
    clsAutoGiveItem item(ItemPool().Take());
    item->SetParent(this);
    item->SetName(name);
    item->SetValue(value);
    if (list) item->Adopt(std::move(list));
    if (!append(item.get())) throw std::bad_alloc();
    return *item.release();
}

clsItem& clsItemList::AppendItem(std::wstring_view name, std::wstring_view value) {
    return AppendNew(name, value, nullptr);
}

clsItemList& clsItemList::AppendList(std::wstring_view name) {
    return Adopt(std::make_unique<clsItemList>(name, this));
}

clsItemList& clsItemList::Adopt(clsGenericAutoDelete<clsItemList> list) {
    list->parent_ = this;
    return *AppendNew(L"", L"", std::move(list)).Sublist();
}

void clsItemList::TakeEntries(clsItemList& other) {
    while (!other.isEmpty()) {
        clsItem* const item = other.get(0);
        if (!append(item)) throw std::bad_alloc();
        other.remove(0);
        item->SetParent(this);
        if (item->Sublist()) item->Sublist()->parent_ = this;
    }
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

// Goes down to the first entry that has nothing below it, frees it and comes back up by the parent: no stack
// and no memory, for a tree of any depth.
void clsItemList::Empty() noexcept {
    clsItemList* list = this;
    while (!isEmpty()) {
        if (list->isEmpty()) {
            list = list->parent_;
            continue;
        }
        clsItem* const first = list->get(0);
        if (!first->IsPlain() && !first->Sublist()->isEmpty()) {
            list = first->Sublist();
            continue;
        }
        list->remove(0);
        GiveItem(first);
    }
}

} // namespace vxut
