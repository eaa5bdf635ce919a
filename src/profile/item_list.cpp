#include "profile/item_list.h"

#include "profile/item_pool.h"

namespace vxut {
namespace {

// Shorter lists are walked through: comparing lengths is faster than a hash.
constexpr int kMinIndexed = 32;
// Making an index costs about as much as this many walks through the whole list.
constexpr uint64_t kWalksBeforeIndex = 4;

std::wstring_view WithoutBrackets(std::wstring_view name) {
    if (!name.starts_with(L'[')) return name;
    return name.size() < 2 ? std::wstring_view() : name.substr(1, name.size() - 2);
}

} // namespace

clsItemList::clsItemList(std::wstring_view name) : name_(WithoutBrackets(name)) {}
clsItemList::~clsItemList() { Empty(); }

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
    clsNameIndex* const index = index_.load(std::memory_order_relaxed);
    if (index && !index->Add(*Last())) DropIndex();
}

clsItem& clsItemList::AppendItem(std::wstring_view name, std::wstring_view value) {
    Append(ItemPool().Take(name, value));
    return *Last();
}

void clsItemList::AppendItems(std::span<const scItemTexts> texts) {
    clsItem* items[clsItemPool::kMaxBatch];
    ItemPool().TakeMany(texts, items);
    for (clsItem* const item : std::span(items, texts.size())) Append(clsAutoGiveItem(item));
}

clsItemList& clsItemList::AppendList(std::wstring_view name) {
    Append(NewEntry(name));
    return *Last()->Sublist();
}

void clsItemList::TakeEntries(clsItemList& other) noexcept {
    other.DropIndex();
    while (!other.isEmpty()) Append(clsAutoGiveItem(other.UnlinkAfter(other.Last())));
}

void clsItemList::SetItem(std::wstring_view name, std::wstring_view value) {
    if (clsItem* const item = FindItem(name))
        item->SetValue(value);
    else
        AppendItem(name, value);
}

clsItem* clsItemList::Find(EntryKind kind, std::wstring_view name) const noexcept {
    if (const clsNameIndex* const index = Index()) return index->Find(kind, name);
    int walked = 0;
    clsItem* found = nullptr;
    for (clsItem* const item : *this) {
        ++walked;
        if (item->Kind() != kind || item->Name() != name) continue;
        found = item;
        break;
    }
    NoteWalk(walked);
    return found;
}

void clsItemList::NoteWalk(int entries) const noexcept {
    if (entries > kMinIndexed)
        walked_.store(walked_.load(std::memory_order_relaxed) + static_cast<uint32_t>(entries),
                      std::memory_order_relaxed);
}

// Makes the index when it is due. Of two threads that make one at the same time, one discards its own.
const clsNameIndex* clsItemList::Index() const noexcept {
    clsNameIndex* index = index_.load(std::memory_order_acquire);
    if (index ||
        walked_.load(std::memory_order_relaxed) < kWalksBeforeIndex * static_cast<uint64_t>(entries()) ||
        entries() <= kMinIndexed)
        return index;
    auto made = clsNameIndex::Make(static_cast<size_t>(entries()));
    for (clsItem* const item : *this)
        if (!made || !made->Add(*item)) return nullptr;
    return index_.compare_exchange_strong(index, made.get(), std::memory_order_acq_rel) ? made.release()
                                                                                        : index;
}

void clsItemList::DropIndex() noexcept {
    walked_.store(0, std::memory_order_relaxed);
    if (index_.load(std::memory_order_relaxed))
        clsGenericAutoDelete<clsNameIndex>(index_.exchange(nullptr, std::memory_order_relaxed)).reset();
}

void clsItemList::RemoveNamed(EntryKind kind, std::wstring_view name) noexcept {
    clsNameIndex* const index = index_.load(std::memory_order_relaxed);
    if (index && !index->Remove(kind, name)) return;
    Remove([=](const clsItem& item) { return item.Kind() == kind && item.Name() == name; });
}

// Descends to the first entry that has nothing below it, unlinks it and returns by way of the parents, so
// that the depth of the tree takes neither stack nor memory. Entries are freed in batches.
void clsItemList::Empty() noexcept {
    DropIndex();
    clsItem* batch[clsItemPool::kMaxBatch];
    size_t count = 0;
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
        batch[count++] = list->UnlinkAfter(list->Last());
        if (count < std::size(batch)) continue;
        ItemPool().GiveMany({batch, count});
        count = 0;
    }
    if (count > 0) ItemPool().GiveMany({batch, count});
}

} // namespace vxut
