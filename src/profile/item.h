// One entry of a profile list: a name with a value, or a name with a list.
#pragma once

#include "base/owners.h"
#include "profile/item_text.h"

#include <cstdint>
#include <memory>
#include <string_view>

namespace vxut {

enum class EntryKind : uint32_t { kPlain, kList };

class clsItemList;
class clsItemPool;
class clsItemPosition;
struct clsItemBlock;
template <class L>
class WCIsvSListBase;

// What an item is made with.
struct scItemTexts {
    std::wstring_view name;
    std::wstring_view value;
};

// Items live in the slots of a pool block, which hands them out; a slot is used for many items in turn. An
// item is its own link in the ring of the list that holds it.
class clsItem {
public:
    clsItem() noexcept;
    ~clsItem();
    clsItem(const clsItem&) = delete;
    clsItem& operator=(const clsItem&) = delete;

    // Whether an item is a list is decided by its sublist and nothing else.
    bool IsPlain() const noexcept { return !sublist_; }
    EntryKind Kind() const noexcept { return sublist_ ? EntryKind::kList : EntryKind::kPlain; }
    clsItemList* Sublist() const noexcept { return sublist_.get(); }
    // The list that holds the item, or that it is meant for.
    clsItemList* Parent() const noexcept { return parent_; }
    void SetParent(clsItemList* parent) noexcept { parent_ = parent; }

    // The name of a list item is its list's; its value is empty.
    std::wstring_view Name() const noexcept { return name_.View(); }
    std::wstring_view Value() const noexcept { return value_.View(); }
    const wchar_t* NameText() const noexcept { return name_.Text(); }
    const wchar_t* ValueText() const noexcept { return value_.Text(); }
    // For changes of single units; null if the text is empty. An index of the list must not know the item
    // yet, or no longer: see clsItemList::DropIndex().
    wchar_t* NameUnits() noexcept { return name_.Units(); }
    wchar_t* ValueUnits() noexcept { return value_.Units(); }
    // The value may be a piece of the old one. Throws std::bad_alloc and then leaves the old value.
    void SetValue(std::wstring_view value) { value_.Assign(value); }

private:
    friend class clsItemList;
    friend class clsItemPool;
    friend class clsItemPosition;
    friend class WCIsvSListBase<clsItem>;
    friend struct clsItemBlock;

    clsItem* next = nullptr; // in the ring; the name is the one that rings want
    clsItemText name_;
    clsItemText value_;
    clsGenericAutoDelete<clsItemList> sublist_;
    clsItemList* parent_ = nullptr;
    clsItemBlock* block_ = nullptr;
};
static_assert(sizeof(clsItem) == 48);

struct clsItemGiver {
    void operator()(clsItem* item) const noexcept;
};

// Owns an item that no list holds yet.
using clsAutoGiveItem = std::unique_ptr<clsItem, clsItemGiver>;

} // namespace vxut
